#include "packages/packagetypes.h"

#include <QTest>

class TestPackageTypes : public QObject
{
    Q_OBJECT
private slots:
    void table_data();
    void table();
    void listedNames_data();
    void listedNames();
    void listedKinds();
};

void TestPackageTypes::table_data()
{
    QTest::addColumn<PackageType>("type");
    QTest::addColumn<quint32>("kind");
    QTest::addColumn<QString>("extension");
    QTest::addColumn<bool>("anyCase");
    QTest::addColumn<QString>("folder");
    QTest::newRow("application") << PackageType::Application << 0U << ".kpc" << false
                                 << "/home/dest";
    QTest::newRow("firmware") << PackageType::Firmware << 1U << ".fmw" << false << "/home";
    QTest::newRow("BIOS image") << PackageType::BiosImage << 4U << ".mo" << true
                                << "/opt/talmero/bios";
    QTest::newRow("add-on") << PackageType::AddOn << 4U << ".pkg" << true << "/opt/talmero/bios";
}

void TestPackageTypes::table()
{
    QFETCH(PackageType, type);
    const PackageTypeInfo &info = packageTypeInfo(type);
    QTEST(quint32(info.kind), "kind");
    QTEST(packageExtension(type), "extension");
    QTEST(info.extensionCase == ExtensionCase::AnyCase, "anyCase");
    QTEST(QString(info.folder), "folder");
}

void TestPackageTypes::listedNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QList<PackageType>>("types");
    using Types = QList<PackageType>;
    QTest::newRow("application") << "usb0/a.kpc" << Types{PackageType::Application};
    QTest::newRow("application in capitals") << "A.KPC" << Types();
    QTest::newRow("firmware") << "a.fmw" << Types{PackageType::Firmware};
    QTest::newRow("firmware in capitals") << "a.Fmw" << Types();
    QTest::newRow("BIOS image") << "a.mo" << Types{PackageType::BiosImage};
    QTest::newRow("BIOS image in capitals") << "A.MO" << Types{PackageType::BiosImage};
    QTest::newRow("add-on") << "a.pkg" << Types{PackageType::AddOn};
    QTest::newRow("add-on in capitals") << "a.pKg" << Types{PackageType::AddOn};
    QTest::newRow("no dot") << "akpc" << Types();
    QTest::newRow("extension in the middle") << "a.mo.bak" << Types();
    QTest::newRow("empty") << "" << Types();
}

void TestPackageTypes::listedNames()
{
    QFETCH(QString, name);
    QList<PackageType> types;
    for (const PackageTypeInfo &info : packageTypes) {
        if (isListedAs(info.type, name)) {
            types += info.type;
        }
    }
    QTEST(types, "types");
}

/// BIOS images and add-ons have the same kind.
void TestPackageTypes::listedKinds()
{
    QVERIFY(isListedAs(PackageKind::BiosImage, "a.mo"));
    QVERIFY(isListedAs(PackageKind::BiosImage, "a.pkg"));
    QVERIFY(!isListedAs(PackageKind::BiosImage, "a.kpc"));
    QVERIFY(!isListedAs(PackageKind(2), "a.kpc"));
    QCOMPARE(packageExtensions(PackageKind::BiosImage), (QStringList{".mo", ".pkg"}));
    QCOMPARE(packageExtensions(PackageKind(2)), QStringList());
}

QTEST_GUILESS_MAIN(TestPackageTypes)
#include "tst_packagetypes.moc"
