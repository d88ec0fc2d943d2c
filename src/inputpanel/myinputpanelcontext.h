#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

#include <memory>

class MyInputPanel;
class QEvent;
class QLineEdit;
class QWidget;

/// The input method of the settings window: shows the keypad by the line edit that asks for it
/// and turns its keys into key events. installInputContext() makes it the application's.
class MyInputPanelContext : public QObject
{
    Q_OBJECT
public:
    /// Makes a hidden keypad.
    MyInputPanelContext();
    ~MyInputPanelContext() override;

    QString identifierName() const;
    QString language() const;
    void reset();
    bool isComposing() const;

    /// Shows the keypad on QEvent::RequestSoftwareInputPanel if a line edit has the focus, hides
    /// it on QEvent::CloseSoftwareInputPanel.
    /// Result: whether the event was of use; false for any other event.
    bool filterEvent(const QEvent *event);

    /// Moves the keypad under the focus widget, or above it where it would leave the screen at
    /// the bottom. It is never shifted sideways. Does nothing if nothing has the focus.
    void updatePosition();

    /// Whether the whole keypad would be on the screen if @p field asked for it.
    bool panelFitsAt(const QWidget *field) const;

    /// How many pixels @p field must move down for the keypad to be whole above it; 0 if it need
    /// not, or if that would not help.
    int shiftFor(const QWidget *field) const;

    /// The keypad's window.
    QWidget *panel() const;

signals:
    /// The keypad is about to be placed at @p field and shown.
    void aboutToShow(QWidget *field);

    /// The keypad was hidden.
    void hidden();

private slots:
    void sendCharacter(QChar character);

private:
    void showPanel();
    QPoint positionAt(const QWidget *field) const;
    void deleteLastCharacter();

    std::unique_ptr<MyInputPanel> inputPanel;
    QPointer<QLineEdit> targetLineEdit; ///< the line edit that last asked for the keypad
};
