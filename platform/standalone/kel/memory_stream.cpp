// SPDX-License-Identifier: MIT
#include "standalone/memory_stream.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace Standalone
{

void MemoryOutput::write(const void* bytes, unsigned count)
{
    m_bytes.append(static_cast<const char*>(bytes), count);
}

MemoryInput::MemoryInput(std::string bytes) : m_bytes(std::move(bytes)) {}

unsigned MemoryInput::read(void* bytes, unsigned count)
{
    const auto taken =
        static_cast<unsigned>(std::min<std::size_t>(count, m_bytes.size() - m_position));
    std::memcpy(bytes, m_bytes.data() + m_position, taken);
    m_position += taken;
    return taken;
}

} // namespace Standalone
