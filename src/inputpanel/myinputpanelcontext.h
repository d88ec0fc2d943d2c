#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

#include <memory>

class MyInputPanel;
class QEvent;
class QLineEdit;
class QWidget;

/// The input method of the settings window. It shows the keypad next to the line edit that
/// requests it and turns taps on its keys into key events. Install it with installInputContext().
class MyInputPanelContext : public QObject
{
    Q_OBJECT
public:
    /// Creates the keypad, hidden.
    MyInputPanelContext();
    ~MyInputPanelContext() override;

    QString identifierName() const;
    QString language() const;
    void reset();
    bool isComposing() const;

    /// Shows the keypad on QEvent::RequestSoftwareInputPanel if a line edit has the focus. Hides
    /// the keypad on QEvent::CloseSoftwareInputPanel. Returns whether it did either.
    bool filterEvent(const QEvent *event);

    /// Moves the keypad below the focus widget, or above it if there is no room below. Never moves
    /// it sideways to make it fit. Does nothing without a focus widget.
    void updatePosition();

    /// Returns whether the whole keypad would be on the screen if @p field requested it.
    bool panelFitsAt(const QWidget *field) const;

    /// Returns how many pixels @p field must move down to make room for the keypad above it.
    /// Returns 0 if the keypad fits already, or if the screen is too low for both.
    int shiftFor(const QWidget *field) const;

    /// Returns the keypad's window.
    QWidget *panel() const;

signals:
    /// The keypad is about to be shown next to @p field.
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
    QPointer<QLineEdit> targetLineEdit; ///< the last one to request the keypad
};
