#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

/// The time on the clock for measurements.
inline std::chrono::steady_clock::time_point now()
{
    return std::chrono::steady_clock::now();
}

/// Milliseconds from @p begin to now().
double millisecondsSince(std::chrono::steady_clock::time_point begin);

/// The median; 0 without @p values.
double median(std::vector<double> values);

/// The value that a target applies to.
enum class Judged { Median, Worst };

/// Prints a line per measurement: median of ours and of the peer, their ratio, the spread (minimum
/// and maximum), the target. Remembers whether a target was missed.
class ResultTable
{
public:
    /// Prints the median of @p values and their spread. The target has the same unit.
    void addSamples(const std::string &what, const std::vector<double> &values, const char *unit,
                    std::optional<double> target = {}, Judged judged = Judged::Median);

    /// Prints one figure.
    void addFigure(const std::string &what, double value, const char *unit,
                   std::optional<double> target = {});

    /// Prints the medians of @p ours and @p peer, which were measured in turn, their ratio, and the
    /// spread of the ratios of the pairs. The target applies to the ratio.
    void addPair(const std::string &what, const std::vector<double> &ours,
                 const std::vector<double> &peer, const char *unit,
                 std::optional<double> target = {});

    /// Prints two figures and their difference. The target applies to the difference.
    void addDifference(const std::string &what, double ours, double peer, const char *unit,
                       std::optional<double> target = {});

    /// EXIT_FAILURE if a target was missed.
    int exitStatus() const;

private:
    struct Line;
    void print(const Line &line, std::optional<double> judged, std::optional<double> target);

    bool m_missed = false;
};
