// SPDX-License-Identifier: MIT
//
// What a log line costs that is not wanted. Its peer is the least it can cost: one relaxed load and
// one branch.

#include <benchmark/benchmark.h>

#include <atomic>

#include "os/log.h"
#include "standalone/log_sink.h"

namespace
{

constexpr char SourceFile[] = "log_benchmark.cpp";

void RelaxedLoadAndBranch(benchmark::State& state)
{
    const std::atomic<unsigned> mask{30};
    int value = 0;
    for ([[maybe_unused]] auto _ : state) {
        if ((mask.load(std::memory_order_relaxed) & 1U) != 0)
            ++value;
        benchmark::DoNotOptimize(value);
    }
}
BENCHMARK(RelaxedLoadAndBranch);

void DisabledLogLine(benchmark::State& state)
{
    Os::Log::Context root("BenchmarkRoot", nullptr, Os::Log::AllLevels);
    Os::Log::Context context("Benchmark", &root, Os::Log::AllButTrace);
    int value = 0;
    for ([[maybe_unused]] auto _ : state) {
        OS_LOG(context, Os::Log::Trace, SourceFile, "value " << value);
        benchmark::DoNotOptimize(value);
    }
}
BENCHMARK(DisabledLogLine);

class NullSink : public Standalone::LogSink
{
public:
    void Write(const Standalone::LogRecord& record) override
    {
        benchmark::DoNotOptimize(record.stackSize);
    }
};

void WrittenLogLineWithCallStack(benchmark::State& state)
{
    const auto previous = Standalone::SetLogSink(std::make_shared<NullSink>());
    Os::Log::Context context("Benchmark", nullptr, Os::Log::AllLevels);
    int value = 0;
    for ([[maybe_unused]] auto _ : state)
        OS_LOG(context, Os::Log::Trace, SourceFile, "value " << value);
    Standalone::SetLogSink(previous);
}
BENCHMARK(WrittenLogLineWithCallStack);

} // namespace
