#include "dialogdriver.h"
#include "diskfiles.h"
#include "faketools.h"
#include "inputpanel/myinputpanel.h"
#include "panelfiles.h"
#include "picturebook.h"
#include "settingspage.h"
#include "shell/biosinterface.h"
#include "stoppedclock.h"
#include "widgets/settingsbutton.h"
#include "widgets/startingapplicationaniationbutton.h"

#include <QApplication>
#include <QComboBox>
#include <QPushButton>
#include <QStackedWidget>
#include <QTableWidget>
#include <QTest>
#include <QToolButton>

#include <memory>

namespace {
constexpr char stick[] = "/media/usb0";
constexpr char unreadable[] = "warning-file";
constexpr int manyFiles = 40; // more than any screen shows

/// The settings window on its way through all pages. Its tools are stand-ins: what they would
/// really print depends on the machine.
class SettingsPictures
{
public:
    explicit SettingsPictures(PictureBook &book);

    void takeAll();

private:
    void showWindow();
    QWidget *page() const;
    template <typename Widget> Widget *child(const char *name = "") const;
    void open(const char *button) const;
    void leave(const char *button) const;
    void choose(const char *mode) const;
    QTableWidget *sortedTable() const;

    void takeCountDown();
    void takeMainPage();
    void takeEthernet();
    void takeKeypad(const char *edit, const QString &name);
    void takeFileTransfer();
    void takeWarning(const char *kind, const QString &file, const QString &name);
    void takeFonts();
    void takeMiscellaneous();
    void takeList(QComboBox *box, const QString &name);
    void takeStatus();
    void takePicker(const std::function<void()> &open, const QString &name);
    void takeLists();
    void takeHomeKey();

    PictureBook &m_book;
    FakeTools m_tools{{"sleep", "xCal", "xinput", "xrandr", "xset", "date", "hwclock", "du"}};
    std::unique_ptr<BiosInterface> m_window;
};

SettingsPictures::SettingsPictures(PictureBook &book)
    : m_book(book)
{
    m_tools.setBody("du", "printf '3.2M\\t/home/dest/\\n'");
    shellBytes("ip address add 192.168.0.10/24 broadcast + dev eth0"); // as DHCP would
}

void SettingsPictures::takeAll()
{
    showWindow();
    takeCountDown();
    takeMainPage();
    takeEthernet();
    takeFonts();
    takeMiscellaneous();
    open("Calibration:7");
    m_book.takeDetail("calibration");
    takeStatus();
    takeFileTransfer(); // takes all off the stick
    takeLists();
    takeHomeKey();
}

void SettingsPictures::showWindow()
{
    m_window.reset(); // there is one input method
    m_window = std::make_unique<BiosInterface>();
    m_window->show();
    m_window->activateWindow(); // no window manager does it, and no real touch
    if (!QTest::qWaitForWindowActive(m_window.get())) {
        qFatal("the window does not become active");
    }
}

QWidget *SettingsPictures::page() const
{
    return m_window->findChild<QStackedWidget *>()->currentWidget();
}

/// A part of the page that is shown.
template <typename Widget> Widget *SettingsPictures::child(const char *name) const
{
    auto *found = *name == '\0' ? page()->findChild<Widget *>()
                                : page()->findChild<Widget *>(QLatin1String(name));
    if (found == nullptr) {
        qFatal("the page has no \"%s\"", name);
    }
    return found;
}

void SettingsPictures::open(const char *button) const
{
    m_window->goToSettingsPage();
    QTest::mouseClick(child<SettingsButton>(button), Qt::LeftButton);
}

void SettingsPictures::leave(const char *button) const
{
    QTest::mouseClick(child<SettingsButton>(button), Qt::LeftButton);
}

void SettingsPictures::choose(const char *mode) const
{
    QTest::mouseClick(child<QWidget>(mode), Qt::LeftButton);
}

/// The rows come in the order of the folder on the disk, which differs from one kernel to the next.
QTableWidget *SettingsPictures::sortedTable() const
{
    auto *table = child<QTableWidget>();
    table->sortItems(0);
    return table;
}

void SettingsPictures::takeCountDown()
{
    m_book.take("countdown");
    auto *countDown = child<StartingApplicationAniationButton>();
    QTest::mousePress(countDown, Qt::LeftButton);
    m_book.takeDetail("countdown-touched");
    QTest::mouseRelease(countDown, Qt::LeftButton);
}

void SettingsPictures::takeMainPage()
{
    m_book.take("main-page");
    auto *button = child<SettingsButton>("Ethernet:3");
    QTest::mousePress(button, Qt::LeftButton);
    m_book.takeDetail("main-page-touched");
    QTest::mouseRelease(button, Qt::LeftButton);
}

void SettingsPictures::takeEthernet()
{
    open("Ethernet:3");
    m_book.take("ethernet");
    takeKeypad("ip_address_lineEdit2", "ethernet-keypad-above");
    choose("manual_input_radioButton");
    takeKeypad("ip_address_lineEdit", "ethernet-keypad-below");
    leave("cancel");
}

void SettingsPictures::takeKeypad(const char *edit, const QString &name)
{
    QTest::mouseClick(child<QWidget>(edit), Qt::LeftButton);
    m_book.take(name);
    for (QWidget *window : QApplication::topLevelWidgets()) {
        if (const auto *keypad = qobject_cast<MyInputPanel *>(window)) {
            QTest::mouseClick(keypad->findChild<QPushButton *>("closeButton"), Qt::LeftButton);
        }
    }
}

void SettingsPictures::takeFileTransfer()
{
    open("File Transfer:4");
    sortedTable();
    m_book.take("file-transfer");
    choose("firmware_radioButton");
    sortedTable();
    m_book.takeDetail("file-transfer-firmware");
    takeWarning("firmware_radioButton", "usb0/firmware/runtime-other.fmw", "warning-oem");
    takeWarning("application_radioButton", "usb0/apps/line-1-next.kpc", "warning-version");
    takeWarning("application_radioButton", "usb0/apps/line-1-k25t.kpc", "warning-model");
    takeWarning("application_radioButton", "usb0/apps/line-1.kpc", unreadable);
}

/// Installs a file that is refused.
void SettingsPictures::takeWarning(const char *kind, const QString &file, const QString &name)
{
    const DialogDriver driver([this, &name](QDialog &dialog) {
        m_book.takeDetail(name);
        clickButton(dialog, "OK");
    });
    open("File Transfer:4");
    choose(kind);
    QTableWidget *table = sortedTable();
    tapRow(table, rowOf(table, file));
    if (name == unreadable) {
        emptyFolder(stick); // pulled
    }
    leave("ok");
    if (driver.count() != 1) {
        qFatal("no warning for %s", qPrintable(file));
    }
}

void SettingsPictures::takeFonts()
{
    open("Install Fonts:11");
    QTableWidget *table = sortedTable();
    m_book.takeDetail("install-fonts");
    tapRow(table, 0);
    tapRow(table, 2);
    m_book.take("install-fonts-chosen");
    leave("cancel");
}

void SettingsPictures::takeMiscellaneous()
{
    open("Miscellaneous:6");
    StoppedClock::setTime(page());
    m_book.take("miscellaneous");
    const auto boxes = page()->findChildren<QComboBox *>();
    takeList(boxes.at(0), "miscellaneous-screen-saving");
    takeList(boxes.at(1), "miscellaneous-brightness");
    leave("cancel");
}

void SettingsPictures::takeList(QComboBox *box, const QString &name)
{
    QTest::mouseClick(box, Qt::LeftButton);
    m_book.take(name);
    box->hidePopup();
}

void SettingsPictures::takeStatus()
{
    open("System Status:9");
    m_book.take("system-status");
    takePicker([this] { QTest::mouseClick(child<QToolButton>(), Qt::LeftButton); }, "bios-picker");
    takePicker([this] { m_window->installPackages(); }, "add-on-picker");
    leave("cancel");
}

void SettingsPictures::takePicker(const std::function<void()> &open, const QString &name)
{
    const DialogDriver driver([this, &name](QDialog &dialog) {
        auto *table = dialog.findChild<QTableWidget *>();
        table->sortItems(0);
        tapRow(table, 0);
        m_book.take(name);
        clickButton(dialog, "Cancel");
    });
    open();
    if (driver.count() != 1) {
        qFatal("no picker %s", qPrintable(name));
    }
}

/// No stick, then more files than the screen shows.
void SettingsPictures::takeLists()
{
    open("File Transfer:4");
    m_book.takeDetail("file-transfer-empty");
    for (int file = 1; file <= manyFiles; ++file) {
        writeFile(QString("%1/line-%2.kpc").arg(stick).arg(file, 2, 10, QChar('0')).toLocal8Bit());
    }
    open("File Transfer:4");
    sortedTable();
    m_book.take("file-transfer-long");
}

/// What a panel shows whose settings ask for debug output.
void SettingsPictures::takeHomeKey()
{
    writePanelFile("bios.ini", "bios.debug=1\n");
    showWindow();
    m_window->goToSettingsPage();
    m_book.take("main-page-debug");
    open("Home Key:10");
    m_book.takeDetail("home-key");
    open("Ethernet:3");
    m_book.takeDetail("ethernet-disabled");
}
} // namespace

void takeSettingsPictures(PictureBook &book)
{
    SettingsPictures(book).takeAll();
}
