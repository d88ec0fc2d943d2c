#include "system/run/process.h"

#include "commandtext.h"
#include "faketools.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QTest>

#include <sys/resource.h>

using namespace std::chrono_literals;

namespace {
#ifdef __SANITIZE_ADDRESS__
constexpr qint64 mostMemory = 600'000; // KiB; the sanitizer keeps freed memory
#else
constexpr qint64 mostMemory = 100'000; // KiB
#endif

Command shell(const QString &text)
{
    return {"/bin/sh", {"-c", text}};
}

template <qsizetype bytes> bool hasWrittenMoreThan(const ToolResult &soFar)
{
    return soFar.output.size() + soFar.errors.size() > bytes;
}

bool isRunning(const QString &processId)
{
    // A zombie has an empty command line.
    QFile commandLine("/proc/" + processId + "/cmdline");
    return commandLine.open(QIODevice::ReadOnly) && !commandLine.readAll().isEmpty();
}

/// Runs a tool and ends it after this time.
using RunUntil = void (*)(const Command &, std::chrono::milliseconds);

void addRunRows()
{
    QTest::addColumn<RunUntil>("run");
    QTest::newRow("collected") << RunUntil(
        [](const Command &command, std::chrono::milliseconds limit) {
            QCOMPARE(runTool(command, {.limit = limit}).end, ToolResult::End::CutOff);
        });
    QTest::newRow("stopped") << RunUntil([](const Command &command,
                                            std::chrono::milliseconds limit) {
        const QDeadlineTimer deadline(limit);
        const auto hasExpired = [&deadline](const ToolResult &) { return deadline.hasExpired(); };
        QCOMPARE(runTool(command, {.shallStop = hasExpired}).end, ToolResult::End::Stopped);
    });
    QTest::newRow("forwarded") << RunUntil(runAndWait);
    QTest::newRow("in a folder") << RunUntil(
        [](const Command &command, std::chrono::milliseconds limit) {
            runInFolder(command, "/", limit);
        });
}

/// Peak memory of this process, in KiB.
qint64 peakMemory()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}
} // namespace

Q_DECLARE_METATYPE(RunUntil)

class TestProcess : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void collectsBothStreams();
    void passesArgumentsWithoutShell();
    void collectsMoreThanAPipeHolds();
    void keepsTheFirst16MiB();
    void missingProgramFailsAtOnce_data();
    void missingProgramFailsAtOnce();
    void cutsOffAtTheLimit();
    void letsAToolEndItself_data();
    void letsAToolEndItself();
    void killsAToolThatDoesNotEnd_data();
    void killsAToolThatDoesNotEnd();
    void discardsOutputWrittenAfterTheLimit();
    void waitsForAToolThatClosedItsOutput();
    void appendsOutputToAFile();
    void runsInAFolder();
    void reportsHowItEnded_data();
    void reportsHowItEnded();
    void endsToolsThatWriteTooMuch_data();
    void endsToolsThatWriteTooMuch();
    void inputIsEmpty();
    void doesNotWaitForABackgroundChild();
    void readsOutputAsText();
    void runAndWaitWaits();
    void runAndWaitKeepsItsLimit();
    void runAndWaitIgnoresFailures();
    void startDetachedDoesNotWait();
    void splitsCommandLines_data();
    void splitsCommandLines();
    void byteTextEndsAtZero();
};

/// QProcess warns if it is destroyed while its process runs. No test may cause that warning.
void TestProcess::init()
{
    QTest::failOnWarning(QRegularExpression(".*"));
}

void TestProcess::collectsBothStreams()
{
    const ToolResult result = runTool(shell("printf out; printf err >&2; exit 3"));
    QVERIFY(result.hasFinished());
    QCOMPARE(result.output, QByteArray("out"));
    QCOMPARE(result.errors, QByteArray("err"));
}

void TestProcess::passesArgumentsWithoutShell()
{
    const ToolResult result = runTool({"printf", {"[%s]", "a b", "", "$HOME", "\"*'"}});
    QCOMPARE(result.output, QByteArray("[a b][][$HOME][\"*']"));
}

void TestProcess::collectsMoreThanAPipeHolds()
{
    constexpr qsizetype tenMegabytes = 10'000'000;
    const ToolResult result = runTool(
        shell("head -c 10000000 /dev/zero; head -c 10000000 /dev/zero >&2"), {.limit = 30000ms});
    QVERIFY(result.hasFinished());
    QCOMPARE(result.output.size(), tenMegabytes);
    QCOMPARE(result.errors.size(), tenMegabytes);
}

void TestProcess::keepsTheFirst16MiB()
{
    constexpr qsizetype most = 16 * 1024 * 1024;
    const ToolResult ended
        = runTool(shell("printf first; head -c 30000000 /dev/zero; exec head -c 30000000 "
                        "/dev/zero >&2"),
                  {.limit = 30000ms});
    QVERIFY(ended.hasFinished());
    QCOMPARE(ended.output.size(), most);
    QVERIFY(ended.output.startsWith("first"));
    QCOMPARE(ended.errors.size(), most);

    const qint64 before = peakMemory();
    const ToolResult endless = runTool(shell("trap '' TERM; exec yes"), {.limit = 1000ms});
    QVERIFY(!endless.hasFinished());
    QCOMPARE(endless.output.size(), most);
    const ToolResult endlessErrors = runTool(shell("exec yes >&2"), {.limit = 1000ms});
    QVERIFY(!endlessErrors.hasFinished());
    QCOMPARE(endlessErrors.errors.size(), most);
    const qint64 grown = peakMemory() - before;
    QVERIFY2(grown < mostMemory, qPrintable(QString::number(grown)));
}

void TestProcess::missingProgramFailsAtOnce_data()
{
    QTest::addColumn<Command>("command");
    QTest::newRow("not on PATH") << Command{"no-such-tool", {"x"}};
    QTest::newRow("not executable") << Command{"/etc/passwd"};
    QTest::newRow("directory") << Command{"/etc"};
    QTest::newRow("empty name") << Command{""};
    QTest::newRow("empty command") << Command{};
}

void TestProcess::missingProgramFailsAtOnce()
{
    QFETCH(Command, command);
    QElapsedTimer timer;
    timer.start();
    const ToolResult result = runTool(command, {.limit = 30000ms});
    QVERIFY(!result.hasFinished());
    QVERIFY(result.output.isEmpty());
    QVERIFY(result.errors.isEmpty());
    QVERIFY(timer.elapsed() < 5000);
}

void TestProcess::cutsOffAtTheLimit()
{
    QElapsedTimer timer;
    timer.start();
    const ToolResult result = runTool(shell("echo $$; exec sleep 60"), {.limit = 500ms});
    QVERIFY(timer.elapsed() >= 500);
    QVERIFY(timer.elapsed() < 10000);
    QVERIFY(!result.hasFinished());
    const QString processId = QString::fromLatin1(result.output).trimmed();
    QVERIFY(processId.toInt() > 0); // its output before the limit is kept
    QVERIFY(!isRunning(processId));
}

void TestProcess::letsAToolEndItself_data()
{
    addRunRows();
}

void TestProcess::letsAToolEndItself()
{
    QFETCH(RunUntil, run);
    const QTemporaryDir folder;
    const QString path = folder.filePath("ended");
    QElapsedTimer timer;
    timer.start();
    run({"/bin/sh",
         {"-c",
          "trap 'echo bye; echo bye >&2; echo x >\"$1\"; exit' TERM; while :; do sleep 0.02; done",
          "sh", path}},
        600ms);
    QVERIFY(timer.elapsed() >= 600);
    QVERIFY(QFile::exists(path));
}

void TestProcess::killsAToolThatDoesNotEnd_data()
{
    addRunRows();
}

void TestProcess::killsAToolThatDoesNotEnd()
{
    QFETCH(RunUntil, run);
    const QTemporaryDir folder;
    QFile processId(folder.filePath("pid"));
    QElapsedTimer timer;
    timer.start();
    run({"/bin/sh",
         {"-c", "trap '' TERM; echo $$ >\"$1\"; exec sleep 60", "sh", processId.fileName()}},
        600ms);
    QVERIFY2(timer.elapsed() >= 1100 && timer.elapsed() < 10000,
             qPrintable(QString::number(timer.elapsed())));
    QVERIFY(processId.open(QIODevice::ReadOnly));
    QVERIFY(!isRunning(processId.readAll().trimmed()));
}

/// The pipe must be read nevertheless: a tool that waits for space in it would be killed.
void TestProcess::discardsOutputWrittenAfterTheLimit()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("ended");
    const ToolResult result
        = runTool({"/bin/sh",
                   {"-c",
                    "trap 'head -c 5000000 /dev/zero; echo x >\"$1\"; exit' TERM; echo first; "
                    "while :; do sleep 0.02; done",
                    "sh", path}},
                  {.limit = 600ms});
    QCOMPARE(result.end, ToolResult::End::CutOff);
    QCOMPARE(result.output, QByteArray("first\n"));
    QVERIFY(QFile::exists(path));
}

void TestProcess::waitsForAToolThatClosedItsOutput()
{
    const ToolResult result = runTool(shell("echo x; exec >&- 2>&-; sleep 0.3; exit 4"));
    QCOMPARE(result.status, 4);
    QCOMPARE(result.output, QByteArray("x\n"));
}

void TestProcess::appendsOutputToAFile()
{
    QTemporaryFile file;
    QVERIFY(file.open() && file.write("first ") == 6 && file.flush());
    const ToolResult result
        = runTool(shell("printf second; printf err >&2"), {.outputPath = file.fileName()});
    QCOMPARE(result.end, ToolResult::End::Ended);
    QCOMPARE(result.output, QByteArray());
    QCOMPARE(result.errors, QByteArray("err"));
    QVERIFY(file.seek(0));
    QCOMPARE(file.readAll(), QByteArray("first second"));
}

void TestProcess::runsInAFolder()
{
    const QTemporaryDir folder;
    QCOMPARE(runTool({"pwd", {"-P"}}, {.folder = folder.path()}).output.trimmed(),
             QDir(folder.path()).canonicalPath().toUtf8());
    QCOMPARE(runTool({"pwd"}, {.folder = "/no/such/folder"}).end, ToolResult::End::NotStarted);
    const Command leaveTrace = shell("echo x >here");
    runInFolder(leaveTrace, folder.path(), noLimit);
    QVERIFY(QFile::exists(folder.filePath("here")));
    runInFolder({"touch", {folder.filePath("there")}}, "/no/such/folder", noLimit);
    QVERIFY(!QFile::exists(folder.filePath("there")));
}

void TestProcess::reportsHowItEnded_data()
{
    using End = ToolResult::End;
    QTest::addColumn<Command>("command");
    QTest::addColumn<ToolResult>("expected");
    QTest::newRow("ends") << shell("echo a; echo b >&2; exit 3")
                          << ToolResult{End::Ended, 3, "a\n", "b\n"};
    QTest::newRow("missing") << Command{"no-such-tool"} << ToolResult{};
    QTest::newRow("not executable") << Command{"/etc/passwd"} << ToolResult{};
    QTest::newRow("empty") << Command{} << ToolResult{};
    QTest::newRow("crashes") << shell("echo a; kill -9 $$")
                             << ToolResult{End::Crashed, -1, "a\n", ""};
    QTest::newRow("hangs") << shell("echo a; trap '' TERM; exec sleep 60")
                           << ToolResult{End::CutOff, -1, "a\n", ""};
    QTest::newRow("just within the limit")
        << shell("printf 1234; printf 56 >&2") << ToolResult{End::Ended, 0, "1234", "56"};
    QTest::newRow("too much") << shell("printf 1234; printf 567 >&2; exec sleep 60")
                              << ToolResult{End::Stopped, -1, "1234", "567"};
}

void TestProcess::reportsHowItEnded()
{
    QFETCH(Command, command);
    QFETCH(ToolResult, expected);
    QElapsedTimer timer;
    timer.start();
    const ToolResult given = runTool(command, {.limit = 700ms, .shallStop = hasWrittenMoreThan<6>});
    QVERIFY(timer.elapsed() < 5000);
    QCOMPARE(given.end, expected.end);
    QCOMPARE(given.status, expected.status);
    QCOMPARE(given.output, expected.output);
    QCOMPARE(given.errors, expected.errors);
}

void TestProcess::endsToolsThatWriteTooMuch_data()
{
    QTest::addColumn<Command>("command");
    QTest::newRow("output") << Command{"yes"};
    QTest::newRow("errors") << shell("exec yes >&2");
}

/// The tool must end soon, because its output until then is kept in memory.
void TestProcess::endsToolsThatWriteTooMuch()
{
    QFETCH(Command, command);
    const ToolResult given
        = runTool(command, {.limit = 30000ms, .shallStop = hasWrittenMoreThan<100>});
    QCOMPARE(given.end, ToolResult::End::Stopped);
    QVERIFY(given.output.size() + given.errors.size() < 4'000'000);
}

void TestProcess::inputIsEmpty()
{
    QVERIFY(runTool({"cat"}, {.limit = 10000ms}).hasFinished());
}

void TestProcess::doesNotWaitForABackgroundChild()
{
    const ToolResult result = runTool(shell("sleep 20 & echo done"), {.limit = 15000ms});
    QVERIFY(result.hasFinished());
    QCOMPARE(result.output, QByteArray("done\n"));
}

void TestProcess::readsOutputAsText()
{
    QCOMPARE(readOutput(shell("printf 'größe\\n'; echo x >&2"), 10000ms),
             QString::fromUtf8("größe\n"));
    QCOMPARE(readOutput(shell("printf part; exec sleep 60"), 500ms), QString("part"));
    QCOMPARE(readOutput({"no-such-tool"}, 10000ms), QString());
}

void TestProcess::runAndWaitWaits()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("done");
    runAndWait({"/bin/sh", {"-c", "sleep 0.2; echo x >\"$1\"", "sh", path}});
    QVERIFY(QFile::exists(path));
}

void TestProcess::runAndWaitKeepsItsLimit()
{
    QElapsedTimer timer;
    timer.start();
    runAndWait(shell("exec sleep 60"), 500ms);
    QVERIFY2(timer.elapsed() >= 500 && timer.elapsed() < 10000,
             qPrintable(QString::number(timer.elapsed())));
}

void TestProcess::runAndWaitIgnoresFailures()
{
    runAndWait({"no-such-tool"});
    runAndWait({});
    runAndWait(shell("exit 7"));
    runAndWait(shell("kill -KILL $$"));
    const FakeTools tools({"fails"});
    tools.setBody("fails", "exit 1");
    runAndWait({"fails", {"a b"}});
    QCOMPARE(tools.calls(), QStringList{"fails [a b]"});
}

void TestProcess::startDetachedDoesNotWait()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("done");
    QElapsedTimer timer;
    timer.start();
    QVERIFY(startDetached({"/bin/sh", {"-c", "sleep 1; echo x >\"$1\"", "sh", path}}));
    QVERIFY(timer.elapsed() < 900);
    QVERIFY(!QFile::exists(path));
    QTRY_VERIFY(QFile::exists(path));
    QVERIFY(!startDetached({"no-such-tool"}));
}

void TestProcess::splitsCommandLines_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<Command>("command");
    QTest::newRow("empty") << "" << Command{};
    QTest::newRow("two words") << "ifconfig eth0" << Command{"ifconfig", {"eth0"}};
    QTest::newRow("two blanks and quotes") << "xinput query-state  \"PenMount USB\""
                                           << Command{"xinput", {"query-state", "PenMount USB"}};
    QTest::newRow("three quotes stand for one") << "a \"\"\"b\"\"\"" << Command{"a", {"\"b\""}};
}

void TestProcess::splitsCommandLines()
{
    QFETCH(QString, line);
    QFETCH(Command, command);
    QCOMPARE(splitCommandLine(line), command);
}

void TestProcess::byteTextEndsAtZero()
{
    QCOMPARE(byteText(QByteArray("a\0b", 3)), QString("a"));
    QCOMPARE(byteText("\xE9"), QString(QChar(0xE9)));
    QCOMPARE(byteText({}), QString(""));
}

QTEST_GUILESS_MAIN(TestProcess)
#include "tst_process.moc"
