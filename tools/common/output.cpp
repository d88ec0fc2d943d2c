#include "common/output.h"

#include <QByteArray>

#include <cstdio>

namespace ToolReport {
void print(const QByteArray &text)
{
    std::fwrite(text.constData(), 1, size_t(text.size()), stdout);
}

int endOfOutput(const char *name, int status, int lost)
{
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) {
        return status;
    }
    std::fprintf(stderr, "%s: cannot write to standard output\n", name);
    return lost;
}
} // namespace ToolReport
