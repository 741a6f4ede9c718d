// SPDX-License-Identifier: MIT
#include "desk/audio_file.h"

#include <sndfile.h>

#include <algorithm>
#include <atomic>
#include <stdexcept>
#include <utility>
#include <vector>

namespace Desk
{

namespace
{

struct Closer {
    void operator()(SNDFILE* file) const { sf_close(file); }
};
typedef std::unique_ptr<SNDFILE, Closer> File;

/// Samples that are read or written at once.
constexpr std::size_t BlockLength = 4096;

[[noreturn]] void Fail(const std::string& path, const std::string& reason)
{
    throw std::runtime_error("audio file '" + path + "': " + reason);
}

int GetFormatOf(const std::string& path)
{
    if (path.ends_with(".wav"))
        return SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    if (path.ends_with(".flac"))
        return SF_FORMAT_FLAC | SF_FORMAT_PCM_16;
    Fail(path, "the name ends neither in .wav nor in .flac");
}

} // namespace

struct AudioFile::Private {
    File file;
    SF_INFO facts{};
    std::size_t channel = 0;
    bool loop = false;
    bool seam = false;              ///< the next block is the first one of another round
    std::vector<float> interleaved; ///< one block of all channels
    std::atomic<bool> stopped = false;
};

AudioFile::AudioFile(const std::string& path, unsigned channel, bool loop)
    : m_private(std::make_unique<Private>())
{
    m_private->file.reset(sf_open(path.c_str(), SFM_READ, &m_private->facts));
    if (!m_private->file)
        Fail(path, sf_strerror(nullptr));
    const int channels = m_private->facts.channels;
    if (channel < 1 || channel > static_cast<unsigned>(channels))
        Fail(path, "no channel " + std::to_string(channel) + " among " + std::to_string(channels));
    m_private->channel = channel - 1;
    m_private->loop = loop;
    m_private->interleaved.resize(BlockLength * static_cast<std::size_t>(channels));
}

AudioFile::~AudioFile() = default;

unsigned AudioFile::GetSampleRate() const
{
    return static_cast<unsigned>(m_private->facts.samplerate);
}

AudioBlock AudioFile::Read(std::span<float> samples)
{
    Private& p = *m_private;
    if (p.stopped)
        return {.end = true};
    const auto wanted = static_cast<sf_count_t>(std::min(samples.size(), BlockLength));
    sf_count_t count = sf_readf_float(p.file.get(), p.interleaved.data(), wanted);
    if (count == 0 && p.loop && sf_seek(p.file.get(), 0, SEEK_SET) == 0) {
        p.seam = true;
        count = sf_readf_float(p.file.get(), p.interleaved.data(), wanted);
    }
    if (count <= 0)
        return {.end = true};
    const auto channels = static_cast<std::size_t>(p.facts.channels);
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i)
        samples[i] = p.interleaved[i * channels + p.channel];
    return {static_cast<std::size_t>(count), std::exchange(p.seam, false), false};
}

void AudioFile::Stop()
{
    m_private->stopped = true;
}

void WriteAudioFile(const std::string& path, AudioSource& source)
{
    SF_INFO facts{};
    facts.samplerate = static_cast<int>(source.GetSampleRate());
    facts.channels = 1;
    facts.format = GetFormatOf(path);
    const File file(sf_open(path.c_str(), SFM_WRITE, &facts));
    if (!file)
        Fail(path, sf_strerror(nullptr));
    sf_command(file.get(), SFC_SET_CLIPPING, nullptr, SF_TRUE);
    std::vector<float> samples(BlockLength);
    for (AudioBlock block; !block.end;) {
        block = source.Read(samples);
        const auto count = static_cast<sf_count_t>(block.samples);
        if (sf_writef_float(file.get(), samples.data(), count) != count)
            Fail(path, sf_strerror(file.get()));
    }
    sf_write_sync(file.get());
    if (sf_error(file.get()) != SF_ERR_NO_ERROR)
        Fail(path, sf_strerror(file.get()));
}

} // namespace Desk
