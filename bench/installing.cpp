// Compares the installation of an application package with the same steps on the command line, in
// turn and in the same folders. Also measures the memory that packages of several sizes need.

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
constexpr double memoryShare = 0.02; // growth allowed, as a share of the smallest package's memory
constexpr double memoryRest = 1024;  // KiB allowed in addition

/// In memory, like the panel's folder for temporary files.
constexpr char packagePath[] = "/media/usb0/sample.kpc";

/// Installs a package by hand: skips the header and unpacks the rest.
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
        qFatal("cannot empty the application folder");
    }
}

/// Otherwise an unpacking that failed would look fast.
void requireApplication(int mebibytes)
{
    qint64 size = 0;
    for (QDirIterator file(Paths::applicationFolder, QDir::Files, QDirIterator::Subdirectories);
         file.hasNext();) {
        file.next();
        size += file.fileInfo().size();
    }
    if (size != qint64(mebibytes) * 1024 * 1024) {
        qFatal("the application is incomplete");
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
    Samples unused; // the first runs fill the page cache
    install(mebibytes, unused);
    runCommandLine(mebibytes, unused);
    Samples ours;
    Samples peer;
    for (int pair = 0; pair < pairs; ++pair) {
        if (pair % 2 == 0) { // the second of a pair may have warmer caches
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

/// The maximum of three runs, in KiB.
double peakMemory(ResultTable &table, int mebibytes)
{
    Samples samples;
    for (int run = 0; run < 3; ++run) {
        install(mebibytes, samples);
    }
    table.addSamples("peak memory, package of " + sizeText(mebibytes), samples.memory, "KiB");
    return *std::max_element(samples.memory.begin(), samples.memory.end());
}

/// Each package replaces the previous one. The largest, which is last, stays for measureTime().
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
