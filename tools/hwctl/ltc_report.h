// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

#include "desk/audio_source.h"
#include "desk/ltc_decoder.h"
#include "hwctl/event_printer.h"

namespace Hwctl
{

/// Prints what is decoded from timecode audio, one line each.
class LtcReport
{
public:
    /// @param sampleRate samples a second, which positions are counted in
    LtcReport(EventPrinter& printer, unsigned sampleRate);

    /// Decodes a source to its end and prints all of it, and the summary. Returns an ExitCode:
    /// success when nothing was lost. Throws CommandError when there was no timecode at all.
    int Run(Desk::AudioSource& source, const std::string& name);

private:
    void Print(const Desk::LtcFrame& frame);
    void Print(const Desk::LtcLoss& loss);
    double GetSeconds(std::int64_t sample) const;

    EventPrinter& m_printer;
    const unsigned m_sampleRate;
    std::uint64_t m_frames = 0;
    std::uint64_t m_losses = 0;
    std::uint64_t m_lostFrames = 0;
};

} // namespace Hwctl
