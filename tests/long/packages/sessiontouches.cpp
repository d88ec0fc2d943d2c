// Operates an installed panel through its screen and touch device only. It does not know how the
// program was started. Usage: sessiontouches STEP...; a step FILE.png saves a screenshot.
#include "panelguard.h"
#include "panelprogram.h"
#include "panelscreen.h"

#include <QGuiApplication>
#include <QTest>

#include <cstdio>

namespace {
constexpr QPoint ethernetButton = pageButtons[1].place;
constexpr QPoint statusButton = pageButtons[3].place;
constexpr QPoint calibrationButton = pageButtons[5].place;
constexpr QPoint secondPortOnDhcp(600, 424);
constexpr QPoint runtimeCloseButton(400, 510);
constexpr QPoint crosses[] = {{100, 75}, {700, 75}, {100, 525}, {700, 525}};
const QColor runtimeColor(0xee, 0xf2, 0xf5);
constexpr int countDownLimit = 15000; // ms; the countdown takes six seconds

void require(const char *what, const std::function<bool()> &isSo, int limit = startLimit)
{
    if (!QTest::qWaitFor(isSo, limit)) {
        screenImage().save("/tmp/failed.png");
        qFatal("the screen does not show: %s", what);
    }
    std::printf("the screen shows: %s\n", what);
}

bool showsRuntime()
{
    return screenColor({2, 2}) == runtimeColor;
}

bool showsCountDown()
{
    return shownCount() >= 0;
}

void tapTo(QPoint place, const char *what, bool (*isShown)())
{
    tapScreen(place);
    require(what, isShown);
}

void openPage(QPoint button)
{
    tapTo(button, "a settings page", showsSettingsPage);
}

void leavePage(QPoint button)
{
    tapTo(button, "the main page", showsMainPage);
}

void waitForRuntime()
{
    require("the countdown", showsCountDown);
    require("the runtime", showsRuntime, countDownLimit);
    tapTo(runtimeCloseButton, "the main page", showsMainPage);
}

void stopCountDown()
{
    require("the countdown", showsCountDown);
    tapTo(countDownButton, "the main page", showsMainPage);
}

void installPackage()
{
    openPage(transferButton);
    tapScreen(transferRow(0));
    require("a chosen package", [] { return isChosen(transferRow(0)); });
    leavePage(okButton);
}

void obtainLease()
{
    openPage(ethernetButton);
    tapScreen(secondPortOnDhcp);
    leavePage(okButton);
}

void calibrate()
{
    tapScreen(calibrationButton);
    require("the calibrator", [] { return !showsMainPage() && !showsSettingsPage(); });
    QTest::qWait(1000); // the window does not show when it begins to accept input
    for (const QPoint cross : crosses) {
        tapScreen(cross);
        QTest::qWait(300); // nor when it shows the next cross
    }
    require("a settings page", showsSettingsPage);
    leavePage(cancelButton);
}

void showStatus()
{
    openPage(statusButton);
}

struct Step
{
    QLatin1String name;
    void (*run)();
};
const Step steps[] = {
    {QLatin1String("runtime"), waitForRuntime},
    {QLatin1String("settings"), stopCountDown},
    {QLatin1String("package"), installPackage},
    {QLatin1String("lease"), obtainLease},
    {QLatin1String("calibration"), calibrate},
    {QLatin1String("status"), showStatus},
    {QLatin1String("countdown"), [] { require("the countdown", showsCountDown); }},
};

bool runStep(const QString &name)
{
    if (name.endsWith(QLatin1String(".png"))) {
        return screenImage().save(name);
    }
    for (const Step &step : steps) {
        if (name == step.name) {
            step.run();
            return true;
        }
    }
    return false;
}
} // namespace

int main(int argc, char *argv[])
{
    requirePanel();
    const QGuiApplication application(argc, argv);
    const QStringList names = QCoreApplication::arguments().mid(1);
    for (const QString &name : names) {
        if (!runStep(name)) {
            std::fprintf(stderr, "sessiontouches: cannot do %s\n", qPrintable(name));
            return 2;
        }
    }
    return 0;
}
