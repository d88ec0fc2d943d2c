#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <chrono>
#include <functional>

class QProcessEnvironment;

// The ways to run a tool. All of them block the calling thread; none needs an event loop.
// A command is the program first, then its arguments, passed without a shell.

/// What became of a tool that ran with a time limit.
struct ProcessResult
{
    bool finished = false; ///< false: not started, or cut off at the limit
    QByteArray output;     ///< standard output, its first 16 MiB
    QByteArray errors;     ///< standard error, its first 16 MiB
};

/// Waits for ever.
inline constexpr std::chrono::milliseconds noLimit{-1};

/// What became of a tool whose exit status matters.
struct ToolResult
{
    int status = -1;   ///< exit status; -1 if it could not be started, crashed or was stopped
    QByteArray errors; ///< standard error, whole
};

/// Runs @p command and waits for its end for at most @p limit; one that is still running then is
/// killed. Its output goes where ours goes, its input is empty, its exit code is ignored. A
/// program that cannot be started changes nothing.
void runAndWait(const QStringList &command, std::chrono::milliseconds limit = noLimit);

/// As runAndWait() without a limit, for a program that is no tool of this one: it gets
/// @p environment.
void runAndWait(const QStringList &command, const QProcessEnvironment &environment);

/// As runAndWait(), in the folder @p folder, with what it writes to standard output thrown away.
/// Where that folder is missing nothing is run.
void runInFolder(const QStringList &command, const QString &folder,
                 std::chrono::milliseconds limit);

/// Runs @p command in the folder @p folder and appends what it writes to standard output to the
/// file at @p outputPath. Waits without limit, but ends the tool once @p shallStop says so.
ToolResult runIntoFile(const QStringList &command, const QString &folder, const QString &outputPath,
                       const std::function<bool()> &shallStop);

/// Starts @p command and does not wait for it; it outlives this program.
/// Result: false if it cannot be started.
bool startDetached(const QStringList &command);

/// Runs @p command, waits for its end for at most @p limit and collects what it writes. What goes
/// beyond 16 MiB is thrown away, so that a tool that writes without end does not eat the memory. A
/// tool that is still running at the limit is asked to end, and killed.
ProcessResult runLimited(const QStringList &command, std::chrono::milliseconds limit);

/// What a tool answered that was only asked.
struct ToolAnswer
{
    enum class End {
        NotStarted, ///< there is no such tool, or it is no program
        CutOff,     ///< still running at the limit
        TooMuch,    ///< was writing without end
        Crashed,
        Ended,
    };
    End end = End::NotStarted;
    int status = -1;   ///< exit status, if it ended
    QByteArray output; ///< standard output
    QByteArray errors; ///< standard error
};

/// Runs @p command as runLimited() does, but ends it also when it has written more than @p most
/// bytes: for one who does not trust the tools. In the folder @p folder, if there is one.
ToolAnswer askTool(const QStringList &command, std::chrono::milliseconds limit, qsizetype most,
                   const QString &folder = {});

/// Standard output of @p command as text, up to @p limit as with runLimited(); what was written
/// until then if the tool did not end, empty if it could not be started.
QString readOutput(const QStringList &command, std::chrono::milliseconds limit);

/// A command line such as "xinput query-state  \"A B\"" as a command: split at blanks, with
/// double quotes around what belongs together and three of them for a quote itself.
QStringList splitCommandLine(const QString &commandLine);

/// Output of a tool as 8-bit text, byte for byte, up to the first zero byte.
QString byteText(const QByteArray &bytes);
