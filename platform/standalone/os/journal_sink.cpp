// SPDX-License-Identifier: MIT
#include "standalone/journal_sink.h"

#include <sys/uio.h>
#include <syslog.h>

// Without this the journal would be told this file's own position instead of the line's.
#define SD_JOURNAL_SUPPRESS_LOCATION
#include <systemd/sd-journal.h>

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
    std::vector<std::string> fields = MakeFields(record);
    std::vector<iovec> parts;
    parts.reserve(fields.size());
    for (std::string& field : fields)
        parts.push_back({field.data(), field.size()});
    // A journal that is not there takes nothing; a log line has nobody to complain to.
    sd_journal_sendv(parts.data(), static_cast<int>(parts.size()));
}

} // namespace Standalone
