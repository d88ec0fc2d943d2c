#include "diskfiles.h"
#include "faketools.h"
#include "manualpage.h"
#include "panelfiles.h"
#include "panelguard.h"
#include "system/paths.h"
#include "toolrun.h"

#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

// Runs talmero-settings from the command line.

namespace {
constexpr char session[] = " [--quiet] [talmero-session.service]";
constexpr char programsInterfaces[] = "auto lo \niface lo inet loopback\n\n";

ToolRun settingsTool(const QStringList &arguments)
{
    return runTool(SETTINGS, arguments);
}

QByteArray message(const QByteArray &text)
{
    return "talmero-settings: " + text + '\n';
}
} // namespace

class TestSettings : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void get_data();
    void get();
    void missingFileHasNoValues();
    void list();
    void pageValuesAreStored_data();
    void pageValuesAreStored();
    void otherValuesAreRefused_data();
    void otherValuesAreRefused();
    void forceStoresWhatTheFileCanHold();
    void unset();
    void unchangedFileIsNotWritten();
    void dryRunWritesNothing();
    void otherKeysStay();
    void missingFileIsMade();
    void unreadableFileIsNotReplaced();
    void fileThatCannotBeWritten();
    void applyRestartsTheSession();
    void applyWithoutASession();
    void applyThatFails();
    void applyWritesTheInterfaces_data();
    void applyWritesTheInterfaces();
    void usage_data();
    void usage();
    void lostOutputIsAnError();
    void documentedExamples();
};

void TestSettings::initTestCase()
{
    requirePanel();
}

void TestSettings::init()
{
    removePanelFile("bios.ini"); // may be a folder
    writePanelFile("bios.ini", "");
    writeFile(Paths::interfacesFile, programsInterfaces);
}

void TestSettings::get_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QByteArray>("output");
    QTest::addColumn<int>("status");
    QTest::newRow("value") << "a" << QByteArray("1 2\n") << 0;
    QTest::newRow("last line wins") << "b" << QByteArray("new\n") << 0;
    QTest::newRow("bytes that are not UTF-8") << "c" << QByteArray("\xff\n") << 0;
    QTest::newRow("removed") << "d" << QByteArray() << 1;
    QTest::newRow("missing") << "e" << QByteArray() << 1;
    QTest::newRow("empty key") << "" << QByteArray() << 1;
}

void TestSettings::get()
{
    QFETCH(QString, key);
    QFETCH(QByteArray, output);
    writePanelFile("bios.ini", "\xEF\xBB\xBF a=1 \t 2 \r\nb=old\nb=new\nc=\xff\nd=1\nd=\n");
    const ToolRun run = settingsTool({"get", key});
    QCOMPARE(run.output, output);
    QCOMPARE(run.errors, QByteArray());
    QTEST(run.status, "status");
}

void TestSettings::missingFileHasNoValues()
{
    removePanelFile("bios.ini");
    const ToolRun run = settingsTool({"get", "app.mouse"});
    QCOMPARE(run.status, 1);
    QCOMPARE(run.output + run.errors, QByteArray());
    QCOMPARE(settingsTool({"list", "--json"}).output, QByteArray("{}\n"));
}

void TestSettings::list()
{
    writePanelFile("bios.ini", "b = 2\n#x\na=\"1\"\n");
    QCOMPARE(settingsTool({"list"}).output, QByteArray("a=\"1\"\nb = 2\n"));
    const QByteArray json = settingsTool({"list", "--json"}).output;
    QCOMPARE(QJsonDocument::fromJson(json).object(), (QJsonObject{{"a", "\"1\""}, {"b ", " 2"}}));
}

void TestSettings::pageValuesAreStored_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("value");
    const std::pair<const char *, QStringList> choices[] = {
        {"app.mouse", {"1"}},
        {"app.buzzer", {"1"}},
        {"app.orientation", {"horizontal", "vertical"}},
        {"app.screensaving", {"5", "10", "20", "30", "60"}},
        {"bios.brightness",
         {"1", "0.9", "0.8", "0.7", "0.6", "0.5", "0.4", "0.3", "0.2", "0.1", "0"}},
        {"ethernet.eth0", {"dhcp", "192.168.1.20"}},
        {"ethernet.eth0.mask", {"255.255.255.0", "0.0.0.0", "255.255.255.255"}},
        {"ethernet.eth1", {"dhcp", "10.0.0.1"}},
        {"ethernet.eth1.mask", {"255.255.0.0"}},
    };
    for (const auto &[key, values] : choices) {
        for (const QString &value : values) {
            QTest::addRow("%s=%s", key, qPrintable(value)) << key << value;
        }
    }
}

void TestSettings::pageValuesAreStored()
{
    QFETCH(QString, key);
    QFETCH(QString, value);
    const ToolRun run = settingsTool({"set", key, value});
    QCOMPARE(run.errors, QByteArray());
    QCOMPARE(run.output, QByteArray("changed\n"));
    QCOMPARE(run.status, 0);
    QCOMPARE(readPanelFile("bios.ini"), QString("%1=%2\n").arg(key, value).toUtf8());
}

void TestSettings::otherValuesAreRefused_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QByteArray>("error");
    const QByteArray mask = "a page stores a netmask such as 255.255.255.0";
    const QByteArray address = "a page stores dhcp or an IPv4 address";
    const QByteArray format = "the file cannot hold this key and value";
    const QByteArray key = "no page stores this key";
    QTest::newRow("flag") << "app.mouse"
                          << "0" << QByteArray("a page stores 1; unset disables it");
    QTest::newRow("orientation") << "app.orientation"
                                 << "left" << QByteArray("a page stores horizontal or vertical");
    QTest::newRow("delay") << "app.screensaving"
                           << "0"
                           << QByteArray("a page stores 5, 10, 20, 30, 60; unset switches it off");
    QTest::newRow("brightness")
        << "bios.brightness"
        << "1.0" << QByteArray("a page stores 1, 0.9, 0.8, 0.7, 0.6, 0.5, 0.4, 0.3, 0.2, 0.1, 0");
    QTest::newRow("address") << "ethernet.eth0"
                             << "192.168.1.256" << address;
    QTest::newRow("address in capitals") << "ethernet.eth1"
                                         << "DHCP" << address;
    QTest::newRow("mask with a hole") << "ethernet.eth0.mask"
                                      << "255.0.255.0" << mask;
    QTest::newRow("no mask") << "ethernet.eth1.mask"
                             << "24" << mask;
    QTest::newRow("set by hand") << "bios.debug"
                                 << "1" << key;
    QTest::newRow("unknown key") << "app.mice"
                                 << "1" << key;
    QTest::newRow("empty value") << "app.mouse"
                                 << "" << format;
    QTest::newRow("line end") << "app.mouse"
                              << "1\nbios.brightness=0" << format;
    QTest::newRow("two blanks") << "a"
                                << "1  2" << format;
    QTest::newRow("equals sign in the key") << "a=b"
                                            << "1" << format;
    QTest::newRow("comment") << "#a"
                             << "1" << format;
    QTest::newRow("empty key") << ""
                               << "1" << format;
}

void TestSettings::otherValuesAreRefused()
{
    QFETCH(QString, key);
    QFETCH(QString, value);
    QFETCH(QByteArray, error);
    writePanelFile("bios.ini", "a=1\n");
    const ToolRun run = settingsTool({"set", key, value});
    QCOMPARE(run.status, 2);
    QCOMPARE(run.output, QByteArray());
    QCOMPARE(run.errors, message(key.toUtf8() + ": " + error));
    QCOMPARE(readPanelFile("bios.ini"), QByteArray("a=1\n"));
    const bool isForFormat = error.startsWith("the file");
    QCOMPARE(settingsTool({"set", "--force", key, value}).status, isForFormat ? 2 : 0);
}

void TestSettings::forceStoresWhatTheFileCanHold()
{
    for (const char *value : {"2", "a = b", "--force", "\xC3\xBC"}) {
        QCOMPARE(settingsTool({"set", "--force", "bios.debug", value}).output,
                 QByteArray("changed\n"));
        QCOMPARE(settingsTool({"get", "bios.debug"}).output, QByteArray(value) + '\n');
    }
}

void TestSettings::unset()
{
    writePanelFile("bios.ini", "app.mouse=1\nbios.debug=1\nethernet.eth0=dhcp\n");
    QCOMPARE(settingsTool({"unset", "app.mouse"}).output, QByteArray("changed\n"));
    QCOMPARE(settingsTool({"unset", "app.mouse"}).output, QByteArray("unchanged\n"));
    const ToolRun refused = settingsTool({"unset", "bios.debug"});
    QCOMPARE(refused.status, 2);
    QCOMPARE(refused.errors, message("bios.debug: no page stores this key"));
    QCOMPARE(readPanelFile("bios.ini"), QByteArray("bios.debug=1\nethernet.eth0=dhcp\n"));
    QCOMPARE(settingsTool({"unset", "--force", "bios.debug"}).status, 0);
    QCOMPARE(readPanelFile("bios.ini"), QByteArray("ethernet.eth0=dhcp\n"));
}

void TestSettings::unchangedFileIsNotWritten()
{
    writePanelFile("bios.ini", "# note\napp.mouse=1\n");
    const ToolRun run = settingsTool({"set", "app.mouse", "1"});
    QCOMPARE(run.output, QByteArray("unchanged\n"));
    QCOMPARE(run.status, 0);
    QCOMPARE(readPanelFile("bios.ini"), QByteArray("# note\napp.mouse=1\n"));
}

void TestSettings::dryRunWritesNothing()
{
    const QByteArray before = "# note\napp.mouse=1\n";
    writePanelFile("bios.ini", before);
    QCOMPARE(settingsTool({"set", "--dry-run", "app.mouse", "1"}).output,
             QByteArray("unchanged\n"));
    QCOMPARE(settingsTool({"set", "--dry-run", "app.buzzer", "1"}).output, QByteArray("changed\n"));
    QCOMPARE(settingsTool({"set", "--dry-run", "app.buzzer", "2"}).status, 2);
    QCOMPARE(settingsTool({"set", "--dry-run", "--force", "app.buzzer", "2"}).output,
             QByteArray("changed\n"));
    QCOMPARE(settingsTool({"unset", "--force", "--dry-run", "app.mouse"}).output,
             QByteArray("changed\n"));
    QCOMPARE(settingsTool({"unset", "--dry-run", "bios.debug"}).status, 2);
    QCOMPARE(readPanelFile("bios.ini"), before);
}

void TestSettings::otherKeysStay()
{
    writePanelFile("bios.ini", "maker.key=\xff\nbios.screen.size=800x600\n");
    shellBytes("chmod 640 /opt/talmero/bios/bios.ini; chown 0:7 /opt/talmero/bios/bios.ini");
    QCOMPARE(settingsTool({"set", "app.buzzer", "1"}).status, 0);
    QCOMPARE(readPanelFile("bios.ini"),
             QByteArray("app.buzzer=1\nbios.screen.size=800x600\nmaker.key=\xff\n"));
    QCOMPARE(shellBytes("stat -c %a:%g /opt/talmero/bios/bios.ini"), QByteArray("640:7\n"));
}

void TestSettings::missingFileIsMade()
{
    removePanelFile("bios.ini");
    QCOMPARE(settingsTool({"set", "app.mouse", "1"}).status, 0);
    QCOMPARE(readPanelFile("bios.ini"), QByteArray("app.mouse=1\n"));
}

void TestSettings::unreadableFileIsNotReplaced()
{
    putFolderAtPanelFile("bios.ini");
    for (const QStringList &arguments :
         {QStringList{"get", "app.mouse"}, QStringList{"set", "app.mouse", "1"},
          QStringList{"unset", "app.mouse"}, QStringList{"list"}, QStringList{"apply"}}) {
        const ToolRun run = settingsTool(arguments);
        QCOMPARE(run.status, 66);
        QCOMPARE(run.errors, message("the settings cannot be read"));
    }
    QVERIFY(QDir("/opt/talmero/bios/bios.ini").exists());
}

void TestSettings::fileThatCannotBeWritten()
{
    shellBytes("mount --bind /opt/talmero/bios /opt/talmero/bios;"
               "mount -o remount,bind,ro /opt/talmero/bios");
    const ToolRun run = settingsTool({"set", "app.mouse", "1"});
    shellBytes("umount /opt/talmero/bios");
    QCOMPARE(run.status, 73);
    QCOMPARE(run.output, QByteArray());
    QCOMPARE(run.errors, message("the settings cannot be written"));
    QCOMPARE(readPanelFile("bios.ini"), QByteArray());
}

void TestSettings::applyRestartsTheSession()
{
    const FakeTools tools({"systemctl"});
    const ToolRun run = settingsTool({"apply"});
    QCOMPARE(run.output, QByteArray("the session has been restarted\n"));
    QCOMPARE(run.status, 0);
    QCOMPARE(tools.calls(),
             (QStringList{QString("systemctl [is-active]") + session,
                          QString("systemctl [restart]") + session}));
}

void TestSettings::applyWithoutASession()
{
    const FakeTools tools({"systemctl"});
    tools.setBody("systemctl", "exit 3");
    const ToolRun run = settingsTool({"apply"});
    QCOMPARE(run.output,
             QByteArray("the session does not run: the settings count from its next start\n"));
    QCOMPARE(run.status, 0);
    QCOMPARE(tools.calls(), QStringList{QString("systemctl [is-active]") + session});
}

void TestSettings::applyThatFails()
{
    const FakeTools tools({"systemctl"});
    tools.setBody("systemctl", "[ \"$1\" = is-active ]");
    const ToolRun run = settingsTool({"apply"});
    QCOMPARE(run.status, 69);
    QCOMPARE(run.output, QByteArray());
    QCOMPARE(run.errors, message("the session cannot be restarted"));
}

void TestSettings::applyWritesTheInterfaces_data()
{
    QTest::addColumn<QByteArray>("settings");
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<bool>("isWritten");
    const QByteArray ports = "ethernet.eth0=dhcp\n";
    const QByteArray foreign = "auto lo\niface lo inet loopback\nauto br0\n";
    const QByteArray kept
        = "the LAN ports stay as they are: /etc/network/interfaces is not the program's\n";
    const QByteArray later = "the LAN ports change at the next boot\n";
    QTest::newRow("same") << QByteArray() << QByteArray(programsInterfaces) << QStringList()
                          << QByteArray() << false;
    QTest::newRow("differs") << ports << QByteArray(programsInterfaces) << QStringList() << later
                             << true;
    QTest::newRow("somebody else's") << ports << foreign << QStringList() << kept << false;
    QTest::newRow("somebody else's by force")
        << ports << foreign << QStringList("--force") << later << true;
    QTest::newRow("no ports") << QByteArray("app.mouse=1\n") << foreign << QStringList("--force")
                              << QByteArray() << false;
}

void TestSettings::applyWritesTheInterfaces()
{
    QFETCH(QByteArray, settings);
    QFETCH(QByteArray, before);
    QFETCH(QStringList, options);
    QFETCH(QByteArray, line);
    QFETCH(bool, isWritten);
    const FakeTools tools({"systemctl"});
    writePanelFile("bios.ini", settings);
    writeFile(Paths::interfacesFile, before);
    const ToolRun run = settingsTool(QStringList("apply") + options);
    QCOMPARE(run.output, line + "the session has been restarted\n");
    const QByteArray after = readFile(Paths::interfacesFile);
    QCOMPARE(after != before, isWritten);
    QCOMPARE(after.contains("iface eth0 inet dhcp"), isWritten);
}

void TestSettings::usage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("reason");
    QTest::newRow("nothing") << QStringList() << QByteArray("a command is missing");
    QTest::newRow("no key") << QStringList{"get"} << QByteArray("\"get\" takes 1 arguments, not 0");
    QTest::newRow("two keys") << QStringList{"get", "a", "b"}
                              << QByteArray("\"get\" takes 1 arguments, not 2");
    QTest::newRow("no value") << QStringList{"set", "--force", "a"}
                              << QByteArray("\"set\" takes 2 arguments, not 1");
    QTest::newRow("option of another command")
        << QStringList{"list", "--force"} << QByteArray("\"list\" takes 0 arguments, not 1");
    QTest::newRow("other command")
        << QStringList{"put\x1b", "a"} << QByteArray("unknown command: put\\x1b");
}

void TestSettings::usage()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, reason);
    const ToolRun wrong = settingsTool(arguments);
    QCOMPARE(wrong.status, 64);
    QCOMPARE(wrong.output, QByteArray());
    QCOMPARE(wrong.errors, message(reason + "; see talmero-settings --help"));
    QVERIFY(settingsTool({"--help"}).output.startsWith("Usage: talmero-settings get KEY\n"));
    QCOMPARE(settingsTool({"--version"}).output, QByteArray("talmero-settings 1.0\n"));
}

void TestSettings::lostOutputIsAnError()
{
    writePanelFile("bios.ini", "a=1\n");
    const ToolRun run = runTool("/bin/sh", {"-c", "'" SETTINGS "' get a >/dev/full"});
    QCOMPARE(run.status, 74);
    QCOMPARE(run.errors, message("cannot write to standard output"));
}

/// Runs the examples of the man page.
void TestSettings::documentedExamples()
{
    const FakeTools tools({"systemctl"});
    writePanelFile("bios.ini", "app.buzzer=1\n");
    const QByteArrayList examples = examplesOfManualPage("tools/settings/talmero-settings.1");
    const QByteArrayList outputs{"the buzzer is enabled\n",
                                 "changed\nchanged\nthe LAN ports change at the next boot\n"
                                 "the session has been restarted\n"};
    QCOMPARE(examples.size(), outputs.size());
    for (qsizetype at = 0; at < examples.size(); ++at) {
        const ToolRun run = runTool("/bin/sh", {"-c", withProgram(SETTINGS, examples.at(at))});
        QCOMPARE(run.errors, QByteArray());
        QCOMPARE(run.output, outputs.at(at));
    }
}

QTEST_GUILESS_MAIN(TestSettings)
#include "tst_settings.moc"
