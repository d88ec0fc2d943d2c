#include "ifupdown.h"

#include "system/run/process.h"

#include <QTemporaryFile>

namespace Guard {
namespace {
constexpr std::chrono::milliseconds queryLimit{5000};
} // namespace

bool isRefused(const QString &path)
{
    const ToolResult result = runTool({"ifquery", {"--list", "-i", path}}, {.limit = queryLimit});
    return result.end == ToolResult::End::Ended && result.status != 0;
}

bool isTextRefused(const QByteArray &text)
{
    QTemporaryFile file;
    return file.open() && file.write(text) == text.size() && file.flush()
        && isRefused(file.fileName());
}
} // namespace Guard
