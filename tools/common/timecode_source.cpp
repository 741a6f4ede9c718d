// SPDX-License-Identifier: MIT
#include "common/timecode_source.h"

#include <sstream>
#include <stdexcept>

#include "common/number.h"

namespace Tools
{

namespace
{

using namespace Hardware;

/// Highest rate of a simulated source; the pace has a resolution of one millisecond.
constexpr double HighestRate = 1000.0;
/// Lowest rate of a simulated source: one frame an hour.
constexpr double LowestRate = 1.0 / 3600.0;

void ParseRate(const std::string& text, TimecodeSource& source)
{
    const auto format = TimecodeSource::GetFormats().find(text);
    if (format != TimecodeSource::GetFormats().end()) {
        source.named = true;
        source.format = format->second;
        source.rate = Timecode::toRate(format->second);
        return;
    }
    const auto rate = ParseNumber(text, LowestRate, HighestRate);
    if (!rate)
        throw std::invalid_argument("'" + text +
                                    "' is neither a rate in frames per second, up to 1000, nor "
                                    "film24, ebu25, ntsc30 or smpte30");
    source.rate = *rate;
}

} // namespace

const std::map<std::string, TimecodeFormat>& TimecodeSource::GetFormats()
{
    static const std::map<std::string, TimecodeFormat> formats{{"film24", TimecodeFormat_Film24},
                                                               {"ebu25", TimecodeFormat_Ebu25},
                                                               {"ntsc30", TimecodeFormat_Ntsc30},
                                                               {"smpte30", TimecodeFormat_Smpte30}};
    return formats;
}

TimecodeSource TimecodeSource::Parse(const std::string& text)
{
    TimecodeSource source;
    std::istringstream words(text);
    std::string word;
    std::getline(words, word, ',');
    ParseRate(word, source);
    while (std::getline(words, word, ',')) {
        if (word == "backwards")
            source.backwards = true;
        else if (!word.starts_with("start="))
            throw std::invalid_argument("'" + word +
                                        "' is neither start=HH:MM:SS:FF nor backwards");
        else
            source.start = ParseFrame(word.substr(6));
    }
    return source;
}

Timecode::Frame TimecodeSource::ParseFrame(const std::string& text)
{
    Timecode::Frame frame;
    if (text.find_first_not_of("0123456789:;.") != std::string::npos || !frame.fromString(text))
        throw std::invalid_argument("'" + text + "' is no timecode HH:MM:SS:FF");
    if (frame.hours > 23 || frame.minutes > 59 || frame.seconds > 59 || frame.frames >= HighestRate)
        throw std::invalid_argument("'" + text + "' is no time of a day");
    return frame;
}

Timecode::Index TimecodeSource::GetStartIndex() const
{
    const Timecode::Index index = start.toIndex(rate);
    // Turning a source round drops the fraction of a frame.
    return backwards ? Timecode::Frame(index, rate).toIndex(rate) : index;
}

void TimecodeSource::StartOn(Timecode::DeviceSim& device, unsigned number) const
{
    device.Create(number);
    if (named)
        device.SetFormat(number, format);
    else
        device.SetRate(number, rate);
    device.Jump(number, start);
    if (backwards)
        device.SetRate(number, -rate);
    device.Start(number);
}

} // namespace Tools
