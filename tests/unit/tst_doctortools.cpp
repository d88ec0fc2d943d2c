#include "checks.h"
#include "healthypanel.h"

#include <QTest>

using End = ToolResult::End;

using namespace Doctor;

namespace {
const QList<BrokenThing> &brokenThings()
{
    // clang-format off
    static const QList<BrokenThing> things{
        {"nothing", [](Facts &) {}, {}},
        {"ordinary user", [](Facts &f) { f.user = 1000; },
         {"warning user: user 1000; the program runs as root"}},
        {"no gzip", [](Facts &f) { f.gzip.clear(); },
         {"error tool gzip: not on PATH or not executable"}},
        {"tar makes nothing of it", [](Facts &f) { f.unpacked.clear(); },
         {"error unpacking: tar did not unpack a sample package"}},
        {"another tar", [](Facts &f) { answer(f, Question::TarVersion, "tar (busybox) 1.35.0"); },
         {"warning unpacking: tar unpacks a sample package but is not GNU tar"}},
        {"tar without a version",
         [](Facts &f) { answer(f, Question::TarVersion, "", "unknown option", 1); },
         {"warning unpacking: tar unpacks a sample package but is not GNU tar"}},
        {"no room for a sample", [](Facts &f) { f.answers[size_t(Question::Unpack)].reset(); },
         {"error unpacking: a sample package was not unpacked: there is no space for temporary files"}},
        {"du complains", [](Facts &f) { answer(f, Question::ApplicationSize, "4K\t/home/dest/\n", "du: cannot read"); },
         {"error size: du complains: du: cannot read"}},
        {"du prints nothing", [](Facts &f) { answer(f, Question::ApplicationSize, ""); },
         {"error size: du prints no size that the program reads: \"\""}},
        {"du prints half a line", [](Facts &f) { answer(f, Question::ApplicationSize, "4K\t/home/dest/"); },
         {"error size: du prints no size that the program reads: \"\""}},
        {"du prints words", [](Facts &f) { answer(f, Question::ApplicationSize, "much\t/home/dest/\n"); },
         {"error size: du prints no size that the program reads: \"much\""}},
        {"du with a decimal comma", [](Facts &f) { answer(f, Question::ApplicationSize, "1,5M\t/home/dest/\n"); }, {}},
        {"empty folder", [](Facts &f) { answer(f, Question::ApplicationSize, "0\t/home/dest/\n"); }, {}},
        {"date prints nothing", [](Facts &f) { answer(f, Question::Time, ""); },
         {"error clock: \"date +%s\" prints \"\", which is not the system's time"}},
        {"date prints words", [](Facts &f) { answer(f, Question::Time, "now"); },
         {"error clock: \"date +%s\" prints \"now\", which is not the system's time"}},
        {"date of another day", [](Facts &f) { answer(f, Question::Time, "1000000061\n"); },
         {"error clock: \"date +%s\" prints \"1000000061\", which is not the system's time"}},
        {"date a minute later", [](Facts &f) { answer(f, Question::Time, "1000000060\n"); }, {}},
        {"sleep takes whole seconds", [](Facts &f) { answer(f, Question::ShortPause, "", "sleep: invalid\nnumber '0.2'", 1); },
         {"warning pause: \"tool -x\" fails with status 1: sleep: invalid number '0.2'"}},
        {"no display", [](Facts &f) {
             for (const auto question : {Question::Server, Question::Outputs, Question::OutputDetails, Question::Devices}) {
                 answer(f, question, "", "unable to open display", 1);
             }
         },
         {"error display: :0 does not answer: \"tool -x\" fails with status 1: unable to open display",
          "warning output: not checked: no display answers",
          "warning screen: not checked: no display answers",
          "warning rotation: not checked: no display answers",
          "warning brightness: not checked: no display answers",
          "warning touch: not checked: no display answers"}},
        {"display that is guessed", [](Facts &f) {
             f.displayIsGuessed = true;
             for (const auto question : {Question::Server, Question::Outputs, Question::OutputDetails, Question::Devices}) {
                 fail(f, question, End::CutOff);
             }
         },
         {"error display: :0 does not answer (DISPLAY is not set): \"tool -x\" hangs: no answer within 5 s",
          "error output: \"tool -x\" hangs: no answer within 5 s",
          "error screen: \"tool -x\" hangs: no answer within 5 s",
          "error rotation: \"tool -x\" hangs: no answer within 5 s",
          "error brightness: \"tool -x\" hangs: no answer within 5 s",
          "error touch: \"tool -x\" hangs: no answer within 5 s"}},
        {"no X tools", [](Facts &f) {
             for (const auto tool : {Tool::Xset, Tool::Xrandr, Tool::Xinput}) {
                 removeTool(f, tool);
             }
         },
         {"error tool xinput: not on PATH or not executable",
          "error tool xrandr: not on PATH or not executable",
          "error tool xset: not on PATH or not executable",
          "error display: :0 does not answer",
          "warning output: not checked: the tool is missing",
          "warning screen: not checked: the tool is missing",
          "warning rotation: not checked: the tool is missing",
          "warning brightness: not checked: the tool is missing",
          "warning touch: not checked: the tool is missing"}},
        {"no output connected", [](Facts &f) { answer(f, Question::Outputs, "Screen 0: current 800 x 600\nVGA1 disconnected\n"); },
         {"error output: \"xrandr -q\" names no connected output"}},
        {"outputs in another format", [](Facts &f) { answer(f, Question::Outputs, "DP-1 \"x\" 800x600\n"); },
         {"error output: \"xrandr -q\" names no connected output",
          "warning screen: \"xrandr -q\" does not print the size of the screen"}},
        {"two outputs", [](Facts &f) { answer(f, Question::Outputs, "Screen 0: current 1600 x 600\nA connected x\nB connected x\n"); },
         {"warning output: several outputs are connected; the program uses the last one,  B"}},
        {"small screen", [](Facts &f) { answer(f, Question::Outputs, "Screen 0: current 799 x 600\nA connected x\n"); },
         {"warning screen: 799x600 is smaller than the pages"}},
        {"upright screen", [](Facts &f) { answer(f, Question::Outputs, "Screen 0: current 480 x 800\nA connected x\n"); }, {}},
        {"narrow screen", [](Facts &f) { answer(f, Question::Outputs, "Screen 0: current 479 x 800\nA connected x\n"); },
         {"warning screen: 479x800 is smaller than the pages"}},
        {"rotation that is asked for", [](Facts &f) {
             answer(f, Question::Outputs, "Screen 0: current 800 x 600\nA connected 800x600+0+0 0mm x 0mm\n");
             putFile(f, Paths::settingsFile, "app.orientation=vertical\n");
         },
         {"warning rotation: the display cannot be turned, and the settings ask for it"}},
        {"rotation that nobody asks for", [](Facts &f) {
             answer(f, Question::Outputs, "Screen 0: current 800 x 600\nA connected 800x600+0+0 0mm x 0mm\n");
             putFile(f, Paths::settingsFile, "app.orientation=horizontal\n");
         }, {}},
        {"no gamma tables", [](Facts &f) { answer(f, Question::OutputDetails, "A connected x\n"); },
         {"warning brightness: the display has no brightness that xrandr could set"}},
        {"no font of ours", [](Facts &f) { answer(f, Question::Fonts, "Helvetica\n"); },
         {"warning fonts: none of the program's fonts is installed: texts may not fit"}},
        {"substitute font", [](Facts &f) { answer(f, Question::Fonts, "Helvetica\nDejaVu Sans,DejaVu Sans Light\n"); }, {}},
        {"no list of fonts", [](Facts &f) { f.fontList.clear(); f.answers[size_t(Question::Fonts)].reset(); }, {}},
        {"another touch controller", [](Facts &f) { answer(f, Question::Devices, "penmount\nEloTouch\n"); },
         {"error touch: no input device has \"PenMount\" in its name"}},
        {"controller without buttons", [](Facts &f) { answer(f, Question::DeviceState, "ValuatorClass\n"); },
         {"error touch: xinput does not print the state of the first button of \"PenMount USB\""}},
        {"controller that is not answered for", [](Facts &f) { answer(f, Question::DeviceState, "", "unable to find device", 1); },
         {"error touch: \"tool -x\" fails with status 1: unable to find device"}},
        {"finger", [](Facts &f) { answer(f, Question::DeviceState, "\tbutton[1]=down\n"); },
         {"warning touch: \"PenMount USB\" reports a touch"}},
    };
    // clang-format on
    return things;
}

/// The checks that use the answer to a question.
struct Askers
{
    Question question;
    QStringList subjects;
};

const QList<Askers> &allAskers()
{
    // clang-format off
    static const QList<Askers> askers{
        {Question::Outputs,         {"output", "screen", "rotation"}},
        {Question::OutputDetails,   {"brightness"}},
        {Question::Devices,         {"touch"}},
        {Question::DeviceState,     {"touch"}},
        {Question::Server,          {"display"}},
        {Question::FirstPort,       {"ifconfig"}},
        {Question::SecondPort,      {"ifconfig"}},
        {Question::Interfaces,      {"interface list"}},
        {Question::ApplicationSize, {"size"}},
        {Question::Time,            {"clock"}},
        {Question::TarVersion,      {"unpacking"}},
        {Question::Unpack,          {"unpacking"}},
        {Question::DhcpVersion,     {"DHCP client"}},
        {Question::InterfacesFile,  {"interfaces file"}},
        {Question::Fonts,           {"fonts"}},
        {Question::ScriptSyntax,    {"runtime script"}},
        {Question::ShortPause,      {"pause"}},
        {Question::GuardStatus,     {"guard"}},
    };
    // clang-format on
    return askers;
}
} // namespace

class TestDoctorTools : public QObject
{
    Q_OBJECT
private slots:
    void brokenThing_data() { addBrokenThings(brokenThings()); }
    void brokenThing();
    void reportsEveryMissingTool_data();
    void reportsEveryMissingTool();
    void reportsEveryFailure_data();
    void reportsEveryFailure();
    void reportsGarbage_data();
    void reportsGarbage();
};

void TestDoctorTools::brokenThing()
{
    QFETCH(qsizetype, index);
    QCOMPARE(judgeBrokenThing(brokenThings().at(index)), QString());
}

void TestDoctorTools::reportsEveryMissingTool_data()
{
    QTest::addColumn<size_t>("tool");
    for (size_t tool = 0; tool < std::size(toolNames); ++tool) {
        QTest::newRow(toolNames[tool]) << tool;
    }
}

void TestDoctorTools::reportsEveryMissingTool()
{
    QFETCH(size_t, tool);
    Facts facts = healthyFacts();
    removeTool(facts, Tool(tool));
    const QStringList said = complaints(facts);
    const QString line = QString("tool %1: not on PATH or not executable").arg(toolNames[tool]);
    QCOMPARE(said.filter(line).size(), 1);
    for (const QString &other : said) {
        QVERIFY2(other.contains(line) || other.contains("not checked"), qPrintable(other));
    }
}

void TestDoctorTools::reportsEveryFailure_data()
{
    QTest::addColumn<qsizetype>("index");
    QTest::addColumn<End>("end");
    QTest::addColumn<QString>("fate");
    QCOMPARE(size_t(allAskers().size()), questionCount);
    for (qsizetype index = 0; index < allAskers().size(); ++index) {
        const int number = int(allAskers().at(index).question);
        QTest::addRow("%d is not started", number)
            << index << End::NotStarted << "cannot be started";
        QTest::addRow("%d hangs", number) << index << End::CutOff << "hangs: no answer within 5 s";
        QTest::addRow("%d never stops writing", number)
            << index << End::Stopped << "never stops writing";
        QTest::addRow("%d crashes", number) << index << End::Crashed << "crashes";
        QTest::addRow("%d fails", number) << index << End::Ended << "fails with status 3: no";
    }
}

void TestDoctorTools::reportsEveryFailure()
{
    QFETCH(qsizetype, index);
    QFETCH(End, end);
    QFETCH(QString, fate);
    const Askers &askers = allAskers().at(index);
    Facts facts = healthyFacts();
    if (end == End::Ended) {
        answer(facts, askers.question, "some output\n", "no", 3);
    } else {
        fail(facts, askers.question, end);
    }
    QStringList expected;
    for (const QString &subject : askers.subjects) {
        if (askers.question == Question::TarVersion) { // not an option of every tar
            expected += "warning unpacking: tar unpacks a sample package but is not GNU tar";
        } else {
            expected += QString("%1 %2: \"tool -x\" %3")
                            .arg(askers.question == Question::ShortPause
                                         || askers.question == Question::Fonts
                                     ? "warning"
                                     : "error",
                                 subject, fate);
        }
    }
    QCOMPARE(complaints(facts), expected);
}

void TestDoctorTools::reportsGarbage_data()
{
    QTest::addColumn<QByteArray>("garbage");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("zero bytes") << QByteArray(5000, '\0');
    QTest::newRow("all bytes") << [] {
        QByteArray bytes;
        for (int value = 0; value < 1024; ++value) {
            bytes += char(value);
        }
        return bytes;
    }();
    QTest::newRow("one line of 2 MB") << QByteArray(2'000'000, 'x');
    QTest::newRow("lines of 2 MB") << QByteArray("eth0: x\n").repeated(250'000);
}

/// A check complains about garbage in a short text, however much there is.
void TestDoctorTools::reportsGarbage()
{
    QFETCH(QByteArray, garbage);
    for (const Askers &askers : allAskers()) {
        Facts facts = healthyFacts();
        answer(facts, askers.question, garbage, garbage, 0);
        const Findings findings = runChecks(facts);
        for (const Finding &finding : findings) {
            QVERIFY2(finding.text.size() < 200, qPrintable(finding.text.left(300)));
        }
        const QStringList said = complaints(facts);
        if (askers.question == Question::Server || askers.question == Question::InterfacesFile
            || askers.question == Question::ScriptSyntax || askers.question == Question::Unpack
            || askers.question == Question::ShortPause) { // these checks only use the exit status
            QCOMPARE(said, QStringList());
        } else {
            QVERIFY2(!said.isEmpty() && said.first().contains(' ' + askers.subjects.first() + ':'),
                     qPrintable(said.join('\n')));
        }
    }
}

QTEST_GUILESS_MAIN(TestDoctorTools)
#include "tst_doctortools.moc"
