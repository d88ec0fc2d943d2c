// Shows every page on every screen size of the panels, with the fonts of both model series. No
// text may be cut, no widget may lie outside the screen, and fonts must be as large as possible.

#include "fakescreen.h"
#include "faketools.h"
#include "inputpanel/myinputpanel.h"
#include "panelfiles.h"
#include "panelmain.h"
#include "shell/biosinterface.h"
#include "shell/pagename.h"
#include "widgets/lineeditwithkeypad.h"
#include "widgets/radiobutton.h"
#include "widgets/settingsbutton.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QDateTimeEdit>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QStackedWidget>
#include <QStyleOptionButton>
#include <QStyleOptionComboBox>
#include <QStyleOptionSpinBox>
#include <QTableWidget>
#include <QToolButton>
#include <QWindow>

#include <algorithm>
#include <memory>
#include <utility>

namespace {
constexpr QSize screenSizes[]
    = {{640, 480},  {800, 480},  {480, 800},  {800, 600},  {600, 800},  {1024, 600},
       {1024, 768}, {768, 1024}, {1280, 800}, {800, 1280}, {1366, 768}, {1920, 1080}};
constexpr const char *models[] = {"RV-K25T", "K07"};
constexpr const char *pageButtons[]
    = {"Ethernet:3",      "File Transfer:4", "Miscellaneous:6", "Calibration:7",
       "System Status:9", "Home Key:10",     "Install Fonts:11"};
constexpr char longAddress[] = "255.255.255.255";
constexpr int smallestFont = 16; // px; readable at arm's length

QRect placeIn(const QWidget *parent, const QWidget *widget)
{
    return {widget->mapTo(parent, QPoint(0, 0)), widget->size()};
}

QSize textSize(const QWidget *widget, const QString &text)
{
    return {widget->fontMetrics().horizontalAdvance(text), widget->fontMetrics().height()};
}

/// Whether a text of @p size fits into @p place.
bool holds(const QRect &place, QSize size)
{
    return place.width() >= size.width() && place.height() >= size.height();
}

bool labelHoldsText(const QLabel *label)
{
    const QRect place = label->contentsRect();
    const int flags = int(label->alignment()) | (label->wordWrap() ? Qt::TextWordWrap : 0);
    const QRect text = label->fontMetrics().boundingRect(place, flags, label->text());
    // The same with the colon tied to the word before it: no colon has a line of its own.
    const QRect tied = label->fontMetrics().boundingRect(
        place, flags, QString(label->text()).replace(" :", QString(QChar::Nbsp) + ':'));
    return holds(place, text.size()) && tied.height() == text.height();
}

bool radioButtonHoldsText(const RadioButton *button)
{
    QStyleOptionButton option;
    option.initFrom(button);
    const QRect place
        = button->style()->subElementRect(QStyle::SE_RadioButtonContents, &option, button);
    const QRect indicator
        = button->style()->subElementRect(QStyle::SE_RadioButtonIndicator, &option, button);
    return holds(place, textSize(button, button->text())) && button->rect().contains(place)
        && button->rect().contains(indicator);
}

bool listBoxHoldsTexts(const QComboBox *box)
{
    QStyleOptionComboBox option;
    option.initFrom(box);
    const QRect place = box->style()->subControlRect(QStyle::CC_ComboBox, &option,
                                                     QStyle::SC_ComboBoxEditField, box);
    for (int index = 0; index < box->count(); ++index) {
        if (!holds(place, textSize(box, box->itemText(index)))) {
            return false;
        }
    }
    return true;
}

/// Whether the whole text of a line edit is visible; in a narrow edit it would scroll.
bool editHoldsText(const QLineEdit *edit, const QString &text)
{
    QStyleOptionFrame option;
    option.initFrom(edit);
    option.lineWidth = edit->style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &option, edit);
    const QRect place = edit->style()->subElementRect(QStyle::SE_LineEditContents, &option, edit);
    return holds(place, textSize(edit, text));
}

bool holdsText(const QWidget *widget)
{
    if (const auto *label = qobject_cast<const QLabel *>(widget)) {
        return labelHoldsText(label);
    }
    if (const auto *radio = qobject_cast<const RadioButton *>(widget)) {
        return radioButtonHoldsText(radio);
    }
    if (const auto *box = qobject_cast<const QComboBox *>(widget)) {
        return listBoxHoldsTexts(box);
    }
    if (const auto *time = qobject_cast<const QDateTimeEdit *>(widget)) {
        const auto *edit = time->findChild<QLineEdit *>();
        return time->rect().contains(placeIn(time, edit)) && editHoldsText(edit, time->text());
    }
    if (const auto *edit = qobject_cast<const LineEditWithKeyPad *>(widget)) {
        return editHoldsText(edit, longAddress);
    }
    if (const auto *button = qobject_cast<const QToolButton *>(widget)) {
        return holds(button->contentsRect(), textSize(button, button->text()));
    }
    return true; // a SettingsButton shrinks its text, and a table scrolls
}

QString nameOf(const QWidget *widget)
{
    const QVariant text = widget->property("text");
    return QString("%1 \"%2\"").arg(widget->metaObject()->className(), text.toString());
}

/// The widgets of the page, without those of the title bar.
QList<QWidget *> contentsOf(const QWidget *page)
{
    QList<QWidget *> contents;
    for (auto *widget : page->findChildren<QWidget *>(Qt::FindDirectChildrenOnly)) {
        if (widget->isVisible() && qobject_cast<SettingsButton *>(widget) == nullptr) {
            contents += widget;
        }
    }
    return contents;
}

/// The first fault in the layout of a page; empty if there is none.
QString faultOf(const QWidget *page)
{
    const auto widgets = page->findChildren<QWidget *>(Qt::FindDirectChildrenOnly);
    for (int index = 0; index < widgets.size(); ++index) {
        const QWidget *widget = widgets.at(index);
        if (!widget->isVisible()) {
            continue;
        }
        if (!page->rect().contains(widget->geometry())) {
            return "outside: " + nameOf(widget);
        }
        if (!holdsText(widget)) {
            return "cut: " + nameOf(widget);
        }
        for (const QWidget *other : widgets.mid(index + 1)) {
            if (other->isVisible() && other->geometry().intersects(widget->geometry())) {
                return nameOf(widget) + " overlaps " + nameOf(other);
            }
        }
    }
    return {};
}

/// Opens the list of @p box. Result: whether the screen shows all of its rows.
bool listShowsAllRows(QComboBox *box)
{
    box->showPopup();
    const QAbstractItemView *list = box->view();
    const QModelIndex first = list->model()->index(0, 0);
    const QModelIndex last = list->model()->index(box->count() - 1, 0);
    const QRect rows = list->visualRect(first).united(list->visualRect(last));
    const bool shown = box->screen()->geometry().contains(list->window()->geometry())
        && rows.top() >= 0 && rows.bottom() < list->viewport()->height()
        && list->visualRect(first).height() >= list->fontMetrics().height();
    box->hidePopup();
    return shown;
}

/// The settings window on a panel of the model @p model with a screen of the size @p size.
class Panel
{
public:
    Panel(QSize size, const QByteArray &model)
    {
        setPrimaryScreenSize(size);
        writePanelFile("model", model);
        writePanelFile("bios.ini",
                       "bios.debug=1\nethernet.eth0=10.0.0.1\nethernet.eth1=10.0.0.2\n");
        m_window = std::make_unique<BiosInterface>();
        m_window->show();
        m_window->activateWindow(); // there is no window manager
        if (!QTest::qWaitForWindowActive(m_window.get())) {
            qFatal("the window does not get the focus");
        }
    }

    QWidget *open(const char *button) const
    {
        m_window->goToSettingsPage();
        QTest::mouseClick(m_window->findChild<SettingsButton *>(button), Qt::LeftButton);
        return shownPage();
    }
    void leave(const char *button) const
    {
        QTest::mouseClick(shownPage()->findChild<SettingsButton *>(button), Qt::LeftButton);
    }
    QWidget *shownPage() const { return m_window->findChild<QStackedWidget *>()->currentWidget(); }
    BiosInterface *window() const { return m_window.get(); }

private:
    std::unique_ptr<BiosInterface> m_window;
};

MyInputPanel *keypad()
{
    for (QWidget *window : QApplication::topLevelWidgets()) {
        if (auto *panel = qobject_cast<MyInputPanel *>(window)) {
            return panel;
        }
    }
    return nullptr;
}
} // namespace

class TestEveryScreen : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void nothingIsCut_data();
    void nothingIsCut();
    void keypadIsWhole_data();
    void keypadIsWhole();
    void fontsAsBuilt_data();
    void fontsAsBuilt();
    void rowsShrinkBeforeFonts();
    void fontsShrinkTogether();
    void fontsGrowAgain();
    void endlessWord();
    void narrowAddresses();
    void pageMakesRoomForTheKeypad();
    void pageStaysWhileAFingerIsDown();

private:
    void addScreens();

    std::unique_ptr<FakeTools> m_tools;
    QSize m_screen = QGuiApplication::primaryScreen()->size();
};

void TestEveryScreen::init()
{
    m_tools = std::make_unique<FakeTools>(
        QStringList{"xrandr", "xset", "xinput", "ifconfig", "dhclient", "du", "xCal"});
    m_tools->setBody("ifconfig", "echo 'eth0  Link encap:Ethernet  HWaddr 00:11:22:AA:BB:CC'");
    m_tools->setBody("du", "printf '1023M\\t/home/dest/\\n'");
}

void TestEveryScreen::cleanup()
{
    m_tools.reset();
    setPrimaryScreenSize(m_screen);
}

void TestEveryScreen::addScreens()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QByteArray>("model");
    for (const QSize size : screenSizes) {
        for (const char *model : models) {
            QTest::addRow("%dx%d, %s", size.width(), size.height(), model)
                << size << QByteArray(model);
        }
    }
}

void TestEveryScreen::nothingIsCut_data()
{
    addScreens();
}

void TestEveryScreen::nothingIsCut()
{
    QFETCH(const QSize, size);
    QFETCH(const QByteArray, model);
    const Panel panel(size, model);
    QCOMPARE(panel.window()->size(), size);
    QCOMPARE(faultOf(panel.shownPage()), QString());
    panel.window()->goToSettingsPage();
    QCOMPARE(faultOf(panel.shownPage()), QString());
    for (const char *button : pageButtons) {
        const QWidget *page = panel.open(button);
        QCOMPARE(page->size(), size);
        QVERIFY2(faultOf(page).isEmpty(), qPrintable(button + (": " + faultOf(page))));
        for (QWidget *widget : contentsOf(page)) {
            QVERIFY2(widget->font().pixelSize() >= smallestFont, qPrintable(nameOf(widget)));
            if (auto *box = qobject_cast<QComboBox *>(widget)) {
                QVERIFY2(listShowsAllRows(box), qPrintable(box->itemText(0)));
            }
        }
    }
}

void TestEveryScreen::keypadIsWhole_data()
{
    addScreens();
}

void TestEveryScreen::keypadIsWhole()
{
    QFETCH(const QSize, size);
    QFETCH(const QByteArray, model);
    const Panel panel(size, model);
    const QWidget *page = panel.open("Ethernet:3");
    for (LineEditWithKeyPad *edit : page->findChildren<LineEditWithKeyPad *>()) {
        QTest::mouseClick(edit, Qt::LeftButton);
        QTRY_VERIFY(keypad()->isVisible());
        const QRect screen(QPoint(0, 0), size);
        const QRect field = placeIn(panel.window(), edit);
        QVERIFY2(screen.contains(keypad()->geometry()), qPrintable(edit->objectName()));
        QVERIFY2(screen.contains(field), qPrintable(edit->objectName()));
        QVERIFY(!keypad()->geometry().intersects(field));
    }
}

void TestEveryScreen::fontsAsBuilt_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QByteArray>("model");
    QTest::addColumn<int>("font");
    for (const QSize size : {QSize(800, 600), QSize(1024, 600), QSize(1024, 768), QSize(768, 1024),
                             QSize(1280, 800), QSize(1366, 768), QSize(1920, 1080)}) {
        QTest::addRow("%dx%d", size.width(), size.height()) << size << QByteArray("RV-K25T") << 28;
    }
    QTest::newRow("640x480, small font") << QSize(640, 480) << QByteArray("K07") << 20;
    QTest::newRow("800x480, small font") << QSize(800, 480) << QByteArray("K07") << 20;
    QTest::newRow("800x600, small font") << QSize(800, 600) << QByteArray("K21") << 20;
}

/// On a large screen all widgets inherit the font of the window, except captions and edits.
void TestEveryScreen::fontsAsBuilt()
{
    QFETCH(const QSize, size);
    QFETCH(const QByteArray, model);
    QFETCH(const int, font);
    const Panel panel(size, model);
    for (const char *button : pageButtons) {
        for (const QWidget *widget : contentsOf(panel.open(button))) {
            const bool caption = qobject_cast<const QLabel *>(widget) != nullptr
                && !widget->font().italic(); // the headings of the ports are not captions
            const bool sized = caption
                || qobject_cast<const LineEditWithKeyPad *>(widget) != nullptr
                || qobject_cast<const QToolButton *>(widget) != nullptr;
            QVERIFY2(widget->font().pixelSize() == (sized ? 24 : font), qPrintable(nameOf(widget)));
            QVERIFY(widget->font().bold());
        }
    }
}

/// On the Ethernet page, rows get lower before fonts get smaller.
void TestEveryScreen::rowsShrinkBeforeFonts()
{
    const auto look = [](QSize size, const char *model) {
        const Panel panel(size, model);
        const auto *row = panel.open("Ethernet:3")->findChild<RadioButton *>();
        return std::pair(row->height(), row->font().pixelSize());
    };
    QCOMPARE(look({1024, 768}, "RV-K25T"), std::pair(44, 28));
    const auto [lowRow, fullFont] = look({800, 600}, "RV-K25T"); // leaves room for the keypad
    QVERIFY(lowRow < 44);
    QCOMPARE(fullFont, 28);
    const auto [lowestRow, smallFont] = look({800, 480}, "RV-K25T");
    QVERIFY(lowestRow < lowRow);
    QVERIFY(smallFont < 28);
}

void TestEveryScreen::fontsShrinkTogether()
{
    const Panel panel({480, 800}, "RV-K25T");
    const QWidget *page = panel.open("Miscellaneous:6");
    const int rowFont = page->findChild<RadioButton *>()->font().pixelSize();
    QVERIFY(rowFont < 28);
    QCOMPARE(page->findChild<QLabel *>()->font().pixelSize(), 24 * rowFont / 28);
    QCOMPARE(page->findChild<QComboBox *>()->font().pixelSize(), rowFont);
    QCOMPARE(page->findChild<QDateTimeEdit *>()->font().pixelSize(), rowFont);
    for (const auto *button : page->findChildren<SettingsButton *>()) {
        QCOMPARE(button->font().pixelSize(), button->objectName().isEmpty() ? 20 : 18);
    }
}

/// Fonts grow back to full size when the screen is turned back.
void TestEveryScreen::fontsGrowAgain()
{
    const Panel panel({800, 600}, "RV-K25T");
    const QWidget *page = panel.open("Miscellaneous:6");
    const QWidget *row = page->findChild<RadioButton *>();
    setPrimaryScreenSize({480, 800});
    QCOMPARE(panel.window()->size(), QSize(480, 800));
    QVERIFY(row->font().pixelSize() < 28);
    QCOMPARE(faultOf(page), QString());
    setPrimaryScreenSize({800, 600});
    QCOMPARE(row->font().pixelSize(), 28);
    QCOMPARE(page->findChild<QLabel *>()->font().pixelSize(), 24);
    QCOMPARE(faultOf(page), QString());
}

/// A word that no font could fit is cut; the rest of the page stays readable.
void TestEveryScreen::endlessWord()
{
    writePanelFile("bios.version", QByteArray(500, '7'));
    const Panel panel({800, 600}, "RV-K25T");
    const QWidget *page = panel.open("System Status:9");
    for (const QWidget *widget : contentsOf(page)) {
        QVERIFY(widget->font().pixelSize() >= smallestFont);
    }
    QCOMPARE(panel.window()->size(), QSize(800, 600));
    writePanelFile("bios.version", "3");
}

/// The columns fit with their full spacing here, but not if that is the spacing of the rows, too.
void TestEveryScreen::narrowAddresses()
{
    m_tools->setBody("ifconfig", "echo 'eth0  Link encap:Ethernet  HWaddr 02:00:00:00:00:01'");
    const Panel panel({600, 800}, "RV-K25T");
    QCOMPARE(faultOf(panel.open("System Status:9")), QString());
}

/// The page moves down if the keypad fits neither above nor below the edit, and back afterwards.
void TestEveryScreen::pageMakesRoomForTheKeypad()
{
    const Panel panel({800, 480}, "K07");
    const QWidget *page = panel.open("Ethernet:3");
    const auto edits = page->findChildren<LineEditWithKeyPad *>();
    const auto *stack = panel.window()->findChild<QStackedWidget *>();
    QTest::mouseClick(edits.at(0), Qt::LeftButton);
    QTRY_VERIFY(keypad()->isVisible());
    QVERIFY(stack->y() > 0);
    QCOMPARE(keypad()->y(), 0);
    QCOMPARE(panel.window()->grab().toImage().pixelColor(400, stack->y() - 1), QColor(Qt::black));
    QTest::mouseClick(keypad()->findChild<QPushButton *>("closeButton"), Qt::LeftButton);
    QTRY_COMPARE(stack->y(), 0);

    QTest::mouseClick(edits.at(0), Qt::LeftButton);
    QTRY_VERIFY(stack->y() > 0);
    QTest::mouseClick(edits.at(3), Qt::LeftButton); // the keypad fits above this edit
    QTRY_COMPARE(stack->y(), 0);
    QVERIFY(keypad()->isVisible());

    QTest::mouseClick(edits.at(1), Qt::LeftButton);
    QTRY_VERIFY(stack->y() > 0);
    panel.leave("cancel");
    QTRY_COMPARE(stack->y(), 0);
    QVERIFY(!keypad()->isVisible());
}

/// The page must not move under a finger that is down.
void TestEveryScreen::pageStaysWhileAFingerIsDown()
{
    const Panel panel({800, 480}, "K07");
    const QWidget *page = panel.open("Ethernet:3");
    const auto *stack = panel.window()->findChild<QStackedWidget *>();
    auto *disable = page->findChild<RadioButton *>();
    QTest::mouseClick(page->findChild<LineEditWithKeyPad *>(), Qt::LeftButton);
    QTRY_VERIFY(stack->y() > 0);
    QWindow *window = panel.window()->windowHandle();
    const QPoint place = placeIn(panel.window(), disable).center();
    QTest::mousePress(window, Qt::LeftButton, {}, place);
    QTRY_VERIFY(!keypad()->isVisible()); // the edit lost the focus
    QTest::qWait(200);                   // over two checks for a finger: the page must not move
    QVERIFY(stack->y() > 0);
    QTest::mouseRelease(window, Qt::LeftButton, {}, place);
    QTRY_COMPARE(stack->y(), 0);
    QVERIFY(disable->isChecked());
}

PANEL_QTEST_MAIN(TestEveryScreen)
#include "tst_everyscreen.moc"
