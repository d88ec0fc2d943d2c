#include "settingspage.h"

#include "layermodel.h"
#include "panelfiles.h"
#include "shell/pagename.h"
#include "widgets/settingsbutton.h"

#include <QApplication>
#include <QMouseEvent>
#include <QStackedWidget>
#include <QTest>

namespace {
constexpr int dragStep = 10;     // px
constexpr int dragInterval = 10; // ms between the steps; a faster drag is a flick, which scrolls on
constexpr int restTime = 120;    // ms of rest before the lift, for the same reason

void activate(QWidget *window)
{
    window->activateWindow(); // there is no window manager
    if (!QTest::qWaitForWindowActive(window)) {
        qFatal("the window does not get the focus");
    }
}

void sendMouse(QWidget *widget, QEvent::Type type, QPoint at)
{
    const bool moves = type == QEvent::MouseMove;
    QMouseEvent event(type, at, widget->mapToGlobal(at), moves ? Qt::NoButton : Qt::LeftButton,
                      type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton, {});
    QApplication::sendEvent(widget, &event);
}
} // namespace

SettingsPage::SettingsPage(const QString &buttonName, const QByteArray &settings, Start start,
                           const ToolLimits &limits)
    : m_buttonName(buttonName)
{
    writePanelFile("bios.ini", settings);
    m_window = std::make_unique<BiosInterface>(nullptr, limits);
    m_window->show();
    if (start == OpensPage) {
        open();
    }
}

QWidget *SettingsPage::page() const
{
    return m_window->findChild<QStackedWidget *>()->widget(pageIndexFromName(m_buttonName));
}

bool SettingsPage::hasTitle(const QString &title) const
{
    const auto buttons = page()->findChildren<SettingsButton *>();
    if (buttons.size() != 3 || buttons.at(0)->objectName() != QLatin1String("cancel")
        || buttons.at(2)->objectName() != QLatin1String("ok")) {
        return false;
    }
    // SettingsButton has no getter for its text, so compare it with a button of the expected text.
    SettingsButton same(title);
    same.setFont(buttons.at(1)->font());
    same.setPressEnabled(false);
    same.resize(buttons.at(1)->size());
    return paintedImage(same) == paintedImage(*buttons.at(1));
}

void SettingsPage::open() const
{
    m_window->goToSettingsPage();
    QTest::mouseClick(m_window->findChild<SettingsButton *>(m_buttonName), Qt::LeftButton);
}

void SettingsPage::leave(const char *name) const
{
    QTest::mouseClick(page()->findChild<SettingsButton *>(name), Qt::LeftButton);
}

void loseAndRegainFocus(QWidget *window)
{
    activate(window);
    {
        QWidget other;
        other.show();
        activate(&other);
    }
    activate(window);
}

QStringList rowTexts(const QTableWidget *table)
{
    QStringList texts;
    for (int row = 0; row < table->rowCount(); ++row) {
        texts += table->item(row, 0)->text();
    }
    return texts;
}

int rowOf(const QTableWidget *table, const QString &name)
{
    const auto row = int(rowTexts(table).indexOf(name));
    if (row < 0) {
        qFatal("%s is not in the table", qPrintable(name));
    }
    return row;
}

void tapRow(QTableWidget *table, int row, Qt::Edge end)
{
    const int y = table->visualRect(table->model()->index(row, 0)).center().y();
    const int x = end == Qt::RightEdge ? table->viewport()->width() - 10 : 10;
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, QPoint(x, y));
}

void dragTable(const QTableWidget *table, int distance)
{
    QWidget *viewport = table->viewport();
    const QPoint start = viewport->rect().center();
    sendMouse(viewport, QEvent::MouseButtonPress, start);
    const int step = distance < 0 ? -dragStep : dragStep;
    for (int moved = step; qAbs(moved) <= qAbs(distance); moved += step) {
        QTest::qWait(dragInterval);
        sendMouse(viewport, QEvent::MouseMove, start + QPoint(0, moved));
    }
    QTest::qWait(restTime);
    sendMouse(viewport, QEvent::MouseButtonRelease, start + QPoint(0, distance));
}
