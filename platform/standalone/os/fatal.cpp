// SPDX-License-Identifier: MIT
#include "os/fatal.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <string_view>

#include "kel/text_base.h"
#include "os/log.h"
#include "os/log_writer.h"
#include "os/stderr_output.h"
#include "standalone/fatal_handler.h"
#include "standalone/log_sink.h"

namespace Os
{

namespace
{

std::atomic<Standalone::FatalHandler> g_handler{nullptr};

Log::Context& FatalLogContext()
{
    // Never destroyed: a fatal stop may come at any point of the exit.
    static Log::Context& context = *new Log::Context("Fatal", nullptr, Log::AllLevels);
    return context;
}

void WriteToStandardError(const kel::text_base<char>& text)
{
    // Unbuffered, and not for ever: where nobody reads it, the process aborts all the same.
    const auto end = std::chrono::steady_clock::now() + Standalone::LogWriter::FlushLimit;
    std::string_view rest = text.view();
    while (!Standalone::WriteToStandardError(rest) && std::chrono::steady_clock::now() < end)
        Standalone::WaitForStandardError();
}

} // namespace

void Fatal(const char* text, unsigned line, const char* fileAndDate)
{
    kel::text<char, Log::LineCapacity> report;
    report << text << ", line " << line << ", " << fileAndDate;
    FatalLogContext().Write(Log::Critical, fileAndDate,
                            static_cast<const char*>(__PRETTY_FUNCTION__), line, report);
    Standalone::FlushLog(); // what led here stands before it
    report << '\n';
    WriteToStandardError(report);

    if (const Standalone::FatalHandler handler = g_handler.load(std::memory_order_acquire))
        handler(text, line, fileAndDate);
    std::abort();
}

} // namespace Os

namespace Standalone
{

FatalHandler SetFatalHandler(FatalHandler handler)
{
    return Os::g_handler.exchange(handler, std::memory_order_acq_rel);
}

} // namespace Standalone
