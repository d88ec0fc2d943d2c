#include "faketools.h"
#include "layermodel.h"
#include "panelfiles.h"
#include "panelguard.h"
#include "panelprogram.h"
#include "panelscreen.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTest>

namespace {
constexpr QSize landscape(800, 600);
constexpr QSize portrait(600, 800);

/// Places that this test looks at or taps, in one orientation.
struct Places
{
    QSize screen;
    QRect heading;
    QPoint miscButton;
    QPoint ok;
    QPoint landscapeButton;
    QPoint portraitButton;
};
constexpr Places lying{landscape, {29, 310, 200, 50}, {400, 522},
                       {750, 16}, {380, 154},         {620, 154}};
constexpr Places upright{portrait,  {29, 410, 200, 50}, {300, 698},
                         {550, 16}, {300, 180},         {500, 180}};
constexpr PageButton uprightButtons[] = {
    {"Install Fonts", {115, 540}}, {"Ethernet", {300, 540}},      {"File Transfer", {485, 540}},
    {"System Status", {115, 698}}, {"Miscellaneous", {300, 698}}, {"Calibration", {485, 698}},
};
constexpr QColor headingColor(192, 104, 31);

/// This display has no touch device, so the test clicks with the pointer.
void clickScreen(QPoint at)
{
    toolOutput(
        {"xdotool", "mousemove", QString::number(at.x()), QString::number(at.y()), "click", "1"});
}

bool showsHeading(const Places &places)
{
    return holdsColor(screenImage(), places.heading, headingColor);
}

bool showsTitleButtons(const Places &places)
{
    const QImage image = screenImage();
    const QRect text(-15, -7, 30, 14);
    return holdsColor(image, text.translated(cancelButton), Qt::white)
        && holdsColor(image, text.translated(places.ok), Qt::white);
}

bool showsMainPageAt(const Places &places)
{
    return screenImage().size() == places.screen && showsHeading(places)
        && !showsTitleButtons(places);
}

LayerModel paintedPage(const QRect &rect)
{
    LayerModel model(rect.size(), Qt::black);
    model.addShadow(rect);
    model.addBarShadow(rect);
    model.addRadialGradient(rect);
    model.addHighlight(rect);
    return model;
}

/// Compares the bottom of a settings page with the painted model, over the full width.
/// Result: the first difference; empty if there is none.
QString uprightBottomDifference()
{
    static constexpr QRect rect(QPoint(0, 0), portrait);
    static const LayerModel model = paintedPage(rect);
    return model.difference(screenImage(), rect.adjusted(0, 0, 0, -10));
}

QString rotation()
{
    return toolOutput({"/usr/bin/xrandr", "-q"}).section(" connected ", 1).section('(', 0, 0);
}

void turn(const char *direction)
{
    toolOutput({"/usr/bin/xrandr", "--output", QGuiApplication::primaryScreen()->name(), "--rotate",
                direction});
}

void chooseOrientation(const Places &now, QPoint button)
{
    clickScreen(now.miscButton);
    QTRY_VERIFY(showsTitleButtons(now));
    clickScreen(button);
    clickScreen(now.ok);
}

/// Every page must fill the whole portrait screen.
void lookAtEveryPage()
{
    for (const PageButton &button : uprightButtons) {
        clickScreen(button.place);
        QTRY_VERIFY2(showsTitleButtons(upright), button.name);
        QTRY_COMPARE(uprightBottomDifference(), QString());
        QCOMPARE(programWindow(), QRect(QPoint(0, 0), portrait));
        clickScreen(cancelButton);
        QTRY_VERIFY2(showsMainPageAt(upright), button.name);
        QCOMPARE(programWindow(), QRect(QPoint(0, 0), portrait));
    }
}
} // namespace

class TestOrientation : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void technicianTurnsTheScreen_data();
    void technicianTurnsTheScreen();
};

void TestOrientation::initTestCase()
{
    requirePanel();
    toolOutput({"xsetroot", "-solid", "teal"}); // visible wherever no window is
}

void TestOrientation::technicianTurnsTheScreen_data()
{
    QTest::addColumn<QByteArray>("model");
    QTest::newRow("small font") << QByteArray("K07\n");
    QTest::newRow("usual font") << QByteArray("RV-M15\n");
}

void TestOrientation::technicianTurnsTheScreen()
{
    QFETCH(QByteArray, model);
    writePanelFile("model", model);
    writePanelFile("bios.ini", "");
    {
        const FakeTools tools({"sleep", "date", "hwclock", "xCal"});
        const PanelProgram program;
        QTRY_VERIFY_WITH_TIMEOUT(shownCount() >= 0, startLimit);
        clickScreen(countDownButton);
        QTRY_VERIFY(showsMainPageAt(lying));
        chooseOrientation(lying, lying.portraitButton);
        QTRY_VERIFY(showsMainPageAt(upright));
        QTRY_COMPARE(programWindow(), QRect(QPoint(0, 0), portrait));
        QCOMPARE(rotation(), QString("600x800+0+0 left "));
        QCOMPARE(readPanelFile("bios.ini"),
                 QByteArray("app.orientation=vertical\nbios.brightness=1\n"));
        lookAtEveryPage();
    }

    turn("normal");
    QTRY_COMPARE(screenImage().size(), landscape);
    const FakeTools tools({"sleep", "date", "hwclock", "xrandr", "window-is-there"});
    // The stand-in runs "window-is-there" if the program already shows its window.
    tools.setBody("xrandr",
                  "xwininfo -root -tree | grep -q '\"talmero-bios\")' && window-is-there\n"
                  "exec /usr/bin/xrandr \"$@\"");
    const PanelProgram program;
    QTRY_VERIFY_WITH_TIMEOUT(programWindow().size() == portrait, startLimit);
    const QString output = QGuiApplication::primaryScreen()->name();
    QCOMPARE(tools.calls().mid(0, 4),
             (QStringList{"sleep [1]", "xrandr [-q]",
                          "xrandr [--output] [" + output + "] [--brightness] [1]",
                          "xrandr [--output] [" + output + "] [--rotate] [left]"}));
    QCOMPARE(rotation(), QString("600x800+0+0 left "));

    clickScreen(QRect(QPoint(0, 0), portrait).center());
    QTRY_VERIFY(showsMainPageAt(upright));
    chooseOrientation(upright, upright.landscapeButton);
    QTRY_VERIFY(showsMainPageAt(lying));
    QTRY_COMPARE(programWindow(), QRect(QPoint(0, 0), landscape));
    QCOMPARE(rotation(), QString("800x600+0+0 "));
    QVERIFY(readPanelFile("bios.ini").startsWith("app.orientation=horizontal\n"));
    QVERIFY(program.isRunning());
}

QTEST_MAIN(TestOrientation)
#include "tst_orientation.moc"
