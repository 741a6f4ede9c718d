// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "kel/streams.h"
#include "platform_export.h"

namespace Standalone
{

/// Collects what is written.
class PLATFORM_EXPORT MemoryOutput : public kel::ostream
{
public:
    void write(const void* bytes, unsigned count) override;
    const std::string& GetBytes() const noexcept { return m_bytes; }

private:
    std::string m_bytes;
};

/// Hands out bytes given to it; reads short at the end.
class PLATFORM_EXPORT MemoryInput : public kel::istream
{
public:
    explicit MemoryInput(std::string bytes);
    unsigned read(void* bytes, unsigned count) override;

private:
    const std::string m_bytes;
    std::size_t m_position = 0;
};

} // namespace Standalone
