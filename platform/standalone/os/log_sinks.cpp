// SPDX-License-Identifier: MIT
#include <unistd.h>

#include "standalone/log_sink.h"
#include "standalone/memory_sink.h"
#include "standalone/stderr_sink.h"

namespace Standalone
{

const char* GetLevelName(unsigned level)
{
    switch (level) {
    case 1:
        return "trace";
    case 2:
        return "note";
    case 4:
        return "warning";
    case 8:
        return "error";
    case 16:
        return "critical";
    default:
        return "level";
    }
}

StderrSink::StderrSink(bool withCallStack) : m_withCallStack(withCallStack) {}

void StderrSink::Write(const LogRecord& record)
{
    std::string line;
    line.append(record.context).append(" ").append(GetLevelName(record.level)).append(": ");
    line.append(record.text);
    line.append(" [").append(record.file).append(":").append(std::to_string(record.line));
    line.append(" ").append(record.function).append("]\n");
    if (m_withCallStack)
        for (std::size_t i = 0; i < record.stackSize; ++i)
            line.append("    ").append(FormatCallStack(record.stack + i, 1));
    // One call, so that lines of several threads do not mix.
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, line.data(), line.size());
}

void MemorySink::Write(const LogRecord& record)
{
    Line line{record.context,
              record.level,
              record.file,
              record.function,
              record.line,
              std::string(record.text),
              std::vector<const void*>(record.stack, record.stack + record.stackSize)};
    const std::lock_guard hold(m_mutex);
    m_lines.push_back(std::move(line));
}

std::vector<MemorySink::Line> MemorySink::GetLines() const
{
    const std::lock_guard hold(m_mutex);
    return m_lines;
}

std::vector<std::string> MemorySink::GetTexts() const
{
    const std::lock_guard hold(m_mutex);
    std::vector<std::string> texts;
    for (const Line& line : m_lines)
        texts.push_back(line.text);
    return texts;
}

void MemorySink::Clear()
{
    const std::lock_guard hold(m_mutex);
    m_lines.clear();
}

} // namespace Standalone
