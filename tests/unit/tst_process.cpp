#include "system/process.h"

#include "faketools.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/resource.h>

using namespace std::chrono_literals;

namespace {
#ifdef __SANITIZE_ADDRESS__
constexpr qint64 mostMemory = 600'000; // KiB: the sanitizer holds on to what is freed
#else
constexpr qint64 mostMemory = 100'000; // KiB
#endif

QStringList shell(const QString &text)
{
    return {"/bin/sh", "-c", text};
}

bool isRunning(const QString &processId)
{
    // A zombie has an empty command line.
    QFile commandLine("/proc/" + processId + "/cmdline");
    return commandLine.open(QIODevice::ReadOnly) && !commandLine.readAll().isEmpty();
}

/// The most memory that this process ever had, in KiB.
qint64 peakMemory()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}
} // namespace

class TestProcess : public QObject
{
    Q_OBJECT
private slots:
    void collectsBothStreams();
    void passesArgumentsWithoutShell();
    void collectsMoreThanAPipeHolds();
    void keepsTheFirstOfTooMuch();
    void missingProgramAnswersAtOnce_data();
    void missingProgramAnswersAtOnce();
    void cutsOffAtTheLimit();
    void killsWhatIgnoresThePoliteEnd();
    void asksTools_data();
    void asksTools();
    void endsToolsThatWriteTooMuch_data();
    void endsToolsThatWriteTooMuch();
    void inputIsEmpty();
    void doesNotWaitForABackgroundChild();
    void readsOutputAsText();
    void runAndWaitWaits();
    void runAndWaitKeepsItsLimit();
    void runAndWaitPassesOverFailures();
    void startDetachedDoesNotWait();
    void splitsCommandLines_data();
    void splitsCommandLines();
    void byteTextEndsAtZero();
};

void TestProcess::collectsBothStreams()
{
    const ProcessResult result = runLimited(shell("printf out; printf err >&2; exit 3"), noLimit);
    QVERIFY(result.finished);
    QCOMPARE(result.output, QByteArray("out"));
    QCOMPARE(result.errors, QByteArray("err"));
}

void TestProcess::passesArgumentsWithoutShell()
{
    const ProcessResult result
        = runLimited({"printf", "[%s]", "a b", "", "$HOME", "\"*'"}, noLimit);
    QCOMPARE(result.output, QByteArray("[a b][][$HOME][\"*']"));
}

void TestProcess::collectsMoreThanAPipeHolds()
{
    constexpr qsizetype tenMegabytes = 10'000'000;
    const ProcessResult result
        = runLimited(shell("head -c 10000000 /dev/zero; head -c 10000000 /dev/zero >&2"), 30000ms);
    QVERIFY(result.finished);
    QCOMPARE(result.output.size(), tenMegabytes);
    QCOMPARE(result.errors.size(), tenMegabytes);
}

void TestProcess::keepsTheFirstOfTooMuch()
{
    constexpr qsizetype most = 16 * 1024 * 1024;
    const ProcessResult ended
        = runLimited(shell("printf first; head -c 30000000 /dev/zero; exec head -c 30000000 "
                           "/dev/zero >&2"),
                     30000ms);
    QVERIFY(ended.finished);
    QCOMPARE(ended.output.size(), most);
    QVERIFY(ended.output.startsWith("first"));
    QCOMPARE(ended.errors.size(), most);

    const qint64 before = peakMemory();
    const ProcessResult endless = runLimited({"yes"}, 1000ms);
    QVERIFY(!endless.finished);
    QCOMPARE(endless.output.size(), most);
    const ProcessResult endlessErrors = runLimited(shell("exec yes >&2"), 1000ms);
    QVERIFY(!endlessErrors.finished);
    QCOMPARE(endlessErrors.errors.size(), most);
    const qint64 grown = peakMemory() - before;
    QVERIFY2(grown < mostMemory, qPrintable(QString::number(grown)));
}

void TestProcess::missingProgramAnswersAtOnce_data()
{
    QTest::addColumn<QStringList>("command");
    QTest::newRow("not on PATH") << QStringList{"no-such-tool", "x"};
    QTest::newRow("not executable") << QStringList{"/etc/passwd"};
    QTest::newRow("directory") << QStringList{"/etc"};
    QTest::newRow("empty name") << QStringList{""};
    QTest::newRow("empty command") << QStringList{};
}

void TestProcess::missingProgramAnswersAtOnce()
{
    QFETCH(QStringList, command);
    QElapsedTimer timer;
    timer.start();
    const ProcessResult result = runLimited(command, 30000ms);
    QVERIFY(!result.finished);
    QVERIFY(result.output.isEmpty());
    QVERIFY(result.errors.isEmpty());
    QVERIFY(timer.elapsed() < 5000);
}

void TestProcess::cutsOffAtTheLimit()
{
    QElapsedTimer timer;
    timer.start();
    const ProcessResult result = runLimited(shell("echo $$; exec sleep 60"), 500ms);
    QVERIFY(timer.elapsed() >= 500);
    QVERIFY(timer.elapsed() < 10000);
    QVERIFY(!result.finished);
    const QString processId = QString::fromLatin1(result.output).trimmed();
    QVERIFY(processId.toInt() > 0); // what it wrote until then is there
    QVERIFY(!isRunning(processId));
}

void TestProcess::killsWhatIgnoresThePoliteEnd()
{
    const ProcessResult result
        = runLimited(shell("trap '' TERM; echo $$; while :; do :; done"), 500ms);
    QVERIFY(!result.finished);
    QVERIFY(!isRunning(QString::fromLatin1(result.output).trimmed()));
}

void TestProcess::asksTools_data()
{
    using End = ToolAnswer::End;
    QTest::addColumn<QStringList>("command");
    QTest::addColumn<ToolAnswer>("answer");
    QTest::newRow("ends") << shell("echo a; echo b >&2; exit 3")
                          << ToolAnswer{End::Ended, 3, "a\n", "b\n"};
    QTest::newRow("not there") << QStringList{"no-such-tool"} << ToolAnswer{};
    QTest::newRow("no program") << QStringList{"/etc/passwd"} << ToolAnswer{};
    QTest::newRow("empty") << QStringList{} << ToolAnswer{};
    QTest::newRow("crashes") << shell("echo a; kill -9 $$")
                             << ToolAnswer{End::Crashed, -1, "a\n", ""};
    QTest::newRow("hangs") << shell("echo a; trap '' TERM; exec sleep 60")
                           << ToolAnswer{End::CutOff, -1, "a\n", ""};
    QTest::newRow("just not too much")
        << shell("printf 1234; printf 56 >&2") << ToolAnswer{End::Ended, 0, "1234", "56"};
    QTest::newRow("too much") << shell("printf 1234; printf 567 >&2; exec sleep 60")
                              << ToolAnswer{End::TooMuch, -1, "1234", "567"};
}

void TestProcess::asksTools()
{
    QFETCH(QStringList, command);
    QFETCH(ToolAnswer, answer);
    QElapsedTimer timer;
    timer.start();
    const ToolAnswer given = askTool(command, 700ms, 6);
    QVERIFY(timer.elapsed() < 5000);
    QCOMPARE(given.end, answer.end);
    QCOMPARE(given.status, answer.status);
    QCOMPARE(given.output, answer.output);
    QCOMPARE(given.errors, answer.errors);
}

void TestProcess::endsToolsThatWriteTooMuch_data()
{
    QTest::addColumn<QStringList>("command");
    QTest::newRow("output") << QStringList{"yes"};
    QTest::newRow("errors") << shell("exec yes >&2");
}

/// Soon: what comes until then is in memory.
void TestProcess::endsToolsThatWriteTooMuch()
{
    QFETCH(QStringList, command);
    const ToolAnswer given = askTool(command, 30000ms, 100);
    QCOMPARE(given.end, ToolAnswer::End::TooMuch);
    QVERIFY(given.output.size() + given.errors.size() < 4'000'000);
}

void TestProcess::inputIsEmpty()
{
    QVERIFY(runLimited({"cat"}, 10000ms).finished);
}

void TestProcess::doesNotWaitForABackgroundChild()
{
    const ProcessResult result = runLimited(shell("sleep 20 & echo done"), 15000ms);
    QVERIFY(result.finished);
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
    runAndWait({"/bin/sh", "-c", "sleep 0.2; echo x >\"$1\"", "sh", path});
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

void TestProcess::runAndWaitPassesOverFailures()
{
    runAndWait({"no-such-tool"});
    runAndWait({});
    runAndWait(shell("exit 7"));
    runAndWait(shell("kill -KILL $$"));
    const FakeTools tools({"fails"});
    tools.setBody("fails", "exit 1");
    runAndWait({"fails", "a b"});
    QCOMPARE(tools.calls(), QStringList{"fails [a b]"});
}

void TestProcess::startDetachedDoesNotWait()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("done");
    QElapsedTimer timer;
    timer.start();
    QVERIFY(startDetached({"/bin/sh", "-c", "sleep 1; echo x >\"$1\"", "sh", path}));
    QVERIFY(timer.elapsed() < 900);
    QVERIFY(!QFile::exists(path));
    QTRY_VERIFY(QFile::exists(path));
    QVERIFY(!startDetached({"no-such-tool"}));
}

void TestProcess::splitsCommandLines_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QStringList>("command");
    QTest::newRow("empty") << "" << QStringList{};
    QTest::newRow("two words") << "ifconfig eth0" << QStringList{"ifconfig", "eth0"};
    QTest::newRow("two blanks and quotes") << "xinput query-state  \"PenMount USB\""
                                           << QStringList{"xinput", "query-state", "PenMount USB"};
    QTest::newRow("three quotes for one") << "a \"\"\"b\"\"\"" << QStringList{"a", "\"b\""};
}

void TestProcess::splitsCommandLines()
{
    QFETCH(QString, line);
    QFETCH(QStringList, command);
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
