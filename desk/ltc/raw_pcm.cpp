// SPDX-License-Identifier: MIT
#include "desk/raw_pcm.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <stdexcept>
#include <system_error>

namespace Desk
{

namespace
{

constexpr unsigned MaxChannels = 64;
/// Samples of all channels that are held at once.
constexpr std::size_t BlockLength = 4096;

float Decode(const unsigned char* bytes, PcmFormat format)
{
    if (format == PcmFormat_S16Le) {
        const auto value = static_cast<std::int16_t>(bytes[0] | bytes[1] << 8);
        return static_cast<float>(value) / 32768.0F;
    }
    std::uint32_t bits = 0;
    for (unsigned i = 0; i < 4; ++i)
        bits |= static_cast<std::uint32_t>(bytes[i]) << 8 * i;
    return std::bit_cast<float>(bits);
}

} // namespace

RawPcm::RawPcm(int descriptor, const PcmLayout& layout)
    : m_descriptor(descriptor), m_layout(layout),
      m_sampleSize(layout.format == PcmFormat_S16Le ? 2 : 4),
      m_stop(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (m_stop == -1)
        throw std::system_error(errno, std::generic_category(), "raw audio: no event");
    if (layout.sampleRate == 0 || layout.channels == 0 || layout.channels > MaxChannels ||
        layout.channel == 0 || layout.channel > layout.channels) {
        close(m_stop);
        throw std::invalid_argument("raw audio: sample rate, channels or channel out of range");
    }
    m_bytes.resize(BlockLength * m_layout.channels * m_sampleSize);
}

RawPcm::~RawPcm()
{
    close(m_stop);
}

unsigned RawPcm::GetSampleRate() const
{
    return m_layout.sampleRate;
}

AudioBlock RawPcm::Read(std::span<float> samples)
{
    const std::size_t limit =
        std::min(samples.size(), BlockLength) * m_layout.channels * m_sampleSize;
    std::size_t count = 0;
    while (count == 0 && !samples.empty()) {
        if (m_atEnd || !Fetch(limit)) {
            m_atEnd = true;
            return {.end = true};
        }
        count = Take(samples);
    }
    return {.samples = count};
}

bool RawPcm::Fetch(std::size_t limit)
{
    for (;;) {
        std::array<pollfd, 2> waits{pollfd{m_descriptor, POLLIN, 0}, pollfd{m_stop, POLLIN, 0}};
        if (poll(waits.data(), waits.size(), -1) == -1) {
            if (errno == EINTR)
                continue;
            return false;
        }
        if (waits[1].revents != 0)
            return false;
        const ssize_t got = read(m_descriptor, m_bytes.data() + m_count, limit - m_count);
        if (got > 0)
            m_count += static_cast<std::size_t>(got);
        if (got >= 0 || (errno != EINTR && errno != EAGAIN))
            return got > 0;
    }
}

std::size_t RawPcm::Take(std::span<float> samples)
{
    const std::size_t step = m_sampleSize * m_layout.channels;
    const std::size_t offset = m_sampleSize * (m_layout.channel - 1);
    const std::size_t count = m_count / step;
    for (std::size_t i = 0; i < count; ++i)
        samples[i] = Decode(m_bytes.data() + i * step + offset, m_layout.format);
    std::copy(m_bytes.begin() + static_cast<std::ptrdiff_t>(count * step),
              m_bytes.begin() + static_cast<std::ptrdiff_t>(m_count), m_bytes.begin());
    m_count -= count * step;
    return count;
}

void RawPcm::Stop()
{
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(m_stop, &one, sizeof one);
}

} // namespace Desk
