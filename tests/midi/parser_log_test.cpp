// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <string>

#include "midi/parser_bench.h"
#include "os/log.h"
#include "support/log_capture.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using TestSupport::LogCapture;
using TestSupport::OpenSystemExclusive;
using TestSupport::ParserBench;

namespace
{

constexpr unsigned AllLevels = 31;

/// The log of a parser whose trace is widened.
class MidiParserLog : public testing::Test
{
protected:
    /// The texts that the bytes cause.
    std::vector<std::string> Log(const std::vector<unsigned char>& bytes)
    {
        m_capture.Clear();
        m_bench.Feed(bytes);
        return m_capture.GetTexts();
    }

    LogCapture m_capture{"Hardware/Midi", AllLevels};
    ParserBench m_bench;
};

std::string Status(unsigned char byte)
{
    return std::string("Received midi status byte: ") + static_cast<char>(byte);
}

std::string Data(unsigned char byte)
{
    return std::string("Received midi data byte: ") + static_cast<char>(byte);
}

} // namespace

TEST_F(MidiParserLog, StatusByteIsOneRawCharacter)
{
    for (unsigned value = 0x80; value <= 0xFF; ++value) {
        const auto byte = static_cast<unsigned char>(value);
        const auto texts = Log({byte});
        ASSERT_FALSE(texts.empty()) << value;
        EXPECT_EQ(texts.front(), Status(byte)) << value;
    }
}

TEST_F(MidiParserLog, DataByteIsOneRawCharacterZeroIncluded)
{
    for (unsigned value = 0x00; value <= 0x7F; ++value) {
        const auto byte = static_cast<unsigned char>(value);
        EXPECT_THAT(Log({byte}), ElementsAre(Data(byte))) << value;
    }
}

TEST_F(MidiParserLog, StartOfSystemExclusiveIsNoted)
{
    EXPECT_THAT(Log({0xF0}), ElementsAre(Status(0xF0), "Start of sysEx message"));
}

TEST_F(MidiParserLog, EndOfSystemExclusiveIsNotedInEveryState)
{
    EXPECT_THAT(Log({0xF7}), ElementsAre(Status(0xF7), "End of sysEx message"));
    Log({0xF0, 0x01});
    EXPECT_THAT(Log({0xF7}), ElementsAre(Status(0xF7), "End of sysEx message"));
    Log({0x90, 0x3C});
    EXPECT_THAT(Log({0xF7}), ElementsAre(Status(0xF7), "End of sysEx message"));
}

TEST_F(MidiParserLog, SystemStatusIsNotedWithItsLength)
{
    for (unsigned value = 0xF1; value <= 0xFF; ++value) {
        if (value == 0xF7)
            continue;
        const auto byte = static_cast<unsigned char>(value);
        const char* const length = value == 0xF1 ? "2" : value == 0xF2 ? "3" : "1";
        EXPECT_THAT(Log({byte}),
                    ElementsAre(Status(byte),
                                std::string("Midi System message - expected size: ") + length))
            << value;
    }
}

TEST_F(MidiParserLog, ChannelStatusIsNotedWithItsLength)
{
    for (unsigned value = 0x80; value <= 0xEF; ++value) {
        const auto byte = static_cast<unsigned char>(value);
        const char* const length = value >= 0xC0 && value <= 0xDF ? "2" : "3";
        EXPECT_THAT(Log({byte}),
                    ElementsAre(Status(byte), std::string("Midi Note - expected size: ") + length))
            << value;
    }
}

TEST_F(MidiParserLog, DataByteIsAllThereIsInEveryState)
{
    EXPECT_THAT(Log({0x01}), ElementsAre(Data(0x01)));
    Log({0x90});
    EXPECT_THAT(Log({0x3C, 0x64}), ElementsAre(Data(0x3C), Data(0x64)));
    Log({0xF0});
    EXPECT_THAT(Log({0x02}), ElementsAre(Data(0x02)));
}

TEST_F(MidiParserLog, AbandonedSystemExclusiveIsNotNoted)
{
    Log(OpenSystemExclusive(127));
    EXPECT_THAT(Log({0x01, 0x02}), ElementsAre(Data(0x01), Data(0x02)));
}

TEST_F(MidiParserLog, LinesComeBeforeTheMessage)
{
    std::vector<std::size_t> linesBefore;
    const auto count = [&] { linesBefore.push_back(m_capture.GetTexts().size()); };
    using Hardware::Midi::Device;
    Device& device = m_bench.GetDevice();
    QObject::connect(&device, &Device::txShortMessage, &device, count, Qt::DirectConnection);
    QObject::connect(&device, &Device::txSysExMessage, &device, count, Qt::DirectConnection);
    Log({0xF8});
    Log({0xF0, 0xF7});
    Log({0xC0, 0x05});
    EXPECT_THAT(linesBefore, ElementsAre(2U, 4U, 3U));
}

TEST_F(MidiParserLog, LinesAreTraceOfTheMidiContext)
{
    Log({0x90, 0x3C, 0x64, 0xF8, 0xF0, 0x01, 0xF7, 0xF1});
    for (const auto& line : m_capture.GetLines()) {
        EXPECT_EQ(line.context, "Hardware/Midi");
        EXPECT_EQ(line.level, 1U);
    }
}

TEST_F(MidiParserLog, LinesSayWhereTheyComeFrom)
{
    Log({0x90, 0x3C, 0xF8, 0xF0, 0xF7});
    for (const auto& line : m_capture.GetLines()) {
        EXPECT_EQ(line.file, "midi/linux/midi_device.cpp");
        EXPECT_THAT(line.function, HasSubstr("void Hardware::Midi::_DeviceImpl::Received"));
        EXPECT_THAT(line.function, HasSubstr("(unsigned char)"));
        EXPECT_GT(line.line, 0U);
        EXPECT_THAT(line.stack, Not(IsEmpty()));
    }
}

TEST(MidiParserLogByDefault, WritesNothing)
{
    const LogCapture capture;
    ParserBench bench;
    bench.Feed({0x90, 0x3C, 0x64, 0xF8, 0xF0, 0x01, 0xF7, 0xF1});
    EXPECT_THAT(capture.GetTexts(), IsEmpty());
}

TEST(MidiParserLogByDefault, NeedsTraceInTheContextsAboveToo)
{
    ParserBench bench;
    const LogCapture above("Hardware", 30);
    const LogCapture own("Hardware/Midi", AllLevels);
    bench.Feed({0x90, 0x3C, 0x64});
    EXPECT_THAT(own.GetTexts(), IsEmpty());
}
