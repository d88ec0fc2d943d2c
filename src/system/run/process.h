#pragma once

#include "system/run/command.h"
#include "system/run/toollimits.h"

#include <QByteArray>
#include <QString>

#include <chrono>
#include <functional>

class QProcessEnvironment;

// The ways to run a tool. All except startDetached() block the calling thread; none needs an event
// loop. A tool that is still running at its time limit gets SIGTERM, and SIGKILL if it has not
// ended 500 ms later.

/// Limit in bytes for the standard output that is kept, and for the standard error.
inline constexpr qsizetype mostKept = 16 << 20;

/// How a tool ended and what it wrote.
struct ToolResult
{
    enum class End {
        NotStarted, ///< no such tool or folder, or the file is not a program
        CutOff,     ///< ended by us at the time limit
        Stopped,    ///< ended by us because the caller asked for it
        Crashed,    ///< ended by a signal that we did not send
        Ended,
    };
    End end = End::NotStarted;
    int status = -1;   ///< exit status, only with Ended
    QByteArray output; ///< standard output, up to mostKept
    QByteArray errors; ///< standard error, up to mostKept

    /// Whether the tool ended by itself; a crash counts.
    bool hasFinished() const { return end == End::Crashed || end == End::Ended; }
};

/// How runTool() runs a tool.
struct RunOptions
{
    std::chrono::milliseconds limit = noLimit;
    QString folder = {};     ///< working folder of the tool; ours if empty
    QString outputPath = {}; ///< file to which standard output is appended; collected if empty
    /// Called every 10 ms with the output so far. If it returns true, the tool is ended.
    std::function<bool(const ToolResult &soFar)> shallStop = {};
};

/// Runs @p command, waits for its end and collects its output. Its standard input is empty. Output
/// beyond mostKept is discarded, and so is everything that it writes while it is being ended.
ToolResult runTool(const Command &command, const RunOptions &options = {});

/// Runs @p command and waits at most @p limit for its end. Its output goes where ours goes, its
/// standard input is empty and its exit status is ignored. If it cannot be started, nothing
/// happens.
void runAndWait(const Command &command, std::chrono::milliseconds limit = noLimit);

/// Like runAndWait() without a limit, but the program runs with @p environment instead of ours.
void runAndWait(const Command &command, const QProcessEnvironment &environment);

/// Like runAndWait(), but runs in @p folder and discards standard output. Does nothing if the
/// folder is missing.
void runInFolder(const Command &command, const QString &folder, std::chrono::milliseconds limit);

/// Starts @p command and does not wait for it; it outlives this program.
/// Result: false if it cannot be started.
bool startDetached(const Command &command);

/// Runs @p command for at most @p limit. Result: its standard output so far as text; empty if it
/// could not be started.
QString readOutput(const Command &command, std::chrono::milliseconds limit);

/// Splits a command line such as "xinput query-state  \"A B\"" at its blanks. Double quotes hold
/// an argument with blanks together; three of them stand for a quote character.
Command splitCommandLine(const QString &commandLine);

/// Output of a tool as Latin-1 text, up to the first zero byte.
QString byteText(const QByteArray &bytes);
