#pragma once

#include <utility>

#include <unistd.h>

namespace Guard {
/// A file descriptor that is closed with its owner.
class Descriptor
{
public:
    explicit Descriptor(int number = -1)
        : m_number(number)
    {
    }
    ~Descriptor() { reset(-1); }
    Descriptor(Descriptor &&other) noexcept
        : m_number(std::exchange(other.m_number, -1))
    {
    }
    Descriptor &operator=(Descriptor &&other) noexcept
    {
        reset(std::exchange(other.m_number, -1));
        return *this;
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    /// The number; negative if opening failed.
    int number() const { return m_number; }

private:
    void reset(int number)
    {
        if (m_number >= 0) {
            close(m_number);
        }
        m_number = number;
    }

    int m_number;
};
} // namespace Guard
