// SPDX-License-Identifier: MIT
#include "console/timecode_meter.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace Console
{

namespace
{

using Hardware::Timecode::Frame;

/// Seconds over which a rate is measured.
constexpr double Window = 2;
/// Frames that a slow source's rate is measured by, however long they took.
constexpr std::size_t FewestFrames = 2;
/// Frames whose rate tells how many a second counts, and what it counts at least before.
constexpr std::size_t FramesThatTell = 8;
constexpr double LowestRate = 24;
/// Frames that a fast source's rate is measured by at most.
constexpr std::size_t MostFrames = 4096;
/// Numbers above are none that a source counts up to.
constexpr int HighestNumber = 1000;
constexpr std::int64_t DropFrameCount = 30; // frames of a second that counts with drop frame
/// Seconds that begin while a whole one is seen.
constexpr int NewSecondsOfWholeOne = 2;
constexpr int HoursOfDay = 24;

std::int64_t GetSeconds(const Frame& frame)
{
    return (std::int64_t{frame.hours} * 60 + frame.minutes) * 60 + frame.seconds;
}

bool IsSame(const Frame& left, const Frame& right)
{
    return left <= right && left >= right;
}

/// Frames from midnight on, when a second has so many.
std::int64_t GetIndex(const Frame& frame, std::int64_t framesOfSecond)
{
    std::int64_t index = GetSeconds(frame) * framesOfSecond + frame.frames;
    if (frame.dropFrame) {
        const std::int64_t minutes = std::int64_t{frame.hours} * 60 + frame.minutes;
        index -= 2 * (minutes - minutes / 10);
    }
    return index;
}

/// Frames from one to another, the short way round the day.
std::int64_t GetDistance(const Frame& from, const Frame& to, std::int64_t framesOfSecond)
{
    const Frame midnight(HoursOfDay, 0, 0, 0, to.dropFrame);
    const std::int64_t day = GetIndex(midnight, framesOfSecond);
    const std::int64_t distance = GetIndex(to, framesOfSecond) - GetIndex(from, framesOfSecond);
    if (std::abs(distance) <= day / 2)
        return distance;
    const std::int64_t round = distance > 0 ? distance - day : distance + day;
    // Hours need not wrap: what is not the next day is far.
    return std::abs(round) < std::abs(distance) ? round : distance;
}

} // namespace

void TimecodeMeter::Take(const Frame& frame, double seconds)
{
    if (m_reading.frames != 0)
        Compare(frame, seconds);
    m_reading.frame = frame;
    ++m_reading.frames;
    if (frame.frames <= HighestNumber)
        m_highestFrame = std::max(m_highestFrame, frame.frames);
    m_times.push_back(seconds);
    while (m_times.size() > MostFrames ||
           (m_times.size() > FewestFrames && m_times.front() < seconds - Window))
        m_times.pop_front();
}

/// Counts what lies between the last frame and this one.
void TimecodeMeter::Compare(const Frame& frame, double seconds)
{
    const Frame& last = m_reading.frame;
    if (IsSame(frame, last)) {
        ++m_reading.repeated;
        return;
    }
    if (frame.dropFrame != last.dropFrame) // numbers of two kinds
        return;
    const std::int64_t second = CountFramesOfSecond(frame);
    const std::int64_t distance = GetDistance(last, frame, second);
    if (distance == 0 || std::abs(distance) > second)
        return;
    const int direction = distance > 0 ? 1 : -1;
    const bool isReversed = m_reading.direction == -direction;
    m_reading.direction = direction;
    if (isReversed)
        return;
    std::int64_t lost = std::abs(distance) - 1;
    const double rate = GetRate();
    if (GetSeconds(last) != GetSeconds(frame)) {
        m_newSeconds = std::min(m_newSeconds + 1, NewSecondsOfWholeOne);
        const double periods = std::round((seconds - m_times.back()) * rate);
        if (rate > 0 && periods - 1 < static_cast<double>(lost))
            lost = std::max(static_cast<std::int64_t>(periods) - 1, std::int64_t{0});
    }
    m_reading.lost += static_cast<std::uint64_t>(lost);
}

/// Of the frames that are remembered; 0 for too few.
double TimecodeMeter::GetRate() const
{
    if (m_times.size() < FewestFrames)
        return 0;
    const double duration = m_times.back() - m_times.front();
    return duration > 0 ? static_cast<double>(m_times.size() - 1) / duration : 0;
}

/// At least as many as there are.
std::int64_t TimecodeMeter::CountFramesOfSecond(const Frame& frame) const
{
    if (frame.dropFrame)
        return DropFrameCount;
    const int highest =
        frame.frames <= HighestNumber ? std::max(m_highestFrame, frame.frames) : m_highestFrame;
    if (m_newSeconds == NewSecondsOfWholeOne)
        return std::int64_t{highest} + 1;
    const double rate = m_times.size() < FramesThatTell
                            ? LowestRate
                            : std::min(std::round(GetRate()), double{HighestNumber});
    return std::max(std::int64_t{highest} + 1, static_cast<std::int64_t>(rate));
}

TimecodeReading TimecodeMeter::Read(double seconds) const
{
    TimecodeReading reading = m_reading;
    if (reading.frames == 0)
        return reading;
    reading.age = std::max(seconds - m_times.back(), 0.0);
    const double rate = GetRate();
    // A source that has fallen silent has no rate; a slow one is given time for the next frame.
    if (rate > 0 && reading.age <= std::max(Window, 2 / rate))
        reading.rate = rate;
    return reading;
}

} // namespace Console
