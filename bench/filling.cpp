// Measures how long the file transfer page takes to show many packages, in the real window.

#include "packages/filetable.h"
#include "samplefiles.h"
#include "support/panelplace.h"
#include "support/resulttable.h"
#include "support/shownwindow.h"
#include "widgets/settingsbutton.h"

#include <QApplication>
#include <QStackedWidget>
#include <QTableWidget>

namespace {
constexpr int rounds = 15;

/// The default folder that the program searches.
constexpr char folder[] = "/media/";
constexpr char sampleFolder[] = "/media/usb0/stick/";

struct Size
{
    int rows;
    double target; // ms
};

constexpr Size sizes[] = {{10'000, 150}, {100'000, 1000}};

QStringList findPackages()
{
    return findPackagesBelow(folder, sampleType);
}

/// Times in ms to show a list of files in the table, which still has the rows of the last round.
std::vector<double> fillTimes(QTableWidget *files)
{
    const QStringList names = findPackages();
    std::vector<double> times;
    times.reserve(rounds);
    for (int round = 0; round < rounds; ++round) {
        times.push_back(timeUntilPainted(files->viewport(),
                                         [files, &names] { showFiles(files, folder, names); }));
    }
    return times;
}

/// Times in ms to search for the packages.
std::vector<double> walkTimes()
{
    std::vector<double> times;
    for (int round = 0; round < rounds; ++round) {
        const auto begin = now();
        findPackages();
        times.push_back(millisecondsSince(begin));
    }
    return times;
}

/// The file transfer page, opened by taps.
class TransferPage
{
public:
    TransferPage()
    {
        m_window.tap(m_window.countDown(), m_mainPage);
        for (SettingsButton *button : m_window.pageButtons()) {
            if (m_window.pageOf(button) == m_page) {
                m_button = button;
            }
        }
        open();
    }

    QTableWidget *files() const { return m_page->findChild<QTableWidget *>(); }
    double open() { return m_window.tap(m_button, files()->viewport()); }
    void leave() { m_window.tap(m_window.cancelButton(), m_mainPage); }

private:
    ShownWindow m_window;
    QWidget *m_mainPage = m_window.pages()->widget(BiosInterface::MainSettingsPage);
    QWidget *m_page = m_window.pages()->widget(BiosInterface::FileTransferPage);
    SettingsButton *m_button = nullptr;
};

std::vector<double> openTimes(TransferPage &page)
{
    std::vector<double> times;
    for (int round = 0; round < rounds; ++round) {
        page.leave();
        times.push_back(page.open());
    }
    return times;
}

void measure(ResultTable &table, TransferPage &page, const Size &size)
{
    makeSampleFiles(sampleFolder, size.rows, 1);
    const std::string rows = std::to_string(size.rows) + " packages";
    table.addSamples("show " + rows + " that are found", fillTimes(page.files()), "ms",
                     size.target);
    const std::vector<double> walk = walkTimes();
    const std::vector<double> open = openTimes(page);
    // The stick of the simulated panel has some packages besides.
    if (page.files()->rowCount() < size.rows || page.files()->rowCount() != findPackages().size()) {
        qFatal("the page does not show all packages");
    }
    table.addSamples("tap to " + rows + " on the page", open, "ms");
    table.addFigure("  without the walk", median(open) - median(walk), "ms", size.target);
}
} // namespace

int main(int argc, char *argv[])
{
    prepareForWindow();
    const QApplication application(argc, argv);
    TransferPage page;
    ResultTable table;
    for (const Size &size : sizes) {
        measure(table, page, size);
    }
    return table.exitStatus();
}
