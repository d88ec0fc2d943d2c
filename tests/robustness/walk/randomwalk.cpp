// Touches the program's windows at random. Fails on a crash, a long pause or growing memory.

#include "diskfiles.h"
#include "factory/softwaresetup.h"
#include "fingerwalk.h"
#include "inputpanel/platformbridge.h"
#include "memorytrend.h"
#include "panelguard.h"
#include "shell/biosinterface.h"
#include "system/paths.h"
#include "system/startup.h"
#include "widgets/touchstyle.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QTest>

#include <cstdio>
#include <memory>

#include <unistd.h>

namespace {
constexpr int stepsOfARun = 250; // until the panel's files are restored
constexpr int pauseLimit = 8000; // ms: a long hold and several slow tools
constexpr double growthLimit = 1.02;

std::unique_ptr<QWidget> createWindow(bool isFactory)
{
    if (!isFactory) {
        return std::make_unique<BiosInterface>();
    }
    QApplication::setStyle(new TouchStyle);
    return std::make_unique<SoftwareSetup>();
}

/// Walks until the program quits, or until the next run of stepsOfARun steps is due.
void walkOn(FingerWalk &walk, QWidget *window)
{
    window->show();           // the last run may have closed it
    window->activateWindow(); // simulated touches do not reach the X server, which would do this
    if (!QTest::qWaitForWindowActive(window)) {
        qFatal("the window does not become active");
    }
    walk.runFor(stepsOfARun - walk.step() % stepsOfARun);
    for (QWidget *left : QApplication::topLevelWidgets()) {
        if (left->inherits("KPixelTestWidget")) { // deletes itself only after the last tap
            delete left;
        }
    }
}

/// Restores what a walk may change: the runtime's script, an application, the calibration. Replaced
/// plugs close the serial ports of unfinished tests, each of which holds 64 KB.
void repairPanel()
{
    writeFile(Paths::runtimeScript, "exit 0\n");
    writeFile(Paths::sessionScript);
    writeFile(Paths::namingRulesFile);
    shellBytes("mkdir -p /home/dest/compile; chmod 755 /opt/talmero/bios/runapp.sh;"
               "rm -f /usr/share/fonts/truetype/freefont/* /tmp/*.??????;" PANEL_SIMULATOR
               "/serial whole whole whole");
    QApplication::processEvents();
}

/// Standard output for the results. The output of the program's tools is discarded.
FILE *figures()
{
    static FILE *const kept = [] {
        FILE *output = fdopen(dup(STDOUT_FILENO), "w");
        return std::freopen("/dev/null", "w", stdout) != nullptr ? output : nullptr;
    }();
    return kept;
}

void printFigures(const FingerWalk &walk, const MemoryTrend &memory)
{
    for (auto kind = walk.touched().cbegin(); kind != walk.touched().cend(); ++kind) {
        std::fprintf(figures(), "%7d  %s\n", kind.value(), qPrintable(kind.key()));
    }
    std::fprintf(figures(), "longest pause: %lld ms after step %d\n",
                 static_cast<long long>(walk.longestPause()), walk.longestPauseStep());
    if (memory.isKnown()) {
        std::fprintf(figures(), "memory in use: %zu bytes at first, %zu at the end (%.4f)\n",
                     memory.early(), memory.late(), memory.growth());
    }
}

struct Options
{
    bool isFactory = false;
    quint32 seed = 1;
    int steps = 20000;
};

Options readOptions(const QStringList &arguments)
{
    const QCommandLineOption factory("factory", "The factory window instead of the settings.");
    const QCommandLineOption seed("seed", "Which walk, from 1 on.", "N", "1");
    const QCommandLineOption steps("steps", "How many taps and holds.", "N", "20000");
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOptions({factory, seed, steps});
    parser.process(arguments);
    return {parser.isSet(factory), parser.value(seed).toUInt(), parser.value(steps).toInt()};
}
} // namespace

int main(int argc, char *argv[])
{
    requirePanel();
    shieldFromEnvironment();
    selectInputContextPlugin();
    const QApplication application(argc, argv);
    const Options options = readOptions(QApplication::arguments());
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &text) {
        if (type == QtFatalMsg) {
            std::fprintf(stderr, "%s\n", qPrintable(text));
        }
    });

    std::fprintf(figures(), "%s, seed %u, %d steps\n", options.isFactory ? "factory" : "settings",
                 options.seed, options.steps);
    FingerWalk walk(options.seed, options.steps);
    repairPanel();
    const std::unique_ptr<QWidget> window = createWindow(options.isFactory);
    MemoryTrend memory(options.steps);
    while (!walk.isDone()) {
        walkOn(walk, window.get());
        repairPanel();
        memory.look(walk.step());
    }
    printFigures(walk, memory);
    const bool grew = memory.isKnown() && memory.growth() > growthLimit;
    return grew || walk.longestPause() > pauseLimit ? EXIT_FAILURE : EXIT_SUCCESS;
}
