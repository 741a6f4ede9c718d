// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform_export.h"

namespace Standalone
{

/// One log line on its way to a sink. Everything in it is borrowed for the call.
struct LogRecord {
    const std::string& context; ///< path of the context, such as "Hardware/Midi"
    unsigned level;             ///< the line's level bit
    const char* file;           ///< source file
    const char* function;       ///< full signature
    unsigned line;              ///< line or stable site number
    std::string_view text;      ///< the text; may hold any bytes, zero included
    const void* const* stack;   ///< return addresses, innermost first
    std::size_t stackSize;      ///< entries of stack
};

/// The same with copies of all that it borrowed.
struct LogLine {
    std::string context;
    unsigned level;
    std::string file;
    std::string function;
    unsigned line;
    std::string text;
    std::vector<const void*> stack;
};
PLATFORM_EXPORT LogLine Keep(const LogRecord& record);

/// Where log lines go. Write() may be called by several threads at once, also by the threads of
/// devices: it returns without waiting for whoever reads the log.
class PLATFORM_EXPORT LogSink
{
public:
    virtual ~LogSink();
    virtual void Write(const LogRecord& record) = 0;
};

/// Waits until the platform's own sinks have written all lines so far, at most two seconds. They
/// write a line at once where that needs no waiting, and do this by themselves before a fatal stop
/// and when the process ends.
/// @return false when a line is still waiting
PLATFORM_EXPORT bool FlushLog();

/// Sends all log lines to @p sink, from now on, and returns the sink before it. A line that another
/// thread is writing may still reach the old one, which lives until then. Null drops all lines.
PLATFORM_EXPORT std::shared_ptr<LogSink> SetLogSink(std::shared_ptr<LogSink> sink);

/// Name of a level bit: "trace", "note", "warning", "error" or "critical".
PLATFORM_EXPORT const char* GetLevelName(unsigned level);

/// A call stack as text, one frame a line. Looks symbols up, so it takes its time.
PLATFORM_EXPORT std::string FormatCallStack(const void* const* stack, std::size_t size);

} // namespace Standalone
