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

// The real program, touched as a technician touches it, with the packages and folders of the
// generator on its stick. Prints a table. With HOSTILE_ALL it takes every package, without it one
// of each sort.

namespace {
constexpr char stick[] = "/media/usb0";
constexpr qint64 installLimit = 30500; // ms: tar is cut off after 30 s
constexpr qint64 pageLimit = 1500;     // ms until the list is shown and a screenshot has been taken
constexpr int visibleRows = 8;

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

/// Those that the file transfer page lists, in a panel whose program has started before.
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

/// The title of the box that is on the screen; empty without one.
QByteArray shownBox()
{
    for (const char *title : {"File Transfer", "File Transter"}) {
        if (showsDialog(title)) {
            return title;
        }
    }
    return {};
}

/// Whether there is text on it, which has smooth edges of many colours.
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
    void checkBox(const QByteArray &title, int result);
    int rowsThatCanBeChosen();

    std::unique_ptr<FakeTools> m_tools;
    std::unique_ptr<PanelProgram> m_program; // as long as it lives, so that what adds up is seen
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

/// Puts a package on the stick, chooses it and taps OK. The test fails unless the screen then
/// tells @p result, and in time.
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

/// Boxes of one title are told by their pictures: there is one for each result.
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
    QVERIFY(elapsed < pageLimit);
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
