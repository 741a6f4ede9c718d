// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

#include "desk/audio_source.h"

namespace Desk
{

/// One channel of an audio file: WAV, FLAC and whatever else libsndfile reads.
///
/// A file that turns out to be damaged while it is read ends there.
class AudioFile : public AudioSource
{
public:
    /// Opens a file. Throws std::runtime_error, with a text that names the file and the reason,
    /// when it is missing, no audio, or has no such channel.
    /// @param channel which one to read, from 1
    /// @param loop start again at the end, without end; the seam is a discontinuity
    explicit AudioFile(const std::string& path, unsigned channel = 1, bool loop = false);
    ~AudioFile() override;

    unsigned GetSampleRate() const override;
    AudioBlock Read(std::span<float> samples) override;
    void Stop() override;

private:
    struct Private;
    const std::unique_ptr<Private> m_private;
};

/// Writes all that a source gives into a file of 16-bit samples: WAV or FLAC, as the ending of the
/// name says, .wav or .flac. Discontinuities leave no trace. Samples beyond full scale are clipped.
///
/// Throws std::runtime_error for another ending, and when the file cannot be written.
void WriteAudioFile(const std::string& path, AudioSource& source);

} // namespace Desk
