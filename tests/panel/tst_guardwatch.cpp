// What "talmero-guard watch" does with files that change.

#include "diskfiles.h"
#include "panelguard.h"
#include "runningguard.h"
#include "system/files/versionfiles.h"
#include "system/paths.h"
#include "toolrun.h"

#include <QFile>
#include <QTest>

namespace {
constexpr int promised = 1000; // ms until a change is durable and copied

const QByteArray copies = "/var/lib/talmero-guard/";
} // namespace

class TestGuardWatch : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { requirePanel(); }
    void init() { resetGuardedPanel(); }
    void changeIsDurableAndCopied_data();
    void changeIsDurableAndCopied();
    void openFileIsCopiedToo();
    void emptyFileReplacesNoCopy();
    void refusedFileReplacesNoCopy();
    void emptiedFileIsNotMadeDurable();
    void changeBeforeTheStartIsCopied();
    void linkedFileIsFollowed();
    void replacedFolderIsFollowed();
    void secondGuardIsRefused();
    void endsWhenAsked();
};

void TestGuardWatch::changeIsDurableAndCopied_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("settings") << QByteArray(Paths::settingsFile) << QByteArray("app.mouse=2\n");
    QTest::newRow("model") << QByteArray(Paths::modelFile) << QByteArray("other");
    QTest::newRow("oem") << QByteArray(Paths::runtimeOemFile) << QByteArray("other");
    QTest::newRow("runtime version") << QByteArray(Paths::runtimeVersionFile) << QByteArray("13");
    QTest::newRow("BIOS version") << QByteArray(Paths::biosVersionFile) << QByteArray("4");
    QTest::newRow("interfaces") << QByteArray(Paths::interfacesFile) << QByteArray("auto lo\n");
}

void TestGuardWatch::changeIsDurableAndCopied()
{
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, text);
    const RunningGuard guard;
    const QByteArray folder = path.left(path.lastIndexOf('/'));
    const QByteArray copy = copies + path.mid(folder.size() + 1);
    forgetFlushes();
    writeTextFile(path, text);
    QTRY_COMPARE_WITH_TIMEOUT(readFile(copy), text, promised);
    QVERIFY2(flushes().startsWith("fsync " + path + "\nfsync " + folder + '\n'),
             flushes().constData());
}

/// A writer may keep its file open.
void TestGuardWatch::openFileIsCopiedToo()
{
    const RunningGuard guard;
    QFile file(Paths::settingsFile);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    file.write("app.mouse=3\n");
    QTRY_COMPARE_WITH_TIMEOUT(readFile(copies + "bios.ini"), QByteArray("app.mouse=3\n"), promised);
}

void TestGuardWatch::emptyFileReplacesNoCopy()
{
    const RunningGuard guard;
    writeFile(Paths::settingsFile);
    QTRY_VERIFY(guard.output().contains(
        "/opt/talmero/bios/bios.ini is empty or cut off: its last good copy stays\n"));
    QCOMPARE(readFile(copies + "bios.ini"), QByteArray("app.mouse=1\n"));
}

void TestGuardWatch::refusedFileReplacesNoCopy()
{
    const RunningGuard guard;
    writeFile(Paths::interfacesFile, "nonsense\n");
    QTRY_VERIFY(guard.output().contains(
        "ifupdown refuses /etc/network/interfaces: its last good copy stays\n"));
    QCOMPARE(readFile(copies + "interfaces"), QByteArray("auto lo\niface lo inet loopback\n"));
}

/// Flushing a file between emptying and writing it would cause the damage.
void TestGuardWatch::emptiedFileIsNotMadeDurable()
{
    const RunningGuard guard;
    forgetFlushes();
    writeFile(Paths::runtimeVersionFile);
    QTRY_VERIFY(guard.output().contains("fwver is empty"));
    QVERIFY2(!flushes().contains("fwver"), flushes().constData());
}

void TestGuardWatch::changeBeforeTheStartIsCopied()
{
    writeFile(copies + "model", "RV-K25T");
    const RunningGuard guard;
    QTRY_COMPARE(readFile(copies + "model"), QByteArray("RV-K21T\n"));
}

void TestGuardWatch::linkedFileIsFollowed()
{
    writeFile("/srv/data/interfaces", "auto lo\n");
    QVERIFY(QFile::remove(Paths::interfacesFile));
    QVERIFY(QFile::link("/srv/data/interfaces", Paths::interfacesFile));
    {
        const RunningGuard guard;
        writeFile("/srv/data/interfaces", "# other\nauto lo\n");
        QTRY_COMPARE_WITH_TIMEOUT(readFile(copies + "interfaces"), QByteArray("# other\nauto lo\n"),
                                  promised);
        QVERIFY(flushes().contains("fsync /srv/data\n"));
    }
    QVERIFY(QFile::remove(Paths::interfacesFile));
}

void TestGuardWatch::replacedFolderIsFollowed()
{
    const RunningGuard guard;
    shellBytes("cp -a /opt/talmero/bios /opt/talmero/new; mv /opt/talmero/bios /opt/talmero/old;"
               "mv /opt/talmero/new /opt/talmero/bios; echo 9 >/opt/talmero/bios/fwver");
    QTRY_COMPARE(readFile(copies + "fwver"), QByteArray("9\n"));
    writeFile(Paths::runtimeVersionFile, "10");
    QTRY_COMPARE_WITH_TIMEOUT(readFile(copies + "fwver"), QByteArray("10"), promised);
    shellBytes("rm -r /opt/talmero/old");
}

void TestGuardWatch::secondGuardIsRefused()
{
    const RunningGuard guard;
    QVERIFY(guardStatus().endsWith("\nwatch=yes\n"));
    const ToolRun second = runTool(GUARD, {"watch"});
    QCOMPARE(second.status, 1);
    QCOMPARE(second.output, QByteArray("another process watches already\n"));
}

void TestGuardWatch::endsWhenAsked()
{
    RunningGuard guard(GUARD);
    QCOMPARE(guard.end(), 0);
    QVERIFY(guardStatus().endsWith("\nwatch=no\n"));
}

QTEST_GUILESS_MAIN(TestGuardWatch)
#include "tst_guardwatch.moc"
