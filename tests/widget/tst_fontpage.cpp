#include "debuglog.h"
#include "diskfiles.h"
#include "faketools.h"
#include "panelguard.h"
#include "panelmain.h"
#include "settingspage.h"
#include "system/textcodec.h"

#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QLayout>
#include <QScrollBar>
#include <QStackedWidget>

namespace {
const QByteArray stick = "/media/usb0/";
const QByteArray fontFolder = "/usr/share/fonts/truetype/freefont/";

class Page : public SettingsPage
{
public:
    explicit Page(const QByteArray &settings = "bios.fontsetting.folder=/media/usb0\n")
        : SettingsPage("Install Fonts:11", settings)
    {
    }

    QStringList sortedRows() const
    {
        QStringList texts = rowTexts(table());
        texts.sort();
        return texts;
    }
    void tap(const QByteArray &name) const { tapRow(table(), rowOf(table(), textFromBytes(name))); }
    QStringList chosen() const
    {
        QStringList texts;
        for (const QTableWidgetItem *item : table()->selectedItems()) {
            texts += item->text();
        }
        return texts;
    }

    /// Taps OK. Result: whether that led to the main page without an error.
    bool install() const
    {
        const DebugLog log;
        leave("ok");
        return log.lines().filter("Load settings at page 11 error.").isEmpty()
            && window()->findChild<QStackedWidget *>()->currentIndex() == 1;
    }
};

void addFonts(const QList<QByteArray> &names)
{
    for (const QByteArray &name : names) {
        writeFile(stick + name, "font " + name);
    }
}

/// Names of all entries in the font folder, hidden ones too; "none" if there is no such folder.
QStringList installedFonts()
{
    const QDir folder(fontFolder);
    return folder.exists()
        ? folder.entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)
        : QStringList{"none"};
}
} // namespace

class TestFontPage : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void builtPage();
    void searchesTheConfiguredFolder_data();
    void searchesTheConfiguredFolder();
    void lists_data();
    void lists();
    void rowsStandForFiles();
    void listIsReadAtEachVisit();
    void listNeedsItsTable();
    void tapsAddAndRemoveRows();
    void draggingScrolls();
    void copiesTheChosen();
    void copiesNamesOfAnyBytes_data();
    void copiesNamesOfAnyBytes();
    void copyIsReadableByAll();
    void nothingChosen();
    void focusedRowIsNotChosen();
    void rowWithoutFile();
    void installedFontIsKept();
    void firstFontOfEqualNamesWins_data();
    void firstFontOfEqualNamesWins();
    void skipsAVanishedFont();
    void skipsAnUnreadableFont();
    void folderMissing();
    void folderCannotBeWritten_data();
    void folderCannotBeWritten();

private:
    std::unique_ptr<FakeTools> m_tools;
};

void TestFontPage::initTestCase()
{
    requirePanel();
}

void TestFontPage::init()
{
    m_tools
        = std::make_unique<FakeTools>(QStringList{"xrandr", "xset", "xinput", "ifconfig", "du"});
    emptyFolder(stick);
    emptyFolder(fontFolder);
}

void TestFontPage::cleanup()
{
    m_tools.reset();
}

void TestFontPage::builtPage()
{
    const Page page;
    QVERIFY(page.hasTitle("Install Fonts"));
    const QTableWidget *table = page.table();
    QCOMPARE(table->objectName(), QString("show_files_table"));
    QCOMPARE(table->rowCount(), 0);
    QCOMPARE(table->columnCount(), 1);
    QCOMPARE(table->selectionMode(), QAbstractItemView::MultiSelection);
    QVERIFY(table->horizontalHeader()->isHidden());
    QVERIFY(table->verticalHeader()->isHidden());
    QCOMPARE(table->horizontalHeader()->sectionResizeMode(0), QHeaderView::Stretch);
    QCOMPARE(page.page()->layout()->itemAt(1)->layout()->contentsMargins(),
             QMargins(29, 29, 29, 29));
    QVERIFY(table->viewport()->width() > 700); // the table fills the page
    QVERIFY(table->viewport()->height() > 480);
}

void TestFontPage::searchesTheConfiguredFolder_data()
{
    QTest::addColumn<QByteArray>("settings");
    QTest::addColumn<QStringList>("rows");
    QTest::newRow("not set") << QByteArray() << QStringList{"usb0/a/x.ttf"};
    QTest::newRow("the folder of packages does not count")
        << QByteArray("bios.filetransfer.folder=/media/usb0/a\n") << QStringList{"usb0/a/x.ttf"};
    QTest::newRow("with a slash") << QByteArray("bios.fontsetting.folder=/media/usb0/\n")
                                  << QStringList{"a/x.ttf"};
    QTest::newRow("without a slash")
        << QByteArray("bios.fontsetting.folder=/media/usb0\n") << QStringList{"a/x.ttf"};
    QTest::newRow("missing") << QByteArray("bios.fontsetting.folder=/media/usb7\n")
                             << QStringList();
}

void TestFontPage::searchesTheConfiguredFolder()
{
    QFETCH(QByteArray, settings);
    QFETCH(QStringList, rows);
    addFonts({"a/x.ttf"});
    const Page page(settings);
    QCOMPARE(rowTexts(page.table()), rows);
    QVERIFY(page.window()->loadFontSettings());
    QCOMPARE(rowTexts(page.table()), rows);
}

void TestFontPage::lists_data()
{
    QTest::addColumn<QList<QByteArray>>("files");
    QTest::addColumn<QStringList>("rows"); // sorted
    using Files = QList<QByteArray>;
    QTest::newRow("empty stick") << Files{} << QStringList();
    QTest::newRow("fonts alone") << Files{"a.ttf", "b.ttc", "c.otf", "d.ttfx", "ttf", "e.kpc"}
                                 << QStringList{"a.ttf", "b.ttc"};
    QTest::newRow("any case") << Files{"A.TTF", "b.Ttc", "fonts/Arial.TTF"}
                              << QStringList{"A.TTF", "b.Ttc", "fonts/Arial.TTF"};
    QTest::newRow("hidden") << Files{".ttf", ".x.ttf", ".d/x.ttf"} << QStringList();
    QTest::newRow("folder with the extension") << Files{"d.ttf/x"} << QStringList();
    QTest::newRow("names") << Files{"a b.ttf", "c\nd.ttc", "e\xFF.ttf"}
                           << QStringList{"a b.ttf", "c\nd.ttc", textFromBytes("e\xFF.ttf")};
}

void TestFontPage::lists()
{
    QFETCH(QList<QByteArray>, files);
    QFETCH(QStringList, rows);
    addFonts(files);
    shellBytes(QString("ln -s /etc/hostname %1link.ttf").arg(stick.constData()));
    QCOMPARE(Page().sortedRows(), rows);
}

void TestFontPage::rowsStandForFiles()
{
    addFonts({"a/x.ttf"});
    const Page page;
    const QTableWidgetItem *item = page.table()->item(0, 0);
    QVERIFY(item != nullptr);
    QCOMPARE(item->data(Qt::UserRole).toString(), QString(stick + "a/x.ttf"));
    QCOMPARE(item->flags(), QTableWidgetItem().flags() & ~Qt::ItemIsEditable);
    QVERIFY(page.table()->rowHeight(0) >= 44); // large enough for a finger
}

void TestFontPage::listIsReadAtEachVisit()
{
    addFonts({"a.ttf"});
    const Page page;
    page.tap("a.ttf");
    page.leave("cancel");
    addFonts({"b.ttf"});
    page.open();
    QCOMPARE(page.sortedRows(), (QStringList{"a.ttf", "b.ttf"}));
    QCOMPARE(page.chosen(), QStringList()); // the choice is forgotten
    QCOMPARE(installedFonts(), QStringList());
}

void TestFontPage::listNeedsItsTable()
{
    const Page page;
    delete page.table();
    QVERIFY(!page.window()->loadFontSettings());
    const DebugLog log;
    page.open();
    QCOMPARE(log.lines().filter("Load settings at page 11 error.").size(), 1);
}

void TestFontPage::tapsAddAndRemoveRows()
{
    addFonts({"a.ttf", "b.ttf", "c.ttf"});
    const Page page;
    QCOMPARE(page.chosen(), QStringList());
    page.tap("c.ttf");
    page.tap("a.ttf");
    QCOMPARE(page.chosen(), (QStringList{"c.ttf", "a.ttf"}));
    page.tap("c.ttf");
    QCOMPARE(page.chosen(), QStringList{"a.ttf"});
    QVERIFY(page.install());
    QCOMPARE(installedFonts(), QStringList{"a.ttf"});
}

void TestFontPage::draggingScrolls()
{
    for (int number = 0; number < 60; ++number) {
        addFonts({QByteArray::number(number) + ".ttf"});
    }
    const Page page;
    tapRow(page.table(), 0);
    const QStringList chosen = page.chosen();
    dragTable(page.table(), -200);
    QTRY_VERIFY(page.table()->verticalScrollBar()->value() > 100);
    QCOMPARE(page.chosen(), chosen); // dragging did not choose a row
}

void TestFontPage::copiesTheChosen()
{
    addFonts({"fonts/Arial.TTF", "b.ttc", "c.ttf"});
    const Page page;
    page.tap("fonts/Arial.TTF");
    page.tap("b.ttc");
    QVERIFY(page.install());
    QCOMPARE(installedFonts(), (QStringList{"Arial.TTF", "b.ttc"}));
    QCOMPARE(readFile(fontFolder + "Arial.TTF"), QByteArray("font fonts/Arial.TTF"));
    QCOMPARE(readFile(fontFolder + "b.ttc"), QByteArray("font b.ttc"));
    QCOMPARE(readFile(stick + "b.ttc"), QByteArray("font b.ttc")); // copied, not moved
}

void TestFontPage::copiesNamesOfAnyBytes_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("blanks and quotes") << QByteArray(" it's \"x\" .ttf");
    QTest::newRow("UTF-8") << QByteArray("\xC3\xA4\xF0\x9F\x93\xA6.ttf");
    QTest::newRow("not UTF-8") << QByteArray("\xFF\xC3.ttf");
    QTest::newRow("line feed") << QByteArray("a\nb.ttf");
    QTest::newRow("longest") << QByteArray(251, 'x') + ".ttf";
}

void TestFontPage::copiesNamesOfAnyBytes()
{
    QFETCH(QByteArray, name);
    addFonts({"d\xFF/" + name});
    const Page page;
    page.tap("d\xFF/" + name);
    QVERIFY(page.install());
    QCOMPARE(readFile(fontFolder + name), "font d\xFF/" + name);
}

void TestFontPage::copyIsReadableByAll()
{
    const QByteArray content(3000000, 'f');
    writeFile(stick + "a.ttf", content);
    shellBytes(QString("chmod 644 %1a.ttf").arg(stick.constData()));
    const Page page;
    page.tap("a.ttf");
    QVERIFY(page.install());
    QCOMPARE(readFile(fontFolder + "a.ttf"), content);
    // The runtime runs as another user, who must be able to read the font.
    QVERIFY(QFileInfo(fontFolder + "a.ttf").permission(QFile::ReadOther | QFile::ReadGroup));
}

void TestFontPage::nothingChosen()
{
    addFonts({"a.ttf"});
    const Page page;
    QVERIFY(page.window()->saveFontSettings());
    QVERIFY(page.install());
    QCOMPARE(installedFonts(), QStringList());
}

void TestFontPage::focusedRowIsNotChosen()
{
    addFonts({"a.ttf"});
    const Page page;
    page.tap("a.ttf");
    page.leave("cancel");
    page.open();
    page.table()->setFocus();
    loseAndRegainFocus(page.window());
    QVERIFY(page.table()->currentItem() != nullptr); // Qt makes the first row current
    QVERIFY(page.install());
    QCOMPARE(installedFonts(), QStringList());
}

void TestFontPage::rowWithoutFile()
{
    addFonts({"a.ttf", "b.ttf"});
    const Page page;
    page.table()->item(rowOf(page.table(), "a.ttf"), 0)->setData(Qt::UserRole, QString());
    page.tap("a.ttf");
    page.tap("b.ttf");
    QVERIFY(page.install());
    QCOMPARE(installedFonts(), QStringList{"b.ttf"});
}

void TestFontPage::installedFontIsKept()
{
    addFonts({"a.ttf", "b.ttf"});
    writeFile(fontFolder + "a.ttf", "older");
    const Page page;
    page.tap("a.ttf");
    page.tap("b.ttf");
    QVERIFY(page.install());
    QCOMPARE(readFile(fontFolder + "a.ttf"), QByteArray("older"));
    QCOMPARE(installedFonts(), (QStringList{"a.ttf", "b.ttf"}));
}

void TestFontPage::firstFontOfEqualNamesWins_data()
{
    QTest::addColumn<QByteArray>("first");
    QTest::addColumn<QByteArray>("second");
    QTest::newRow("as listed") << QByteArray("x.ttf") << QByteArray("d/x.ttf");
    QTest::newRow("the other way round") << QByteArray("d/x.ttf") << QByteArray("x.ttf");
}

void TestFontPage::firstFontOfEqualNamesWins()
{
    QFETCH(QByteArray, first);
    QFETCH(QByteArray, second);
    addFonts({first, second});
    const Page page;
    page.tap(first);
    page.tap(second);
    QVERIFY(page.install());
    QCOMPARE(installedFonts(), QStringList{"x.ttf"});
    QCOMPARE(readFile(fontFolder + "x.ttf"), "font " + first);
}

void TestFontPage::skipsAVanishedFont()
{
    addFonts({"a.ttf", "b.ttf"});
    const Page page;
    page.tap("a.ttf");
    page.tap("b.ttf");
    shellBytes(QString("rm %1a.ttf").arg(stick.constData()));
    QVERIFY(page.install());
    QCOMPARE(installedFonts(), QStringList{"b.ttf"});
}

void TestFontPage::skipsAnUnreadableFont()
{
    addFonts({"a.ttf", "b.ttf"});
    const Page page;
    page.tap("a.ttf");
    page.tap("b.ttf");
    shellBytes(QString("rm %1a.ttf; mkfifo %1a.ttf").arg(stick.constData()));
    QVERIFY(page.install()); // returns without waiting for a writer
    QCOMPARE(installedFonts(), QStringList{"b.ttf"});
}

void TestFontPage::folderMissing()
{
    addFonts({"a.ttf"});
    const Page page;
    page.tap("a.ttf");
    shellBytes(QString("rmdir %1").arg(fontFolder.constData()));
    QVERIFY(page.install());
    QCOMPARE(installedFonts(), QStringList{"none"});
}

void TestFontPage::folderCannotBeWritten_data()
{
    QTest::addColumn<QString>("cover");
    QTest::newRow("read-only") << "mount -t tmpfs -o ro panel %1";
    QTest::newRow("full") << "mount -t tmpfs -o size=64k panel %1";
    QTest::newRow("no room for names") << "mount -t tmpfs -o nr_inodes=1 panel %1";
}

void TestFontPage::folderCannotBeWritten()
{
    QFETCH(QString, cover);
    writeFile(stick + "a.ttf", QByteArray(300000, 'f'));
    const Page page;
    page.tap("a.ttf");
    shellBytes(cover.arg(fontFolder.constData()));
    const bool installed = page.install();
    const QStringList left = installedFonts();
    shellBytes(QString("umount %1").arg(fontFolder.constData()));
    QVERIFY(installed);
    QCOMPARE(left, QStringList()); // not even a part of the font
}

PANEL_QTEST_MAIN(TestFontPage)
#include "tst_fontpage.moc"
