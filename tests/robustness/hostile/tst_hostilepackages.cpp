#include "packages/packageinstaller.h"

#include "diskfiles.h"
#include "disksnapshot.h"
#include "hostilecases.h"
#include "packages/packageheader.h"
#include "packages/packagetypes.h"
#include "panelguard.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTest>

#include <ctime>
#include <memory>

// Runs the program's own code on all generated packages and folders. Prints a table.

namespace {
constexpr qint64 stepLimit = 30500; // ms: tar is killed after 30 s
constexpr qint64 walkLimit = 500;   // ms of processor time

int installAny(const QByteArray &path)
{
    const QString name = QString::fromUtf8(path);
    return isListedAs(PackageType::BiosImage, name) ? installBIOSPackage(name)
                                                    : installPackage(name);
}

/// Milliseconds that this process has used. What else the machine does is not in it.
qint64 processorTime()
{
    return qint64(std::clock()) * 1000 / CLOCKS_PER_SEC;
}

QByteArray resultText(const QList<int> &results)
{
    QByteArrayList texts;
    for (const int result : results) {
        texts += QByteArray::number(result);
    }
    return texts.join(", ");
}

/// Installs the packages of a case. The test fails if one of them takes too long.
QList<int> installAll(const HostileCase &hostile)
{
    QList<int> results;
    for (const QByteArray &path : hostile.paths) {
        QElapsedTimer timer;
        timer.start();
        results += installAny(path);
        if (timer.elapsed() > stepLimit) {
            QTest::qFail("takes too long", __FILE__, __LINE__);
        }
    }
    return results;
}

/// Checks results and changes. Removes the file that an unknown kind leaves.
void judge(const HostileCase &hostile, const QList<int> &results, const QList<QByteArray> &changes)
{
    QCOMPARE(results, hostile.results);
    const QByteArray wrong = wrongChanges(hostile, changes);
    QVERIFY2(wrong.isEmpty(), wrong.constData());
    const bool keeps = hostile.changes == "+/tmp/*";
    const QByteArray kept = takeKeptFile();
    QCOMPARE(kept, keeps ? readFile(hostile.paths.last()).mid(packageHeaderSize) : QByteArray());
}
} // namespace

class TestHostilePackages : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanupTestCase();
    void packages_data();
    void packages();
    void flippedBits();
    void folders_data();
    void folders();

private:
    std::unique_ptr<DiskSnapshot> m_before;
};

void TestHostilePackages::initTestCase()
{
    requirePanel();
    QVERIFY(QDir::setCurrent("/"));
    QVERIFY(hostileCases().size() > 1000);
    const CasePanel panel(hostileCases().first());
    m_before = std::make_unique<DiskSnapshot>(watchedFolders(true));
}

void TestHostilePackages::cleanupTestCase()
{
    const CasePanel panel(hostileCases().first());
    QCOMPARE(shellBytes("pgrep -x 'tar|gzip|rm' || true"), QByteArray()); // none still runs
    QCOMPARE(m_before->changesTo(DiskSnapshot(watchedFolders(true))).join(' '), QByteArray());
}

void TestHostilePackages::packages_data()
{
    QTest::addColumn<int>("number");
    for (int number = 0; number < hostileCases().size(); ++number) {
        const HostileCase &hostile = hostileCases().at(number);
        if (hostile.group != "flip") {
            QTest::newRow(hostile.group + ' ' + hostile.name) << number;
        }
    }
}

void TestHostilePackages::packages()
{
    QFETCH(int, number);
    const HostileCase &hostile = hostileCases().at(number);
    const CasePanel panel(hostile);
    QElapsedTimer timer;
    timer.start();
    const QList<int> results = installAll(hostile);
    const qint64 elapsed = timer.elapsed();
    const QList<QByteArray> changes = panel.changes();
    printRow(QTest::currentDataTag(), resultText(results), changes.join(' '), elapsed);
    judge(hostile, results, changes);
}

/// 1,000 packages, too many for rows. cleanupTestCase() compares the large folders.
void TestHostilePackages::flippedBits()
{
    const CasePanel panel(hostileCases().first());
    QMap<QByteArray, int> counts;
    QElapsedTimer timer;
    timer.start();
    for (const HostileCase &hostile : hostileCases()) {
        if (hostile.group != "flip") {
            continue;
        }
        const QList<int> results = installAll(hostile);
        judge(hostile, results, panel.changes());
        if (QTest::currentTestFailed()) {
            QFAIL(hostile.name.constData());
        }
        ++counts[resultText(results)];
        resetApplication();
    }
    int sum = 0;
    for (auto count = counts.begin(); count != counts.end(); ++count) {
        printRow("flipped bits: " + QByteArray::number(*count), count.key(), "", timer.elapsed());
        sum += *count;
    }
    QCOMPARE(sum, 1000);
}

void TestHostilePackages::folders_data()
{
    QTest::addColumn<int>("number");
    for (int number = 0; number < hostileTrees().size(); ++number) {
        QTest::newRow(hostileTrees().at(number).name) << number;
    }
}

void TestHostilePackages::folders()
{
    QFETCH(int, number);
    const HostileTree &tree = hostileTrees().at(number);
    std::unique_ptr<MountRing> ring;
    if (tree.name == "mount-ring") {
        ring = std::make_unique<MountRing>(tree.path);
    }
    const qint64 before = processorTime();
    const QStringList found
        = findPackagesBelow(QString::fromUtf8(tree.path) + '/', PackageType::Application);
    const qint64 busy = processorTime() - before;
    printRow("folder " + tree.name, QByteArray::number(found.size()) + " listed", "", busy);
    QCOMPARE(found.size(), tree.rows);
    QVERIFY(busy < walkLimit);
}

QTEST_GUILESS_MAIN(TestHostilePackages)
#include "tst_hostilepackages.moc"
