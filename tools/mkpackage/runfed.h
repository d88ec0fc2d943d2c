#pragma once

#include <QByteArray>
#include <QStringList>

#include <functional>

class QIODevice;
struct ToolResult;

/// Runs @p command, the program first, gives it what is left to read in @p input on its standard
/// input and hands what it writes to standard output to @p takeOutput, in pieces. Waits without
/// limit.
/// Result: the status, -1 if the tool could not be started or crashed, and its standard error.
ToolResult runFed(const QStringList &command, QIODevice &input,
                  const std::function<void(const QByteArray &)> &takeOutput);
