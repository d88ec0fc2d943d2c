#include "system/process.h"

#include <QDeadlineTimer>
#include <QProcess>

#include <fcntl.h>
#include <unistd.h>

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

constexpr int stopInterval = 50; // ms between two looks whether a tool shall be stopped
constexpr int killTime = 1000;   // ms until a killed tool is gone, unless it waits for a disk
constexpr int askInterval = 10;  // ms between two looks at how much a tool wrote
constexpr qsizetype mostKept = 16 << 20; // bytes of each stream

/// Time in ms until the next look at what a tool wrote, or until @p deadline.
int nextWait(const QDeadlineTimer &deadline)
{
    return deadline.isForever()
        ? askInterval
        : static_cast<int>(qMin<qint64>(askInterval, deadline.remainingTime()));
}

/// Appends @p more to @p kept while there is room.
void keepFirst(QByteArray &kept, const QByteArray &more)
{
    kept += more.first(qMin(more.size(), mostKept - kept.size()));
}

/// Takes a tool's standard error in place of the toolkit, which reads that without an end while a
/// tool writes without an end.
class ErrorPipe
{
public:
    ErrorPipe()
    {
        if (pipe2(m_ends, O_CLOEXEC | O_NONBLOCK) == 0) {
            fcntl(m_ends[1], F_SETPIPE_SZ, atOnce); // a smaller one does too
        }
    }
    ~ErrorPipe()
    {
        for (const int end : m_ends) {
            close(end);
        }
    }
    Q_DISABLE_COPY(ErrorPipe)

    /// Where to write into it; no path if the system has no more pipes.
    QString path() const
    {
        return m_ends[1] < 0 ? QString() : QString("/proc/self/fd/%1").arg(m_ends[1]);
    }

    QByteArray read() const
    {
        QByteArray bytes(atOnce, Qt::Uninitialized);
        bytes.truncate(qMax<qsizetype>(::read(m_ends[0], bytes.data(), atOnce), 0));
        return bytes;
    }

private:
    static constexpr int atOnce = 1024 * 1024; // bytes
    int m_ends[2] = {-1, -1};
};

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
    const ErrorPipe errors;
    process.setStandardErrorFile(errors.path());
    process.start();
    const QDeadlineTimer deadline(limit.count());
    ProcessResult result;
    do {
        // Not for the end: until that comes the toolkit would keep all that a tool writes.
        process.waitForReadyRead(nextWait(deadline));
        keepFirst(result.output, process.readAllStandardOutput());
        keepFirst(result.errors, errors.read());
    } while (process.state() != QProcess::NotRunning && !deadline.hasExpired());
    result.finished
        = process.state() == QProcess::NotRunning && process.error() != QProcess::FailedToStart;
    process.terminate();
    return result; // leaving kills what still runs
}

ToolAnswer askTool(const QStringList &command, std::chrono::milliseconds limit, qsizetype most,
                   const QString &folder)
{
    QProcess process;
    setUp(process, command);
    process.setWorkingDirectory(folder);
    const ErrorPipe errors;
    process.setStandardErrorFile(errors.path());
    process.start();
    const QDeadlineTimer deadline(limit);
    if (!process.waitForStarted(-1)) {
        return {};
    }
    ToolAnswer answer;
    answer.end = ToolAnswer::End::Ended;
    while (process.state() != QProcess::NotRunning && answer.end == ToolAnswer::End::Ended) {
        process.waitForReadyRead(askInterval);
        answer.output += process.readAllStandardOutput();
        answer.errors += errors.read();
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
