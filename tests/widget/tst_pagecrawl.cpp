// Opens every page and touches each widget once, with the panel's own tools. Run it under the
// sanitizers or valgrind (tests/long/valgrind.sh), which find the faults.

#include "dialogdriver.h"
#include "factory/kpixeltestwidget.h"
#include "factory/softwaresetup.h"
#include "faketools.h"
#include "inputpanel/myinputpanel.h"
#include "panelfiles.h"
#include "panelguard.h"
#include "panelmain.h"
#include "shell/biosinterface.h"
#include "shell/pagename.h"
#include "system/paths.h"
#include "widgets/settingsbutton.h"
#include "widgets/startingapplicationaniationbutton.h"
#include "widgets/touchstyle.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QPointer>
#include <QStackedWidget>
#include <QTableWidget>
#include <QTextEdit>

#include <memory>

namespace {
constexpr int arrowWidth = 5;       // px from the right end of a spin box, well within its arrows
constexpr int slowLimit = 120'000;  // ms; valgrind is slow
constexpr int doubleClickTime = 20; // ms; short because the test waits it out for each list

// All pages except the empty ones, which have no button.
constexpr const char *pageButtons[]
    = {"Ethernet:3",      "File Transfer:4", "Miscellaneous:6", "Calibration:7",
       "System Status:9", "Home Key:10",     "Install Fonts:11"};

template <typename Widget> Widget *visibleWindow()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        auto *window = qobject_cast<Widget *>(widget);
        if (window != nullptr && window->isVisible()) {
            return window;
        }
    }
    return nullptr;
}

QPoint touchPlace(const QWidget *widget)
{
    const QRect area = widget->rect();
    const bool hasArrows = qobject_cast<const QAbstractSpinBox *>(widget) != nullptr;
    return hasArrows ? QPoint(area.right() - arrowWidth, area.height() / 4) : area.center();
}

bool isTitleBarButton(const QWidget *widget)
{
    return widget->objectName() == QLatin1String("ok")
        || widget->objectName() == QLatin1String("cancel");
}

bool canBeTouched(const QWidget *widget)
{
    return widget != nullptr && widget->isVisible() && widget->isEnabled();
}
} // namespace

class TestPageCrawl : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void settingsPages_data();
    void settingsPages();
    void countDown();
    void ports();
    void packages_data();
    void packages();
    void functionsWithoutAButton();
    void rescue();
    void factoryPages();

private:
    void showCountDown();
    void openSettings();
    void open(const char *name);
    QWidget *currentPage() const;
    void leave(const char *name);
    void touchEach(const QWidget *parent);
    void touch(QWidget *widget);
    void touchWhatOpened();
    void useDialog(QDialog &dialog);

    FakeTools m_tools{{"sleep", "xCal", "xinput"}}; // tools that pause or wait for a finger
    std::unique_ptr<BiosInterface> m_window;
    QString m_firstInDialogs; ///< text of the button that is touched first in a dialog
    int m_keys = 0;
    int m_pixelTests = 0;
};

void TestPageCrawl::initTestCase()
{
    requirePanel();
    QApplication::setDoubleClickInterval(doubleClickTime);
    writePanelFile("runapp.sh", "exit 0\n");
}

void TestPageCrawl::showCountDown()
{
    m_window.reset();
    writePanelFile("bios.ini",
                   "bios.debug=1\napp.buzzer=1\napp.orientation=horizontal\n"
                   "app.screensaving=10\nbios.brightness=0.9\nethernet.eth0=dhcp\n"
                   "ethernet.eth1=192.168.0.20\n");
    m_window = std::make_unique<BiosInterface>();
    m_window->show();
    m_window->activateWindow(); // there is no window manager
    QVERIFY(QTest::qWaitForWindowActive(m_window.get(), slowLimit));
}

void TestPageCrawl::openSettings()
{
    showCountDown();
    QTest::mouseClick(m_window->findChild<StartingApplicationAniationButton *>(), Qt::LeftButton);
}

QWidget *TestPageCrawl::currentPage() const
{
    return m_window->findChild<QStackedWidget *>()->currentWidget();
}

void TestPageCrawl::open(const char *name)
{
    m_window->goToSettingsPage();
    auto *button = m_window->findChild<SettingsButton *>(name);
    QVERIFY(button != nullptr);
    QTest::mouseClick(button, Qt::LeftButton);
    const auto *pages = m_window->findChild<QStackedWidget *>();
    QCOMPARE(pages->currentIndex(), pageIndexFromName(name));
}

void TestPageCrawl::leave(const char *name)
{
    QTest::mouseClick(currentPage()->findChild<SettingsButton *>(name), Qt::LeftButton);
    const auto *pages = m_window->findChild<QStackedWidget *>();
    QCOMPARE(pages->currentIndex(), int(BiosInterface::MainSettingsPage));
}

void TestPageCrawl::touchEach(const QWidget *parent)
{
    QList<QPointer<QWidget>> widgets;
    for (QWidget *widget : parent->findChildren<QWidget *>()) {
        if (widget->window() == parent->window()) {
            widgets += widget;
        }
    }
    for (const QPointer<QWidget> &widget : widgets) {
        if (canBeTouched(widget) && !isTitleBarButton(widget)) {
            touch(widget);
        }
    }
}

void TestPageCrawl::touch(QWidget *widget)
{
    QTest::mouseClick(widget, Qt::LeftButton, {}, touchPlace(widget));
    QCoreApplication::processEvents();
    touchWhatOpened();
}

/// Uses the list of a combo box, the keypad or a pixel test.
void TestPageCrawl::touchWhatOpened()
{
    if (const QWidget *popup = QApplication::activePopupWidget()) {
        const auto *list = popup->findChild<QAbstractItemView *>();
        QVERIFY(list != nullptr);
        // A combo box ignores a release within the double-click time after it opened its list.
        const auto closesPopup = [list] {
            if (QApplication::activePopupWidget() != nullptr) {
                QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                                  list->viewport()->rect().center());
            }
            return QApplication::activePopupWidget() == nullptr;
        };
        QTRY_VERIFY_WITH_TIMEOUT(closesPopup(), slowLimit);
    }
    if (const auto *keypad = visibleWindow<MyInputPanel>()) {
        for (QAbstractButton *key : keypad->findChildren<QAbstractButton *>()) {
            QTest::mouseClick(key, Qt::LeftButton);
            ++m_keys;
        }
        QVERIFY(!keypad->isVisible()); // the last key closes it
    }
    if (visibleWindow<KPixelTestWidget>() != nullptr) {
        ++m_pixelTests;
        while (auto *test = visibleWindow<KPixelTestWidget>()) {
            QTest::mouseClick(test, Qt::LeftButton);
        }
    }
}

void TestPageCrawl::useDialog(QDialog &dialog)
{
    for (auto *table : dialog.findChildren<QTableWidget *>()) {
        table->selectRow(0);
    }
    for (auto *button : dialog.findChildren<QAbstractButton *>()) {
        if (button->text() == m_firstInDialogs) {
            QTest::mouseClick(button, Qt::LeftButton);
        }
    }
    touchEach(&dialog);
}

void TestPageCrawl::settingsPages_data()
{
    QTest::addColumn<QByteArray>("wayOut");
    QTest::addColumn<QString>("firstInDialogs");
    QTest::addColumn<int>("dialogs"); // how many at least
    QTest::newRow("cancel") << QByteArray("cancel") << "Cancel" << 1;
    QTest::newRow("ok") << QByteArray("ok") << "" << 1;
}

void TestPageCrawl::settingsPages()
{
    QFETCH(const QByteArray, wayOut);
    QFETCH(const QString, firstInDialogs);
    QFETCH(const int, dialogs);
    m_firstInDialogs = firstInDialogs;
    m_keys = 0;
    const DialogDriver driver([this](QDialog &dialog) { useDialog(dialog); });
    openSettings();
    for (const char *name : pageButtons) {
        open(name);
        touchEach(currentPage());
        leave(wayOut);
    }
    QVERIFY(m_keys > 0);
    QVERIFY(driver.count() >= dialogs);
    for (auto *button : currentPage()->findChildren<SettingsButton *>()) {
        if (button->objectName().isEmpty()) { // only the button that starts the runtime has no name
            QTest::mouseClick(button, Qt::LeftButton);
        }
    }
    m_window.reset();
}

void TestPageCrawl::countDown()
{
    showCountDown();
    // The end of the count starts the runtime.
    QTRY_COMPARE_WITH_TIMEOUT(m_window->findChild<QStackedWidget *>()->currentIndex(),
                              int(BiosInterface::MainSettingsPage), slowLimit);
}

/// Saves each port with DHCP and then with a fixed address.
void TestPageCrawl::ports()
{
    openSettings();
    for (const char *mode : {"auto_detect_radioButton", "manual_input_radioButton"}) {
        open("Ethernet:3");
        for (const char *port : {"", "2"}) {
            auto *button = currentPage()->findChild<QWidget *>(QString(mode) + port);
            QVERIFY(button != nullptr);
            QTest::mouseClick(button, Qt::LeftButton);
        }
        leave("ok");
    }
}

void TestPageCrawl::packages_data()
{
    QTest::addColumn<QString>("choice");
    QTest::addColumn<int>("refused"); // packages for other panels
    QTest::newRow("application") << "application_radioButton" << 2;
    QTest::newRow("firmware") << "firmware_radioButton" << 1;
}

/// Installs each package on the stick.
void TestPageCrawl::packages()
{
    QFETCH(const QString, choice);
    QFETCH(const int, refused);
    const DialogDriver driver([this](QDialog &dialog) { useDialog(dialog); });
    openSettings();
    for (int row = 0, rows = 1; row < rows; ++row) {
        open("File Transfer:4");
        QTest::mouseClick(currentPage()->findChild<QWidget *>(choice), Qt::LeftButton);
        auto *table = currentPage()->findChild<QTableWidget *>();
        rows = table->rowCount();
        table->setCurrentCell(row, 0);
        leave("ok");
    }
    QCOMPARE(driver.count(), refused);
}

/// Calls public functions that no button calls.
void TestPageCrawl::functionsWithoutAButton()
{
    m_firstInDialogs.clear();
    const DialogDriver driver([this](QDialog &dialog) { useDialog(dialog); });
    openSettings();
    QVERIFY(!m_window->installPackages());
    QVERIFY(driver.count() >= 1);
    const QStringList names = QDir(Paths::biosFolder).entryList(QDir::Files);
    QCOMPARE(m_window->findFiles(QDir(Paths::biosFolder), names, "bios.debug"),
             QStringList("bios.ini"));
    m_window->echoEnviromentProcess({});
}

void TestPageCrawl::rescue()
{
    m_tools.setBody("xinput", "[ $1 = --list ] && echo 'PenMount id=9' || echo 'button[1]=down'\n");
    openSettings();
    m_tools.forgetCalls();
    QTRY_VERIFY_WITH_TIMEOUT(m_tools.calls().contains("xCal"), slowLimit);
    m_tools.setBody("xinput", {});
    m_window.reset();
}

void TestPageCrawl::factoryPages()
{
    QApplication::setStyle(new TouchStyle);
    SoftwareSetup window;
    m_tools.setBody("sleep", "exec /usr/bin/sleep \"$@\""); // the echo tests need the real pause
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window, slowLimit));
    const auto *result = window.findChild<QTextEdit *>("resultView");
    bool hasVerdict = false; // which the message of another test can replace at once
    connect(result, &QTextEdit::textChanged, this,
            [&] { hasVerdict |= result->toPlainText().contains("Test "); });
    touchEach(window.findChild<QStackedWidget *>()->currentWidget());
    for (auto *button : window.findChildren<QAbstractButton *>()) {
        if (button->text() == "Save" || button->text() == "Test") {
            touch(button);
        }
    }
    QCOMPARE(window.findChild<QStackedWidget *>()->currentIndex(), 1);
    touchEach(window.findChild<QStackedWidget *>()->currentWidget());
    QCOMPARE(m_pixelTests, 1);
    QTRY_VERIFY_WITH_TIMEOUT(hasVerdict, slowLimit);
}

PANEL_QTEST_MAIN(TestPageCrawl)
#include "tst_pagecrawl.moc"
