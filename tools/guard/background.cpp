#include "background.h"

#include <utility>

namespace Guard {
Background::Background(std::function<void()> job)
    : m_job(std::move(job))
{
}

void Background::check()
{
    const bool runs
        = m_run.valid() && m_run.wait_for(std::chrono::seconds(0)) != std::future_status::ready;
    if (m_isWanted && !runs) {
        m_isWanted = false;
        m_run = std::async(std::launch::async, m_job);
    }
}
} // namespace Guard
