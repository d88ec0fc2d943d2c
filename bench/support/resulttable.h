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

/// Which of several values a target is for.
enum class Judged { Median, Worst };

/// What was measured, one line each, printed at once: median of ours and of the peer, their ratio,
/// the spread (least and most), the target. Remembers whether a target was missed.
class ResultTable
{
public:
    /// Prints the median of @p values and their spread. A target is in the same unit.
    void addSamples(const std::string &what, const std::vector<double> &values, const char *unit,
                    std::optional<double> target = {}, Judged judged = Judged::Median);

    /// Prints one figure.
    void addFigure(const std::string &what, double value, const char *unit,
                   std::optional<double> target = {});

    /// Prints the medians of @p ours and of @p peer, which were measured in turn, and their ratio
    /// with the spread of the ratios pair by pair. A target is for the ratio.
    void addPair(const std::string &what, const std::vector<double> &ours,
                 const std::vector<double> &peer, const char *unit,
                 std::optional<double> target = {});

    /// Prints two figures and how much more ours is than the peer's. A target is for that.
    void addDifference(const std::string &what, double ours, double peer, const char *unit,
                       std::optional<double> target = {});

    /// EXIT_FAILURE if a target was missed.
    int exitStatus() const;

private:
    struct Line;
    void print(const Line &line, std::optional<double> judged, std::optional<double> target);

    bool m_missed = false;
};
