// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <sys/select.h>
#include <unistd.h>

#include <cerrno>
#include <numeric>
#include <vector>

#include "support/virtual_midi.h"

namespace
{

typedef std::vector<std::uint8_t> Bytes;

/// A port as a program sees it that opens its device file.
class MidiPortNode : public TestSupport::VirtualMidi
{
protected:
    ~MidiPortNode() override { Close(); }

    bool Open(int flags)
    {
        Close();
        m_descriptor = open(m_port.GetPath().c_str(), flags | O_NONBLOCK);
        return m_descriptor != -1;
    }

    void Close()
    {
        if (m_descriptor != -1)
            close(m_descriptor);
        m_descriptor = -1;
    }

    bool IsReadable() const
    {
        fd_set set;
        FD_ZERO(&set);
        FD_SET(m_descriptor, &set);
        timeval now{0, 0};
        return select(m_descriptor + 1, &set, nullptr, nullptr, &now) == 1;
    }

    /// Bytes read, or -errno.
    ssize_t Read(Bytes& bytes)
    {
        const ssize_t length = read(m_descriptor, bytes.data(), bytes.size());
        return length == -1 ? -errno : length;
    }

    /// Bytes written, or -errno.
    ssize_t Write(const Bytes& bytes)
    {
        const ssize_t length = write(m_descriptor, bytes.data(), bytes.size());
        return length == -1 ? -errno : length;
    }

    Desk::MidiPort m_port{m_testbed, m_sequencer, "Keys"};
    int m_descriptor = -1;
};

TEST_F(MidiPortNode, TakesItsFileFromItsIndex)
{
    EXPECT_EQ(m_port.GetPath(), "/dev/midi");
    const Desk::MidiPort second(m_testbed, m_sequencer, "Pads");
    EXPECT_EQ(second.GetPath(), "/dev/midi1");
}

TEST_F(MidiPortNode, PassesEveryByteThrough)
{
    Bytes all(256);
    std::iota(all.begin(), all.end(), std::uint8_t(0));
    ASSERT_TRUE(Open(O_RDONLY));
    ASSERT_TRUE(m_port.Send(all));
    Bytes received(512);
    EXPECT_EQ(Read(received), 256);
    received.resize(256);
    EXPECT_EQ(received, all);

    ASSERT_TRUE(Open(O_WRONLY));
    EXPECT_EQ(Write(all), 256);
    EXPECT_EQ(m_port.ReceiveCount(256), all);
}

TEST_F(MidiPortNode, HasNothingToReadAtFirst)
{
    ASSERT_TRUE(Open(O_RDONLY));
    EXPECT_FALSE(IsReadable());
    Bytes one(1);
    EXPECT_EQ(Read(one), -EAGAIN);
}

TEST_F(MidiPortNode, UnpluggedIsReadableAndGone)
{
    ASSERT_TRUE(Open(O_RDWR));
    m_port.Unplug();
    EXPECT_TRUE(IsReadable());
    Bytes one(1);
    EXPECT_EQ(Read(one), -ENODEV);
    EXPECT_EQ(Write(one), -ENODEV);
    EXPECT_FALSE(Open(O_RDWR));
    EXPECT_EQ(errno, ENOENT);
}

TEST_F(MidiPortNode, PluggedAgainIsANewDeviceWhileTheOldStaysGone)
{
    ASSERT_TRUE(Open(O_RDWR));
    const int old = m_descriptor;
    m_descriptor = -1;
    m_port.Unplug();
    m_port.Plug();
    ASSERT_TRUE(Open(O_RDWR));
    const Bytes sent{1, 2, 3};
    ASSERT_TRUE(m_port.Send(sent));
    Bytes received(3);
    EXPECT_EQ(Read(received), 3);
    EXPECT_EQ(received, sent);
    EXPECT_EQ(read(old, received.data(), 1), -1);
    EXPECT_EQ(errno, ENODEV);
    close(old);
}

TEST_F(MidiPortNode, BusyRefusesFurtherOpens)
{
    m_port.SetBusy(true);
    EXPECT_FALSE(Open(O_RDONLY));
    EXPECT_EQ(errno, EBUSY);
    m_port.SetBusy(false);
    EXPECT_TRUE(Open(O_RDONLY));
}

TEST_F(MidiPortNode, FilledTakesWhatFitsAndThenNothing)
{
    ASSERT_TRUE(Open(O_WRONLY));
    m_port.Fill(2);
    EXPECT_EQ(Write({1, 2, 3}), 2);
    EXPECT_EQ(Write({3}), -EAGAIN);
    m_port.Drain();
    EXPECT_EQ(Write({3}), 1);
    EXPECT_EQ(m_port.ReceiveCount(3), (Bytes{1, 2, 3}));
}

TEST_F(MidiPortNode, FillsByItselfWhenNobodyTakesTheBytes)
{
    ASSERT_TRUE(Open(O_WRONLY));
    ssize_t written = 0;
    for (int i = 0; i < 100000 && written >= 0; ++i)
        written = Write(Bytes(64));
    EXPECT_EQ(written, -EAGAIN);
}

TEST_F(MidiPortNode, OfADeadServerIsNotConnected)
{
    ASSERT_TRUE(Open(O_RDWR));
    m_port.KillServer();
    EXPECT_TRUE(IsReadable());
    Bytes one(1);
    EXPECT_EQ(Read(one), -ENOTCONN);
    EXPECT_EQ(Write(one), -ENOTCONN);
    EXPECT_FALSE(Open(O_RDWR));
    EXPECT_EQ(errno, ENOTCONN);
}

TEST_F(MidiPortNode, CountsWhoHasItOpen)
{
    EXPECT_EQ(m_port.CountOpen(), 0);
    ASSERT_TRUE(Open(O_RDONLY));
    EXPECT_EQ(m_port.CountOpen(), 1);
    Close();
    EXPECT_EQ(m_port.CountOpen(), 0);
    EXPECT_EQ(m_port.CountOpened(), 1);
}

TEST_F(MidiPortNode, CanBePluggedAndUnpluggedWithoutEnd)
{
    for (int i = 0; i < 1000; ++i) {
        ASSERT_TRUE(Open(O_RDONLY));
        m_port.Unplug();
        m_port.Plug();
    }
}

TEST_F(MidiPortNode, DoesNotExistForAMachineThatHasNone)
{
    EXPECT_EQ(open("/dev/ttyS0", O_RDONLY | O_NONBLOCK), -1);
    EXPECT_EQ(errno, ENOENT);
}

} // namespace
