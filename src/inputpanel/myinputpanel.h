#pragma once

#include "ui_myinputpanelform.h"

#include <QPointer>
#include <QSignalMapper>
#include <QWidget>

/// The keypad's window with ten digits, a dot, a backspace key and a "Close" button. It stays on
/// top of the program's window and does not keep the keyboard focus.
class MyInputPanel : public QWidget
{
    Q_OBJECT
public:
    /// Creates a hidden top-level window.
    MyInputPanel();

signals:
    /// A key was tapped. The backspace key sends '#'.
    void characterGenerated(QChar character);

    /// The keypad was hidden, by a call or by its "Close" button.
    void hidden();

protected:
    bool event(QEvent *e) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private slots:
    void saveFocusWidget(QWidget *oldFocus, QWidget *newFocus);
    void buttonClicked(QWidget *w);

private:
    Ui_MyInputPanelForm form;
    QPointer<QWidget> lastFocusedWidget; ///< the last focus widget outside the keypad
    QSignalMapper signalMapper;
};
