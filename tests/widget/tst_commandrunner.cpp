#include "shell/biosinterface.h"

#include "debuglog.h"
#include "faketools.h"
#include "panelguard.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTest>

#include <optional>

class TestCommandRunner : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanupTestCase();
    void commandLineAndArgumentsAreTheSame();
    void groupsWithDoubleQuotes();
    void resultAndDebugLine_data();
    void resultAndDebugLine();
    void cutsOffAtTheLimit();
    void largeOutputArrivesWhole();
    void echoesTheEnvironment();

private:
    std::optional<FakeTools> m_tools;
    BiosInterface *m_window = nullptr;
};

void TestCommandRunner::initTestCase()
{
    requirePanel();
    m_tools.emplace(QStringList{"xrandr", "xset", "xinput", "ifconfig"});
    m_window = new BiosInterface;
}

void TestCommandRunner::cleanupTestCase()
{
    delete m_window;
}

void TestCommandRunner::commandLineAndArgumentsAreTheSame()
{
    m_tools->setBody("ifconfig", "echo \"$# $1\"");
    const auto separate = m_window->doProcess("ifconfig", {"eth0"}, -1);
    const auto line = m_window->doProcess("ifconfig eth0", {}, -1);
    QCOMPARE(separate.first, QString("1 eth0\n"));
    QCOMPARE(line, separate);
    const QStringList calls = m_tools->calls();
    QCOMPARE(calls.last(), QString("ifconfig [eth0]"));
    QCOMPARE(calls.at(calls.size() - 2), calls.last());
}

void TestCommandRunner::groupsWithDoubleQuotes()
{
    QCOMPARE(m_window->doProcess("printf [%s] \"a b\" c", {}, -1).first, QString("[a b][c]"));
    QCOMPARE(m_window->doProcess("printf", {"[%s]", "a b"}, -1).first, QString("[a b]"));
}

void TestCommandRunner::resultAndDebugLine_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("errors");
    QTest::addColumn<QString>("debugLine");
    const QStringList noArguments;
    const auto shell = [](const QString &text) { return QStringList{"-c", text}; };
    QTest::newRow("nothing written") << "true" << noArguments << ""
                                     << ""
                                     << "doProcess \"true\" () true \"\" \"\"";
    QTest::newRow("exit code is not looked at") << "false" << noArguments << ""
                                                << ""
                                                << "doProcess \"false\" () true \"\" \"\"";
    QTest::newRow("two arguments")
        << "echo" << QStringList{"eth0", "-r"} << "eth0 -r\n"
        << ""
        << "doProcess \"echo\" (\"eth0\", \"-r\") true \"eth0 -r\n\" \"\"";
    QTest::newRow("error text only")
        << "sh" << shell("echo broken >&2") << ""
        << "broken\n"
        << "doProcess \"sh\" (\"-c\", \"echo broken >&2\") true \"\" \"broken\n\"";
    QTest::newRow("texts are not escaped")
        << "sh" << shell("printf '\"\\t\\\\'") << "\"\t\\"
        << ""
        << "doProcess \"sh\" (\"-c\", \"printf '\"\\t\\\\'\") true \"\"\t\\\" \"\"";
    QTest::newRow("cut at a zero byte") << "printf" << QStringList{"a\\0b"} << "a"
                                        << ""
                                        << "doProcess \"printf\" (\"a\\0b\") true \"a\" \"\"";
    QTest::newRow("8-bit characters")
        << "printf" << QStringList{"\\303\\244"} << QString::fromLatin1("\xC3\xA4") << ""
        << QString::fromLatin1("doProcess \"printf\" (\"\\303\\244\") true \"\xC3\xA4\" \"\"");
    QTest::newRow("cannot be started") << "no-such-tool" << QStringList{"x"} << ""
                                       << "not finished"
                                       << "doProcess \"no-such-tool\" (\"x\") false \"\" \"\"";
    QTest::newRow("nothing to start") << "" << noArguments << ""
                                      << "not finished"
                                      << "doProcess \"\" () false \"\" \"\"";
}

void TestCommandRunner::resultAndDebugLine()
{
    QFETCH(QString, program);
    QFETCH(QStringList, arguments);
    QFETCH(QString, output);
    QFETCH(QString, errors);
    QFETCH(QString, debugLine);
    const DebugLog log;
    const auto result = m_window->doProcess(program, arguments, 20000);
    QCOMPARE(result.first, output);
    QCOMPARE(result.second, errors);
    QCOMPARE(log.lines(), QStringList{debugLine});
}

void TestCommandRunner::cutsOffAtTheLimit()
{
    const DebugLog log;
    QElapsedTimer timer;
    timer.start();
    const auto result
        = m_window->doProcess("sh", {"-c", "echo early; echo late >&2; exec sleep 60"}, 1000);
    QVERIFY2(timer.elapsed() >= 1000 && timer.elapsed() < 20000,
             qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(result.first, QString("early\n"));
    QCOMPARE(result.second, QString("not finished")); // replaces what it wrote to standard error
    QVERIFY(log.lines().value(0).endsWith(" false \"early\n\" \"late\n\""));
}

void TestCommandRunner::largeOutputArrivesWhole()
{
    const DebugLog log; // keeps 10 MB off the terminal
    const auto result
        = m_window->doProcess("sh", {"-c", "head -c 10000000 /dev/zero | tr '\\0' x"}, 30000);
    QCOMPARE(result.first.size(), 10'000'000);
    QCOMPARE(result.second, QString());
}

void TestCommandRunner::echoesTheEnvironment()
{
    qputenv("PANEL_TEST", "a \"b\"");
    const DebugLog log;
    m_window->echoEnviromentProcess("ignored");
    QCOMPARE(log.lines().size(), 1);
    const QString line = log.lines().constFirst();
    QVERIFY(line.startsWith("(\"") && line.endsWith("\")"));
    QVERIFY(line.contains("\"PANEL_TEST=a \"b\"\""));
    QVERIFY(line.contains("\", \"PATH="));
    QVERIFY(!line.contains("ignored"));
}

QTEST_MAIN(TestCommandRunner)
#include "tst_commandrunner.moc"
