#include "system/run/process.h"

#include <QDeadlineTimer>
#include <QProcess>

#include <fcntl.h>
#include <unistd.h>

namespace {
constexpr int lookInterval = 10; // ms between two checks of a running tool
constexpr int politeTime = 500;  // ms between SIGTERM and SIGKILL
constexpr int killTime = 1000;   // ms; enough for a killed tool to end, unless it waits for a disk

/// Standard input is empty, so that no tool waits for a keyboard. Panels have none.
void setUp(QProcess &process, const Command &command)
{
    process.setStandardInputFile(QProcess::nullDevice());
    process.setProgram(command.tool);
    process.setArguments(command.arguments);
}

bool isRunning(const QProcess &process)
{
    return process.state() != QProcess::NotRunning;
}

/// Ends a tool that is still running. Otherwise the destructor of QProcess would kill it at once
/// and print a warning.
void endTool(QProcess &process)
{
    if (!isRunning(process)) {
        return;
    }
    process.closeReadChannel(QProcess::StandardOutput); // otherwise QProcess buffers it
    process.terminate();
    if (!process.waitForFinished(politeTime)) {
        process.kill();
        process.waitForFinished(killTime);
    }
}

void runWithoutCollecting(QProcess &process, std::chrono::milliseconds limit)
{
    process.start();
    process.waitForFinished(static_cast<int>(limit.count()));
    endTool(process);
}

/// Appends @p more to @p kept while there is room.
void keepFirst(QByteArray &kept, const QByteArray &more)
{
    kept += more.first(qMin(more.size(), mostKept - kept.size()));
}

/// A pipe of our own for a tool's standard error. QProcess would keep reading, and growing, for as
/// long as the tool writes.
class ErrorPipe
{
public:
    ErrorPipe()
    {
        if (pipe2(m_ends, O_CLOEXEC | O_NONBLOCK) == 0) {
            fcntl(m_ends[1], F_SETPIPE_SZ, atOnce); // may fail: a smaller pipe works too
        }
    }
    ~ErrorPipe()
    {
        for (const int end : m_ends) {
            close(end);
        }
    }
    Q_DISABLE_COPY(ErrorPipe)

    /// Path of the write end; empty if no pipe could be created.
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

/// Time in ms until the next check of a tool, at most until @p deadline.
int nextWait(const QDeadlineTimer &deadline)
{
    return deadline.isForever()
        ? lookInterval
        : static_cast<int>(qMin<qint64>(lookInterval, deadline.remainingTime()));
}

/// Collects the tool's output until the tool ends, its time limit passes or the caller stops it.
/// Result: false if the caller stopped it.
bool collect(QProcess &process, const ErrorPipe &errors, const RunOptions &options,
             ToolResult &result)
{
    const QDeadlineTimer deadline(options.limit.count());
    do {
        // Not waitForFinished(): it would buffer everything that the tool writes until its end.
        process.waitForReadyRead(nextWait(deadline));
        if (process.isReadable()) { // false after a failed start or with output to a file
            keepFirst(result.output, process.readAllStandardOutput());
        }
        keepFirst(result.errors, errors.read());
        if (isRunning(process) && options.shallStop && options.shallStop(result)) {
            return false;
        }
    } while (isRunning(process) && !deadline.hasExpired());
    return true;
}

ToolResult::End endOf(const QProcess &process)
{
    if (process.error() == QProcess::FailedToStart) {
        return ToolResult::End::NotStarted;
    }
    if (isRunning(process)) {
        return ToolResult::End::CutOff;
    }
    return process.exitStatus() == QProcess::CrashExit ? ToolResult::End::Crashed
                                                       : ToolResult::End::Ended;
}
} // namespace

ToolResult runTool(const Command &command, const RunOptions &options)
{
    QProcess process;
    setUp(process, command);
    process.setWorkingDirectory(options.folder);
    process.setStandardOutputFile(options.outputPath, QIODevice::Append);
    const ErrorPipe errors;
    process.setStandardErrorFile(errors.path());
    process.start();
    ToolResult result;
    const bool isWanted = collect(process, errors, options, result);
    result.end = isWanted ? endOf(process) : ToolResult::End::Stopped;
    if (result.end == ToolResult::End::Ended) {
        result.status = process.exitCode();
    }
    endTool(process);
    return result;
}

void runAndWait(const Command &command, std::chrono::milliseconds limit)
{
    QProcess process;
    setUp(process, command);
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    runWithoutCollecting(process, limit);
}

void runAndWait(const Command &command, const QProcessEnvironment &environment)
{
    QProcess process;
    setUp(process, command);
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.setProcessEnvironment(environment);
    runWithoutCollecting(process, noLimit);
}

void runInFolder(const Command &command, const QString &folder, std::chrono::milliseconds limit)
{
    QProcess process;
    setUp(process, command);
    process.setWorkingDirectory(folder);
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    runWithoutCollecting(process, limit);
}

bool startDetached(const Command &command)
{
    QProcess process;
    setUp(process, command);
    return process.startDetached();
}

QString readOutput(const Command &command, std::chrono::milliseconds limit)
{
    return QString::fromLocal8Bit(runTool(command, {.limit = limit}).output);
}

Command splitCommandLine(const QString &commandLine)
{
    const QStringList parts = QProcess::splitCommand(commandLine);
    return {parts.value(0), parts.mid(1)};
}

QString byteText(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes.constData());
}
