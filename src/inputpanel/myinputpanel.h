#pragma once

#include "ui_myinputpanelform.h"

#include <QPointer>
#include <QSignalMapper>
#include <QWidget>

/// The keypad's window: ten digits, a dot, a backspace key and "Close". It stays on top of the
/// program's window and leaves the keyboard focus to it.
class MyInputPanel : public QWidget
{
    Q_OBJECT
public:
    /// A hidden keypad without a parent.
    MyInputPanel();

signals:
    /// A key was tapped. The backspace key gives '#'.
    void characterGenerated(QChar character);

    /// The keypad was hidden, by a call or by its button.
    void hidden();

protected:
    bool event(QEvent *e) override;
    void hideEvent(QHideEvent *event) override;

private slots:
    void saveFocusWidget(QWidget *oldFocus, QWidget *newFocus);
    void buttonClicked(QWidget *w);

private:
    Ui_MyInputPanelForm form;
    QPointer<QWidget> lastFocusedWidget; ///< the last one outside the keypad
    QSignalMapper signalMapper;
};
