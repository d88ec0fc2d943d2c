#include "healthypanel.h"

#include "checks.h"
#include "gather.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

using namespace Doctor;

namespace {
PathFacts &at(Facts &facts, const QString &path)
{
    return facts.paths[path];
}

const QList<BrokenThing> &brokenThings()
{
    // clang-format off
    static const QList<BrokenThing> things{
        {"no font folder", [](Facts &f) { f.paths.remove(Paths::fontFolder); },
         {"error folders: there is no folder /usr/share/fonts/truetype/freefont/"}},
        {"network file mounted by itself", [](Facts &f) { at(f, "/etc/network").isWritable = false; }, {}},
        {"read-only network folder", [](Facts &f) { at(f, "/etc/network").isWritable = false; at(f, Paths::interfacesFile).isWritable = false; },
         {"error folders: /etc/network cannot be written"}},
        {"no rules folder", [](Facts &f) { f.paths.remove("/etc/udev/rules.d"); },
         {"warning folders: there is no folder /etc/udev/rules.d"}},
        {"no lock folder", [](Facts &f) { f.paths.remove(Paths::lockFolder); },
         {"warning folders: there is no folder /var/lock"}},
        {"no application folder", [](Facts &f) { f.paths.remove(Paths::applicationFolder); },
         {"error application: there is no folder /home/dest",
          "warning space: the free space in /home/dest is unknown"}},
        {"file in its place", [](Facts &f) { at(f, Paths::applicationFolder).kind = PathFacts::Kind::File; },
         {"error application: there is no folder /home/dest"}},
        {"read-only application folder", [](Facts &f) { at(f, Paths::applicationFolder).isWritable = false; },
         {"error application: /home/dest cannot be written"}},
        {"link in its place", [](Facts &f) { at(f, Paths::applicationFolder).isLink = true; },
         {"error application: /home/dest is a link, which installing follows"}},
        {"folder of a user", [](Facts &f) { at(f, Paths::applicationFolder).isForeign = true; },
         {"warning application: /home/dest belongs to another user than root, or anyone may write it"}},
        {"folder on NFS", [](Facts &f) { at(f, Paths::applicationFolder).fileSystem = "nfs4"; },
         {"warning application: /home/dest lies on a network"}},
        {"folder on a Windows share", [](Facts &f) { at(f, Paths::applicationFolder).fileSystem = "cifs"; },
         {"warning application: /home/dest lies on a network"}},
        {"little room", [](Facts &f) { at(f, Paths::applicationFolder).freeSpace = (64 << 20) - 1; },
         {"warning space: 63 MiB free in /home/dest"}},
        {"just enough room", [](Facts &f) { at(f, Paths::applicationFolder).freeSpace = 64 << 20; }, {}},
        {"no room", [](Facts &f) { at(f, Paths::biosFolder).freeSpace = (1 << 20) - 1; },
         {"error space: 0 MiB free in /opt/talmero/bios"}},
        {"next to no room", [](Facts &f) { at(f, Paths::biosFolder).freeSpace = 1 << 20; },
         {"warning space: 1 MiB free in /opt/talmero/bios"}},
        {"no temporary folder", [](Facts &f) { f.temporaryFolder = "/nowhere"; },
         {"error space: there is no folder /nowhere"}},
        {"left archives", [](Facts &f) { f.leftArchives = 3; },
         {"warning space: package archives left over in /tmp: 3"}},
        {"stray link", [](Facts &f) { f.strayLinks = {{"/home/dest/a"}, 1, true}; },
         {"warning links: links lead out of /home/dest and /opt/talmero/bios: 1 (/home/dest/a)"}},
        {"too many entries", [](Facts &f) { f.strayLinks.isWhole = false; }, {}},
        {"no media folder", [](Facts &f) { f.paths.remove(Paths::mediaFolder); },
         {"warning stick: there is no folder /media/"}},
        {"no place for the stick", [](Facts &f) { f.paths.remove("/media/usb0"); },
         {"warning stick: there is no folder /media/usb0"}},
        {"factory stick", [](Facts &f) { putFile(f, Paths::factoryMarker, ""); },
         {"warning stick: /media/usb0/talmero_setup is there: the next start opens the factory window"}},
        {"no script", [](Facts &f) { f.paths.remove(Paths::runtimeScript); f.answers[size_t(Question::ScriptSyntax)].reset(); },
         {"error runtime script: /opt/talmero/bios/runapp.sh is missing or cannot be read"}},
        {"script that is not readable", [](Facts &f) { at(f, Paths::runtimeScript).isReadable = false; },
         {"error runtime script: /opt/talmero/bios/runapp.sh is missing or cannot be read"}},
        {"empty script", [](Facts &f) { putFile(f, Paths::runtimeScript, "\n \n"); },
         {"error runtime script: /opt/talmero/bios/runapp.sh is empty"}},
        {"broken script", [](Facts &f) { answer(f, Question::ScriptSyntax, "", "runapp.sh: 2: Syntax error", 2); },
         {"error runtime script: \"tool -x\" fails with status 2: runapp.sh: 2: Syntax error"}},
        {"no version", [](Facts &f) { f.paths.remove(Paths::runtimeVersionFile); },
         {"warning version files: /opt/talmero/bios/fwver is missing or cannot be read"}},
        {"empty OEM", [](Facts &f) { putFile(f, Paths::runtimeOemFile, "\nTALMERO\n"); },
         {"warning version files: /opt/talmero/bios/oem is empty"}},
        {"version in words", [](Facts &f) { putFile(f, Paths::biosVersionFile, "three"); },
         {"warning version files: /opt/talmero/bios/bios.version says \"three\", which is not a version"}},
        {"version 0", [](Facts &f) { putFile(f, Paths::biosVersionFile, "0"); }, {}},
        {"version 0 of two digits", [](Facts &f) { putFile(f, Paths::biosVersionFile, "00\n"); }, {}},
        {"version beyond 32 bits", [](Facts &f) { putFile(f, Paths::biosVersionFile, "4294967296"); },
         {"warning version files: /opt/talmero/bios/bios.version says \"4294967296\", which is not a version"}},
        {"negative version", [](Facts &f) { putFile(f, Paths::runtimeVersionFile, "-1"); }, {}},
        {"model with a blank", [](Facts &f) { putFile(f, Paths::modelFile, "RV-K25T \n"); },
         {"warning version files: /opt/talmero/bios/model says \"RV-K25T\", with blanks at the start or the end"}},
        {"model from Windows", [](Facts &f) { putFile(f, Paths::modelFile, "RV-K25T\r\n"); }, {}},
        {"no guard", [](Facts &f) { f.guard.clear(); f.answers[size_t(Question::GuardStatus)].reset(); }, {}},
        {"guard that does not watch", [](Facts &f) { answer(f, Question::GuardStatus, "copy.oem=2026-11-22T05:00:00Z\nwatch=no\n"); },
         {"error guard: installed, but it does not watch"}},
        {"guard that fails", [](Facts &f) { answer(f, Question::GuardStatus, "", "no", 1); },
         {"error guard: \"tool -x\" fails with status 1: no"}},
        {"read-only model", [](Facts &f) { at(f, Paths::modelFile).isWritable = false; },
         {"error version files: /opt/talmero/bios/model cannot be written"}},
    };
    // clang-format on
    return things;
}
} // namespace

class TestDoctorFiles : public QObject
{
    Q_OBJECT
private slots:
    void brokenThing_data() { addBrokenThings(brokenThings()); }
    void brokenThing();
    void guardTellsItsLastAct();
    void looksAtPaths();
    void findsStrayLinks();
    void opensSerialPorts();
};

void TestDoctorFiles::brokenThing()
{
    QFETCH(qsizetype, index);
    QCOMPARE(judgeBrokenThing(brokenThings().at(index)), QString());
}

void TestDoctorFiles::guardTellsItsLastAct()
{
    Facts facts = healthyFacts();
    QCOMPARE(checkGuard(facts).first().text, "watches; it has repaired nothing so far");
    answer(facts, Question::GuardStatus, "act=put it back\ntime=2026-11-22T05:00:00Z\nwatch=yes\n");
    QCOMPARE(checkGuard(facts).first().text,
             "watches; it last acted at 2026-11-22T05:00:00Z: put it back");
}

void TestDoctorFiles::looksAtPaths()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath("file");
    QVERIFY(!pathFacts(file, true).isReadable);
    QCOMPARE(pathFacts(file, true).kind, PathFacts::Kind::Missing);
    QFile written(file);
    QVERIFY(written.open(QIODevice::WriteOnly));
    written.write(QByteArray(contentLimit + 1, 'x'));
    written.close();
    QVERIFY(QFile::link(file, folder.filePath("link")));

    const PathFacts plain = pathFacts(file, true);
    QCOMPARE(plain.kind, PathFacts::Kind::File);
    QVERIFY(plain.isReadable && plain.isWritable && !plain.isLink && !plain.isForeign);
    QCOMPARE(plain.content.size(), qsizetype(contentLimit));
    QCOMPARE(plain.size, contentLimit + 1);
    QVERIFY(pathFacts(file, false).content.isEmpty());
    QVERIFY(pathFacts(folder.filePath("link"), false).isLink);
    written.setPermissions(QFile::WriteOther);
    QVERIFY(pathFacts(file, false).isForeign);

    const PathFacts top = pathFacts(folder.path(), true);
    QCOMPARE(top.kind, PathFacts::Kind::Folder);
    QVERIFY(top.freeSpace > 0 && !top.fileSystem.isEmpty());
    QCOMPARE(pathFacts("/dev/null", true).kind, PathFacts::Kind::Other);
    QVERIFY(!pathFacts("/proc/sys/kernel/version", false).isWritable);
}

void TestDoctorFiles::findsStrayLinks()
{
    const QTemporaryDir folder;
    const QDir top(folder.path());
    QVERIFY(top.mkpath("deep/.hidden"));
    QVERIFY(QFile::link("hidden", top.filePath("deep/inside")));
    QVERIFY(QFile::link("..", top.filePath("deep/upwards")));
    QVERIFY(findStrayLinks({folder.path()}).paths.isEmpty());

    QVERIFY(QFile::link("/etc", top.filePath("deep/.hidden/outside")));
    QVERIFY(QFile::link("../../" + top.dirName() + "x", top.filePath("deep/beside")));
    for (const char *name : {"a", "b"}) {
        QVERIFY(QFile::link("/nowhere", top.filePath(name)));
    }
    const StrayLinks links = findStrayLinks({"/nowhere", folder.path()});
    QCOMPARE(links.count, 4);
    QCOMPARE(links.paths.size(), 3); // only the first three are shown
    QVERIFY(links.isWhole);
    QVERIFY(!findStrayLinks(QStringList(10, "/usr")).isWhole); // the search stops at its limit
}

void TestDoctorFiles::opensSerialPorts()
{
    QCOMPARE(serialPortState("/dev/no-such-port"), SerialPort::Missing);
    QCOMPARE(serialPortState("/dev/null"), SerialPort::NoDevice);
    QCOMPARE(serialPortState("/dev"), SerialPort::Refused);
    QCOMPARE(serialPortState("/dev/ttyS0"), SerialPort::Ready); // a port of the simulated panel
}

QTEST_GUILESS_MAIN(TestDoctorFiles)
#include "tst_doctorfiles.moc"
