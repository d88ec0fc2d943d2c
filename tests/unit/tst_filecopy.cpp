#include "system/files/filecopy.h"

#include "diskfiles.h"
#include "failingrenames.h"
#include "faultfiles.h"
#include "panelguard.h"
#include "system/textcodec.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>

Q_DECLARE_METATYPE(RenameErrors)

namespace {
constexpr qint64 wholeSize = 1000003; // bytes; not a multiple of any buffer size

QByteArray someBytes(qint64 size)
{
    QByteArray bytes(size, '\0');
    for (qint64 at = 0; at < size; ++at) {
        bytes[at] = char(at * 7 / 3);
    }
    return bytes;
}

void write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
        qFatal("cannot write %s", qPrintable(path));
    }
}

QByteArray read(const QString &path)
{
    QFile file;
    return openPlainFile(file, path) ? file.readAll() : QByteArray("not read");
}

QStringList entries(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System
                                  | QDir::NoDotAndDotDot);
}

/// Rows with a column "errors": how the calls fail on file systems with missing features.
void addFileSystemRows()
{
    QTest::addColumn<RenameErrors>("errors");
    QTest::newRow("usual") << RenameErrors{};
    QTest::newRow("rename cannot keep an existing file") << RenameErrors{.renameToNew = EINVAL};
    QTest::newRow("old kernel") << RenameErrors{.renameToNew = ENOSYS};
    QTest::newRow("without links") << RenameErrors{.renameToNew = EINVAL, .link = EPERM};
    QTest::newRow("with links not supported")
        << RenameErrors{.renameToNew = EINVAL, .link = EOPNOTSUPP};
}
} // namespace

class TestFileCopy : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void opensPlainFilesOnly();
    void opensFilesOver2GiB();
    void unreadable_data() { addUnreadablePathRows(); }
    void unreadable();
    void copiesTheRest_data();
    void copiesTheRest();
    void failingReadEndsTheCopy();
    void reportsAFullDisk();
    void copiesToANewFile();
    void copiesNamesThatAreNotUtf8();
    void replacesNothing_data() { addFileSystemRows(); }
    void replacesNothing();
    void copiesOnAnyFileSystem_data() { addFileSystemRows(); }
    void copiesOnAnyFileSystem();
    void failingRenameLeavesNothing_data();
    void failingRenameLeavesNothing();
    void missingTargetFolder();
    void fullDiskLeavesNothing();
    void unreadableSourceLeavesNothing();

private:
    QString path(const QString &name) const { return m_folder.filePath(name); }

    QTemporaryDir m_folder;
};

void TestFileCopy::initTestCase()
{
    requirePanel();
}

void TestFileCopy::opensPlainFilesOnly()
{
    write(path("plain"), "text");
    QCOMPARE(mkfifo(path("pipe").toUtf8(), 0600), 0);
    QVERIFY(QFile::link(path("plain"), path("link")));
    QVERIFY(QFile::link(path("nowhere"), path("dangling")));
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(read(path("plain")), QByteArray("text"));
    QCOMPARE(read(path("link")), QByteArray("text"));
    for (const char *name : {"pipe", "dangling", "missing", "."}) {
        QCOMPARE(read(path(name)), QByteArray("not read"));
    }
    QCOMPARE(read("/dev/zero"), QByteArray("not read"));
    QCOMPARE(read(""), QByteArray("not read"));
    QVERIFY(timer.elapsed() < 10000);
}

/// 32-bit processors have functions of the C library that fail for such files.
void TestFileCopy::opensFilesOver2GiB()
{
    constexpr qint64 size = 3LL << 30; // bytes, of which the disk holds the last ones
    QFile written(path("huge"));
    QVERIFY(written.open(QIODevice::WriteOnly));
    QVERIFY(written.seek(size - 3) && written.write("end") == 3);
    written.close();
    QFile file;
    QVERIFY(openPlainFile(file, path("huge")));
    QCOMPARE(file.size(), size);
    QVERIFY(file.seek(size - 3));
    QCOMPARE(file.readAll(), QByteArray("end"));
    QVERIFY(QFile::remove(path("huge")));
}

void TestFileCopy::unreadable()
{
    QFETCH(QString, kind);
    const FaultFile fault(kind);
    QFile file;
    QVERIFY(!openPlainFile(file, fault.path()));
    QVERIFY(!file.isOpen());
}

void TestFileCopy::copiesTheRest_data()
{
    QTest::addColumn<qint64>("size");
    QTest::newRow("large") << wholeSize;
    for (const int rest : {0, 1, 2, 255, 256, 257, 511, 512, 513}) { // near piece sizes
        QTest::addRow("%d", rest) << qint64{36} + rest;
    }
}

void TestFileCopy::copiesTheRest()
{
    QFETCH(qint64, size);
    const QByteArray content = someBytes(size);
    write(path("from"), content);
    QFile from;
    QVERIFY(openPlainFile(from, path("from")));
    QCOMPARE(from.read(36).size(), 36);
    QFile to(path("to"));
    QVERIFY(to.open(QIODevice::WriteOnly));
    QVERIFY(copyRest(from, to));
    to.close();
    QCOMPARE(read(path("to")), content.mid(36));
}

void TestFileCopy::failingReadEndsTheCopy()
{
    QFile from; // not open, so every read fails
    QFile to(path("empty"));
    QVERIFY(to.open(QIODevice::WriteOnly));
    QTest::ignoreMessage(QtWarningMsg, "QIODevice::read (QFile, \"\"): device not open");
    QVERIFY(copyRest(from, to));
    to.close();
    QCOMPARE(read(path("empty")), QByteArray());
}

void TestFileCopy::reportsAFullDisk()
{
    write(path("from"), someBytes(100)); // smaller than any buffer
    QFile from;
    QVERIFY(openPlainFile(from, path("from")));
    QFile to("/dev/full");
    QVERIFY(to.open(QIODevice::WriteOnly));
    QVERIFY(!copyRest(from, to));
}

void TestFileCopy::copiesToANewFile()
{
    const QByteArray content = someBytes(wholeSize);
    write(path("a font.ttf"), content);
    QVERIFY(QFile::setPermissions(path("a font.ttf"),
                                  QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther));
    QVERIFY(QDir(path("")).mkdir("new"));
    QVERIFY(copyToNewFile(path("a font.ttf"), path("new/a font.ttf")));
    QCOMPARE(read(path("new/a font.ttf")), content);
    struct stat status;
    QCOMPARE(stat(path("new/a font.ttf").toUtf8(), &status), 0);
    QCOMPARE(status.st_mode & 07777, mode_t(0444));
    QCOMPARE(entries(path("new")), QStringList{"a font.ttf"});
}

void TestFileCopy::copiesNamesThatAreNotUtf8()
{
    const QByteArray bytes = path("").toUtf8() + "Sch\xF6n\n\"'.ttf";
    const int descriptor = open(bytes.constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
    QVERIFY(descriptor >= 0);
    QCOMPARE(::write(descriptor, "font", 4), 4);
    ::close(descriptor);
    const QString name = textFromBytes(bytes);
    QVERIFY(copyToNewFile(name, name + textFromBytes("\xFF")));
    struct stat status;
    QCOMPARE(stat((bytes + '\xFF').constData(), &status), 0);
    QCOMPARE(status.st_size, off_t(4));
}

void TestFileCopy::replacesNothing()
{
    QFETCH(RenameErrors, errors);
    write(path("new font"), "new");
    emptyFolder(path("kept").toUtf8());
    write(path("kept/file"), "old");
    QVERIFY(QFile::link("nowhere", path("kept/dangling")));
    QVERIFY(QDir(path("kept")).mkdir("folder"));
    const QStringList before = entries(path("kept"));
    const FailingRenames failing(errors);
    for (const char *name : {"kept/file", "kept/dangling", "kept/folder"}) {
        QVERIFY(!copyToNewFile(path("new font"), path(name)));
    }
    QCOMPARE(read(path("kept/file")), QByteArray("old"));
    QCOMPARE(entries(path("kept")), before);
}

void TestFileCopy::copiesOnAnyFileSystem()
{
    QFETCH(RenameErrors, errors);
    write(path("font"), "font");
    QVERIFY(QFile::setPermissions(path("font"), QFile::ReadOwner | QFile::ReadOther));
    emptyFolder(path("copies").toUtf8());
    const FailingRenames failing(errors);
    QVERIFY(copyToNewFile(path("font"), path("copies/font")));
    QCOMPARE(read(path("copies/font")), QByteArray("font"));
    struct stat status;
    QCOMPARE(stat(path("copies/font").toUtf8(), &status), 0);
    QCOMPARE(status.st_mode & 07777, mode_t(0404));
    QCOMPARE(status.st_nlink, nlink_t(1));
    QCOMPARE(entries(path("copies")), QStringList{"font"});
}

void TestFileCopy::failingRenameLeavesNothing_data()
{
    QTest::addColumn<RenameErrors>("errors");
    QTest::newRow("disk fails") << RenameErrors{.renameToNew = EIO};
    QTest::newRow("disk fails, without links")
        << RenameErrors{.renameToNew = EINVAL, .link = EPERM, .rename = EIO};
}

void TestFileCopy::failingRenameLeavesNothing()
{
    QFETCH(RenameErrors, errors);
    write(path("font"), "font");
    emptyFolder(path("failed").toUtf8());
    const FailingRenames failing(errors);
    QVERIFY(!copyToNewFile(path("font"), path("failed/font")));
    QCOMPARE(entries(path("failed")), QStringList());
}

void TestFileCopy::missingTargetFolder()
{
    write(path("font"), "font");
    QVERIFY(!copyToNewFile(path("font"), path("missing/font")));
    QVERIFY(!QFile::exists(path("missing")));
}

void TestFileCopy::fullDiskLeavesNothing()
{
    write(path("large"), someBytes(wholeSize));
    QVERIFY(QDir(path("")).mkdir("full"));
    const QByteArray folder = path("full").toUtf8();
    QCOMPARE(mount("test", folder.constData(), "tmpfs", 0, "size=64k"), 0);
    const bool copied = copyToNewFile(path("large"), path("full/large"));
    const QStringList left = entries(path("full"));
    write(path("full/marker"), "writable again"); // the space is free again
    QCOMPARE(umount(folder.constData()), 0);
    QVERIFY(!copied);
    QCOMPARE(left, QStringList());
}

void TestFileCopy::unreadableSourceLeavesNothing()
{
    QVERIFY(QDir(path("")).mkdir("target"));
    for (const char *source : {"/proc/self/mem", "/missing", "/dev", "/dev/zero"}) {
        QVERIFY(!copyToNewFile(source, path("target/file")));
    }
    QCOMPARE(entries(path("target")), QStringList());
}

QTEST_GUILESS_MAIN(TestFileCopy)
#include "tst_filecopy.moc"
