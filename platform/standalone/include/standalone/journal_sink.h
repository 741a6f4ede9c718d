// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "standalone/log_sink.h"

namespace Standalone
{

/// Writes each line to the systemd journal as one entry.
///
/// Fields: MESSAGE, PRIORITY (from the level), CODE_FILE, CODE_FUNC, CODE_LINE, and the sink's own
/// LOG_CONTEXT (path of the context), LOG_LEVEL (level bit in decimal) and CALL_STACK.
///
/// The journal may be slow, so a thread of the platform's own sends them, in their order. 10,000
/// may wait; further ones are lost, and an entry says how many.
class PLATFORM_EXPORT JournalSink : public LogSink
{
public:
    void Write(const LogRecord& record) override;

    /// The fields of an entry, each as "NAME=value"; values may hold any bytes.
    static std::vector<std::string> MakeFields(const LogRecord& record);
};

} // namespace Standalone
