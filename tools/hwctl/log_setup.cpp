// SPDX-License-Identifier: MIT
#include "hwctl/log_setup.h"

#include <cstdlib>

#include "hwctl/command_error.h"
#include "standalone/journal_sink.h"
#include "standalone/log_masks.h"
#include "standalone/stderr_sink.h"

namespace Hwctl
{

namespace
{

template <class Error> void ApplyMasks(const char* source, const std::string& masks)
{
    const std::string problem = Standalone::ApplyLogMasks(masks);
    if (!problem.empty())
        throw Error(std::string(source) + ": " + problem);
}

} // namespace

void SetUpLog(const std::string& sink, const std::string& masks)
{
    if (sink == "journal")
        Standalone::SetLogSink(std::make_shared<Standalone::JournalSink>());
    else if (sink == "none")
        Standalone::SetLogSink(nullptr);
    else
        Standalone::SetLogSink(std::make_shared<Standalone::StderrSink>());
    // Which wings come and go is what the tool itself prints.
    ApplyMasks<CommandError>("default", "Hardware/WingMapper=28");
    // NOLINTNEXTLINE(concurrency-mt-unsafe): there is only one thread yet
    if (const char* const environment = std::getenv(LogVariable))
        ApplyMasks<CommandError>(LogVariable, environment);
    ApplyMasks<UsageError>("--log", masks);
}

} // namespace Hwctl
