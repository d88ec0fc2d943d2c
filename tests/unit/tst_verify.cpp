#include "verify.h"

#include "common/report.h"
#include "diskfiles.h"
#include "memberpath.h"
#include "packagefiles.h"
#include "packageinfo.h"
#include "panelguard.h"

#include <QBuffer>
#include <QTest>

using namespace MkPackage;

namespace {
constexpr char asRoot[] = "umask 022; tar --owner=0 --group=0 -cz ";

/// Runs @p script in an empty folder and packs the result by @p command.
QByteArray packed(const QString &script, const QString &command = QString(asRoot) + "*")
{
    return shellBytes("folder=$(mktemp -d); cd $folder; umask 022; " + script + "; " + command
                      + "; rm -r $folder");
}

Verification verified(const QByteArray &package, const VerifyTask &task)
{
    QBuffer buffer;
    buffer.setData(package);
    buffer.open(QIODevice::ReadOnly);
    return verifyPackage(buffer, task);
}

Verification verifiedArchive(const QByteArray &archive, int rate = defaultRate)
{
    return verified(packageBytes(Kinds::application, 12, "K21T", archive), {"a.kpc", {}, rate});
}

QByteArrayList linesOf(const Verification &found)
{
    QByteArrayList lines;
    for (const Finding &finding : found.findings.list()) {
        if (finding.level != Level::Ok) {
            lines += ToolReport::levelName(finding.level) + ' '
                + (finding.subject + ' ' + finding.text).toUtf8();
        }
    }
    return lines;
}

/// Returns some bytes and then fails, like a stick that is pulled.
class FailingDevice : public QIODevice
{
public:
    explicit FailingDevice(const QByteArray &bytes)
        : m_bytes(bytes)
    {
        open(ReadOnly | Unbuffered);
    }

    bool isSequential() const override { return true; }

protected:
    qint64 readData(char *data, qint64 size) override
    {
        const QByteArray piece = m_bytes.left(size);
        m_bytes.remove(0, piece.size());
        std::copy(piece.begin(), piece.end(), data);
        return piece.isEmpty() ? -1 : piece.size();
    }
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    QByteArray m_bytes;
};
} // namespace

class TestVerify : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { requirePanel(); }
    void archives_data();
    void archives();
    void headers_data();
    void headers();
    void panels_data();
    void panels();
    void versionFiles_data();
    void versionFiles();
    void paths_data();
    void paths();
    void timeDependsOnTheRate();
    void unreadable();
    void emptyArchiveIsWhole();
};

void TestVerify::archives_data()
{
    QTest::addColumn<QByteArray>("archive");
    QTest::addColumn<QByteArrayList>("lines");
    const QByteArray small = packed("echo a >a; mkdir d; echo b >d/b");
    const QByteArray gzipError = "error gzip damaged: ";
    const QByteArray ending = "; a panel unpacks what it can and says nothing";

    QTest::newRow("good") << small << QByteArrayList();
    QTest::newRow("missing") << QByteArray()
                             << QByteArrayList{gzipError + "no archive follows the header"
                                               + ending};
    QTest::newRow("one byte missing")
        << small.chopped(1) << QByteArrayList{gzipError + "cut off" + ending};
    QTest::newRow("a NUL byte after it")
        << small + QByteArray(1, '\0')
        << QByteArrayList{gzipError + "something else follows it" + ending};
    QTest::newRow("half a second stream")
        << small + small.left(30) << QByteArrayList{gzipError + "cut off" + ending};
    QTest::newRow("two archives in one stream")
        << packed("echo a >a", "(tar -c a; tar -c a) | gzip")
        << QByteArrayList{"error tar something follows its end"};
    QTest::newRow("archive cut off in a file of zeros")
        << packed("head -c 2048 /dev/zero >z", "tar -c z | head -c 2560 | gzip")
        << QByteArrayList{"error tar the two blocks of zeros at its end are missing"};
    QTest::newRow("half of the end")
        << packed("echo a >a", "tar -c a | head -c 1536 | gzip")
        << QByteArrayList{"error tar the two blocks of zeros at its end are missing"};
    const QByteArray longEnd = packed("echo a >a; head -c 200000 /dev/zero >z",
                                      "(tar -c --owner=0 --group=0 a; cat z) | gzip");
    QTest::newRow("a long end") << longEnd << QByteArrayList();
    QTest::newRow("wrong checksum after a long end") << longEnd.chopped(8) + QByteArray(4, '\1')
            + longEnd.right(4) << QByteArrayList{gzipError + "incorrect data check" + ending};
    QTest::newRow("data after a long end")
        << packed("echo a >a; head -c 200000 /dev/zero >z", "(tar -c a; cat z a) | gzip")
        << QByteArrayList{"error tar something follows its end"};
    QTest::newRow("no members") << packed("echo a >a", "tar -cz --files-from=/dev/null")
                                << QByteArrayList{
                                       "error tar it holds nothing that a panel could unpack"};

    QTest::newRow("another owner")
        << packed("echo a >a", "tar -cz --owner=7 --group=8 a")
        << QByteArrayList{"warning rights a: will belong to 7:8, not to root"};
    QTest::newRow("the panel's folder")
        << packed("echo a >a; chmod 755 .", QString(asRoot) + ".")
        << QByteArrayList{"warning rights ./: changes the permissions of the panel's folder"};
    QTest::newRow("the panel's folder, writable by all")
        << packed("echo a >a; chmod 777 .", QString(asRoot) + ".")
        << QByteArrayList{"warning rights ./: can be written by anyone",
                          "error rights ./: gives the panel's folder unsafe permissions"};
    QTest::newRow("special bit of a folder")
        << packed("mkdir d; chmod 2755 d")
        << QByteArrayList{"warning rights d/: has the set-user-ID or set-group-ID bit"};
    QTest::newRow("special bit of a file")
        << packed("echo a >a; chmod 2755 a")
        << QByteArrayList{"error rights a: has the set-user-ID or set-group-ID bit"};

    QTest::newRow("link to a neighbour")
        << packed("mkdir d; ln -s ../a d/l")
        << QByteArrayList{"warning links d/l -> ../a: is a link inside the folder"};
    QTest::newRow("link one folder too far")
        << packed("mkdir d; ln -s ../../a d/l")
        << QByteArrayList{"error links d/l -> ../../a: leads out of the panel's folder"};
    QTest::newRow("link that may lead out through another")
        << packed("ln -s . a; ln -s a/a/../.. b")
        << QByteArrayList{"warning links a -> .: is a link inside the folder",
                          "error links b -> a/a/../..: goes back through \"..\" on its way"};
    QTest::newRow("hard link") << packed("echo a >a; ln a b")
                               << QByteArrayList{"warning links b: is a hard link"};
    QTest::newRow("hard link to a link")
        << packed("ln -s a l; ln l m")
        << QByteArrayList{"warning links l -> a: is a link inside the folder",
                          "error links m: is a hard link to something that is not an earlier file"};
    QTest::newRow("a folder twice")
        << packed("mkdir d; echo a >d/a",
                  QString(asRoot) + "--hard-dereference d d/") // like joined archives
        << QByteArrayList{"warning names d/a: occurs twice; the last one wins"};
    QTest::newRow("inside a file")
        << packed("mkdir a b; echo x >a/x; echo x >b/a",
                  QString(asRoot) + "--transform=s,b/a,a, b/a a/x")
        << QByteArrayList{"error names a/x: is inside something that is not a folder"};
    QTest::newRow("hard link to a folder that is a file")
        << packed("echo a >a; ln a b", QString(asRoot) + "--transform=s,^a,a/,hRS a b")
        << QByteArrayList{"error links b: is a hard link to something that is not an earlier file"};
    QTest::newRow("link named like a folder")
        << packed("echo a >a; ln -s a l", QString(asRoot) + "--transform=s,l,l/,S a l")
        << QByteArrayList{"error names l/: is named like a folder but is not one",
                          "warning links l/ -> a: is a link inside the folder"};
    QTest::newRow("file in place of a folder")
        << packed("mkdir a; echo x >a/x; echo y >y", QString(asRoot) + "--transform=s,y,a, a/x y")
        << QByteArrayList{"error names a: was a folder earlier in the archive"};
    QTest::newRow("a link twice") << packed("mkdir d; ln -s a l; ln -s a d/l",
                                            QString(asRoot) + "--transform=s,d/,, l d/l")
                                  << QByteArrayList{
                                         "warning links l -> a: is a link inside the folder",
                                         "warning links l -> a: is a link inside the folder",
                                         "error links l: occurs twice, once as a link"};
    QTest::newRow("a hard link to itself")
        << packed("echo a >a", QString(asRoot) + "a a") // tar stores the second "a" as a hard link
        << QByteArrayList{"error links a: occurs twice, once as a link",
                          "error links a: is a hard link to something that is not an earlier file"};
    QTest::newRow("compressed too much")
        << packed("head -c 21M /dev/zero >z")
        << QByteArrayList{"error size 22026240 bytes unpacked, 1026 times the packed size: made "
                          "to fill a disk"};
    QTest::newRow("compressed much, but small")
        << packed("head -c 19M /dev/zero >z") << QByteArrayList();
}

void TestVerify::archives()
{
    QFETCH(QByteArray, archive);
    QTEST(linesOf(verifiedArchive(archive)), "lines");
}

void TestVerify::headers_data()
{
    QTest::addColumn<QByteArray>("header");
    QTest::addColumn<QByteArrayList>("lines");
    const QByteArray application = formatPackageHeader({Kinds::application, 12, "K21T"});
    const QByteArray tooShort
        = "error panel refuses it and shows \"File Transter: Open File Error\"";
    QTest::newRow("nothing") << QByteArray()
                             << QByteArrayList{"error header 0 bytes: a package has at least 36",
                                               tooShort};
    QTest::newRow("35 bytes") << application.left(
        35) << QByteArrayList{"error header 35 bytes: a package has at least 36", tooShort};
    QTest::newRow("reserved bytes")
        << application.left(19) + '\1' + application.mid(20)
        << QByteArrayList{"warning header the reserved bytes are not all zero"};
    QTest::newRow("bytes after the target") << application.left(35)
            + '\1' << QByteArrayList{"warning header there are bytes after the end of the target"};
    QTest::newRow("target without an end")
        << application.left(20) + "0123456789ABCDEF"
        << QByteArrayList{
               "warning header the target does not end with a NUL byte: 0123456789ABCDEF"};
    QTest::newRow("no target")
        << formatPackageHeader({Kinds::application, 12, ""})
        << QByteArrayList{"warning header the target is empty: only a panel that was never set up "
                          "accepts it"};
    QTest::newRow("target is not text")
        << formatPackageHeader({Kinds::application, 12, "\x1b[2J"})
        << QByteArrayList{"warning header the target is not printable ASCII: \\x1b[2J"};
    QTest::newRow("unknown kind")
        << formatPackageHeader({PackageKind(3), 12, "K21T"})
        << QByteArrayList{"error header unknown kind 3",
                          "error panel installs nothing of this kind, says nothing and keeps a "
                          "copy of the archive"};
}

void TestVerify::headers()
{
    QFETCH(QByteArray, header);
    const QByteArray archive
        = header.size() < packageHeaderSize ? QByteArray() : packed("echo a >a");
    QTEST(linesOf(verified(header + archive, {"a.kpc", {}})), "lines");
}

void TestVerify::panels_data()
{
    QTest::addColumn<PackageHeader>("header");
    QTest::addColumn<QString>("name");
    QTest::addColumn<PanelFacts>("panel");
    QTest::addColumn<QByteArray>("line");
    const PackageHeader application{Kinds::application, 12, "K21T"};
    const PackageHeader firmware{Kinds::firmware, 12, "TALMERO"};
    const PackageHeader bios{Kinds::biosImage, 4, ""};
    const QByteArray refused = "error panel refuses it and shows \"File Transfer: ";
    const QByteArray silent = "error panel installs nothing and says nothing: ";

    QTest::newRow("any panel") << application << "a.kpc" << PanelFacts() << QByteArray();
    QTest::newRow("its model") << application << "a.kpc" << PanelFacts{"RV-K21T", {}, {}, {}}
                               << QByteArray();
    QTest::newRow("its version") << application << "a.kpc" << PanelFacts{{}, {}, 12, {}}
                                 << QByteArray();
    QTest::newRow("another model") << application << "a.kpc" << PanelFacts{"RV-K25T", {}, {}, {}}
                                   << refused + "Error Panel Model while Install KPC\"";
    QTest::newRow("another version") << application << "a.kpc" << PanelFacts{{}, {}, 13, {}}
                                     << refused + "Error Firmware Version while Install KPC\"";
    QTest::newRow("the version comes first")
        << application << "a.kpc" << PanelFacts{"RV-K25T", {}, 13, {}}
        << refused + "Error Firmware Version while Install KPC\"";
    QTest::newRow("its OEM") << firmware << "a.fmw" << PanelFacts{{}, "TALMERO", 1, {}}
                             << QByteArray();
    QTest::newRow("another OEM") << firmware << "a.fmw" << PanelFacts{{}, "talmero", {}, {}}
                                 << refused + "Error Panel Model while Install Firmware\"";
    QTest::newRow("an older bios") << bios << "a.pkg" << PanelFacts{{}, {}, {}, 3} << QByteArray();
    QTest::newRow("the same bios")
        << bios << "a.pkg" << PanelFacts{{}, {}, {}, 4} << silent + "it has bios version 4";
    QTest::newRow("version 0") << PackageHeader{Kinds::biosImage, 0, ""} << "a.pkg" << PanelFacts()
                               << silent + "it has bios version 0";
    QTest::newRow("capitals") << bios << "A.PKG" << PanelFacts() << QByteArray();
    QTest::newRow("an application as a bios")
        << application << "a.PKG" << PanelFacts() << silent + "this is no bios package";
    QTest::newRow("a bios as an application")
        << bios << "a.kpc" << PanelFacts()
        << QByteArray("error panel installs nothing of this kind, says nothing and keeps a copy of "
                      "the archive");
    QTest::newRow("an application that no page finds")
        << application << "a.KPC" << PanelFacts()
        << QByteArray(
               "warning panel a panel lists packages of this kind only with the extension .kpc");
}

void TestVerify::panels()
{
    QFETCH(PackageHeader, header);
    QFETCH(QString, name);
    QFETCH(PanelFacts, panel);
    QFETCH(QByteArray, line);
    const QByteArray archive = packed("echo a >a");
    const QByteArrayList lines
        = linesOf(verified(formatPackageHeader(header) + archive, {name, panel}));
    QCOMPARE(lines.value(lines.size() - 1), line);
}

void TestVerify::versionFiles_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArrayList>("lines");
    const QByteArray differs = ", its header says 4: the panel goes by the file";
    QTest::newRow("same version") << "echo 4 >bios.version"
                                  << "a.mo" << QByteArrayList();
    QTest::newRow("another version")
        << "echo 3 >bios.version"
        << "a.mo" << QByteArrayList{"warning panel its bios.version is 3" + differs};
    QTest::newRow("not a number") << "head -c 99 /dev/zero >bios.version"
                                  << "a.pkg"
                                  << QByteArrayList{"warning panel its bios.version is "
                                                    + QByteArray("\\x00").repeated(15) + "..."
                                                    + differs};
    QTest::newRow("missing") << "mkdir d; echo 4 >d/bios.version"
                             << "a.mo"
                             << QByteArrayList{"warning panel it has no file bios.version: the "
                                               "panel will not know that it is installed"};
    QTest::newRow("missing in an add-on") << "echo a >a"
                                          << "a.pkg" << QByteArrayList();
}

void TestVerify::versionFiles()
{
    QFETCH(QString, script);
    QFETCH(QString, name);
    const QByteArray package = packageBytes(Kinds::biosImage, 4, "", packed(script));
    QTEST(linesOf(verified(package, {name, {}})), "lines");
}

void TestVerify::paths_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<int>("depth");
    QTest::addColumn<int>("ups");
    QTest::addColumn<bool>("leaves");
    QTest::newRow("empty") << QByteArray() << 0 << 0 << false;
    QTest::newRow("dot") << QByteArray("./.") << 0 << 0 << false;
    QTest::newRow("plain") << QByteArray("a/b") << 2 << 0 << false;
    QTest::newRow("slashes and dots") << QByteArray(".//a/.//b/") << 2 << 0 << false;
    QTest::newRow("dots in names") << QByteArray("..a/b../...") << 3 << 0 << false;
    QTest::newRow("up") << QByteArray("../../a") << 1 << 2 << true;
    QTest::newRow("back") << QByteArray("a/..") << 1 << 0 << true;
    QTest::newRow("up and back") << QByteArray("./../a/..") << 1 << 1 << true;
    QTest::newRow("absolute") << QByteArray("/a") << 1 << 0 << true;
}

void TestVerify::paths()
{
    QFETCH(QByteArray, path);
    const MemberPath read(path);
    QTEST(int(read.numbers.size()), "depth");
    QTEST(int(read.ups), "ups");
    QTEST(read.leaves(), "leaves");
    const bool isAsPlain = read.numbers == MemberPath("a/b").numbers;
    QCOMPARE(isAsPlain, path == "a/b" || path == ".//a/.//b/");
}

void TestVerify::timeDependsOnTheRate()
{
    const QByteArray archive = packed("head -c 19M /dev/zero >z"); // 20 MB
    QCOMPARE(verifiedArchive(archive).seconds, 2.0);
    QCOMPARE(linesOf(verifiedArchive(archive, 1)),
             QByteArrayList{"warning time up to 20.0 s at 1 MB/s; a panel allows 30 s"});
    const QByteArray files = packed("mkdir d; cd d; seq 15000 | xargs touch; cd ..");
    QCOMPARE(verifiedArchive(files).seconds, 3.8); // 3 s of it to create the files
    QCOMPARE(linesOf(verifiedArchive(files)), QByteArrayList());
    QCOMPARE(linesOf(verifiedArchive(files, 1)),
             QByteArrayList{"error time up to 37.7 s at 1 MB/s; a panel allows 30 s"});
}

void TestVerify::unreadable()
{
    const QByteArray package = packageBytes(Kinds::application, 12, "K21T", packed("echo a >a"));
    for (const qsizetype size : {qsizetype(0), qsizetype(20), qsizetype(60), package.size()}) {
        FailingDevice device(package.left(size));
        QVERIFY(!verifyPackage(device, {"a.kpc", {}}).readable);
        FailingDevice shown(package.left(size));
        QVERIFY(!readPackage(shown).readable);
    }
}

/// The info command accepts an empty archive; only verify calls it an error.
void TestVerify::emptyArchiveIsWhole()
{
    QBuffer buffer;
    buffer.setData(packageBytes(Kinds::application, 12, "K21T",
                                packed("true", "tar -cz --files-from=/dev/null")));
    buffer.open(QIODevice::ReadOnly);
    const PackageInfo info = readPackage(buffer);
    QVERIFY(info.readable && isWhole(info));
    QCOMPARE(info.listing, QByteArray());
}

QTEST_GUILESS_MAIN(TestVerify)
#include "tst_verify.moc"
