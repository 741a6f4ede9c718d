// SPDX-License-Identifier: MIT
#include "ltc/ltc_encoder.h"

#include <ltc.h>

#include <algorithm>
#include <cstring>
#include <new>

#include "ltc/ltc_bits.h"

namespace Desk
{

namespace
{

constexpr int BytesPerFrame = 10;
/// Of what follows the last frame: up to the first transition that a decoder needs, and beyond it.
constexpr int TailBits = 1;
constexpr int TailBitsBackwards = 17;
/// The encoder's buffer holds one frame at this part of the speed.
constexpr double LeastSpeed = 0.09;
/// Clears the polarity correction bit, which stands alike in two bytes, by rate in one or the
/// other.
constexpr std::uint8_t NoParity = 0xF7;
constexpr int Center = 128;
constexpr float Amplitude = 127;

LTC_TV_STANDARD GetStandard(LtcRate rate)
{
    switch (rate) {
    case LtcRate_24:
        return LTC_TV_FILM_24;
    case LtcRate_25:
        return LTC_TV_625_50;
    default:
        return LTC_TV_525_60;
    }
}

} // namespace

LtcFrameEncoder::LtcFrameEncoder(const LtcSettings& settings)
    : m_settings(settings),
      m_encoder(ltc_encoder_create(settings.sampleRate, GetFramesPerSecond(settings.rate),
                                   GetStandard(settings.rate), LTC_BGF_DONT_TOUCH),
                &ltc_encoder_free),
      m_time(settings.start)
{
    if (!m_encoder || ltc_encoder_set_buffersize(m_encoder.get(), settings.sampleRate,
                                                 GetFramesPerSecond(settings.rate) * LeastSpeed))
        throw std::bad_alloc();
    ltc_encoder_set_volume(m_encoder.get(), 0); // the whole range; the level is applied afterwards
    ltc_encoder_set_user_bits(m_encoder.get(), settings.userBits);
}

LtcFrameEncoder::~LtcFrameEncoder() = default;

double LtcFrameEncoder::GetSlowness() const
{
    const double last = m_settings.frames > 1 ? m_settings.frames - 1 : 1;
    const double share = std::min<double>(m_number, last) / last;
    return 1 / (m_settings.startSpeed + (m_settings.endSpeed - m_settings.startSpeed) * share);
}

void LtcFrameEncoder::SetFrame()
{
    LTCFrame frame;
    ltc_encoder_get_frame(m_encoder.get(), &frame);
    LtcBits bits{};
    std::memcpy(bits.data(), &frame, sizeof bits);
    SetTime(bits, m_time);
    bits[3] &= NoParity;
    bits[7] &= NoParity;
    std::memcpy(&frame, bits.data(), sizeof bits);
    if (m_settings.parity)
        ltc_frame_set_parity(&frame, GetStandard(m_settings.rate));
    ltc_encoder_set_frame(m_encoder.get(), &frame);
}

void LtcFrameEncoder::Encode(std::vector<float>& samples, int bytes, double slowness)
{
    for (int i = 0; i < bytes; ++i) {
        if (m_settings.backwards)
            ltc_encoder_encode_byte(m_encoder.get(), BytesPerFrame - 1 - i, -slowness);
        else
            ltc_encoder_encode_byte(m_encoder.get(), i, slowness);
    }
    ltcsnd_sample_t* encoded = nullptr;
    const int count = ltc_encoder_get_bufferptr(m_encoder.get(), &encoded, 1);
    for (int i = 0; i < count; ++i)
        samples.push_back(static_cast<float>(encoded[i] - Center) / Amplitude);
}

void LtcFrameEncoder::Append(std::vector<float>& samples)
{
    if (IsAtEnd())
        return;
    SetFrame();
    const double slowness = GetSlowness();
    const std::size_t before = samples.size();
    if (m_number < m_settings.frames) {
        Encode(samples, BytesPerFrame, slowness);
    } else {
        const int bits = m_settings.backwards ? TailBitsBackwards : TailBits;
        const int bytes = (bits + 7) / 8;
        Encode(samples, bytes, slowness);
        const std::size_t encoded = samples.size() - before;
        samples.resize(before + encoded * static_cast<std::size_t>(bits) /
                                    static_cast<std::size_t>(bytes * 8));
    }
    ++m_number;
    const unsigned rate = GetFrameCount(m_settings.rate);
    m_time = m_settings.backwards ? GetPrevious(m_time, rate) : GetNext(m_time, rate);
}

} // namespace Desk
