#include "toolrun.h"

#include <QElapsedTimer>
#include <QProcess>

ToolRun runTool(const QString &program, const QStringList &arguments)
{
    QElapsedTimer timer;
    timer.start();
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit) {
        qFatal("%s crashes or hangs", qPrintable(program));
    }
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError(),
            timer.elapsed()};
}
