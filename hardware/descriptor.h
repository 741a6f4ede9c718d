// SPDX-License-Identifier: MIT
#pragma once

#include <unistd.h>

#include <utility>

namespace Hardware
{

/// Owns an open file descriptor and closes it; -1 owns nothing.
class Descriptor
{
public:
    explicit Descriptor(int number = -1) noexcept : m_number(number) {}
    ~Descriptor() { Reset(); }
    Descriptor(Descriptor&& other) noexcept : m_number(std::exchange(other.m_number, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        Reset(std::exchange(other.m_number, -1));
        return *this;
    }

    int Get() const noexcept { return m_number; }
    bool IsOpen() const noexcept { return m_number != -1; }

    /// Closes what is owned and owns @p number instead.
    void Reset(int number = -1) noexcept
    {
        const int previous = std::exchange(m_number, number);
        if (previous != -1)
            close(previous);
    }

private:
    int m_number;
};

} // namespace Hardware
