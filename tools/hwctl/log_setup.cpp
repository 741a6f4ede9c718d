// SPDX-License-Identifier: MIT
#include "hwctl/log_setup.h"

#include <cstdlib>
#include <stdexcept>

#include "standalone/journal_sink.h"
#include "standalone/log_masks.h"
#include "standalone/stderr_sink.h"

namespace Hwctl
{

namespace
{

void ApplyMasks(const char* source, const std::string& masks)
{
    const std::string problem = Standalone::ApplyLogMasks(masks);
    if (!problem.empty())
        throw std::invalid_argument(std::string(source) + ": " + problem);
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
    ApplyMasks("default", "Hardware/WingMapper=28");
    // NOLINTNEXTLINE(concurrency-mt-unsafe): there is only one thread yet
    if (const char* const environment = std::getenv(LogVariable))
        ApplyMasks(LogVariable, environment);
    ApplyMasks("--log", masks);
}

} // namespace Hwctl
