// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "desk/audio_source.h"

namespace Desk
{

/// How raw samples are written, least significant byte first.
enum PcmFormat : std::uint8_t {
    PcmFormat_S16Le, ///< signed, 16 bits
    PcmFormat_F32Le  ///< IEEE 754, 32 bits, full scale at 1
};

/// What raw samples do not say of themselves.
struct PcmLayout {
    PcmFormat format = PcmFormat_S16Le;
    unsigned sampleRate = 48000; ///< per second, above 0
    unsigned channels = 1;       ///< interleaved, 1 to 64
    unsigned channel = 1;        ///< which one to read, from 1
};

/// One channel of raw samples from a descriptor: a pipe, standard input, a file.
///
/// Gives what has arrived, without waiting for more. The end of the descriptor, or an error on it,
/// is the end of the audio; a sample that it cuts in two is dropped.
class RawPcm : public AudioSource
{
public:
    /// Throws std::invalid_argument for a layout out of range.
    /// @param descriptor remains the caller's, who keeps it open for as long as this lives
    RawPcm(int descriptor, const PcmLayout& layout);
    ~RawPcm() override;

    unsigned GetSampleRate() const override;
    AudioBlock Read(std::span<float> samples) override;
    void Stop() override;

private:
    /// Waits for bytes and appends what is there; false at the end and when stopped.
    bool Fetch(std::size_t limit);
    /// Takes whole samples from the front of the bytes; returns how many.
    std::size_t Take(std::span<float> samples);

    const int m_descriptor;
    const PcmLayout m_layout;
    const std::size_t m_sampleSize; ///< bytes of one sample of one channel
    int m_stop;                     ///< event that ends a wait
    std::vector<unsigned char> m_bytes;
    std::size_t m_count = 0; ///< bytes held in m_bytes
    bool m_atEnd = false;
};

} // namespace Desk
