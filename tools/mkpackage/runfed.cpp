#include "runfed.h"

#include "system/process.h"

#include <QProcess>

namespace {
constexpr qint64 feedSize = 65536; // bytes that a tool is given at once

/// For a process that has ended, or never started.
ToolResult resultOf(QProcess &process)
{
    using End = ToolResult::End;
    ToolResult result;
    if (process.error() != QProcess::FailedToStart) {
        const bool ended = process.exitStatus() == QProcess::NormalExit;
        result.end = ended ? End::Ended : End::Crashed;
        result.status = ended ? process.exitCode() : -1;
    }
    result.errors = process.readAllStandardError();
    return result;
}
} // namespace

ToolResult runFed(const QStringList &command, QIODevice &input,
                  const std::function<void(const QByteArray &)> &takeOutput)
{
    QProcess process;
    process.setProgram(command.value(0));
    process.setArguments(command.mid(1));
    process.start();
    process.waitForStarted(-1);
    for (QByteArray piece; !(piece = input.read(feedSize)).isEmpty();) {
        process.write(piece);
        while (process.bytesToWrite() > 0 && process.waitForBytesWritten(-1)) {
            takeOutput(process.readAllStandardOutput());
        }
        if (process.bytesToWrite() > 0) {
            break; // it reads no more
        }
    }
    process.closeWriteChannel();
    process.waitForFinished(-1);
    takeOutput(process.readAllStandardOutput());
    return resultOf(process);
}
