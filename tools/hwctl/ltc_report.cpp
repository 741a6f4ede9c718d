// SPDX-License-Identifier: MIT
#include "hwctl/ltc_report.h"

#include <array>
#include <cmath>
#include <vector>

#include "hwctl/command_error.h"
#include "hwctl/exit_code.h"

namespace Hwctl
{

namespace
{

constexpr char Source[] = "audio";
constexpr std::size_t BlockLength = 4096;

/// To a tenth, which is more than a level means.
std::string ToText(double decibels)
{
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%6.1f dB", decibels);
    return text.data();
}

} // namespace

LtcReport::LtcReport(EventPrinter& printer, unsigned sampleRate)
    : m_printer(printer), m_sampleRate(sampleRate)
{
}

double LtcReport::GetSeconds(std::int64_t sample) const
{
    return static_cast<double>(sample) / m_sampleRate;
}

void LtcReport::Print(const Desk::LtcFrame& frame)
{
    ++m_frames;
    const std::string time = Desk::ToText(frame.time);
    const std::string samples =
        std::to_string(frame.firstSample) + " to " + std::to_string(frame.lastSample);
    m_printer.Print({GetSeconds(frame.firstSample),
                     Source,
                     "frame",
                     time + (frame.reverse ? "  backwards " : "  forwards  ") +
                         ToText(frame.level) + "  samples " + samples,
                     {{"timecode", time},
                      {"hours", frame.time.hours},
                      {"minutes", frame.time.minutes},
                      {"seconds", frame.time.seconds},
                      {"frames", frame.time.frames},
                      {"dropFrame", frame.time.dropFrame},
                      {"backwards", frame.reverse},
                      {"level", std::round(frame.level * 100) / 100},
                      {"firstSample", frame.firstSample},
                      {"lastSample", frame.lastSample}}});
}

void LtcReport::Print(const Desk::LtcLoss& loss)
{
    ++m_losses;
    m_lostFrames += loss.frames;
    const std::string frames =
        "about " + std::to_string(loss.frames) + (loss.frames == 1 ? " frame" : " frames");
    m_printer.Print({GetSeconds(loss.firstSample),
                     Source,
                     "loss",
                     "lost " + frames + "  samples " + std::to_string(loss.firstSample) + " to " +
                         std::to_string(loss.lastSample),
                     {{"lostFrames", loss.frames},
                      {"firstSample", loss.firstSample},
                      {"lastSample", loss.lastSample}}});
}

int LtcReport::Run(Desk::AudioSource& source, const std::string& name)
{
    Desk::LtcDecoder decoder(m_sampleRate);
    const Desk::LtcTaker print = [this](const Desk::LtcResult& result) {
        std::visit([this](const auto& what) { Print(what); }, result);
    };
    std::vector<float> samples(BlockLength);
    std::int64_t position = 0;
    for (Desk::AudioBlock block; !block.end;) {
        block = source.Read(samples);
        if (block.discontinuity)
            decoder.Discontinuity();
        decoder.Feed(std::span(samples).first(block.samples), position, print);
        position += static_cast<std::int64_t>(block.samples);
    }
    decoder.Finish(print);
    m_printer.PrintSummary(std::to_string(m_frames) + " frames, " + std::to_string(m_losses) +
                               " losses of about " + std::to_string(m_lostFrames) + " frames, " +
                               std::to_string(position) + " samples",
                           {{"frames", m_frames},
                            {"losses", m_losses},
                            {"lostFrames", m_lostFrames},
                            {"samples", position},
                            {"sampleRate", m_sampleRate}});
    if (m_frames == 0)
        throw CommandError("no timecode in '" + name + "'");
    return m_losses == 0 ? ExitCode_Success : ExitCode_Failure;
}

} // namespace Hwctl
