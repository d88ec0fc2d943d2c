#pragma once

#include <QByteArray>
#include <QStringList>

/// One run of a tool of ours.
struct ToolRun
{
    int status;
    QByteArray output;
    QByteArray errors;
};

/// Runs @p program and waits for its end. The test program ends if it crashes or hangs.
ToolRun runTool(const QString &program, const QStringList &arguments);
