#include "common/output.h"

#include <cstdio>

namespace ToolReport {
void print(const QByteArray &text)
{
    std::fwrite(text.constData(), 1, size_t(text.size()), stdout);
}

bool answerAboutTool(const QStringList &arguments, const char *usage, const char *version)
{
    const bool isHelp = arguments == QStringList{"--help"};
    const bool isVersion = arguments == QStringList{"--version"};
    if (isHelp || isVersion) {
        print(isHelp ? usage : version);
    }
    return isHelp || isVersion;
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
