// SPDX-License-Identifier: MIT
#include "common/midi_recording.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <stdexcept>

namespace
{

typedef std::vector<std::uint8_t> Bytes;

/// A recording in a file of the test's own.
class MidiRecordingFile : public testing::Test
{
protected:
    ~MidiRecordingFile() override { std::remove(m_path.c_str()); }

    Tools::MidiRecording Read(const std::string& text)
    {
        std::ofstream(m_path) << text;
        return Tools::MidiRecording::Read(m_path);
    }

    /// What is wrong with a text, without the file's name.
    std::string GetProblem(const std::string& text)
    {
        try {
            Read(text);
        } catch (const std::runtime_error& error) {
            return std::string(error.what()).substr(m_path.size());
        }
        return "nothing";
    }

    const std::string m_path = testing::TempDir() + "midi-recording-" +
                               testing::UnitTest::GetInstance()->current_test_info()->name();
};

TEST_F(MidiRecordingFile, IsReadLineByLine)
{
    const auto recording = Read("# a comment\n\n0 1 90 3C 64\n120 2 3C00F8 # two messages\n");
    ASSERT_EQ(recording.events.size(), 2U);
    EXPECT_EQ(recording.events[0].milliseconds, 0U);
    EXPECT_EQ(recording.events[0].messages, 1U);
    EXPECT_EQ(recording.events[0].bytes, (Bytes{0x90, 0x3C, 0x64}));
    EXPECT_EQ(recording.events[1].milliseconds, 120U);
    EXPECT_EQ(recording.events[1].messages, 2U);
    EXPECT_EQ(recording.events[1].bytes, (Bytes{0x3C, 0x00, 0xF8}));
}

TEST_F(MidiRecordingFile, SaysWhatIsWrongAndWhere)
{
    EXPECT_EQ(GetProblem("0 1 F8\nx 1 F8\n"), ":2: no time in milliseconds");
    EXPECT_EQ(GetProblem("-1 1 F8\n"), ":1: no time in milliseconds");
    EXPECT_EQ(GetProblem("0 F8\n"), ":1: no count of messages");
    EXPECT_EQ(GetProblem("0 1\n"), ":1: no bytes in hexadecimal");
    EXPECT_EQ(GetProblem("0 1 F\n"), ":1: no bytes in hexadecimal");
    EXPECT_EQ(GetProblem("10 1 F8\n9 1 F8\n"), ":2: the time falls");
    EXPECT_EQ(GetProblem("10 1 F8\n10 1 F8\n"), "nothing");
    EXPECT_EQ(GetProblem("4294967295 1 F8\n4294967296 1 F8\n"), ":2: no time in milliseconds");
    EXPECT_EQ(GetProblem("0 3 F8F8\n"), ":1: more messages than bytes");
}

TEST_F(MidiRecordingFile, ThatIsMissingIsNamed)
{
    try {
        Tools::MidiRecording::Read("/nowhere/show.txt");
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "/nowhere/show.txt: cannot be read");
    }
}

TEST_F(MidiRecordingFile, ThatHasNoEndIsRefused)
{
    try {
        Tools::MidiRecording::Read("/dev/zero");
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "/dev/zero: is longer than 67108864 bytes");
    }
}

} // namespace
