#include "options.h"
#include "system/debugtext.h"

#include <QTest>

using namespace MkPackage;

namespace {
QStringList words(const QString &line)
{
    return line.split(' ', Qt::SkipEmptyParts);
}
} // namespace

class TestMkpackageOptions : public QObject
{
    Q_OBJECT
private slots:
    void make();
    void noCommand_data();
    void noCommand();
    void refused_data();
    void refused();
    void accepted_data();
    void accepted();
    void verify();
    void warnings_data();
    void warnings();
    void fileTimes_data();
    void fileTimes();
    void printableText_data();
    void printableText();
};

void TestMkpackageOptions::make()
{
    const Options options = parseOptions({"make", "--kind", "firmware", "--version=300", "--target",
                                          "OEM name", "--output", "out put.fmw", "a folder"});
    QCOMPARE(options.error, QString());
    QVERIFY(options.task == Options::Task::Make);
    QVERIFY(options.header.kind == PackageKind::Firmware);
    QCOMPARE(options.header.version, 300U);
    QCOMPARE(options.header.target, QString("OEM name"));
    QCOMPARE(options.output, QString("out put.fmw"));
    QCOMPARE(options.folder, QString("a folder"));
}

void TestMkpackageOptions::noCommand_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("task");
    QTest::addColumn<QString>("error");
    const int help = int(Options::Task::Help);
    QTest::newRow("help") << "--help" << help << "";
    QTest::newRow("short help") << "-h" << help << "";
    QTest::newRow("help of a command") << "make --kind --help" << help << "";
    QTest::newRow("version") << "--version" << int(Options::Task::Version) << "";
    QTest::newRow("info") << "info file" << int(Options::Task::Info) << "";
    QTest::newRow("nothing") << "" << help << "no command given";
    QTest::newRow("unknown") << "pack x" << help << "unknown command: pack";
}

void TestMkpackageOptions::noCommand()
{
    QFETCH(QString, line);
    const Options options = parseOptions(words(line));
    QTEST(int(options.task), "task");
    QTEST(options.error, "error");
}

void TestMkpackageOptions::refused_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("error");
    const QString app = "make --kind application --output o.kpc f ";
    const QString whole = app + "--version 1 --target K21T ";

    QTest::newRow("no kind") << "make --version 1 --target K --output o f"
                             << "--kind is missing";
    QTest::newRow("no version") << app + "--target K"
                                << "--version is missing";
    QTest::newRow("no output") << "make --kind bios --version 1 f"
                               << "--output is missing";
    QTest::newRow("no value") << whole + "--kind"
                              << "Missing value after '--kind'.";
    QTest::newRow("unknown option") << whole + "--force"
                                    << "Unknown option 'force'.";
    QTest::newRow("twice") << whole + "--version 2"
                           << "--version is given twice";
    QTest::newRow("output empty") << "make --kind bios --version 1 f --output="
                                  << "--output is empty";
    QTest::newRow("output twice") << whole + "--output p"
                                  << "--output is given twice";
    QTest::newRow("two folders") << whole + "g"
                                 << "make takes one folder";
    QTest::newRow("no folder") << "make --kind bios --version 1 --output o"
                               << "make takes one folder";
    QTest::newRow("unknown kind") << "make --kind app --version 1 --target K --output o f"
                                  << "--kind must be application, firmware or bios";
    QTest::newRow("kind in capitals") << "make --kind BIOS --version 1 --output o f"
                                      << "--kind must be application, firmware or bios";
    for (const char *version :
         {"4294967296", "-1", "+1", "1.0", "0x1", "1a", "99999999999999999999"}) {
        QTest::addRow("version %s", version) << app + "--target K --version=" + version
                                             << "--version must be a number from 0 to 4294967295";
    }
    QTest::newRow("bios 0") << "make --kind bios --version 0 --output o f"
                            << "a panel does not install a bios of version 0";
    QTest::newRow("no model") << app + "--version 1"
                              << "--target must be the panel model that the package is for";
    QTest::newRow("no OEM") << "make --kind firmware --version 1 --output o f --target="
                            << "--target must be the OEM name that the package is for";
    QTest::newRow("16 characters") << app + "--version 1 --target 1234567890123456"
                                   << "--target has 16 characters; at most 15 fit";
    QTest::newRow("not ASCII") << app + QString::fromUtf8("--version 1 --target Gr\xC3\xB6\xC3\x9F")
                               << "--target must be printable ASCII";
    QTest::newRow("control character") << app + "--version 1 --target K\n"
                                       << "--target must be printable ASCII";
    QTest::newRow("bios with a long target")
        << "make --kind bios --version 1 --output o f --target 1234567890123456"
        << "--target has 16 characters; at most 15 fit";
    QTest::newRow("info without file") << "info"
                                       << "info takes one file";
    QTest::newRow("info with two files") << "info a b"
                                         << "info takes one file";
    QTest::newRow("info with an option") << "info --kind a"
                                         << "Unknown option 'kind'.";
    QTest::newRow("verify without file") << "verify --json"
                                         << "verify takes one file";
    QTest::newRow("verify with two files") << "verify a b"
                                           << "verify takes one file";
    QTest::newRow("verify with an option of make") << "verify a --kind bios"
                                                   << "Unknown option 'kind'.";
    QTest::newRow("verify for two models") << "verify a --for K --for L"
                                           << "--for is given twice";
    QTest::newRow("no runtime version") << "verify a --runtime 12a"
                                        << "--runtime must be a number from 0 to 4294967295";
    QTest::newRow("empty runtime version") << "verify a --runtime="
                                           << "--runtime must be a number from 0 to 4294967295";
    QTest::newRow("bios version too large") << "verify a --bios 4294967296"
                                            << "--bios must be a number from 0 to 4294967295";
    for (const char *rate : {"0", "-1", "", "fast", "1000001"}) {
        QTest::addRow("rate %s", rate) << QString("verify a --rate=") + rate
                                       << "--rate must be a number of megabytes a second";
    }
}

void TestMkpackageOptions::refused()
{
    QFETCH(QString, line);
    QTEST(parseOptions(words(line)).error, "error");
}

void TestMkpackageOptions::accepted_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<quint32>("version");
    QTest::addColumn<QString>("target");
    QTest::newRow("largest version")
        << "make --kind application --version 4294967295 --target K --output o f" << 4294967295U
        << "K";
    QTest::newRow("version 0") << "make --kind application --version 0 --target K --output o f"
                               << 0U << "K";
    QTest::newRow("leading zeros") << "make --kind bios --version 007 --output o f" << 7U << "";
    QTest::newRow("15 characters")
        << "make --kind firmware --version 1 --target 123456789012345 --output o f" << 1U
        << "123456789012345";
    QTest::newRow("target of a bios")
        << "make --kind bios --version 1 --target any --output o f" << 1U << "any";
}

void TestMkpackageOptions::accepted()
{
    QFETCH(QString, line);
    const Options options = parseOptions(words(line));
    QCOMPARE(options.error, QString());
    QTEST(options.header.version, "version");
    QTEST(options.header.target, "target");
}

void TestMkpackageOptions::verify()
{
    const Options options
        = parseOptions({"verify", "a file.kpc", "--for", "RV-K21T", "--runtime", "12",
                        "--oem=", "--bios", "4294967295", "--rate", "7", "--json"});
    QCOMPARE(options.error, QString());
    QVERIFY(options.task == Options::Task::Verify);
    QCOMPARE(options.file, QString("a file.kpc"));
    QCOMPARE(options.verify.name, options.file);
    QVERIFY(options.verify.panel.model == QString("RV-K21T"));
    QVERIFY(options.verify.panel.runtimeVersion == 12U);
    QVERIFY(options.verify.panel.oem == QString("")); // the OEM of a panel that was never set up
    QVERIFY(options.verify.panel.biosVersion == 4294967295U);
    QCOMPARE(options.verify.rate, 7);
    QVERIFY(options.json);

    const Options plain = parseOptions({"verify", "a.kpc"});
    QCOMPARE(plain.error, QString());
    QVERIFY(!plain.verify.panel.model && !plain.verify.panel.runtimeVersion);
    QVERIFY(!plain.verify.panel.oem && !plain.verify.panel.biosVersion);
    QCOMPARE(plain.verify.rate, defaultRate);
    QVERIFY(!plain.json);
}

void TestMkpackageOptions::warnings_data()
{
    QTest::addColumn<PackageHeader>("header");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QStringList>("warnings");
    const PackageHeader application{PackageKind::Application, 4294967295U, "K"};
    const PackageHeader bios{PackageKind::BiosImage, 4294967295U, ""};
    const QStringList none;
    QTest::newRow("application") << application << "a.kpc" << none;
    QTest::newRow("capitals")
        << application << "A.KPC"
        << QStringList{"a panel lists packages of this kind only with the extension .kpc"};
    QTest::newRow("bios image") << bios << "a.mo" << none;
    QTest::newRow("add-on") << bios << "a.pkg" << none;
    QTest::newRow("add-on in capitals") << bios << "A.PKG" << none; // its picker ignores case
    QTest::newRow("bios with another extension")
        << bios << "a.kpc"
        << QStringList{"a panel lists packages of this kind only with the extension .mo or .pkg"};
    QTest::newRow("firmware") << PackageHeader{PackageKind::Firmware, 2147483647U, "O"} << "a.fmw"
                              << none;
    QTest::newRow("firmware shown as negative")
        << PackageHeader{PackageKind::Firmware, 2147483648U, "O"} << "a.fmw"
        << QStringList{"a panel shows this version as -2147483648"};
}

void TestMkpackageOptions::warnings()
{
    QFETCH(PackageHeader, header);
    QFETCH(QString, output);
    QTEST(warningsFor(header, output), "warnings");
}

void TestMkpackageOptions::fileTimes_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<qint64>("time"); // -1 if the text is refused
    QTest::newRow("not set") << QByteArray() << qint64(946684800);
    QTest::newRow("set") << QByteArray("1441036800") << qint64(1441036800);
    QTest::newRow("0") << QByteArray("0") << qint64(0);
    QTest::newRow("latest") << QByteArray("8589934591") << qint64(8589934591);
    for (const char *value : {"8589934592", "-1", "now", "1.5", " 1", "99999999999999999999"}) {
        QTest::newRow(value) << QByteArray(value) << qint64(-1);
    }
}

void TestMkpackageOptions::fileTimes()
{
    QFETCH(QByteArray, value);
    QTEST(fileTime(value).value_or(-1), "time");
}

void TestMkpackageOptions::printableText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("shown");
    QTest::newRow("plain") << "RV-K21T ~" << QByteArray("RV-K21T ~");
    QTest::newRow("terminal escape") << "\x1b[2J\n" << QByteArray("\\x1b[2J\\x0a");
    QTest::newRow("backslash") << "\\x41" << QByteArray("\\x5cx41");
    QTest::newRow("UTF-8") << QString::fromUtf8("\xC3\xBC") << QByteArray("\\xc3\\xbc");
}

void TestMkpackageOptions::printableText()
{
    QFETCH(QString, text);
    QTEST(printable(text), "shown");
}

QTEST_GUILESS_MAIN(TestMkpackageOptions)
#include "tst_mkpackageoptions.moc"
