#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

/// Reads the clock that the measurements use.
inline std::chrono::steady_clock::time_point now()
{
    return std::chrono::steady_clock::now();
}

/// Milliseconds from @p begin to now().
double millisecondsSince(std::chrono::steady_clock::time_point begin);

/// 0 if there are no @p values.
double median(std::vector<double> values);

/// What was measured, one line each, printed at once. Remembers whether a target was missed.
class ResultTable
{
public:
    /// Prints median and worst of @p values. A target is for the median, in the same unit.
    void addSamples(const std::string &what, const std::vector<double> &values, const char *unit,
                    std::optional<double> target = {});

    /// Prints one figure.
    void addFigure(const std::string &what, double value, const char *unit,
                   std::optional<double> target = {});

    /// EXIT_FAILURE if a target was missed.
    int exitStatus() const;

private:
    void addLine(const std::string &what, double value, const std::string &worst, const char *unit,
                 std::optional<double> target);

    bool m_missed = false;
};
