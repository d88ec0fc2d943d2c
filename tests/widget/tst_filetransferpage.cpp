#include "debuglog.h"
#include "diskfiles.h"
#include "faketools.h"
#include "panelfiles.h"
#include "panelguard.h"
#include "panelmain.h"
#include "settingspage.h"
#include "system/textcodec.h"
#include "widgets/radiobutton.h"

#include <QHeaderView>
#include <QLayout>
#include <QScrollBar>
#include <QScroller>
#include <QStyledItemDelegate>

namespace {
const QByteArray stick = "/media/usb0/";
const QByteArray onStickOnly = "bios.filetransfer.folder=/media/usb0\n";

class Page : public SettingsPage
{
public:
    explicit Page(const QByteArray &settings = onStickOnly)
        : SettingsPage("File Transfer:4", settings)
    {
    }

    RadioButton *application() const
    {
        return page()->findChild<RadioButton *>("application_radioButton");
    }
    RadioButton *firmware() const
    {
        return page()->findChild<RadioButton *>("firmware_radioButton");
    }
    static void choose(RadioButton *choice) { QTest::mouseClick(choice, Qt::LeftButton); }

    QStringList rows() const { return rowTexts(table()); }
    QStringList sortedRows() const
    {
        QStringList texts = rows();
        texts.sort();
        return texts;
    }
};

void addFiles(const QList<QByteArray> &names)
{
    for (const QByteArray &name : names) {
        writeFile(stick + name);
    }
}
} // namespace

class TestFileTransferPage : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void builtPage();
    void fitsTheScreen_data();
    void fitsTheScreen();
    void searchesTheConfiguredFolder_data();
    void searchesTheConfiguredFolder();
    void lists_data();
    void lists();
    void rowsStandForFiles();
    void upperFoldersAreListedFirst();
    void firmwareIsListedInstead();
    void onlyTheFirstChoiceReloads();
    void listIsReadAtEachVisit();
    void listNeedsItsWidgets();
    void draggingScrolls();

private:
    std::unique_ptr<FakeTools> m_tools;
};

void TestFileTransferPage::initTestCase()
{
    requirePanel();
}

void TestFileTransferPage::init()
{
    m_tools
        = std::make_unique<FakeTools>(QStringList{"xrandr", "xset", "xinput", "ifconfig", "du"});
    emptyFolder(stick);
}

void TestFileTransferPage::cleanup()
{
    m_tools.reset();
}

void TestFileTransferPage::builtPage()
{
    const Page page;
    QVERIFY(page.hasTitle("File Transfer"));
    QCOMPARE(page.page()->findChildren<RadioButton *>().size(), 2);
    QCOMPARE(page.application()->text(), QString("Application"));
    QCOMPARE(page.firmware()->text(), QString("Firmware"));
    QVERIFY(page.application()->isChecked());
    QVERIFY(!page.firmware()->isChecked());
    const QTableWidget *table = page.table();
    QCOMPARE(table->objectName(), QString("show_files_table"));
    QCOMPARE(table->rowCount(), 0);
    QCOMPARE(table->columnCount(), 2);
    QCOMPARE(table->selectionMode(), QTableWidget().selectionMode());
    QVERIFY(table->horizontalHeader()->isHidden());
    QVERIFY(table->verticalHeader()->isHidden());
    QCOMPARE(table->horizontalHeader()->sectionResizeMode(0), QHeaderView::Stretch);
    QCOMPARE(table->horizontalHeader()->sectionResizeMode(1), QHeaderView::Stretch);
    QCOMPARE(page.page()->layout()->itemAt(1)->layout()->contentsMargins(),
             QMargins(29, 29, 29, 29));
    QCOMPARE(page.application()->y(), page.firmware()->y()); // side by side
    QVERIFY(page.application()->x() < page.firmware()->x());
    QVERIFY(page.application()->geometry().bottom() < table->y());
}

void TestFileTransferPage::fitsTheScreen_data()
{
    QTest::addColumn<QSize>("size");
    for (const QSize size : {QSize(800, 600), QSize(480, 800)}) {
        QTest::addRow("%dx%d", size.width(), size.height()) << size;
    }
}

void TestFileTransferPage::fitsTheScreen()
{
    QFETCH(QSize, size);
    addFiles({QByteArray(200, 'x') + ".kpc"});
    const Page page(
        onStickOnly
        + QString("bios.screen.size=%1x%2\n").arg(size.width()).arg(size.height()).toUtf8());
    QCOMPARE(page.window()->size(), size); // the page does not make the window larger
    QVERIFY(page.page()->rect().contains(page.table()->geometry()));
    QVERIFY(page.table()->rowHeight(0) >= 44); // large enough for a finger
    QVERIFY(!page.table()->horizontalScrollBar()->isVisible());
}

void TestFileTransferPage::searchesTheConfiguredFolder_data()
{
    QTest::addColumn<QByteArray>("settings");
    QTest::addColumn<QStringList>("rows");
    QTest::newRow("not set") << QByteArray() << QStringList{"usb0/a/x.kpc"};
    QTest::newRow("empty") << QByteArray("bios.filetransfer.folder=\n")
                           << QStringList{"usb0/a/x.kpc"};
    QTest::newRow("with a slash") << QByteArray("bios.filetransfer.folder=/media/usb0/\n")
                                  << QStringList{"a/x.kpc"};
    QTest::newRow("without a slash") << onStickOnly << QStringList{"a/x.kpc"};
    QTest::newRow("below") << QByteArray("bios.filetransfer.folder=/media/usb0/a\n")
                           << QStringList{"x.kpc"};
    QTest::newRow("missing") << QByteArray("bios.filetransfer.folder=/media/usb7\n")
                             << QStringList();
    QTest::newRow("a file") << QByteArray("bios.filetransfer.folder=/media/usb0/a/x.kpc\n")
                            << QStringList();
}

void TestFileTransferPage::searchesTheConfiguredFolder()
{
    QFETCH(QByteArray, settings);
    QFETCH(QStringList, rows);
    addFiles({"a/x.kpc"});
    const Page page(settings);
    QCOMPARE(page.rows(), rows);
    QVERIFY(page.window()->loadFiletransferSettings());
    QCOMPARE(page.rows(), rows);
}

void TestFileTransferPage::lists_data()
{
    QTest::addColumn<QList<QByteArray>>("files");
    QTest::addColumn<QStringList>("rows"); // sorted
    using Files = QList<QByteArray>;
    QTest::newRow("empty stick") << Files{} << QStringList();
    QTest::newRow("applications alone")
        << Files{"a.kpc", "b.fmw", "c.mo", "d.pkg", "e.kpcx", "f.kpc.bak", "kpc"}
        << QStringList{"a.kpc"};
    QTest::newRow("small letters only")
        << Files{"LINE1.KPC", "line2.Kpc", "LINE3.kpc"} << QStringList{"LINE3.kpc"};
    // These names start with a dot, so the files are hidden.
    QTest::newRow("the bare extension") << Files{".kpc", "a/.kpc"} << QStringList();
    QTest::newRow("hidden") << Files{".x.kpc", ".d/x.kpc"} << QStringList();
    QTest::newRow("folder with the extension")
        << Files{"d.kpc/x.kpc", "e.kpc/y"} << QStringList{"d.kpc/x.kpc"};
    QTest::newRow("blanks and quotes")
        << Files{"a b.kpc", "it's \"x\".kpc"} << QStringList{"a b.kpc", "it's \"x\".kpc"};
    QTest::newRow("markup") << Files{"<b>x<br>&amp;.kpc"} << QStringList{"<b>x<br>&amp;.kpc"};
    QTest::newRow("UTF-8") << Files{"\xC3\xA4\xE4\xB8\xAD\xF0\x9F\x93\xA6.kpc"}
                           << QStringList{
                                  QString::fromUtf8("\xC3\xA4\xE4\xB8\xAD\xF0\x9F\x93\xA6.kpc")};
    QTest::newRow("not UTF-8") << Files{"\xFFx\xC3.kpc"}
                               << QStringList{textFromBytes("\xFFx\xC3.kpc")};
    QTest::newRow("line feed") << Files{"a\nb.kpc"} << QStringList{"a\nb.kpc"};
}

void TestFileTransferPage::lists()
{
    QFETCH(QList<QByteArray>, files);
    QFETCH(QStringList, rows);
    addFiles(files);
    shellBytes(
        QString("ln -s /etc/hostname %1link.kpc; ln -s /opt %1folder").arg(stick.constData()));
    const Page page;
    QCOMPARE(page.sortedRows(), rows);
}

void TestFileTransferPage::rowsStandForFiles()
{
    addFiles({"a/two\nlines\xFF.kpc"});
    const Page page;
    const QTableWidgetItem *item = page.table()->item(0, 0);
    QVERIFY(item != nullptr);
    QCOMPARE(bytesFromText(item->text()), QByteArray("a/two\nlines\xFF.kpc"));
    QCOMPARE(bytesFromText(item->data(Qt::UserRole).toString()), stick + "a/two\nlines\xFF.kpc");
    QCOMPARE(item->flags(), QTableWidgetItem().flags() & ~Qt::ItemIsEditable);
    QVERIFY(page.table()->item(0, 1) == nullptr);
    QCOMPARE(page.table()->columnSpan(0, 0), 2);
    // Bytes and line feeds that cannot be shown appear as U+FFFD.
    const auto *delegate = qobject_cast<QStyledItemDelegate *>(page.table()->itemDelegate());
    QVERIFY(delegate != nullptr);
    const QString plain = QString::fromUtf8("\xC3\xA4 \xF0\x9F\x93\xA6.kpc");
    QCOMPARE(delegate->displayText(plain, QLocale()), plain);
    QCOMPARE(delegate->displayText(item->text(), QLocale()).toUtf8(),
             QByteArray("a/two\xEF\xBF\xBDlines\xEF\xBF\xBD.kpc"));
}

void TestFileTransferPage::upperFoldersAreListedFirst()
{
    addFiles({"1/2/3/deep.kpc", "1/2/c.kpc", "9/8/d.kpc", "1/b.kpc", "a.kpc"});
    const Page page;
    QList<int> depths;
    for (const QString &row : page.rows()) {
        depths += int(row.count('/'));
    }
    QCOMPARE(depths, (QList<int>{0, 1, 2, 2, 3}));
}

void TestFileTransferPage::firmwareIsListedInstead()
{
    addFiles({"a.kpc", "b.fmw", "c.FMW"});
    const Page page;
    QCOMPARE(page.rows(), QStringList{"a.kpc"});
    Page::choose(page.firmware());
    QVERIFY(!page.application()->isChecked());
    QCOMPARE(page.rows(), QStringList{"b.fmw"});
    Page::choose(page.application());
    QCOMPARE(page.rows(), QStringList{"a.kpc"});
    Page::choose(page.firmware());
    page.leave("cancel");
    page.open(); // the choice is kept while the program runs
    QCOMPARE(page.rows(), QStringList{"b.fmw"});
    QCOMPARE(readPanelFile("bios.ini"), onStickOnly);
}

void TestFileTransferPage::onlyTheFirstChoiceReloads()
{
    const Page page;
    addFiles({"a.kpc", "b.fmw"});
    page.application()->setAutoExclusive(false); // otherwise checking one unchecks the other
    page.firmware()->setAutoExclusive(false);
    page.firmware()->setChecked(true);
    QCOMPARE(page.rows(), QStringList());
    page.application()->setChecked(false);
    QCOMPARE(page.rows(), QStringList{"b.fmw"});
}

void TestFileTransferPage::listIsReadAtEachVisit()
{
    addFiles({"a.kpc"});
    const Page page;
    tapRow(page.table(), 0);
    page.leave("cancel");
    shellBytes(QString("mv %1a.kpc %1b.kpc").arg(stick.constData()));
    page.open();
    QCOMPARE(page.rows(), QStringList{"b.kpc"});
    QVERIFY(page.table()->currentItem() == nullptr);
}

void TestFileTransferPage::listNeedsItsWidgets()
{
    addFiles({"a.kpc"});
    const Page noChoice;
    delete noChoice.application();
    QVERIFY(!noChoice.window()->loadFiletransferSettings());
    QCOMPARE(noChoice.rows(), QStringList{"a.kpc"});
    const Page noTable;
    delete noTable.table();
    QVERIFY(!noTable.window()->loadFiletransferSettings());
    const DebugLog log;
    noTable.open();
    QCOMPARE(log.lines().filter("Load settings at page 4 error.").size(), 1);
}

void TestFileTransferPage::draggingScrolls()
{
    for (int number = 0; number < 60; ++number) {
        addFiles({QByteArray::number(number) + ".kpc"});
    }
    const Page page;
    QCOMPARE(page.table()->verticalScrollBar()->value(), 0);
    dragTable(page.table(), -200);
    QTRY_VERIFY(page.table()->verticalScrollBar()->value() > 100);
    QVERIFY(page.table()->currentItem() == nullptr);
    QVERIFY(page.table()->selectedItems().isEmpty());
    dragTable(page.table(), 220);
    QTRY_COMPARE(page.table()->verticalScrollBar()->value(), 0);
    QVERIFY(page.table()->currentItem() == nullptr);
    const QScroller *scroller = QScroller::scroller(page.table()->viewport());
    QTRY_VERIFY(scroller->state() == QScroller::Inactive); // a tap on a moving list stops it
    tapRow(page.table(), 2);                               // a tap still selects
    QCOMPARE(page.table()->currentRow(), 2);
}

PANEL_QTEST_MAIN(TestFileTransferPage)
#include "tst_filetransferpage.moc"
