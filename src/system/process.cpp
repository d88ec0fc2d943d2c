#include "system/process.h"

#include <QDeadlineTimer>
#include <QProcess>

namespace {
/// A tool that reads its input finds the end of it, and does not wait for a keyboard that no
/// panel has.
void setUp(QProcess &process, const QStringList &command)
{
    process.setStandardInputFile(QProcess::nullDevice());
    process.setProgram(command.value(0));
    process.setArguments(command.mid(1));
}

void runForwarded(QProcess &process, std::chrono::milliseconds limit)
{
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.start();
    process.waitForFinished(static_cast<int>(limit.count()));
}

constexpr int stopInterval = 50;   // ms between two looks whether a tool shall be stopped
constexpr int killTime = 1000;     // ms until a killed tool is gone, unless it waits for a disk
constexpr int askInterval = 10;    // ms between two looks at how much a tool wrote
constexpr qint64 feedSize = 65536; // bytes that a tool is given at once

/// For a process that has ended, or never started. Waits that ran out before are errors, too, and
/// do not matter.
ToolResult resultOf(QProcess &process)
{
    const bool ended = process.error() != QProcess::FailedToStart
        && process.exitStatus() == QProcess::NormalExit;
    return {ended ? process.exitCode() : -1, process.readAllStandardError()};
}
} // namespace

void runAndWait(const QStringList &command, std::chrono::milliseconds limit)
{
    QProcess process;
    setUp(process, command);
    runForwarded(process, limit);
}

void runAndWait(const QStringList &command, const QProcessEnvironment &environment)
{
    QProcess process;
    setUp(process, command);
    process.setProcessEnvironment(environment);
    runForwarded(process, noLimit);
}

void runInFolder(const QStringList &command, const QString &folder, std::chrono::milliseconds limit)
{
    QProcess process;
    setUp(process, command);
    process.setWorkingDirectory(folder);
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start();
    process.waitForFinished(static_cast<int>(limit.count()));
}

ToolResult runIntoFile(const QStringList &command, const QString &folder, const QString &outputPath,
                       const std::function<bool()> &shallStop)
{
    QProcess process;
    setUp(process, command);
    process.setWorkingDirectory(folder);
    process.setStandardOutputFile(outputPath, QIODevice::Append);
    process.start();
    process.waitForStarted(-1);
    while (process.state() != QProcess::NotRunning && !process.waitForFinished(stopInterval)) {
        if (shallStop()) {
            process.kill();
        }
    }
    return resultOf(process);
}

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

bool startDetached(const QStringList &command)
{
    QProcess process;
    setUp(process, command);
    return process.startDetached();
}

ProcessResult runLimited(const QStringList &command, std::chrono::milliseconds limit)
{
    QProcess process;
    setUp(process, command);
    process.start();
    ProcessResult result;
    result.finished = process.waitForFinished(static_cast<int>(limit.count()));
    result.output = process.readAllStandardOutput();
    result.errors = process.readAllStandardError();
    process.terminate();
    return result; // leaving kills what still runs
}

ToolAnswer askTool(const QStringList &command, std::chrono::milliseconds limit, qsizetype most,
                   const QString &folder)
{
    QProcess process;
    setUp(process, command);
    process.setWorkingDirectory(folder);
    process.start();
    const QDeadlineTimer deadline(limit);
    if (!process.waitForStarted(-1)) {
        return {};
    }
    ToolAnswer answer;
    answer.end = ToolAnswer::End::Ended;
    while (process.state() != QProcess::NotRunning && answer.end == ToolAnswer::End::Ended) {
        process.waitForFinished(askInterval);
        answer.output += process.readAllStandardOutput();
        answer.errors += process.readAllStandardError();
        if (answer.output.size() + answer.errors.size() > most) {
            answer.end = ToolAnswer::End::TooMuch;
        } else if (deadline.hasExpired() && process.state() != QProcess::NotRunning) {
            answer.end = ToolAnswer::End::CutOff;
        }
    }
    if (answer.end != ToolAnswer::End::Ended) {
        process.kill();
        process.waitForFinished(killTime);
    } else if (process.exitStatus() == QProcess::CrashExit) {
        answer.end = ToolAnswer::End::Crashed;
    } else {
        answer.status = process.exitCode();
    }
    return answer;
}

QString readOutput(const QStringList &command, std::chrono::milliseconds limit)
{
    return QString::fromLocal8Bit(runLimited(command, limit).output);
}

QStringList splitCommandLine(const QString &commandLine)
{
    return QProcess::splitCommand(commandLine);
}

QString byteText(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes.constData());
}
