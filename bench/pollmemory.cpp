// Whether the rescue poll, which runs for as long as a panel is on, costs memory: an hour's worth
// of polls, run as fast as they go.

#include "shell/biosinterface.h"
#include "support/memoryuse.h"
#include "support/panelplace.h"
#include "support/resulttable.h"

#include <QApplication>

namespace {
constexpr int pollsPerHour = 5 * 3600;
constexpr int pollsBefore = 500;     // until what is made once has been made
constexpr double growthTarget = 100; // KiB; less than a byte in a hundred polls is left behind

void poll(BiosInterface &window, int times)
{
    for (int count = 0; count < times; ++count) {
        window.slotRescueTimesup();
    }
}
} // namespace

int main(int argc, char *argv[])
{
    prepareForWindow();
    const QApplication application(argc, argv);
    BiosInterface window;
    poll(window, pollsBefore);
    const double before = memoryUse("RssAnon:");
    const auto begin = now();
    poll(window, pollsPerHour);
    ResultTable table;
    table.addFigure("one rescue poll, tools returning at once",
                    millisecondsSince(begin) / pollsPerHour, "ms");
    table.addFigure("memory growth in an hour's worth of polls", memoryUse("RssAnon:") - before,
                    "KiB", growthTarget);
    return table.exitStatus();
}
