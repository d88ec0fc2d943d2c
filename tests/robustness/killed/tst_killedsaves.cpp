#include "diskfiles.h"
#include "faketools.h"
#include "packagefiles.h"
#include "panelfiles.h"
#include "panelguard.h"
#include "system/paths.h"

#include <QDir>
#include <QMap>
#include <QProcess>
#include <QTest>

#include <csignal>
#include <functional>

using namespace Kinds;

namespace {
constexpr int mostCalls = 200; // more than any save needs

/// How often each state of a file was found.
using Counts = QMap<QByteArray, int>;

bool saveIsKilled(const QString &what, int number)
{
    QProcess save;
    save.setProcessChannelMode(QProcess::MergedChannels);
    save.start(SAVESTEP, {what, QString::number(number)});
    if (!save.waitForFinished()) {
        qFatal("savestep does not end");
    }
    const bool wasKilled = save.exitStatus() == QProcess::CrashExit && save.exitCode() == SIGKILL;
    if (!wasKilled && save.exitCode() != 0) {
        qFatal("savestep failed: %s", save.readAll().constData());
    }
    return wasKilled;
}

/// Compares the file at @p path with its content before and after a complete save.
QByteArray stateOf(const QByteArray &path, const QByteArray &before, const QByteArray &after)
{
    const QByteArray found = readFile(path);
    if (found == before) {
        return "old";
    }
    if (found == after) {
        return "new";
    }
    return found.isEmpty() ? "empty" : "part";
}

/// Removes the files in @p folder other than @p known. Result: their number.
int leftBeside(const QString &folder, const QStringList &known)
{
    QStringList names = QDir(folder).entryList(QDir::Files | QDir::Hidden);
    names.removeIf([&known](const QString &name) { return known.contains(name); });
    for (const QString &name : names) {
        QFile::remove(folder + '/' + name);
    }
    return int(names.size());
}

/// Runs the save @p what again and again and kills it one call later each time, until it completes.
/// @p prepare runs before each save. @p look then returns the state that the save has left.
Counts killAtEachCall(const char *what, const std::function<void()> &prepare,
                      const std::function<QByteArray()> &look)
{
    Counts counts;
    for (int number = 1; number < mostCalls; ++number) {
        prepare();
        const bool wasKilled = saveIsKilled(what, number);
        ++counts[look()];
        if (!wasKilled) {
            qInfo() << what << number - 1 << "calls" << counts;
            return counts;
        }
    }
    qFatal("%s needs more than %d calls", what, mostCalls);
}
} // namespace

class TestKilledSaves : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void networkIsOldOrNew();
    void settingsMayBeEmpty();
    void versionMayBeEmpty();
    void rulesAreOldOrNew();
    void fontIsCompleteOrMissing();
    void applicationLeavesAtMostItsArchive();
    void repairIsCompletedAtTheNextBoot();
    void copyIsOldOrNew();
};

void TestKilledSaves::initTestCase()
{
    requirePanel();
    qputenv("QT_QPA_PLATFORM", "offscreen");
}

void TestKilledSaves::networkIsOldOrNew()
{
    const FakeTools tools({"ifconfig", "dhclient", "xrandr", "xset", "xinput", "du"});
    const QByteArray old = "auto lo\n";
    saveIsKilled("network", mostCalls);
    const QByteArray whole = readFile(Paths::interfacesFile);
    const QByteArray settings = readPanelFile("bios.ini");
    QVERIFY(whole.contains("address 10.0.0.9"));
    QVERIFY(settings.contains("ethernet.eth1=10.0.0.9"));
    Counts lost;
    int left = 0;
    const Counts counts = killAtEachCall(
        "network", [&old] { writeFile(Paths::interfacesFile, old); },
        [&] {
            ++lost[stateOf(Paths::settingsFile, "kept=1\n", settings)];
            left += leftBeside("/etc/network", {"interfaces"});
            return stateOf(Paths::interfacesFile, old, whole);
        });
    qInfo() << "bios.ini" << lost << "temporary files left" << left;
    QCOMPARE(counts.keys(), (QList<QByteArray>{"new", "old"}));
    QVERIFY(counts.value("old") > 3); // at each step before the file is replaced
    QCOMPARE(lost.keys(), (QList<QByteArray>{"empty", "new", "old"}));
    QCOMPARE(lost.value("empty"), 1); // between opening and writing it
}

void TestKilledSaves::settingsMayBeEmpty()
{
    const Counts counts = killAtEachCall(
        "settings", [] { writePanelFile("bios.ini", "kept=1\n"); },
        [] { return stateOf(Paths::settingsFile, "kept=1\n", "kept=1\nnew=1\n"); });
    QCOMPARE(counts, (Counts{{"old", 1}, {"empty", 1}, {"new", 1}}));
}

void TestKilledSaves::versionMayBeEmpty()
{
    const Counts counts = killAtEachCall(
        "version", [] { writePanelFile("fwver", "12\n"); },
        [] { return stateOf(Paths::runtimeVersionFile, "12\n", "13"); });
    QCOMPARE(counts, (Counts{{"old", 1}, {"empty", 1}, {"new", 1}}));
}

void TestKilledSaves::rulesAreOldOrNew()
{
    const Counts counts = killAtEachCall(
        "rules", [] { writeFile(Paths::namingRulesFile, "old\n"); },
        [] { return stateOf(Paths::namingRulesFile, "old\n", "new\n"); });
    QCOMPARE(counts.keys(), (QList<QByteArray>{"new", "old"}));
}

void TestKilledSaves::fontIsCompleteOrMissing()
{
    const QByteArray font(3000, 'f');
    const QByteArray copy = QByteArray(Paths::fontFolder) + "new.ttf";
    writeFile("/media/usb0/new.ttf", font);
    int left = 0;
    const Counts counts = killAtEachCall(
        "font", [] { emptyFolder(Paths::fontFolder); },
        [&] {
            left += leftBeside(Paths::fontFolder, {"new.ttf"});
            return stateOf(copy, "none", font);
        });
    qInfo() << "temporary files left" << left;
    QCOMPARE(counts.keys(), (QList<QByteArray>{"new", "old"}));
}

void TestKilledSaves::applicationLeavesAtMostItsArchive()
{
    const QByteArray package = packageBytes(application, 12, "K21T", smallArchive());
    int most = 0;
    const Counts counts = killAtEachCall(
        "application",
        [&package] {
            resetInstalledFiles();
            writeFile("/media/usb0/package", package);
        },
        [&most] {
            most = qMax(most, leftBeside("/tmp", {}));
            return stateOf("/home/dest/both", "old\n", "new\n");
        });
    QCOMPARE(counts.keys(), (QList<QByteArray>{"new", "old"}));
    QCOMPARE(most, 1);
}

/// The power fails again while the guard repairs an earlier cut.
void TestKilledSaves::repairIsCompletedAtTheNextBoot()
{
    const QByteArray settings = "app.mouse=1\nethernet.eth0=dhcp\n";
    const QByteArray loopback = "auto lo \niface lo inet loopback\n\n";
    const QByteArray interfaces = loopback + "auto eth0\niface eth0 inet dhcp\n\n";
    int left = 0;
    const Counts counts = killAtEachCall(
        "repair",
        [&] {
            emptyFolder("/var/lib/talmero-guard");
            writeFile("/var/lib/talmero-guard/bios.ini", settings);
            writePanelFile("bios.ini", "");
            writeFile(Paths::interfacesFile, loopback);
        },
        [&] {
            const QByteArray first = stateOf(Paths::settingsFile, "none", settings);
            saveIsKilled("repair", mostCalls);
            if (readPanelFile("bios.ini") != settings
                || readFile(Paths::interfacesFile) != interfaces) {
                qFatal("the second repair did not succeed");
            }
            left += leftBeside("/etc/network", {"interfaces"});
            return first;
        });
    qInfo() << "temporary files left" << left;
    QCOMPARE(counts.keys(), (QList<QByteArray>{"empty", "new"}));
}

void TestKilledSaves::copyIsOldOrNew()
{
    const QByteArray copy = "/var/lib/talmero-guard/bios.ini";
    const Counts counts = killAtEachCall(
        "copies",
        [&copy] {
            writeFile(copy, "old=1\n");
            writePanelFile("bios.ini", "new=1\n");
        },
        [&copy] { return stateOf(copy, "old=1\n", "new=1\n"); });
    QCOMPARE(counts.keys(), (QList<QByteArray>{"new", "old"}));
}

QTEST_GUILESS_MAIN(TestKilledSaves)
#include "tst_killedsaves.moc"
