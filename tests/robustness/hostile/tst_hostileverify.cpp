#include "decisions.h"
#include "diskfiles.h"
#include "findings.h"
#include "hostilecases.h"
#include "packages/packagerefusal.h"
#include "packages/packagetypes.h"
#include "panelguard.h"
#include "system/files/filecopy.h"
#include "verify.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QTest>

#include <algorithm>

// What is said of each hostile package before it is carried to the panel for which it was made.

using namespace MkPackage;

namespace {
constexpr qint64 timeLimit = 10000; // ms a package, the largest of which come to 400 MB

Verification verifyFile(const QByteArray &path)
{
    QFile file;
    if (!openPlainFile(file, QString::fromUtf8(path))) {
        qFatal("cannot open %s", path.constData());
    }
    VerifyTask task;
    task.name = QString::fromUtf8(path);
    task.panel = {"RV-K21T", "TALMERO", 12, 3};
    return verifyPackage(file, task);
}

QStringList errorsOf(const Verification &found, const QByteArray &check = {})
{
    QStringList errors;
    for (const Finding &finding : found.findings.list()) {
        if (finding.level == Level::Error && (check.isEmpty() || finding.subject == check)) {
            errors += finding.text;
        }
    }
    return errors;
}

/// The packages with one wrong bit whose bit changes nothing: what counts of the header is not
/// touched, and another reader of gzip data finds the same archive in most of them.
QSet<QByteArray> harmlessFlips()
{
    static const char script[] = R"py(
import collections, glob, gzip, zlib
archives = {}
for path in glob.glob("/run/hostile/packages/flip-*"):
    data = open(path, "rb").read()
    counts = data[0:8], data[20:36].split(b"\0")[0]
    try:
        archives[path] = counts, gzip.decompress(data[36:])
    except (OSError, EOFError, zlib.error):
        pass
right = collections.Counter(archives.values()).most_common(1)[0][0]
print("\n".join(path for path in archives if archives[path] == right))
)py";
    writeFile("/run/harmlessflips.py", script);
    const QList<QByteArray> paths
        = shellBytes("python3 /run/harmlessflips.py").trimmed().split('\n');
    return {paths.begin(), paths.end()};
}

/// The panel's own words for a refusal must be in what is said of its package.
void checkRefusal(const HostileCase &hostile, int result, const Verification &found)
{
    const PackageRefusal *refusal = findPackageRefusal(result);
    if (refusal != nullptr && hostile.setup == "-"
        && !isListedAs(PackageType::BiosImage, hostile.paths.last())) {
        const QString words = QString("\"%1: %2\"").arg(refusal->title, refusal->text);
        QVERIFY2(errorsOf(found, "panel").join(' ').contains(words),
                 qPrintable(errorsOf(found).join('\n')));
    }
}
} // namespace

class TestHostileVerify : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void packages_data();
    void packages();
    void flippedBits();
    void everyDecisionIsUsed();
};

void TestHostileVerify::initTestCase()
{
    requirePanel();
    QVERIFY(hostileCases().size() > 1000);
}

void TestHostileVerify::packages_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<int>("file");
    for (int number = 0; number < hostileCases().size(); ++number) {
        const HostileCase &hostile = hostileCases().at(number);
        for (int file = 0; file < hostile.paths.size() && hostile.group != "flip"; ++file) {
            QTest::newRow(hostile.paths.at(file)) << number << file;
        }
    }
}

void TestHostileVerify::packages()
{
    QFETCH(int, number);
    QFETCH(int, file);
    const HostileCase &hostile = hostileCases().at(number);
    const QByteArray &path = hostile.paths.at(file);
    const Decision *decision
        = findDecision(QFileInfo(QString::fromUtf8(path)).completeBaseName().toUtf8());
    QVERIFY2(decision != nullptr, "somebody must decide whether this package is harmful");
    QElapsedTimer timer;
    timer.start();
    const Verification found = verifyFile(path);
    QVERIFY(timer.elapsed() < timeLimit || takesAllCases());
    QVERIFY(found.readable);
    if (decision->error != nullptr) {
        QVERIFY2(!errorsOf(found, decision->error).isEmpty(), decision->why);
    } else {
        QCOMPARE(errorsOf(found), QStringList());
    }
    checkRefusal(hostile, hostile.results.at(file), found);
}

/// Too many for a row each.
void TestHostileVerify::flippedBits()
{
    const QSet<QByteArray> harmless = harmlessFlips();
    QVERIFY(harmless.size() > 100);
    int count = 0;
    for (const HostileCase &hostile : hostileCases()) {
        if (hostile.group == "flip") {
            const Verification found = verifyFile(hostile.paths.first());
            QVERIFY2(errorsOf(found).isEmpty() == harmless.contains(hostile.paths.first()),
                     hostile.name);
            checkRefusal(hostile, hostile.results.first(), found);
            ++count;
        }
    }
    QCOMPARE(count, 1000);
}

void TestHostileVerify::everyDecisionIsUsed()
{
    QCOMPARE(unusedDecisions(), takesAllCases() ? QByteArray() : "large-longer-than-30-s");
}

QTEST_GUILESS_MAIN(TestHostileVerify)
#include "tst_hostileverify.moc"
