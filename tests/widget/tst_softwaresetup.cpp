#include "factory/softwaresetup.h"

#include "factory/colorblending.h"
#include "factory/linktest.h"
#include "factorywindow.h"
#include "panelfiles.h"
#include "panelguard.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QDateTimeEdit>
#include <QDialogButtonBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMetaMethod>
#include <QProcess>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSpinBox>
#include <QStackedWidget>
#include <QTest>
#include <QTextEdit>

namespace {
const QStringList saveTools{"mv", "rm", "date", "hwclock", "ifconfig"};
constexpr char rulesFolder[] = "/etc/udev/rules.d";
constexpr char rulesFile[] = "/etc/udev/rules.d/70-persistent-net.rules";

QString rule(const QString &address, int number)
{
    return QString("SUBSYSTEM==\"net\", ACTION==\"add\", DRIVERS==\"?*\", ATTR{address}==\"")
        + address
        + QString("\", ATTR{dev_id}==\"0x0\", ATTR{type}==\"1\", KERNEL==\"eth*\", NAME=\"eth%1\""
                  " \n   ")
              .arg(number);
}

QByteArray rulesText()
{
    QFile file(rulesFile);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
}

void writeRules(const QByteArray &text)
{
    QFile file(rulesFile);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(text);
}

QString widgetText(const QWidget *widget)
{
    if (const auto *label = qobject_cast<const QLabel *>(widget)) {
        return label->text();
    }
    if (const auto *button = qobject_cast<const QPushButton *>(widget)) {
        return '[' + button->text() + ']';
    }
    if (const auto *box = qobject_cast<const QSpinBox *>(widget)) {
        return QString("%1 (%2..%3)").arg(box->text()).arg(box->minimum()).arg(box->maximum());
    }
    if (const auto *list = qobject_cast<const QComboBox *>(widget)) {
        QStringList items;
        for (int entry = 0; entry < list->count(); ++entry) {
            items += list->itemText(entry);
        }
        return items.join('/');
    }
    if (const auto *edit = qobject_cast<const QLineEdit *>(widget)) {
        return edit->text();
    }
    return widget->metaObject()->className();
}

/// The rows of a page, each as the texts of its widgets.
QStringList rowTexts(const QWidget *viewport)
{
    QStringList rows;
    for (int index = 0; index < viewport->layout()->count(); ++index) {
        QLayoutItem *item = viewport->layout()->itemAt(index);
        if (item->layout() == nullptr) {
            rows += widgetText(item->widget());
            continue;
        }
        QStringList texts;
        for (int column = 0; column < item->layout()->count(); ++column) {
            texts += widgetText(item->layout()->itemAt(column)->widget());
        }
        rows += texts.join(' ');
    }
    return rows;
}
} // namespace

class TestSoftwareSetup : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void startsWithACalibration();
    void slotsKeepTheirOrder();
    void builtWindow();
    void builtPages();
    void everythingFits();
    void testLeadsToTheTestPage();
    void closeEndsTheProgram();
    void saveRunsInOrder();
    void savedTime();
    void typeDecidesOnTheSession_data();
    void typeDecidesOnTheSession();
    void realToolsMoveAndRemove();
    void namesInterfaces_data();
    void namesInterfaces();
    void toolsThatFail_data();
    void toolsThatFail();
    void hangingListLeavesTheOldRules();
    void missingTools();
    void rulesThatCannotBeWritten_data();
    void rulesThatCannotBeWritten();
    void modelThatCannotBeWritten();
};

void TestSoftwareSetup::initTestCase()
{
    requirePanel();
}

void TestSoftwareSetup::init()
{
    QDir().mkpath(rulesFolder);
    writeRules("old\n");
    writePanelFile("model", "old\n");
}

void TestSoftwareSetup::startsWithACalibration()
{
    const FakeTools tools({"sleep", "xCal"});
    const SoftwareSetup window;
    QCOMPARE(tools.calls(), (QStringList{"sleep [2]", "xCal"}));
}

void TestSoftwareSetup::slotsKeepTheirOrder()
{
    QStringList names;
    const QMetaObject &meta = SoftwareSetup::staticMetaObject;
    for (int index = meta.methodOffset(); index < meta.methodCount(); ++index) {
        QCOMPARE(meta.method(index).methodType(), QMetaMethod::Slot);
        names += meta.method(index).methodSignature();
    }
    QCOMPARE(
        names,
        (QStringList{"slotAccept()", "slotReject()", "slotAction(QAbstractButton*)", "slotTest()",
                     "slotBuzzerTest()", "slotBuzzerTest2()", "slotBuzzerTest3()",
                     "slotBrightnessTest(int)", "slotCOM232Test()", "slotCOMEcho()",
                     "slotEtherTest()", "slotEtherEcho()", "slotPixelTest()"}));
}

void TestSoftwareSetup::builtWindow()
{
    const FactoryWindow factory;
    const QWidget *window = factory.window();
    QCOMPARE(window->minimumSize(), QSize(800, 600));
    QCOMPARE(window->maximumSize(), QSize(800, 600));
    QCOMPARE(window->font().pointSize(), 15);
    QCOMPARE(window->layout()->count(), 2);
    QVERIFY(qobject_cast<QHBoxLayout *>(window->layout()) != nullptr);
    const auto *pages = qobject_cast<QStackedWidget *>(window->layout()->itemAt(0)->widget());
    QVERIFY(pages != nullptr);
    QCOMPARE(pages->count(), 2);
    QCOMPARE(pages->currentIndex(), 0);
    for (int index = 0; index < 2; ++index) {
        const auto *page = qobject_cast<QScrollArea *>(pages->widget(index));
        QVERIFY(page != nullptr && page->widget() == nullptr);
        QVERIFY(qobject_cast<QVBoxLayout *>(page->viewport()->layout()) != nullptr);
    }
    const auto *buttons = qobject_cast<QDialogButtonBox *>(window->layout()->itemAt(1)->widget());
    QVERIFY(buttons != nullptr);
    QCOMPARE(buttons->orientation(), Qt::Vertical);
    QCOMPARE(buttons->buttons().size(), 3);
    QCOMPARE(buttons->buttonRole(factory.button("Save")), QDialogButtonBox::AcceptRole);
    QCOMPARE(buttons->buttonRole(factory.button("Test")), QDialogButtonBox::ActionRole);
    QCOMPARE(buttons->button(QDialogButtonBox::Close), factory.button("Close"));
}

void TestSoftwareSetup::builtPages()
{
    const FactoryWindow factory;
    QCOMPARE(
        rowTexts(factory.page(0)),
        (QStringList{"Model: K25T/K21T/K25/K21/K07", "Type: Panel PC/HMI", "Time: QDateTimeEdit"}));
    QCOMPARE(rowTexts(factory.page(1)),
             (QStringList{"Buzzer: [Beep]", "Buzzer: 100 KHz (100..20000) 30 ms (30..5000) [Beep]",
                          "Buzzer: [Beep f:2900 t:1000] [Beep f:2700 t:100] [Beep f:2900 t:100]",
                          "Brightness: 100%/80%/60%/40%/20%/10%", "Color Test", "ColorBlending",
                          "[Pixel Test]", "COM Port test: [COM1 RS232] [COM2 RS232] [COM3 RS232]",
                          "Ether Port test: [Eth0] [Eth1]", "192.168.0.30:33", "QTextEdit"}));
    for (const QComboBox *box : factory.window()->findChildren<QComboBox *>()) {
        QCOMPARE(box->currentIndex(), 0);
    }
    const QDateTime time = factory.window()->findChild<QDateTimeEdit *>()->dateTime();
    QVERIFY(qAbs(time.secsTo(QDateTime::currentDateTime())) < 10);
    for (int number = 1; number <= 3; ++number) {
        QCOMPARE(factory.button(QString("COM%1 RS232").arg(number))->property("comtest"),
                 QVariant(QString("%1-232").arg(number)));
    }
    QCOMPARE(factory.button("Eth0")->property("ethtest"), QVariant("1-ether"));
    QCOMPARE(factory.button("Eth1")->property("ethtest"), QVariant("2-ether"));
    QCOMPARE(factory.window()->findChild<ColorBlending *>()->minimumHeight(), 100);
}

void TestSoftwareSetup::everythingFits()
{
    const FactoryWindow factory;
    for (int page = 0; page < 2; ++page) {
        const QWidget *viewport = factory.page(page);
        QCOMPARE(factory.window()->findChild<QStackedWidget *>()->currentIndex(), page);
        for (const auto *widget :
             viewport->findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly)) {
            QVERIFY2(viewport->rect().contains(widget->geometry()), qPrintable(widgetText(widget)));
            QVERIFY2(widget->width() >= widget->minimumSizeHint().width()
                         && widget->height() >= widget->minimumSizeHint().height(),
                     widget->metaObject()->className());
            if (const auto *button = qobject_cast<const QPushButton *>(widget)) {
                QVERIFY2(button->height() >= 30 && button->width() >= button->sizeHint().width(),
                         qPrintable(button->text()));
            }
        }
        factory.click("Test");
    }
    auto *view = factory.window()->findChild<QTextEdit *>("resultView");
    view->setPlainText(serialPayload("/dev/ttyS0", linkTestCharacters) + '\n' + QString(38, '-')
                       + "\nTest Fail!");
    QVERIFY(!view->verticalScrollBar()->isVisible()); // a whole test is in sight
}

void TestSoftwareSetup::testLeadsToTheTestPage()
{
    const FactoryWindow factory;
    const auto *pages = factory.window()->findChild<QStackedWidget *>();
    QWidget other;
    other.show();
    QVERIFY(QTest::qWaitForWindowExposed(&other));
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    factory.window()->slotAction(factory.button("Beep"));
    QCOMPARE(pages->currentIndex(), 0);
    factory.click("Test");
    QCOMPARE(pages->currentIndex(), 1);
    QVERIFY(QTest::qWaitForWindowActive(factory.window()));
    factory.click("Test");
    QCOMPARE(pages->currentIndex(), 1);
    QCOMPARE(factory.calls(), QStringList());
}

void TestSoftwareSetup::closeEndsTheProgram()
{
    const FactoryWindow factory;
    QMetaObject::invokeMethod(
        factory.window(), [&factory] { factory.click("Close"); }, Qt::QueuedConnection);
    QCOMPARE(QCoreApplication::exec(), 0);
}

void TestSoftwareSetup::saveRunsInOrder()
{
    const FactoryWindow factory(saveTools);
    factory.tools().setBody("date", "cat /opt/talmero/bios/model >>/run/model-at-date");
    factory.tools().setBody("ifconfig", "echo 'eth0 Link encap:Ethernet  HWaddr 00:01  '");
    factory.page(0)->findChildren<QComboBox *>().at(0)->setCurrentText("K07");
    auto *time = factory.window()->findChild<QDateTimeEdit *>();
    time->setDateTime(QDateTime(QDate(2015, 8, 31), QTime(16, 26, 59)));
    const QStringList run{"mv [/root/.xinitrc] [/root/xinitrc]",
                          "rm [/opt/talmero/bios/model]",
                          "date [083116262015]",
                          "hwclock [-w]",
                          "ifconfig",
                          "rm [/etc/udev/rules.d/70-persistent-net.rules]"};
    factory.click("Save");
    QCOMPARE(factory.calls(), run);
    factory.click("Save"); // as often as one likes
    QCOMPARE(factory.calls(), run + run);
    QCOMPARE(readPanelFile("model"), QByteArray("K07"));
    QCOMPARE(rulesText(), rule("00:01", 0).toLatin1());
    QCOMPARE(factory.window()->findChild<QStackedWidget *>()->currentIndex(), 0);
    QFile atDate("/run/model-at-date");
    QVERIFY(atDate.open(QIODevice::ReadOnly));
    QCOMPARE(atDate.readAll(), QByteArray("K07K07")); // stored before the clock is set
}

void TestSoftwareSetup::savedTime()
{
    const FactoryWindow factory(saveTools);
    factory.window()->findChild<QDateTimeEdit *>()->setDateTime(
        QDateTime(QDate(2038, 1, 2), QTime(0, 5)));
    factory.click("Save");
    QVERIFY(factory.calls().contains("date [010200052038]"));
}

void TestSoftwareSetup::typeDecidesOnTheSession_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<int>("moves");
    QTest::newRow("Panel PC") << "Panel PC" << 1;
    QTest::newRow("HMI") << "HMI" << 0;
}

void TestSoftwareSetup::typeDecidesOnTheSession()
{
    QFETCH(QString, type);
    QFETCH(int, moves);
    const FactoryWindow factory(saveTools);
    factory.page(0)->findChildren<QComboBox *>().at(1)->setCurrentText(type);
    factory.click("Save");
    QCOMPARE(factory.calls().filter("mv [").size(), moves);
    QCOMPARE(readPanelFile("model"), QByteArray("K25T"));
}

void TestSoftwareSetup::realToolsMoveAndRemove()
{
    for (const char *path : {"/root/.xinitrc", "/root/xinitrc"}) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(path);
    }
    const FactoryWindow factory({"date", "hwclock"});
    factory.click("Save");
    QVERIFY(!QFile::exists("/root/.xinitrc"));
    QFile moved("/root/xinitrc");
    QVERIFY(moved.open(QIODevice::ReadOnly));
    QCOMPARE(moved.readAll(), QByteArray("/root/.xinitrc"));
    QCOMPARE(readPanelFile("model"), QByteArray("K25T"));
    QCOMPARE(rulesText(), (rule("02:00:00:00:00:01", 0) + rule("02:00:00:00:00:02", 1)).toLatin1());
}

void TestSoftwareSetup::namesInterfaces_data()
{
    QTest::addColumn<QString>("ifconfig");
    QTest::addColumn<QString>("rules");
    QTest::newRow("none") << "lo Link encap:Local Loopback" << QString();
    QTest::newRow("two, sorted as text")
        << "eth0 HWaddr 00:aa:00:00:00:01  \nx\neth1 HWaddr 00:1B:00:00:00:02  "
        << rule("00:1B:00:00:00:02", 0) + rule("00:aa:00:00:00:01", 1);
    QTest::newRow("equal") << "a HWaddr 00:01\nb HWaddr 00:01"
                           << rule("00:01", 0) + rule("00:01", 1);
    QTest::newRow("text behind") << "a HWaddr 00:01  up \t and  running"
                                 << rule("00:01 up and running", 0);
    QTest::newRow("any interface, any case of the name")
        << "wlan0 hwaddr 00:03\ntun7 HWaddr00:02\nbr0 HWaddr" << rule("", 0) + rule("00:02", 1);
    QTest::newRow("five") << "1 HWaddr e\n2 HWaddr d\n3 HWaddr c\n4 HWaddr b\n5 HWaddr a"
                          << rule("a", 0) + rule("b", 1) + rule("c", 2) + rule("d", 3)
            + rule("e", 4);
}

void TestSoftwareSetup::namesInterfaces()
{
    QFETCH(QString, ifconfig);
    QFETCH(QString, rules);
    const FactoryWindow factory({"mv", "date", "hwclock", "ifconfig"});
    factory.tools().setBody("ifconfig", "cat <<'END'\n" + ifconfig + "\nEND");
    factory.click("Save");
    QCOMPARE(rulesText(), rules.toLatin1());
}

void TestSoftwareSetup::toolsThatFail_data()
{
    QTest::addColumn<QString>("body");
    QTest::newRow("exit status") << "exit 1";
    QTest::newRow("killed") << "kill -KILL $$";
}

void TestSoftwareSetup::toolsThatFail()
{
    QFETCH(QString, body);
    const FactoryWindow factory(saveTools);
    for (const QString &tool : saveTools) {
        factory.tools().setBody(tool, body);
    }
    factory.click("Save");
    QCOMPARE(factory.calls().size(), 6);
    QCOMPARE(readPanelFile("model"), QByteArray("K25T"));
    QCOMPARE(rulesText(), QByteArray()); // it listed nothing
}

void TestSoftwareSetup::hangingListLeavesTheOldRules()
{
    const FactoryWindow factory(saveTools);
    factory.tools().setBody("ifconfig", "echo 'eth0 HWaddr 00:01'; exec /usr/bin/sleep 300");
    QElapsedTimer timer;
    timer.start();
    factory.click("Save");
    QVERIFY2(timer.elapsed() >= 10000 && timer.elapsed() < 12500,
             qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(factory.calls().last(), QString("ifconfig"));
    QCOMPARE(rulesText(), QByteArray("old\n"));
    QCOMPARE(readPanelFile("model"), QByteArray("K25T"));
}

void TestSoftwareSetup::missingTools()
{
    const FactoryWindow factory;
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", "/nonexistent");
    factory.click("Save");
    qputenv("PATH", path);
    QCOMPARE(readPanelFile("model"), QByteArray("K25T"));
    QCOMPARE(rulesText(), QByteArray("old\n"));
}

void TestSoftwareSetup::rulesThatCannotBeWritten_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QString>("mend");
    QTest::addColumn<QByteArray>("left");
    const QString folder = rulesFolder;
    QTest::newRow("folder missing") << "rm -r " + folder << "true" << QByteArray("no file");
    QTest::newRow("folder is a file")
        << "rm -r " + folder + " && touch " + folder << "rm " + folder << QByteArray("no file");
    QTest::newRow("read-only file system") << "mount --bind " + folder
            + " /mnt && mount -o remount,bind,ro /mnt && mount --move /mnt "
            + folder << "umount " + folder << QByteArray("old\n");
}

void TestSoftwareSetup::rulesThatCannotBeWritten()
{
    QFETCH(QString, fault);
    QFETCH(QString, mend);
    QFETCH(QByteArray, left);
    const FactoryWindow factory({"mv", "date", "hwclock"});
    QCOMPARE(QProcess::execute("sh", {"-c", fault}), 0);
    factory.click("Save");
    const QByteArray rules = rulesText();
    QCOMPARE(QProcess::execute("sh", {"-c", mend}), 0);
    QCOMPARE(rules, left);
    QCOMPARE(readPanelFile("model"), QByteArray("K25T"));
}

void TestSoftwareSetup::modelThatCannotBeWritten()
{
    const FactoryWindow factory({"mv", "date", "hwclock", "ifconfig"});
    putFolderAtPanelFile("model");
    factory.click("Save");
    removePanelFile("model");
    QCOMPARE(factory.calls().size(), 4); // all the rest is done
    QCOMPARE(rulesText(), QByteArray());
}

QTEST_MAIN(TestSoftwareSetup)
#include "tst_softwaresetup.moc"
