#include "shell/biosinterface.h"

#include "diskfiles.h"
#include "faketools.h"
#include "panelfiles.h"
#include "panelguard.h"
#include "panelmain.h"
#include "system/textcodec.h"

#include <QDir>
#include <QProgressDialog>
#include <QPushButton>
#include <QTimer>

#include <functional>
#include <memory>

namespace {
const QByteArray folder = "/media/usb0/";
const QStringList threeFiles{"a", "b", "c"};

/// Inspects the progress dialog of a window whenever the window handles events.
class ProgressWatcher
{
public:
    ProgressWatcher(QWidget *window, std::function<void(QProgressDialog &)> look)
    {
        QObject::connect(&m_tick, &QTimer::timeout, &m_tick, [window, look = std::move(look)] {
            if (auto *progress = window->findChild<QProgressDialog *>()) {
                look(*progress);
            }
        });
        m_tick.start(0);
    }

private:
    QTimer m_tick;
};
} // namespace

class TestFindFiles : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void finds_data();
    void finds();
    void namesKeepTheirOrder();
    void skipsUnreadableFiles();
    void progressIsShown();
    void cancelEndsTheSearch();
    void scanningDrivesDoesNothing();

private:
    QStringList find(const QStringList &names, const QString &text) const
    {
        return m_window->findFiles(QDir(folder), names, text);
    }

    std::unique_ptr<FakeTools> m_tools;
    std::unique_ptr<BiosInterface> m_window;
};

void TestFindFiles::initTestCase()
{
    requirePanel();
}

void TestFindFiles::init()
{
    m_tools
        = std::make_unique<FakeTools>(QStringList{"xrandr", "xset", "xinput", "ifconfig", "du"});
    emptyFolder(folder);
    writePanelFile("bios.ini", {});
    m_window = std::make_unique<BiosInterface>();
}

void TestFindFiles::cleanup()
{
    m_window.reset();
    m_tools.reset();
}

void TestFindFiles::finds_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("found");
    const QByteArray wanted = "needle";
    QTest::newRow("whole file") << wanted << wanted << true;
    QTest::newRow("in the first line") << QByteArray("a needle b\nc\n") << wanted << true;
    QTest::newRow("in the last line") << QByteArray("a\nb\nneedle") << wanted << true;
    QTest::newRow("nowhere") << QByteArray("a\nneedl\ne\n") << wanted << false;
    QTest::newRow("other case") << QByteArray("Needle\n") << wanted << false;
    QTest::newRow("empty file") << QByteArray() << wanted << false;
    QTest::newRow("empty text") << QByteArray("x") << QByteArray() << true;
    QTest::newRow("empty text, empty file") << QByteArray() << QByteArray() << false;
    QTest::newRow("text of two lines") << QByteArray("a\nb\n") << QByteArray("a\nb") << false;
    QTest::newRow("text with a line feed at its end")
        << QByteArray("a\nb\n") << QByteArray("a\n") << false;
    QTest::newRow("after a zero byte") << QByteArray("a\0needle", 8) << wanted << true;
    QTest::newRow("UTF-8") << QByteArray("\xC3\xA4\n") << QByteArray("\xC3\xA4") << true;
    QTest::newRow("part of a character does not match")
        << QByteArray("x\xA4y\n") << QByteArray("x\xC3\xA4y") << false;
    QTest::newRow("not UTF-8") << QByteArray("a\xFF\xFE"
                                             "b\n")
                               << QByteArray("\xFF\xFE") << true;
    QTest::newRow("next to invalid UTF-8") << QByteArray("\xFFneedle\xC3") << wanted << true;
    // A file without line ends is read in pieces of 64 KiB.
    for (const int border : {65535, 65536, 131072}) {
        for (const int before : {0, 1, 3, 6}) {
            QTest::addRow("%d before %d", before, border)
                << QByteArray(border - before, 'n') + wanted + QByteArray(100000, 'n') << wanted
                << true;
        }
    }
    QTest::newRow("long line without it") << QByteArray(1000000, 'n') << wanted << false;
    QTest::newRow("line feed at the border")
        << QByteArray(65533, 'x') + "nee\ndle" << wanted << false;
    const QByteArray longText = QByteArray(100000, 'y') + 'z';
    QTest::newRow("longer than a piece")
        << QByteArray(50000, 'y') + longText + "more" << longText << true;
}

void TestFindFiles::finds()
{
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, text);
    QFETCH(bool, found);
    writeFile(folder + "file", content);
    QCOMPARE(find({"file"}, textFromBytes(text)), found ? QStringList{"file"} : QStringList());
}

void TestFindFiles::namesKeepTheirOrder()
{
    for (const char *name : {"b", "a", "sub/c", "bad\xFF"}) {
        writeFile(folder + name, "needle");
    }
    writeFile(folder + "none", "-");
    writeFile("/media/other", "needle");
    const QStringList names{"sub/c", "none", "b", "/media/other", textFromBytes("bad\xFF"), "a"};
    QStringList expected = names;
    expected.removeAll("none");
    QCOMPARE(find(names, "needle"), expected);
    QCOMPARE(find({}, "needle"), QStringList());
}

void TestFindFiles::skipsUnreadableFiles()
{
    writeFile(folder + "good", "needle");
    shellBytes(
        QString("cd %1; mkdir folder; mkfifo pipe; ln -s nothing link").arg(QString(folder)));
    QCOMPARE(find({"missing", "folder", "pipe", "link", "good"}, "needle"), QStringList{"good"});
}

void TestFindFiles::progressIsShown()
{
    for (const QString &name : threeFiles) {
        writeFile(folder + name.toUtf8(), "needle");
    }
    QStringList labels;
    QStringList titles;
    const ProgressWatcher watcher(m_window.get(), [&](QProgressDialog &progress) {
        QCOMPARE(progress.parentWidget(), m_window.get());
        QCOMPARE(progress.windowTitle(), QString("Find Files"));
        QCOMPARE(progress.minimum(), 0);
        QCOMPARE(progress.maximum(), 3);
        QCOMPARE(progress.findChild<QPushButton *>()->text(), QString("&Cancel"));
        const QString label = QString("%1: %2").arg(progress.value()).arg(progress.labelText());
        if (!labels.contains(label)) {
            labels += label;
        }
    });
    QCOMPARE(find(threeFiles, "needle"), threeFiles);
    QCOMPARE(
        labels,
        (QStringList{"0: Searching file number 0 of 3...", "1: Searching file number 1 of 3...",
                     "2: Searching file number 2 of 3..."}));
    QVERIFY(m_window->findChild<QProgressDialog *>() == nullptr);
}

void TestFindFiles::cancelEndsTheSearch()
{
    for (const QString &name : threeFiles) {
        writeFile(folder + name.toUtf8(), "needle");
    }
    const ProgressWatcher watcher(m_window.get(), [](QProgressDialog &progress) {
        if (progress.value() == 1) {
            progress.findChild<QPushButton *>()->click();
        }
    });
    QCOMPARE(find(threeFiles, "needle"), QStringList{"a"});
    QCOMPARE(find({"c"}, "needle"), QStringList{"c"}); // the next search is not cancelled
}

void TestFindFiles::scanningDrivesDoesNothing()
{
    QString drives = "as it was";
    m_window->scanDrives(drives);
    QCOMPARE(drives, QString("as it was"));
}

PANEL_QTEST_MAIN(TestFindFiles)
#include "tst_findfiles.moc"
