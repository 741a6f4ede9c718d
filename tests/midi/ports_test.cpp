// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <gmock/gmock.h>

#include <cerrno>
#include <memory>

#include "hardware/midi/device.h"
#include "support/log_capture.h"
#include "support/midi_log_levels.h"
#include "support/virtual_midi.h"

namespace
{

using Hardware::Midi::Device;
using testing::ElementsAre;
using testing::IsEmpty;

typedef std::list<std::wstring> Names;

/// The list of ports as the library makes it, with the log lines on the way.
class MidiPorts : public TestSupport::VirtualMidi
{
protected:
    ~MidiPorts() override { TestSupport::ExpectMidiLogLevels(m_log); }

    TestSupport::LogCapture m_log{"Hardware/Midi", 31};
};

TEST_F(MidiPorts, AreNoneWithoutASequencerAndThatIsNoError)
{
    m_sequencer.Vanish();
    EXPECT_THAT(Device::GetInputs(), IsEmpty());
    const auto lines = m_log.GetLines();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].text, "Error opening Midi sequencer: No such file or directory");
    EXPECT_EQ(lines[0].level, 1U);
}

TEST_F(MidiPorts, AreNoneWhenTheSequencerHasNoPort)
{
    EXPECT_THAT(Device::GetInputs(), IsEmpty());
    EXPECT_THAT(m_log.GetTexts(), ElementsAre("Error opening Midi sequencer: No such device"));
}

TEST_F(MidiPorts, AreListedInWideOrderForBothDirections)
{
    for (const char* const name : {"Pads", "Keys", "organ"})
        m_sequencer.AddPort(name);
    const Names expected{L"Keys", L"Pads", L"organ"};
    EXPECT_EQ(Device::GetInputs(), expected);
    EXPECT_EQ(Device::GetOutputs(), expected);
}

TEST_F(MidiPorts, AreAskedForAnewOnEveryCall)
{
    const int keys = m_sequencer.AddPort("Keys");
    EXPECT_EQ(Device::GetInputs(), Names{L"Keys"});
    m_sequencer.RemovePort(keys);
    m_sequencer.AddPort("Pads");
    EXPECT_EQ(Device::GetInputs(), Names{L"Pads"});
    EXPECT_EQ(Device::GetOutputs(), Names{L"Pads"});
    EXPECT_EQ(m_sequencer.CountOpened(), 3);
}

TEST_F(MidiPorts, AreAskedForThroughASequencerOpenForWritingAndNotBlocking)
{
    m_sequencer.AddPort("Keys");
    Device::GetInputs();
    EXPECT_EQ(m_sequencer.GetLastOpenFlags(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    EXPECT_EQ(m_sequencer.CountOpen(), 0);
}

TEST_F(MidiPorts, AreReportedWithIndexAndPath)
{
    for (int i = 0; i <= 12; ++i)
        m_sequencer.AddPort("Port " + std::string(1, static_cast<char>('a' + i)));
    Device::GetInputs();
    const auto lines = m_log.GetLines();
    ASSERT_EQ(lines.size(), 13U);
    EXPECT_EQ(lines[0].text, "Found midi device Port a at index 0, path /dev/midi");
    EXPECT_EQ(lines[3].text, "Found midi device Port d at index 3, path /dev/midi3");
    EXPECT_EQ(lines[12].text, "Found midi device Port m at index 12, path /dev/midi12");
    for (const auto& line : lines)
        EXPECT_EQ(line.level, 1U);
}

TEST_F(MidiPorts, OfOneNameAreOneEntry)
{
    m_sequencer.AddPort("Keys");
    m_sequencer.AddPort("Keys");
    EXPECT_EQ(Device::GetInputs(), Names{L"Keys"});
}

TEST_F(MidiPorts, MayHaveNoName)
{
    m_sequencer.AddPort("");
    EXPECT_EQ(Device::GetInputs(), Names{L""});
}

TEST_F(MidiPorts, HaveNamesOfSignedBytesThatSortBeforeAscii)
{
    m_sequencer.AddPort("a");
    m_sequencer.AddPort("\xC3\x84");
    const std::wstring umlaut{static_cast<wchar_t>(0xC3 - 256), static_cast<wchar_t>(0x84 - 256)};
    EXPECT_EQ(Device::GetInputs(), (Names{umlaut, L"a"}));
    // The log has the driver's own bytes again.
    EXPECT_EQ(m_log.Count("Found midi device \xC3\x84 at index 1, path /dev/midi1"), 1U);
}

TEST_F(MidiPorts, WithANameOfTheWholeFieldAreReadToItsEndAndNoFurther)
{
    m_sequencer.AddPort(std::string(40, 'x'));
    EXPECT_EQ(Device::GetInputs(), Names{std::wstring(30, L'x')});
}

TEST_F(MidiPorts, AreNoneWhenTheCountFailsAndThatIsAnError)
{
    m_sequencer.AddPort("Keys");
    m_sequencer.FailCount(EIO);
    EXPECT_THAT(Device::GetInputs(), IsEmpty());
    const auto lines = m_log.GetLines();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].text, "Error getting midi device count from sequencer: Input/output error");
    EXPECT_EQ(lines[0].level, 8U);
    EXPECT_EQ(m_sequencer.CountOpen(), 0);
}

TEST_F(MidiPorts, ThatCannotBeAskedAreLeftOut)
{
    for (const char* const name : {"A", "B", "C"})
        m_sequencer.AddPort(name);
    m_sequencer.FailInformation(1, EINVAL);
    EXPECT_EQ(Device::GetInputs(), (Names{L"A", L"C"}));
    const auto lines = m_log.GetLines();
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[1].text, "Error enumerating midi device index 1: Invalid argument");
    EXPECT_EQ(lines[1].level, 8U);
}

TEST_F(MidiPorts, HaveLogLinesWithFileFunctionAndLine)
{
    m_sequencer.Vanish();
    Device::GetInputs();
    const auto line = m_log.GetLines().at(0);
    EXPECT_EQ(line.context, "Hardware/Midi");
    EXPECT_EQ(line.file, "midi/linux/midi_device.cpp");
    EXPECT_THAT(line.function, testing::HasSubstr("DevMap::GetDevMap()"));
    EXPECT_GT(line.line, 0U);
    EXPECT_FALSE(line.stack.empty());
}

} // namespace
