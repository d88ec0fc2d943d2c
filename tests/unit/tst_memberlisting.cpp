#include "memberlisting.h"

#include "diskfiles.h"
#include "gzipreader.h"
#include "panelguard.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <ctime>
#include <limits>

using namespace MkPackage;

namespace {
TarMember member(TarMember::Type type, quint32 mode, const QByteArray &target = {})
{
    TarMember made;
    made.name = "a";
    made.type = type;
    made.mode = mode;
    made.target = target;
    return made;
}

QByteArray listingOf(const TarMember &member)
{
    MemberListing listing;
    listing.add(member);
    return listing.text();
}

QByteArray listingOfArchive(const QByteArray &path)
{
    QFile file(QString::fromUtf8(path));
    if (!file.open(QIODevice::ReadOnly)) {
        qFatal("cannot open %s", path.constData());
    }
    GzipReader gzip(file, 1 << 30);
    TarReader tar(gzip);
    MemberListing listing;
    for (TarMember next; tar.next(next) == TarReader::Step::Member;) {
        listing.add(next);
    }
    return listing.text();
}

/// libarchive gives times as time_t, so the listing shows later ones wrongly where that has 32
/// bits.
constexpr const char *latestTime = sizeof(time_t) == sizeof(qint64) ? "2400-01-01" : "2038-01-01";

/// Creates a file of each type that tar packs, the youngest of $latest, and names with terminal
/// escapes.
constexpr char oddFiles[] = R"sh(
    umask 022; mkdir folder sticky; chmod 1777 sticky; echo x >folder/x; ln folder/x hard
    ln -s folder/x link; ln -s '../a b' 'link 2'; mkfifo pipe
    i=0; for mode in 4755 4644 2755 2644 1755 1644 6711 0000 0777; do
        i=$((i + 1)); echo $i >mode$i; chmod $mode mode$i
    done
    head -c 3000000 /dev/zero >large; : >empty; : >.hidden; chown 4000000000:2000000 large
    touch -d '1969-12-31 23:59:59 UTC' before; touch -d '2001-02-03 04:05:06 UTC' then
    touch -d "$latest UTC" late
    for name in 'a b' '-option' 'quote"' "it's" 'back\slash' "$(printf 'two\nlines')" \
        "$(printf 'tab\tbell\a\b\v\f\r')" "$(printf '\033[2J\177')" "$(printf 'gr\303\274n')" \
        'folder/: ** Block of NULs **'; do
        echo x >"./$name"
    done)sh";

/// Adds device nodes to the archive. In a container even root may not create them on disk.
constexpr char addDevices[] = R"py(
import tarfile
with tarfile.open("archive.tar", "a") as archive:
    for name, sort, major, minor in (("letters", tarfile.CHRTYPE, 4, 64),
                                     ("blocks", tarfile.BLKTYPE, 259, 1048575)):
        device = tarfile.TarInfo(name)
        device.type, device.devmajor, device.devminor = sort, major, minor
        archive.addfile(device)
)py";
} // namespace

class TestMemberListing : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { requirePanel(); }
    void lines_data();
    void lines();
    void columnGrows();
    void escapes_data();
    void escapes();
    void matchesTar_data();
    void matchesTar();
};

void TestMemberListing::lines_data()
{
    QTest::addColumn<TarMember>("member");
    QTest::addColumn<QByteArray>("line");
    using Type = TarMember::Type;
    QTest::newRow("file") << member(Type::File, 0644)
                          << QByteArray("-rw-r--r-- 0/0               0 1970-01-01 00:00 a\n");
    QTest::newRow("folder") << member(Type::Folder, 01777)
                            << QByteArray("drwxrwxrwt 0/0               0 1970-01-01 00:00 a\n");
    QTest::newRow("link") << member(Type::SymLink, 0777, "b\n")
                          << QByteArray(
                                 "lrwxrwxrwx 0/0               0 1970-01-01 00:00 a -> b\\n\n");
    QTest::newRow("hard link") << member(Type::HardLink, 0600, "b")
                               << QByteArray("hrw------- 0/0               0 1970-01-01 00:00 a "
                                             "link to b\n");
    TarMember device = member(Type::BlockDevice, 0);
    device.deviceMajor = 8;
    device.deviceMinor = 1;
    QTest::newRow("device") << device
                            << QByteArray("b--------- 0/0             8,1 1970-01-01 00:00 a\n");
    TarMember endless = member(Type::File, 06000);
    endless.time = std::numeric_limits<qint64>::max();
    QTest::newRow("time beyond the calendar")
        << endless << QByteArray("---S--S--- 0/0               0 9223372036854775807 a\n");
}

void TestMemberListing::lines()
{
    QFETCH(TarMember, member);
    QTEST(listingOf(member), "line");
}

/// A wide size widens the column only for the lines after it.
void TestMemberListing::columnGrows()
{
    TarMember wide = member(TarMember::Type::File, 0644);
    wide.size = 12345678901234567;
    MemberListing listing;
    listing.add(member(TarMember::Type::File, 0644));
    listing.add(wide);
    listing.add(member(TarMember::Type::File, 0644));
    QCOMPARE(listing.text(),
             QByteArray("-rw-r--r-- 0/0               0 1970-01-01 00:00 a\n"
                        "-rw-r--r-- 0/0 12345678901234567 1970-01-01 00:00 a\n"
                        "-rw-r--r-- 0/0                 0 1970-01-01 00:00 a\n"));
}

void TestMemberListing::escapes_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("shown");
    QTest::newRow("plain") << QByteArray("a b-~") << QByteArray("a b-~");
    QTest::newRow("line feed") << QByteArray("a\nb") << QByteArray("a\\nb");
    QTest::newRow("backslash") << QByteArray("a\\b") << QByteArray("a\\\\b");
    QTest::newRow("terminal escape") << QByteArray("\x1b[2J") << QByteArray("\\033[2J");
    QTest::newRow("digit after a control character") << QByteArray("\1\61") << QByteArray("\\0011");
    QTest::newRow("UTF-8") << QByteArray("\xC3\xBC") << QByteArray("\\303\\274");
    QTest::newRow("NUL") << QByteArray("\0x", 2) << QByteArray("\\000x");
}

void TestMemberListing::escapes()
{
    QFETCH(QByteArray, name);
    QTEST(escapedName(name), "shown");
}

void TestMemberListing::matchesTar_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("moreFiles");
    // Names in the POSIX format must be UTF-8; otherwise the reader calls the archive damaged.
    QTest::newRow("GNU") << "gnu"
                         << "echo x >\"$(printf '\\377\\001')\"";
    QTest::newRow("POSIX") << "pax"
                           << "true";
}

/// The listing looks like that of tar, which people know.
void TestMemberListing::matchesTar()
{
    QFETCH(QString, format);
    QFETCH(QString, moreFiles);
    const QTemporaryDir folder;
    shellBytes(
        QString("latest=%6; cd '%1'; mkdir in; cd in; %2; %3; tar -cf ../archive.tar --format=%4 "
                ".; cd ..; rm -r in; python3 -c '%5'; gzip archive.tar")
            .arg(folder.path(), oddFiles, moreFiles, format, addDevices, latestTime));
    const QByteArray expected
        = shellBytes(QString("TZ=UTC LC_ALL=C tar -tvzf '%1/archive.tar.gz' --numeric-owner"
                             " --quoting-style=escape")
                         .arg(folder.path()));
    QVERIFY(expected.count('\n') > 30);
    QCOMPARE(listingOfArchive(folder.filePath("archive.tar.gz").toUtf8()).split('\n'),
             expected.split('\n'));
}

QTEST_GUILESS_MAIN(TestMemberListing)
#include "tst_memberlisting.moc"
