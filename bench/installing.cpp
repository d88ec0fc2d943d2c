// Installation of an application package against the same steps on the command line, in turn and
// in the same folders, and the memory that packages of several sizes take.

#include "samplepackage.h"
#include "support/panelplace.h"
#include "support/resulttable.h"
#include "system/paths.h"
#include "system/run/process.h"

#include <QDir>
#include <QDirIterator>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <set>

namespace {
constexpr int pairs = 15;
constexpr double timeTarget = 1.05;  // times the command line
constexpr double memoryShare = 0.02; // what memory may grow by, of that for the smallest package
constexpr double memoryRest = 1024;  // KiB; and this much more

/// The memory file system of the panel, as its folder for temporary files and its stick are.
constexpr char packagePath[] = "/media/usb0/sample.kpc";

/// What a technician would type who knows how a package is built.
constexpr char commandLine[]
    = "cd \"$1\" && tail -c +37 \"$2\" >\"$3\"; tar -zxf \"$3\"; rm \"$3\"";

struct Samples
{
    std::vector<double> time;   // ms
    std::vector<double> memory; // KiB
};

void emptyTarget()
{
    QDir target(Paths::applicationFolder);
    if (!target.removeRecursively() || !target.mkpath(".")) {
        qFatal("cannot empty the target");
    }
}

/// Unpacking that failed, or was cut off, would look fast.
void requireApplication(int mebibytes)
{
    qint64 size = 0;
    for (QDirIterator file(Paths::applicationFolder, QDir::Files, QDirIterator::Subdirectories);
         file.hasNext();) {
        file.next();
        size += file.fileInfo().size();
    }
    if (size != qint64(mebibytes) * 1024 * 1024) {
        qFatal("the application is not installed whole");
    }
}

void install(int mebibytes, Samples &samples)
{
    emptyTarget();
    const QString program = QString::fromStdString(ownFolder() / "installone");
    const ToolResult run = runTool({program, {packagePath}});
    requireApplication(mebibytes);
    const QList<QByteArray> figures = run.output.simplified().split(' ');
    samples.time.push_back(figures.value(0).toDouble());
    samples.memory.push_back(figures.value(1).toDouble());
}

void runCommandLine(int mebibytes, Samples &samples)
{
    emptyTarget();
    const QString archive = QDir::tempPath() + "/sample.tar.gz";
    const auto begin = now();
    runTool({"sh", {"-c", commandLine, "sh", Paths::applicationFolder, packagePath, archive}});
    samples.time.push_back(millisecondsSince(begin));
    requireApplication(mebibytes);
}

std::string sizeText(int mebibytes)
{
    return std::to_string(mebibytes) + " MiB";
}

void measureTime(ResultTable &table, int mebibytes)
{
    Samples unused; // the first runs bring the tools into memory
    install(mebibytes, unused);
    runCommandLine(mebibytes, unused);
    Samples ours;
    Samples peer;
    for (int pair = 0; pair < pairs; ++pair) {
        if (pair % 2 == 0) { // what comes second may find things warm or full
            install(mebibytes, ours);
            runCommandLine(mebibytes, peer);
        } else {
            runCommandLine(mebibytes, peer);
            install(mebibytes, ours);
        }
    }
    table.addPair("install " + sizeText(mebibytes) + "; tail, tar and rm", ours.time, peer.time,
                  "ms", timeTarget);
}

/// The most of three runs, in KiB.
double peakMemory(ResultTable &table, int mebibytes)
{
    Samples samples;
    for (int run = 0; run < 3; ++run) {
        install(mebibytes, samples);
    }
    table.addSamples("peak memory, package of " + sizeText(mebibytes), samples.memory, "KiB");
    return *std::max_element(samples.memory.begin(), samples.memory.end());
}

/// Each package takes the place of the one before, so that the last is the largest.
void measureMemory(ResultTable &table, const std::set<int> &sizes)
{
    std::vector<double> memory;
    for (const int size : sizes) {
        makeSamplePackage(packagePath, size);
        memory.push_back(peakMemory(table, size));
    }
    const auto [least, most] = std::minmax_element(memory.begin(), memory.end());
    table.addFigure("  growth with the size", *most - *least, "KiB",
                    *least * memoryShare + memoryRest);
}
} // namespace

int main(int argc, char *argv[])
{
    requirePanel();
    const int largest = std::atoi(onlyArgument(argc, argv, "installing MEBIBYTES"));
    ResultTable table;
    measureMemory(table, {1, std::min(64, largest), largest});
    measureTime(table, largest);
    return table.exitStatus();
}
