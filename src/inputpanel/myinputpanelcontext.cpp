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
    inputPanel->winId(); // creates the QWindow for the next lines
    QWindow *window = inputPanel->windowHandle();
    // A window manager may raise a full-screen window above one that stays on top, but not above
    // the full-screen window's own transient windows.
    window->setTransientParent(targetLineEdit->window()->windowHandle());
    // Otherwise each tap moves the focus to the keypad and back, and the settings window rotates
    // the screen each time it is activated. MyInputPanel::event() handles window managers that
    // ignore this flag.
    window->setFlag(Qt::WindowDoesNotAcceptFocus);
    inputPanel->show();
    inputPanel->raise(); // needed if no window manager keeps it on top
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
        // A second press without text instead of a release, on purpose: line edits ignore it, and
        // this sequence is part of the interface.
        QKeyEvent second(QEvent::KeyPress, character.unicode(), Qt::NoModifier, QString());
        QCoreApplication::sendEvent(target, &second);
    }
}

/// Deletes at the end of the text, wherever the cursor is: users correct what they typed last.
void MyInputPanelContext::deleteLastCharacter()
{
    if (targetLineEdit != nullptr && !targetLineEdit->text().isEmpty()) {
        targetLineEdit->setText(targetLineEdit->text().chopped(1));
    }
}
