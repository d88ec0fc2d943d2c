#include "toolrun.h"

#include <QProcess>

ToolRun runTool(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(20000) || process.exitStatus() != QProcess::NormalExit) {
        qFatal("%s crashes or hangs", qPrintable(program));
    }
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}
