#include "inputpanel/myinputpanelcontext.h"

#include "inputpanel/keypadposition.h"
#include "inputpanel/myinputpanel.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScreen>
#include <QWindow>

namespace {
constexpr QChar backspaceKey('#');

QRect availablePlace()
{
    return QGuiApplication::primaryScreen()->availableGeometry();
}

QRect placeOf(const QWidget *field)
{
    return {field->mapToGlobal(QPoint(0, 0)), field->size()};
}
} // namespace

MyInputPanelContext::MyInputPanelContext()
    : inputPanel(std::make_unique<MyInputPanel>())
{
    connect(inputPanel.get(), &MyInputPanel::characterGenerated, this,
            &MyInputPanelContext::sendCharacter);
    connect(inputPanel.get(), &MyInputPanel::hidden, this, &MyInputPanelContext::hidden);
}

MyInputPanelContext::~MyInputPanelContext() = default;

QString MyInputPanelContext::identifierName() const
{
    return "MyInputPanelContext";
}

QString MyInputPanelContext::language() const
{
    return "en_US";
}

void MyInputPanelContext::reset()
{
}

bool MyInputPanelContext::isComposing() const
{
    return false;
}

bool MyInputPanelContext::filterEvent(const QEvent *event)
{
    if (event->type() == QEvent::RequestSoftwareInputPanel) {
        targetLineEdit = qobject_cast<QLineEdit *>(QApplication::focusWidget());
        if (targetLineEdit == nullptr) {
            return false;
        }
        emit aboutToShow(targetLineEdit);
        updatePosition();
        showPanel();
        return true;
    }
    if (event->type() == QEvent::CloseSoftwareInputPanel) {
        inputPanel->hide();
        return true;
    }
    return false;
}

void MyInputPanelContext::updatePosition()
{
    const QWidget *widget = QApplication::focusWidget();
    if (widget != nullptr) {
        inputPanel->move(positionAt(widget));
    }
}

QPoint MyInputPanelContext::positionAt(const QWidget *field) const
{
    return keypadPosition(placeOf(field), inputPanel->height(), availablePlace());
}

bool MyInputPanelContext::panelFitsAt(const QWidget *field) const
{
    return availablePlace().contains(QRect(positionAt(field), inputPanel->size()));
}

int MyInputPanelContext::shiftFor(const QWidget *field) const
{
    return keypadShift(placeOf(field), inputPanel->height(), availablePlace());
}

QWidget *MyInputPanelContext::panel() const
{
    return inputPanel.get();
}

void MyInputPanelContext::showPanel()
{
    inputPanel->winId(); // makes the window that the next lines need
    QWindow *window = inputPanel->windowHandle();
    // A window manager may lift a window that fills the screen over one that asks to stay on top,
    // but not over one that belongs to it.
    window->setTransientParent(targetLineEdit->window()->windowHandle());
    // Otherwise each key would take the focus and give it back, and the settings window would turn
    // the screen anew each time. Who gives it the focus all the same gets it back at once.
    window->setFlag(Qt::WindowDoesNotAcceptFocus);
    inputPanel->show();
    inputPanel->raise(); // where no window manager keeps it on top
}

void MyInputPanelContext::sendCharacter(QChar character)
{
    QPointer<QWidget> target = QApplication::focusWidget();
    if (target == nullptr) {
        target = targetLineEdit;
    }
    if (target == nullptr) {
        return;
    }
    if (character == backspaceKey) {
        deleteLastCharacter();
        return;
    }
    QKeyEvent press(QEvent::KeyPress, character.unicode(), Qt::NoModifier, QString(character));
    QCoreApplication::sendEvent(target, &press);
    if (target != nullptr) {
        // A second press without text, deliberately, where a release would be expected.
        QKeyEvent second(QEvent::KeyPress, character.unicode(), Qt::NoModifier, QString());
        QCoreApplication::sendEvent(target, &second);
    }
}

/// Wherever the cursor is: a finger that corrects a typing mistake means the end of the text.
void MyInputPanelContext::deleteLastCharacter()
{
    if (targetLineEdit != nullptr && !targetLineEdit->text().isEmpty()) {
        targetLineEdit->setText(targetLineEdit->text().chopped(1));
    }
}
