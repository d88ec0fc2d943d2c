// The parts of the guard that decide: its configuration, the reserve, links.

#include "configuration.h"
#include "links.h"
#include "reserve.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

using namespace Guard;

namespace {
constexpr qint64 full = 4000;

QByteArrayList pathsOf(const QList<Link> &links)
{
    QByteArrayList paths;
    for (const Link &link : links) {
        paths += link.path;
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}
} // namespace

class TestGuardParts : public QObject
{
    Q_OBJECT
private slots:
    void configuration_data();
    void configuration();
    void exampleIsUnderstood();
    void reserve_data();
    void reserve();
    void links();
    void linksBelowALinkedFolder();
};

void TestGuardParts::configuration_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArrayList>("allowed");
    QTest::addColumn<bool>("removes");
    QTest::addColumn<qint64>("reserve");
    QTest::addColumn<QStringList>("problems");
    const qint64 usual = 4194304;
    const auto problem = [](const char *line) {
        return QStringList{QString("/etc/talmero-guard.conf: not understood: ") + line};
    };
    QTest::newRow("missing") << QByteArray() << QByteArrayList() << true << usual << QStringList();
    QTest::newRow("all keys") << QByteArray("# ours\n\nallow.link=/home/dest/a\n links=report \r\n"
                                            "reserve.kib=64\nallow.link=/home/dest/b b\n")
                              << QByteArrayList{"/home/dest/a", "/home/dest/b b"} << false
                              << qint64(65536) << QStringList();
    QTest::newRow("no reserve") << QByteArray("reserve.kib=0") << QByteArrayList() << true
                                << qint64(0) << QStringList();
    QTest::newRow("not a size") << QByteArray("reserve.kib=4M") << QByteArrayList() << true << usual
                                << problem("reserve.kib=4M");
    QTest::newRow("negative size") << QByteArray("reserve.kib=-1") << QByteArrayList() << true
                                   << usual << problem("reserve.kib=-1");
    QTest::newRow("huge size") << QByteArray("reserve.kib=1048577") << QByteArrayList() << true
                               << usual << problem("reserve.kib=1048577");
    QTest::newRow("relative link") << QByteArray("allow.link=a") << QByteArrayList() << true
                                   << usual << problem("allow.link=a");
    QTest::newRow("unknown choice")
        << QByteArray("links=keep") << QByteArrayList() << true << usual << problem("links=keep");
    QTest::newRow("unknown key") << QByteArray("link=/home/dest/a") << QByteArrayList() << true
                                 << usual << problem("link=/home/dest/a");
    QTest::newRow("no key") << QByteArray("remove") << QByteArrayList() << true << usual
                            << problem("remove");
}

void TestGuardParts::configuration()
{
    QFETCH(QByteArray, text);
    const Configuration read = parseConfiguration(text);
    QTEST(read.allowedLinks, "allowed");
    QTEST(read.removesLinks, "removes");
    QTEST(read.reserve, "reserve");
    QTEST(read.problems, "problems");
}

/// The example has the values that apply without a file.
void TestGuardParts::exampleIsUnderstood()
{
    QFile file(PANEL_SOURCE "/guard/talmero-guard.conf");
    QVERIFY(file.open(QIODevice::ReadOnly));
    const Configuration example = parseConfiguration(file.readAll());
    QCOMPARE(example.problems, QStringList());
    QCOMPARE(example.allowedLinks, QByteArrayList());
    QCOMPARE(example.removesLinks, Configuration().removesLinks);
    QCOMPARE(example.reserve, Configuration().reserve);
}

void TestGuardParts::reserve_data()
{
    QTest::addColumn<qint64>("current");
    QTest::addColumn<qint64>("free");
    QTest::addColumn<bool>("isUnpacking");
    QTest::addColumn<qint64>("wanted");
    const auto row
        = [](const char *name, qint64 current, qint64 free, bool isUnpacking, qint64 wanted) {
              QTest::newRow(name) << current << free << isUnpacking << wanted;
          };
    row("plenty of room", full, 1000000, false, full);
    row("enough room", full, 1000, false, full);
    row("full disk", full, 999, false, 3000);
    row("full again", 3000, 0, false, 2000);
    row("full for the last time", 1000, 0, false, 0);
    row("nothing left", 0, 0, false, 0);
    row("full disk while tar runs", full, 0, true, full);
    row("first start", 0, 20001, false, full);
    row("first start on a small disk", 0, 20000, false, 0);
    row("room again", 1000, 19001, false, full);
    row("room again while tar runs", 1000, 1000000, true, 1000);
    row("size made smaller", 5000, 1000000, false, full);
    row("unknown disk", 1000, -1, false, 1000);
}

void TestGuardParts::reserve()
{
    QFETCH(qint64, current);
    QFETCH(qint64, free);
    QFETCH(bool, isUnpacking);
    QTEST(wantedReserve(current, full, free, isUnpacking), "wanted");
}

void TestGuardParts::links()
{
    const QTemporaryDir folder;
    const QByteArray top = folder.filePath("dest").toUtf8();
    QVERIFY(QDir().mkpath(folder.filePath("dest/deep/.hidden")));
    const auto link = [&top](const char *target, const QByteArray &name) {
        QVERIFY(symlink(target, (top + '/' + name).constData()) == 0);
    };
    link("..", "deep/inside");
    link("nowhere", "deep/dangling");
    link("/etc/passwd", "file");
    link("../dest/deep", "around");
    QCOMPARE(pathsOf(findLinksOut(top, {})), QByteArrayList());

    link("/etc", "deep/.hidden/absolute");
    link("../..", "deep/upwards");
    link("../nowhere", "beside");
    link("/nowhere", "deep/bytes\xff");
    link("deep/upwards", "first");
    link("/var", "allowed");
    const QByteArrayList out = pathsOf(findLinksOut(top, {top + "/allowed"}));
    QCOMPARE(out,
             (QByteArrayList{top + "/beside", top + "/deep/.hidden/absolute",
                             top + "/deep/bytes\xff", top + "/deep/upwards", top + "/first"}));
    QCOMPARE(findLinksOut(top + "/deep/.hidden", {}),
             (QList<Link>{{top + "/deep/.hidden/absolute", "/etc"}}));
    QCOMPARE(findLinksOut(top + "/missing", {}), QList<Link>());
    unlink((top + "/deep/bytes\xff").constData()); // QTemporaryDir cannot
}

void TestGuardParts::linksBelowALinkedFolder()
{
    const QTemporaryDir folder;
    QVERIFY(QDir().mkpath(folder.filePath("real/deep")));
    QVERIFY(QFile::link("real", folder.filePath("dest")));
    QVERIFY(QFile::link("deep", folder.filePath("real/inside")));
    QVERIFY(QFile::link("/etc", folder.filePath("real/outside")));
    const QByteArray top = folder.filePath("dest").toUtf8();
    QCOMPARE(pathsOf(findLinksOut(top, {})), QByteArrayList{top + "/outside"});
}

QTEST_GUILESS_MAIN(TestGuardParts)
#include "tst_guardparts.moc"
