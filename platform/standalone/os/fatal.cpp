// SPDX-License-Identifier: MIT
#include "os/fatal.h"

#include <unistd.h>

#include <atomic>
#include <cstdlib>

#include "kel/text_base.h"
#include "os/log.h"
#include "standalone/fatal_handler.h"

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
    // Unbuffered and without a second try: the process is about to abort.
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, text.data(), text.length());
}

} // namespace

void Fatal(const char* text, unsigned line, const char* fileAndDate)
{
    kel::text<char, Log::LineCapacity> report;
    report << text << ", line " << line << ", " << fileAndDate;
    FatalLogContext().Write(Log::Critical, fileAndDate,
                            static_cast<const char*>(__PRETTY_FUNCTION__), line, report);
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
