#include "resulttable.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {
std::string inTwoDecimals(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.2f", value);
    return text;
}

std::string spreadOf(const std::vector<double> &values)
{
    const auto [least, most] = std::minmax_element(values.begin(), values.end());
    return values.size() > 1 ? inTwoDecimals(*least) + ".." + inTwoDecimals(*most) : "";
}
} // namespace

struct ResultTable::Line
{
    std::string what;
    std::string ours;
    std::string peer;
    std::string unit;
    std::string ratio;
    std::string spread;
};

double millisecondsSince(std::chrono::steady_clock::time_point begin)
{
    return std::chrono::duration<double, std::milli>(now() - begin).count();
}

double median(std::vector<double> values)
{
    if (values.empty()) {
        return 0;
    }
    std::sort(values.begin(), values.end());
    const size_t middle = values.size() / 2;
    return values.size() % 2 != 0 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

void ResultTable::addSamples(const std::string &what, const std::vector<double> &values,
                             const char *unit, std::optional<double> target, Judged judged)
{
    const double worst = values.empty() ? 0 : *std::max_element(values.begin(), values.end());
    print({what, inTwoDecimals(median(values)), "", unit, "", spreadOf(values)},
          judged == Judged::Worst ? worst : median(values), target);
}

void ResultTable::addFigure(const std::string &what, double value, const char *unit,
                            std::optional<double> target)
{
    print({what, inTwoDecimals(value), "", unit, "", ""}, value, target);
}

void ResultTable::addPair(const std::string &what, const std::vector<double> &ours,
                          const std::vector<double> &peer, const char *unit,
                          std::optional<double> target)
{
    std::vector<double> ratios;
    for (size_t at = 0; at < ours.size() && at < peer.size(); ++at) {
        ratios.push_back(ours[at] / peer[at]);
    }
    const double ratio = median(ours) / median(peer);
    print({what, inTwoDecimals(median(ours)), inTwoDecimals(median(peer)), unit,
           inTwoDecimals(ratio), spreadOf(ratios)},
          ratio, target);
}

void ResultTable::addDifference(const std::string &what, double ours, double peer, const char *unit,
                                std::optional<double> target)
{
    print({what, inTwoDecimals(ours), inTwoDecimals(peer), unit, '+' + inTwoDecimals(ours - peer),
           ""},
          ours - peer, target);
}

int ResultTable::exitStatus() const
{
    return m_missed ? EXIT_FAILURE : EXIT_SUCCESS;
}

void ResultTable::print(const Line &line, std::optional<double> judged,
                        std::optional<double> target)
{
    const bool missed = target && judged && *judged > *target;
    m_missed = m_missed || missed;
    // bench/run.sh prints the header of this table.
    std::printf("%-48s %9s %9s %-5s %6s %15s %8s  %s\n", line.what.c_str(), line.ours.c_str(),
                line.peer.c_str(), line.unit.c_str(), line.ratio.c_str(), line.spread.c_str(),
                target ? inTwoDecimals(*target).c_str() : "",
                target ? (missed ? "MISSED" : "met") : "");
    std::fflush(stdout);
}
