#include "diskfiles.h"
#include "faketools.h"
#include "hostilecases.h"
#include "packages/packagecheck.h"
#include "packages/packageheader.h"
#include "panelfiles.h"
#include "panelguard.h"
#include "panelprogram.h"
#include "transferscreen.h"

#include <QElapsedTimer>
#include <QTest>

#include <map>
#include <memory>

#include <sys/mount.h>

// The real program, touched as a technician touches it, with the packages and folders of the
// generator on its stick. Prints a table. With HOSTILE_ALL it takes every package, without it one
// of each sort.

namespace {
constexpr char stick[] = "/media/usb0";
constexpr qint64 installLimit = 30500; // ms: tar is cut off after 30 s
constexpr qint64 tapLimit = 1500;      // ms that finding out by screenshots may take besides
constexpr int visibleRows = 8;

bool takesAll()
{
    return qEnvironmentVariableIsSet("HOSTILE_ALL");
}

/// Of packages that differ in a number alone a few are taken.
bool isSample(const HostileCase &hostile, int indexInGroup)
{
    if (hostile.group == "header" || hostile.group == "cut") {
        return indexInGroup % 9 == 0;
    }
    if (hostile.group == "flip") {
        return indexInGroup % 125 == 0;
    }
    return hostile.hazard != "-" ? hostile.group == "planted" || indexInGroup % 4 == 0
                                 : indexInGroup % 5 == 0;
}

/// Those that the file transfer page lists, and that leave the program's own folders alone.
bool canBeTapped(const HostileCase &hostile)
{
    return !hostile.paths.first().endsWith(".mo") && hostile.setup != "small-temporary";
}

void mountStick(const QByteArray &folder)
{
    shellBytes(QString("rm -rf %1/*").arg(stick));
    if (mount(folder, stick, nullptr, MS_BIND, nullptr) != 0) {
        qFatal("cannot mount %s", folder.constData());
    }
}

struct Box
{
    QByteArray title;
    int width = 0; // px; tells boxes of one title by their texts
};

/// The box that is on the screen, of whichever title; without one the title is empty.
Box shownBox()
{
    for (const char *title : {"File Transfer", "File Transter"}) {
        if (const QRect place = dialogPlace(title); !place.isNull()) {
            return {title, place.width()};
        }
    }
    return {};
}

QByteArray boxTitle(int result)
{
    if (result == Installed) {
        return {};
    }
    return result == OpenFileError ? "File Transter" : "File Transfer"; // so spelt for good
}
} // namespace

class TestHostileSticks : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();
    void packages_data();
    void packages();
    void wholeStick();
    void folders_data();
    void folders();
    void hardNamesAreInstalled();

private:
    void openPage();
    void installFirst(const QByteArray &package, int result);
    int rowsThatCanBeChosen();

    std::unique_ptr<FakeTools> m_tools;
    std::unique_ptr<PanelProgram> m_program; // one for all, so that what adds up is seen
    std::map<int, int> m_boxWidths;          // by the result
    QElapsedTimer m_timer;
    QByteArray m_shown;
};

void TestHostileSticks::initTestCase()
{
    requirePanel();
    m_tools = std::make_unique<FakeTools>(QStringList{"sleep"});
    writePanelFile("bios.ini", "bios.filetransfer.folder=/media/usb0\n");
    QVERIFY(hostileCases().size() > 1000);
    const CasePanel panel(hostileCases().first());
    m_program = startAtPage(transferButton);
    returnToMainPage(cancelButton);
}

void TestHostileSticks::init()
{
    m_shown.clear();
    m_timer.start();
}

void TestHostileSticks::cleanup()
{
    QVERIFY2(m_program->isRunning(), qPrintable(m_program->errorText().right(2000)));
}

void TestHostileSticks::cleanupTestCase()
{
    m_program.reset();
    m_tools.reset();
}

void TestHostileSticks::openPage()
{
    tapScreen(transferButton);
    QTRY_VERIFY(showsSettingsPage());
}

/// Puts a package on the stick, chooses it and taps OK. The test fails unless the screen then
/// tells @p result, and in time.
void TestHostileSticks::installFirst(const QByteArray &package, int result)
{
    const bool firmware = package.endsWith(".fmw");
    shellBytes(QString("rm -rf %1/*; cp '%2' %1").arg(stick, QString::fromUtf8(package)));
    openPage();
    if (firmware) {
        tapScreen(firmwareChoice);
    }
    choose(transferRow(0));
    QElapsedTimer timer;
    timer.start();
    tapScreen(okButton);
    Box box;
    QTRY_VERIFY_WITH_TIMEOUT(showsMainPage() || !(box = shownBox()).title.isEmpty(), installLimit);
    QVERIFY(timer.elapsed() < installLimit + tapLimit);
    m_shown += box.title.isEmpty() ? QByteArray("main page ")
                                   : box.title + ", " + QByteArray::number(box.width) + " px ";
    QCOMPARE(box.title, boxTitle(result));
    if (result != Installed) {
        QCOMPARE(m_boxWidths.try_emplace(result, box.width).first->second, box.width);
        acceptWarning(QString::fromLatin1(box.title));
    }
    if (firmware) { // the choice stays
        openPage();
        tapScreen(applicationChoice);
        returnToMainPage(cancelButton);
    }
}

void TestHostileSticks::packages_data()
{
    QTest::addColumn<int>("number");
    std::map<QByteArray, int> seen;
    for (int number = 0; number < hostileCases().size(); ++number) {
        const HostileCase &hostile = hostileCases().at(number);
        if (canBeTapped(hostile) && (takesAll() || isSample(hostile, seen[hostile.group]++))) {
            QTest::newRow(hostile.group + ' ' + hostile.name) << number;
        }
    }
}

void TestHostileSticks::packages()
{
    QFETCH(int, number);
    const HostileCase &hostile = hostileCases().at(number);
    const CasePanel panel(hostile);
    for (qsizetype step = 0; step < hostile.paths.size(); ++step) {
        installFirst(hostile.paths.at(step), hostile.results.at(step));
    }
    const QList<QByteArray> changes = panel.changes();
    printRow(QTest::currentDataTag(), m_shown.trimmed(), changes.join(' '), m_timer.elapsed());
    const QByteArray wrong = wrongChanges(hostile, changes);
    QVERIFY2(wrong.isEmpty(), wrong.constData());
    const bool keeps = hostile.changes == "+/tmp/*";
    QCOMPARE(takeKeptFile(),
             keeps ? readFile(hostile.paths.last()).mid(packageHeaderSize) : QByteArray());
}

/// How many of the rows on the screen a tap chooses.
int TestHostileSticks::rowsThatCanBeChosen()
{
    int rows = 0;
    while (rows < visibleRows) {
        tapScreen(transferRow(rows));
        if (!QTest::qWaitFor([&] { return isChosen(transferRow(rows)); }, 400)) {
            break;
        }
        ++rows;
    }
    return rows;
}

void TestHostileSticks::wholeStick()
{
    mountStick("/run/hostile");
    openPage();
    const qint64 elapsed = m_timer.elapsed();
    const int rows = rowsThatCanBeChosen();
    returnToMainPage(cancelButton);
    umount(stick);
    printRow("all on one stick", QByteArray::number(rows) + " rows on the screen", "", elapsed);
    QCOMPARE(rows, visibleRows);
}

void TestHostileSticks::folders_data()
{
    QTest::addColumn<int>("number");
    for (int number = 0; number < hostileTrees().size(); ++number) {
        QTest::newRow(hostileTrees().at(number).name) << number;
    }
}

void TestHostileSticks::folders()
{
    QFETCH(int, number);
    const HostileTree &tree = hostileTrees().at(number);
    mountStick(tree.path);
    std::unique_ptr<MountRing> ring;
    if (tree.name == "mount-ring") {
        ring = std::make_unique<MountRing>(stick);
    }
    m_timer.start();
    openPage();
    const qint64 elapsed = m_timer.elapsed();
    const int rows = rowsThatCanBeChosen();
    returnToMainPage(cancelButton);
    ring.reset();
    umount(stick);
    printRow("folder " + tree.name, QByteArray::number(rows) + " rows on the screen", "", elapsed);
    QCOMPARE(rows, qMin(tree.rows, visibleRows));
    QVERIFY(elapsed < tapLimit);
}

void TestHostileSticks::hardNamesAreInstalled()
{
    const CasePanel panel(hostileCases().first());
    for (const HostileTree &tree : hostileTrees()) {
        if (tree.name != "hard-names") {
            continue;
        }
        mountStick(tree.path);
        for (int row = 0; row < tree.rows; ++row) {
            openPage();
            choose(transferRow(row));
            returnToMainPage(okButton);
        }
        umount(stick);
    }
    QCOMPARE(panel.changes().join(' '),
             QByteArray("-/home/dest/compile/(1) +/home/dest/names/(8)"));
}

QTEST_MAIN(TestHostileSticks)
#include "tst_hostilesticks.moc"
