#include "diskfiles.h"
#include "faketools.h"
#include "packagefiles.h"
#include "packages/packagetypes.h"
#include "panelguard.h"
#include "toolrun.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

#include <csignal>

#include <sys/mount.h>
#include <unistd.h>

namespace {
ToolRun mkpackage(const QStringList &arguments)
{
    return runTool(MKPACKAGE, arguments);
}

QByteArray lineOf(const QByteArray &text, const QByteArray &start)
{
    for (const QByteArray &line : text.split('\n')) {
        if (line.startsWith(start)) {
            return line.mid(start.size()).trimmed();
        }
    }
    return "no such line";
}
} // namespace

class TestMkpackage : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void makesWhatAPanelUnpacks();
    void folderNameOfAnyBytes();
    void gnuTarAndBsdtarAgree_data();
    void gnuTarAndBsdtarAgree();
    void sameContentsGiveTheSameBytes();
    void sourceDateEpochSetsTheTimes();
    void refused_data();
    void refused();
    void outputMustBeAPlainFile();
    void refusalKeepsTheOldFile();
    void toolsMissingOrFailing();
    void noRoomForTemporaryFiles();
    void wrongExtension();
    void fullDisk();
    void unreadableFileInTheFolder();
    void socketInTheFolder();
    void interruptedRunLeavesNoFiles_data();
    void interruptedRunLeavesNoFiles();
    void ignoredSignalStaysIgnored();
    void infoOfAWholePackage();
    void infoOfALongTarget();
    void infoOfDamage_data();
    void infoOfDamage();
    void infoOfUnreadableFiles();
    void infoNeedsNoTools();
    void lostOutputIsAnError();
    void infoIsSafeForATerminal();
    void helpAndVersion();
    void everyExtensionIsDocumented_data();
    void everyExtensionIsDocumented();
    void documentedExample();

private:
    QString path(const QString &name) const { return m_folder->filePath(name); }
    ToolRun make(const QString &output, const QString &folder) const
    {
        return mkpackage({"make", "--kind", "application", "--version", "12", "--target", "RV-K21T",
                          "--output", path(output), path(folder)});
    }
    QStringList files() const
    {
        return QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void TestMkpackage::initTestCase()
{
    requirePanel();
}

void TestMkpackage::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    shellBytes(QString("cd '%1'; mkdir -p in/compile/deep in/empty; cd in; echo a >a;"
                       "echo run >compile/run; chmod 750 compile/run; echo d >compile/deep/d;"
                       "echo x >'-rf *'; ln -s a link; echo h >.hidden; touch -d 2020-02-02 a")
                   .arg(m_folder->path()));
}

void TestMkpackage::makesWhatAPanelUnpacks()
{
    const ToolRun run = make("line.kpc", "in");
    QCOMPARE(run.errors, QByteArray());
    QCOMPARE(run.status, 0);
    const QByteArray package = readFile(path("line.kpc").toUtf8());
    const auto header = parsePackageHeader(package);
    QVERIFY(header && header->kind == PackageKind::Application);
    QCOMPARE(header->version, 12U);
    QCOMPARE(header->target, QString("RV-K21T"));
    QCOMPARE(package.mid(8, 12), QByteArray(12, '\0'));
    shellBytes(
        QString("cd '%1'; mkdir -m 700 out; cd out; tail -c +37 ../line.kpc | tar -zx;"
                "diff -r . ../in; [ $(stat -c %a .) = 700 ]; [ $(stat -c %a compile/run) = 750 ];"
                "[ -d empty ]; [ $(readlink link) = a ]")
            .arg(m_folder->path()));
    QCOMPARE(shellBytes(QString("stat -c %a '%1'").arg(path("line.kpc"))), QByteArray("644\n"));
    QCOMPARE(mkpackage({"verify", path("line.kpc")}).status, 0);
    QCOMPARE(files(), QStringList{"line.kpc"});
}

/// Runs a shell, because QProcess takes arguments as text, not as bytes.
void TestMkpackage::folderNameOfAnyBytes()
{
    QCOMPARE(make("text.kpc", "in").status, 0);
    shellBytes(
        QString("cd '%1'; odd=$(printf 'd\\377/\\303'); mkdir \"${odd%/*}\"; mv in \"$odd\";"
                "make() { %2 make --kind application --version 12 --target RV-K21T \"$@\"; };"
                "make --output bytes.kpc \"$odd\"; cmp bytes.kpc text.kpc;"
                "if make --output \"$odd/o.kpc\" \"$odd\" 2>error; then exit 1; fi;"
                "grep -q 'the output is inside the folder' error;"
                "if make --output o.kpc \"$odd/a\" 2>error; then exit 1; fi;"
                "grep -q 'is not a folder' error; [ ! -e o.kpc ]")
            .arg(m_folder->path(), MKPACKAGE));
}

void TestMkpackage::gnuTarAndBsdtarAgree_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("name");
    QTest::newRow("application") << "application"
                                 << "p.kpc";
    QTest::newRow("firmware") << "firmware"
                              << "p.fmw";
    QTest::newRow("BIOS image") << "bios"
                                << "p.mo";
    QTest::newRow("add-on") << "bios"
                            << "p.pkg";
}

/// A package must unpack alike with any tar. GNU tar and libarchive share no code.
void TestMkpackage::gnuTarAndBsdtarAgree()
{
    QFETCH(QString, kind);
    QFETCH(QString, name);
    const QString fill = R"sh(
        cd '%1/in'; mkdir deep; long=$(head -c 120 /dev/zero | tr '\0' x)
        for name in 'a b' ' ' 'q"' 'back\' @at '$HOME' "$long" "deep/$long$long" \
            "$(printf 'line\nbreak')" "$(printf 'tab\there')" "$(printf '\377')" \
            "$(printf '\033[2J')" "$(printf 'gr\303\274n')"; do
            echo x >"./$name"
        done
        ln -s "$long" ./-link; ln -s ../a deep/up; chmod 4711 @at)sh";
    shellBytes(fill.arg(m_folder->path()));
    const ToolRun run = mkpackage({"make", "--kind", kind, "--version", "1", "--target", "T",
                                   "--output", path(name), path("in")});
    QCOMPARE(run.status, 0);
    const QString readTwice = R"sh(
        cd '%1'; mkdir gnu libarchive; tail -c +37 '%2' >archive.tgz
        tar -tz --quoting-style=escape -f archive.tgz >gnu.txt
        bsdtar -t -f archive.tgz >libarchive.txt
        tar -xz -p -C gnu -f archive.tgz; bsdtar -x -p -C libarchive -f archive.tgz
        for folder in in gnu libarchive; do
            (cd $folder; find . -mindepth 1 -printf '%P %y %m %s %l\0' | sort -z) >$folder.state
            rm -r $folder # QTemporaryDir cannot remove all of these names
        done)sh";
    shellBytes(readTwice.arg(m_folder->path(), name));
    const QByteArray list = readFile(path("gnu.txt").toUtf8());
    QCOMPARE(readFile(path("libarchive.txt").toUtf8()), list);
    const QByteArray packed = readFile(path("in.state").toUtf8());
    QCOMPARE(list.count('\n'), packed.count('\0'));
    QVERIFY(packed.count('\0') > 20);
    QVERIFY(readFile(path("gnu.state").toUtf8()) == packed);
    QVERIFY(readFile(path("libarchive.state").toUtf8()) == packed);
}

void TestMkpackage::sameContentsGiveTheSameBytes()
{
    QCOMPARE(make("first.kpc", "in").status, 0);
    // The same files in another order, of another user and time, with options for tar and gzip.
    shellBytes(
        QString(
            "cd '%1'; mkdir other; cd in; ls -A | sort -r | xargs -d '\\n' -I N cp -a ./N ../other;"
            "cd ..; chown -R 7:7 other; touch -d 2001-01-01 other/a;"
            "ln other/a hard; chmod 755 other")
            .arg(m_folder->path()));
    qputenv("TAR_OPTIONS", "--verbose --exclude=a");
    qputenv("TAPE", path("tape").toLocal8Bit()); // where tar writes by default
    qputenv("LC_ALL", "de_DE.UTF-8");
    const ToolRun run = make("second.kpc", "other");
    const ToolRun seen = mkpackage({"info", path("second.kpc")});
    qunsetenv("TAR_OPTIONS");
    qunsetenv("TAPE");
    qputenv("LC_ALL", "C.UTF-8");
    QCOMPARE(run.status, 0);
    QVERIFY(readFile(path("first.kpc").toUtf8()) == readFile(path("second.kpc").toUtf8()));
    QCOMPARE(seen.status, 0);
    QVERIFY(!files().contains("tape"));
    shellBytes(QString("echo b >>'%1'").arg(path("other/a")));
    QCOMPARE(make("third.kpc", "other").status, 0);
    QVERIFY(readFile(path("first.kpc").toUtf8()) != readFile(path("third.kpc").toUtf8()));
}

void TestMkpackage::sourceDateEpochSetsTheTimes()
{
    qputenv("SOURCE_DATE_EPOCH", "1441036800");
    const ToolRun run = make("line.kpc", "in");
    qputenv("SOURCE_DATE_EPOCH", "yesterday");
    const ToolRun refused = make("other.kpc", "in");
    qunsetenv("SOURCE_DATE_EPOCH");
    QCOMPARE(run.status, 0);
    const QByteArray listing = mkpackage({"info", path("line.kpc")}).output;
    const QByteArray members = listing.mid(listing.indexOf("contents:\n") + 10);
    QCOMPARE(members.count(" 2015-08-31 16:00 "), members.count('\n'));
    QVERIFY(members.count('\n') > 5);
    QCOMPARE(refused.status, 2);
    QCOMPARE(refused.errors,
             QByteArray("talmero-mkpackage: SOURCE_DATE_EPOCH must be a number of seconds, up to "
                        "the year 2242\n"));
    QCOMPARE(files(), QStringList{"line.kpc"});
}

void TestMkpackage::refused_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("error");
    QTest::newRow("folder missing") << "o.kpc"
                                    << "none"
                                    << "%1/none is not a folder";
    QTest::newRow("folder is a file") << "o.kpc"
                                      << "in/a"
                                      << "%1/in/a is not a folder";
    QTest::newRow("folder is empty") << "o.kpc"
                                     << "in/empty"
                                     << "%1/in/empty is empty or cannot be read";
    QTest::newRow("output is a folder") << "in"
                                        << "in"
                                        << "%1/in is a folder";
    QTest::newRow("output inside the folder") << "in/o.kpc"
                                              << "in"
                                              << "the output is inside the folder to pack";
    QTest::newRow("output deep inside the folder") << "in/compile/deep/o.kpc"
                                                   << "in"
                                                   << "the output is inside the folder to pack";
    QTest::newRow("output folder missing") << "none/o.kpc"
                                           << "in"
                                           << "cannot write %1/none/o.kpc";
}

void TestMkpackage::refused()
{
    QFETCH(QString, output);
    QFETCH(QString, folder);
    QFETCH(QString, error);
    const QByteArray before = shellBytes(QString("find '%1'").arg(m_folder->path()));
    const ToolRun run = make(output, folder);
    QCOMPARE(run.status, 1);
    error.replace("%1", m_folder->path());
    QCOMPARE(run.errors, "talmero-mkpackage: " + error.toUtf8() + '\n');
    QCOMPARE(shellBytes(QString("find '%1'").arg(m_folder->path())), before);
}

/// Root, who runs this test, could replace a device with a file.
void TestMkpackage::outputMustBeAPlainFile()
{
    shellBytes(QString("cd '%1'; mkfifo pipe.kpc; ln -s pipe.kpc link.kpc").arg(m_folder->path()));
    for (const char *name : {"pipe.kpc", "link.kpc"}) {
        const ToolRun run = make(name, "in");
        QCOMPARE(run.status, 1);
        QCOMPARE(run.errors,
                 "talmero-mkpackage: " + path(name).toUtf8() + " is not a plain file\n");
    }
    shellBytes(QString("cd '%1'; [ -p pipe.kpc ]; [ -L link.kpc ]").arg(m_folder->path()));
}

void TestMkpackage::refusalKeepsTheOldFile()
{
    writeFile(path("old.kpc").toUtf8(), "old");
    QCOMPARE(make("old.kpc", "none").status, 1);
    QCOMPARE(mkpackage({"make", "--kind", "application", "--version", "12", "--target",
                        "1234567890123456", "--output", path("old.kpc"), path("in")})
                 .status,
             2);
    QCOMPARE(readFile(path("old.kpc").toUtf8()), QByteArray("old"));
    QCOMPARE(make("old.kpc", "in").status, 0);
    QVERIFY(readFile(path("old.kpc").toUtf8()) != "old");
}

void TestMkpackage::toolsMissingOrFailing()
{
    writeFile(path("old.kpc").toUtf8(), "old");
    const QByteArray searchPath = qgetenv("PATH");
    qputenv("PATH", "/no/such/folder");
    const ToolRun missing = make("old.kpc", "in");
    qputenv("PATH", searchPath);
    QCOMPARE(missing.status, 1);
    QCOMPARE(missing.errors, QByteArray("talmero-mkpackage: tar cannot be run\n"));

    const FakeTools tools({"tar"});
    for (const char *body : {"echo part; echo it fails >&2; exit 2", "echo part; kill -9 $$",
                             "exit 3", "echo >&2; exit 1"}) {
        tools.setBody("tar", body);
        const ToolRun run = make("old.kpc", "in");
        QCOMPARE(run.status, 1);
        QCOMPARE(run.errors.count('\n'), 1);
    }
    QCOMPARE(readFile(path("old.kpc").toUtf8()), QByteArray("old"));
    QCOMPARE(files(), QStringList{"old.kpc"});
}

void TestMkpackage::noRoomForTemporaryFiles()
{
    shellBytes(QString("mkdir '%1'").arg(path("full")));
    const QByteArray full = path("full").toUtf8();
    QCOMPARE(mount("test", full.constData(), "tmpfs", 0, "size=4k"), 0);
    shellBytes(QString("head -c 4096 /dev/zero >'%1'").arg(path("full/fill")));
    const TemporaryFolder temporary(full.constData());
    const ToolRun run = make("line.kpc", "in");
    QCOMPARE(umount(full.constData()), 0);
    QCOMPARE(run.status, 1);
    QCOMPARE(run.errors, QByteArray("talmero-mkpackage: there is no space for temporary files\n"));
    QCOMPARE(files(), QStringList());
}

void TestMkpackage::wrongExtension()
{
    const ToolRun run = make("line.fmw", "in");
    QCOMPARE(run.status, 0);
    QVERIFY2(run.errors.startsWith("talmero-mkpackage: note: "), run.errors.constData());
    QCOMPARE(run.errors.count('\n'), 1);
    QCOMPARE(files(), QStringList{"line.fmw"});
}

void TestMkpackage::fullDisk()
{
    shellBytes(QString("cd '%1'; head -c 300000 /dev/urandom >in/large; mkdir small")
                   .arg(m_folder->path()));
    const QByteArray small = path("small").toUtf8();
    QCOMPARE(mount("test", small.constData(), "tmpfs", 0, "size=64k"), 0);
    const ToolRun run = make("small/line.kpc", "in");
    const QByteArray left = shellBytes(QString("ls -A '%1'").arg(path("small")));
    QCOMPARE(umount(small.constData()), 0);
    QCOMPARE(run.status, 1);
    QCOMPARE(run.errors.count('\n'), 1);
    QCOMPARE(left, QByteArray());
}

void TestMkpackage::unreadableFileInTheFolder()
{
    shellBytes(QString("cd '%1'; chmod 0 in/a; chmod 777 .").arg(m_folder->path()));
    QProcess process;
    process.start("setpriv",
                  {"--reuid=65534", "--clear-groups", MKPACKAGE, "make", "--kind", "bios",
                   "--version", "1", "--output", path("o.mo"), path("in")});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 1);
    QVERIFY(process.readAllStandardError().contains("a: Cannot open: Permission denied"));
    QCOMPARE(files(), QStringList());
}

/// tar leaves sockets out, so the file would be missing on the panel.
void TestMkpackage::socketInTheFolder()
{
    shellBytes(QString("cd '%1/in'; python3 -c 'import socket;"
                       "socket.socket(socket.AF_UNIX).bind(\"s\")'")
                   .arg(m_folder->path()));
    const ToolRun run = make("o.kpc", "in");
    QCOMPARE(run.status, 1);
    QVERIFY(run.errors.endsWith(": s: socket ignored\n"));
    QCOMPARE(files(), QStringList());
}

void TestMkpackage::interruptedRunLeavesNoFiles_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("Ctrl-C") << SIGINT;
    QTest::newRow("terminated") << SIGTERM;
    QTest::newRow("closed terminal") << SIGHUP;
    QTest::newRow("killed") << SIGKILL;
}

void TestMkpackage::interruptedRunLeavesNoFiles()
{
    QFETCH(int, signal);
    const FakeTools tools({"tar"});
    tools.setBody("tar", "echo part; : >'" + path("started") + "'; exec sleep 5");
    writeFile(path("line.kpc").toUtf8(), "old");
    QProcess process;
    process.start(MKPACKAGE,
                  {"make", "--kind", "application", "--version", "12", "--target", "K", "--output",
                   path("line.kpc"), path("in")});
    QTRY_VERIFY(fileExists(path("started")));
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(kill(pid_t(process.processId()), signal), 0);
    QVERIFY(process.waitForFinished());
    QVERIFY(timer.elapsed() < 10000);
    QVERIFY(process.exitStatus() == QProcess::CrashExit || process.exitCode() == 1);
    QCOMPARE(readFile(path("line.kpc").toUtf8()), QByteArray("old"));
    QCOMPARE(files(), (QStringList{"line.kpc", "started"}));
}

void TestMkpackage::ignoredSignalStaysIgnored()
{
    const FakeTools tools({"tar"});
    tools.setBody("tar", "kill -HUP $PPID; sleep 0.2");
    QProcess process;
    process.start("/bin/sh",
                  {"-c", "trap '' HUP; exec \"$0\" \"$@\"", MKPACKAGE, "make", "--kind", "bios",
                   "--version", "1", "--output", path("o.mo"), path("in")});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 0);
    QCOMPARE(files(), QStringList{"o.mo"});
}

void TestMkpackage::infoOfAWholePackage()
{
    QCOMPARE(make("line.kpc", "in").status, 0);
    const ToolRun run = mkpackage({"info", path("line.kpc")});
    QCOMPARE(run.status, 0);
    QCOMPARE(run.errors, QByteArray());
    QCOMPARE(lineOf(run.output, "kind:"), QByteArray("0 (application)"));
    QCOMPARE(lineOf(run.output, "version:"), QByteArray("12"));
    QCOMPARE(lineOf(run.output, "target:"), QByteArray("RV-K21T"));
    const qint64 size = readFile(path("line.kpc").toUtf8()).size() - packageHeaderSize;
    QCOMPARE(lineOf(run.output, "payload:"), QByteArray::number(size) + " bytes, 10240 unpacked");
    QCOMPARE(lineOf(run.output, "gzip:"), QByteArray("whole"));
    QCOMPARE(lineOf(run.output, "tar:"), QByteArray("whole"));
    QVERIFY(run.output.contains(" compile/deep/d\n"));
    QVERIFY(run.output.contains(" link -> a\n"));
    QVERIFY(run.output.contains(" .hidden\n"));
    QVERIFY(!run.output.contains(" ./\n"));
}

void TestMkpackage::infoOfALongTarget()
{
    QByteArray package = formatPackageHeader({PackageKind::Application, 1, "K"}) + smallArchive();
    package.replace(20, 16, "0123456789ABCDEF");
    writeFile(path("long.kpc").toUtf8(), package);
    const ToolRun run = mkpackage({"info", path("long.kpc")});
    QCOMPARE(lineOf(run.output, "target:"),
             QByteArray("0123456789ABCDEF (without a NUL byte at its end)"));
}

void TestMkpackage::infoOfDamage_data()
{
    QTest::addColumn<QByteArray>("package");
    QTest::addColumn<QByteArray>("gzip");
    QTest::addColumn<QByteArray>("tar");
    const QByteArray header = formatPackageHeader({PackageKind::BiosImage, 1, ""});
    const QByteArray &archive = largeArchive();
    const QByteArray whole = header + archive;
    const QByteArray no = "no such line";
    QTest::newRow("nothing") << QByteArray() << no << no;
    QTest::newRow("35 bytes") << header.left(35) << no << no;
    QTest::newRow("header alone") << header << QByteArray("damaged") << QByteArray("damaged");
    QTest::newRow("one byte missing")
        << whole.chopped(1) << QByteArray("damaged") << QByteArray("damaged");
    QTest::newRow("half") << whole.left(whole.size() / 2) << QByteArray("damaged")
                          << QByteArray("damaged");
    QByteArray flipped = whole;
    flipped[whole.size() / 2] = char(flipped.at(whole.size() / 2) ^ 4);
    QTest::newRow("flipped bit") << flipped << QByteArray("damaged") << QByteArray("damaged");
    QTest::newRow("trailing bytes")
        << whole + "more" << QByteArray("damaged") << QByteArray("damaged");
    QTest::newRow("gzip of random bytes")
        << header + shellBytes("head -c 99999 /dev/urandom | gzip") << QByteArray("whole")
        << QByteArray("damaged");
    QTest::newRow("tar without its end marker")
        << header + shellBytes("cd /tmp; echo x >x; tar -c x | head -c 1024 | gzip")
        << QByteArray("whole") << QByteArray("damaged");
    QTest::newRow("tar cut off after zeros")
        << header + shellBytes("cd /tmp; head -c 2048 /dev/zero >z; tar -c z | head -c 2560 | gzip")
        << QByteArray("whole") << QByteArray("damaged");
    QTest::newRow("tar with half its end marker")
        << header + shellBytes("cd /tmp; echo x >x; tar -c x | head -c 1536 | gzip")
        << QByteArray("whole") << QByteArray("damaged");
    QTest::newRow("two archives in one stream")
        << header + shellBytes("cd /tmp; echo x >x; (tar -c x; tar -c x) | gzip")
        << QByteArray("whole") << QByteArray("damaged");
    QTest::newRow("tar without gzip") << header + shellBytes("tar -c -C / etc/passwd")
                                      << QByteArray("damaged") << QByteArray("damaged");
    QTest::newRow("unknown kind") << formatPackageHeader({PackageKind(2), 1, ""}) + archive
                                  << QByteArray("whole") << QByteArray("whole");
}

void TestMkpackage::infoOfDamage()
{
    QFETCH(QByteArray, package);
    writeFile(path("package").toUtf8(), package);
    const ToolRun run = mkpackage({"info", path("package")});
    QCOMPARE(run.status, 1);
    QTEST(lineOf(run.output, "gzip:"), "gzip");
    QTEST(lineOf(run.output, "tar:"), "tar");
    QCOMPARE(mkpackage({"verify", path("package")}).status, 1);
}

void TestMkpackage::infoOfUnreadableFiles()
{
    for (const char *name : {"missing", "in", "in/link/x"}) {
        const ToolRun run = mkpackage({"info", path(name)});
        QCOMPARE(run.status, 2);
        QCOMPARE(run.errors, "talmero-mkpackage: cannot read " + path(name).toUtf8() + '\n');
        QCOMPARE(run.output, QByteArray());
    }
}

void TestMkpackage::infoNeedsNoTools()
{
    QCOMPARE(make("line.kpc", "in").status, 0);
    const ToolRun expected = mkpackage({"info", path("line.kpc")});
    const QByteArray searchPath = qgetenv("PATH");
    qputenv("PATH", "/no/such/folder");
    const ToolRun run = mkpackage({"info", path("line.kpc")});
    qputenv("PATH", searchPath);
    QCOMPARE(run.status, 0);
    QCOMPARE(run.output, expected.output);
}

void TestMkpackage::lostOutputIsAnError()
{
    QCOMPARE(make("line.kpc", "in").status, 0);
    for (const QStringList &arguments : {QStringList{"info", path("line.kpc")}, {"--help"}}) {
        QProcess process;
        process.setStandardOutputFile("/dev/full");
        process.start(MKPACKAGE, arguments);
        QVERIFY(process.waitForFinished());
        QCOMPARE(process.exitCode(), 2);
        QCOMPARE(process.readAllStandardError(),
                 QByteArray("talmero-mkpackage: cannot write to standard output\n"));
    }
}

void TestMkpackage::infoIsSafeForATerminal()
{
    shellBytes(QString("cd '%1'; mkdir bad; cd bad; touch \"$(printf 'a\\033[2Jb\\nc\\303\\274')\"")
                   .arg(m_folder->path()));
    const QByteArray archive
        = shellBytes(QString("tar -cz --owner=\"$(printf 'o\\033[2J\\nx')\":7 -C '%1' bad")
                         .arg(m_folder->path()));
    const QByteArray package
        = formatPackageHeader({PackageKind::Application, 1, "\x1b]0;21T"}) + archive;
    writeFile(path("bad.kpc").toUtf8(), package);
    const ToolRun run = mkpackage({"info", path("bad.kpc")});
    QCOMPARE(run.status, 0);
    for (const char c : run.output) {
        QVERIFY(c == '\n' || (c >= ' ' && c <= '~'));
    }
    QCOMPARE(lineOf(run.output, "target:"), QByteArray("\\x1b]0;21T"));
}

void TestMkpackage::helpAndVersion()
{
    const ToolRun help = mkpackage({"--help"});
    QCOMPARE(help.status, 0);
    QVERIFY(help.output.startsWith("Usage: talmero-mkpackage make "));
    const ToolRun version = mkpackage({"--version"});
    QCOMPARE(version.status, 0);
    QVERIFY(version.output.startsWith("talmero-mkpackage 1"));
    const ToolRun nothing = mkpackage({});
    QCOMPARE(nothing.status, 2);
    QCOMPARE(nothing.output, QByteArray());
    QCOMPARE(nothing.errors,
             QByteArray("talmero-mkpackage: no command given; see "
                        "talmero-mkpackage --help\n"));
}

void TestMkpackage::everyExtensionIsDocumented_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("--help") << mkpackage({"--help"}).output;
    for (const char *page : {"tools/mkpackage/talmero-mkpackage.1",
                             "tools/mkpackage/talmero-package.5", "docs/package-format.md"}) {
        QTest::newRow(page) << readFile(QByteArray(PANEL_SOURCE "/") + page);
    }
}

void TestMkpackage::everyExtensionIsDocumented()
{
    QFETCH(QByteArray, text);
    for (const PackageTypeInfo &info : packageTypes) {
        QVERIFY2(text.contains(info.extension), info.extension);
    }
}

/// The example in docs/package-format.md shows what the tool makes.
void TestMkpackage::documentedExample()
{
    shellBytes(QString("cd '%1'; mkdir -p project/compile; printf 'hello\\n' >project/compile/main;"
                       "chmod 755 project/compile; chmod 644 project/compile/main")
                   .arg(m_folder->path()));
    QCOMPARE(make("line1.kpc", "project").status, 0);
    const QByteArray dump
        = shellBytes(QString("od -A x -t x1z -v '%1'").arg(path("line1.kpc"))).trimmed();
    const QByteArray document = readFile(PANEL_SOURCE "/docs/package-format.md");
    const QByteArray info = mkpackage({"info", path("line1.kpc")}).output.trimmed();
    const QByteArray verdict = mkpackage({"verify", path("line1.kpc")}).output.trimmed();
    for (const QByteArray &text : {dump, info, verdict}) {
        QByteArray indented = "    " + text;
        indented.replace("\n", "\n    ");
        QVERIFY2(document.contains(indented), indented);
    }
}

QTEST_GUILESS_MAIN(TestMkpackage)
#include "tst_mkpackage.moc"
