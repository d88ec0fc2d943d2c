#include "debuglog.h"
#include "dialogdriver.h"
#include "diskfiles.h"
#include "faketools.h"
#include "packagefiles.h"
#include "packages/installlock.h"
#include "panelfiles.h"
#include "panelguard.h"
#include "panelmain.h"
#include "settingspage.h"
#include "system/textcodec.h"
#include "widgets/radiobutton.h"

#include <QMessageBox>
#include <QStackedWidget>

#include <functional>

namespace {
const QByteArray stick = "/media/usb0/";

class Page : public SettingsPage
{
public:
    Page()
        : SettingsPage("File Transfer:4", "bios.filetransfer.folder=/media/usb0\n")
    {
    }

    void choose(const char *list) const
    {
        QTest::mouseClick(page()->findChild<RadioButton *>(list), Qt::LeftButton);
    }

    /// Taps the row of the file and then OK. Result: whether the page reported no error.
    bool install(const QString &name, Qt::Edge end = Qt::LeftEdge) const
    {
        const DebugLog log;
        tapRow(table(), rowOf(table(), name), end);
        leave("ok");
        return log.lines().filter("Load settings at page 4 error.").isEmpty();
    }
};

using UserAction = std::function<void(const Page &page)>;

/// An application package for this panel.
void addApplication(const QByteArray &name)
{
    writePackage(stick + name, PackageKind::Application, 12, "RV-K21T", {{"both", "new\n"}});
}
} // namespace

class TestFileTransferInstall : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void installsApplication_data();
    void installsApplication();
    void installsNamesOfAnyBytes_data();
    void installsNamesOfAnyBytes();
    void installsFirmware();
    void refusals_data();
    void refusals();
    void unknownKindShowsNothing();
    void anotherInstallationRuns();
    void nothingChosen();
    void earlierChoiceDoesNotCount_data();
    void earlierChoiceDoesNotCount();
    void tappedRowStaysChosen_data();
    void tappedRowStaysChosen();
    void rowWithoutFile();

private:
    std::unique_ptr<FakeTools> m_tools;
};

void TestFileTransferInstall::initTestCase()
{
    requirePanel();
}

void TestFileTransferInstall::init()
{
    m_tools
        = std::make_unique<FakeTools>(QStringList{"xrandr", "xset", "xinput", "ifconfig", "du"});
    resetInstalledFiles();
}

void TestFileTransferInstall::cleanup()
{
    m_tools.reset();
}

void TestFileTransferInstall::installsApplication_data()
{
    QTest::addColumn<int>("end");
    QTest::newRow("tapped on the name") << int(Qt::LeftEdge);
    QTest::newRow("tapped beside it") << int(Qt::RightEdge);
}

void TestFileTransferInstall::installsApplication()
{
    QFETCH(int, end);
    writeFile(stick + "other.kpc");
    addApplication("apps/line1.kpc");
    const DialogDriver user(&QDialog::reject);
    const Page page;
    QVERIFY(page.install("apps/line1.kpc", Qt::Edge(end)));
    QCOMPARE(user.count(), 0); // success shows no message
    QCOMPARE(readFile("/home/dest/both"), QByteArray("new\n"));
    QCOMPARE(readFile("/home/dest/compile/old"), QByteArray("none"));
    QCOMPARE(page.window()->findChild<QStackedWidget *>()->currentIndex(), 1);
}

void TestFileTransferInstall::installsNamesOfAnyBytes_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("blank and quotes") << QByteArray("it's \"x\" .kpc");
    QTest::newRow("shell characters") << QByteArray("$(reboot);*.kpc");
    QTest::newRow("line feed") << QByteArray("a\nb.kpc");
    QTest::newRow("not UTF-8") << QByteArray("\xFF\xC3.kpc");
    QTest::newRow("option") << QByteArray("--help.kpc");
}

void TestFileTransferInstall::installsNamesOfAnyBytes()
{
    QFETCH(QByteArray, name);
    addApplication(name);
    const DialogDriver user(&QDialog::reject);
    QVERIFY(Page().install(textFromBytes(name)));
    QCOMPARE(user.count(), 0);
    QCOMPARE(readFile("/home/dest/both"), QByteArray("new\n"));
}

void TestFileTransferInstall::installsFirmware()
{
    writePackage(stick + "new.fmw", PackageKind::Firmware, 13, "TALMERO", {{"both", "new\n"}});
    const DialogDriver user(&QDialog::reject);
    const Page page;
    page.choose("firmware_radioButton");
    QVERIFY(page.install("new.fmw"));
    QCOMPARE(user.count(), 0);
    QCOMPARE(readFile("/home/both"), QByteArray("new\n"));
    QCOMPARE(readPanelFile("fwver"), QByteArray("13"));
    QCOMPARE(readFile("/home/dest/compile/old"), QByteArray("old\n"));
}

void TestFileTransferInstall::refusals_data()
{
    QTest::addColumn<QByteArray>("package");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("text");
    const QString title = "File Transfer";
    QTest::newRow("truncated header") << QByteArray(35, '\0') << "File Transter" // [sic]
                                      << "Open File Error";
    QTest::newRow("other runtime version")
        << packageBytes(PackageKind::Application, 13, "RV-K21T", QByteArray()) << title
        << "Error Firmware Version while Install KPC";
    QTest::newRow("other model") << packageBytes(PackageKind::Application, 12, "RV-K25T",
                                                 QByteArray())
                                 << title << "Error Panel Model while Install KPC";
    QTest::newRow("other OEM") << packageBytes(PackageKind::Firmware, 12, "OTHER", QByteArray())
                               << title << "Error Panel Model while Install Firmware";
}

void TestFileTransferInstall::refusals()
{
    QFETCH(QByteArray, package);
    QFETCH(QString, title);
    QFETCH(QString, text);
    writeFile(stick + "x.kpc", package);
    const Page page;
    QString shown;
    bool readable = false;
    const DialogDriver user([&](QDialog &dialog) {
        auto *box = qobject_cast<QMessageBox *>(&dialog);
        if (box == nullptr) {
            return;
        }
        shown = QStringList{box->windowTitle(), box->text()}.join(": ");
        readable = box->font().pixelSize() >= 24 && page.window()->rect().contains(box->geometry());
        QCOMPARE(box->icon(), QMessageBox::Warning);
        QCOMPARE(box->standardButtons(), QMessageBox::Ok);
        QCOMPARE(box->buttons().size(), 1);
        QVERIFY(box->parentWidget() == nullptr);
        QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
        QVERIFY(!box->isVisible());
    });
    QVERIFY(page.install("x.kpc")); // the page does not count this as a failure
    QCOMPARE(user.count(), 1);
    QCOMPARE(shown, title + ": " + text);
    QVERIFY(readable);
    QCOMPARE(readFile("/home/dest/compile/old"), QByteArray("old\n"));
    QCOMPARE(readPanelFile("fwver"), QByteArray("12\n"));
    QCOMPARE(page.window()->findChild<QStackedWidget *>()->currentIndex(), 1);
}

void TestFileTransferInstall::unknownKindShowsNothing()
{
    writePackage(stick + "x.kpc", PackageKind(7), 12, "RV-K21T", {{"both", "new\n"}});
    const DialogDriver user(&QDialog::reject);
    QVERIFY(Page().install("x.kpc"));
    QCOMPARE(user.count(), 0);
    QCOMPARE(readFile("/home/dest/both"), QByteArray("old\n"));
}

void TestFileTransferInstall::anotherInstallationRuns()
{
    addApplication("x.kpc");
    const DialogDriver user(&QDialog::reject);
    const Page page;
    {
        const InstallLock lock;
        QVERIFY(page.install("x.kpc"));
    }
    QCOMPARE(user.count(), 0);
    QCOMPARE(readFile("/home/dest/both"), QByteArray("old\n"));
    QCOMPARE(page.window()->findChild<QStackedWidget *>()->currentIndex(), 1);
}

void TestFileTransferInstall::nothingChosen()
{
    addApplication("x.kpc");
    const FakeTools tools({"tar", "rm", "sync"});
    const DialogDriver user(&QDialog::reject);
    const Page page;
    QVERIFY(page.window()->saveFiletransferSettings());
    page.leave("ok");
    QCOMPARE(tools.calls(), QStringList());
    QCOMPARE(user.count(), 0);
    QCOMPARE(readFile("/home/dest/compile/old"), QByteArray("old\n"));
}

void TestFileTransferInstall::earlierChoiceDoesNotCount_data()
{
    QTest::addColumn<UserAction>("between");
    QTest::newRow("page opened anew") << UserAction([](const Page &page) {
        page.leave("cancel");
        page.open();
    });
    QTest::newRow("other list and back") << UserAction([](const Page &page) {
        page.choose("firmware_radioButton");
        page.choose("application_radioButton");
    });
    QTest::newRow("tap beside the rows") << UserAction([](const Page &page) {
        QTest::mouseClick(page.table()->viewport(), Qt::LeftButton, {},
                          page.table()->viewport()->rect().bottomLeft() + QPoint(10, -10));
    });
}

/// When the window regains the focus, Qt makes the first row of the focused table current.
void TestFileTransferInstall::earlierChoiceDoesNotCount()
{
    QFETCH(UserAction, between);
    addApplication("x.kpc");
    const FakeTools tools({"tar", "rm", "sync"});
    const DialogDriver user(&QDialog::reject);
    const Page page;
    tapRow(page.table(), 0);
    between(page);
    page.table()->setFocus();
    loseAndRegainFocus(page.window());
    QVERIFY(page.table()->hasFocus());
    QVERIFY(page.table()->currentItem() != nullptr);
    QVERIFY(page.table()->selectedItems().isEmpty());
    page.leave("ok");
    QCOMPARE(tools.calls(), QStringList());
    QCOMPARE(user.count(), 0);
    QCOMPARE(readFile("/home/dest/compile/old"), QByteArray("old\n"));
}

void TestFileTransferInstall::tappedRowStaysChosen_data()
{
    QTest::addColumn<UserAction>("between");
    QTest::newRow("focus lost and given back")
        << UserAction([](const Page &page) { loseAndRegainFocus(page.window()); });
    QTest::newRow("tapped once more")
        << UserAction([](const Page &page) { tapRow(page.table(), rowOf(page.table(), "y.kpc")); });
    QTest::newRow("the tapped choice tapped once more")
        << UserAction([](const Page &page) { page.choose("application_radioButton"); });
}

void TestFileTransferInstall::tappedRowStaysChosen()
{
    QFETCH(UserAction, between);
    writeFile(stick + "x.kpc");
    addApplication("y.kpc");
    const DialogDriver user(&QDialog::reject);
    const Page page;
    tapRow(page.table(), rowOf(page.table(), "y.kpc"));
    between(page);
    page.leave("ok");
    QCOMPARE(user.count(), 0);
    QCOMPARE(readFile("/home/dest/both"), QByteArray("new\n"));
}

void TestFileTransferInstall::rowWithoutFile()
{
    addApplication("x.kpc");
    const FakeTools tools({"tar", "rm", "sync"});
    const DialogDriver user(&QDialog::reject);
    const Page page;
    page.table()->item(0, 0)->setData(Qt::UserRole, QString());
    QVERIFY(!page.install("x.kpc")); // only the debug channel reports the failure
    QVERIFY(!page.window()->saveFiletransferSettings());
    QCOMPARE(tools.calls(), QStringList());
    QCOMPARE(user.count(), 0);
}

PANEL_QTEST_MAIN(TestFileTransferInstall)
#include "tst_filetransferinstall.moc"
