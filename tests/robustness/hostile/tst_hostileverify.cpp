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

// Verifies each hostile package, as a supplier would before delivering it.

using namespace MkPackage;

namespace {
constexpr qint64 timeLimit = 10000; // ms per package; the largest unpack to 400 MB

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

/// The packages whose flipped bit makes no difference: kind, version and target are unchanged, and
/// Python unpacks the same archive as from most of the packages.
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

/// If the panel refuses a package, verify must quote the panel's message.
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
    QVERIFY2(decision != nullptr, "decisions.cpp has no row for this package");
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

/// 1,000 packages, too many for rows.
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
