#pragma once

#include <sysexits.h>

class QByteArray;

namespace ToolReport {
/// Prints @p text on standard output.
void print(const QByteArray &text);

/// Flushes standard output before the tool @p name ends. A full disk may show only now.
/// Result: @p status; or @p lost, after a message, if not everything could be written.
int endOfOutput(const char *name, int status, int lost = EX_IOERR);
} // namespace ToolReport
