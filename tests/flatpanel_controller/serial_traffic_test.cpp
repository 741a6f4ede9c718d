// SPDX-License-Identifier: MIT

// Bytes through a serial port, and waiting for them.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <numeric>
#include <thread>

#include "flatpanel_controller/serial_bench.h"

namespace
{

using Hardware::Serial;
using testing::ElementsAre;
using testing::IsEmpty;

typedef std::vector<std::uint8_t> Bytes;

/// Microseconds that something which must come may take.
constexpr unsigned Patience = 20'000'000;

class SerialTraffic : public TestSupport::SerialBench
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(Open(), 0);
        m_log.Clear();
    }
};

/// Every byte there is, once.
Bytes GetAllBytes()
{
    Bytes bytes(256);
    std::iota(bytes.begin(), bytes.end(), std::uint8_t{0});
    return bytes;
}

} // namespace

TEST_F(SerialTraffic, WritesEveryByteAsItIs)
{
    Bytes bytes = GetAllBytes();
    EXPECT_EQ(m_serial.Write(bytes.data(), bytes.size()), 256);
    EXPECT_EQ(m_port.ReceiveCount(256), GetAllBytes());
    EXPECT_EQ(m_serial.Write(bytes.data(), 0), 0);
    EXPECT_THAT(m_log.GetTexts(), IsEmpty());
}

TEST_F(SerialTraffic, ReadsEveryByteAsItIs)
{
    ASSERT_TRUE(m_port.Send(GetAllBytes()));
    Bytes bytes;
    std::array<unsigned char, 64> piece{};
    while (bytes.size() < 256) {
        const int count = m_serial.Read(piece.data(), piece.size());
        ASSERT_GT(count, 0);
        bytes.insert(bytes.end(), piece.begin(), piece.begin() + count);
    }
    EXPECT_EQ(bytes, GetAllBytes());
    EXPECT_THAT(m_log.GetTexts(), IsEmpty());
}

TEST_F(SerialTraffic, ReadWaitsForTheFirstByteAndTakesNoMoreThanAsked)
{
    std::array<unsigned char, 8> bytes{};
    std::thread peer([this] { m_port.Send(Bytes{1, 2, 3}); });
    EXPECT_GE(m_serial.Read(bytes.data(), 1), 1);
    EXPECT_EQ(bytes[0], 1);
    EXPECT_EQ(bytes[1], 0);
    peer.join();
}

TEST_F(SerialTraffic, ClosedPortIsAFailure)
{
    m_serial.Close();
    std::array<unsigned char, 2> bytes{};
    EXPECT_EQ(m_serial.Read(bytes.data(), bytes.size()), 22);
    EXPECT_EQ(m_serial.Write(bytes.data(), bytes.size()), 22);
    EXPECT_THAT(m_log.GetTexts(),
                ElementsAre("Failed to read from /dev/ttyS0 error Invalid argument",
                            "Failed to write to /dev/ttyS0 error Invalid argument"));
}

TEST_F(SerialTraffic, UnpluggedLineFails)
{
    m_port.Unplug();
    std::array<unsigned char, 2> bytes{};
    EXPECT_EQ(m_serial.Write(bytes.data(), bytes.size()), EIO);
    EXPECT_THAT(m_log.GetTexts(),
                ElementsAre("Failed to write to /dev/ttyS0 error Input/output error"));
    // The end of the line is no failure.
    EXPECT_EQ(m_serial.Read(bytes.data(), bytes.size()), 0);
    EXPECT_EQ(m_log.GetTexts().size(), 1U);
}

TEST_F(SerialTraffic, DefectivePortFailsEveryRead)
{
    m_port.RefuseReads(EIO);
    ASSERT_TRUE(m_port.Send(Bytes{1}));
    std::array<unsigned char, 2> bytes{};
    EXPECT_EQ(m_serial.Read(bytes.data(), bytes.size()), EIO);
    EXPECT_THAT(m_log.GetTexts(),
                ElementsAre("Failed to read from /dev/ttyS0 error Input/output error"));
}

TEST_F(SerialTraffic, WriteWaitsForAStalledLineUntilItGoesOnOrIsGone)
{
    m_port.Stall();
    std::thread hand([this] {
        EXPECT_THAT(m_port.Receive(50), IsEmpty());
        m_port.Resume();
    });
    Bytes bytes{7};
    EXPECT_EQ(m_serial.Write(bytes.data(), 1), 1);
    hand.join();
    EXPECT_THAT(m_port.ReceiveCount(1), ElementsAre(7));

    m_port.Stall();
    std::thread unplugging([this] {
        EXPECT_THAT(m_port.Receive(50), IsEmpty());
        m_port.Unplug();
    });
    EXPECT_EQ(m_serial.Write(bytes.data(), 1), EIO);
    unplugging.join();
}

TEST_F(SerialTraffic, SlowLineOnlyTakesLonger)
{
    m_port.SetDelay(20'000);
    Bytes bytes{1, 2, 3};
    EXPECT_EQ(m_serial.Write(bytes.data(), 3), 3);
    EXPECT_EQ(m_port.GetDelayed(), 20'000);
    EXPECT_THAT(m_port.ReceiveCount(3), ElementsAre(1, 2, 3));
}

TEST_F(SerialTraffic, WaitFindsWhichPortsHaveInput)
{
    Desk::SerialPort otherPort(m_testbed, "/dev/ttyS1");
    Serial other("/dev/ttyS1");
    ASSERT_EQ(other.Open(9600, Serial::parity_none, Serial::flowcontrol_none), 0);
    const std::vector<int> both{m_serial.GetDeviceHandle(), other.GetDeviceHandle()};
    EXPECT_EQ(Serial::WaitForInput(both, 0), 0);
    ASSERT_TRUE(otherPort.Send(Bytes{1}));
    EXPECT_EQ(Serial::WaitForInput(both, Patience), 1);
    EXPECT_EQ(Serial::WaitForInput({m_serial.GetDeviceHandle()}, 0), 0);
    ASSERT_TRUE(m_port.Send(Bytes{2}));
    EXPECT_EQ(Serial::WaitForInput({m_serial.GetDeviceHandle()}, Patience), 1);
    EXPECT_EQ(Serial::WaitForInput(both, Patience), 2);
}

TEST_F(SerialTraffic, WaitSkipsWhatIsNoDescriptor)
{
    ASSERT_TRUE(m_port.Send(Bytes{2}));
    EXPECT_EQ(Serial::WaitForInput({-1, m_serial.GetDeviceHandle(), -7}, Patience), 1);
    EXPECT_EQ(Serial::WaitForInput({-1}, 1000), 0);
    // Numbers that cannot be watched.
    EXPECT_EQ(Serial::WaitForInput({1024, 70000}, 1000), 0);
    EXPECT_EQ(Serial::WaitForInput({}, 1000), 0);
}

TEST_F(SerialTraffic, WaitTellsOfADescriptorThatIsNotOpen)
{
    // A high number: other threads open things too, and get the lowest ones.
    const int closed = fcntl(m_serial.GetDeviceHandle(), F_DUPFD, 500);
    ASSERT_GE(closed, 500);
    close(closed);
    EXPECT_EQ(Serial::WaitForInput({closed}, 1000), -1);
}
