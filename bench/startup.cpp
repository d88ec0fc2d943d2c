// Start of the program until its first frame is on the screen, and its memory then, against a
// bare window of the toolkit. Both are measured from outside, in turn.

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
constexpr double wallTimeTarget = 1.5; // times the bare window
constexpr double memoryTarget = 1.4;   // times the bare window
constexpr int defaultRuns = 20;
// Long enough to come to rest, and well before the countdown ends.
constexpr std::chrono::seconds restTime(1);

struct Samples
{
    std::vector<double> wallTime; // ms
    std::vector<double> memory;   // MB
};

void runOnce(const std::filesystem::path &program, Samples &samples)
{
    FirstFrameWatcher watcher;
    const auto begin = now();
    {
        const ChildProcess process(program);
        const std::chrono::duration<double, std::milli> wallTime
            = watcher.waitForFirstFrame() - begin;
        std::this_thread::sleep_for(restTime);
        samples.wallTime.push_back(wallTime.count());
        samples.memory.push_back(process.memory() / 1024);
    }
    watcher.waitForEnd();
}

double toolTime()
{
    const auto begin = now();
    ChildProcess(instantToolsFolder() / "sleep").waitForEnd();
    return millisecondsSince(begin);
}

/// Names of the tools that @p program runs until its first frame and shortly after.
std::vector<std::string> toolsOf(const std::filesystem::path &program)
{
    constexpr char logFile[] = "/tmp/panel-bench-tools.log";
    setenv("PANEL_BENCH_TOOL_LOG", logFile, 1);
    Samples unused;
    runOnce(program, unused);
    unsetenv("PANEL_BENCH_TOOL_LOG");
    std::ifstream log(logFile);
    std::vector<std::string> names;
    for (std::string name; log >> name;) {
        names.push_back(name);
    }
    return names;
}

void addTools(ResultTable &table, const std::vector<std::string> &names, int runs)
{
    std::vector<double> times;
    times.reserve(static_cast<size_t>(runs));
    for (int run = 0; run < runs; ++run) {
        times.push_back(toolTime());
    }
    std::string list;
    for (const std::string &name : names) {
        list += ' ' + name;
    }
    table.addSamples("one run of a tool that returns at once", times, "ms");
    table.addFigure("runs of tools in a start:" + list, static_cast<double>(names.size()), "");
}

int runsFrom(int argc, char *argv[])
{
    const int runs = argc == 2 ? std::atoi(argv[1]) : defaultRuns;
    if (argc > 2 || runs < 1) {
        std::fprintf(stderr, "Usage: startup [RUNS]\n");
        std::exit(2);
    }
    return runs;
}
} // namespace

int main(int argc, char *argv[])
{
    requirePanel();
    const int runs = runsFrom(argc, argv);
    useInstantTools();
    const auto bareWindow = ownFolder() / "barewindow";
    const auto program = ownFolder().parent_path() / "talmero-bios";

    // These first runs also fill the caches of files and fonts, as a panel's own start does.
    const auto tools = toolsOf(program);
    Samples bare;
    runOnce(bareWindow, bare);
    bare = {};
    Samples full;
    for (int run = 0; run < runs; ++run) {
        runOnce(bareWindow, bare);
        runOnce(program, full);
    }

    ResultTable table;
    table.addSamples("start to first frame, bare window", bare.wallTime, "ms");
    table.addSamples("start to first frame, talmero-bios", full.wallTime, "ms");
    table.addFigure("  ratio", median(full.wallTime) / median(bare.wallTime), "times",
                    wallTimeTarget);
    table.addSamples("memory (PSS), bare window", bare.memory, "MB");
    table.addSamples("memory (PSS), talmero-bios", full.memory, "MB");
    table.addFigure("  ratio", median(full.memory) / median(bare.memory), "times", memoryTarget);
    addTools(table, tools, runs);
    return table.exitStatus();
}
