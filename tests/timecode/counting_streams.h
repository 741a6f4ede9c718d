// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "kel/streams.h"

namespace TestSupport
{

/// Collects what is written and the size of each write.
class CountingOutput : public kel::ostream
{
public:
    void write(const void* from, unsigned count) override
    {
        bytes.append(static_cast<const char*>(from), count);
        writes.push_back(count);
    }

    std::string bytes;
    std::vector<unsigned> writes;
};

/// Hands out bytes, as far as they go, and notes the size of each read.
class CountingInput : public kel::istream
{
public:
    explicit CountingInput(std::string text) : m_bytes(std::move(text)) {}

    unsigned read(void* to, unsigned count) override
    {
        reads.push_back(count);
        const unsigned taken = std::min(count, static_cast<unsigned>(m_bytes.size() - m_position));
        std::copy_n(m_bytes.data() + m_position, taken, static_cast<char*>(to));
        m_position += taken;
        return taken;
    }

    std::vector<unsigned> reads;

private:
    const std::string m_bytes;
    std::size_t m_position = 0;
};

} // namespace TestSupport
