// talmero-doctor on the simulated panel: healthy, and with one thing after the other broken.

#include "diskfiles.h"
#include "faketools.h"
#include "faultfiles.h"
#include "panelguard.h"
#include "report.h"
#include "system/paths.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <memory>

namespace {
constexpr int healthyLimit = 2000; // ms
constexpr int hangingLimit = 8000; // ms for a run in which every tool is cut off after a second

/// Those that the doctor runs. xCal, hwclock and others it must never run.
const QStringList askedTools{"xrandr",   "xinput", "xset",    "ifconfig", "du",     "date",
                             "dhclient", "sleep",  "ifquery", "tar",      "fc-list"};

/// An ifconfig of today.
constexpr char todaysIfconfig[]
    = "printf '%s: flags=4163<UP>  mtu 1500\\n' eth0\n"
      "printf '        inet 192.168.0.5  netmask 255.255.255.0\\n'\n"
      "printf '        ether 02:00:00:00:00:01  txqueuelen 1000  (Ethernet)\\n'\n";

/// One run of the tool.
struct Run
{
    int status = -1;
    QByteArray output;
    QByteArray errors;
    qint64 time = 0; ///< ms
};

Run run(const QStringList &command)
{
    QElapsedTimer timer;
    timer.start();
    QProcess process;
    process.start(command.first(), command.mid(1));
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit) {
        qFatal("talmero-doctor crashes or hangs");
    }
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError(),
            timer.elapsed()};
}

Run doctor(const QStringList &arguments = {})
{
    return run(QStringList{DOCTOR} + arguments);
}

QByteArrayList complaintsIn(const QByteArray &report)
{
    QByteArrayList complaints;
    for (const QByteArray &line : report.split('\n')) {
        if (!line.isEmpty() && !line.startsWith("ok ")) {
            complaints += line;
        }
    }
    return complaints;
}

/// A document's lines that are indented by four blanks.
QByteArray indented(const QByteArray &text)
{
    QByteArray lines = "    " + text.trimmed();
    return lines.replace("\n", "\n    ");
}

/// Something that is broken on the panel itself.
struct Break
{
    const char *name;
    const char *breakIt; ///< shell text
    const char *repairIt;
    const char *line; ///< the beginning of the one complaint
    int status;
};

constexpr Break breaks[] = {
    {"missing tool", "mv /usr/bin/xCal /usr/bin/aside", "mv /usr/bin/aside /usr/bin/xCal",
     "error    tool xCal: not on PATH", 2},
    {"tool that is not executable", "chmod -x /usr/bin/beep", "chmod +x /usr/bin/beep",
     "warning  tool beep: not on PATH, or not executable", 1},
    {"dark", "echo bios.brightness=0 >/opt/talmero/bios/bios.ini", "",
     "warning  settings: line 1: bios.brightness=0 makes the panel dark", 1},
    {"key that a terminal would obey",
     "printf 'app.\\033]0;x\\007\\377=1\\n' >/opt/talmero/bios/bios.ini", "",
     "warning  settings: line 1: app.\\x1b]0;x\\x07\\xff=1 is a key", 1},
    {"settings file is a pipe", "cd /opt/talmero/bios; rm bios.ini; mkfifo bios.ini",
     "rm /opt/talmero/bios/bios.ini",
     "error    settings file: /opt/talmero/bios/bios.ini is no file", 2},
    {"no model", "rm /opt/talmero/bios/model", "echo RV-K21T >/opt/talmero/bios/model",
     "warning  version files: /opt/talmero/bios/model is not there", 1},
    {"broken runtime script", "echo 'if' >>/opt/talmero/bios/runapp.sh",
     "echo : >/opt/talmero/bios/runapp.sh",
     "error    runtime script: \"/bin/sh -n /opt/talmero/bios/runapp.sh\" fails with status 2: ",
     2},
    {"file that ifupdown refuses",
     "cp /etc/network/interfaces /run/copy; echo iface eth0 nonsense dhcp "
     ">>/etc/network/interfaces",
     "cp /run/copy /etc/network/interfaces",
     "error    interfaces file: \"ifquery --list\" fails with status 1: ", 2},
    {"no font folder", "mv /usr/share/fonts/truetype/freefont /usr/share/aside",
     "mv /usr/share/aside /usr/share/fonts/truetype/freefont",
     "error    folders: there is no folder /usr/share/fonts/truetype/freefont/", 2},
    {"application folder is a link", "mv /home/dest /home/real; ln -s real /home/dest",
     "rm /home/dest; mv /home/real /home/dest", "error    application: /home/dest is a link", 2},
    {"folder for fonts elsewhere",
     "echo bios.fontsetting.folder=/srv/no >/opt/talmero/bios/bios.ini", "",
     "warning  settings: line 1: bios.fontsetting.folder=/srv/no is no folder now", 1},
    {"factory stick", "touch /media/usb0/talmero_setup", "rm /media/usb0/talmero_setup",
     "warning  stick: /media/usb0/talmero_setup is there", 1},
    {"no third serial port", "mv /dev/ttyS2 /dev/aside", "mv /dev/aside /dev/ttyS2",
     "warning  serial ports: there is no /dev/ttyS2", 1},
    {"empty rules", ": >/etc/udev/rules.d/70-persistent-net.rules",
     "rm /etc/udev/rules.d/70-persistent-net.rules",
     "warning  naming rules: /etc/udev/rules.d/70-persistent-net.rules names no port", 1},
    {"read-only disk", "mount -t tmpfs -o ro x /etc/udev/rules.d", "umount /etc/udev/rules.d",
     "warning  folders: /etc/udev/rules.d cannot be written", 1},
};
} // namespace

class TestDoctor : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanupTestCase();
    void healthyPanel();
    void brokenPanel_data();
    void brokenPanel();
    void brokenAnswer_data();
    void brokenAnswer();
    void allToolsHang();
    void allToolsMisbehave_data();
    void allToolsMisbehave();
    void changesNothing();
    void fullTemporaryFolder();
    void display();
    void ordinaryUser();
    void usage();
    void outputThatIsLost();
    void documentedExamples();
    void documentedReport();

private:
    QByteArray m_settings;
    std::unique_ptr<FakeTools> m_quickSleep; ///< most of the time of a run is a pause
};

void TestDoctor::initTestCase()
{
    requirePanel();
    m_settings = readFile(Paths::settingsFile);
}

void TestDoctor::init()
{
    writeFile(Paths::settingsFile, m_settings);
}

void TestDoctor::cleanupTestCase()
{
    m_quickSleep.reset();
}

void TestDoctor::healthyPanel()
{
    const Run text = doctor();
    QCOMPARE(complaintsIn(text.output), QByteArrayList());
    QCOMPARE(text.errors, QByteArray());
    QCOMPARE(text.status, 0);
    QVERIFY2(text.time < healthyLimit, QByteArray::number(text.time));
    QVERIFY(text.output.count('\n') > 50);

    const Run json = doctor({"--json"});
    QCOMPARE(json.status, 0);
    QCOMPARE(QJsonDocument::fromJson(json.output).object().value("status"), QJsonValue(0));
    m_quickSleep = std::make_unique<FakeTools>(QStringList{"sleep"});
}

void TestDoctor::brokenPanel_data()
{
    QTest::addColumn<qsizetype>("index");
    for (size_t index = 0; index < std::size(breaks); ++index) {
        QTest::newRow(breaks[index].name) << qsizetype(index);
    }
}

void TestDoctor::brokenPanel()
{
    QFETCH(qsizetype, index);
    const Break &broken = breaks[index];
    shellBytes(broken.breakIt);
    const Run text = doctor();
    const Run json = doctor({"--json"});
    shellBytes(broken.repairIt);
    const QByteArrayList complaints = complaintsIn(text.output);
    QVERIFY2(complaints.size() == 1 && complaints.first().startsWith(broken.line),
             complaints.join('\n').constData());
    QVERIFY(complaints.first().contains(" -> "));
    QCOMPARE(text.status, broken.status);
    QCOMPARE(text.errors, QByteArray());

    QCOMPARE(json.status, broken.status);
    Findings findings;
    const QJsonObject object = QJsonDocument::fromJson(json.output).object();
    for (const auto &value : object.value("findings").toArray()) {
        const QJsonObject finding = value.toObject();
        const QString level = finding.value("level").toString();
        // shown() again would escape the backslashes of escapes
        findings += {level == "ok"            ? Level::Ok
                         : level == "warning" ? Level::Warning
                                              : Level::Error,
                     finding.value("found").toString().replace("\\x", "%x"),
                     finding.value("advice").toString(), finding.value("check").toString()};
    }
    QCOMPARE(object.value("status").toInt(), broken.status);
    QCOMPARE(textReport(findings), QByteArray(text.output).replace("\\x", "%x"));
}

void TestDoctor::brokenAnswer_data()
{
    QTest::addColumn<QString>("tool");
    QTest::addColumn<QString>("body");
    QTest::addColumn<QByteArrayList>("lines");
    QTest::newRow("today's ifconfig")
        << "ifconfig" << todaysIfconfig
        << QByteArrayList{
               "error    ifconfig: what ifconfig prints of eth0 is not in the classic format",
               "error    ifconfig: what ifconfig prints of eth1 is not in the classic format",
               "error    interface list: \"ifconfig\" lists no hardware address"};
    QTest::newRow("BusyBox's tar")
        << "tar"
        << "exec busybox tar \"$@\""
        << QByteArrayList{"warning  unpacking: tar unpacks a sample package, but is not GNU tar"};
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
    QTest::newRow("another controller")
        << "xinput"
        << "exec /usr/bin/xinput \"$@\" | sed s/PenMount/EloTouch/"
        << QByteArrayList{"error    touch: no input device has \"PenMount\" in its name"};
    QTest::newRow("no such program")
        << "dhclient"
        << "" << QByteArrayList{"error    DHCP client: \"dhclient --version\" cannot be started"};
}

void TestDoctor::brokenAnswer()
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
    const Run text = doctor();
    const QByteArrayList complaints = complaintsIn(text.output);
    QVERIFY2(complaints.size() == lines.size(), text.output.constData());
    for (qsizetype index = 0; index < lines.size(); ++index) {
        QVERIFY2(complaints.at(index).startsWith(lines.at(index)),
                 complaints.at(index).constData());
    }
}

void TestDoctor::allToolsHang()
{
    const FakeTools tools(askedTools);
    for (const QString &tool : askedTools) {
        tools.setBody(tool, "trap '' TERM; echo part; exec /usr/bin/sleep 60");
    }
    const Run text = doctor({"--limit", "1"});
    QVERIFY2(text.time < hangingLimit, QByteArray::number(text.time));
    QCOMPARE(text.status, 2);
    QCOMPARE(text.errors, QByteArray());
    for (const QString &tool : askedTools) {
        const QRegularExpression line(
            QString("\n(error|warning) +[^\n]*\"%1[^\n\"]*\" hangs: no answer within 1 s")
                .arg(tool));
        QVERIFY2(line.match(QString::fromLatin1(text.output)).hasMatch(), text.output.constData());
    }
}

void TestDoctor::allToolsMisbehave_data()
{
    QTest::addColumn<QString>("body");
    QTest::newRow("fail") << "echo broken >&2; exit 1";
    QTest::newRow("are killed") << "kill -9 $$";
    QTest::newRow("print nothing") << "exit 0";
    QTest::newRow("print 10 MB") << "/usr/bin/head -c 10000000 /dev/zero | /usr/bin/tr '\\0' 'x'";
    QTest::newRow("print binary")
        << "/usr/bin/head -c 50000 /bin/sh; /usr/bin/head -c 50000 /bin/sh >&2";
    QTest::newRow("print without end") << "exec /usr/bin/yes eth0";
    QTest::newRow("complain without end") << "exec /usr/bin/yes eth0 >&2";
}

/// Whatever the tools do, the report is there, and plain text.
void TestDoctor::allToolsMisbehave()
{
    QFETCH(QString, body);
    const FakeTools tools(askedTools);
    for (const QString &tool : askedTools) {
        tools.setBody(tool, body);
    }
    const Run text = doctor();
    QCOMPARE(text.status, 2);
    QCOMPARE(text.errors, QByteArray());
    QVERIFY(complaintsIn(text.output).size() >= 8);
    static const QRegularExpression plain("\\A(?:(?:ok     |warning|error  )  [ -~]{1,400}\n)+\\z");
    QVERIFY2(plain.match(QString::fromLatin1(text.output)).hasMatch(), text.output.constData());
}

/// Tools are only asked. A stand-in says what with, in one write, for they run side by side.
void TestDoctor::changesNothing()
{
    const QStringList all
        = askedTools + QStringList{"beep", "hwclock", "mv", "rm", "sync", "xCal", "ifup", "ifdown"};
    const FakeTools tools(all);
    const QTemporaryDir folder;
    for (const QString &tool : all) {
        tools.setBody(tool,
                      QString("printf '%s\\n' \"%1 $*\" >>'%2'; exec /usr/bin/env "
                              "PATH=/usr/sbin:/usr/bin %1 \"$@\"")
                          .arg(tool, folder.filePath("log")));
    }
    const char files[] = "find /etc /opt /home /media /var/lib/dhcp /run/lock /tmp -maxdepth 3 "
                         "! -path /tmp ! -path '/tmp/tst_*' -printf '%p %s %T@ %C@ %m\\n' | sort";
    const QByteArray before = shellBytes(files);
    QCOMPARE(complaintsIn(doctor().output), QByteArrayList());
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
                        "sleep 0.2", "tar --version", "xinput --list --name-only",
                        "xinput query-state PenMount USB Touchscreen", "xrandr --verbose",
                        "xrandr -q", "xset q"}));
    QCOMPARE(shellBytes(files), before);
}

void TestDoctor::fullTemporaryFolder()
{
    const SmallDisk disk("/srv", "size=4k");
    writeFile("/srv/filler", QByteArray(4096, 'x'));
    qputenv("TMPDIR", "/srv");
    const Run text = doctor();
    qunsetenv("TMPDIR");
    const QByteArrayList complaints = complaintsIn(text.output);
    QCOMPARE(complaints.size(), 2);
    QVERIFY(complaints.at(0).startsWith("error    unpacking: a sample package was not unpacked"));
    QVERIFY(complaints.at(1).startsWith("error    space: 0 MiB free in /srv"));
}

void TestDoctor::display()
{
    qunsetenv("DISPLAY");
    const Run guessed = doctor();
    qputenv("DISPLAY", ":7");
    const Run none = doctor();
    qputenv("DISPLAY", ":0");
    QCOMPARE(guessed.status, 0);
    QVERIFY(guessed.output.contains("ok       display: :0 answers (DISPLAY is not set)\n"));
    QCOMPARE(none.status, 2);
    const QByteArrayList complaints = complaintsIn(none.output);
    QCOMPARE(complaints.size(), 6);
    QVERIFY(
        complaints.first().startsWith("error    display: :7 does not answer: \"xset q\" fails "));
    for (const QByteArray &other : complaints.mid(1)) {
        QVERIFY(other.contains(": not looked at: no display answers"));
    }
}

/// Over ssh, with a short PATH.
void TestDoctor::ordinaryUser()
{
    // this user may be kept out of the folder with the build
    QVERIFY(QFile::copy(DOCTOR, "/tmp/copy"));
    const Run text = run(
        {"setpriv", "--reuid", "65534", "--clear-groups", "env", "PATH=/usr/bin", "/tmp/copy"});
    QFile::remove("/tmp/copy");
    QVERIFY(text.output.startsWith("warning  user: user 65534; the program runs as root"));
    QVERIFY(text.output.contains("ok       tool ifconfig: /usr/sbin/ifconfig\n"));
    QVERIFY2(!text.output.contains("\nerror "), text.output.constData());
    QCOMPARE(text.status, 1);
}

void TestDoctor::usage()
{
    const Run wrong = doctor({"--repair\x1b"});
    QCOMPARE(wrong.status, int(WrongUsage));
    QCOMPARE(wrong.output, QByteArray());
    QCOMPARE(wrong.errors,
             QByteArray("talmero-doctor: Unknown option 'repair\\x1b'.; see "
                        "talmero-doctor --help\n"));
    QVERIFY(doctor({"--help"}).output.startsWith("Usage: talmero-doctor"));
    QCOMPARE(doctor({"--help"}).status, 0);
    QCOMPARE(doctor({"--version"}).output, QByteArray("talmero-doctor 1.0\n"));
}

void TestDoctor::outputThatIsLost()
{
    const Run run = ::run({"/bin/sh", "-c", DOCTOR " >/dev/full"});
    QCOMPARE(run.status, int(OutputLost));
    QCOMPARE(run.errors, QByteArray("talmero-doctor: cannot write to standard output\n"));
}

/// Those of the man page.
void TestDoctor::documentedExamples()
{
    const QString page = QString::fromUtf8(readFile(PANEL_SOURCE "/tools/doctor/talmero-doctor.1"));
    static const QRegularExpression example("\n\\.EX\n(.*)\n\\.EE",
                                            QRegularExpression::InvertedGreedinessOption);
    const QString folder = QString(DOCTOR).section('/', 0, -2);
    int examples = 0;
    for (auto found = example.globalMatch(page.section(".SH EXAMPLES", 1)); found.hasNext();
         ++examples) {
        const QString command = found.next().captured(1);
        const Run done = run({"/bin/sh", "-c", "PATH=$PATH:" + folder + "; " + command});
        QVERIFY2(done.status == 0 && done.errors.isEmpty(), qPrintable(command));
        if (command.contains("grep")) {
            QCOMPARE(done.output, QByteArray("nothing to do\n"));
        }
    }
    QCOMPARE(examples, 3);
    QVERIFY(QJsonDocument::fromJson(readFile("/tmp/panel.json")).isObject());
}

/// The guide shows a panel with today's ifconfig, another touch controller and no light.
void TestDoctor::documentedReport()
{
    const FakeTools tools({"ifconfig", "xinput"});
    tools.setBody("ifconfig", todaysIfconfig);
    tools.setBody("xinput", "exec /usr/bin/xinput \"$@\" | sed s/PenMount/EloTouch/");
    writeFile(Paths::settingsFile, "app.mouse=1\nbios.brightness=0\n");
    const QByteArray guide = readFile(PANEL_SOURCE "/docs/integrators-guide.md");
    const QByteArray report = indented(complaintsIn(doctor().output).join('\n'));
    QVERIFY2(guide.contains(report), report.constData());
}

QTEST_GUILESS_MAIN(TestDoctor)
#include "tst_doctor.moc"
