#include "factory/softwaresetup.h"

#include "diskfiles.h"
#include "factorywindow.h"
#include "panelfiles.h"
#include "panelguard.h"

#include <QComboBox>
#include <QDateTimeEdit>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QStackedWidget>
#include <QTest>

using namespace std::chrono_literals;

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
} // namespace

class TestFactorySave : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void saveRunsInOrder();
    void savedTime();
    void typeSelectsTheSession_data();
    void typeSelectsTheSession();
    void realToolsMoveAndRemove();
    void namesInterfaces_data();
    void namesInterfaces();
    void toolsThatFail_data();
    void toolsThatFail();
    void hangingListLeavesTheOldRules();
    void missingTools();
    void unwritableRules_data();
    void unwritableRules();
    void rulesAreWrittenInPlace_data();
    void rulesAreWrittenInPlace();
    void unwritableModel();
};

void TestFactorySave::initTestCase()
{
    requirePanel();
}

void TestFactorySave::init()
{
    QDir().mkpath(rulesFolder);
    writeRules("old\n");
    writePanelFile("model", "old\n");
}

void TestFactorySave::saveRunsInOrder()
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
    factory.click("Save"); // saving works more than once
    QCOMPARE(factory.calls(), run + run);
    QCOMPARE(readPanelFile("model"), QByteArray("K07"));
    QCOMPARE(rulesText(), rule("00:01", 0).toLatin1());
    QCOMPARE(factory.window()->findChild<QStackedWidget *>()->currentIndex(), 0);
    QFile atDate("/run/model-at-date");
    QVERIFY(atDate.open(QIODevice::ReadOnly));
    QCOMPARE(atDate.readAll(), QByteArray("K07K07")); // the model is stored before the clock is set
}

void TestFactorySave::savedTime()
{
    const FactoryWindow factory(saveTools);
    factory.window()->findChild<QDateTimeEdit *>()->setDateTime(
        QDateTime(QDate(2038, 1, 2), QTime(0, 5)));
    factory.click("Save");
    QVERIFY(factory.calls().contains("date [010200052038]"));
}

void TestFactorySave::typeSelectsTheSession_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<int>("moves");
    QTest::newRow("Panel PC") << "Panel PC" << 1;
    QTest::newRow("HMI") << "HMI" << 0;
}

void TestFactorySave::typeSelectsTheSession()
{
    QFETCH(QString, type);
    QFETCH(int, moves);
    const FactoryWindow factory(saveTools);
    factory.page(0)->findChildren<QComboBox *>().at(1)->setCurrentText(type);
    factory.click("Save");
    QCOMPARE(factory.calls().filter("mv [").size(), moves);
    QCOMPARE(readPanelFile("model"), QByteArray("K25T"));
}

void TestFactorySave::realToolsMoveAndRemove()
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

void TestFactorySave::namesInterfaces_data()
{
    QTest::addColumn<QString>("ifconfig");
    QTest::addColumn<QString>("rules");
    QTest::newRow("none") << "lo Link encap:Local Loopback" << QString();
    QTest::newRow("two, sorted as text")
        << "eth0 HWaddr 00:aa:00:00:00:01  \nx\neth1 HWaddr 00:1B:00:00:00:02  "
        << rule("00:1B:00:00:00:02", 0) + rule("00:aa:00:00:00:01", 1);
    QTest::newRow("equal") << "a HWaddr 00:01\nb HWaddr 00:01"
                           << rule("00:01", 0) + rule("00:01", 1);
    QTest::newRow("trailing text")
        << "a HWaddr 00:01  up \t and  running" << rule("00:01 up and running", 0);
    QTest::newRow("any interface, any case of the name")
        << "wlan0 hwaddr 00:03\ntun7 HWaddr00:02\nbr0 HWaddr" << rule("", 0) + rule("00:02", 1);
    QTest::newRow("five") << "1 HWaddr e\n2 HWaddr d\n3 HWaddr c\n4 HWaddr b\n5 HWaddr a"
                          << rule("a", 0) + rule("b", 1) + rule("c", 2) + rule("d", 3)
            + rule("e", 4);
}

void TestFactorySave::namesInterfaces()
{
    QFETCH(QString, ifconfig);
    QFETCH(QString, rules);
    const FactoryWindow factory({"mv", "date", "hwclock", "ifconfig"});
    factory.tools().setBody("ifconfig", "cat <<'END'\n" + ifconfig + "\nEND");
    factory.click("Save");
    QCOMPARE(rulesText(), rules.toLatin1());
}

void TestFactorySave::toolsThatFail_data()
{
    QTest::addColumn<QString>("body");
    QTest::newRow("exit status") << "exit 1";
    QTest::newRow("killed") << "kill -KILL $$";
}

void TestFactorySave::toolsThatFail()
{
    QFETCH(QString, body);
    const FactoryWindow factory(saveTools);
    for (const QString &tool : saveTools) {
        factory.tools().setBody(tool, body);
    }
    factory.click("Save");
    QCOMPARE(factory.calls().size(), 6);
    QCOMPARE(readPanelFile("model"), QByteArray("K25T"));
    QCOMPARE(rulesText(), QByteArray()); // the failing tool listed no address
}

void TestFactorySave::hangingListLeavesTheOldRules()
{
    const FactoryWindow factory(saveTools, {.interfaceList = 700ms});
    factory.tools().setBody("ifconfig", "echo 'eth0 HWaddr 00:01'; exec /usr/bin/sleep 300");
    QElapsedTimer timer;
    timer.start();
    factory.click("Save");
    QVERIFY2(timer.elapsed() >= 700 && timer.elapsed() < 10000,
             qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(factory.calls().last(), QString("ifconfig"));
    QCOMPARE(rulesText(), QByteArray("old\n"));
    QCOMPARE(readPanelFile("model"), QByteArray("K25T"));
}

void TestFactorySave::missingTools()
{
    const FactoryWindow factory;
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", "/nonexistent");
    factory.click("Save");
    qputenv("PATH", path);
    QCOMPARE(readPanelFile("model"), QByteArray("K25T"));
    QCOMPARE(rulesText(), QByteArray("old\n"));
}

void TestFactorySave::unwritableRules_data()
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

void TestFactorySave::unwritableRules()
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

void TestFactorySave::rulesAreWrittenInPlace_data()
{
    QTest::addColumn<QString>("readOnly"); // shell commands before the file is mounted
    QTest::newRow("writable folder") << "";
    QTest::newRow("read-only folder") << "mount --bind . .; cd $PWD; mount -o remount,bind,ro .; ";
}

/// The real rm fails on a mounted file.
void TestFactorySave::rulesAreWrittenInPlace()
{
    QFETCH(QString, readOnly);
    const FactoryWindow factory({"mv", "date", "hwclock", "ifconfig"});
    factory.tools().setBody("ifconfig", "echo 'eth0 Link encap:Ethernet  HWaddr 00:01  '");
    const QString inFolder = QString("cd %1; ").arg(rulesFolder);
    shellBytes(inFolder + readOnly
               + QString("echo old >/run/kept; chown 7:8 /run/kept; chmod 600 /run/kept; "
                         "mount --bind /run/kept %1")
                     .arg(rulesFile));
    factory.click("Save");
    const QByteArray rules = rulesText();
    const QByteArray names = shellBytes(inFolder + "ls -A");
    shellBytes(
        QString("umount %1; mountpoint -q %2 && umount %2 || true").arg(rulesFile, rulesFolder));
    QCOMPARE(rules, rule("00:01", 0).toLatin1());
    QCOMPARE(shellBytes("cat /run/kept"), rules);
    QCOMPARE(shellBytes("stat -c %u:%g:%a /run/kept"), QByteArray("7:8:600\n"));
    QCOMPARE(shellBytes(inFolder + "ls -A"), names); // no temporary file is left
}

void TestFactorySave::unwritableModel()
{
    const FactoryWindow factory({"mv", "date", "hwclock", "ifconfig"});
    putFolderAtPanelFile("model");
    factory.click("Save");
    removePanelFile("model");
    QCOMPARE(factory.calls().size(), 4); // all other steps run
    QCOMPARE(rulesText(), QByteArray());
}

QTEST_MAIN(TestFactorySave)
#include "tst_factorysave.moc"
