// Runs talmero-doctor on a healthy panel, then breaks one thing at a time.

#include "diskfiles.h"
#include "doctorrun.h"
#include "faketools.h"
#include "faultfiles.h"
#include "manualpage.h"
#include "panelguard.h"
#include "report.h"
#include "system/paths.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include <sysexits.h>

#include <memory>

using namespace Doctor;

namespace {
constexpr int healthyLimit = 2000; // ms

/// The text as a code block in a Markdown document.
QByteArray indented(const QByteArray &text)
{
    QByteArray lines = "    " + text.trimmed();
    return lines.replace("\n", "\n    ");
}

/// One fault on the panel.
struct Break
{
    const char *name;
    const char *breakIt; ///< shell text
    const char *repairIt;
    const char *line; ///< how the only complaint starts
    int status;
};

constexpr Break breaks[] = {
    {"missing tool", "mv /usr/bin/xCal /usr/bin/aside", "mv /usr/bin/aside /usr/bin/xCal",
     "error    tool xCal: not on PATH", 2},
    {"tool that is not executable", "chmod -x /usr/bin/beep", "chmod +x /usr/bin/beep",
     "warning  tool beep: not on PATH or not executable", 1},
    {"brightness 0", "echo bios.brightness=0 >/opt/talmero/bios/bios.ini", "",
     "warning  settings: line 1: bios.brightness=0 makes the panel dark", 1},
    {"key with terminal escape sequence",
     "printf 'app.\\033]0;x\\007\\377=1\\n' >/opt/talmero/bios/bios.ini", "",
     "warning  settings: line 1: app.\\x1b]0;x\\x07\\xff=1 is a key", 1},
    {"settings file is a pipe", "cd /opt/talmero/bios; rm bios.ini; mkfifo bios.ini",
     "rm /opt/talmero/bios/bios.ini",
     "error    settings file: /opt/talmero/bios/bios.ini is not a readable file", 2},
    {"no model", "rm /opt/talmero/bios/model", "echo RV-K21T >/opt/talmero/bios/model",
     "warning  version files: /opt/talmero/bios/model is missing or cannot be read", 1},
    {"broken runtime script", "echo 'if' >>/opt/talmero/bios/runapp.sh",
     "echo : >/opt/talmero/bios/runapp.sh",
     "error    runtime script: \"/bin/sh -n /opt/talmero/bios/runapp.sh\" fails with status 2: ",
     2},
    {"interfaces file that ifupdown rejects",
     "cp /etc/network/interfaces /run/copy; echo iface eth0 nonsense dhcp "
     ">>/etc/network/interfaces",
     "cp /run/copy /etc/network/interfaces",
     "error    interfaces file: \"ifquery --list\" fails with status 1: ", 2},
    {"no font folder", "mv /usr/share/fonts/truetype/freefont /usr/share/aside",
     "mv /usr/share/aside /usr/share/fonts/truetype/freefont",
     "error    folders: there is no folder /usr/share/fonts/truetype/freefont/", 2},
    {"application folder is a link", "mv /home/dest /home/real; ln -s real /home/dest",
     "rm /home/dest; mv /home/real /home/dest", "error    application: /home/dest is a link", 2},
    {"missing configured font folder",
     "echo bios.fontsetting.folder=/srv/no >/opt/talmero/bios/bios.ini", "",
     "warning  settings: line 1: bios.fontsetting.folder=/srv/no is not a folder at the moment", 1},
    {"archive left in /tmp", ": >/tmp/talmero-bios.aBc123", "rm /tmp/talmero-bios.aBc123",
     "warning  space: package archives left over in /tmp: 1", 1},
    {"link out of the application folder", "ln -s /etc /home/dest/config", "rm /home/dest/config",
     "warning  links: links lead out of /home/dest and /opt/talmero/bios: 1 "
     "(/home/dest/config)",
     1},
    {"stick with the factory marker", "touch /media/usb0/talmero_setup",
     "rm /media/usb0/talmero_setup", "warning  stick: /media/usb0/talmero_setup is there", 1},
    {"no third serial port", "mv /dev/ttyS2 /dev/aside", "mv /dev/aside /dev/ttyS2",
     "warning  serial ports: there is no /dev/ttyS2", 1},
    {"empty naming rules", ": >/etc/udev/rules.d/70-persistent-net.rules",
     "rm /etc/udev/rules.d/70-persistent-net.rules",
     "warning  naming rules: /etc/udev/rules.d/70-persistent-net.rules does not name any port", 1},
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
    void configuredFoldersAreAccepted();
    void jsonSaysTheSame();
    void fullTemporaryFolder();
    void display();
    void ordinaryUser();
    void compatTools();
    void usage();
    void lostOutputIsAnError();
    void documentedExamples();
    void documentedSettings();
    void documentedReport();

private:
    QByteArray m_settings;
    std::unique_ptr<FakeTools> m_quickSleep; ///< each run would pause for a second
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
    const ToolRun text = runDoctor();
    QCOMPARE(complaintsIn(text.output), QByteArrayList());
    QCOMPARE(text.errors, QByteArray());
    QCOMPARE(text.status, 0);
    QVERIFY2(text.time < healthyLimit, QByteArray::number(text.time));
    QVERIFY(text.output.count('\n') > 50);

    const ToolRun json = runDoctor({"--json"});
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
    const ToolRun text = runDoctor();
    shellBytes(broken.repairIt);
    const QByteArrayList complaints = complaintsIn(text.output);
    QVERIFY2(complaints.size() == 1 && complaints.first().startsWith(broken.line),
             complaints.join('\n').constData());
    QVERIFY(complaints.first().contains(" -> "));
    QCOMPARE(text.status, broken.status);
    QCOMPARE(text.errors, QByteArray());
}

void TestDoctor::configuredFoldersAreAccepted()
{
    writeFile(Paths::settingsFile,
              "bios.filetransfer.folder=/media/usb0\nbios.fontsetting.folder=/srv\n");
    QCOMPARE(complaintsIn(runDoctor().output), QByteArrayList());
}

void TestDoctor::jsonSaysTheSame()
{
    const FakeTools tools({"ifconfig"});
    tools.setBody("ifconfig", todaysIfconfig);
    writeFile(Paths::settingsFile, "app.\x1b=\"\\\"\nno \xff\n");
    const ToolRun text = runDoctor();
    const ToolRun json = runDoctor({"--json"});
    QCOMPARE(complaintsIn(text.output).size(), 5);
    QCOMPARE(json.status, text.status);
    const QJsonObject object = QJsonDocument::fromJson(json.output).object();
    QCOMPARE(object.value("status").toInt(), text.status);
    QByteArray lines;
    for (const auto &value : object.value("findings").toArray()) {
        const QJsonObject finding = value.toObject();
        const QString advice = finding.value("advice").toString();
        lines += QString("%1%2: %3%4\n")
                     .arg(finding.value("level").toString().leftJustified(9),
                          finding.value("check").toString(), finding.value("found").toString(),
                          advice.isEmpty() ? QString() : " -> " + advice)
                     .toUtf8();
    }
    QCOMPARE(lines, text.output);
}

void TestDoctor::fullTemporaryFolder()
{
    const SmallDisk disk("/srv", "size=4k");
    writeFile("/srv/filler", QByteArray(4096, 'x'));
    qputenv("TMPDIR", "/srv");
    const ToolRun text = runDoctor();
    qunsetenv("TMPDIR");
    const QByteArrayList complaints = complaintsIn(text.output);
    QCOMPARE(complaints.size(), 2);
    QVERIFY(complaints.at(0).startsWith("error    unpacking: a sample package was not unpacked"));
    QVERIFY(complaints.at(1).startsWith("error    space: 0 MiB free in /srv"));
}

void TestDoctor::display()
{
    qunsetenv("DISPLAY");
    const ToolRun guessed = runDoctor();
    qputenv("DISPLAY", ":7");
    const ToolRun none = runDoctor();
    qputenv("DISPLAY", ":0");
    QCOMPARE(guessed.status, 0);
    QVERIFY(guessed.output.contains("ok       display: :0 answers (DISPLAY is not set)\n"));
    QCOMPARE(none.status, 2);
    const QByteArrayList complaints = complaintsIn(none.output);
    QCOMPARE(complaints.size(), 6);
    QVERIFY(
        complaints.first().startsWith("error    display: :7 does not answer: \"xset q\" fails "));
    for (const QByteArray &other : complaints.mid(1)) {
        QVERIFY(other.contains(": not checked: no display answers"));
    }
}

/// Like a user who is logged in over ssh, with a short PATH.
void TestDoctor::ordinaryUser()
{
    // This user may have no access to the build folder.
    QVERIFY(QFile::copy(DOCTOR, "/tmp/copy"));
    const ToolRun text = runTool(
        "setpriv", {"--reuid", "65534", "--clear-groups", "env", "PATH=/usr/bin", "/tmp/copy"});
    QFile::remove("/tmp/copy");
    QVERIFY(text.output.startsWith("warning  user: user 65534; the program runs as root"));
    QVERIFY(text.output.contains("ok       tool ifconfig: /usr/sbin/ifconfig\n"));
    QVERIFY2(!text.output.contains("\nerror "), text.output.constData());
    QCOMPARE(text.status, 1);
}

/// The session puts the tools of the package talmero-bios-compat first on PATH. Over ssh, where
/// nothing has done so, the doctor does.
void TestDoctor::compatTools()
{
    const QString compat = "/tmp/installed/lib/talmero-bios/compat/bin";
    const QString doctor = "/tmp/installed/bin/talmero-doctor";
    shellBytes(QString("mkdir -p /tmp/installed/bin %1; cp '%2' %3; mv /usr/sbin/ifconfig %1")
                   .arg(compat, DOCTOR, doctor));
    const ToolRun session = runTool(doctor, {});
    qunsetenv("DISPLAY");
    const ToolRun ssh = runTool(doctor, {});
    qputenv("DISPLAY", ":0");
    shellBytes(QString("mv %1/ifconfig /usr/sbin; rm -r /tmp/installed").arg(compat));
    QVERIFY(session.output.contains("error    tool ifconfig: not on PATH"));
    QCOMPARE(complaintsIn(ssh.output), QByteArrayList());
    QVERIFY(ssh.output.contains(
        "ok       tool ifconfig: /tmp/installed/lib/talmero-bios/compat/bin/ifconfig\n"));
}

void TestDoctor::usage()
{
    const ToolRun wrong = runDoctor({"--repair\x1b"});
    QCOMPARE(wrong.status, EX_USAGE);
    QCOMPARE(wrong.output, QByteArray());
    QCOMPARE(wrong.errors,
             QByteArray("talmero-doctor: Unknown option 'repair\\x1b'.; see "
                        "talmero-doctor --help\n"));
    QVERIFY(runDoctor({"--help"}).output.startsWith("Usage: talmero-doctor"));
    QCOMPARE(runDoctor({"--help"}).status, 0);
    QCOMPARE(runDoctor({"--version"}).output, QByteArray("talmero-doctor 1.0\n"));
}

void TestDoctor::lostOutputIsAnError()
{
    const ToolRun run = runTool("/bin/sh", {"-c", "'" DOCTOR "' >/dev/full"});
    QCOMPARE(run.status, EX_IOERR);
    QCOMPARE(run.errors, QByteArray("talmero-doctor: cannot write to standard output\n"));
}

/// Runs the examples of the man page.
void TestDoctor::documentedExamples()
{
    const QByteArrayList examples = examplesOfManualPage("tools/doctor/talmero-doctor.1");
    QCOMPARE(examples.size(), 3);
    const QString alone = "/run/alone/talmero-doctor"; // apart from a guard that does not watch
    shellBytes(QString("mkdir /run/alone; cp '%1' %2").arg(DOCTOR, alone));
    for (const QByteArray &example : examples) {
        const ToolRun done = runTool("/bin/sh", {"-c", withProgram(alone, example)});
        QVERIFY2(done.status == 0 && done.errors.isEmpty(), example.constData());
        if (example.contains("grep")) {
            QCOMPARE(done.output, QByteArray("nothing to do\n"));
        }
    }
    QVERIFY(QJsonDocument::fromJson(readFile("/tmp/panel.json")).isObject());
}

/// The doctor accepts the example of bios.ini(5).
void TestDoctor::documentedSettings()
{
    writeFile(Paths::settingsFile, examplesOfManualPage("src/bios.ini.5").join());
    QCOMPARE(complaintsIn(runDoctor().output), QByteArrayList());
}

/// The guide shows a panel with a current ifconfig, another touch controller and brightness 0.
void TestDoctor::documentedReport()
{
    const FakeTools tools({"ifconfig", "xinput"});
    tools.setBody("ifconfig", todaysIfconfig);
    tools.setBody("xinput", "exec /usr/bin/xinput \"$@\" | sed s/PenMount/EloTouch/");
    writeFile(Paths::settingsFile, "app.mouse=1\nbios.brightness=0\n");
    const QByteArray guide = readFile(PANEL_SOURCE "/docs/integrators-guide.md");
    const QByteArray report = indented(complaintsIn(runDoctor().output).join('\n'));
    QVERIFY2(guide.contains(report), report.constData());
}

QTEST_GUILESS_MAIN(TestDoctor)
#include "tst_doctor.moc"
