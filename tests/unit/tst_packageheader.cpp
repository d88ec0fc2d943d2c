#include "packages/packageheader.h"

#include <QTest>

namespace {
/// The bytes of a header, put together without the code under test.
QByteArray headerBytes(const QByteArray &kind, const QByteArray &version,
                       const QByteArray &target = QByteArray(PackageFields::target.size, '\0'))
{
    return kind + version + QByteArray(12, '\xA5') + target;
}

QByteArray padded(const QByteArray &target)
{
    return target + QByteArray(PackageFields::target.size - target.size(), '\0');
}
} // namespace

class TestPackageHeader : public QObject
{
    Q_OBJECT
private slots:
    void parse_data();
    void parse();
    void tooShort_data();
    void tooShort();
    void ignoresBytesAfterTheHeader();
    void format();
    void formatTruncatesTheTarget();
    void roundTrip_data();
    void roundTrip();
};

void TestPackageHeader::parse_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<quint32>("kind");
    QTest::addColumn<quint32>("version");
    QTest::addColumn<QString>("target");
    const QByteArray zero(4, '\0');

    QTest::newRow("all zero") << QByteArray(packageHeaderSize, '\0') << 0U << 0U << "";
    QTest::newRow("application") << headerBytes(zero, zero, padded("RV-K21T")) << 0U << 0U
                                 << "RV-K21T";
    QTest::newRow("firmware") << headerBytes(QByteArray("\x01\0\0\0", 4), zero, padded("TALMERO"))
                              << 1U << 0U << "TALMERO";
    QTest::newRow("bios image") << headerBytes(QByteArray("\x04\0\0\0", 4), zero) << 4U << 0U << "";
    QTest::newRow("unknown kind") << headerBytes("\x01\x02\x03\x04", zero) << 0x04030201U << 0U
                                  << "";
    QTest::newRow("little-endian version")
        << headerBytes(zero, QByteArray("\x2C\x01\0\0", 4)) << 0U << 300U << "";
    QTest::newRow("largest version")
        << headerBytes(zero, "\xFF\xFF\xFF\xFF") << 0U << 4294967295U << "";
    QTest::newRow("sign bit alone")
        << headerBytes(zero, QByteArray("\0\0\0\x80", 4)) << 0U << 2147483648U << "";
    QTest::newRow("target of 15") << headerBytes(zero, zero, padded("123456789012345")) << 0U << 0U
                                  << "123456789012345";
    QTest::newRow("target without NUL")
        << headerBytes(zero, zero, "1234567890123456") << 0U << 0U << "1234567890123456";
    QTest::newRow("bytes after the NUL")
        << headerBytes(zero, zero, QByteArray("K21T\0garbage....", 16)) << 0U << 0U << "K21T";
    QTest::newRow("blanks are kept")
        << headerBytes(zero, zero, padded(" K21T ")) << 0U << 0U << " K21T ";
}

void TestPackageHeader::parse()
{
    QFETCH(QByteArray, bytes);
    const auto header = parsePackageHeader(bytes);
    QVERIFY(header);
    QTEST(quint32(header->kind), "kind");
    QTEST(header->version, "version");
    QTEST(header->target, "target");
}

void TestPackageHeader::tooShort_data()
{
    QTest::addColumn<int>("size");
    for (int size = 0; size < packageHeaderSize; ++size) {
        QTest::addRow("%d bytes", size) << size;
    }
}

void TestPackageHeader::tooShort()
{
    QFETCH(int, size);
    QVERIFY(!parsePackageHeader(QByteArray(size, '\0')));
}

void TestPackageHeader::ignoresBytesAfterTheHeader()
{
    const auto header
        = parsePackageHeader(QByteArray(PackageFields::target.offset, '\0')
                             + QByteArray(PackageFields::target.size, 'x') + "payload");
    QVERIFY(header);
    QCOMPARE(header->target, QString(PackageFields::target.size, 'x'));
}

void TestPackageHeader::format()
{
    QCOMPARE(formatPackageHeader({PackageKind::BiosImage, 0x01020304U, "RV-K21T"}).toHex(' '),
             QByteArray("04 00 00 00 04 03 02 01 00 00 00 00 00 00 00 00 00 00 00 00 "
                        "52 56 2d 4b 32 31 54 00 00 00 00 00 00 00 00 00"));
}

void TestPackageHeader::formatTruncatesTheTarget()
{
    const QByteArray bytes
        = formatPackageHeader({PackageKind::Firmware, 1, "1234567890123456 and more"});
    QCOMPARE(bytes.size(), packageHeaderSize);
    QCOMPARE(bytes.mid(20), QByteArray("123456789012345") + '\0');
}

void TestPackageHeader::roundTrip_data()
{
    QTest::addColumn<quint32>("kind");
    QTest::addColumn<quint32>("version");
    QTest::addColumn<QString>("target");
    QTest::newRow("application") << 0U << 300U << "RV-K25T";
    QTest::newRow("firmware") << 1U << 4294967295U << "TALMEROQZP";
    QTest::newRow("bios image") << 4U << 1U << "";
    QTest::newRow("unknown") << 4294967295U << 0U << "123456789012345";
}

void TestPackageHeader::roundTrip()
{
    QFETCH(quint32, kind);
    QFETCH(quint32, version);
    QFETCH(QString, target);
    const auto header
        = parsePackageHeader(formatPackageHeader({PackageKind(kind), version, target}));
    QVERIFY(header);
    QCOMPARE(quint32(header->kind), kind);
    QCOMPARE(header->version, version);
    QCOMPARE(header->target, target);
}

QTEST_GUILESS_MAIN(TestPackageHeader)
#include "tst_packageheader.moc"
