// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <gmock/gmock.h>

#include <vector>

#include "hardware/midi/device.h"
#include "support/log_capture.h"
#include "support/midi_log_levels.h"
#include "support/virtual_midi.h"

namespace
{

using Hardware::Midi::Device;
using testing::ElementsAre;
using testing::IsEmpty;

typedef std::vector<std::uint8_t> Bytes;

/// A device that may transmit, on two virtual ports.
class MidiTransmit : public TestSupport::VirtualMidi
{
protected:
    MidiTransmit() { m_device.SetOutput(L"Keys"); }

    ~MidiTransmit() override { TestSupport::ExpectMidiLogLevels(m_log); }

    bool Send(const Bytes& bytes)
    {
        return m_device.SendBuffer(bytes.data(), static_cast<unsigned>(bytes.size()));
    }

    /// Texts of the error lines so far.
    std::vector<std::string> GetErrors() const
    {
        std::vector<std::string> texts;
        for (const auto& line : m_log.GetLines())
            if (line.level == 8)
                texts.push_back(line.text);
        return texts;
    }

    Desk::MidiPort m_keys{m_testbed, m_sequencer, "Keys"};
    Desk::MidiPort m_pads{m_testbed, m_sequencer, "Pads"};
    TestSupport::LogCapture m_log{"Hardware/Midi", 31};
    Device m_device;
};

TEST_F(MidiTransmit, IsOffAtFirstAndThenSendsNothingAndLogsNothing)
{
    m_log.Clear();
    EXPECT_FALSE(m_device.IsTransmitEnabled());
    EXPECT_FALSE(Send({0x90, 60, 100}));
    EXPECT_EQ(m_keys.CountOpened(), 0);
    EXPECT_THAT(m_log.GetTexts(), IsEmpty());
}

TEST_F(MidiTransmit, OpensNothingBeforeTheFirstSend)
{
    m_device.EnableTransmit(true);
    EXPECT_TRUE(m_device.IsTransmitEnabled());
    EXPECT_EQ(m_keys.CountOpened(), 0);
}

TEST_F(MidiTransmit, OpensTheOutputOnceAndKeepsItOpen)
{
    m_device.EnableTransmit(true);
    EXPECT_TRUE(Send({0x90, 60, 100}));
    EXPECT_TRUE(Send({0x80, 60, 0}));
    EXPECT_EQ(m_keys.ReceiveCount(6), (Bytes{0x90, 60, 100, 0x80, 60, 0}));
    EXPECT_EQ(m_keys.CountOpened(), 1);
    EXPECT_EQ(m_keys.CountOpen(), 1);
    EXPECT_EQ(m_keys.GetLastOpenFlags(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
}

TEST_F(MidiTransmit, SwitchedOffClosesTheOutput)
{
    m_device.EnableTransmit(true);
    Send({0xF8});
    m_device.EnableTransmit(false);
    EXPECT_EQ(m_keys.CountOpen(), 0);
    EXPECT_FALSE(m_device.IsTransmitEnabled());
    EXPECT_FALSE(Send({0xF8}));
    m_device.EnableTransmit(true);
    EXPECT_TRUE(Send({0xF8}));
    EXPECT_EQ(m_keys.CountOpened(), 2);
}

TEST_F(MidiTransmit, SwitchedOnTwiceKeepsTheOutput)
{
    m_device.EnableTransmit(true);
    Send({0xF8});
    m_device.EnableTransmit(true);
    Send({0xF8});
    EXPECT_EQ(m_keys.CountOpened(), 1);
}

TEST_F(MidiTransmit, SendsShortMessagesWithRunningStatus)
{
    m_device.EnableTransmit(true);
    EXPECT_FALSE(m_device.SendShortMessage(0x643C90));
    EXPECT_TRUE(m_device.SendShortMessage(0x643C90));
    EXPECT_EQ(m_keys.ReceiveCount(5), (Bytes{0x90, 0x3C, 0x64, 0x3C, 0x64}));
}

TEST_F(MidiTransmit, OfNoBytesStillOpensTheOutput)
{
    m_device.EnableTransmit(true);
    EXPECT_FALSE(m_device.SendShortMessage(0x00003C40));
    EXPECT_EQ(m_keys.CountOpened(), 1);
    EXPECT_THAT(m_keys.Receive(0), IsEmpty());
}

TEST_F(MidiTransmit, ToAnUnknownPortFailsWithATrace)
{
    m_device.SetOutput(L"Organ");
    m_device.EnableTransmit(true);
    EXPECT_FALSE(Send({0xF8}));
    EXPECT_EQ(m_log.Count("Midi output Organ not found"), 1U);
    EXPECT_THAT(GetErrors(), IsEmpty());
}

TEST_F(MidiTransmit, MatchesTheWholeName)
{
    m_device.SetOutput(L"Key");
    m_device.EnableTransmit(true);
    EXPECT_FALSE(Send({0xF8}));
    EXPECT_EQ(m_log.Count("Midi output Key not found"), 1U);
}

TEST_F(MidiTransmit, GoesToTheLaterOfTwoPortsWithOneName)
{
    Desk::MidiPort later(m_testbed, m_sequencer, "Keys");
    m_device.EnableTransmit(true);
    EXPECT_TRUE(Send({0xFE}));
    EXPECT_EQ(later.ReceiveCount(1), Bytes{0xFE});
    EXPECT_THAT(m_keys.Receive(0), IsEmpty());
}

TEST_F(MidiTransmit, ToABusyPortFailsWithAnErrorAndTriesAgainNextTime)
{
    m_keys.SetBusy(true);
    m_device.EnableTransmit(true);
    EXPECT_FALSE(Send({0xF8}));
    EXPECT_THAT(GetErrors(),
                ElementsAre("Error opening Midi output Keys: Device or resource busy"));
    m_keys.SetBusy(false);
    EXPECT_TRUE(Send({0xF8}));
}

TEST_F(MidiTransmit, ThatFitsOnlyPartlyFailsAndClosesTheOutput)
{
    m_device.EnableTransmit(true);
    m_keys.Fill(2);
    EXPECT_FALSE(Send({0x90, 60, 100}));
    EXPECT_THAT(GetErrors(), ElementsAre("Partial write to Midi output Keys"));
    EXPECT_EQ(m_keys.CountOpen(), 0);
    // What fitted has gone out: nothing is queued and nothing tried again.
    EXPECT_EQ(m_keys.ReceiveCount(2), (Bytes{0x90, 60}));
}

TEST_F(MidiTransmit, ToAFullPortFailsAndOpensItAgainNextTime)
{
    m_device.EnableTransmit(true);
    Send({0xF8});
    m_keys.Fill();
    EXPECT_FALSE(Send({0xF8}));
    EXPECT_THAT(GetErrors(), ElementsAre("Error writing to Midi output Keys: "
                                         "Resource temporarily unavailable"));
    EXPECT_EQ(m_keys.CountOpen(), 0);
    m_keys.Drain();
    EXPECT_TRUE(Send({0xF8}));
    EXPECT_EQ(m_keys.CountOpened(), 2);
}

TEST_F(MidiTransmit, AfterAFailureSendsTheStatusByteAgain)
{
    m_device.EnableTransmit(true);
    m_device.SendShortMessage(0x643C90);
    m_keys.ReceiveCount(3);
    m_keys.Fill();
    EXPECT_FALSE(m_device.SendShortMessage(0x643C90));
    m_keys.Drain();
    EXPECT_FALSE(m_device.SendShortMessage(0x643C90));
    EXPECT_EQ(m_keys.ReceiveCount(3), (Bytes{0x90, 0x3C, 0x64}));
}

TEST_F(MidiTransmit, ToAPortThatWasUnpluggedFailsUntilItIsBack)
{
    m_device.EnableTransmit(true);
    Send({0xF8});
    m_keys.Unplug();
    EXPECT_FALSE(Send({0xF8}));
    EXPECT_THAT(GetErrors(), ElementsAre("Error writing to Midi output Keys: No such device"));
    EXPECT_FALSE(Send({0xF8}));
    EXPECT_EQ(m_log.Count("Midi output Keys not found"), 1U);
    m_keys.Plug();
    EXPECT_TRUE(Send({0xFA}));
    EXPECT_EQ(m_keys.ReceiveCount(1), Bytes{0xFA});
}

TEST_F(MidiTransmit, ToADeadServerFails)
{
    m_device.EnableTransmit(true);
    Send({0xF8});
    m_keys.KillServer();
    EXPECT_FALSE(Send({0xF8}));
    EXPECT_FALSE(Send({0xF8}));
    EXPECT_THAT(GetErrors(), ElementsAre("Error writing to Midi output Keys: "
                                         "Transport endpoint is not connected",
                                         "Error opening Midi output Keys: "
                                         "Transport endpoint is not connected"));
}

TEST_F(MidiTransmit, StaysOnTheOldPortUntilSwitchedOffOrFailed)
{
    m_device.EnableTransmit(true);
    Send({0xF8});
    m_device.SetOutput(L"Pads");
    EXPECT_EQ(m_log.Count("Setting Midi output to Pads"), 1U);
    Send({0xFA});
    EXPECT_EQ(m_keys.ReceiveCount(2), (Bytes{0xF8, 0xFA}));
    m_keys.Fill();
    EXPECT_FALSE(Send({0xFB}));
    EXPECT_TRUE(Send({0xFC}));
    EXPECT_EQ(m_pads.ReceiveCount(1), Bytes{0xFC});
}

TEST_F(MidiTransmit, LogsItsSwitch)
{
    m_log.Clear();
    m_device.EnableTransmit(true);
    m_device.EnableTransmit(false);
    EXPECT_THAT(m_log.GetTexts(),
                ElementsAre("Setting transmit enable to true", "Setting transmit enable to false"));
}

TEST_F(MidiTransmit, EndsWithTheDevice)
{
    {
        Device device;
        device.SetOutput(L"Pads");
        device.EnableTransmit(true);
        device.SendShortMessage(0xF8);
        EXPECT_EQ(m_pads.CountOpen(), 1);
    }
    EXPECT_EQ(m_pads.CountOpen(), 0);
}

} // namespace
