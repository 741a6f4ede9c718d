// SPDX-License-Identifier: MIT
#include "os/log_sink_holder.h"

#include <mutex>
#include <utility>

#include "standalone/stderr_sink.h"

namespace Os::Log
{

namespace
{

struct Holder {
    std::mutex mutex;
    std::shared_ptr<Standalone::LogSink> sink = std::make_shared<Standalone::StderrSink>();

    /// Never destroyed: lines may be written until the process is gone.
    static Holder& Get()
    {
        static Holder& holder = *new Holder;
        return holder;
    }
};

} // namespace

std::shared_ptr<Standalone::LogSink> GetLogSink()
{
    Holder& holder = Holder::Get();
    const std::lock_guard hold(holder.mutex);
    return holder.sink;
}

} // namespace Os::Log

namespace Standalone
{

LogSink::~LogSink() = default;

std::shared_ptr<LogSink> SetLogSink(std::shared_ptr<LogSink> sink)
{
    auto& holder = Os::Log::Holder::Get();
    const std::lock_guard hold(holder.mutex);
    return std::exchange(holder.sink, std::move(sink));
}

} // namespace Standalone
