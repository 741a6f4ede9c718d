// SPDX-License-Identifier: MIT
#include "support/log_capture.h"

#include <algorithm>

#include "os/log.h"
#include "standalone/log_masks.h"

namespace TestSupport
{

LogCapture::LogCapture()
    : m_sink(std::make_shared<Standalone::MemorySink>()), m_previous(Standalone::SetLogSink(m_sink))
{
}

LogCapture::LogCapture(const std::string& path, unsigned mask)
    : m_sink(std::make_shared<Standalone::MemorySink>()),
      m_previous(Standalone::SetLogSink(m_sink)), m_path(path)
{
    const Os::Log::Context* const context = Os::Log::Context::Find(path.c_str());
    m_previousMask = context ? context->GetMask() : Os::Log::AllButTrace;
    Standalone::SetLogMask(path, mask);
}

LogCapture::~LogCapture()
{
    if (!m_path.empty())
        Standalone::SetLogMask(m_path, m_previousMask);
    Standalone::SetLogSink(m_previous);
}

std::size_t LogCapture::Count(const std::string& text) const
{
    const std::vector<std::string> texts = GetTexts();
    return static_cast<std::size_t>(std::count(texts.begin(), texts.end(), text));
}

} // namespace TestSupport
