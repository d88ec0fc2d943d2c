#pragma once

#include <QByteArray>
#include <QStringList>

#include <sysexits.h>

namespace ToolReport {
/// Prints @p text on standard output.
void print(const QByteArray &text);

/// Prints @p usage if the only argument is "--help", and @p version if it is "--version".
/// Result: whether it was one of them.
bool answerAboutTool(const QStringList &arguments, const char *usage, const char *version);

/// Flushes standard output before the tool @p name ends. A full disk may show only now.
/// Result: @p status; or @p lost, after a message, if not everything could be written.
int endOfOutput(const char *name, int status, int lost = EX_IOERR);
} // namespace ToolReport
