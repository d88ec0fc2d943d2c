// Measures the time until the program's first frame is on the screen, its memory, size and
// libraries. Compares them with a bare Qt window and with the settings programs of two desktops.
// All are measured from outside, in turn.

#include "childprocess.h"
#include "firstframewatcher.h"
#include "support/panelplace.h"
#include "support/resulttable.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

namespace {
constexpr double bareTimeTarget = 1.3;   // times the bare window
constexpr double bareMemoryTarget = 1.3; // times the bare window
constexpr double lxqtTimeTarget = 0.5;
constexpr double lxqtMemoryTarget = 0.5;
constexpr double xfceTimeTarget = 0.8;
constexpr double moreSizeTarget = 1.5; // MB
constexpr double moreLibrariesTarget = 2;
constexpr double bytesPerMegabyte = 1e6;
constexpr char bareToolsVariable[] = "PANEL_BENCH_BARE_TOOLS";
// With a second of rest before each start, the ratio to the bare window was 0.99 to 1.41 in eleven
// runs on one machine. With one start right after the other it was 1.10 to 1.27 in five.
constexpr int startsPerRun = 5;
// Long enough for a program to become idle, but shorter than the countdown.
constexpr std::chrono::seconds restTime(1);

enum class Seen { FirstFrame, Window };

struct Program
{
    std::string name;
    std::filesystem::path path;
    Seen seen;
    std::vector<double> wallTime = {}; // ms
    std::vector<double> memory = {};   // MB
};

std::chrono::steady_clock::time_point waitUntilSeen(FirstFrameWatcher &watcher, Seen seen)
{
    return seen == Seen::FirstFrame ? watcher.waitForFirstFrame() : watcher.waitForWindow();
}

void timeStart(Program &program)
{
    FirstFrameWatcher watcher;
    const auto begin = now();
    {
        const ChildProcess process(program.path);
        const std::chrono::duration<double, std::milli> wallTime
            = waitUntilSeen(watcher, program.seen) - begin;
        program.wallTime.push_back(wallTime.count());
    }
    watcher.waitForEnd();
}

void measureMemory(Program &program)
{
    FirstFrameWatcher watcher;
    {
        const ChildProcess process(program.path);
        waitUntilSeen(watcher, program.seen);
        std::this_thread::sleep_for(restTime);
        program.memory.push_back(process.memory() / 1024);
    }
    watcher.waitForEnd();
}

/// How many tools @p program runs until its first frame, which is before its first rescue poll.
size_t toolsBeforeFirstFrame(const std::filesystem::path &program)
{
    constexpr char logFile[] = "/tmp/panel-bench-tools.log";
    setenv("PANEL_BENCH_TOOL_LOG", logFile, 1);
    Program logged{"", program, Seen::FirstFrame};
    measureMemory(logged);
    unsetenv("PANEL_BENCH_TOOL_LOG");
    std::ifstream log(logFile);
    size_t count = 0;
    for (std::string name; log >> name && name != "xinput";) {
        ++count;
    }
    return count;
}

/// Runs the bare window with @p count tools before its first frame. A tool costs a program with a
/// window more than it costs a small one: the kernel copies the page tables of its parent.
void timeStartWithTools(Program &bare, size_t count)
{
    setenv(bareToolsVariable, std::to_string(count).c_str(), 1);
    timeStart(bare);
    unsetenv(bareToolsVariable);
}

[[noreturn]] void die(const std::string &command)
{
    std::fprintf(stderr, "this command failed: %s\n", command.c_str());
    std::exit(EXIT_FAILURE);
}

/// Runs @p command, which prints a number.
double numberFrom(const std::string &command)
{
    double number = -1;
    FILE *output = popen(command.c_str(), "r");
    if (output == nullptr || std::fscanf(output, "%lf", &number) != 1 || pclose(output) != 0) {
        die(command);
    }
    return number;
}

double linkedLibraries(const std::filesystem::path &program)
{
    return numberFrom("objdump -p " + program.string() + " | grep -c NEEDED");
}

/// Includes the libraries of the libraries.
double loadedLibraries(const std::filesystem::path &program)
{
    return numberFrom("ldd " + program.string() + " | wc -l");
}

double strippedSize(const std::filesystem::path &program) // MB
{
    const std::string stripped = "/tmp/panel-bench-stripped";
    return numberFrom("strip -o " + stripped + ' ' + program.string() + " && stat -c %s "
                      + stripped)
        / bytesPerMegabyte;
}

std::vector<double> lessened(std::vector<double> values, double by)
{
    for (double &value : values) {
        value -= by;
    }
    return values;
}

void compareFiles(ResultTable &table, const Program &ours, const Program &bare)
{
    table.addDifference("size, stripped; bare window", strippedSize(ours.path),
                        strippedSize(bare.path), "MB", moreSizeTarget);
    table.addDifference("libraries that it is linked with; bare window", linkedLibraries(ours.path),
                        linkedLibraries(bare.path), "", moreLibrariesTarget);
    table.addDifference("  and those that these need; bare window", loadedLibraries(ours.path),
                        loadedLibraries(bare.path), "");
}

void comparePrograms(ResultTable &table, const std::vector<Program> &programs,
                     const Program &bareWithTools)
{
    const Program &ours = programs.at(0);
    const Program &bare = programs.at(1);
    const double toolTime = median(bareWithTools.wallTime) - median(bare.wallTime);
    table.addPair("start to first frame, with its tools; bare", ours.wallTime, bare.wallTime, "ms");
    table.addPair("start to first frame; bare window", lessened(ours.wallTime, toolTime),
                  bare.wallTime, "ms", bareTimeTarget);
    table.addPair("memory (PSS); bare window", ours.memory, bare.memory, "MB", bareMemoryTarget);
    for (size_t at = 2; at < programs.size(); ++at) {
        const Program &peer = programs.at(at);
        const bool isLxqt = peer.name == "lxqt-config";
        table.addPair("start; window of " + peer.name, ours.wallTime, peer.wallTime, "ms",
                      isLxqt ? lxqtTimeTarget : xfceTimeTarget);
        table.addPair("memory (PSS); " + peer.name, ours.memory, peer.memory, "MB",
                      isLxqt ? std::optional(lxqtMemoryTarget) : std::nullopt);
    }
}

[[noreturn]] void showUsage()
{
    std::fprintf(stderr, "Usage: startup RUNS [PEER...]\n");
    std::exit(2);
}
} // namespace

int main(int argc, char *argv[])
{
    requirePanel();
    const int runs = argc > 1 ? std::atoi(argv[1]) : 0;
    if (runs < 1) {
        showUsage();
    }
    useInstantTools();
    std::vector<Program> programs{{"talmero-bios", ownFolder() / "talmero-bios", Seen::FirstFrame},
                                  {"bare window", ownFolder() / "barewindow", Seen::FirstFrame}};
    for (int at = 2; at < argc; ++at) {
        programs.push_back({argv[at], std::filesystem::path("/usr/bin") / argv[at], Seen::Window});
    }
    const size_t tools = toolsBeforeFirstFrame(programs.front().path);
    Program bareWithTools = programs.at(1);
    for (int run = 0; run < runs; ++run) {
        // Also fills the caches of files and fonts, which the first start needs.
        for (Program &program : programs) {
            measureMemory(program);
        }
        for (int start = 0; start < startsPerRun; ++start) {
            timeStartWithTools(bareWithTools, tools);
            for (Program &program : programs) {
                timeStart(program);
            }
        }
    }
    ResultTable table;
    comparePrograms(table, programs, bareWithTools);
    table.addFigure("tools that a start runs", static_cast<double>(tools), "");
    table.addPair("  bare window that runs as many; bare", bareWithTools.wallTime,
                  programs.at(1).wallTime, "ms");
    compareFiles(table, programs.at(0), programs.at(1));
    return table.exitStatus();
}
