#include "faketools.h"
#include "panelfiles.h"
#include "panelguard.h"
#include "panelmain.h"
#include "panelprogram.h"
#include "panelscreen.h"
#include "shell/biosinterface.h"
#include "widgets/lineeditwithkeypad.h"
#include "widgets/radiobutton.h"
#include "widgets/settingsbutton.h"

#include <QElapsedTimer>
#include <QFile>
#include <QRegularExpression>
#include <QStackedWidget>

#include <memory>

namespace {
constexpr int leaseTime = 12000;                      // ms that a save with DHCP may take
constexpr std::chrono::milliseconds shortLimit(3000); // for a lease that never comes
constexpr int slack = 2000;                           // ms that ending the client may take

// On a screen of 800x600.
constexpr QPoint ethernetButton = pageButtons[1].place;
constexpr QPoint manual1(600, 214);
constexpr QPoint dhcp2(600, 424);
constexpr QPoint address1(400, 258);
constexpr QPoint mask1(400, 299);
const QColor heldKeypadColor(0xef, 0xef, 0xef);

/// Where the keypad is on the screen; null if it is hidden.
QRect keypadPlace()
{
    const QString window = windowInfo({"-name", "Input Panel"});
    if (!window.contains("IsViewable")) {
        return {};
    }
    const auto number = [&window](const QString &label) {
        return QRegularExpression(label + ": +(-?[0-9]+)").match(window).captured(1).toInt();
    };
    return {number("Absolute upper-left X"), number("Absolute upper-left Y"), number("Width"),
            number("Height")};
}

/// The middle of a key: '0' to '9', '.', '#' for backspace.
QPoint keyPlace(const QRect &keypad, char key)
{
    const QString rows = "123456789.0#";
    const auto index = int(rows.indexOf(key));
    return keypad.topLeft() + QPoint(34 + index % 3 * 57, 34 + index / 3 * 57);
}

void tapKeys(const QString &keys)
{
    QTRY_VERIFY(!keypadPlace().isNull());
    const QRect keypad = keypadPlace();
    for (const QChar key : keys) {
        tapScreen(keyPlace(keypad, key.toLatin1()));
        QCOMPARE(keypadPlace(), keypad); // it must stay open
    }
}

void tapClose()
{
    const QRect keypad = keypadPlace();
    tapScreen(QPoint(keypad.center().x(), keypad.bottom() - 30));
    QTRY_VERIFY(keypadPlace().isNull());
}

std::unique_ptr<PanelProgram> startAtEthernetPage()
{
    auto program = std::make_unique<PanelProgram>();
    openMainPage();
    tapScreen(ethernetButton);
    if (!QTest::qWaitFor(showsSettingsPage)) {
        qFatal("the Ethernet page does not open");
    }
    return program;
}

QString interfacesText()
{
    QFile file("/etc/network/interfaces");
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// Mode and texts of a port on the page of a newly started program, with real tools.
QString reopenedPort(int lan)
{
    BiosInterface window;
    QTest::mouseClick(window.findChild<SettingsButton *>("Ethernet:3"), Qt::LeftButton);
    const auto *page = window.findChild<QStackedWidget *>()->widget(BiosInterface::EthernetPage);
    QString text;
    for (int mode = 0; mode < 3; ++mode) {
        const auto *button = page->findChildren<RadioButton *>().at(lan * 3 + mode);
        text += button->isChecked() ? button->text() : QString();
    }
    for (int edit = 0; edit < 2; ++edit) {
        text += " ["
            + page->findChildren<LineEditWithKeyPad *>().at(lan * 2 + edit)->text().trimmed() + ']';
    }
    return text;
}

QString liveAddress(const QString &port)
{
    const QRegularExpression address("inet addr:([0-9.]+)");
    return address.match(toolOutput({"ifconfig", port})).captured(1);
}
} // namespace

class TestEthernet : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void technicianSetsBothPorts();
    void typingDoesNotRotateTheScreen();
    void keypadStaysOnTopUnderAWindowManager();
    void foreignInputMethodIsIgnored();
    void eachPortGetsALease_data();
    void eachPortGetsALease();
    void fixedAddressIsSetAtOnce();
    void everyInterfacesFileIsAccepted_data();
    void everyInterfacesFileIsAccepted();
    void noDhcpServer_data();
    void noDhcpServer();

private:
    std::unique_ptr<QProcess> m_windowManager;
};

void TestEthernet::initTestCase()
{
    requirePanel();
}

void TestEthernet::init()
{
    writePanelFile("bios.ini", "");
    toolOutput({PANEL_SIMULATOR "/network", "cable", "eth0", "in"});
    toolOutput({PANEL_SIMULATOR "/network", "dhcp", "eth0", "on"});
}

void TestEthernet::cleanup()
{
    if (m_windowManager != nullptr) {
        m_windowManager->kill();
        m_windowManager->waitForFinished();
        m_windowManager.reset();
    }
    for (const char *port : {"eth0", "eth1"}) {
        toolOutput({"/bin/sh", "-c",
                    QString("dhclient -x %1 2>/dev/null; ip addr flush dev %1").arg(port)});
    }
}

void TestEthernet::technicianSetsBothPorts()
{
    auto program = startAtEthernetPage();
    tapScreen(manual1);
    tapScreen(address1);
    tapKeys("192.168.10.57#");
    tapClose();
    tapScreen(mask1);
    tapKeys("255.255.255.0");
    tapClose();
    tapScreen(dhcp2);
    tapScreen(okButton);
    QTRY_VERIFY_WITH_TIMEOUT(showsMainPage(), leaseTime);

    QCOMPARE(readPanelFile("bios.ini"),
             QByteArray("ethernet.eth0=192.168.10.5\nethernet.eth0.mask=255.255.255.0\n"
                        "ethernet.eth1=dhcp\n"));
    QCOMPARE(interfacesText(),
             QString("auto lo \niface lo inet loopback\n\n"
                     "auto eth0\niface eth0 inet static\n"
                     "address 192.168.10.5\nnetmask 255.255.255.0\n\n"
                     "auto eth1\niface eth1 inet dhcp\n\n"));
    QCOMPARE(liveAddress("eth0"), QString("192.168.10.5"));
    const QString lease = liveAddress("eth1");
    QVERIFY2(lease.startsWith("192.168.1.1"), qPrintable(lease));

    program.reset();
    QCOMPARE(reopenedPort(0), QString("Manual Input [192.168.10.5] [255.255.255.0]"));
    QVERIFY(reopenedPort(1).startsWith("DHCP [" + lease + "] [255.255.255.0"));
}

/// The program rotates the screen whenever its window is activated. The keypad must not cause that.
void TestEthernet::typingDoesNotRotateTheScreen()
{
    const FakeTools tools({"xrandr"});
    tools.setBody("xrandr", "exec /usr/bin/xrandr \"$@\"");
    const auto program = startAtEthernetPage();
    tapScreen(manual1);
    tapScreen(address1);
    QTRY_VERIFY(!keypadPlace().isNull());
    const qsizetype before = tools.calls().size();
    tapKeys("12#3");
    tapScreen(okButton);
    QTRY_VERIFY(showsMainPage());
    QCOMPARE(tools.calls().size(), before);
    QVERIFY(readPanelFile("bios.ini").startsWith("ethernet.eth0=13\n"));
}

void TestEthernet::keypadStaysOnTopUnderAWindowManager()
{
    m_windowManager = std::make_unique<QProcess>();
    m_windowManager->start("openbox", QStringList());
    QTRY_VERIFY(toolOutput({"xprop", "-root", "_NET_SUPPORTING_WM_CHECK"}).contains("window id"));
    const auto program = startAtEthernetPage();
    tapScreen(manual1);
    tapScreen(address1);
    QTRY_VERIFY(!keypadPlace().isNull());
    const QRect keypad = keypadPlace();
    for (const char key : {'1', '0', '.', '7', '7', '#'}) {
        tapScreen(keyPlace(keypad, key));
        QTest::qWait(100); // the window manager must not lower or move the keypad
        QCOMPARE(keypadPlace(), keypad);
        QCOMPARE(screenColor(keypad.topLeft() + QPoint(4, 4)), heldKeypadColor);
    }
    tapClose();
    tapScreen(mask1);
    QTRY_VERIFY(!keypadPlace().isNull());
    tapScreen(okButton); // closes the keypad, too
    QTRY_VERIFY(showsMainPage());
    QTRY_VERIFY(keypadPlace().isNull());
    QVERIFY(readPanelFile("bios.ini").startsWith("ethernet.eth0=10.7\n"));
}

void TestEthernet::foreignInputMethodIsIgnored()
{
    qputenv("QT_IM_MODULE", "ibus");
    const auto program = startAtEthernetPage();
    tapScreen(manual1);
    tapScreen(address1);
    tapKeys("5");
    qunsetenv("QT_IM_MODULE");
}

void TestEthernet::eachPortGetsALease_data()
{
    QTest::addColumn<int>("lan");
    QTest::newRow("Lan 1") << 0;
    QTest::newRow("Lan 2") << 1;
}

void TestEthernet::eachPortGetsALease()
{
    QFETCH(int, lan);
    BiosInterface window;
    window.autoDetectIPProcess(lan);
    window.writeINI();
    const QString address = liveAddress(QString("eth%1").arg(lan));
    QVERIFY2(address.startsWith(QString("192.168.%1.1").arg(lan)), qPrintable(address));
    QVERIFY(toolOutput({PANEL_SIMULATOR "/network", "leases"}).contains(address));
    QVERIFY(reopenedPort(lan).startsWith("DHCP [" + address + "] [255.255.255.0"));
}

void TestEthernet::fixedAddressIsSetAtOnce()
{
    BiosInterface window;
    QCOMPARE(window.manualSetIPProcess("192.168.7.7", "255.255.0.0", 1).second, QString());
    QCOMPARE(liveAddress("eth1"), QString("192.168.7.7"));
    // Until the next boot, the kernel's default mask for the address applies.
    QVERIFY(toolOutput({"ifconfig", "eth1"}).contains("Mask:255.255.255.0"));
}

void TestEthernet::everyInterfacesFileIsAccepted_data()
{
    QTest::addColumn<QByteArray>("settings");
    const QByteArray values[] = {"", "dhcp", "10.0.0.1"};
    for (const QByteArray &first : values) {
        for (const QByteArray &second : values) {
            QTest::addRow("'%s', '%s'", first.constData(), second.constData())
                << QByteArray("ethernet.eth0=" + first + "\nethernet.eth1=" + second + '\n');
        }
    }
}

void TestEthernet::everyInterfacesFileIsAccepted()
{
    QFETCH(QByteArray, settings);
    writePanelFile("bios.ini", settings);
    BiosInterface window;
    window.loadEthernetSettings();
    window.writeEthInterface("10.0.0.1", "10.1.0.2", "255.255.255.0", "255.255.0.0");
    const char *const addresses[]
        = {"address: 10.0.0.1\nnetmask: 255.255.255.0\nbroadcast: 10.0.0.255\n",
           "address: 10.1.0.2\nnetmask: 255.255.0.0\nbroadcast: 10.1.255.255\n"};
    QStringList expected{"lo"};
    for (int number = 0; number < 2; ++number) {
        const QString port = QString("eth%1").arg(number);
        const QByteArray setting = port.toLatin1() + '=';
        if (settings.contains(setting + '\n')) {
            continue;
        }
        expected += port;
        const bool isFixed = settings.contains(setting + "10.");
        QCOMPARE(toolOutput({"ifquery", port}), QString(isFixed ? addresses[number] : ""));
    }
    QCOMPARE(toolOutput({"ifquery", "--list"}).split('\n', Qt::SkipEmptyParts), expected);
    toolOutput({"ifup", "--no-act", "--all"}); // qFatal() if it rejects the file
}

void TestEthernet::noDhcpServer_data()
{
    QTest::addColumn<QStringList>("command");
    QTest::newRow("server off") << QStringList{"dhcp", "eth0", "off"};
    QTest::newRow("cable out") << QStringList{"cable", "eth0", "out"};
}

void TestEthernet::noDhcpServer()
{
    QFETCH(QStringList, command);
    toolOutput(QStringList{PANEL_SIMULATOR "/network"} + command);
    BiosInterface window(nullptr, {.lease = shortLimit});
    QElapsedTimer timer;
    timer.start();
    window.autoDetectIPProcess(0);
    QVERIFY2(timer.elapsed() < shortLimit.count() + slack,
             qPrintable(QString::number(timer.elapsed())));
    window.writeINI();
    QCOMPARE(reopenedPort(0), QString("DHCP [NULL] [255.255.255.0]"));
    // The client that was ended must not keep the next save from obtaining a lease.
    init();
    BiosInterface().autoDetectIPProcess(0);
    QVERIFY(liveAddress("eth0").startsWith("192.168.0.1"));
}

PANEL_QTEST_MAIN(TestEthernet)
#include "tst_ethernet.moc"
