// Painting of whole pages, and the time from a tap to the painted next page, in the real window.

#include "shell/biosinterface.h"
#include "shell/pagename.h"
#include "support/panelplace.h"
#include "support/resulttable.h"
#include "widgets/settingsbutton.h"
#include "widgets/startingapplicationaniationbutton.h"

#include <QApplication>
#include <QImage>
#include <QPaintEvent>
#include <QScreen>
#include <QStackedWidget>
#include <QTest>
#include <QWindow>

#include <xcb/xcb.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {
constexpr int rounds = 200;
constexpr int paintLimit = 5000;          // ms; a page that takes longer never comes
constexpr int restTime = 10;              // ms; longer than the toolkit collects updates, 5 ms
constexpr double pageTarget = 4;          // ms
constexpr double tapTarget = 1000.0 / 60; // ms; one frame

/// Notices when a widget has been painted.
class PaintWatcher : public QObject
{
public:
    explicit PaintWatcher(QWidget *widget) { widget->installEventFilter(this); }
    bool hasPainted() const { return m_painted; }

    bool eventFilter(QObject *, QEvent *event) override
    {
        m_painted = m_painted || event->type() == QEvent::Paint;
        return false;
    }

private:
    bool m_painted = false;
};

/// Waits until the X server has done what the toolkit has handed over to it.
void waitForServer()
{
    auto *connection = qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
    std::free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

std::string sizeText(QSize size)
{
    return std::to_string(size.width()) + 'x' + std::to_string(size.height());
}

QString labelOf(const SettingsButton *pageButton)
{
    return pageButton->objectName().section(':', 0, 0);
}

/// The settings window as a finger sees it.
class ShownWindow
{
public:
    ShownWindow()
    {
        m_window.show();
        if (!QTest::qWaitForWindowExposed(&m_window)) {
            qFatal("the window does not show");
        }
    }

    QWidget &widget() { return m_window; }
    QStackedWidget *pages() const { return m_window.findChild<QStackedWidget *>(); }

    QWidget *countDown() const { return m_window.findChild<StartingApplicationAniationButton *>(); }

    /// The buttons of the main settings page that open a page. It must be shown.
    QList<SettingsButton *> pageButtons() const
    {
        QList<SettingsButton *> found;
        const auto buttons = pages()->currentWidget()->findChildren<SettingsButton *>();
        std::copy_if(buttons.begin(), buttons.end(), std::back_inserter(found),
                     [](const SettingsButton *button) {
                         return button->isVisible() && button->objectName().contains(':');
                     });
        return found;
    }

    QWidget *pageOf(const SettingsButton *button) const
    {
        return pages()->widget(pageIndexFromName(button->objectName()));
    }

    QWidget *cancelButton() const
    {
        return pages()->currentWidget()->findChild<SettingsButton *>("cancel");
    }

    /// Milliseconds from a tap on @p target until @p page is painted and on the screen.
    double tap(QWidget *target, QWidget *page)
    {
        const PaintWatcher watcher(page);
        const QPoint at = target->mapTo(&m_window, target->rect().center());
        const auto begin = now();
        QTest::mousePress(m_window.windowHandle(), Qt::LeftButton, {}, at);
        QTest::mouseRelease(m_window.windowHandle(), Qt::LeftButton, {}, at);
        while (!watcher.hasPainted()) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
            if (millisecondsSince(begin) > paintLimit) {
                qFatal("a tap opened no page");
            }
        }
        waitForServer();
        const double time = millisecondsSince(begin);
        QTest::qWait(restTime); // what the tap leaves behind is not the next tap's
        return time;
    }

private:
    BiosInterface m_window;
};

void measurePage(ResultTable &table, QWidget &window, const std::string &page)
{
    std::vector<double> onScreen;
    std::vector<double> inMemory;
    QImage image(window.size(), QImage::Format_RGB32);
    for (int round = 0; round < rounds; ++round) {
        auto begin = now();
        window.repaint();
        waitForServer();
        onScreen.push_back(millisecondsSince(begin));
        begin = now();
        window.render(&image);
        inMemory.push_back(millisecondsSince(begin));
    }
    const std::string what = "paint " + page + ", " + sizeText(window.size());
    table.addSamples(what, onScreen, "ms", pageTarget);
    table.addSamples("  without handing it to the display", inMemory, "ms");
}

void measurePages(ResultTable &table)
{
    ShownWindow window;
    measurePage(table, window.widget(), "countdown page");
    window.tap(window.countDown(), window.pages()->widget(BiosInterface::MainSettingsPage));
    measurePage(table, window.widget(), "main settings page");
    const auto buttons = window.pageButtons();
    for (const SettingsButton *button : buttons) {
        window.pages()->setCurrentWidget(window.pageOf(button));
        QTest::qWait(restTime);
        measurePage(table, window.widget(), "page " + labelOf(button).toStdString());
    }
    window.pages()->setCurrentIndex(BiosInterface::SparePage1);
    QTest::qWait(restTime);
    measurePage(table, window.widget(), "empty page");
}

void measureTaps(ResultTable &table)
{
    ShownWindow window;
    QWidget *mainPage = window.pages()->widget(BiosInterface::MainSettingsPage);
    const std::string size = sizeText(window.widget().size());
    window.tap(window.countDown(), mainPage);
    std::vector<double> back;
    const auto buttons = window.pageButtons();
    for (SettingsButton *button : buttons) {
        std::vector<double> open;
        for (int round = 0; round < rounds; ++round) {
            open.push_back(window.tap(button, window.pageOf(button)));
            back.push_back(window.tap(window.cancelButton(), mainPage));
        }
        table.addSamples("tap to page " + labelOf(button).toStdString() + ", " + size, open, "ms",
                         tapTarget);
    }
    table.addSamples("tap to main settings page, " + size, back, "ms", tapTarget);
}
} // namespace

int main(int argc, char *argv[])
{
    requirePanel();
    useInstantTools();
    silenceDebugText();
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    ResultTable table;
    if (arguments == QStringList("pages")) {
        measurePages(table);
    } else if (arguments == QStringList("taps")) {
        measureTaps(table);
    } else {
        std::fputs("Usage: painting pages|taps\n", stderr);
        return 2;
    }
    return table.exitStatus();
}
