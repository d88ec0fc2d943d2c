#include "diskfiles.h"
#include "faketools.h"
#include "hostilecases.h"
#include "packages/packagecheck.h"
#include "packages/packageheader.h"
#include "packages/packagetypes.h"
#include "panelfiles.h"
#include "panelguard.h"
#include "panelprogram.h"
#include "panelscreen.h"

#include <QElapsedTimer>
#include <QImage>
#include <QSet>
#include <QTest>

#include <map>
#include <memory>

#include <sys/mount.h>

// Installs the generated packages by touch on the real program, and lists the generated folders.
// Prints a table. Takes a sample of the packages, or all of them with HOSTILE_ALL.

namespace {
constexpr char stick[] = "/media/usb0";
constexpr qint64 installLimit = 30500; // ms: tar is killed after 30 s
constexpr qint64 pageLimit = 1500;     // ms to show the list and take a screenshot
constexpr int visibleRows = 8;

/// Takes few of the packages that differ only in a number.
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

/// Whether the file transfer page lists the packages, without restarting the program.
bool canBeTapped(const HostileCase &hostile)
{
    return !isListedAs(PackageType::BiosImage, hostile.paths.first())
        && hostile.setup != "small-temporary";
}

void mountStick(const QByteArray &folder)
{
    shellBytes(QString("rm -rf %1/*").arg(stick));
    if (mount(folder, stick, nullptr, MS_BIND, nullptr) != 0) {
        qFatal("cannot mount %s", folder.constData());
    }
}

/// The title of the message box on the screen; empty if there is none.
QByteArray shownBox()
{
    for (const char *title : {"File Transfer", "File Transter"}) {
        if (showsDialog(title)) {
            return title;
        }
    }
    return {};
}

/// Whether the picture shows text, whose smooth edges have many colours.
bool isPainted(const QImage &picture)
{
    QSet<QRgb> colors;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            colors += picture.pixel(x, y);
        }
    }
    return colors.size() > 16;
}

QByteArray boxTitle(int result)
{
    if (result == Installed) {
        return {};
    }
    return result == OpenFileError ? "File Transter" : "File Transfer"; // misspelt; must stay
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
    void packagesWithOddNamesAreInstalled();

private:
    void openPage();
    void installFirst(const QByteArray &package, int result);
    void checkBox(const QByteArray &title, int result);
    int rowsThatCanBeChosen();

    std::unique_ptr<FakeTools> m_tools;
    std::unique_ptr<PanelProgram> m_program; // runs on, so that effects add up
    std::map<int, QImage> m_boxes;           // by the result
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
}

void TestHostileSticks::init()
{
    if (m_program == nullptr || !m_program->isRunning()) { // at first, and after a crash
        m_program = startAtPage(transferButton);
        returnToMainPage(cancelButton);
    }
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

/// Puts a package on the stick, chooses it and taps OK. The test fails unless the screen shows
/// @p result in time.
void TestHostileSticks::installFirst(const QByteArray &package, int result)
{
    const bool firmware = isListedAs(PackageType::Firmware, package);
    shellBytes(QString("rm -rf %1/*; cp '%2' %1").arg(stick, QString::fromUtf8(package)));
    openPage();
    if (firmware) {
        tapScreen(firmwareChoice);
    }
    choose(transferRow(0));
    QElapsedTimer timer;
    timer.start();
    tapScreen(okButton);
    QByteArray box;
    QTRY_VERIFY_WITH_TIMEOUT(
        !m_program->isRunning() || showsMainPage() || !(box = shownBox()).isEmpty(), installLimit);
    QVERIFY(timer.elapsed() < installLimit);
    m_shown += box.isEmpty() ? QByteArrayLiteral("main page; ") : box + "; ";
    QCOMPARE(box, boxTitle(result));
    if (result != Installed) {
        checkBox(box, result);
        acceptWarning(QString::fromLatin1(box));
    }
    if (firmware) { // the choice stays
        openPage();
        tapScreen(applicationChoice);
        returnToMainPage(cancelButton);
    }
}

/// Several boxes have the same title. Compares pictures: one per result, each different.
void TestHostileSticks::checkBox(const QByteArray &title, int result)
{
    const auto picture
        = [&] { return screenImage().copy(dialogPlace(QString::fromLatin1(title))); };
    if (m_boxes.count(result) == 0) {
        QTRY_VERIFY(isPainted(picture()));
        m_boxes[result] = picture();
        for (const auto &[other, box] : m_boxes) {
            QVERIFY(other == result || box != m_boxes[result]);
        }
    }
    QTRY_VERIFY(picture() == m_boxes[result]);
}

void TestHostileSticks::packages_data()
{
    QTest::addColumn<int>("number");
    std::map<QByteArray, int> seen;
    for (int number = 0; number < hostileCases().size(); ++number) {
        const HostileCase &hostile = hostileCases().at(number);
        if (canBeTapped(hostile) && (takesAllCases() || isSample(hostile, seen[hostile.group]++))) {
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
    printRow(QTest::currentDataTag(), m_shown.chopped(2), changes.join(' '), m_timer.elapsed());
    const QByteArray wrong = wrongChanges(hostile, changes);
    QVERIFY2(wrong.isEmpty(), wrong.constData());
    const bool keeps = hostile.changes == "+/tmp/*";
    QCOMPARE(takeKeptFile(),
             keeps ? readFile(hostile.paths.last()).mid(packageHeaderSize) : QByteArray());
}

/// Taps the visible rows in turn. Result: how many could be chosen.
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
    QVERIFY(elapsed < pageLimit);
}

void TestHostileSticks::packagesWithOddNamesAreInstalled()
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
