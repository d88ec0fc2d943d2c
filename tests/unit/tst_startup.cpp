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
    void shieldsFromEnvironment();
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

void TestStartup::shieldsFromEnvironment()
{
    qputenv("QT_SCALE_FACTOR", "2");
    qputenv("QT_FONT_DPI", "200");
    shieldFromEnvironment();
    QVERIFY(!qEnvironmentVariableIsSet("QT_SCALE_FACTOR"));
    QVERIFY(!qEnvironmentVariableIsSet("QT_FONT_DPI"));
    QCOMPARE(qgetenv("QT_ENABLE_HIGHDPI_SCALING"), QByteArray("0"));
}

void TestStartup::quotesWithoutEscapes()
{
    QCOMPARE(quotedText(QString::fromUtf8("ä\n\"")), QString::fromUtf8("\"ä\n\"\""));
    QCOMPARE(quotedList({}), QString("()"));
    QCOMPARE(quotedList({"eth0", "-r"}), QString("(\"eth0\", \"-r\")"));
}

QTEST_GUILESS_MAIN(TestStartup)
#include "tst_startup.moc"
