// SPDX-License-Identifier: MIT
#include <atomic>
#include <memory>
#include <string_view>
#include <utility>

#include "os/log_writer.h"
#include "os/stderr_output.h"
#include "standalone/log_sink.h"
#include "standalone/memory_sink.h"
#include "standalone/stderr_sink.h"

namespace Standalone
{

namespace
{

std::string Format(const LogRecord& record, bool withCallStack)
{
    std::string line;
    line.append(record.context).append(" ").append(GetLevelName(record.level)).append(": ");
    line.append(record.text);
    line.append(" [").append(record.file).append(":").append(std::to_string(record.line));
    line.append(" ").append(record.function).append("]\n");
    if (withCallStack)
        for (std::size_t i = 0; i < record.stackSize; ++i)
            line.append("    ").append(FormatCallStack(record.stack + i, 1));
    return line;
}

class StderrLine final : public PendingLine
{
public:
    StderrLine(const LogRecord& record, bool withCallStack)
        : m_withCallStack(withCallStack), m_line(Format(record, withCallStack)), m_rest(m_line)
    {
    }

    // One call where the whole line is taken, so that lines of several processes do not mix.
    bool WriteNow() override { return WriteToStandardError(m_rest); }
    void WriteWaiting(const std::atomic<bool>& isStopping) override
    {
        while (!WriteNow() && !isStopping)
            WaitForStandardError();
    }
    std::unique_ptr<PendingLine> MakeAnother(const LogRecord& record) const override
    {
        return std::make_unique<StderrLine>(record, m_withCallStack);
    }

private:
    const bool m_withCallStack;
    const std::string m_line;
    std::string_view m_rest;
};

} // namespace

LogLine Keep(const LogRecord& record)
{
    return {record.context,
            record.level,
            record.file,
            record.function,
            record.line,
            std::string(record.text),
            std::vector<const void*>(record.stack, record.stack + record.stackSize)};
}

bool FlushLog()
{
    return LogWriter::Get().Flush(LogWriter::FlushLimit);
}

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
    LogWriter::Get().Write(std::make_unique<StderrLine>(record, m_withCallStack));
}

void MemorySink::Write(const LogRecord& record)
{
    Line line = Keep(record);
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
