#pragma once

#include <QByteArray>
#include <QStringList>

/// Result of a run of one of our command-line tools.
struct ToolRun
{
    int status = -1;
    QByteArray output;
    QByteArray errors;
    qint64 time = 0; ///< ms
};

/// Runs @p program and waits for its end. The test program ends if it crashes or hangs.
ToolRun runTool(const QString &program, const QStringList &arguments);
