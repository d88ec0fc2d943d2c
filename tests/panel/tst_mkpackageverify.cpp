#include "diskfiles.h"
#include "manualpage.h"
#include "packagefiles.h"
#include "panelguard.h"
#include "toolrun.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

#include <sys/resource.h>
#include <sys/stat.h>

// Runs the tool from the command line. tst_verify tests what it finds.

namespace {
#ifdef __SANITIZE_ADDRESS__
constexpr long memoryLimit = 262144; // KiB, including that of the sanitizer
constexpr long memoryGrowth = 16384; // KiB, far less than the 64 MB of the package
#else
constexpr long memoryLimit = 65536; // KiB
constexpr long memoryGrowth = 1024; // KiB
#endif

constexpr char file[] = "line.kpc";

ToolRun verify(const QStringList &arguments)
{
    return runTool(MKPACKAGE, QStringList("verify") + arguments);
}

/// The largest memory, in KiB, of the tools that have run so far.
long largestMemory()
{
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    return usage.ru_maxrss;
}
} // namespace

class TestMkpackageVerify : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void warningsDoNotRefuse();
    void refusalQuotesThePanelsMessage();
    void wholeStickIsGood();
    void packagesOfTheTestsAreGood();
    void notReadable_data();
    void notReadable();
    void json();
    void ordinaryUser();
    void outputIsSafeForATerminal();
    void memoryStaysFlat();
    void examplesOfTheManualPages_data();
    void examplesOfTheManualPages();

private:
    QString path(const QString &name) const { return m_folder->filePath(name); }
    void write(PackageKind kind, const QByteArray &archive) const
    {
        writeFile(path(file).toUtf8(), packageBytes(kind, 12, "K21T", archive));
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void TestMkpackageVerify::initTestCase()
{
    requirePanel();
}

void TestMkpackageVerify::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    write(Kinds::application, smallArchive());
}

void TestMkpackageVerify::warningsDoNotRefuse()
{
    const ToolRun good = verify({path(file), "--for", "RV-K21T", "--runtime", "12"});
    QCOMPARE(good.status, 0);
    QCOMPARE(good.errors, QByteArray());
    QVERIFY2(good.output.endsWith("\ngood: it may go on a stick\n"), good.output);

    write(Kinds::application, archiveOf("echo a >a; ln -s a b"));
    const ToolRun warned = verify({path(file)});
    QCOMPARE(warned.status, 0);
    QVERIFY2(warned.output.endsWith("\ngood: it may go on a stick (1 warning)\n"), warned.output);
}

void TestMkpackageVerify::refusalQuotesThePanelsMessage()
{
    const ToolRun run = verify({path(file), "--for", "RV-K25T", "--runtime", "12"});
    QCOMPARE(run.status, 1);
    QCOMPARE(run.errors, QByteArray());
    QVERIFY2(run.output.contains("error    panel   refuses it and shows \"File Transfer: Error "
                                 "Panel Model while Install KPC\"\n"),
             run.output);
    QVERIFY(run.output.endsWith("\nbad: do not put it on a stick (1 error)\n"));
}

/// All packages on the stick of the simulated panel, including those for other panels.
void TestMkpackageVerify::wholeStickIsGood()
{
    const QByteArray list = shellBytes("find /media/usb0 -iname '*.kpc' -o -iname '*.fmw'"
                                       " -o -iname '*.mo' -o -iname '*.pkg'");
    const QStringList packages = QString::fromUtf8(list).split('\n', Qt::SkipEmptyParts);
    QVERIFY(packages.size() >= 10);
    for (const QString &package : packages) {
        const ToolRun run = verify({package});
        QVERIFY2(run.output.endsWith("\ngood: it may go on a stick\n"), run.output);
        QCOMPARE(run.status, 0);
    }
}

/// Other tests install these packages successfully.
void TestMkpackageVerify::packagesOfTheTestsAreGood()
{
    const QByteArray packages[] = {
        packageBytes(Kinds::application, 12, "K21T", smallArchive()),
        packageBytes(Kinds::application, 12, "K21T", largeArchive()),
        packageBytes(Kinds::firmware, 13, "TALMERO", smallArchive()),
        packageBytes(Kinds::biosImage, 4, "", biosArchive()),
        packageBytes(Kinds::application, 12, "K21T", PackageMembers{{"compile/new", "new"}}),
    };
    for (const QByteArray &package : packages) {
        writeFile(path("package").toUtf8(), package);
        const ToolRun run = verify({path("package")});
        QVERIFY2(run.status == 0, run.output);
    }
}

void TestMkpackageVerify::notReadable_data()
{
    QTest::addColumn<QString>("command");
    QTest::newRow("missing") << "true";
    QTest::newRow("folder") << "mkdir it";
    QTest::newRow("pipe") << "mkfifo it"; // without a writer
    QTest::newRow("link to a device") << "ln -s /dev/zero it";
    QTest::newRow("link to itself") << "ln -s it it";
}

void TestMkpackageVerify::notReadable()
{
    QFETCH(QString, command);
    shellBytes(QString("cd '%1'; %2").arg(m_folder->path(), command));
    const ToolRun run = verify({path("it")});
    QCOMPARE(run.status, 2);
    QCOMPARE(run.output, QByteArray());
    QCOMPARE(run.errors, "talmero-mkpackage: cannot read " + path("it").toUtf8() + '\n');
}

void TestMkpackageVerify::json()
{
    const ToolRun good = verify({path(file), "--json"});
    QCOMPARE(good.status, 0);
    const QJsonObject report = QJsonDocument::fromJson(good.output).object();
    QCOMPARE(report.value("file").toString(), path(file));
    QVERIFY(report.value("good").toBool());
    const ToolRun bad = verify({path(file), "--json", "--runtime", "13"});
    QCOMPARE(bad.status, 1);
    QCOMPARE(QJsonDocument::fromJson(bad.output).object().value("errors").toInt(), 1);
}

/// This user can write nowhere and has no folder for temporary files.
void TestMkpackageVerify::ordinaryUser()
{
    shellBytes(QString("chmod 755 '%1'").arg(m_folder->path()));
    const ToolRun run
        = runTool("setpriv",
                  {"--reuid=65534", "--regid=65534", "--clear-groups", "env", "TMPDIR=/no/such",
                   "HOME=/no/such", countersOfOthers, MKPACKAGE, "verify", path(file)});
    QCOMPARE(run.errors, QByteArray());
    QCOMPARE(run.status, 0);
    QCOMPARE(shellBytes(QString("ls -A '%1'").arg(m_folder->path())), QByteArray(file) + '\n');
}

void TestMkpackageVerify::outputIsSafeForATerminal()
{
    const QByteArray archive = archiveOf(
        "touch \"$(printf 'a\\033[2J\\nb\\303\\274')\"; ln -s \"$(printf '\\r\\233x')\" l");
    writeFile(path(file).toUtf8(), packageBytes(Kinds::application, 12, "\x1b]0;x\x07", archive));
    shellBytes(QString("cd '%1'; mv %2 \"$(printf '\\033[2J.kpc')\"").arg(m_folder->path(), file));
    for (const QStringList &options : {QStringList(), QStringList("--json")}) {
        const ToolRun run = verify(QStringList(path("\x1b[2J.kpc")) + options);
        QCOMPARE(run.status, 0);
        for (const char c : run.output + run.errors) {
            QVERIFY(c == '\n' || (c >= ' ' && c <= '~'));
        }
    }
}

/// A package of 64 MB needs no more memory than one of some hundred bytes.
void TestMkpackageVerify::memoryStaysFlat()
{
    QCOMPARE(verify({path(file)}).status, 0);
    const long before = largestMemory();
    QVERIFY2(before < memoryLimit, qPrintable(QString::number(before)));
    shellBytes(QString(R"sh(cd '%1'; head -c 36 %2 >large.kpc; head -c 64M /dev/zero >zeros
        tar -c zeros | python3 -c 'import sys, zlib
packer = zlib.compressobj(0, wbits=31)
for piece in iter(lambda: sys.stdin.buffer.read(1 << 16), b""):
    sys.stdout.buffer.write(packer.compress(piece))
sys.stdout.buffer.write(packer.flush())' >>large.kpc; rm zeros)sh")
                   .arg(m_folder->path(), file));
    const long beforeLarge = largestMemory();
    QCOMPARE(verify({path("large.kpc"), "--rate", "100"}).status, 0);
    const long after = largestMemory();
    QVERIFY2(after <= std::max(beforeLarge, before + memoryGrowth),
             qPrintable(QString("%1 KiB, %2 before").arg(after).arg(before)));
}

void TestMkpackageVerify::examplesOfTheManualPages_data()
{
    QTest::addColumn<QString>("page");
    QTest::addColumn<QStringList>("files");
    QTest::newRow("man page of the tool")
        << "talmero-mkpackage.1" << QStringList{"line1.kpc", "line1.json", "stick/line1.kpc"};
    QTest::newRow("man page of the format") << "talmero-package.5" << QStringList{"line2.kpc"};
}

void TestMkpackageVerify::examplesOfTheManualPages()
{
    QFETCH(QString, page);
    QFETCH(QStringList, files);
    const QByteArray examples = examplesOfManualPage("tools/mkpackage/" + page.toUtf8()).join();
    QVERIFY(examples.contains("talmero-mkpackage verify "));
    writeFile(path("examples").toUtf8(), examples);
    shellBytes(QString("cd '%1'; rm %2; mkdir -p project/compile; echo hello >project/compile/main;"
                       "chmod 755 project/compile; chmod 644 project/compile/main;"
                       "PATH=$(dirname '%3'):$PATH sh -e examples")
                   .arg(m_folder->path(), file, MKPACKAGE));
    for (const QString &made : files) {
        QVERIFY2(fileExists(path(made)), qPrintable(made));
    }
}

QTEST_GUILESS_MAIN(TestMkpackageVerify)
#include "tst_mkpackageverify.moc"
