// Checks that the rescue poll, which runs as long as the panel is on, leaks no memory. Runs the
// polls of an hour without pauses.

#include "shell/biosinterface.h"
#include "support/memoryuse.h"
#include "support/panelplace.h"
#include "support/resulttable.h"

#include <QApplication>

namespace {
constexpr int pollsPerHour = 5 * 3600;
constexpr int pollsBefore = 500;     // for allocations that happen only once
constexpr double growthTarget = 100; // KiB; less than 6 bytes per poll

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
    table.addFigure("memory growth in an hour of polls", memoryUse("RssAnon:") - before, "KiB",
                    growthTarget);
    return table.exitStatus();
}
