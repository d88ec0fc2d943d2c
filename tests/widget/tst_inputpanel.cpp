#include "inputpanel/myinputpanel.h"
#include "inputpanel/myinputpanelcontext.h"

#include "panelmain.h"
#include "widgets/lineeditwithkeypad.h"
#include "widgets/touchstyle.h"

#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QSignalSpy>
#include <QSpinBox>

#include <memory>

namespace {
struct Key
{
    const char *name;
    const char *text;
    char value;
    int row;
    int column;
};

constexpr Key keys[] = {
    {"panelButton_1", "1", '1', 0, 0}, {"panelButton_2", "2", '2', 0, 1},
    {"panelButton_3", "3", '3', 0, 2}, {"panelButton_4", "4", '4', 1, 0},
    {"panelButton_5", "5", '5', 1, 1}, {"panelButton_6", "6", '6', 1, 2},
    {"panelButton_7", "7", '7', 2, 0}, {"panelButton_8", "8", '8', 2, 1},
    {"panelButton_9", "9", '9', 2, 2}, {"panelButton_dot", ".", '.', 3, 0},
    {"panelButton_0", "0", '0', 3, 1}, {"panelButton_hash", "", '#', 3, 2},
};

struct ReceivedKey
{
    QEvent::Type type;
    int key;
    QString text;
    Qt::KeyboardModifiers modifiers;
};

/// Records its key events. Can delete itself at the first one.
class KeyRecorder : public QLineEdit
{
public:
    using QLineEdit::QLineEdit;
    QList<ReceivedKey> received;
    bool vanishes = false;

protected:
    bool event(QEvent *event) override
    {
        if (event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease) {
            const auto *key = static_cast<QKeyEvent *>(event);
            received += {key->type(), key->key(), key->text(), key->modifiers()};
            if (vanishes) {
                delete this;
                return true;
            }
        }
        return QLineEdit::event(event);
    }
};

/// A window with line edits at the top and at the bottom of the screen.
struct Window : QWidget
{
    LineEditWithKeyPad top{QString(), this};
    LineEditWithKeyPad bottom{QString(), this};
    QSpinBox number{this};

    Window()
    {
        setGeometry(QGuiApplication::primaryScreen()->geometry());
        top.setGeometry(100, 50, 300, 40);
        bottom.setGeometry(100, height() - 60, 300, 40);
        number.setGeometry(500, 50, 200, 40);
        show();
        activateWindow();
        setFocus();
    }
};
} // namespace

class TestInputPanel : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void windowAndForm();
    void keysOfTheForm();
    void backspacePicture();
    void keysEmitTheirCharacter();
    void contextNames();
    void tapShowsItUnderTheField();
    void tapShowsItAboveAFieldAtTheBottom();
    void onlyLineEditsAreServed();
    void ignoresOtherEvents();
    void closeRequestHides();
    void closeKeyHides();
    void leavingTheFieldHides();
    void sendsTwoKeyPresses();
    void vanishingTargetGetsNoSecondEvent();
    void keysGoToTheLastFieldWithoutFocus();
    void backspaceRemovesTheLastCharacter_data();
    void backspaceRemovesTheLastCharacter();
    void ownActivationDoesNotHide();
    void activationGoesBackToTheField();
    void withoutContextNothingShows();

private:
    void tapKey(const char *name) const;
    QPushButton *key(const char *name) const;

    std::unique_ptr<MyInputPanelContext> m_context;
    std::unique_ptr<Window> m_window;
    QWidget *m_panel = nullptr;
};

void TestInputPanel::initTestCase()
{
    QApplication::setStyle(new TouchStyle);
}

void TestInputPanel::init()
{
    m_context = std::make_unique<MyInputPanelContext>();
    installInputContext(m_context.get());
    m_panel = m_context->panel();
    m_window = std::make_unique<Window>();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
}

void TestInputPanel::cleanup()
{
    m_window.reset();
    installInputContext(nullptr);
    m_context.reset();
}

QPushButton *TestInputPanel::key(const char *name) const
{
    return m_panel->findChild<QPushButton *>(name);
}

void TestInputPanel::tapKey(const char *name) const
{
    QTest::mouseClick(key(name), Qt::LeftButton);
}

void TestInputPanel::windowAndForm()
{
    const MyInputPanel panel;
    QVERIFY(!panel.isVisible());
    QVERIFY(panel.parentWidget() == nullptr);
    QCOMPARE(panel.windowType(), Qt::Tool);
    // Qt adds the hints for a title bar.
    const Qt::WindowFlags others = panel.windowFlags() & ~Qt::WindowFlags(Qt::WindowType_Mask)
        & ~(Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint);
    QCOMPARE(others, Qt::WindowStaysOnTopHint);
    QCOMPARE(panel.objectName(), QString("MyInputPanelForm"));
    QCOMPARE(panel.windowTitle(), QString("Input Panel"));
    QCOMPARE(panel.size(), QSize(182, 296));
    for (const char *name : {"verticalLayout", "gridLayout", "horizontalLayout"}) {
        QVERIFY2(panel.findChild<QLayout *>(name) != nullptr, name);
    }
    auto *close = panel.findChild<QPushButton *>("closeButton");
    QCOMPARE(close->text(), QString("Close"));
    QCOMPARE(close->minimumSize(), QSize(0, 50));
    QCOMPARE(close->font().pointSize(), 8);
    QCOMPARE(panel.findChildren<QPushButton *>().size(), 13);
}

void TestInputPanel::keysOfTheForm()
{
    auto *grid = m_panel->findChild<QGridLayout *>("gridLayout");
    for (const Key &expected : keys) {
        QPushButton *button = key(expected.name);
        QVERIFY2(button != nullptr, expected.name);
        QCOMPARE(button->text(), QString(expected.text));
        QCOMPARE(button->property("buttonValue"), QVariant(QChar(expected.value)));
        QCOMPARE(button->focusPolicy(), Qt::NoFocus);
        QCOMPARE(button->minimumSize(), QSize(50, 50));
        QCOMPARE(button->sizePolicy().horizontalPolicy(), QSizePolicy::Minimum);
        QCOMPARE(button->sizePolicy().verticalPolicy(), QSizePolicy::Minimum);
        QCOMPARE(grid->itemAtPosition(expected.row, expected.column)->widget(), button);
    }
    QCOMPARE(key("panelButton_dot")->font().pointSize(), 23);
    QCOMPARE(key("panelButton_dot")->font().weight(), QFont::Bold);
}

void TestInputPanel::backspacePicture()
{
    const QImage picture(":/images/backspace.png");
    QCOMPARE(picture.size(), QSize(34, 22));
    QCOMPARE(key("panelButton_hash")->iconSize(), picture.size());
    key("panelButton_hash")->window()->show(); // reads the picture
    const QPixmap icon = key("panelButton_hash")->icon().pixmap(picture.size());
    constexpr auto format = QImage::Format_ARGB32_Premultiplied;
    QCOMPARE(icon.toImage().convertToFormat(format), picture.convertToFormat(format));
    QCOMPARE(qAlpha(picture.pixel(0, 0)), 0);
    QCOMPARE(qAlpha(picture.pixel(15, 3)), 255);
}

void TestInputPanel::keysEmitTheirCharacter()
{
    MyInputPanel panel;
    QSignalSpy generated(&panel, &MyInputPanel::characterGenerated);
    for (const Key &expected : keys) {
        QTest::mouseClick(panel.findChild<QPushButton *>(expected.name), Qt::LeftButton);
        QCOMPARE(generated.takeFirst().first().toChar(), QChar(expected.value));
    }
    QTest::mouseClick(panel.findChild<QPushButton *>("closeButton"), Qt::LeftButton);
    QCOMPARE(generated.count(), 0);
    QPushButton plain(&panel); // a button without a value
    QMetaObject::invokeMethod(&panel, "buttonClicked", Q_ARG(QWidget *, &plain));
    QCOMPARE(generated.takeFirst().first().toChar(), QChar());
}

void TestInputPanel::contextNames()
{
    QCOMPARE(m_context->identifierName(), QString("MyInputPanelContext"));
    QCOMPARE(m_context->language(), QString("en_US"));
    QVERIFY(!m_context->isComposing());
    m_context->reset();
    QVERIFY(!m_panel->isVisible());
}

void TestInputPanel::tapShowsItUnderTheField()
{
    QTest::mouseClick(&m_window->top, Qt::LeftButton);
    QVERIFY(m_panel->isVisible()); // one tap is enough
    QCOMPARE(m_panel->pos(), QPoint(100, 50 + 40 - 1 + 2));
    QVERIFY(QGuiApplication::inputMethod()->isVisible());
}

void TestInputPanel::tapShowsItAboveAFieldAtTheBottom()
{
    QTest::mouseClick(&m_window->bottom, Qt::LeftButton);
    QVERIFY(m_panel->isVisible());
    QCOMPARE(m_panel->pos(), QPoint(100, m_window->height() - 60 - m_panel->height()));
}

void TestInputPanel::onlyLineEditsAreServed()
{
    const QEvent request(QEvent::RequestSoftwareInputPanel);
    m_window->number.setFocus(); // its line edit passes the focus to the spin box
    QCOMPARE(QApplication::focusWidget(), &m_window->number);
    QVERIFY(!m_context->filterEvent(&request));
    QVERIFY(!m_panel->isVisible());
    m_window->number.clearFocus();
    QVERIFY(QApplication::focusWidget() == nullptr);
    QVERIFY(!m_context->filterEvent(&request));
    QVERIFY(!m_panel->isVisible());
    m_panel->move(7, 9);
    m_context->updatePosition(); // nothing has the focus
    QCOMPARE(m_panel->pos(), QPoint(7, 9));
    m_window->top.setFocus();
    QVERIFY(m_context->filterEvent(&request));
    QVERIFY(m_panel->isVisible());
    QVERIFY(m_panel->pos() != QPoint(7, 9));
}

void TestInputPanel::ignoresOtherEvents()
{
    const QEvent other(QEvent::KeyPress);
    QVERIFY(!m_context->filterEvent(&other));
}

void TestInputPanel::closeRequestHides()
{
    QTest::mouseClick(&m_window->top, Qt::LeftButton);
    const QEvent close(QEvent::CloseSoftwareInputPanel);
    QVERIFY(m_context->filterEvent(&close));
    QVERIFY(!m_panel->isVisible());
    QVERIFY(m_context->filterEvent(&close)); // consumed although the keypad is hidden
}

void TestInputPanel::closeKeyHides()
{
    QTest::mouseClick(&m_window->top, Qt::LeftButton);
    tapKey("closeButton");
    QVERIFY(!m_panel->isVisible());
    QTest::mouseClick(&m_window->top, Qt::LeftButton);
    QVERIFY(m_panel->isVisible());
}

void TestInputPanel::leavingTheFieldHides()
{
    QTest::mouseClick(&m_window->top, Qt::LeftButton);
    QVERIFY(m_panel->isVisible());
    m_window->top.hide();
    QVERIFY(!m_panel->isVisible());
    QTest::mouseClick(&m_window->bottom, Qt::LeftButton);
    QVERIFY(m_panel->isVisible());
    m_window->number.setFocus();
    QVERIFY(!m_panel->isVisible());
}

void TestInputPanel::sendsTwoKeyPresses()
{
    KeyRecorder edit(m_window.get());
    edit.show();
    edit.setFocus();
    tapKey("panelButton_7");
    QCOMPARE(edit.text(), QString("7"));
    QCOMPARE(edit.received.size(), 2);
    for (const ReceivedKey &key : edit.received) {
        QCOMPARE(key.type, QEvent::KeyPress);
        QCOMPARE(key.key, int(Qt::Key_7));
        QCOMPARE(key.modifiers, Qt::NoModifier);
    }
    QCOMPARE(edit.received.first().text, QString("7"));
    QCOMPARE(edit.received.last().text, QString());
}

void TestInputPanel::vanishingTargetGetsNoSecondEvent()
{
    auto *edit = new KeyRecorder(m_window.get());
    edit->vanishes = true;
    edit->show();
    edit->setFocus();
    const QPointer<KeyRecorder> guard(edit);
    tapKey("panelButton_7"); // the edit deletes itself at the first event
    QVERIFY(guard == nullptr);
    tapKey("panelButton_hash");
}

void TestInputPanel::keysGoToTheLastFieldWithoutFocus()
{
    tapKey("panelButton_1"); // no field has had the focus
    QTest::mouseClick(&m_window->top, Qt::LeftButton);
    m_window->top.clearFocus();
    QVERIFY(QApplication::focusWidget() == nullptr);
    tapKey("panelButton_2");
    QCOMPARE(m_window->top.text(), QString("2"));
}

void TestInputPanel::backspaceRemovesTheLastCharacter_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("cursor");
    QTest::addColumn<QString>("left");
    QTest::newRow("empty") << "" << 0 << "";
    QTest::newRow("one") << "1" << 1 << "";
    QTest::newRow("cursor in the middle") << "123" << 2 << "12";
    QTest::newRow("cursor at the start") << "123" << 0 << "12";
}

void TestInputPanel::backspaceRemovesTheLastCharacter()
{
    QFETCH(QString, text);
    QFETCH(int, cursor);
    QFETCH(QString, left);
    KeyRecorder edit(m_window.get());
    edit.setText(text);
    edit.show();
    QTest::mouseClick(&edit, Qt::LeftButton);
    edit.setCursorPosition(cursor);
    tapKey("panelButton_hash");
    QCOMPARE(edit.text(), left);
    QVERIFY(edit.received.isEmpty());
}

void TestInputPanel::ownActivationDoesNotHide()
{
    QTest::mouseClick(&m_window->top, Qt::LeftButton);
    QApplication::setActiveWindow(m_panel); // the field loses the focus and asks the keypad to hide
    QVERIFY(!m_window->top.hasFocus());
    QVERIFY(m_panel->isVisible());
    QApplication::setActiveWindow(m_window.get());
    QVERIFY(m_window->top.hasFocus());
    QVERIFY(m_panel->isVisible());
}

void TestInputPanel::activationGoesBackToTheField()
{
    QTest::mouseClick(&m_window->top, Qt::LeftButton);
    m_panel->activateWindow(); // like a tap without a window manager
    QTRY_VERIFY(m_window->isActiveWindow());
    QTRY_COMPARE(QApplication::focusWidget(), &m_window->top);
    QVERIFY(m_panel->isVisible());
    for (const char *name : {"panelButton_1", "panelButton_dot", "panelButton_2"}) {
        m_panel->activateWindow();
        tapKey(name);
    }
    QCOMPARE(m_window->top.text(), QString("1.2"));
    QVERIFY(m_panel->isVisible());
}

void TestInputPanel::withoutContextNothingShows()
{
    installInputContext(nullptr);
    QTest::mouseClick(&m_window->top, Qt::LeftButton);
    QVERIFY(!m_panel->isVisible());
    QTest::keyClicks(&m_window->top, "12"); // still works as a line edit
    QCOMPARE(m_window->top.text(), QString("12"));
}

PANEL_QTEST_MAIN(TestInputPanel)
#include "tst_inputpanel.moc"
