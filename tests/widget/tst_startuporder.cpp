#include "shell/biosinterface.h"

#include "debuglog.h"
#include "fakescreen.h"
#include "faketools.h"
#include "panelfiles.h"
#include "panelguard.h"
#include "system/files/versionfiles.h"
#include "widgets/settingsbutton.h"

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QScreen>
#include <QStackedWidget>
#include <QTest>
#include <QTimer>

#include <memory>

using namespace std::chrono_literals;

namespace {
QSize desktopSize()
{
    return QGuiApplication::primaryScreen()->virtualGeometry().size();
}
} // namespace

class TestStartupOrder : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void toolsRunInOrder();
    void windowIsFramelessAndFillsTheDesktop();
    void configuredSize_data();
    void configuredSize();
    void fontFollowsTheModel_data();
    void fontFollowsTheModel();
    void pollsForRescue();
    void survivesBadSettingsFile_data();
    void survivesBadSettingsFile();
    void settingsFileIsRewrittenInOrder();
    void missingSettingsFileIsCreatedOnWrite();
    void unwritableSettingsFileIsADebugLine_data();
    void unwritableSettingsFileIsADebugLine();
    void survivesBadDisplayTool_data();
    void survivesBadDisplayTool();
    void missingDisplayToolIsIgnored();
    void hangingDisplayToolIsCutOff_data();
    void hangingDisplayToolIsCutOff();
    void survivesBadVersionFiles_data();
    void survivesBadVersionFiles();
    void versionFilesUnderTheirNames();
    void followsTheScreens();

private:
    std::unique_ptr<FakeTools> m_tools;
};

void TestStartupOrder::initTestCase()
{
    requirePanel();
}

void TestStartupOrder::init()
{
    m_tools
        = std::make_unique<FakeTools>(QStringList{"xrandr", "xset", "xinput", "ifconfig", "du"});
    writePanelFile("bios.ini", "");
    writePanelFile("model", "RV-K21T\n");
}

void TestStartupOrder::cleanup()
{
    m_tools.reset(); // restores PATH before the next stand-ins change it
}

void TestStartupOrder::toolsRunInOrder()
{
    const BiosInterface window;
    QCOMPARE(m_tools->calls(),
             (QStringList{"xrandr [-q]", "xset [-dpms] [s] [noexpose]",
                          "xrandr [--output] [] [--brightness] [1]",
                          "xrandr [--output] [] [--rotate] [normal]", "ifconfig [eth0]",
                          "ifconfig [eth1]", "du [-h] [/home/dest/]"}));
}

void TestStartupOrder::windowIsFramelessAndFillsTheDesktop()
{
    BiosInterface window;
    QCOMPARE(window.size(), desktopSize());
    QVERIFY(window.isWindow());
    QCOMPARE(window.windowFlags() & ~Qt::WindowFlags(Qt::WindowType_Mask), Qt::FramelessWindowHint);
    QCOMPARE(window.findChild<QStackedWidget *>()->currentIndex(), 0);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCOMPARE(window.geometry(), QRect(QPoint(0, 0), desktopSize()));
}

void TestStartupOrder::configuredSize_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QSize>("size"); // invalid stands for the size of the desktop
    QTest::newRow("set") << QByteArray("1024x768") << QSize(1024, 768);
    QTest::newRow("large X") << QByteArray("640X480") << QSize(640, 480);
    QTest::newRow("height 0") << QByteArray("1024x0") << QSize();
    QTest::newRow("no height") << QByteArray("800x") << QSize();
    QTest::newRow("garbage") << QByteArray("wide") << QSize();
    QTest::newRow("empty") << QByteArray("") << QSize();
}

void TestStartupOrder::configuredSize()
{
    QFETCH(QByteArray, value);
    QFETCH(QSize, size);
    writePanelFile("bios.ini", "bios.screen.size=" + value + '\n');
    const BiosInterface window;
    QCOMPARE(window.size(), size.isValid() ? size : desktopSize());
}

void TestStartupOrder::fontFollowsTheModel_data()
{
    QTest::addColumn<QByteArray>("model");
    QTest::addColumn<int>("pixelSize");
    QTest::newRow("K21") << QByteArray("K21\n") << 20;
    QTest::newRow("K07") << QByteArray("K07") << 20;
    QTest::newRow("RV-K21T") << QByteArray("RV-K21T\n") << 28;
    QTest::newRow("other case") << QByteArray("k21\n") << 28;
    QTest::newRow("part of a name") << QByteArray("K2\n") << 28;
    QTest::newRow("none") << QByteArray() << 28;
}

void TestStartupOrder::fontFollowsTheModel()
{
    QFETCH(QByteArray, model);
    QFETCH(int, pixelSize);
    writePanelFile("model", model);
    const BiosInterface window;
    QCOMPARE(window.font().family(), QString("WeblySleek UI"));
    QCOMPARE(window.font().weight(), QFont::Bold);
    QCOMPARE(window.font().pixelSize(), pixelSize);
    const auto *button = window.findChild<SettingsButton *>("Ethernet:3");
    QCOMPARE(button->font().family(), QString("WeblySleek UI"));
    QCOMPARE(button->font().pixelSize(), pixelSize);
}

void TestStartupOrder::pollsForRescue()
{
    const BiosInterface window;
    bool polls = false;
    for (const auto *timer : window.findChildren<QTimer *>()) {
        polls = polls || (timer->isActive() && timer->interval() == 200 && !timer->isSingleShot());
    }
    QVERIFY(polls);
}

void TestStartupOrder::survivesBadSettingsFile_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("binary garbage") << QByteArray("\x7F\x45\x4C\x46\x00\xFF\x0A\x3D\x00", 9);
    QTest::newRow("line of 10 MB") << QByteArray(10'000'000, 'x') + "=1";
    QTest::newRow("CRLF") << QByteArray("app.mouse=1\r\n\r\n");
}

void TestStartupOrder::survivesBadSettingsFile()
{
    QFETCH(QByteArray, content);
    writePanelFile("bios.ini", content);
    const BiosInterface window;
    QCOMPARE(window.size(), desktopSize());
    QCOMPARE(window.getDebugLevel(), 0);
}

void TestStartupOrder::settingsFileIsRewrittenInOrder()
{
    writePanelFile("bios.ini",
                   "# by hand\nb=2\nunknown=\xC3\xA4 \xE9\n\nb=3\na=1\napp.mouse=1\nb=\nb=4");
    BiosInterface window;
    removePanelFile("bios.ini");
    window.writeINI();
    QCOMPARE(readPanelFile("bios.ini"),
             QByteArray("a=1\napp.mouse=1\nb=4\nunknown=\xC3\xA4 \xE9\n"));
}

void TestStartupOrder::missingSettingsFileIsCreatedOnWrite()
{
    removePanelFile("bios.ini");
    BiosInterface window;
    QCOMPARE(window.size(), desktopSize());
    QVERIFY(!QFile::exists("/opt/talmero/bios/bios.ini")); // reading does not create it
    const DebugLog log;
    window.writeINI();
    QVERIFY(QFile::exists("/opt/talmero/bios/bios.ini"));
    QCOMPARE(readPanelFile("bios.ini"), QByteArray());
    QCOMPARE(log.lines(), QStringList());
}

void TestStartupOrder::unwritableSettingsFileIsADebugLine_data()
{
    QTest::addColumn<QString>("cover"); // shell command that makes the file unwritable
    QTest::newRow("folder in its place") << "mkdir %1/bios.ini";
    QTest::newRow("read-only file system") << "mount -o remount,ro %1";
    QTest::newRow("full file system") << "head -c 1000000 /dev/zero >%1/rest 2>/dev/null || true";
}

void TestStartupOrder::unwritableSettingsFileIsADebugLine()
{
    QFETCH(QString, cover);
    const QString folder("/opt/talmero/bios");
    const auto shell = [&folder](const QString &text) {
        QCOMPARE(QProcess::execute("/bin/sh", {"-c", text.arg(folder)}), 0);
    };
    writePanelFile("bios.ini", "a=1\n");
    BiosInterface window;
    shell("mount -t tmpfs -o size=64k panel %1");
    shell(cover);
    const DebugLog log;
    window.writeINI();
    QCOMPARE(log.lines(),
             QStringList{"void BiosInterface::writeINI() Write BIOS INI File: "
                         "/opt/talmero/bios/bios.ini Error"});
    shell("umount %1");
    removePanelFile("bios.ini");
    window.writeINI(); // the settings are still in memory
    QCOMPARE(readPanelFile("bios.ini"), QByteArray("a=1\n"));
    QCOMPARE(log.lines().size(), 1);
}

void TestStartupOrder::survivesBadDisplayTool_data()
{
    QTest::addColumn<QString>("body");
    QTest::newRow("fails") << "exit 1";
    QTest::newRow("garbage") << "head -c 100000 /dev/urandom";
    QTest::newRow("two outputs") << "printf 'A connected 1\\nB connected 1\\n'";
    QTest::newRow("dies") << "kill -SEGV $$";
}

void TestStartupOrder::survivesBadDisplayTool()
{
    QFETCH(QString, body);
    m_tools->setBody("xrandr", body);
    const BiosInterface window;
    QCOMPARE(window.size(), desktopSize());
    QCOMPARE(m_tools->calls().value(0), QString("xrandr [-q]"));
}

void TestStartupOrder::missingDisplayToolIsIgnored()
{
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", "/nonexistent");
    const BiosInterface window;
    qputenv("PATH", path);
    QCOMPARE(window.size(), desktopSize());
}

void TestStartupOrder::hangingDisplayToolIsCutOff_data()
{
    QTest::addColumn<QString>("tool");
    QTest::addColumn<QString>("body");
    QTest::newRow("display query") << "xrandr"
                                   << "[ \"$1\" != -q ] || exec sleep 300";
    QTest::newRow("screen saving") << "xset"
                                   << "exec sleep 300";
}

void TestStartupOrder::hangingDisplayToolIsCutOff()
{
    QFETCH(QString, tool);
    QFETCH(QString, body);
    m_tools->setBody(tool, body);
    QElapsedTimer timer;
    timer.start();
    const BiosInterface window(nullptr, {.tool = 1000ms});
    QVERIFY2(timer.elapsed() >= 1000 && timer.elapsed() < 10000,
             qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(m_tools->calls().size(), 7);
}

void TestStartupOrder::survivesBadVersionFiles_data()
{
    QTest::addColumn<QString>("how");
    for (const char *how : {"missing", "folder", "empty", "several lines"}) {
        QTest::newRow(how) << QString(how);
    }
}

void TestStartupOrder::survivesBadVersionFiles()
{
    QFETCH(QString, how);
    for (const char *name : {"fwver", "oem", "bios.version", "model"}) {
        if (how == "missing") {
            removePanelFile(name);
        } else if (how == "folder") {
            putFolderAtPanelFile(name);
        } else {
            writePanelFile(name, how == "empty" ? "" : "first\nsecond\n");
        }
    }
    const BiosInterface window;
    const QString expected = how == "several lines" ? "first" : "";
    QCOMPARE(getCurrentRuntimeVersion(), expected);
    QCOMPARE(getCurrentRuntimOEM(), expected);
    QCOMPARE(getCurrentBIOSVersion(), expected);
    QCOMPARE(getCurrentRuntimeModel(), QStringList{expected});
    for (const char *name : {"fwver", "oem", "bios.version", "model"}) {
        removePanelFile(name);
    }
}

void TestStartupOrder::versionFilesUnderTheirNames()
{
    setCurrentRuntimeVersion(-7);
    setCurrentRuntimeOEM("OEM name");
    setCurrentBIOSVersion(2147483647);
    setCurrentRuntimeModel("RV-K25T");
    QCOMPARE(readPanelFile("fwver"), QByteArray("-7"));
    QCOMPARE(readPanelFile("oem"), QByteArray("OEM name"));
    QCOMPARE(readPanelFile("bios.version"), QByteArray("2147483647"));
    QCOMPARE(readPanelFile("model"), QByteArray("RV-K25T"));
    QCOMPARE(getCurrentRuntimeVersion(), QString("-7"));
    QCOMPARE(getCurrentRuntimOEM(), QString("OEM name"));
    QCOMPARE(getCurrentBIOSVersion(), QString("2147483647"));
    QCOMPARE(getCurrentRuntimeModel(), (QStringList{"RV-K25T", "K25T"}));
}

void TestStartupOrder::followsTheScreens()
{
    BiosInterface window;
    window.slotresize(99); // there is no such screen
    window.slotresize(-1);
    QCOMPARE(window.size(), desktopSize());
    window.resize(300, 200);
    window.slotresize(0);
    QCOMPARE(window.size(), QGuiApplication::screens().at(0)->geometry().size());

    const FakeScreen screen(QRect(2000, 0, 640, 480)); // plugged in after the start
    QCOMPARE(window.size(), QGuiApplication::screens().at(0)->geometry().size());
    screen.setGeometry(QRect(2000, 0, 480, 640));
    QCOMPARE(window.size(), QSize(480, 640));
}

QTEST_MAIN(TestStartupOrder)
#include "tst_startuporder.moc"
