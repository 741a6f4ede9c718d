// SPDX-License-Identifier: MIT
#include "standalone/journal_sink.h"

#include <sys/uio.h>
#include <syslog.h>

// Without this the journal would be told this file's own position instead of the line's.
#define SD_JOURNAL_SUPPRESS_LOCATION
#include <systemd/sd-journal.h>

#include "os/log_writer.h"

namespace Standalone
{

namespace
{

int GetPriority(unsigned level)
{
    switch (level) {
    case 1:
        return LOG_DEBUG;
    case 2:
        return LOG_INFO;
    case 4:
        return LOG_WARNING;
    case 8:
        return LOG_ERR;
    default:
        return LOG_CRIT;
    }
}

/// Sending waits for the journal, so it is never done at once.
class JournalLine final : public PendingLine
{
public:
    explicit JournalLine(const LogRecord& record) : m_line(Keep(record)) {}

    bool WriteNow() override { return false; }
    void WriteWaiting(const std::atomic<bool>& /*isStopping*/) override
    {
        std::vector<std::string> fields = JournalSink::MakeFields(
            {m_line.context, m_line.level, m_line.file.c_str(), m_line.function.c_str(),
             m_line.line, m_line.text, m_line.stack.data(), m_line.stack.size()});
        std::vector<iovec> parts;
        parts.reserve(fields.size());
        for (std::string& field : fields)
            parts.push_back({field.data(), field.size()});
        // A journal that is not there takes nothing; a log line has nobody to complain to.
        sd_journal_sendv(parts.data(), static_cast<int>(parts.size()));
    }
    std::unique_ptr<PendingLine> MakeAnother(const LogRecord& record) const override
    {
        return std::make_unique<JournalLine>(record);
    }

private:
    const LogLine m_line;
};

} // namespace

std::vector<std::string> JournalSink::MakeFields(const LogRecord& record)
{
    return {
        std::string("MESSAGE=").append(record.text),
        "PRIORITY=" + std::to_string(GetPriority(record.level)),
        std::string("CODE_FILE=") + record.file,
        std::string("CODE_FUNC=") + record.function,
        "CODE_LINE=" + std::to_string(record.line),
        "LOG_CONTEXT=" + record.context,
        "LOG_LEVEL=" + std::to_string(record.level),
        "CALL_STACK=" + FormatCallStack(record.stack, record.stackSize),
    };
}

void JournalSink::Write(const LogRecord& record)
{
    LogWriter::Get().Write(std::make_unique<JournalLine>(record));
}

} // namespace Standalone
