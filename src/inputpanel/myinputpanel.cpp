#include "inputpanel/myinputpanel.h"

#include <QApplication>
#include <QIcon>

/// Registers the pictures explicitly, because they are in a static library. The macro must be used
/// outside any namespace.
static void registerPictures()
{
    Q_INIT_RESOURCE(myinputpanel);
}

MyInputPanel::MyInputPanel()
    : QWidget(nullptr, Qt::Tool | Qt::WindowStaysOnTopHint)
{
    registerPictures();
    form.setupUi(this);
    connect(qApp, &QApplication::focusChanged, this, &MyInputPanel::saveFocusWidget);
    QPushButton *const keys[]
        = {form.panelButton_0, form.panelButton_1, form.panelButton_2,   form.panelButton_3,
           form.panelButton_4, form.panelButton_5, form.panelButton_6,   form.panelButton_7,
           form.panelButton_8, form.panelButton_9, form.panelButton_dot, form.panelButton_hash};
    for (QPushButton *key : keys) {
        signalMapper.setMapping(key, static_cast<QWidget *>(key));
        connect(key, &QPushButton::clicked, &signalMapper, qOverload<>(&QSignalMapper::map));
    }
    connect(&signalMapper, &QSignalMapper::mappedObject, this,
            [this](QObject *key) { buttonClicked(static_cast<QWidget *>(key)); });
}

bool MyInputPanel::event(QEvent *e)
{
    if (e->type() == QEvent::WindowActivate && lastFocusedWidget != nullptr) {
        lastFocusedWidget->window()->activateWindow();
    }
    return QWidget::event(e);
}

void MyInputPanel::showEvent(QShowEvent *event)
{
    // The first picture loads Qt's picture plugins: 3 percent of the instructions to the program's
    // first frame if the form reads it (tests/panel/tst_startinstructions.sh).
    if (form.panelButton_hash->icon().isNull()) {
        form.panelButton_hash->setIcon(QIcon(":/images/backspace.png"));
    }
    QWidget::showEvent(event);
}

void MyInputPanel::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    emit hidden();
}

void MyInputPanel::saveFocusWidget(QWidget *, QWidget *newFocus)
{
    if (newFocus != nullptr && newFocus != this && !isAncestorOf(newFocus)) {
        lastFocusedWidget = newFocus;
    }
}

void MyInputPanel::buttonClicked(QWidget *w)
{
    emit characterGenerated(qvariant_cast<QChar>(w->property("buttonValue")));
}
