#include "report.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using namespace MkPackage;

namespace {
/// A result with findings of each level.
Verification mixedVerification()
{
    Verification found;
    found.readable = true;
    found.header = PackageHeader{PackageKind::Application, 12, "K\x1b"};
    found.packedSize = 135;
    found.unpackedSize = 10240;
    found.count = 2;
    found.seconds = 0.1;
    found.findings.add(Check::Panel, Level::Ok, "unpacks it in /home/dest");
    found.findings.add(Check::Links, Level::Error, "l -> /etc: leads out");
    found.findings.add(Check::Links, Level::Warning, "m -> a: is a link");
    found.findings.add(Check::Links, Level::Ok, "none");
    found.findings.add(Check::Header, Level::Ok, "application");
    return found;
}

QJsonObject reportOf(const Verification &found)
{
    const QByteArray json
        = jsonReport(found, {"a.kpc", {}, 7}, QString::fromUtf8("gr\xc3\xbcn.kpc"));
    return json.count('\n') == 1 && json.endsWith('\n') ? QJsonDocument::fromJson(json).object()
                                                        : QJsonObject();
}
} // namespace

class TestVerifyReport : public QObject
{
    Q_OBJECT
private slots:
    void manyFindings();
    void longNames();
    void textForAPerson();
    void verdicts();
    void jsonForAProgram();
    void jsonWithoutAHeader();
};

/// A check may have a million findings; the report must stay short.
void TestVerifyReport::manyFindings()
{
    Findings findings;
    for (int number = 0; number < 1000; ++number) {
        findings.add(Check::Names, Level::Warning, QString::number(number));
    }
    findings.add(Check::Names, Level::Ok, "fine");
    findings.add(Check::Header, Level::Ok, "first");
    QStringList texts;
    for (const Finding &finding : findings.list()) {
        texts += finding.text;
    }
    QCOMPARE(texts, (QStringList{"first", "0", "1", "2", "and 997 more"}));
    QCOMPARE(findings.count(Level::Warning), 1000);
}

void TestVerifyReport::longNames()
{
    QCOMPARE(shownName(QByteArray(60, 'n')), QString(60, 'n'));
    QCOMPARE(shownName(QByteArray(61, 'n')), QString(60, 'n') + "...");
    QCOMPARE(shownName(QByteArray(16, '\n')), QString("\\x0a").repeated(15) + "...");
}

void TestVerifyReport::textForAPerson()
{
    QCOMPARE(textReport(mixedVerification()),
             QByteArray("ok       header  application\n"
                        "warning  links   m -> a: is a link\n"
                        "error    links   l -> /etc: leads out\n"
                        "ok       panel   unpacks it in /home/dest\n"
                        "bad: do not put it on a stick (1 error, 1 warning)\n"));
    QVERIFY(!isGood(mixedVerification()));
}

void TestVerifyReport::verdicts()
{
    Verification found;
    QCOMPARE(textReport(found), QByteArray("good: it may go on a stick\n"));
    found.findings.add(Check::Time, Level::Warning, "long");
    found.findings.add(Check::Size, Level::Warning, "large");
    QVERIFY(textReport(found).endsWith("good: it may go on a stick (2 warnings)\n"));
    QVERIFY(isGood(found));
}

void TestVerifyReport::jsonForAProgram()
{
    const QJsonObject expected{
        {"file", "gr\\xc3\\xbcn.kpc"},
        {"good", false},
        {"errors", 1},
        {"warnings", 1},
        {"header",
         QJsonObject{
             {"kind", "application"}, {"kindNumber", 0}, {"version", 12}, {"target", "K\\x1b"}}},
        {"packedBytes", 135},
        {"unpackedBytes", 10240},
        {"entries", 2},
        {"seconds", 0.1},
        {"limitSeconds", 30},
        {"megabytesPerSecond", 7},
        {"findings",
         QJsonArray{
             QJsonObject{{"level", "ok"}, {"check", "header"}, {"text", "application"}},
             QJsonObject{{"level", "warning"}, {"check", "links"}, {"text", "m -> a: is a link"}},
             QJsonObject{{"level", "error"}, {"check", "links"}, {"text", "l -> /etc: leads out"}},
             QJsonObject{
                 {"level", "ok"}, {"check", "panel"}, {"text", "unpacks it in /home/dest"}}}},
    };
    QCOMPARE(reportOf(mixedVerification()), expected);
}

void TestVerifyReport::jsonWithoutAHeader()
{
    QVERIFY(reportOf({}).value("header").isNull());
    Verification unknown;
    unknown.header = PackageHeader{PackageKind(4294967295U), 0, {}};
    const QJsonObject header = reportOf(unknown).value("header").toObject();
    QVERIFY(header.value("kind").isNull());
    QCOMPARE(header.value("kindNumber").toInteger(), 4294967295LL);
}

QTEST_GUILESS_MAIN(TestVerifyReport)
#include "tst_verifyreport.moc"
