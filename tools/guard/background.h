#pragma once

#include <functional>
#include <future>

namespace Guard {
/// Runs a job in a thread of its own, one run at a time.
class Background
{
public:
    explicit Background(std::function<void()> job);

    /// Wants the job to run from its start, after the current run if there is one.
    void request() { m_isWanted = true; }

    /// Starts the job if it is wanted and does not run. Call it often while isWanted().
    void check();

    bool isWanted() const { return m_isWanted; }

private:
    std::function<void()> m_job;
    std::future<void> m_run;
    bool m_isWanted = false;
};
} // namespace Guard
