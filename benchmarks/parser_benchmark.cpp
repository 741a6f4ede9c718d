// SPDX-License-Identifier: MIT
//
// What a received byte costs, beside one MIDI cable's 3,125 bytes a second.

#include <benchmark/benchmark.h>

#include <vector>

#include "midi/linux/midi_device_impl.h"

namespace
{

using Hardware::Midi::Device;

void ParseNotesUnderRunningStatus(benchmark::State& state)
{
    Device device;
    Hardware::Midi::_DeviceImpl parser(device);
    std::vector<unsigned char> stream{0x90};
    for (int i = 0; i < 1000; ++i) {
        stream.push_back(static_cast<unsigned char>(i & 0x7F));
        stream.push_back(100);
    }
    for ([[maybe_unused]] auto _ : state)
        for (const unsigned char byte : stream)
            parser.ReceivedByte(byte);
    state.SetBytesProcessed(static_cast<std::int64_t>(stream.size()) * state.iterations());
}
BENCHMARK(ParseNotesUnderRunningStatus);

void ParseSystemExclusive(benchmark::State& state)
{
    Device device;
    Hardware::Midi::_DeviceImpl parser(device);
    std::vector<unsigned char> stream(128, 0x11);
    stream.front() = 0xF0;
    stream.push_back(0xF7);
    for ([[maybe_unused]] auto _ : state)
        for (const unsigned char byte : stream)
            parser.ReceivedByte(byte);
    state.SetBytesProcessed(static_cast<std::int64_t>(stream.size()) * state.iterations());
}
BENCHMARK(ParseSystemExclusive);

} // namespace
