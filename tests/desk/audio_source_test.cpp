// SPDX-License-Identifier: MIT
// Audio from files and from pipes.
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <thread>

#include "desk/audio_file.h"
#include "desk/ltc_bench.h"
#include "desk/raw_pcm.h"

namespace
{

using namespace Desk;
using namespace TestSupport;
using testing::ElementsAre;
using testing::HasSubstr;

/// A folder of its own, gone afterwards.
class AudioFileTest : public testing::Test
{
protected:
    AudioFileTest() : m_folder(MakeFolder()) {}
    ~AudioFileTest() override { std::filesystem::remove_all(m_folder); }

    std::string GetPath(const std::string& name) const { return m_folder / name; }

    static std::string GetError(const std::string& path, unsigned channel = 1)
    {
        try {
            const AudioFile file(path, channel);
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return {};
    }

    /// Two channels with the samples 0, 1, 2 and 0, -1, -2 thousand.
    std::string WriteStereo() const
    {
        const std::array<unsigned char, 56> bytes{
            'R', 'I',  'F', 'F', 48, 0, 0,    0,    'W',  'A',  'V',  'E',  'f',  'm',
            't', ' ',  16,  0,   0,  0, 1,    0,    2,    0,    0x80, 0xBB, 0,    0,
            0,   0xEE, 2,   0,   4,  0, 16,   0,    'd',  'a',  't',  'a',  12,   0,
            0,   0,    0,   0,   0,  0, 0xE8, 0x03, 0x18, 0xFC, 0xD0, 0x07, 0x30, 0xF8};
        const std::string path = GetPath("stereo.wav");
        std::ofstream(path, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        return path;
    }

    const std::filesystem::path m_folder;

private:
    static std::filesystem::path MakeFolder()
    {
        std::string name = (std::filesystem::temp_directory_path() / "audio-XXXXXX").string();
        if (!mkdtemp(name.data()))
            throw std::runtime_error("no folder for files");
        return name;
    }
};

/// Samples in thousands of 16 bits.
std::vector<int> ToThousands(const Audio& audio)
{
    std::vector<int> values;
    for (const float sample : audio.samples)
        values.push_back(static_cast<int>(std::lround(sample * 32.768F)));
    return values;
}

TEST_F(AudioFileTest, GivesBackWhatWasWritten)
{
    for (const char* const name : {"a.wav", "a.flac"}) {
        LtcGenerator generator({.frames = 20, .sampleRate = 44100});
        WriteAudioFile(GetPath(name), generator);
        AudioFile file(GetPath(name));
        EXPECT_EQ(file.GetSampleRate(), 44100U);
        const Audio audio = ReadAll(file);
        const Audio expected = Generate({.frames = 20, .sampleRate = 44100});
        ASSERT_EQ(audio.samples.size(), expected.samples.size());
        for (std::size_t i = 0; i < audio.samples.size(); ++i)
            ASSERT_NEAR(audio.samples[i], expected.samples[i], 1.0 / 32768);
    }
}

TEST_F(AudioFileTest, ReadsTheChannelAsked)
{
    const std::string path = WriteStereo();
    AudioFile first(path);
    EXPECT_THAT(ToThousands(ReadAll(first)), ElementsAre(0, 1, 2));
    AudioFile second(path, 2);
    EXPECT_THAT(ToThousands(ReadAll(second)), ElementsAre(0, -1, -2));
}

TEST_F(AudioFileTest, StartsAgainWithADiscontinuityWhenItLoops)
{
    AudioFile file(WriteStereo(), 1, true);
    std::array<float, 2> samples{};
    std::string reads;
    for (int i = 0; i < 5; ++i) {
        const AudioBlock block = file.Read(samples);
        EXPECT_FALSE(block.end);
        reads += std::to_string(block.samples) + (block.discontinuity ? "d " : " ");
    }
    EXPECT_EQ(reads, "2 1 2d 1 2d ");
}

TEST_F(AudioFileTest, EndsWhenStopped)
{
    AudioFile file(WriteStereo(), 1, true);
    file.Stop();
    EXPECT_TRUE(ReadAll(file).samples.empty());
}

TEST_F(AudioFileTest, SaysWhatIsWrongWithAFile)
{
    EXPECT_THAT(GetError(GetPath("none.wav")), HasSubstr("none.wav': "));
    EXPECT_THAT(GetError(GetPath("none.wav")), HasSubstr("No such file"));
    std::ofstream(GetPath("text.wav")) << "no audio at all";
    EXPECT_THAT(GetError(GetPath("text.wav")), HasSubstr("text.wav': "));
    EXPECT_THAT(GetError(WriteStereo(), 3), HasSubstr("no channel 3 among 2"));
    EXPECT_THAT(GetError(WriteStereo(), 0), HasSubstr("no channel 0 among 2"));
}

TEST_F(AudioFileTest, IsNotWrittenUnderAnotherEndingNorWhereThereIsNoFolder)
{
    LtcGenerator generator({.frames = 1});
    EXPECT_THROW(WriteAudioFile(GetPath("a.mp3"), generator), std::runtime_error);
    EXPECT_THROW(WriteAudioFile(GetPath("none/a.wav"), generator), std::runtime_error);
}

/// A pipe whose near end is read as audio.
class RawPcmTest : public testing::Test
{
protected:
    RawPcmTest() { EXPECT_EQ(pipe2(m_ends.data(), O_CLOEXEC), 0); }
    ~RawPcmTest() override
    {
        close(m_ends[0]);
        CloseFarEnd();
    }

    void Write(const std::vector<unsigned char>& bytes)
    {
        EXPECT_EQ(write(m_ends[1], bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }

    void CloseFarEnd()
    {
        if (m_ends[1] != -1)
            close(m_ends[1]);
        m_ends[1] = -1;
    }

    std::array<int, 2> m_ends{-1, -1};
};

TEST_F(RawPcmTest, ReadsSamplesOf16Bits)
{
    RawPcm source(m_ends[0], {.format = PcmFormat_S16Le, .sampleRate = 8000});
    Write({0xE8, 0x03, 0x18, 0xFC, 0x00, 0x80});
    CloseFarEnd();
    const Audio audio = ReadAll(source);
    EXPECT_THAT(audio.samples, ElementsAre(1000 / 32768.0F, -1000 / 32768.0F, -1.0F));
    EXPECT_EQ(source.GetSampleRate(), 8000U);
}

TEST_F(RawPcmTest, ReadsSamplesInFloatingPoint)
{
    RawPcm source(m_ends[0], {.format = PcmFormat_F32Le});
    Write({0, 0, 0x80, 0x3F, 0, 0, 0, 0xBF});
    CloseFarEnd();
    EXPECT_THAT(ReadAll(source).samples, ElementsAre(1.0F, -0.5F));
}

TEST_F(RawPcmTest, ReadsTheChannelAskedAndDropsASampleThatIsCut)
{
    RawPcm source(m_ends[0], {.channels = 2, .channel = 2});
    Write({1, 0, 0, 0x40, 2, 0, 0, 0x20, 3, 0, 0});
    CloseFarEnd();
    EXPECT_THAT(ReadAll(source).samples, ElementsAre(0.5F, 0.25F));
}

TEST_F(RawPcmTest, PutsSamplesTogetherThatArriveInParts)
{
    RawPcm source(m_ends[0], {});
    std::array<float, 8> samples{};
    Write({0, 0x40, 0});
    EXPECT_EQ(source.Read(samples).samples, 1U);
    EXPECT_EQ(samples[0], 0.5F);
    Write({0x20, 0, 0x10});
    EXPECT_EQ(source.Read(samples).samples, 2U);
    EXPECT_EQ(samples[0], 0.25F);
    EXPECT_EQ(samples[1], 0.125F);
}

TEST_F(RawPcmTest, GivesNoMoreThanThereIsRoomFor)
{
    RawPcm source(m_ends[0], {});
    Write({0, 0x40, 0, 0x20, 0, 0x10});
    CloseFarEnd();
    EXPECT_EQ(ReadAll(source, 2).samples.size(), 3U);
}

TEST_F(RawPcmTest, IsStoppedWhileThePipeIsSilent)
{
    RawPcm source(m_ends[0], {});
    bool end = false;
    std::thread reader([&] {
        std::array<float, 8> samples{};
        end = source.Read(samples).end;
    });
    source.Stop();
    reader.join();
    EXPECT_TRUE(end);
    Write({0, 0x40});
    EXPECT_TRUE(ReadAll(source).samples.empty()) << "it stays stopped";
}

TEST_F(RawPcmTest, RefusesALayoutOutOfRange)
{
    for (const PcmLayout& layout :
         {PcmLayout{.sampleRate = 0}, PcmLayout{.channels = 0}, PcmLayout{.channels = 65},
          PcmLayout{.channel = 0}, PcmLayout{.channels = 2, .channel = 3}})
        EXPECT_THROW(RawPcm(m_ends[0], layout), std::invalid_argument);
}

} // namespace
