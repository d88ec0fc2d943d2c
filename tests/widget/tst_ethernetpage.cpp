#include "shell/biosinterface.h"

#include "debuglog.h"
#include "diskfiles.h"
#include "faketools.h"
#include "panelfiles.h"
#include "panelmain.h"
#include "settingspage.h"
#include "widgets/lineeditwithkeypad.h"
#include "widgets/radiobutton.h"

#include <QButtonGroup>
#include <QElapsedTimer>
#include <QFile>
#include <QGridLayout>
#include <QLabel>
#include <QStackedWidget>

#include <memory>

using namespace std::chrono_literals;

namespace {
constexpr char interfacesPath[] = "/etc/network/interfaces";
constexpr char oldInterfaces[] = "# as it was\n";
const QString loopback = "auto lo \niface lo inet loopback\n\n";
constexpr int portCount = 2;

QString interfacesText()
{
    QFile file(interfacesPath);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString("none");
}

/// The settings window with its Ethernet page open. Tests operate it by clicks.
class Page : public SettingsPage
{
public:
    explicit Page(const QByteArray &settings = {}, const ToolLimits &limits = {})
        : SettingsPage("Ethernet:3", settings, StaysClosed, limits)
    {
        window()->activateWindow(); // there is no window manager
        if (!QTest::qWaitForWindowActive(window())) {
            qFatal("the window does not get the focus");
        }
        open();
    }

    RadioButton *mode(int lan, int mode) const
    {
        return page()->findChildren<RadioButton *>().at(lan * 3 + mode);
    }
    LineEditWithKeyPad *address(int lan) const
    {
        return page()->findChildren<LineEditWithKeyPad *>().at(qsizetype{2} * lan);
    }
    LineEditWithKeyPad *mask(int lan) const
    {
        return page()->findChildren<LineEditWithKeyPad *>().at(qsizetype{2} * lan + 1);
    }

    void choose(int lan, int index) const { QTest::mouseClick(mode(lan, index), Qt::LeftButton); }
    void ok() const { leave("ok"); }
    void cancel() const { leave("cancel"); }

    /// Modes, texts and whether the edits are enabled, of both ports.
    QString shown() const
    {
        QStringList ports;
        for (int lan = 0; lan < portCount; ++lan) {
            QString text;
            for (int index = 0; index < 3; ++index) {
                text += mode(lan, index)->isChecked() ? mode(lan, index)->text() : QString();
            }
            text += QString(" [%1] [%2]").arg(address(lan)->text(), mask(lan)->text());
            text += address(lan)->isEnabled() && mask(lan)->isEnabled() ? " enabled" : "";
            text += !address(lan)->isEnabled() && !mask(lan)->isEnabled() ? " disabled" : "";
            ports += text;
        }
        return ports.join(" / ");
    }
};

enum Mode { Disable, Dhcp, Manual };
} // namespace

class TestEthernetPage : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void builtPage();
    void layout();
    void shows_data();
    void shows();
    void showsTheLiveAddress_data();
    void showsTheLiveAddress();
    void hangingIfconfigIsCutOff();
    void modesEnableTheEdits();
    void saves_data();
    void saves();
    void cancelChangesNothing();
    void textsAreNotChecked();
    void emptyMaskIsStoredEmpty();
    void unwritableInterfacesFileIsKept();
    void interfacesFileIsWrittenInPlace_data();
    void interfacesFileIsWrittenInPlace();
    void toolsThatFail_data();
    void toolsThatFail();
    void hangingDhcpClientIsCutOff();
    void resultsOfTheProcesses();
    void keypadServesTheFields();

private:
    std::unique_ptr<FakeTools> m_tools;
};

void TestEthernetPage::initTestCase()
{
    shellBytes("mkdir -p /etc/network");
}

void TestEthernetPage::init()
{
    m_tools = std::make_unique<FakeTools>(
        QStringList{"xrandr", "xset", "xinput", "ifconfig", "dhclient"});
    shellBytes(QString("printf '%1' >%2")
                   .arg(QString(oldInterfaces).replace("\n", "\\n"), interfacesPath));
}

void TestEthernetPage::cleanup()
{
    m_tools.reset();
}

void TestEthernetPage::builtPage()
{
    writePanelFile("bios.ini", "");
    const BiosInterface window; // as built, before the page is opened
    QWidget *page = window.findChild<QStackedWidget *>()->widget(BiosInterface::EthernetPage);
    const auto modes = page->findChildren<RadioButton *>();
    const auto edits = page->findChildren<LineEditWithKeyPad *>();
    QStringList texts;
    QStringList names;
    QList<bool> checked;
    for (const RadioButton *mode : modes) {
        texts += mode->text();
        names += mode->objectName();
        checked += mode->isChecked();
    }
    QCOMPARE(texts,
             (QStringList{"Disable", "DHCP", "Manual Input", "Disable", "DHCP", "Manual Input"}));
    QCOMPARE(names,
             (QStringList{"", "auto_detect_radioButton", "manual_input_radioButton", "",
                          "auto_detect_radioButton2", "manual_input_radioButton2"}));
    QCOMPARE(checked, (QList<bool>{false, false, false, true, false, false}));
    names.clear();
    for (const LineEditWithKeyPad *edit : edits) {
        names += edit->objectName();
        QVERIFY(!edit->isEnabled());
        QCOMPARE(edit->text(), QString());
        QCOMPARE(edit->minimumHeight(), 20);
    }
    QCOMPARE(names,
             (QStringList{"ip_address_lineEdit", "ip_address_lineEdit", "ip_address_lineEdit2",
                          "ip_mask_lineEdit2"}));
    texts.clear();
    for (const QLabel *label :
         page->findChildren<QLabel *>(QString(), Qt::FindDirectChildrenOnly)) {
        texts += label->text();
        const bool isPort = label->text().startsWith("Lan");
        for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
            QCOMPARE(label->palette().color(group, QPalette::WindowText),
                     isPort ? QColor(192, 104, 31) : QColor(Qt::white));
        }
        QCOMPARE(label->font().italic(), isPort);
        QVERIFY(!isPort || label->maximumHeight() == 50);
    }
    texts.sort();
    QCOMPARE(texts, (QStringList{"IP:", "IP:", "Lan 1", "Lan 2", "Netmask:", "Netmask:"}));
}

void TestEthernetPage::layout()
{
    const Page page;
    const auto *content = qobject_cast<QVBoxLayout *>(page.page()->layout()->itemAt(1)->layout());
    QVERIFY(content != nullptr);
    QCOMPARE(content->contentsMargins(), QMargins(29, 29, 29, 29));
    constexpr int itemsOfAPort = 6;
    QCOMPARE(content->count(), portCount * itemsOfAPort);
    for (int lan = 0; lan < portCount; ++lan) {
        const int first = lan * itemsOfAPort;
        const auto *caption = qobject_cast<QLabel *>(content->itemAt(first)->widget());
        QCOMPARE(caption->text(), QString("Lan %1").arg(lan + 1));
        for (int index = 0; index < 3; ++index) {
            QCOMPARE(content->itemAt(first + 1 + index)->widget(), page.mode(lan, index));
        }
        const auto *edits = qobject_cast<QGridLayout *>(content->itemAt(first + 4)->layout());
        QVERIFY(edits != nullptr);
        const auto captionText = [&](int row) {
            return qobject_cast<QLabel *>(edits->itemAtPosition(row, 0)->widget())->text();
        };
        QCOMPARE(captionText(0), QString("IP:"));
        QCOMPARE(captionText(1), QString("Netmask:"));
        QCOMPARE(edits->itemAtPosition(0, 1)->widget(), page.address(lan));
        QCOMPARE(edits->itemAtPosition(1, 1)->widget(), page.mask(lan));
        QVERIFY(content->itemAt(first + 5)->spacerItem() != nullptr);
        QCOMPARE(page.mode(lan, 0)->group()->buttons().size(), 3);
        QVERIFY(page.mode(lan, 0)->group()->exclusive());
    }
    QVERIFY(page.mode(0, 0)->group() != page.mode(1, 0)->group());
}

void TestEthernetPage::shows_data()
{
    QTest::addColumn<QByteArray>("settings");
    QTest::addColumn<QString>("shown");
    const QString off = "Disable [] [] disabled";
    const QString none = "DHCP [NULL] [255.255.255.0] disabled"; // ifconfig prints nothing
    QTest::newRow("nothing set") << QByteArray() << off + " / " + off;
    QTest::newRow("both on DHCP") << QByteArray("ethernet.eth0=dhcp\nethernet.eth1=dhcp\n")
                                  << none + " / " + none;
    QTest::newRow("addresses") << QByteArray(
        "ethernet.eth0=10.0.0.1\nethernet.eth0.mask=255.0.0.0\n"
        "ethernet.eth1=10.0.0.2\n")
                               << "Manual Input [10.0.0.1] [255.0.0.0] enabled / "
                                  "Manual Input [10.0.0.2] [255.255.255.0] enabled";
    QTest::newRow("upper case is not DHCP")
        << QByteArray("ethernet.eth0=DHCP\n")
        << "Manual Input [DHCP] [255.255.255.0] enabled / " + off;
    QTest::newRow("mask alone") << QByteArray("ethernet.eth0.mask=255.0.0.0\n")
                                << off + " / " + off;
    QTest::newRow("stored mask on DHCP")
        << QByteArray("ethernet.eth0=dhcp\nethernet.eth0.mask=255.0.0.0\n")
        << "DHCP [NULL] [255.0.0.0] disabled / " + off;
    QTest::newRow("key with a blank is not found")
        << QByteArray("ethernet.eth0 = 10.0.0.1\n") << off + " / " + off;
}

void TestEthernetPage::shows()
{
    QFETCH(QByteArray, settings);
    QFETCH(QString, shown);
    const Page page(settings);
    QCOMPARE(page.shown(), shown);
    page.choose(0, Manual); // not saved, so the next visit shows the settings again
    page.cancel();
    page.open();
    QCOMPARE(page.shown(), shown);
}

void TestEthernetPage::showsTheLiveAddress_data()
{
    QTest::addColumn<QString>("ifconfig");
    QTest::addColumn<QString>("shown");
    QTest::newRow("classic format")
        << "printf '  inet addr:192.168.0.123  Bcast:192.168.0.255  Mask:255.255.0.0\\n abcdef'"
        << "DHCP [192.168.0.123] [255.255.0.0\n abcd] disabled";
    QTest::newRow("current format") << "echo 'inet 192.168.0.123  netmask 255.255.0.0'"
                                    << "DHCP [NULL] [255.255.255.0] disabled";
    QTest::newRow("fails") << "exit 1"
                           << "DHCP [NULL] [255.255.255.0] disabled";
    QTest::newRow("10 MB") << "head -c 10000000 /dev/zero | tr '\\0' x"
                           << "DHCP [NULL] [255.255.255.0] disabled";
}

void TestEthernetPage::showsTheLiveAddress()
{
    QFETCH(QString, ifconfig);
    QFETCH(QString, shown);
    const Page page("ethernet.eth0=dhcp\n");
    m_tools->setBody("ifconfig", ifconfig);
    m_tools->forgetCalls();
    page.open();
    QCOMPARE(page.shown().section(" / ", 0, 0), shown);
    QCOMPARE(m_tools->calls().filter("ifconfig"), QStringList{"ifconfig [eth0]"});
}

void TestEthernetPage::hangingIfconfigIsCutOff()
{
    const Page page("ethernet.eth1=dhcp\n", {.address = 1000ms});
    m_tools->setBody("ifconfig", "echo '  inet addr:1.2.3.4  Bcast:1'; exec sleep 60");
    m_tools->forgetCalls();
    QElapsedTimer timer;
    timer.start();
    page.open();
    QVERIFY2(timer.elapsed() >= 1000 && timer.elapsed() < 10000,
             qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(page.shown().section(" / ", 1, 1), QString("DHCP [NULL] [255.255.255.0] disabled"));
    QCOMPARE(m_tools->calls().filter("ifconfig"), QStringList{"ifconfig [eth1]"});
}

void TestEthernetPage::modesEnableTheEdits()
{
    const Page page;
    for (int lan = 0; lan < portCount; ++lan) {
        for (const Mode mode : {Manual, Dhcp, Manual, Disable, Dhcp}) {
            page.choose(lan, mode);
            QCOMPARE(page.address(lan)->isEnabled(), mode == Manual);
            QCOMPARE(page.mask(lan)->isEnabled(), mode == Manual);
        }
    }
}

void TestEthernetPage::saves_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("second");
    for (const int first : {Disable, Dhcp, Manual}) {
        for (const int second : {Disable, Dhcp, Manual}) {
            QTest::addRow("%d, %d", first, second) << first << second;
        }
    }
}

void TestEthernetPage::saves()
{
    QFETCH(int, first);
    QFETCH(int, second);
    const int modes[] = {first, second};
    const QString addresses[] = {"192.168.10.5", "10.1.2.3"};
    const QString masks[] = {"255.255.255.0", "255.0.0.0"};
    const Page page("ethernet.eth0=1.1.1.1\nethernet.eth0.mask=9\n"
                    "ethernet.eth1=2.2.2.2\nethernet.eth1.mask=9\nother=kept\n");
    const qsizetype before = m_tools->calls().size();
    QStringList calls;
    QString stanzas;
    QString settings;
    for (int lan = 0; lan < portCount; ++lan) {
        const QString name = QString("eth%1").arg(lan);
        page.choose(lan, modes[lan]);
        if (modes[lan] == Manual) {
            page.address(lan)->setText(addresses[lan]);
            page.mask(lan)->setText(masks[lan]);
            calls += QString("ifconfig [%1] [%2]").arg(name, addresses[lan]);
            settings += QString("ethernet.%1=%2\nethernet.%1.mask=%3\n")
                            .arg(name, addresses[lan], masks[lan]);
            stanzas += QString("auto %1\niface %1 inet static\naddress %2\nnetmask %3\n\n")
                           .arg(name, addresses[lan], masks[lan]);
        } else if (modes[lan] == Dhcp) {
            calls += {"dhclient [eth0] [-r]", QString("dhclient [%1]").arg(name)};
            settings += QString("ethernet.%1=dhcp\n").arg(name);
            stanzas += QString("auto %1\niface %1 inet dhcp\n\n").arg(name);
        }
    }
    page.ok();
    QCOMPARE(m_tools->calls().mid(before), calls);
    QCOMPARE(readPanelFile("bios.ini"), (settings + "other=kept\n").toUtf8());
    QCOMPARE(interfacesText(), loopback + stanzas);
    QCOMPARE(page.window()->findChild<QStackedWidget *>()->currentIndex(), 1);
}

void TestEthernetPage::cancelChangesNothing()
{
    const Page page("# by hand\nethernet.eth0=1.1.1.1\n");
    const QStringList before = m_tools->calls();
    page.choose(0, Dhcp);
    page.choose(1, Manual);
    page.cancel();
    QCOMPARE(m_tools->calls(), before);
    QCOMPARE(readPanelFile("bios.ini"), QByteArray("# by hand\nethernet.eth0=1.1.1.1\n"));
    QCOMPARE(interfacesText(), QString(oldInterfaces));
}

void TestEthernetPage::textsAreNotChecked()
{
    const Page page;
    page.choose(0, Manual);
    page.address(0)->setText(" %1 \"$(x)\" 1..2 ");
    page.mask(0)->clear();
    page.ok();
    QVERIFY(m_tools->calls().contains("ifconfig [eth0] [ %1 \"$(x)\" 1..2 ]"));
    QCOMPARE(interfacesText(),
             loopback
                 + "auto eth0\niface eth0 inet static\naddress  %1 \"$(x)\" 1..2 \nnetmask \n\n");
    page.open();
    page.address(0)->clear();
    page.ok();
    QVERIFY(m_tools->calls().contains("ifconfig [eth0] []")); // an empty argument
}

void TestEthernetPage::emptyMaskIsStoredEmpty()
{
    const Page page;
    page.choose(1, Manual);
    page.address(1)->setText("10.0.0.9");
    page.mask(1)->clear();
    page.ok();
    QCOMPARE(readPanelFile("bios.ini"),
             QByteArray("ethernet.eth1=10.0.0.9\nethernet.eth1.mask=\n"));
    page.open();
    QCOMPARE(page.shown().section(" / ", 1, 1),
             QString("Manual Input [10.0.0.9] [255.255.255.0] enabled"));
}

void TestEthernetPage::unwritableInterfacesFileIsKept()
{
    const Page page;
    page.choose(0, Dhcp);
    shellBytes("mount --bind /etc/network /etc/network && "
               "mount -o remount,bind,ro /etc/network");
    page.ok();
    const QString left = interfacesText();
    shellBytes("umount /etc/network");
    QCOMPARE(left, QString(oldInterfaces));
    QCOMPARE(readPanelFile("bios.ini"), QByteArray("ethernet.eth0=dhcp\n")); // saved anyway
    QCOMPARE(page.window()->findChild<QStackedWidget *>()->currentIndex(), 1);
}

void TestEthernetPage::interfacesFileIsWrittenInPlace_data()
{
    QTest::addColumn<QString>("cover");
    QTest::addColumn<QString>("undo");
    const QString mount = "cp interfaces /run/kept && chmod 600 /run/kept && "
                          "chown 7:8 /run/kept && mount --bind /run/kept interfaces";
    QTest::newRow("bind mount") << mount << "umount interfaces";
    QTest::newRow("bind mount, read-only root")
        << "mount --bind . . && cd /etc/network && mount -o remount,bind,ro . && " + mount
        << "umount interfaces && cd / && umount /etc/network";
    QTest::newRow("full disk") << "mount -t tmpfs -o size=64k panel . && cd /etc/network && "
                                  "echo '# as it was' >interfaces && chmod 600 interfaces && "
                                  "chown 7:8 interfaces && "
                                  "(head -c 1000000 /dev/zero >rest 2>/dev/null || true)"
                               << "cd / && umount /etc/network";
}

void TestEthernetPage::interfacesFileIsWrittenInPlace()
{
    QFETCH(QString, cover);
    QFETCH(QString, undo);
    const Page page;
    page.choose(0, Dhcp);
    const QString inFolder = "cd /etc/network && ";
    shellBytes(inFolder + cover);
    page.ok();
    const QString written = interfacesText();
    const QByteArray rights = shellBytes("stat -c %u:%g:%a /etc/network/interfaces");
    shellBytes(inFolder + undo);
    QCOMPARE(written, loopback + "auto eth0\niface eth0 inet dhcp\n\n");
    QCOMPARE(rights, QByteArray("7:8:600\n"));
    QCOMPARE(interfacesText(), QString(oldInterfaces)); // the covered file is unchanged
}

void TestEthernetPage::toolsThatFail_data()
{
    QTest::addColumn<QString>("body");
    QTest::newRow("exit status") << "exit 1";
    QTest::newRow("error text") << "echo broken >&2";
    QTest::newRow("10 MB") << "head -c 10000000 /dev/zero | tr '\\0' x";
    QTest::newRow("killed") << "kill -KILL $$";
}

void TestEthernetPage::toolsThatFail()
{
    QFETCH(QString, body);
    const DebugLog log;
    m_tools->setBody("ifconfig", body);
    m_tools->setBody("dhclient", body);
    const Page page;
    page.choose(0, Manual);
    page.address(0)->setText("10.0.0.1");
    page.choose(1, Dhcp);
    page.ok();
    QCOMPARE(readPanelFile("bios.ini"),
             QByteArray("ethernet.eth0=10.0.0.1\nethernet.eth0.mask=\nethernet.eth1=dhcp\n"));
    QVERIFY(interfacesText().endsWith("auto eth1\niface eth1 inet dhcp\n\n"));
}

void TestEthernetPage::hangingDhcpClientIsCutOff()
{
    m_tools->setBody("dhclient", "[ \"$2\" = -r ] || exec sleep 60");
    const Page page({}, {.lease = 1000ms});
    page.choose(0, Dhcp);
    QElapsedTimer timer;
    timer.start();
    page.ok();
    QVERIFY2(timer.elapsed() >= 1000 && timer.elapsed() < 10000,
             qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(readPanelFile("bios.ini"), QByteArray("ethernet.eth0=dhcp\n"));
}

void TestEthernetPage::resultsOfTheProcesses()
{
    const Page page;
    m_tools->setBody("dhclient",
                     "case $2 in -r) echo out; echo released >&2;; "
                     "*) echo bound; echo got \"$1\" >&2;; esac");
    m_tools->setBody("ifconfig", "echo \"$*\"; echo wrong >&2");
    using Pair = QPair<QString, QString>;
    QCOMPARE(page.window()->releaseCurrenEthernetProcess(), Pair("out\n", "released\n"));
    QCOMPARE(page.window()->autoDetectIPProcess(0), Pair("bound\n", "released\ngot eth0\n"));
    QCOMPARE(page.window()->autoDetectIPProcess(7), Pair("bound\n", "released\ngot eth1\n"));
    QCOMPARE(page.window()->manualSetIPProcess("1.2.3.4", "m", 0),
             Pair("eth0 1.2.3.4\n", "wrong\n"));
    QCOMPARE(page.window()->manualSetIPProcess("1.2.3.4", "m", -1),
             Pair("eth1 1.2.3.4\n", "wrong\n"));
}

void TestEthernetPage::keypadServesTheFields()
{
    const Page page("ethernet.eth1=10.0.0.2\n");
    auto *field = page.address(1);
    QTest::mouseClick(field, Qt::LeftButton);
    QWidget *keypad = nullptr;
    for (QWidget *window : QApplication::topLevelWidgets()) {
        keypad = window->objectName() == "MyInputPanelForm" ? window : keypad;
    }
    QVERIFY(keypad != nullptr && keypad->isVisible());
    const QRect place(field->mapToGlobal(QPoint(0, 0)), field->size());
    QVERIFY(!keypad->geometry().intersects(place)); // the keypad does not cover its field
    QVERIFY(QApplication::primaryScreen()->geometry().contains(keypad->geometry()));
    page.ok(); // back to the main page
    QVERIFY(!keypad->isVisible());
}

PANEL_QTEST_MAIN(TestEthernetPage)
#include "tst_ethernetpage.moc"
