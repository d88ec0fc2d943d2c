#include "system/process.h"

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
} // namespace

void runAndWait(const QStringList &command, std::chrono::milliseconds limit)
{
    QProcess process;
    setUp(process, command);
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.start();
    process.waitForFinished(static_cast<int>(limit.count()));
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
