// Measures painting of whole pages, and the time from a tap until the next page is painted.

#include "inputpanel/platformbridge.h"
#include "support/panelplace.h"
#include "support/resulttable.h"
#include "support/shownwindow.h"
#include "widgets/settingsbutton.h"

#include <QApplication>
#include <QImage>
#include <QLineEdit>
#include <QPushButton>
#include <QStackedWidget>
#include <QTest>

#include <cstdio>

namespace {
constexpr int usualRounds = 200;
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

void measurePage(ResultTable &table, QWidget &window, const std::string &page, int rounds)
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

void measurePages(ResultTable &table, int rounds)
{
    ShownWindow window;
    measurePage(table, window.widget(), "countdown page", rounds);
    window.tap(window.countDown(), window.pages()->widget(BiosInterface::MainSettingsPage));
    measurePage(table, window.widget(), "main settings page", rounds);
    const auto buttons = window.pageButtons();
    for (const SettingsButton *button : buttons) {
        window.pages()->setCurrentWidget(window.pageOf(button));
        QTest::qWait(restTime);
        measurePage(table, window.widget(), "page " + labelOf(button).toStdString(), rounds);
    }
    window.pages()->setCurrentIndex(BiosInterface::TimeSettingPage);
    QTest::qWait(restTime);
    measurePage(table, window.widget(), "empty page", rounds);
}

void measureTaps(ResultTable &table, int rounds)
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
                         tapTarget, Judged::Worst);
    }
    table.addSamples("tap to main settings page, " + size, back, "ms", tapTarget, Judged::Worst);
}

/// Measures the time from a tap on a key of the keypad until the field shows the character.
void measureKeys(ResultTable &table, int rounds)
{
    ShownWindow window;
    window.tap(window.countDown(), window.pages()->widget(BiosInterface::MainSettingsPage));
    QWidget *page = window.pages()->widget(BiosInterface::EthernetPage);
    for (SettingsButton *button : window.pageButtons()) {
        if (window.pageOf(button) == page) {
            window.tap(button, page);
        }
    }
    auto *field = page->findChild<QLineEdit *>("ip_address_lineEdit");
    field->setEnabled(true);
    window.widget().activateWindow(); // there is no window manager that would do this
    if (!QTest::qWaitForWindowActive(&window.widget())) {
        qFatal("the window does not become active");
    }
    window.tap(field, field);
    QWidget *keypad = shownKeypad();
    std::vector<double> times;
    for (int round = 0; round < rounds; ++round) {
        const QString key = QString("panelButton_%1").arg(round % 10);
        field->clear();
        QTest::qWait(restTime);
        times.push_back(tapTime(keypad, keypad->findChild<QPushButton *>(key), field));
        if (field->text() != key.right(1)) {
            qFatal("the key did not arrive");
        }
    }
    table.addSamples("keypad key to its character, " + sizeText(window.widget().size()), times,
                     "ms", tapTarget, Judged::Worst);
}

struct Part
{
    const char *name;
    void (*measure)(ResultTable &table, int rounds);
};

constexpr Part parts[] = {{"pages", measurePages}, {"taps", measureTaps}, {"keys", measureKeys}};
} // namespace

int main(int argc, char *argv[])
{
    prepareForWindow();
    selectInputContextPlugin();
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const int rounds = argc > 2 ? arguments.at(2).toInt() : usualRounds;
    ResultTable table;
    for (const Part &part : parts) {
        if (arguments.value(1) == QLatin1String(part.name) && rounds > 0) {
            part.measure(table, rounds);
            return table.exitStatus();
        }
    }
    std::fputs("Usage: painting pages|taps|keys [ROUNDS]\n", stderr);
    return 2;
}
