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
} // namespace

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
                             const char *unit, std::optional<double> target)
{
    const auto worst = std::max_element(values.begin(), values.end());
    addLine(what, median(values), worst != values.end() ? inTwoDecimals(*worst) : "", unit, target);
}

void ResultTable::addFigure(const std::string &what, double value, const char *unit,
                            std::optional<double> target)
{
    addLine(what, value, "", unit, target);
}

int ResultTable::exitStatus() const
{
    return m_missed ? EXIT_FAILURE : EXIT_SUCCESS;
}

void ResultTable::addLine(const std::string &what, double value, const std::string &worst,
                          const char *unit, std::optional<double> target)
{
    const bool missed = target && value > *target;
    m_missed = m_missed || missed;
    // bench/run.sh prints the head of this table.
    std::printf("%-50s %9.2f %9s %-5s %8s  %s\n", what.c_str(), value, worst.c_str(), unit,
                target ? inTwoDecimals(*target).c_str() : "",
                target ? (missed ? "MISSED" : "met") : "");
    std::fflush(stdout);
}
