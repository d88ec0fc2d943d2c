#include "arguments.h"
#include "checks.h"
#include "healthypanel.h"
#include "report.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTest>

using namespace std::chrono_literals;

using namespace Doctor;

namespace {
/// A settings file and all complaints about it.
struct SettingsRow
{
    const char *name;
    QByteArray text;
    QStringList complaints;
};

const QList<SettingsRow> &settingsRows()
{
    // clang-format off
    static const QList<SettingsRow> rows{
        {"all that the program writes",
         "app.buzzer=1\napp.mouse=1\napp.orientation=vertical\napp.screensaving=60\nbios.brightness=0.1\n"
         "bios.debug=1\nbios.screen.size=800x600\nbios.filetransfer.folder=/media\nbios.fontsetting.folder=/media/\n"
         "ethernet.eth0=dhcp\nethernet.eth1=10.0.0.9\nethernet.eth1.mask=255.0.0.0\n", {}},
        {"empty", "", {}},
        {"byte order mark", "\xEF\xBB\xBF" "app.mouse=1\n", {}},
        {"comments and blank lines", "# a\n\n   \n #b=c\napp.mouse=1", {}},
        {"no equals sign", "app.mouse=1\nhello world\n", {"warning settings: line 2 is ignored: \"hello world\""}},
        {"no key", "=1\n", {"warning settings: line 1 is ignored: \"=1\""}},
        {"control characters", QByteArray("\x1b[2Jx\n"), {"warning settings: line 1 is ignored: \"\x1b[2Jx\""}},
        {"only the last line counts", "app.orientation=up\napp.orientation=vertical\n", {}},
        {"removed by a later line", "bios.debug=x\nbios.debug=\n", {}},
        {"flag 0", "app.mouse=0\napp.buzzer=no\n",
         {"warning settings: line 2: app.buzzer=no means enabled, as any text does",
          "warning settings: line 1: app.mouse=0 means enabled, as any text does"}},
        {"orientation in capitals", "app.orientation=VERTICAL\n", {}},
        {"unknown orientation", "app.orientation=up\n",
         {"warning settings: line 1: app.orientation=up turns the display left, as any text but \"horizontal\" does"}},
        {"delay that is not offered", "app.screensaving=15\n",
         {"warning settings: line 1: app.screensaving=15 is a delay that the page does not offer, so the page shows another"}},
        {"delay in words", "app.screensaving=ten\n",
         {"warning settings: line 1: app.screensaving=ten switches screen saving off, as 0 and any text do"}},
        {"delay 0", "app.screensaving=0\n",
         {"warning settings: line 1: app.screensaving=0 switches screen saving off, as 0 and any text do"}},
        {"dark", "bios.brightness=0\n", {"warning settings: line 1: bios.brightness=0 makes the panel dark at every start"}},
        {"dark in other digits", "bios.brightness=0.00\n", {"warning settings: line 1: bios.brightness=0.00 makes the panel dark at every start"}},
        {"after a rescue", "bios.brightness=\x01\n", {"warning settings: line 1: bios.brightness=\x01 is what rescue mode stores: the light is full"}},
        {"brightness that is not offered", "bios.brightness=0.55\n",
         {"warning settings: line 1: bios.brightness=0.55 is a brightness that the page does not offer"}},
        {"brightness in words", "bios.brightness=full\n",
         {"warning settings: line 1: bios.brightness=full is not a brightness: xrandr refuses it and the light does not change"}},
        {"debug level in words", "bios.debug=on\n", {"warning settings: line 1: bios.debug=on counts as 0, because it is not a number"}},
        {"no size", "bios.screen.size=800\n", {"warning settings: line 1: bios.screen.size=800 is not a size and is ignored"}},
        {"wider than the screen", "bios.screen.size=801x600\n",
         {"warning settings: line 1: bios.screen.size=801x600 is larger than the screen: buttons lie outside it, and memory is wasted"}},
        {"higher than the screen", "bios.screen.size=800X601\n",
         {"warning settings: line 1: bios.screen.size=800X601 is larger than the screen: buttons lie outside it, and memory is wasted"}},
        {"empty address", "ethernet.eth0=\nethernet.eth0.mask=\n",
         {"error settings: line 1: ethernet.eth0= is an empty fixed address: ifupdown refuses the whole file of interfaces"}},
        {"DHCP in capitals", "ethernet.eth1=DHCP\n", {"warning settings: line 1: ethernet.eth1=DHCP counts as a fixed address but is not one"}},
        {"half an address", "ethernet.eth0=10.0.0\n", {"warning settings: line 1: ethernet.eth0=10.0.0 counts as a fixed address but is not one"}},
        {"mask with a hole", "ethernet.eth0.mask=255.0.255.0\n", {"warning settings: line 1: ethernet.eth0.mask=255.0.255.0 is not a netmask"}},
        {"mask with trailing text", "ethernet.eth1.mask=255.0.0.0 UP B\n", {"warning settings: line 1: ethernet.eth1.mask=255.0.0.0 UP B is not a netmask"}},
        {"all hosts, one host", "ethernet.eth0.mask=0.0.0.0\nethernet.eth1.mask=255.255.255.255\n", {}},
        {"folder that is not there", "bios.fontsetting.folder=/stick\n",
         {"warning settings: line 1: bios.fontsetting.folder=/stick is not a folder at the moment: nothing is found"}},
        {"blanks around the equals sign", "bios.debug = 1\n", {"warning settings: line 1: bios.debug = 1 is not the key \"bios.debug\""}},
        {"key in capitals", "App.Mouse=1\n", {"warning settings: line 1: App.Mouse=1 is not the key \"app.mouse\""}},
        {"mistyped key", "app.orientaton=vertical\n", {"warning settings: line 1: app.orientaton=vertical is a key that the program does not know"}},
        {"key of another program", "runtime.port=80\n", {}},
        {"long line", "app." + QByteArray(500, 'x') + "=1\n",
         {"warning settings: line 1: app." + QString(53, 'x') + "... is a key that the program does not know"}},
    };
    // clang-format on
    return rows;
}

const QList<BrokenThing> &brokenThings()
{
    // clang-format off
    static const QList<BrokenThing> things{
        {"dark without a touch controller", [](Facts &f) {
             putFile(f, Paths::settingsFile, "bios.brightness=0\n");
             answer(f, Question::Devices, "mouse\n");
         },
         {"error touch: no input device has \"PenMount\" in its name",
          "error settings: line 1: bios.brightness=0 makes the panel dark at every start, and without a touch controller there is no rescue"}},
        {"no settings file", [](Facts &f) { f.paths.remove(Paths::settingsFile); },
         {"warning settings file: there is no /opt/talmero/bios/bios.ini"}},
        {"folder in its place", [](Facts &f) { f.paths[Paths::settingsFile].kind = PathFacts::Kind::Folder; },
         {"error settings file: /opt/talmero/bios/bios.ini is not a readable file"}},
        {"file that is not readable", [](Facts &f) { f.paths[Paths::settingsFile].isReadable = false; },
         {"error settings file: /opt/talmero/bios/bios.ini is not a readable file"}},
        {"read-only file", [](Facts &f) { f.paths[Paths::settingsFile].isWritable = false; },
         {"error settings file: /opt/talmero/bios/bios.ini cannot be written"}},
        {"endless file", [](Facts &f) { f.paths[Paths::settingsFile].size = contentLimit + 1; },
         {"warning settings file: /opt/talmero/bios/bios.ini has 1048577 bytes, of which only the first are checked"}},
        {"screen of unknown size", [](Facts &f) {
             putFile(f, Paths::settingsFile, "bios.screen.size=9999x9999\n");
             answer(f, Question::Outputs, "A connected (normal left)\n");
         },
         {"warning screen: \"xrandr -q\" does not print the size of the screen"}},
    };
    // clang-format on
    return things;
}
} // namespace

class TestDoctorSettings : public QObject
{
    Q_OBJECT
private slots:
    void settings_data();
    void settings();
    void everyKeyIsKnown_data();
    void everyKeyIsKnown();
    void brokenThing_data() { addBrokenThings(brokenThings()); }
    void brokenThing();
    void report();
    void statusIsTheWorstLevel_data();
    void statusIsTheWorstLevel();
    void commandLine_data();
    void commandLine();
};

void TestDoctorSettings::settings_data()
{
    QTest::addColumn<qsizetype>("index");
    for (qsizetype index = 0; index < settingsRows().size(); ++index) {
        QTest::newRow(settingsRows().at(index).name) << index;
    }
}

void TestDoctorSettings::settings()
{
    QFETCH(qsizetype, index);
    Facts facts = healthyFacts();
    putFile(facts, Paths::settingsFile, settingsRows().at(index).text);
    QCOMPARE(complaints(facts), settingsRows().at(index).complaints);
}

/// One row for each key in the sources of the program.
void TestDoctorSettings::everyKeyIsKnown_data()
{
    QTest::addColumn<QString>("key");
    static const QRegularExpression key("\"([a-z0-9]+\\.[a-z0-9.]+)\"");
    for (const char *list : {"settingskeys.h", "settingskeys.cpp"}) {
        QFile file(QString(PANEL_SOURCE "/src/system/settings/%1").arg(list));
        QVERIFY(file.open(QIODevice::ReadOnly));
        for (auto found = key.globalMatch(QString::fromUtf8(file.readAll())); found.hasNext();) {
            const QString name = found.next().captured(1);
            if (!name.endsWith(".h")) {
                QTest::newRow(qPrintable(name)) << name;
            }
        }
    }
}

void TestDoctorSettings::everyKeyIsKnown()
{
    QFETCH(QString, key);
    Facts facts = healthyFacts();
    putFile(facts, Paths::settingsFile, key.toUtf8() + "=~\n");
    const QStringList said = complaints(facts);
    QCOMPARE(said.size(), 1); // the value is invalid for every key
    QVERIFY2(!said.first().contains("does not know"), qPrintable(said.first()));
}

void TestDoctorSettings::brokenThing()
{
    QFETCH(qsizetype, index);
    QCOMPARE(judgeBrokenThing(brokenThings().at(index)), QString());
}

void TestDoctorSettings::report()
{
    const Findings findings{about("tool a", fine("/bin/a")),
                            about("b", warning("says \"\x1b[2J\n\"", "repair \"it\"")),
                            about("c", error(QString::fromUtf8("grün"), "see \\"))};
    QCOMPARE(textReport(findings),
             QByteArray("ok       tool a: /bin/a\n"
                        "warning  b: says \"\\x1b[2J\\x0a\" -> repair \"it\"\n"
                        "error    c: gr\\xc3\\xbcn -> see \\x5c\n"));
    const QJsonObject json = QJsonDocument::fromJson(jsonReport(findings)).object();
    QCOMPARE(json.value("status"), QJsonValue(2));
    QCOMPARE(json.value("findings").toArray(),
             (QJsonArray{QJsonObject{{"level", "ok"}, {"check", "tool a"}, {"found", "/bin/a"}},
                         QJsonObject{{"level", "warning"},
                                     {"check", "b"},
                                     {"found", "says \"\\x1b[2J\\x0a\""},
                                     {"advice", "repair \"it\""}},
                         QJsonObject{{"level", "error"},
                                     {"check", "c"},
                                     {"found", "gr\\xc3\\xbcn"},
                                     {"advice", "see \\x5c"}}}));
}

void TestDoctorSettings::statusIsTheWorstLevel_data()
{
    QTest::addColumn<QList<int>>("levels");
    QTest::addColumn<int>("status");
    QTest::newRow("nothing") << QList<int>{} << 0;
    QTest::newRow("all is ok") << QList<int>{0, 0} << 0;
    QTest::newRow("a warning") << QList<int>{0, 1, 0} << 1;
    QTest::newRow("an error before a warning") << QList<int>{2, 1, 0} << 2;
}

void TestDoctorSettings::statusIsTheWorstLevel()
{
    QFETCH(QList<int>, levels);
    Findings findings;
    for (const int level : levels) {
        findings += {Level(level), {}, {}, {}};
    }
    QTEST(statusOf(findings), "status");
}

void TestDoctorSettings::commandLine_data()
{
    using Task = Arguments::Task;
    QTest::addColumn<QString>("line");
    QTest::addColumn<Task>("task");
    QTest::addColumn<bool>("isJson");
    QTest::addColumn<int>("limit");
    QTest::addColumn<QString>("error");
    const QString limitError = "--limit must be a number of seconds, up to 60";
    QTest::newRow("nothing") << "" << Task::Check << false << 5000 << "";
    QTest::newRow("json") << "--json" << Task::Check << true << 5000 << "";
    QTest::newRow("limit") << "--limit 0.3 --json" << Task::Check << true << 300 << "";
    QTest::newRow("limit with equals") << "--limit=60" << Task::Check << false << 60000 << "";
    QTest::newRow("shortest") << "--limit 0.00001" << Task::Check << false << 1 << "";
    QTest::newRow("help") << "--help" << Task::Help << false << 5000 << "";
    QTest::newRow("h") << "-h" << Task::Help << false << 5000 << "";
    QTest::newRow("version") << "--version" << Task::Version << false << 5000 << "";
    for (const char *wrong : {"0", "-1", "60.1", "x", "nan", "inf", "5s"}) {
        QTest::addRow("limit %s", wrong)
            << QString("--limit=%1").arg(wrong) << Task::Check << false << 5000 << limitError;
    }
    QTest::newRow("limit of nothing")
        << "--limit" << Task::Check << false << 5000 << "Missing value after '--limit'.";
    QTest::newRow("unknown option")
        << "--repair" << Task::Check << false << 5000 << "Unknown option 'repair'.";
    QTest::newRow("argument") << "eth0" << Task::Check << false << 5000 << "unknown argument: eth0";
    QTest::newRow("empty argument")
        << "--json ''" << Task::Check << true << 5000 << "unknown argument: ''";
}

void TestDoctorSettings::commandLine()
{
    QFETCH(QString, line);
    const Arguments arguments = parseArguments(line.split(' ', Qt::SkipEmptyParts));
    QTEST(arguments.task, "task");
    QTEST(arguments.isJson, "isJson");
    QTEST(int(arguments.limit.count()), "limit");
    QTEST(arguments.error, "error");
}

QTEST_GUILESS_MAIN(TestDoctorSettings)
#include "tst_doctorsettings.moc"
