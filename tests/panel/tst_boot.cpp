#include "faketools.h"
#include "panelfiles.h"
#include "panelguard.h"
#include "panelprogram.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTest>

#include <memory>

namespace {
constexpr int second = 1000;      // ms
constexpr int startLimit = 15000; // ms until the first window, however slow the machine is

// On a screen of 800x600.
constexpr QPoint countDownButton(400, 450);
constexpr QPoint cancelButton(50, 16);
constexpr QPoint okButton(750, 16);
constexpr QPoint runApplicationButton(400, 220);
constexpr QPoint runtimeCloseButton(400, 510);

const QColor headingColor(192, 104, 31);
const QColor runtimeColor(0xee, 0xf2, 0xf5);

struct PageButton
{
    const char *name;
    QPoint place;
};
constexpr PageButton pageButtons[] = {
    {"Install Fonts", {150, 415}}, {"Ethernet", {400, 415}},      {"File Transfer", {650, 415}},
    {"System Status", {150, 522}}, {"Miscellaneous", {400, 522}}, {"Calibration", {650, 522}},
};

bool holdsColor(const QImage &image, const QRect &area, const QColor &color)
{
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            if (image.pixelColor(x, y) == color) {
                return true;
            }
        }
    }
    return false;
}

bool showsMainPage()
{
    return holdsColor(screenImage(), QRect(29, 310, 200, 50), headingColor);
}

bool showsRuntime()
{
    return screenColor({2, 2}) == runtimeColor;
}

/// The count whose colour the ring on the screen has, -1 if there is none. Looked for away from
/// the number, whose white is the colour of 5.
int shownCount()
{
    const QImage image = screenImage();
    const QList<QColor> colors{Qt::red, Qt::magenta, Qt::yellow, Qt::green, Qt::blue, Qt::white};
    for (qsizetype count = 0; count < colors.size(); ++count) {
        if (holdsColor(image, QRect(340, 250, 25, 100), colors.at(count))) {
            return int(count);
        }
    }
    return -1;
}

QImage titleBar()
{
    return screenImage().copy(0, 0, 800, 32);
}
} // namespace

class TestBoot : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void versionNeedsNoDisplay_data();
    void versionNeedsNoDisplay();
    void otherArgumentsStartNormally();
    void pausesBeforeTheWindow();
    void countsDownAndRunsTheRuntime();
    void missingRuntimeLeadsToMainPage_data();
    void missingRuntimeLeadsToMainPage();
    void tapOpensSettings();
    void markerOpensFactoryWindow();
};

void TestBoot::initTestCase()
{
    requirePanel();
}

void TestBoot::init()
{
    QFile::remove("/media/usb0/talmero_setup");
    QTRY_VERIFY(!showsMainPage());
}

void TestBoot::versionNeedsNoDisplay_data()
{
    QTest::addColumn<QString>("argument");
    QTest::newRow("small") << "-v";
    QTest::newRow("large with blanks") << "  -V ";
}

void TestBoot::versionNeedsNoDisplay()
{
    QFETCH(QString, argument);
    const FakeTools tools({"sleep", "xrandr"});
    const QByteArray display = qgetenv("DISPLAY");
    qunsetenv("DISPLAY"); // an application object would end the program now
    PanelProgram program({argument});
    QCOMPARE(program.waitForEnd(), 0);
    qputenv("DISPLAY", display);
    QCOMPARE(program.errorText(), QString("Version:  Aug 31 2015 16:26:17\n"));
    QCOMPARE(tools.calls(), QStringList());
}

void TestBoot::otherArgumentsStartNormally()
{
    for (const QStringList &arguments : {QStringList{"-v", "extra"}, QStringList{"--version"}}) {
        PanelProgram program(arguments);
        QTRY_VERIFY_WITH_TIMEOUT(shownCount() >= 0, startLimit);
        QVERIFY(program.isRunning());
    }
}

void TestBoot::pausesBeforeTheWindow()
{
    const FakeTools tools({"sleep", "xrandr"});
    tools.setBody("sleep", "exec /bin/sleep 3");
    QElapsedTimer timer;
    timer.start();
    PanelProgram program;
    QTRY_COMPARE_WITH_TIMEOUT(shownCount(), 5, startLimit);
    QVERIFY(timer.elapsed() > qint64(3) * second);
    QCOMPARE(tools.calls().mid(0, 2), (QStringList{"sleep [1]", "xrandr [-q]"}));
}

void TestBoot::countsDownAndRunsTheRuntime()
{
    PanelProgram program;
    QTRY_COMPARE_WITH_TIMEOUT(shownCount(), 5, startLimit);
    QElapsedTimer timer;
    timer.start();
    for (int count = 4; count >= 0; --count) {
        QTRY_COMPARE_WITH_TIMEOUT(shownCount(), count, 2 * second);
    }
    QTRY_VERIFY_WITH_TIMEOUT(showsRuntime(), startLimit);
    QVERIFY2(timer.elapsed() > 5500, qPrintable(QString::number(timer.elapsed())));
    QTest::qWait(second);
    QVERIFY(showsRuntime());

    tapScreen(runtimeCloseButton);
    QTRY_VERIFY(showsMainPage());
    tapScreen(runApplicationButton);
    QTRY_VERIFY_WITH_TIMEOUT(showsRuntime(), startLimit);
    tapScreen(runtimeCloseButton);
    QTRY_VERIFY(showsMainPage());
    QVERIFY(program.isRunning());
}

void TestBoot::missingRuntimeLeadsToMainPage_data()
{
    QTest::addColumn<bool>("missing");
    QTest::newRow("no script") << true;
    QTest::newRow("failing script") << false;
}

void TestBoot::missingRuntimeLeadsToMainPage()
{
    QFETCH(bool, missing);
    const QByteArray script = readPanelFile("runapp.sh");
    QVERIFY(!script.isEmpty());
    if (missing) {
        removePanelFile("runapp.sh");
    } else {
        writePanelFile("runapp.sh", "echo ran >/opt/talmero/bios/ran\nexit 1\n");
    }
    const FakeTools tools({"sleep"});
    PanelProgram program;
    QTRY_COMPARE_WITH_TIMEOUT(shownCount(), 5, startLimit);
    QTRY_VERIFY_WITH_TIMEOUT(showsMainPage(), 10 * second);
    QCOMPARE(readPanelFile("ran"), missing ? QByteArray() : QByteArray("ran\n"));
    QVERIFY(program.isRunning());
    writePanelFile("runapp.sh", script);
}

void TestBoot::tapOpensSettings()
{
    const FakeTools tools({"sleep", "xCal"});
    PanelProgram program;
    QTRY_COMPARE_WITH_TIMEOUT(shownCount(), 5, startLimit);
    tapScreen(countDownButton);
    QTRY_VERIFY(showsMainPage());
    QList<QImage> titles{titleBar()};
    for (const PageButton &button : pageButtons) {
        for (const QPoint leave : {cancelButton, okButton}) {
            tapScreen(button.place);
            QTRY_VERIFY2(!showsMainPage(), button.name);
            // Both buttons of the title bar are there, with white text in them.
            QVERIFY(holdsColor(titleBar(), QRect(5, 8, 90, 20), Qt::white));
            QVERIFY(holdsColor(titleBar(), QRect(705, 8, 90, 20), Qt::white));
            if (leave == cancelButton) {
                QVERIFY2(!titles.contains(titleBar()), button.name);
                titles += titleBar();
            } else {
                QCOMPARE(titleBar(), titles.last());
            }
            tapScreen(leave);
            QTRY_VERIFY2(showsMainPage(), button.name);
        }
    }
    QTest::qWait(7 * second); // a touched countdown never starts the runtime
    QVERIFY(showsMainPage());
    QVERIFY(program.isRunning());
}

void TestBoot::markerOpensFactoryWindow()
{
    QFile marker("/media/usb0/talmero_setup");
    QVERIFY(marker.open(QIODevice::WriteOnly));
    marker.close();
    const FakeTools tools({"sleep", "xrandr"});
    PanelProgram program;
    QTRY_VERIFY_WITH_TIMEOUT(toolOutput({"xwininfo", "-root", "-tree"}).contains("talmero-bios"),
                             startLimit);
    QTest::qWait(second);
    QCOMPARE(shownCount(), -1);
    QVERIFY(!tools.calls().contains("xrandr [-q]"));
    QVERIFY(program.isRunning());
}

QTEST_MAIN(TestBoot)
#include "tst_boot.moc"
