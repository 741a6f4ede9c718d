// SPDX-License-Identifier: MIT

// Decodes timecode from arbitrary audio twice, cut into blocks in two ways, and checks that the
// results are the same and in order. The input's first three bytes choose how the others become
// audio, because few bytes that are chosen as samples make a frame.

#include <unistd.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <vector>

#include "desk/ltc_decoder.h"
#include "desk/raw_pcm.h"
#include "require.h"

using Fuzz::Require;

namespace
{

typedef std::span<const unsigned char> Bytes;

constexpr std::array<unsigned, 5> SampleRates{8000, 22050, 44100, 48000, 192000};
/// Samples that one input may become.
constexpr std::size_t MostSamples = 60'000;

/// A pipe that holds bytes and has ended.
class FilledPipe
{
public:
    explicit FilledPipe(Bytes bytes)
    {
        std::array<int, 2> ends{};
        Require(pipe(ends.data()) == 0, "no pipe");
        m_read = ends[0];
        // A pipe's buffer takes so much without a reader.
        const std::size_t size = std::min<std::size_t>(bytes.size(), 60'000);
        Require(write(ends[1], bytes.data(), size) == static_cast<ssize_t>(size), "a full pipe");
        close(ends[1]);
    }
    ~FilledPipe() { close(m_read); }
    FilledPipe(const FilledPipe&) = delete;
    FilledPipe& operator=(const FilledPipe&) = delete;

    int Get() const { return m_read; }

private:
    int m_read = -1;
};

/// The bytes as raw samples of one channel of several.
std::vector<float> ReadSamples(Bytes bytes, unsigned char choice)
{
    const FilledPipe pipe(bytes);
    Desk::PcmLayout layout;
    layout.format = (choice & 1) != 0 ? Desk::PcmFormat_F32Le : Desk::PcmFormat_S16Le;
    layout.channels = 1 + (choice >> 1 & 3);
    layout.channel = 1 + (choice >> 3) % layout.channels;
    Desk::RawPcm source(pipe.Get(), layout);
    std::vector<float> samples;
    std::array<float, 1000> block{};
    for (Desk::AudioBlock read; !read.end;) {
        read = source.Read(block);
        Require(read.samples <= block.size(), "a block that is too long");
        samples.insert(samples.end(), block.begin(),
                       block.begin() + static_cast<std::ptrdiff_t>(read.samples));
    }
    return samples;
}

/// A signal of two levels.
class Square
{
public:
    explicit Square(float level) : m_level(level) {}

    /// Changes the level and keeps it for so many samples.
    void Turn(std::size_t length)
    {
        m_level = -m_level;
        m_samples.insert(m_samples.end(), std::min(length, MostSamples - m_samples.size()),
                         m_level);
    }
    const std::vector<float>& Get() const { return m_samples; }

private:
    float m_level;
    std::vector<float> m_samples;
};

/// Each byte as the samples from one transition to the next.
std::vector<float> DrawDistances(Bytes bytes)
{
    Square square(0.5F);
    for (const unsigned char byte : bytes)
        square.Turn(byte);
    return square.Get();
}

/// The bytes as bits of frames, eight bytes each, with the sync word behind.
std::vector<float> DrawFrames(Bytes bytes, unsigned char choice)
{
    const std::size_t half = 2U + choice % 30U;
    Square square(0.9F);
    const auto drawBit = [&](bool one) {
        if (one)
            square.Turn(half);
        square.Turn(one ? half : 2 * half);
    };
    for (; bytes.size() >= 8; bytes = bytes.subspan(8)) {
        std::array<unsigned char, 10> frame{0, 0, 0, 0, 0, 0, 0, 0, 0xFC, 0xBF};
        std::copy_n(bytes.begin(), 8, frame.begin());
        for (const unsigned char byte : frame)
            for (unsigned bit = 0; bit < 8; ++bit)
                drawBit((byte >> bit & 1U) != 0);
    }
    drawBit(false);
    std::vector<float> samples = square.Get();
    if (choice % 2 != 0)
        std::reverse(samples.begin(), samples.end());
    return samples;
}

std::vector<float> MakeAudio(Bytes bytes, unsigned char kind, unsigned char choice)
{
    switch (kind % 3) {
    case 0:
        return ReadSamples(bytes, choice);
    case 1:
        return DrawDistances(bytes);
    default:
        return DrawFrames(bytes, choice);
    }
}

std::string Describe(const Desk::LtcResult& result)
{
    if (const auto* const frame = std::get_if<Desk::LtcFrame>(&result))
        return ToText(frame->time) + (frame->reverse ? " back " : " ") +
               std::to_string(frame->firstSample) + " " + std::to_string(frame->lastSample) + " " +
               std::to_string(std::bit_cast<std::uint64_t>(frame->level));
    const auto& loss = std::get<Desk::LtcLoss>(result);
    return "lost " + std::to_string(loss.firstSample) + " " + std::to_string(loss.lastSample) +
           " " + std::to_string(loss.frames);
}

/// Sees that results follow one another and stand in the audio.
class Checker
{
public:
    explicit Checker(std::size_t samples) : m_end(static_cast<std::int64_t>(samples)) {}

    void Take(const Desk::LtcResult& result)
    {
        m_texts.push_back(Describe(result));
        if (const auto* const frame = std::get_if<Desk::LtcFrame>(&result)) {
            Require(IsValid(frame->time, 30), "a time that there is not");
            Place(frame->firstSample, frame->lastSample);
        } else {
            const auto& loss = std::get<Desk::LtcLoss>(result);
            Require(loss.frames >= 1, "a loss of nothing");
            Place(loss.firstSample, loss.lastSample);
        }
    }
    const std::vector<std::string>& GetTexts() const { return m_texts; }

private:
    void Place(std::int64_t first, std::int64_t last)
    {
        Require(first <= last, "a result that ends before it begins");
        Require(first > m_last - Slack, "a result that begins before the one before ends");
        Require(last < m_end + Slack, "a result behind the audio");
        m_last = last;
    }

    /// Transitions are found between samples.
    static constexpr std::int64_t Slack = 64;
    const std::int64_t m_end;
    std::int64_t m_last = -Slack;
    std::vector<std::string> m_texts;
};

/// @param block samples that are fed at once
/// @param cut   where the audio has a discontinuity, as a share of 256
std::vector<std::string> Decode(std::span<const float> samples, unsigned sampleRate,
                                std::size_t block, unsigned char cut)
{
    Desk::LtcDecoder decoder(sampleRate);
    Checker checker(samples.size());
    const Desk::LtcTaker taker = [&checker](const Desk::LtcResult& result) {
        checker.Take(result);
    };
    const std::size_t place = samples.size() * cut / 256;
    std::size_t at = 0;
    while (at < samples.size()) {
        if (at == place && cut != 0)
            decoder.Discontinuity();
        const std::size_t end = at < place ? std::min(place, at + block) : at + block;
        const auto piece = samples.subspan(at, std::min(end, samples.size()) - at);
        decoder.Feed(piece, static_cast<std::int64_t>(at), taker);
        at += piece.size();
    }
    decoder.Finish(taker);
    return checker.GetTexts();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    if (size < 3)
        return 0;
    const std::vector<float> samples = MakeAudio({data + 3, size - 3}, data[0] / 8, data[1]);
    const unsigned sampleRate = SampleRates.at(data[0] % SampleRates.size());
    const auto whole = Decode(samples, sampleRate, MostSamples, data[2]);
    const auto inPieces = Decode(samples, sampleRate, 7, data[2]);
    Require(whole == inPieces, "the blocks of the audio change the results");
    return 0;
}
