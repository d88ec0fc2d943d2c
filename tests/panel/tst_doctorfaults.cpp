// talmero-doctor reports any fault of a tool, and changes nothing on the panel.

#include "diskfiles.h"
#include "doctorrun.h"
#include "faketools.h"
#include "panelguard.h"

#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>

namespace {
constexpr int hangingLimit = 6000; // ms for a run that ends each tool after 0.7 s

/// The tools that the doctor may run. It must never run others, such as xCal or hwclock.
const QStringList askedTools{"xrandr",  "xinput", "xset",     "ifconfig",
                             "du",      "date",   "dhclient", "sleep",
                             "ifquery", "tar",    "fc-list",  "talmero-guard"};
} // namespace

class TestDoctorFaults : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { requirePanel(); }
    void brokenAnswer_data();
    void brokenAnswer();
    void allToolsHang();
    void allToolsMisbehave_data();
    void allToolsMisbehave();
    void changesNothing();
};

void TestDoctorFaults::brokenAnswer_data()
{
    QTest::addColumn<QString>("tool");
    QTest::addColumn<QString>("body");
    QTest::addColumn<QByteArrayList>("lines");
    QTest::newRow("current ifconfig")
        << "ifconfig" << todaysIfconfig
        << QByteArrayList{
               "error    ifconfig: what ifconfig prints of eth0 is not in the classic format",
               "error    ifconfig: what ifconfig prints of eth1 is not in the classic format",
               "error    interface list: \"ifconfig\" lists no hardware address"};
    QTest::newRow("BusyBox's tar")
        << "tar"
        << "exec busybox tar \"$@\""
        << QByteArrayList{"warning  unpacking: tar unpacks a sample package but is not GNU tar"};
    QTest::newRow("tar without gzip")
        << "tar"
        << "[ $1 = --version ] && exec /usr/bin/tar --version; exit 0"
        << QByteArrayList{"error    unpacking: tar did not unpack a sample package"};
    QTest::newRow("BusyBox's du") << "du"
                                  << "exec busybox du \"$@\"" << QByteArrayList();
    QTest::newRow("BusyBox's date") << "date"
                                    << "exec busybox date \"$@\"" << QByteArrayList();
    QTest::newRow("BusyBox's sleep") << "sleep"
                                     << "exec busybox sleep \"$@\"" << QByteArrayList();
    QTest::newRow("other touch controller")
        << "xinput"
        << "exec /usr/bin/xinput \"$@\" | sed s/PenMount/EloTouch/"
        << QByteArrayList{"error    touch: no input device has \"PenMount\" in its name"};
    QTest::newRow("missing interpreter")
        << "dhclient"
        << "" << QByteArrayList{"error    DHCP client: \"dhclient --version\" cannot be started"};
}

void TestDoctorFaults::brokenAnswer()
{
    QFETCH(QString, tool);
    QFETCH(QString, body);
    QFETCH(QByteArrayList, lines);
    const FakeTools tools({tool});
    if (body.isEmpty()) {
        const QByteArray path = qgetenv("PATH");
        writeFile(path.left(path.indexOf(':')) + '/' + tool.toUtf8(), "#!/no/such/shell\n");
    } else {
        tools.setBody(tool, body);
    }
    const ToolRun text = runDoctor();
    const QByteArrayList complaints = complaintsIn(text.output);
    QVERIFY2(complaints.size() == lines.size(), text.output.constData());
    for (qsizetype index = 0; index < lines.size(); ++index) {
        QVERIFY2(complaints.at(index).startsWith(lines.at(index)),
                 complaints.at(index).constData());
    }
}

void TestDoctorFaults::allToolsHang()
{
    const FakeTools tools(askedTools);
    for (const QString &tool : askedTools) {
        tools.setBody(tool, "trap '' TERM; echo part; exec /usr/bin/sleep 60");
    }
    const ToolRun text = runDoctor({"--limit", "0.7"});
    QVERIFY2(text.time < hangingLimit, QByteArray::number(text.time));
    QCOMPARE(text.status, 2);
    QCOMPARE(text.errors, QByteArray());
    for (const QString &tool : askedTools) {
        const QRegularExpression line(
            QString("\n(error|warning) +[^\n]*\"%1[^\n\"]*\" hangs: no answer within 0.7 s")
                .arg(tool));
        QVERIFY2(line.match(QString::fromLatin1(text.output)).hasMatch(), text.output.constData());
    }
}

void TestDoctorFaults::allToolsMisbehave_data()
{
    QTest::addColumn<QString>("body");
    QTest::newRow("fail") << "echo broken >&2; exit 1";
    QTest::newRow("are killed") << "kill -9 $$";
    QTest::newRow("print nothing") << "exit 0";
    QTest::newRow("print 10 MB") << "/usr/bin/head -c 10000000 /dev/zero | /usr/bin/tr '\\0' 'x'";
    QTest::newRow("print binary")
        << "/usr/bin/head -c 50000 /bin/sh; /usr/bin/head -c 50000 /bin/sh >&2";
    QTest::newRow("print forever") << "exec /usr/bin/yes eth0";
    QTest::newRow("print errors forever") << "exec /usr/bin/yes eth0 >&2";
}

/// The report stays complete, and plain text.
void TestDoctorFaults::allToolsMisbehave()
{
    QFETCH(QString, body);
    const FakeTools tools(askedTools);
    for (const QString &tool : askedTools) {
        tools.setBody(tool, body);
    }
    const ToolRun text = runDoctor();
    QCOMPARE(text.status, 2);
    QCOMPARE(text.errors, QByteArray());
    QVERIFY(complaintsIn(text.output).size() >= 8);
    static const QRegularExpression plain("\\A(?:(?:ok     |warning|error  )  [ -~]{1,400}\n)+\\z");
    QVERIFY2(plain.match(QString::fromLatin1(text.output)).hasMatch(), text.output.constData());
}

/// The tools only answer questions. They run in parallel, so each stand-in logs with one write.
void TestDoctorFaults::changesNothing()
{
    const QStringList all
        = askedTools + QStringList{"beep", "hwclock", "mv", "rm", "sync", "xCal", "ifup", "ifdown"};
    const FakeTools tools(all);
    const QTemporaryDir folder;
    writeFile("/usr/bin/talmero-guard",
              "#!/bin/sh\necho watch=yes\n"); // not in the simulated panel
    shellBytes("chmod +x /usr/bin/talmero-guard");
    for (const QString &tool : all) {
        tools.setBody(tool,
                      QString("printf '%s\\n' \"%1 $*\" >>'%2'; exec /usr/bin/env "
                              "PATH=/usr/sbin:/usr/bin %1 \"$@\"")
                          .arg(tool, folder.filePath("log")));
    }
    const char files[] = "find /etc /opt /home /media /var/lib/dhcp /run/lock /tmp -maxdepth 3 "
                         "! -path /tmp ! -path '/tmp/tst_*' -printf '%p %s %T@ %C@ %m\\n' | sort";
    const QByteArray before = shellBytes(files);
    QCOMPARE(complaintsIn(runDoctor().output), QByteArrayList());
    QByteArrayList asked = readFile(folder.filePath("log").toUtf8()).trimmed().split('\n');
    std::sort(asked.begin(), asked.end());
    QCOMPARE(asked.removeIf([](const QByteArray &line) {
        return line.startsWith("tar -zxvf /tmp/talmero-doctor-") && line.endsWith("/sample.tar.gz");
    }),
             1);
    QCOMPARE(
        asked,
        (QByteArrayList{"date +%s", "dhclient --version", "du -h /home/dest/", "fc-list : family",
                        "ifconfig ", "ifconfig eth0", "ifconfig eth1", "ifquery --list",
                        "sleep 0.2", "talmero-guard status", "tar --version",
                        "xinput --list --name-only", "xinput query-state PenMount USB Touchscreen",
                        "xrandr --verbose", "xrandr -q", "xset q"}));
    QCOMPARE(shellBytes(files), before);
}

QTEST_GUILESS_MAIN(TestDoctorFaults)
#include "tst_doctorfaults.moc"
