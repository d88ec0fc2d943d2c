#include "system/files/atomicfile.h"

#include "diskfiles.h"
#include "faultfiles.h"
#include "panelguard.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

namespace {
constexpr uid_t someUser = 1234;
constexpr gid_t someGroup = 4321;
constexpr mode_t someMode = 0440; // root can write nevertheless

const QByteArray folder = "/run/replaced/";
const QByteArray path = folder + "interfaces";
const QByteArray oldText = "an old text of middle length\n";

/// Owner, group, mode and inode of the file at @p file.
struct Identity
{
    explicit Identity(const QByteArray &file)
    {
        if (stat(file.constData(), &status) != 0) {
            qFatal("%s is missing", file.constData());
        }
    }

    QString rights() const
    {
        return QString("%1:%2 %3")
            .arg(status.st_uid)
            .arg(status.st_gid)
            .arg(status.st_mode & 07777, 0, 8);
    }

    struct stat status
    {
    };
};

const QString someRights = QString("%1:%2 %3").arg(someUser).arg(someGroup).arg(someMode, 0, 8);

void giveAway(const QByteArray &file)
{
    QCOMPARE(chown(file.constData(), someUser, someGroup), 0);
    QCOMPARE(chmod(file.constData(), someMode), 0);
}

QStringList namesIn(const QByteArray &folderPath)
{
    return QDir(folderPath).entryList(QDir::Files | QDir::Hidden);
}

/// Uses up all free space of the folder's file system.
void fillDisk()
{
    shellBytes("head -c 1000000 /dev/zero >" + folder + "rest 2>/dev/null || true");
}
} // namespace

class TestAtomicFile : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void replacesWholeFile();
    void createsAMissingFile();
    void keepsOwnerAndMode();
    void followsSymbolicLinks_data();
    void followsSymbolicLinks();
    void fallsBackToWritingInPlace_data();
    void fallsBackToWritingInPlace();
    void fullDiskTakesTextThatFitsTheFile();
    void fullDiskKeepsTheOldText();
    void pipeIsNotReplaced();
    void keepsOldFileOnFailure_data();
    void keepsOldFileOnFailure();
};

void TestAtomicFile::initTestCase()
{
    requirePanel();
}

void TestAtomicFile::init()
{
    emptyFolder(folder);
    writeFile(path, oldText);
}

void TestAtomicFile::replacesWholeFile()
{
    QFile reader(path);
    QVERIFY(reader.open(QIODevice::ReadOnly));
    QVERIFY(replaceFile(path, "new\n"));
    QCOMPARE(readFile(path), QByteArray("new\n"));
    // The old file was replaced, not overwritten: a program that has it open still reads all of it.
    QCOMPARE(reader.readAll(), oldText);
    QCOMPARE(namesIn(folder), QStringList{"interfaces"});
}

void TestAtomicFile::createsAMissingFile()
{
    QVERIFY(replaceFile(folder + "new", "new\n"));
    QCOMPARE(readFile(folder + "new"), QByteArray("new\n"));
    QCOMPARE(Identity(folder + "new").rights(), QString("0:0 644"));
}

void TestAtomicFile::keepsOwnerAndMode()
{
    giveAway(path);
    const ino_t before = Identity(path).status.st_ino;
    QVERIFY(replaceFile(path, "new\n"));
    QCOMPARE(readFile(path), QByteArray("new\n"));
    QCOMPARE(Identity(path).rights(), someRights);
    QVERIFY(Identity(path).status.st_ino != before);
}

void TestAtomicFile::followsSymbolicLinks_data()
{
    QTest::addColumn<QString>("target");
    QTest::newRow("to a file") << QString(path);
    QTest::newRow("to a relative path") << "interfaces";
    QTest::newRow("to a missing file") << QString(folder + "missing");
}

void TestAtomicFile::followsSymbolicLinks()
{
    QFETCH(QString, target);
    const QString link = folder + "link";
    const QString end = QDir(folder).filePath(target);
    QVERIFY(QFile::link(target, link));
    QVERIFY(replaceFile(link, "new\n"));
    QVERIFY(QFileInfo(link).isSymLink());
    QCOMPARE(readFile(end.toUtf8()), QByteArray("new\n"));
}

void TestAtomicFile::fallsBackToWritingInPlace_data()
{
    QTest::addColumn<QString>("cover"); // shell commands
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("text");
    const QString readOnly
        = "mount --bind . . && cd " + folder + " && mount -o remount,bind,ro . . && ";
    const QString mounted = "mount --bind /run/kept interfaces";
    const QByteArray longer(10000, 'l');
    const QByteArray shorter = "new\n";
    const QByteArray sameLength(oldText.size(), 's');
    QTest::newRow("bind mount") << mounted << "interfaces" << shorter;
    QTest::newRow("bind mount, longer") << mounted << "interfaces" << longer;
    QTest::newRow("bind mount, same length") << mounted << "interfaces" << sameLength;
    QTest::newRow("bind mount, empty") << mounted << "interfaces" << QByteArray();
    QTest::newRow("in a read-only folder") << readOnly + mounted << "interfaces" << shorter;
    QTest::newRow("in a read-only folder, longer") << readOnly + mounted << "interfaces" << longer;
    QTest::newRow("link to a file bind mount")
        << "ln -s interfaces link; " + mounted << "link" << longer;
    QTest::newRow("link in a read-only folder") << "ln -s /run/kept link; " + readOnly + "true"
                                                << "link" << shorter;
}

void TestAtomicFile::fallsBackToWritingInPlace()
{
    QFETCH(QString, cover);
    QFETCH(QString, name);
    QFETCH(QByteArray, text);
    const QByteArray kept = "/run/kept";
    writeFile(kept, oldText);
    giveAway(kept);
    const QString inFolder = QString("cd %1; ").arg(folder.constData());
    shellBytes(inFolder + cover);
    const bool written = replaceFile(folder + name, text);
    const QStringList left = namesIn(folder);
    const QByteArray seen = readFile(folder + name.toUtf8());
    shellBytes(inFolder + "umount interfaces 2>/dev/null || true; cd /; umount " + folder
               + " 2>/dev/null || true");
    QVERIFY(written);
    QCOMPARE(seen, text);
    QCOMPARE(readFile(kept), text);
    QCOMPARE(Identity(kept).rights(), someRights);
    QCOMPARE(left, namesIn(folder)); // no temporary file is left
}

void TestAtomicFile::fullDiskTakesTextThatFitsTheFile()
{
    const SmallDisk disk(folder, "size=64k");
    writeFile(path, oldText);
    fillDisk();
    const QByteArray text = oldText + oldText; // fits the block that the file already has
    const bool written = replaceFile(path, text);
    QCOMPARE(readFile(path), text);
    QVERIFY(written);
    QCOMPARE(namesIn(folder), (QStringList{"interfaces", "rest"}));
}

void TestAtomicFile::fullDiskKeepsTheOldText()
{
    const SmallDisk disk(folder, "size=64k");
    writeFile(path, oldText);
    giveAway(path);
    fillDisk();
    QVERIFY(!replaceFile(path, QByteArray(10000, 'l')));
    QCOMPARE(readFile(path), oldText);
    QCOMPARE(Identity(path).rights(), someRights);
    QCOMPARE(namesIn(folder), (QStringList{"interfaces", "rest"}));
}

void TestAtomicFile::pipeIsNotReplaced()
{
    const QByteArray pipe = folder + "pipe";
    QCOMPARE(mkfifo(pipe.constData(), 0600), 0);
    QVERIFY(QFile::link(pipe, folder + "link"));
    QVERIFY(!replaceFile(folder + "link", "new\n")); // returns without waiting for a reader
    QVERIFY(S_ISFIFO(Identity(pipe).status.st_mode));
}

void TestAtomicFile::keepsOldFileOnFailure_data()
{
    QTest::addColumn<QString>("kind");
    for (const char *kind : {"directory", "folder missing", "read-only file system"}) {
        QTest::newRow(kind) << QString(kind);
    }
}

void TestAtomicFile::keepsOldFileOnFailure()
{
    QFETCH(QString, kind);
    const FaultFile fault(kind);
    QVERIFY(!replaceFile(fault.path(), "new\n"));
    QCOMPARE(fault.content(), QByteArray());
}

QTEST_GUILESS_MAIN(TestAtomicFile)
#include "tst_atomicfile.moc"
