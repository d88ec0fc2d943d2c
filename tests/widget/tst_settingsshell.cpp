#include "shell/biosinterface.h"

#include "debuglog.h"
#include "faketools.h"
#include "layermodel.h"
#include "panelfiles.h"
#include "panelguard.h"
#include "widgets/settingsbutton.h"
#include "widgets/stackwidgetpage.h"
#include "widgets/startingapplicationaniationbutton.h"

#include <QFrame>
#include <QLabel>
#include <QMetaMethod>
#include <QRegularExpression>
#include <QStackedWidget>
#include <QTest>

#include <memory>
#include <optional>

namespace {
/// The settings window. Its load and save functions record their calls.
class RecordingWindow : public BiosInterface
{
public:
    QStringList calls;
    bool result = true;

    bool loadEthernetSettings() override { return record("load ethernet"); }
    bool loadFiletransferSettings() override { return record("load filetransfer"); }
    bool loadMiscSettings() override { return record("load misc"); }
    bool loadCalibrationSettings() override { return record("load calibration"); }
    bool loadSystemStatusSettings() override { return record("load systemstatus"); }
    bool loadFontSettings() override { return record("load font"); }
    bool loadTimeSettings() override { return record("load time"); }
    bool saveEthernetSettings() override { return record("save ethernet"); }
    bool saveFiletransferSettings() override { return record("save filetransfer"); }
    bool saveMiscSettings() override { return record("save misc"); }
    bool saveCalibrationSettings() override { return record("save calibration"); }
    bool saveFontSettings() override { return record("save font"); }
    bool saveTimeSettings() override { return record("save time"); }

    QStackedWidget *pages() const { return findChild<QStackedWidget *>(); }
    QWidget *page() const { return pages()->currentWidget(); }
    SettingsButton *button(const QString &name) const
    {
        return page()->findChild<SettingsButton *>(name);
    }

private:
    bool record(const QString &call)
    {
        calls += call;
        return result;
    }
};

/// Counts the paint events of a widget.
class PaintCounter : public QObject
{
public:
    explicit PaintCounter(QWidget *widget) { widget->installEventFilter(this); }
    int count() const { return m_count; }

    bool eventFilter(QObject *, QEvent *event) override
    {
        m_count += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }

private:
    int m_count = 0;
};

void tap(QWidget *widget)
{
    if (widget == nullptr || !widget->isVisible()) {
        qFatal("there is no such button to tap");
    }
    QTest::mouseClick(widget, Qt::LeftButton);
}

QRect placeOf(QWidget *widget)
{
    return {widget->mapTo(widget->window(), QPoint(0, 0)), widget->size()};
}
} // namespace

class TestSettingsShell : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void slotsAreInOrder();
    void hasNoSignals();
    void stackHoldsFifteenPages();
    void countDownFillsItsPage();
    void touchedCountDownOpensMainPage();
    void endOfRuntimeShowsMainPageAtOnce();
    void mainPageLayout();
    void mainPageButtonText();
    void pageButtonTextsHaveOneSize_data();
    void pageButtonTextsHaveOneSize();
    void timePageHasNothingToStore();
    void homeKeyNeedsDebugLevel_data();
    void homeKeyNeedsDebugLevel();
    void buttonsWithoutALayoutStayHidden();
    void pageButtonOpensPage_data();
    void pageButtonOpensPage();
    void titleBarLayout();
    void failureIsADebugLine();
    void pagesWithoutActionsDoNothing();
    void buttonWithoutPageOpensCountDown();
    void slotsWithoutASenderDoNothing();
    void labelStyle();
    void destructionOrder();

private:
    std::unique_ptr<FakeTools> m_tools;
    std::unique_ptr<RecordingWindow> m_window;
};

void TestSettingsShell::initTestCase()
{
    requirePanel();
}

void TestSettingsShell::init()
{
    m_tools = std::make_unique<FakeTools>(QStringList{"xrandr", "xset", "xinput"});
    writePanelFile("bios.ini", "");
    m_window = std::make_unique<RecordingWindow>();
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    m_window->goToSettingsPage();
}

void TestSettingsShell::cleanup()
{
    m_window.reset();
    m_tools.reset();
}

void TestSettingsShell::slotsAreInOrder()
{
    const QByteArrayList expected{
        "goToSettingsPage()",         "runApplication()",          "runSettingsUI()",
        "titleBarButtonPressed()",    "loadSettings(int)",         "loadEthernetSettings()",
        "loadFiletransferSettings()", "loadMiscSettings()",        "loadCalibrationSettings()",
        "loadSystemStatusSettings()", "loadFontSettings()",        "loadTimeSettings()",
        "saveSettings(int)",          "saveEthernetSettings()",    "saveFiletransferSettings()",
        "saveMiscSettings()",         "saveCalibrationSettings()", "saveFontSettings()",
        "saveTimeSettings()",         "updateBIOSDialog(QString)", "updateBIOSDialog()",
        "installPackages()",          "slotTimerEdit()",           "slotresize(int)",
        "setScreenOrientation()",     "slotRescueTimesup()"};
    const QMetaObject &meta = BiosInterface::staticMetaObject;
    QByteArrayList found;
    for (int index = meta.methodOffset(); index < meta.methodCount(); ++index) {
        if (meta.method(index).methodType() == QMetaMethod::Slot) {
            found += meta.method(index).methodSignature();
        }
    }
    QCOMPARE(found, expected);
    for (const char *name : {"loadSettings(int)", "saveSettings(int)"}) {
        QCOMPARE(meta.method(meta.indexOfSlot(name)).parameterNames(), QByteArrayList{"pageIndex"});
        QCOMPARE(meta.method(meta.indexOfSlot(name)).typeName(), "void");
    }
    for (const char *name : {"loadMiscSettings()", "saveFontSettings()", "installPackages()"}) {
        QCOMPARE(meta.method(meta.indexOfSlot(name)).typeName(), "bool");
    }
}

void TestSettingsShell::hasNoSignals()
{
    const QMetaObject &meta = BiosInterface::staticMetaObject;
    for (int index = meta.methodOffset(); index < meta.methodCount(); ++index) {
        QVERIFY(meta.method(index).methodType() != QMetaMethod::Signal);
    }
}

void TestSettingsShell::stackHoldsFifteenPages()
{
    QStackedWidget *pages = m_window->pages();
    QCOMPARE(pages->count(), 15);
    QCOMPARE(pages->geometry(), m_window->rect());
    const QRect rect = pages->widget(0)->rect();
    for (int index = 0; index < pages->count(); ++index) {
        auto *page = qobject_cast<StackWidgetPage *>(pages->widget(index));
        QVERIFY(page != nullptr);
        page->resize(rect.size());
        QImage image(rect.size(), QImage::Format_ARGB32_Premultiplied);
        page->render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
        LayerModel model(rect.size(), Qt::black);
        model.addShadow(rect);
        model.addBarShadow(rect);
        index <= 1 ? model.addLinearGradient(rect) : model.addRadialGradient(rect);
        model.addHighlight(rect);
        QCOMPARE(model.difference(image), QString());
    }
    for (const int empty : {5, 8, 12, 13, 14}) {
        QVERIFY(pages->widget(empty)->findChildren<QWidget *>().isEmpty());
    }
}

void TestSettingsShell::countDownFillsItsPage()
{
    m_window->pages()->setCurrentIndex(0);
    auto *button = m_window->page()->findChild<StartingApplicationAniationButton *>();
    QCOMPARE(placeOf(button), m_window->rect().adjusted(19, 19, -19, -19));
}

void TestSettingsShell::touchedCountDownOpensMainPage()
{
    m_window->pages()->setCurrentIndex(0);
    tap(m_window->page()->findChild<StartingApplicationAniationButton *>());
    QCOMPARE(m_window->pages()->currentIndex(), 1);
}

void TestSettingsShell::endOfRuntimeShowsMainPageAtOnce()
{
    const QByteArray script = readPanelFile("runapp.sh");
    writePanelFile("runapp.sh", "exit 0\n");
    m_window->pages()->setCurrentIndex(0);
    const PaintCounter paints(m_window->pages()->widget(1));
    m_window->runApplication();
    QCOMPARE(m_window->pages()->currentIndex(), 1);
    QVERIFY(paints.count() > 0); // before any event was processed
    writePanelFile("runapp.sh", script);
}

void TestSettingsShell::mainPageLayout()
{
    const QRect content = m_window->rect().adjusted(29, 32 + 29, -29, -29);
    const auto place = [this](const char *name) { return placeOf(m_window->button(name)); };
    const QRect fonts = place("Install Fonts:11");
    const QRect ethernet = place("Ethernet:3");
    const QRect transfer = place("File Transfer:4");
    const QRect status = place("System Status:9");
    const QRect misc = place("Miscellaneous:6");
    const QRect calibration = place("Calibration:7");
    QCOMPARE(fonts.left(), content.left());
    QCOMPARE(transfer.right(), content.right());
    QCOMPARE(calibration.bottom(), content.bottom());
    QCOMPARE(ethernet.left() - fonts.right() - 1, 11);
    QCOMPARE(transfer.left() - ethernet.right() - 1, 11);
    QCOMPARE(status.top() - fonts.bottom() - 1, 11);
    QCOMPARE(status.left(), fonts.left());
    QCOMPARE(misc.left(), ethernet.left());
    QCOMPARE(calibration.left(), transfer.left());
    QCOMPARE(ethernet.top(), fonts.top());
    QCOMPARE(transfer.top(), fonts.top());
    QCOMPARE(misc.top(), status.top());
    QCOMPARE(calibration.top(), status.top());

    auto *heading = m_window->page()->findChild<QLabel *>();
    QCOMPARE(heading->text(), QString("Settings"));
    QCOMPARE(heading->palette().color(QPalette::WindowText), QColor(192, 104, 31));
    QCOMPARE(heading->font().pixelSize(), 28);
    QCOMPARE(heading->font().weight(), QFont::Bold);
    QVERIFY(heading->font().italic());
    QCOMPARE(heading->maximumHeight(), 50);
    QVERIFY(placeOf(heading).bottom() < fonts.top());

    QFrame *line = nullptr;
    for (auto *frame : m_window->page()->findChildren<QFrame *>()) {
        line = frame->frameShape() == QFrame::HLine ? frame : line;
    }
    QVERIFY(line != nullptr);
    QCOMPARE(line->frameShadow(), QFrame::Sunken);
    QVERIFY(placeOf(line).bottom() < placeOf(heading).top());
    QVERIFY(placeOf(line).top() > content.top() + 20);
}

void TestSettingsShell::mainPageButtonText()
{
    SettingsButton *run = nullptr;
    for (auto *button : m_window->page()->findChildren<SettingsButton *>()) {
        // page buttons have a name, and the title is at the top
        run = button->objectName().isEmpty() && placeOf(button).top() > 0 ? button : run;
    }
    QVERIFY(run != nullptr);
    SettingsButton model("Run Application", run->parentWidget());
    model.setGeometry(run->geometry());
    QVERIFY(run->grab().toImage() == model.grab().toImage());
}

void TestSettingsShell::pageButtonTextsHaveOneSize_data()
{
    QTest::addColumn<QSize>("size");
    for (const QSize size :
         {QSize(800, 600), QSize(1024, 768), QSize(1280, 800), QSize(480, 800)}) {
        QTest::addRow("%dx%d", size.width(), size.height()) << size;
    }
}

void TestSettingsShell::pageButtonTextsHaveOneSize()
{
    QFETCH(QSize, size);
    m_window->resize(size);
    const auto buttons
        = m_window->page()->findChildren<SettingsButton *>(QRegularExpression(".*:[0-9]+"));
    QCOMPARE(buttons.size(), 6);
    const QFont font = buttons.first()->font();
    for (const SettingsButton *button : buttons) {
        QCOMPARE(button->font().pixelSize(), font.pixelSize());
        const QString text = button->objectName().section(':', 0, 0);
        QVERIFY2(QFontMetrics(font).horizontalAdvance(text) < button->width(), qPrintable(text));
    }
    QVERIFY(size.width() < 800 || font.pixelSize() == 28);
    QVERIFY(font.pixelSize() >= 15); // readable at arm's length
}

void TestSettingsShell::timePageHasNothingToStore()
{
    const QByteArray settings = "app.mouse=1\n";
    writePanelFile("bios.ini", settings);
    BiosInterface window;
    QVERIFY(window.loadTimeSettings());
    QVERIFY(window.saveTimeSettings());
    QCOMPARE(readPanelFile("bios.ini"), settings);
}

void TestSettingsShell::homeKeyNeedsDebugLevel_data()
{
    QTest::addColumn<QByteArray>("settings");
    QTest::addColumn<int>("level");
    QTest::newRow("absent") << QByteArray() << 0;
    QTest::newRow("0") << QByteArray("bios.debug=0\n") << 0;
    QTest::newRow("1") << QByteArray("bios.debug=1\n") << 1;
    QTest::newRow("20") << QByteArray("bios.debug=20\n") << 20;
    QTest::newRow("negative") << QByteArray("bios.debug=-1\n") << -1;
    QTest::newRow("not a number") << QByteArray("bios.debug=yes\n") << 0;
}

void TestSettingsShell::homeKeyNeedsDebugLevel()
{
    QFETCH(QByteArray, settings);
    QFETCH(int, level);
    writePanelFile("bios.ini", settings);
    RecordingWindow window;
    QCOMPARE(window.getDebugLevel(), level);
    window.show();
    window.goToSettingsPage();
    SettingsButton *homeKey = window.button("Home Key:10");
    QCOMPARE(homeKey != nullptr, level > 0);
    if (homeKey != nullptr) {
        QVERIFY(placeOf(homeKey).top() > placeOf(window.button("System Status:9")).bottom());
        QCOMPARE(placeOf(homeKey).left(), placeOf(window.button("System Status:9")).left());
        tap(homeKey);
        QCOMPARE(window.pages()->currentIndex(), 10);
        QCOMPARE(window.calls, QStringList());
    }
}

void TestSettingsShell::buttonsWithoutALayoutStayHidden()
{
    QStringList unplaced;
    for (QWidget *widget : QApplication::allWidgets()) {
        auto *button = qobject_cast<SettingsButton *>(widget);
        if (button != nullptr && button->window() != m_window.get()) {
            unplaced += button->objectName();
            QVERIFY(!button->isVisible());
            QVERIFY(!button->isEnabled());
        }
    }
    unplaced.sort();
    QCOMPARE(unplaced, (QStringList{"Backlight:5", "COM Port:2", "Volume:8"}));
    for (auto *button : m_window->page()->findChildren<SettingsButton *>()) {
        QVERIFY(button->isVisible());
        QVERIFY(button->isEnabled());
        QVERIFY(button->objectName() != "ok" && button->objectName() != "cancel");
    }
    // A title bar without Cancel and OK leaves these buttons as direct children of the window.
    for (auto *button :
         m_window->findChildren<SettingsButton *>(QString(), Qt::FindDirectChildrenOnly)) {
        QVERIFY(!button->isVisible());
    }
}

void TestSettingsShell::pageButtonOpensPage_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("index");
    QTest::addColumn<QStringList>("onCancel");
    QTest::addColumn<QStringList>("onOk");
    QTest::newRow("fonts") << "Install Fonts:11" << 11 << QStringList{"load font"}
                           << QStringList{"load font", "save font"};
    QTest::newRow("ethernet") << "Ethernet:3" << 3 << QStringList{"load ethernet"}
                              << QStringList{"load ethernet", "save ethernet"};
    QTest::newRow("file transfer") << "File Transfer:4" << 4 << QStringList{"load filetransfer"}
                                   << QStringList{"load filetransfer", "save filetransfer"};
    QTest::newRow("status") << "System Status:9" << 9 << QStringList{"load systemstatus"}
                            << QStringList{"load systemstatus"};
    QTest::newRow("misc") << "Miscellaneous:6" << 6 << QStringList{"load misc"}
                          << QStringList{"load misc", "save misc"};
    QTest::newRow("calibration") << "Calibration:7" << 7 << QStringList{"load calibration"}
                                 << QStringList{"load calibration"};
}

void TestSettingsShell::pageButtonOpensPage()
{
    QFETCH(QString, name);
    QFETCH(int, index);
    QFETCH(QStringList, onCancel);
    QFETCH(QStringList, onOk);
    const DebugLog log;
    tap(m_window->button(name));
    QCOMPARE(m_window->pages()->currentIndex(), index);
    QCOMPARE(m_window->calls, onCancel);
    tap(m_window->button("cancel"));
    QCOMPARE(m_window->pages()->currentIndex(), 1);
    QCOMPARE(m_window->calls, onCancel);
    m_window->calls.clear();
    tap(m_window->button(name));
    tap(m_window->button("ok"));
    QCOMPARE(m_window->pages()->currentIndex(), 1);
    QCOMPARE(m_window->calls, onOk);
    QCOMPARE(log.lines(), QStringList());
}

void TestSettingsShell::titleBarLayout()
{
    for (const char *name : {"Ethernet:3", "Calibration:7", "Install Fonts:11"}) {
        tap(m_window->button(name));
        SettingsButton *cancel = m_window->button("cancel");
        SettingsButton *ok = m_window->button("ok");
        QCOMPARE(placeOf(cancel), QRect(0, 0, 100, 32));
        QCOMPARE(placeOf(ok), QRect(m_window->width() - 100, 0, 100, 32));
        QCOMPARE(cancel->font().pixelSize(), 18);
        QCOMPARE(ok->font().pixelSize(), 18);
        QWidget *title = m_window->childAt(m_window->width() / 2, 16);
        QCOMPARE(placeOf(title), QRect(100, 0, m_window->width() - 200, 32));
        QCOMPARE(title->font().pixelSize(), 20);
        const QImage released = title->grab().toImage();
        QTest::mousePress(title, Qt::LeftButton); // the title is not a button
        QCOMPARE(title->grab().toImage(), released);
        QTest::mouseRelease(title, Qt::LeftButton);
        QVERIFY(m_window->pages()->currentIndex() != 1);
        tap(cancel);
    }
    QWidget *title = m_window->childAt(m_window->width() / 2, 16);
    QCOMPARE(placeOf(title), QRect(0, 0, m_window->width(), 32));
}

void TestSettingsShell::failureIsADebugLine()
{
    m_window->result = false;
    const DebugLog log;
    tap(m_window->button("Install Fonts:11"));
    QCOMPARE(m_window->pages()->currentIndex(), 11); // the page stays shown
    tap(m_window->button("ok"));
    QCOMPARE(m_window->pages()->currentIndex(), 1);
    // A failing save reports "Load" as well.
    const QString line("\"Load settings at page 11 error.\"");
    QCOMPARE(log.lines(), (QStringList{line, line}));
}

void TestSettingsShell::pagesWithoutActionsDoNothing()
{
    m_window->result = false;
    const DebugLog log;
    for (const int index : {-1, 0, 1, 2, 5, 8, 10, 13, 14, 15, 1000}) {
        m_window->loadSettings(index);
        m_window->saveSettings(index);
    }
    for (const int index : {7, 9, 12}) {
        m_window->saveSettings(index);
    }
    QCOMPARE(m_window->calls, QStringList());
    QCOMPARE(log.lines(), QStringList());
    m_window->loadSettings(12);
    QCOMPARE(m_window->calls, QStringList{"load time"});
}

void TestSettingsShell::buttonWithoutPageOpensCountDown()
{
    SettingsButton nameless;
    connect(&nameless, &SettingsButton::buttonClicked, m_window.get(),
            &BiosInterface::runSettingsUI);
    nameless.setObjectName("Ethernet");
    emit nameless.buttonClicked();
    QCOMPARE(m_window->pages()->currentIndex(), 0);
    nameless.setObjectName("far:99"); // there is no such page, so the current one stays
    emit nameless.buttonClicked();
    QCOMPARE(m_window->pages()->currentIndex(), 0);
    QCOMPARE(m_window->calls, QStringList());
}

void TestSettingsShell::slotsWithoutASenderDoNothing()
{
    tap(m_window->button("Ethernet:3"));
    m_window->calls.clear();
    for (const char *slot : {"runSettingsUI", "titleBarButtonPressed"}) {
        QVERIFY(QMetaObject::invokeMethod(m_window.get(), slot));
        QCOMPARE(m_window->pages()->currentIndex(), 3);
    }
    QCOMPARE(m_window->calls, QStringList());
}

void TestSettingsShell::labelStyle()
{
    QLabel label("Lan 1");
    BiosInterface::setWidgetWithStyle(&label);
    QCOMPARE(label.font().pixelSize(), 24);
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        QCOMPARE(label.palette().color(group, QPalette::WindowText), QColor(Qt::white));
    }
}

void TestSettingsShell::destructionOrder()
{
    writePanelFile("bios.ini", "bios.debug=1\n");
    auto *window = new RecordingWindow;
    QStringList deleted;
    const auto watch = [&deleted](QObject *object, const QString &name) {
        connect(object, &QObject::destroyed, object, [&deleted, name] { deleted += name; });
    };
    watch(window->findChild<StartingApplicationAniationButton *>(), "countdown");
    for (QWidget *widget : QApplication::allWidgets()) {
        if (widget->objectName().contains(':') && widget->window() != m_window.get()
            && !deleted.contains(widget->objectName())) {
            watch(widget, widget->objectName());
        }
    }
    QStackedWidget *pages = window->pages();
    for (int index = 0; index < pages->count(); ++index) {
        watch(pages->widget(index), QString("page %1").arg(index));
    }
    watch(pages, "stack");
    m_window.reset(); // this deletes the buttons without a layout too
    deleted.clear();
    delete window;
    const QStringList expected{"countdown",       "COM Port:2",      "Ethernet:3",
                               "File Transfer:4", "Backlight:5",     "Miscellaneous:6",
                               "Calibration:7",   "Volume:8",        "System Status:9",
                               "Home Key:10",     "Install Fonts:11"};
    QCOMPARE(deleted.mid(0, expected.size()), expected);
    QStringList pageNames;
    for (int index = 14; index >= 0; --index) {
        pageNames += QString("page %1").arg(index);
    }
    QCOMPARE(deleted.mid(expected.size()), pageNames + QStringList{"stack"});
}

QTEST_MAIN(TestSettingsShell)
#include "tst_settingsshell.moc"
