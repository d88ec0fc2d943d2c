#include "system/startup.h"

#include "debuglog.h"
#include "system/debugtext.h"

#include <QTest>

class TestStartup : public QObject
{
    Q_OBJECT
private slots:
    void recognisesVersionQuery_data();
    void recognisesVersionQuery();
    void printsVersion();
    void clearsTheEnvironment();
    void quotesWithoutEscapes();
};

void TestStartup::recognisesVersionQuery_data()
{
    QTest::addColumn<QByteArrayList>("arguments");
    QTest::addColumn<bool>("isQuery");
    QTest::newRow("-v") << QByteArrayList{"-v"} << true;
    QTest::newRow("-V with blanks") << QByteArrayList{" \t-V  "} << true;
    QTest::newRow("none") << QByteArrayList{} << false;
    QTest::newRow("two arguments") << QByteArrayList{"-v", "extra"} << false;
    QTest::newRow("--version") << QByteArrayList{"--version"} << false;
    QTest::newRow("blank inside") << QByteArrayList{"- v"} << false;
    QTest::newRow("empty") << QByteArrayList{""} << false;
}

void TestStartup::recognisesVersionQuery()
{
    QFETCH(QByteArrayList, arguments);
    QFETCH(bool, isQuery);
    QList<const char *> vector{"talmero-bios"};
    for (const QByteArray &argument : arguments) {
        vector += argument.constData();
    }
    QCOMPARE(isVersionQuery(static_cast<int>(vector.size()), vector.constData()), isQuery);
}

void TestStartup::printsVersion()
{
    const DebugLog log;
    printVersion();
    QCOMPARE(log.lines(), QStringList{"Version:  Aug 31 2015 16:26:17"});
}

void TestStartup::clearsTheEnvironment()
{
    const char *const scaling[] = {"QT_SCALE_FACTOR", "QT_SCREEN_SCALE_FACTORS",
                                   "QT_USE_PHYSICAL_DPI", "QT_FONT_DPI", "QT_STYLE_OVERRIDE"};
    for (const char *variable : scaling) {
        qputenv(variable, "2");
    }
    qputenv("QT_NO_GLIB", "0");
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    shieldFromEnvironment();
    for (const char *variable : scaling) {
        QVERIFY2(!qEnvironmentVariableIsSet(variable), variable);
    }
    QCOMPARE(qgetenv("QT_ENABLE_HIGHDPI_SCALING"), QByteArray("0"));
    QCOMPARE(qgetenv("QT_NO_GLIB"), QByteArray("1"));
    QCOMPARE(qgetenv("DBUS_SESSION_BUS_ADDRESS"), QByteArray("disabled:"));

    const QProcessEnvironment given = givenEnvironment();
    QCOMPARE(given.value("QT_SCALE_FACTOR"), QString("2"));
    QCOMPARE(given.value("QT_NO_GLIB"), QString("0"));
    QVERIFY(!given.contains("DBUS_SESSION_BUS_ADDRESS"));
}

void TestStartup::quotesWithoutEscapes()
{
    QCOMPARE(quotedText(QString::fromUtf8("ä\n\"")), QString::fromUtf8("\"ä\n\"\""));
    QCOMPARE(quotedList({}), QString("()"));
    QCOMPARE(quotedList({"eth0", "-r"}), QString("(\"eth0\", \"-r\")"));
}

QTEST_GUILESS_MAIN(TestStartup)
#include "tst_startup.moc"
