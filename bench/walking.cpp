// Compares the search for packages with find, and measures how its time grows with the files.

#include "samplefiles.h"
#include "support/panelplace.h"
#include "support/resulttable.h"
#include "system/run/process.h"

#include <algorithm>
#include <map>

namespace {
constexpr int pairs = 15;
constexpr int filesToPackage = 10;
constexpr int comparedFiles = 100'000;
constexpr int mostFiles = 1'000'000;
constexpr int leastFilesWalked = 100'000; // in all rounds of one size together
constexpr int fewestRounds = 7;
constexpr double timeTarget = 1.25;  // times find
constexpr double growthTarget = 1.5; // times the time for one file

constexpr char folder[] = "/media/usb0/stick/";

/// Milliseconds that @p command takes. It must print one line per package.
double timeOf(const Command &command)
{
    const auto begin = now();
    const ToolResult run = runTool(command);
    const double time = millisecondsSince(begin);
    if (run.output.count('\n') != comparedFiles / filesToPackage) {
        qFatal("%s did not find all packages", qPrintable(command.tool));
    }
    return time;
}

/// Both times include the start of a process and reading its output.
void compareWithFind(ResultTable &table)
{
    const Command walk{QString::fromStdString(ownFolder() / "walkone"), {folder}};
    const Command find{"find", {folder, "-type", "f", "-name", "*" + packageExtension(sampleType)}};
    std::vector<double> ours;
    std::vector<double> peer;
    timeOf(walk); // the first runs fill the page cache
    timeOf(find);
    for (int pair = 0; pair < pairs; ++pair) {
        const bool findFirst = pair % 2 != 0;
        const double first = timeOf(findFirst ? find : walk);
        const double second = timeOf(findFirst ? walk : find);
        ours.push_back(findFirst ? second : first);
        peer.push_back(findFirst ? first : second);
    }
    const std::string files = std::to_string(comparedFiles) + " files";
    table.addPair("walk over " + files + "; find", ours, peer, "ms", timeTarget);
}

/// Milliseconds per search among the existing @p files files.
std::vector<double> walkTimes(int files)
{
    std::vector<double> times;
    for (int round = 0; round < std::max(fewestRounds, leastFilesWalked / files); ++round) {
        const auto begin = now();
        findPackagesBelow(folder, sampleType);
        times.push_back(millisecondsSince(begin));
    }
    return times;
}

void measureGrowth(ResultTable &table)
{
    std::map<int, double> timePerFile;
    for (const int files : {1'000, 10'000, comparedFiles, mostFiles}) {
        makeSampleFiles(folder, files, filesToPackage);
        const std::vector<double> times = walkTimes(files);
        table.addSamples("walk over " + std::to_string(files) + " files, no process", times, "ms");
        timePerFile[files] = median(times) / files;
    }
    table.addFigure("  growth of the time per file in the last step",
                    timePerFile[mostFiles] / timePerFile[comparedFiles], "times", growthTarget);
}
} // namespace

int main()
{
    requirePanel();
    ResultTable table;
    makeSampleFiles(folder, comparedFiles, filesToPackage);
    compareWithFind(table);
    measureGrowth(table);
    return table.exitStatus();
}
