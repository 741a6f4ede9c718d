// SPDX-License-Identifier: MIT
#include "hwctl/log_tap.h"

#include <array>
#include <mutex>

#include "hardware/flatpanel_controller/kontron.h"
#include "hwctl/command_error.h"
#include "os/log.h"
#include "standalone/log_sink.h"

namespace Hwctl
{

namespace
{

constexpr std::array<const char*, 2> Tapped{"Hardware/Kontron", "Hardware/Serial"};

} // namespace

struct LogTap::Private : public Standalone::LogSink {
    struct Tap {
        Os::Log::Context* context;
        unsigned mask;  // as it was
        bool isWidened; // nobody else asked for its trace lines
    };

    std::shared_ptr<LogSink> previous;
    std::vector<Tap> taps;
    std::mutex mutex;
    std::vector<std::string> texts; // guarded by mutex, as below
    unsigned errors = 0;
    std::string firstError;

    void Write(const Standalone::LogRecord& record) override;
};

void LogTap::Private::Write(const Standalone::LogRecord& record)
{
    bool goesOn = true;
    if (record.level >= Os::Log::Error) {
        const std::lock_guard hold(mutex);
        if (errors++ == 0)
            firstError = record.text;
    }
    for (const Tap& tap : taps) {
        if (record.level != Os::Log::Trace || tap.context->GetPath() != record.context)
            continue;
        const std::lock_guard hold(mutex);
        texts.emplace_back(record.text);
        goesOn = !tap.isWidened;
    }
    if (goesOn && previous)
        previous->Write(record);
}

LogTap::LogTap(Need need) : m_private(std::make_shared<Private>())
{
    m_private->previous = Standalone::SetLogSink(nullptr);
    // Contexts are made on first use; this one use comes to nothing.
    {
        const Hardware::Kontron inert("", 0);
    }
    for (const char* const path : Tapped) {
        Os::Log::Context* const context = Os::Log::Context::Find(path);
        if (!context)
            continue;
        m_private->taps.push_back(
            {context, context->GetMask(), !context->IsEnabled(Os::Log::Trace)});
        context->SetMask(context->GetMask() | Os::Log::Trace);
        if (need == Need::Lines && !context->IsEnabled(Os::Log::Trace)) {
            Standalone::SetLogSink(m_private->previous);
            throw CommandError("the log masks hold back the trace lines of " + context->GetPath() +
                               ", which this command needs");
        }
    }
    Standalone::SetLogSink(m_private);
}

LogTap::~LogTap()
{
    Standalone::SetLogSink(m_private->previous);
    for (const Private::Tap& tap : m_private->taps)
        tap.context->SetMask(tap.mask);
}

unsigned LogTap::CountErrors() const
{
    const std::lock_guard hold(m_private->mutex);
    return m_private->errors;
}

std::string LogTap::GetFirstError() const
{
    const std::lock_guard hold(m_private->mutex);
    return m_private->firstError;
}

std::vector<std::string> LogTap::Take(const std::string& start)
{
    std::vector<std::string> found = TakeWhole(start);
    for (std::string& text : found)
        text.erase(0, start.size());
    return found;
}

std::vector<std::string> LogTap::TakeWhole(const std::string& start)
{
    const std::lock_guard hold(m_private->mutex);
    std::vector<std::string> found;
    std::erase_if(m_private->texts, [&](const std::string& text) {
        const bool begins = text.starts_with(start);
        if (begins)
            found.push_back(text);
        return begins;
    });
    return found;
}

} // namespace Hwctl
