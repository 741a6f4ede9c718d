// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <linux/soundcard.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "support/virtual_midi.h"

namespace
{

/// The sequencer as a program sees it that asks the kernel.
class SequencerNode : public TestSupport::VirtualMidi
{
protected:
    ~SequencerNode() override { Close(); }

    bool Open()
    {
        Close();
        m_descriptor = open("/dev/sequencer", O_WRONLY | O_NONBLOCK);
        return m_descriptor != -1;
    }

    void Close()
    {
        if (m_descriptor != -1)
            close(m_descriptor);
        m_descriptor = -1;
    }

    int GetCount()
    {
        int count = -1;
        return ioctl(m_descriptor, SNDCTL_SEQ_NRMIDIS, &count) == 0 ? count : -1;
    }

    /// The name of a port, or "errno N".
    std::string GetName(int index)
    {
        midi_info info{};
        info.device = index;
        if (ioctl(m_descriptor, SNDCTL_MIDI_INFO, &info) != 0)
            return "errno " + std::to_string(errno);
        return std::string(info.name, strnlen(info.name, sizeof info.name));
    }

    int m_descriptor = -1;
};

TEST_F(SequencerNode, WithoutPortsCannotBeOpened)
{
    EXPECT_FALSE(Open());
    EXPECT_EQ(errno, ENODEV);
}

TEST_F(SequencerNode, ListsPortsInTheOrderTheyWereAdded)
{
    EXPECT_EQ(m_sequencer.AddPort("Keys"), 0);
    EXPECT_EQ(m_sequencer.AddPort("Pads"), 1);
    ASSERT_TRUE(Open());
    EXPECT_EQ(GetCount(), 2);
    EXPECT_EQ(GetName(0), "Keys");
    EXPECT_EQ(GetName(1), "Pads");
}

TEST_F(SequencerNode, KeepsTheCountOfTheOpenWhilePortsGo)
{
    m_sequencer.AddPort("Keys");
    const int pads = m_sequencer.AddPort("Pads");
    ASSERT_TRUE(Open());
    m_sequencer.RemovePort(pads);
    EXPECT_EQ(GetCount(), 2);
    EXPECT_EQ(GetName(1), "errno " + std::to_string(EINVAL));
    ASSERT_TRUE(Open());
    EXPECT_EQ(GetCount(), 1);
}

TEST_F(SequencerNode, GivesTheLowestFreeIndexAgain)
{
    const int keys = m_sequencer.AddPort("Keys");
    m_sequencer.AddPort("Pads");
    m_sequencer.RemovePort(keys);
    EXPECT_EQ(m_sequencer.AddPort("Organ"), 0);
    ASSERT_TRUE(Open());
    EXPECT_EQ(GetName(0), "Organ");
}

TEST_F(SequencerNode, CutsALongNameWithoutATerminator)
{
    m_sequencer.AddPort(std::string(40, 'x'));
    ASSERT_TRUE(Open());
    EXPECT_EQ(GetName(0), std::string(30, 'x'));
}

TEST_F(SequencerNode, VanishesAndAppears)
{
    m_sequencer.AddPort("Keys");
    m_sequencer.Vanish();
    EXPECT_FALSE(Open());
    EXPECT_EQ(errno, ENOENT);
    m_sequencer.Appear();
    EXPECT_TRUE(Open());
}

TEST_F(SequencerNode, FailsTheRequestsItIsToldTo)
{
    m_sequencer.AddPort("Keys");
    m_sequencer.AddPort("Pads");
    m_sequencer.FailInformation(0, EIO);
    ASSERT_TRUE(Open());
    EXPECT_EQ(GetName(0), "errno " + std::to_string(EIO));
    EXPECT_EQ(GetName(1), "Pads");
    m_sequencer.FailCount(EIO);
    EXPECT_EQ(GetCount(), -1);
    EXPECT_EQ(errno, EIO);
    m_sequencer.FailCount(0);
    m_sequencer.FailInformation(0, 0);
    EXPECT_EQ(GetCount(), 2);
    EXPECT_EQ(GetName(0), "Keys");
}

TEST_F(SequencerNode, RefusesRequestsItDoesNotKnow)
{
    m_sequencer.AddPort("Keys");
    ASSERT_TRUE(Open());
    int value = 0;
    EXPECT_EQ(ioctl(m_descriptor, SNDCTL_SEQ_NRSYNTHS, &value), -1);
    EXPECT_EQ(errno, ENOTTY);
}

TEST_F(SequencerNode, CanBeOpenedTwiceAtOnce)
{
    m_sequencer.AddPort("Keys");
    ASSERT_TRUE(Open());
    const int second = open("/dev/sequencer", O_WRONLY | O_NONBLOCK);
    EXPECT_NE(second, -1);
    close(second);
    EXPECT_EQ(GetCount(), 1);
}

} // namespace
