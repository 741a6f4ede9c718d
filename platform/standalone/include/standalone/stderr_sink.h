// SPDX-License-Identifier: MIT
#pragma once

#include "standalone/log_sink.h"

namespace Standalone
{

/// Writes each line to standard error with one write call, at once. This is the sink at the start.
///
/// Where standard error takes no more, as a pipe that nobody reads, lines wait for it without
/// holding up the threads that log. 10,000 may wait; further ones are lost, and a line says how
/// many.
class PLATFORM_EXPORT StderrSink : public LogSink
{
public:
    /// @param withCallStack also print the call stack, indented below each line
    explicit StderrSink(bool withCallStack = false);
    void Write(const LogRecord& record) override;

private:
    const bool m_withCallStack;
};

} // namespace Standalone
