// SPDX-License-Identifier: MIT

#include <benchmark/benchmark.h>

#include "hardware/timecode/frame.h"

namespace
{

using Hardware::Timecode::Frame;

void FrameFromIndex(benchmark::State& state)
{
    Frame frame;
    double index = 0;
    for ([[maybe_unused]] auto _ : state) {
        frame.fromIndex(index, 25.0);
        index += 1;
        benchmark::DoNotOptimize(frame);
    }
}
BENCHMARK(FrameFromIndex);

void FrameToText(benchmark::State& state)
{
    const Frame frame(10, 20, 30, 12, true);
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(frame.toString());
}
BENCHMARK(FrameToText);

} // namespace
