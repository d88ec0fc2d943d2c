#pragma once

#include "system/run/command.h"
#include "system/run/toollimits.h"

#include <QByteArray>
#include <QString>

#include <chrono>
#include <functional>

class QProcessEnvironment;

// The ways to run a tool. All but startDetached() block the calling thread; none needs an event
// loop. A tool that still runs at its time limit gets SIGTERM, and SIGKILL if it has not ended
// 500 ms later.

/// How many bytes of a tool's standard output are kept, and of its standard error.
inline constexpr qsizetype mostKept = 16 << 20;

/// How a tool ended, and what it wrote.
struct ToolResult
{
    enum class End {
        NotStarted, ///< no such tool or folder, or the file is no program
        CutOff,     ///< still running at the time limit
        Stopped,    ///< still running when the caller asked for its end
        Crashed,    ///< ended by a signal of somebody else
        Ended,
    };
    End end = End::NotStarted;
    int status = -1;   ///< exit status, if it ended
    QByteArray output; ///< standard output, up to mostKept
    QByteArray errors; ///< standard error, up to mostKept

    /// Whether the tool ended by itself, by a crash too.
    bool hasFinished() const { return end == End::Crashed || end == End::Ended; }
};

/// How runTool() runs a tool.
struct RunOptions
{
    std::chrono::milliseconds limit = noLimit;
    QString folder = {};     ///< in which the tool runs; that of this program if empty
    QString outputPath = {}; ///< file to which standard output is appended; collected if empty
    /// Asked every 10 ms with what was collected so far; true ends the tool.
    std::function<bool(const ToolResult &soFar)> shallStop = {};
};

/// Runs @p command, waits for its end and collects what it writes. Its input is empty. What goes
/// beyond mostKept is read and thrown away, and so is what it writes while it is being ended.
ToolResult runTool(const Command &command, const RunOptions &options = {});

/// Runs @p command and waits for its end for at most @p limit. Its output goes where ours goes,
/// its input is empty, its exit status is ignored. A program that cannot be started changes
/// nothing.
void runAndWait(const Command &command, std::chrono::milliseconds limit = noLimit);

/// As runAndWait() without a limit, for a program that is not a tool of ours: it gets
/// @p environment.
void runAndWait(const Command &command, const QProcessEnvironment &environment);

/// As runAndWait(), in the folder @p folder, with its standard output thrown away. Nothing is run
/// if the folder is missing.
void runInFolder(const Command &command, const QString &folder, std::chrono::milliseconds limit);

/// Starts @p command and does not wait for it; it outlives this program.
/// Result: false if it cannot be started.
bool startDetached(const Command &command);

/// Standard output of @p command as text: what it wrote until @p limit if it did not end, empty
/// if it could not be started.
QString readOutput(const Command &command, std::chrono::milliseconds limit);

/// A command line such as "xinput query-state  \"A B\"" as a command: split at blanks, with
/// double quotes around what belongs together and three of them for a quote itself.
Command splitCommandLine(const QString &commandLine);

/// Output of a tool as 8-bit text, byte for byte, up to the first zero byte.
QString byteText(const QByteArray &bytes);
