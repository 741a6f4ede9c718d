// SPDX-License-Identifier: MIT
#include "ltc/ltc_search.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Desk
{

namespace
{

/// Between the rates in use.
constexpr double FramesPerSecond = 27;
constexpr double BitsPerFrame = 80;
/// Part of a bit that the running mean takes.
constexpr double FilterOfBit = 0.25;
/// Part by which a frame's length must change to change the running mean, so that it rests.
constexpr double FilterHysteresis = 0.2;
/// Longest pause, in seconds, that still counts as signal.
constexpr double LongestPause = 0.01;
/// Frames without a good one after which a known speed is given up.
constexpr double Patience = 4;

/// A guess, and how long it holds: long enough for two frames.
struct Guess {
    double speed;
    bool filter;
    double seconds;
};
constexpr std::array<Guess, 4> Guesses{{
    {1, false, 0.1},    // clean audio of any speed
    {1, true, 0.2},     // noise
    {0.35, true, 0.35}, // slow
    {3.5, false, 0.05}  // fast
}};

} // namespace

LtcSearch::LtcSearch(double sampleRate) : m_sampleRate(sampleRate)
{
    SetFrameLength(m_sampleRate / FramesPerSecond, false);
}

double LtcSearch::GetLongestBit() const
{
    return m_sampleRate / FramesPerSecond / 0.1 / BitsPerFrame;
}

void LtcSearch::SetFrameLength(double length, bool filter)
{
    m_frameLength = std::clamp(length, BitsPerFrame, GetLongestBit() * BitsPerFrame);
    const double wanted = filter ? m_frameLength / BitsPerFrame * FilterOfBit : 1.0;
    if (std::abs(wanted - static_cast<double>(m_filter)) > FilterHysteresis * wanted)
        m_filter = static_cast<std::size_t>(std::max(1.0, wanted + 0.5));
}

bool LtcSearch::OnTransition(double position)
{
    m_searched += std::clamp(position - m_lastTransition, 0.0, m_sampleRate * LongestPause);
    m_lastTransition = position;
    const double patience =
        m_locked ? std::max(Patience * m_frameLength, m_sampleRate * Guesses[0].seconds)
                 : m_sampleRate * Guesses[m_guess].seconds;
    if (m_searched < patience)
        return false;
    m_guess = m_locked ? 0 : (m_guess + 1) % Guesses.size();
    m_locked = false;
    m_searched = 0;
    const Guess& guess = Guesses[m_guess];
    SetFrameLength(m_sampleRate / FramesPerSecond / guess.speed, guess.filter);
    return true;
}

void LtcSearch::OnFrame(double length)
{
    SetFrameLength(length, true);
    m_locked = true;
    m_searched = 0;
}

} // namespace Desk
