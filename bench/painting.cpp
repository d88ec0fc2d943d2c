// Painting of whole pages, and the time from a tap to the painted next page, in the real window.

#include "support/panelplace.h"
#include "support/resulttable.h"
#include "support/shownwindow.h"
#include "widgets/settingsbutton.h"

#include <QApplication>
#include <QImage>
#include <QStackedWidget>
#include <QTest>

#include <cstdio>

namespace {
constexpr int rounds = 200;
constexpr double pageTarget = 4;          // ms
constexpr double tapTarget = 1000.0 / 60; // ms; one frame

std::string sizeText(QSize size)
{
    return std::to_string(size.width()) + 'x' + std::to_string(size.height());
}

QString labelOf(const SettingsButton *pageButton)
{
    return pageButton->objectName().section(':', 0, 0);
}

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
    prepareForWindow();
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
