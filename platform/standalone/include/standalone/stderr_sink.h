// SPDX-License-Identifier: MIT
#pragma once

#include "standalone/log_sink.h"

namespace Standalone
{

/// Writes each line to standard error with one write call. This is the sink at the start.
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
