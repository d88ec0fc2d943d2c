#include "headerwalk.h"
#include "paxrecords.h"

#include <QTest>

using namespace MkPackage;

namespace {
constexpr qsizetype blockSize = 512;

QByteArray padded(QByteArray bytes)
{
    return bytes.append((blockSize - bytes.size() % blockSize) % blockSize, '\0');
}

/// A tar header of the type @p type. The walk ignores the name and the checksum.
QByteArray header(char type, const QByteArray &size = "00000000000")
{
    QByteArray block = padded("name");
    block.replace(100, 24, "0000644 0000000 0000000 ");
    block.replace(124, size.size(), size);
    block.replace(136, 12, QByteArray("07040000000\0", 12));
    block[156] = type;
    block.replace(257, 8, QByteArray("ustar  \0", 8));
    return block;
}

/// A header with @p content, which describes the next member.
QByteArray describing(char type, const QByteArray &content)
{
    return header(type, QByteArray::number(content.size(), 8).rightJustified(11, '0'))
        + padded(content);
}

QByteArray with(QByteArray block, qsizetype offset, const QByteArray &field)
{
    return block.replace(offset, field.size(), field);
}
} // namespace

class TestHeaderWalk : public QObject
{
    Q_OBJECT
private slots:
    void walks_data();
    void walks();
    void contents();
    void paxRecords_data();
    void paxRecords();
};

void TestHeaderWalk::walks_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("end"); // -1: no member
    QTest::addColumn<QByteArray>("error");
    const QByteArray file = header('0');
    const QByteArray none;
    const QByteArray number = "a malformed number in a header";
    const QByteArray tooMuch = "too many or too large extended headers";

    QTest::newRow("nothing") << none << -1 << none;
    QTest::newRow("half a block") << file.left(511) << -1 << none;
    QTest::newRow("end of the archive") << QByteArray(1024, '\0') << -1 << none;
    QTest::newRow("file") << file << 512 << none;
    QTest::newRow("old file") << header('\0') << 512 << none;
    QTest::newRow("stops at the member") << file + header('Z') << 512 << none;
    QTest::newRow("long name") << describing('L', QByteArray(513, 'n')) + file << 2048 << none;
    QTest::newRow("empty description") << describing('x', "") + file << 1024 << none;
    QTest::newRow("long name and long link")
        << describing('K', "target") + describing('L', "name") + file << 2560 << none;
    QTest::newRow("extended") << describing('x', "10 path=x\n") + file << 1536 << none;
    QTest::newRow("extended, padded with zeros")
        << describing('L', QByteArray(512, '\0')) + file << 1536 << none;
    QTest::newRow("extended, malformed")
        << describing('x', "11 path=x\n") + file << -1 << QByteArray("a malformed extended header");
    QTest::newRow("global, written by git")
        << describing('g', "13 comment=x\n") + file << 1536 << none;
    QTest::newRow("global name") << describing('g', "10 path=x\n") + file << -1
                                 << QByteArray("a global extended header");
    QTest::newRow("eight descriptions") << describing('L', "n").repeated(8) + file << 8704 << none;
    QTest::newRow("nine descriptions") << describing('L', "n").repeated(9) + file << -1 << tooMuch;
    QTest::newRow("large description") << header('L', "00004000001") << -1 << tooMuch;
    QTest::newRow("binary size of a description")
        << header('L', QByteArray("\x80\0\0\0\0\0\0\0\0\0\0\1", 12)) << -1 << tooMuch;
    for (const char type : {'8', 'M', 'N', 'S', 'V', 'X', 'Z', ' '}) {
        QTest::addRow("type %c", type)
            << header(type) << -1 << QByteArray("a member of an unusual type");
    }

    const QByteArray format = "a header of an unusual format";
    QTest::newRow("POSIX format") << with(file, 257, QByteArray("ustar\00000", 8)) << 512 << none;
    QTest::newRow("pre-POSIX format") << with(file, 257, QByteArray(8, '\0')) << -1 << format;
    QTest::newRow("mixed formats") << with(file, 263, "0") << -1 << format;

    QTest::newRow("blanks around a number") << header('0', "    1234   ") << 512 << none;
    QTest::newRow("twelve digits") << header('0', "000000001234") << 512 << none;
    QTest::newRow("binary size") << header('0', QByteArray("\x80\0\0\0\0\0\0\1\0\0\0\0", 12)) << 512
                                 << none;
    QTest::newRow("negative time")
        << with(file, 136, QByteArray("\xff\xff\xff\xff\0\0\0\0\0\0\0\0", 12)) << 512 << none;
    QTest::newRow("binary size too large")
        << header('0', QByteArray("\x80\0\0\1\0\0\0\0\0\0\0\0", 12)) << -1 << number;
    QTest::newRow("negative binary size") << header('0', QByteArray("\x81", 1)) << -1 << number;
    QTest::newRow("no digits") << with(file, 100, "       ") << -1 << number;
    QTest::newRow("letters in a mode") << with(file, 100, "0K") << -1 << number;
    QTest::newRow("digit 8 in a user") << with(file, 114, "8") << -1 << number;
    QTest::newRow("trailing text in a group")
        << with(file, 116, QByteArray("0\0001", 3)) << -1 << number;
    QTest::newRow("minus in a size") << with(file, 124, "-") << -1 << number;
    QTest::newRow("letters in a time") << with(file, 140, "x") << -1 << number;
    QTest::newRow("letters in a description's size")
        << with(describing('x', "10 path=x\n"), 125, "K") << -1 << number;
}

void TestHeaderWalk::walks()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, end);
    for (const qsizetype pieceSize : {blockSize, 3 * blockSize, qsizetype(65536)}) {
        HeaderWalk walk(1024);
        for (qsizetype at = 0; at < bytes.size(); at += pieceSize) {
            walk.feed(QByteArrayView(bytes).sliced(at, std::min(pieceSize, bytes.size() - at)),
                      1024 + at);
        }
        QTEST(QByteArray(walk.error()), "error");
        QCOMPARE(walk.isDone(), end >= 0);
        if (end >= 0) {
            QCOMPARE(walk.end(), 1024 + end);
        }
    }
}

void TestHeaderWalk::contents()
{
    const auto hasContents = [](const QByteArray &size) {
        HeaderWalk walk(0);
        walk.feed(header('0', size), 0);
        return walk.hasContents();
    };
    QVERIFY(!hasContents("00000000000"));
    QVERIFY(!hasContents("      0    "));
    QVERIFY(hasContents("00000000001"));
    QVERIFY(hasContents(QByteArray("\x80\0\0\0\0\0\0\0\0\0\0\1", 12)));
}

void TestHeaderWalk::paxRecords_data()
{
    QTest::addColumn<QByteArray>("records");
    QTest::addColumn<QByteArray>("error");
    const QByteArray none;
    const QByteArray malformed = "a malformed extended header";
    QTest::newRow("none") << none << none;
    QTest::newRow("two") << QByteArray("10 path=x\n10 size=3\n") << none;
    QTest::newRow("value with a line feed") << QByteArray("12 path=x\ny\n") << none;
    QTest::newRow("value with an equals sign") << QByteArray("12 path=x=y\n") << none;
    QTest::newRow("no value") << QByteArray("8 path=\n") << none;
    QTest::newRow("another key") << QByteArray("11 other=x\n") << none;
    QTest::newRow("time") << QByteArray("17 mtime=-12.345\n") << none;
    QTest::newRow("no length") << QByteArray("path=x\n") << malformed;
    QTest::newRow("second one without a length") << QByteArray("10 path=x\npath=x\n") << malformed;
    QTest::newRow("length alone") << QByteArray("3 \n") << malformed;
    QTest::newRow("length 0") << QByteArray("0 path=x\n") << malformed;
    QTest::newRow("length with a sign") << QByteArray("+10 path=x\n") << malformed;
    QTest::newRow("length beyond the end") << QByteArray("11 path=x\n") << malformed;
    QTest::newRow("length of 10 in the lower 32 bits")
        << QByteArray("4294967306 path=x\n") << malformed;
    QTest::newRow("length before the line feed") << QByteArray("8 path=x\n") << malformed;
    QTest::newRow("length with many digits")
        << QByteArray("99999999999999999999 path=x\n") << malformed;
    QTest::newRow("no line feed") << QByteArray("10 path=xy") << malformed;
    QTest::newRow("no equals sign") << QByteArray("10 path x\n") << malformed;
    QTest::newRow("no key") << QByteArray("5 =x\n") << malformed;
    QTest::newRow("zero byte") << QByteArray("11 path=x\0\n", 11) << malformed;
    QTest::newRow("size is not a number") << QByteArray("11 size=3x\n") << malformed;
    QTest::newRow("negative user") << QByteArray("10 uid=-1\n") << malformed;
    QTest::newRow("time is not a number") << QByteArray("11 mtime=-\n") << malformed;
    QTest::newRow("time with two points") << QByteArray("15 mtime=1.2.3\n") << malformed;
    QTest::newRow("sparse file") << QByteArray("22 GNU.sparse.major=1\n")
                                 << QByteArray("a sparse file");
}

void TestHeaderWalk::paxRecords()
{
    QFETCH(QByteArray, records);
    QTEST(QByteArray(findPaxError(records, false)), "error");
}

QTEST_GUILESS_MAIN(TestHeaderWalk)
#include "tst_headerwalk.moc"
