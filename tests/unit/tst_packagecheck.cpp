#include "packages/packagecheck.h"

#include "packagefiles.h"

#include <QTest>

using namespace Kinds;

namespace {
const QStringList twoNames{"RV-K21T", "K21T"};
} // namespace

class TestPackageCheck : public QObject
{
    Q_OBJECT
private slots:
    void versionNumber_data();
    void versionNumber();
    void package_data();
    void package();
    void biosPackage_data();
    void biosPackage();
};

void TestPackageCheck::versionNumber_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<quint32>("number");
    QTest::newRow("empty") << "" << 0U;
    QTest::newRow("number") << "12" << 12U;
    QTest::newRow("leading zero is decimal") << "010" << 10U;
    QTest::newRow("not a number") << "abc" << 0U;
    QTest::newRow("number and text") << "12b" << 0U;
    QTest::newRow("hexadecimal") << "0x10" << 0U;
    QTest::newRow("fraction") << "1.5" << 0U;
    QTest::newRow("largest signed") << "2147483647" << 2147483647U;
    QTest::newRow("above the signed range") << "2147483648" << 2147483648U;
    QTest::newRow("largest") << "4294967295" << 4294967295U;
    QTest::newRow("too large") << "4294967296" << 0U;
    QTest::newRow("far too large") << "99999999999999999999" << 0U;
    QTest::newRow("largest, as the setter stores it") << "-1" << 4294967295U;
    QTest::newRow("smallest signed") << "-2147483648" << 2147483648U;
    QTest::newRow("too small") << "-2147483649" << 0U;
}

void TestPackageCheck::versionNumber()
{
    QFETCH(QString, text);
    QTEST(::versionNumber(text), "number");
}

void TestPackageCheck::package_data()
{
    QTest::addColumn<PackageHeader>("header");
    QTest::addColumn<QString>("runtimeVersion");
    QTest::addColumn<int>("result");

    QTest::newRow("application") << PackageHeader{application, 12, "RV-K21T"} << "12" << 0;
    QTest::newRow("application for the short code")
        << PackageHeader{application, 12, "K21T"} << "12" << 0;
    QTest::newRow("version above") << PackageHeader{application, 13, "RV-K21T"} << "12" << 2;
    QTest::newRow("version below") << PackageHeader{application, 11, "RV-K21T"} << "12" << 2;
    QTest::newRow("no runtime, version 0") << PackageHeader{application, 0, "K21T"} << "" << 0;
    QTest::newRow("no runtime, version 1") << PackageHeader{application, 1, "K21T"} << "" << 2;
    QTest::newRow("largest version")
        << PackageHeader{application, 4294967295U, "K21T"} << "4294967295" << 0;
    QTest::newRow("largest version, stored as negative")
        << PackageHeader{application, 4294967295U, "K21T"} << "-1" << 0;
    QTest::newRow("other model") << PackageHeader{application, 12, "RV-K25T"} << "12" << 3;
    QTest::newRow("model in small letters")
        << PackageHeader{application, 12, "rv-k21t"} << "12" << 3;
    QTest::newRow("part of a model") << PackageHeader{application, 12, "RV-K21"} << "12" << 3;
    QTest::newRow("no model") << PackageHeader{application, 12, ""} << "12" << 3;
    QTest::newRow("version before model") << PackageHeader{application, 13, "x"} << "12" << 2;

    QTest::newRow("firmware") << PackageHeader{firmware, 1, "TALMERO"} << "12" << 0;
    QTest::newRow("firmware of any version") << PackageHeader{firmware, 0, "TALMERO"} << "12" << 0;
    QTest::newRow("OEM in other letters") << PackageHeader{firmware, 1, "Talmero"} << "12" << 4;
    QTest::newRow("other OEM") << PackageHeader{firmware, 1, "TALMEROQZP"} << "12" << 4;
    QTest::newRow("model for OEM") << PackageHeader{firmware, 1, "RV-K21T"} << "12" << 4;

    QTest::newRow("BIOS image") << PackageHeader{biosImage, 1, ""} << "12" << 0;
    QTest::newRow("kind 2") << PackageHeader{PackageKind(2), 1, ""} << "12" << 0;
    QTest::newRow("kind 3") << PackageHeader{PackageKind(3), 1, ""} << "12" << 0;
    QTest::newRow("largest kind") << PackageHeader{PackageKind(4294967295U), 1, ""} << "12" << 0;
}

void TestPackageCheck::package()
{
    QFETCH(PackageHeader, header);
    QFETCH(QString, runtimeVersion);
    QTEST(int(checkPackage(header, {runtimeVersion, "TALMERO", twoNames})), "result");
}

void TestPackageCheck::biosPackage_data()
{
    QTest::addColumn<PackageHeader>("header");
    QTest::addColumn<QString>("installed");
    QTest::addColumn<int>("result");
    QTest::newRow("newer") << PackageHeader{biosImage, 4, ""} << "3" << 1;
    QTest::newRow("same") << PackageHeader{biosImage, 3, ""} << "3" << -2;
    QTest::newRow("older") << PackageHeader{biosImage, 2, ""} << "3" << -2;
    QTest::newRow("none installed") << PackageHeader{biosImage, 1, ""} << "" << 1;
    QTest::newRow("version 0, none installed") << PackageHeader{biosImage, 0, ""} << "" << -2;
    QTest::newRow("largest") << PackageHeader{biosImage, 4294967295U, ""} << "3" << 1;
    QTest::newRow("unsigned") << PackageHeader{biosImage, 2147483648U, ""} << "2147483647" << 1;
    QTest::newRow("stored negative") << PackageHeader{biosImage, 5, ""} << "-1" << -2;
    QTest::newRow("target is ignored") << PackageHeader{biosImage, 4, "any"} << "3" << 1;
    QTest::newRow("application") << PackageHeader{application, 4, ""} << "3" << -1;
    QTest::newRow("firmware") << PackageHeader{firmware, 4, ""} << "3" << -1;
    QTest::newRow("unknown kind") << PackageHeader{PackageKind(5), 4, ""} << "3" << -1;
    QTest::newRow("kind before version") << PackageHeader{application, 2, ""} << "3" << -1;
}

void TestPackageCheck::biosPackage()
{
    QFETCH(PackageHeader, header);
    QFETCH(QString, installed);
    QTEST(int(checkBiosPackage(header, installed)), "result");
}

QTEST_GUILESS_MAIN(TestPackageCheck)
#include "tst_packagecheck.moc"
