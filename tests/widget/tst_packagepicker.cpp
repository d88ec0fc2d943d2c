#include "packages/packagepicker.h"

#include "debuglog.h"
#include "dialogdriver.h"
#include "diskfiles.h"
#include "faketools.h"
#include "packagefiles.h"
#include "panelfiles.h"
#include "panelguard.h"
#include "panelmain.h"
#include "settingspage.h"
#include "system/textcodec.h"

#include <QHeaderView>
#include <QPushButton>
#include <QRegularExpression>
#include <QScreen>
#include <QScrollBar>

#include <functional>
#include <memory>

namespace {
const QByteArray stick = "/media/usb0/";
const QByteArray onStickOnly = "bios.filetransfer.folder=/media/usb0\n";

QTableWidget *tableOf(const QDialog &dialog)
{
    return dialog.findChild<QTableWidget *>();
}

/// The rows of the add-on picker, in sorted order.
QStringList addOns()
{
    const PackageInstalling dialog;
    QStringList rows = rowTexts(tableOf(dialog));
    rows.sort();
    return rows;
}

void addFiles(const QList<QByteArray> &names)
{
    for (const QByteArray &name : names) {
        writeFile(stick + name);
    }
}

/// A BIOS package. It contains its version.
void addImage(const QByteArray &name, quint32 version)
{
    writePackage(stick + name, PackageKind::BiosImage, version, {},
                 {{"bios.version", QByteArray::number(version)}});
}

using User = std::function<void(QDialog &)>;

void rejectDialog(QDialog &dialog)
{
    dialog.reject();
}

/// A user who taps the row @p name, or no row if it is empty, and then a button.
User tapThenClick(const QString &name, const QString &button)
{
    return [name, button](QDialog &dialog) {
        if (!name.isEmpty()) {
            tapRow(tableOf(dialog), rowOf(tableOf(dialog), name));
        }
        clickButton(dialog, button);
    };
}
} // namespace

class TestPackagePicker : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void builtDialogs();
    void buttonsEndTheDialog();
    void lists_data();
    void lists();
    void upperFoldersAreListedFirst();
    void readsTheSettingsItself_data();
    void readsTheSettingsItself();
    void withoutSettingsFile();
    void selectedFile();
    void focusedRowIsNotSelected();
    void draggingScrolls();
    void picksAnImage_data();
    void picksAnImage();
    void namedImageIsInstalledAtOnce();
    void picksAnAddOn_data();
    void picksAnAddOn();
    void pickersWithoutSettingsFile();

private:
    std::unique_ptr<FakeTools> m_tools;
};

void TestPackagePicker::initTestCase()
{
    requirePanel();
}

void TestPackagePicker::init()
{
    QTest::failOnWarning(QRegularExpression("QIODevice")); // reading a closed file would print one
    m_tools
        = std::make_unique<FakeTools>(QStringList{"xrandr", "xset", "xinput", "ifconfig", "du"});
    emptyFolder(stick);
    writePanelFile("bios.ini", onStickOnly);
    writePanelFile("bios.version", "3\n");
}

void TestPackagePicker::cleanup()
{
    m_tools.reset();
}

void TestPackagePicker::builtDialogs()
{
    addFiles({"a.mo", "b.pkg", QByteArray(200, 'x') + ".mo", QByteArray(200, 'x') + ".pkg"});
    const BIOSUpdateDialog images("/nowhere"); // this argument is ignored
    const PackageInstalling addOns;
    QCOMPARE(images.windowTitle(), QString("Select BIOS Image"));
    QCOMPARE(addOns.windowTitle(), QString("Select HMI Add-Ons"));
    QVERIFY(rowTexts(tableOf(images)).contains("a.mo"));
    QVERIFY(rowTexts(tableOf(addOns)).contains("b.pkg"));
    for (const PackagePicker *dialog :
         std::initializer_list<const PackagePicker *>{&images, &addOns}) {
        QCOMPARE(dialog->font().pointSize(), 24);
        QCOMPARE(dialog->minimumWidth(), 600);
        QCOMPARE(dialog->geometry().center(), dialog->screen()->availableGeometry().center());
        const QTableWidget *table = tableOf(*dialog);
        QCOMPARE(table->font().pointSize(), 24);
        QCOMPARE(table->rowCount(), 2);
        QCOMPARE(table->columnCount(), 1);
        QCOMPARE(table->selectionMode(), QAbstractItemView::SingleSelection);
        QVERIFY(!table->wordWrap());
        QVERIFY(table->horizontalHeader()->isHidden());
        QVERIFY(table->verticalHeader()->isHidden());
        QCOMPARE(table->horizontalHeader()->sectionResizeMode(0), QHeaderView::Stretch);
        QVERIFY(table->rowHeight(0) >= 44); // large enough for a finger
        const QTableWidgetItem *item = table->item(0, 0);
        QCOMPARE(item->data(Qt::UserRole).toString(), stick + item->text());
        QCOMPARE(item->flags(), QTableWidgetItem().flags() & ~Qt::ItemIsEditable);
    }
}

void TestPackagePicker::buttonsEndTheDialog()
{
    BIOSUpdateDialog dialog({});
    dialog.show();
    const auto buttons = dialog.findChildren<QPushButton *>();
    QCOMPARE(buttons.size(), 2);
    QCOMPARE(buttons.at(0)->text(), QString("Ok"));
    QCOMPARE(buttons.at(1)->text(), QString("Cancel"));
    QCOMPARE(buttons.at(0)->y(), buttons.at(1)->y()); // side by side below the table
    QVERIFY(buttons.at(0)->x() < buttons.at(1)->x());
    QVERIFY(tableOf(dialog)->geometry().bottom() < buttons.at(0)->y());
    QVERIFY(QRect(0, 0, 800, 600).contains(dialog.geometry()));
    clickButton(dialog, "Ok");
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QVERIFY(!dialog.isVisible());
    dialog.show();
    clickButton(dialog, "Cancel");
    QCOMPARE(dialog.result(), int(QDialog::Rejected));
    QVERIFY(!dialog.isVisible());
}

void TestPackagePicker::lists_data()
{
    QTest::addColumn<QList<QByteArray>>("files");
    QTest::addColumn<QStringList>("rows"); // sorted
    using Files = QList<QByteArray>;
    QTest::newRow("empty stick") << Files{} << QStringList();
    QTest::newRow("add-ons alone")
        << Files{"a.pkg", "b.mo", "c.kpc", "d.fmw", "e.pkgx", "pkg"} << QStringList{"a.pkg"};
    QTest::newRow("any case") << Files{"a.PKG", "b.Pkg", "A/c.pKG"}
                              << QStringList{"A/c.pKG", "a.PKG", "b.Pkg"};
    QTest::newRow("hidden") << Files{".pkg", ".x.pkg", ".d/x.pkg"} << QStringList();
    QTest::newRow("folder with the extension") << Files{"d.pkg/x"} << QStringList();
    QTest::newRow("names") << Files{"a b.pkg", "c\nd.pkg", "e\xFF.pkg"}
                           << QStringList{"a b.pkg", "c\nd.pkg", textFromBytes("e\xFF.pkg")};
}

void TestPackagePicker::lists()
{
    QFETCH(QList<QByteArray>, files);
    QFETCH(QStringList, rows);
    addFiles(files);
    shellBytes(QString("ln -s /etc/hostname %1link.pkg").arg(stick.constData()));
    QCOMPARE(addOns(), rows);
}

void TestPackagePicker::upperFoldersAreListedFirst()
{
    addFiles({"A/b.PKG", "c.pkg"});
    const PackageInstalling dialog;
    QCOMPARE(rowTexts(tableOf(dialog)), (QStringList{"c.pkg", "A/b.PKG"}));
}

void TestPackagePicker::readsTheSettingsItself_data()
{
    QTest::addColumn<QByteArray>("settings");
    QTest::addColumn<QStringList>("rows");
    const QStringList below{"a/x.pkg"};
    const QStringList whole{"usb0/a/x.pkg"};
    const QByteArray key = "bios.filetransfer.folder";
    QTest::newRow("empty file") << QByteArray() << whole;
    QTest::newRow("other keys alone") << QByteArray("bios.fontsetting.folder=/opt\n") << whole;
    QTest::newRow("without a slash") << key + "=/media/usb0" << below;
    QTest::newRow("with a slash") << key + "=/media/usb0/\n" << below;
    QTest::newRow("the default, without a slash") << key + "=/media\n" << whole;
    QTest::newRow("surrounding blanks") << "\n \t " + key + "=/media/usb0 \t\r\n" << below;
    QTest::newRow("blank before the sign") << key + " =/media/usb0\n" << whole;
    QTest::newRow("comment") << '#' + key + "=/media/usb0\n" << whole;
    QTest::newRow("no key") << "=" + key + "=/media/usb0\n" << whole;
    QTest::newRow("the last line counts") << key + "=/opt\n" + key + "=/media/usb0\n" << below;
    QTest::newRow("set and removed") << key + "=/media/usb0\n" + key + "=\n" << whole;
    QTest::newRow("missing folder") << key + "=/media/usb7\n" << QStringList();
}

void TestPackagePicker::readsTheSettingsItself()
{
    QFETCH(QByteArray, settings);
    QFETCH(QStringList, rows);
    addFiles({"a/x.pkg"});
    writePanelFile("bios.ini", settings);
    QCOMPARE(addOns(), rows);
}

void TestPackagePicker::withoutSettingsFile()
{
    addFiles({"a.mo", "a.pkg"});
    removePanelFile("bios.ini");
    BIOSUpdateDialog images({});
    PackageInstalling addOns;
    for (PackagePicker *dialog : std::initializer_list<PackagePicker *>{&images, &addOns}) {
        dialog->show();
        QVERIFY(dialog->findChildren<QWidget *>().isEmpty());
        QVERIFY(!dialog->windowTitle().isEmpty());
        QCOMPARE(dialog->font().pointSize(), 24);
        QCOMPARE(dialog->selectedFile(), QString());
    }
}

void TestPackagePicker::selectedFile()
{
    addFiles({"a.pkg", "b\xFF.pkg"});
    PackageInstalling dialog;
    dialog.show();
    QTableWidget *table = tableOf(dialog);
    QCOMPARE(dialog.selectedFile(), QString());
    tapRow(table, rowOf(table, "a.pkg"));
    QCOMPARE(dialog.selectedFile(), QString("/media/usb0/a.pkg"));
    tapRow(table, rowOf(table, textFromBytes("b\xFF.pkg"))); // replaces the first choice
    QCOMPARE(bytesFromText(dialog.selectedFile()), stick + "b\xFF.pkg");
    QCOMPARE(table->selectedItems().size(), 1);
    table->clearSelection();
    QCOMPARE(dialog.selectedFile(), QString());
}

void TestPackagePicker::focusedRowIsNotSelected()
{
    addFiles({"a.pkg"});
    PackageInstalling dialog;
    dialog.show();
    tableOf(dialog)->setFocus();
    loseAndRegainFocus(&dialog);
    QVERIFY(tableOf(dialog)->currentItem() != nullptr); // Qt makes the first row current
    QCOMPARE(dialog.selectedFile(), QString());
}

void TestPackagePicker::draggingScrolls()
{
    for (int number = 0; number < 60; ++number) {
        addFiles({QByteArray::number(number) + ".pkg"});
    }
    PackageInstalling dialog;
    dialog.show();
    dragTable(tableOf(dialog), -150);
    QTRY_VERIFY(tableOf(dialog)->verticalScrollBar()->value() > 70);
    QCOMPARE(dialog.selectedFile(), QString());
}

void TestPackagePicker::picksAnImage_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("button");
    QTest::addColumn<QByteArray>("version");
    QTest::newRow("newer") << "a/newer.MO"
                           << "Ok" << QByteArray("4");
    QTest::newRow("not newer") << "same.mo"
                               << "Ok" << QByteArray("3\n");
    QTest::newRow("none chosen") << ""
                                 << "Ok" << QByteArray("3\n");
    QTest::newRow("cancelled") << ""
                               << "Cancel" << QByteArray("3\n");
    QTest::newRow("chosen and cancelled") << "a/newer.MO"
                                          << "Cancel" << QByteArray("3\n");
}

void TestPackagePicker::picksAnImage()
{
    QFETCH(QString, name);
    QFETCH(QString, button);
    QFETCH(QByteArray, version);
    addImage("a/newer.MO", 4);
    addImage("same.mo", 3);
    BiosInterface window;
    const DebugLog log;
    const DialogDriver user(tapThenClick(name, button));
    QVERIFY(QMetaObject::invokeMethod(&window, "updateBIOSDialog"));
    QCOMPARE(user.count(), 1); // no message follows, whatever the result
    QCOMPARE(readPanelFile("bios.version"), version);
}

void TestPackagePicker::namedImageIsInstalledAtOnce()
{
    addImage("newer.mo", 4);
    BiosInterface window;
    const DialogDriver user(rejectDialog);
    QVERIFY(QMetaObject::invokeMethod(&window, "updateBIOSDialog",
                                      Q_ARG(QString, QString("/media/usb0/newer.mo"))));
    QCOMPARE(user.count(), 0);
    QCOMPARE(readPanelFile("bios.version"), QByteArray("4"));
    window.updateBIOSDialog("/media/usb0/missing.mo");
    QCOMPARE(user.count(), 0);
    QCOMPARE(readPanelFile("bios.version"), QByteArray("4"));
}

void TestPackagePicker::picksAnAddOn_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("button");
    QTest::addColumn<QByteArray>("version");
    QTest::newRow("newer") << "A/newer.PKG"
                           << "Ok" << QByteArray("4");
    QTest::newRow("not newer") << "same.pkg"
                               << "Ok" << QByteArray("3\n");
    QTest::newRow("of another kind") << "other.pkg"
                                     << "Ok" << QByteArray("3\n");
    QTest::newRow("name of any bytes") << textFromBytes("b\n\xFF.pkg") << "Ok" << QByteArray("5");
    QTest::newRow("none chosen") << ""
                                 << "Ok" << QByteArray("3\n");
    QTest::newRow("chosen and cancelled") << "A/newer.PKG"
                                          << "Cancel" << QByteArray("3\n");
}

void TestPackagePicker::picksAnAddOn()
{
    QFETCH(QString, name);
    QFETCH(QString, button);
    QFETCH(QByteArray, version);
    addImage("A/newer.PKG", 4);
    addImage("b\n\xFF.pkg", 5);
    addImage("same.pkg", 3);
    writePackage(stick + "other.pkg", PackageKind::Firmware, 9, "TALMERO", {{"bios.version", "9"}});
    BiosInterface window;
    const DialogDriver user(tapThenClick(name, button));
    bool result = true;
    QVERIFY(QMetaObject::invokeMethod(&window, "installPackages", Q_RETURN_ARG(bool, result)));
    QVERIFY(!result); // false even after an installation
    QCOMPARE(user.count(), 1);
    QCOMPARE(readPanelFile("bios.version"), version);
}

void TestPackagePicker::pickersWithoutSettingsFile()
{
    addImage("newer.mo", 4);
    BiosInterface window;
    removePanelFile("bios.ini");
    const DialogDriver user([](QDialog &dialog) {
        QVERIFY(dialog.findChildren<QPushButton *>().isEmpty());
        dialog.close();
    });
    window.updateBIOSDialog();
    QVERIFY(!window.installPackages());
    QCOMPARE(user.count(), 2);
    QCOMPARE(readPanelFile("bios.version"), QByteArray("3\n"));
}

PANEL_QTEST_MAIN(TestPackagePicker)
#include "tst_packagepicker.moc"
