// SPDX-License-Identifier: MIT

// The virtual serial port, worked by system calls as any program makes them.

#include "desk/serial_port.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <thread>

#include "desk/kernel_testbed.h"
#include "support/wait.h"

namespace
{

using Desk::LineSettings;
using testing::ElementsAre;
using testing::IsEmpty;

typedef std::vector<std::uint8_t> Bytes;

constexpr char Path[] = "/dev/ttyS0";

class DeskSerialPort : public testing::Test
{
protected:
    ~DeskSerialPort() override
    {
        for (const int descriptor : m_descriptors)
            close(descriptor);
    }

    int Open(int flags = O_RDWR | O_NOCTTY)
    {
        const int descriptor = open(Path, flags);
        if (descriptor != -1)
            m_descriptors.push_back(descriptor);
        return descriptor;
    }
    static void Configure(int descriptor, speed_t speed, tcflag_t flags)
    {
        termios settings{};
        ASSERT_EQ(tcgetattr(descriptor, &settings), 0);
        cfmakeraw(&settings);
        cfsetspeed(&settings, speed);
        settings.c_cflag &= ~static_cast<tcflag_t>(CSIZE | PARENB);
        settings.c_cflag |= flags;
        ASSERT_EQ(tcsetattr(descriptor, TCSANOW, &settings), 0);
    }

    /// Bytes that wait in the port's buffer.
    static int CountQueued(int descriptor)
    {
        int count = -1;
        EXPECT_EQ(ioctl(descriptor, TIOCOUTQ, &count), 0);
        return count;
    }

    Desk::KernelTestbed m_testbed;
    Desk::SerialPort m_port{m_testbed, Path};
    std::vector<int> m_descriptors;
};

} // namespace

TEST_F(DeskSerialPort, BeginsAsALoginLine)
{
    const int descriptor = Open();
    EXPECT_EQ(isatty(descriptor), 1);
    termios settings{};
    EXPECT_EQ(tcgetattr(descriptor, &settings), 0);
    EXPECT_EQ(cfgetospeed(&settings), static_cast<speed_t>(B9600));
    EXPECT_NE(settings.c_lflag & ICANON, 0U);
    EXPECT_EQ(m_port.GetSettings(), LineSettings());
}

TEST_F(DeskSerialPort, KeepsParityAndDataBitsAsARealPortDoes)
{
    const int descriptor = Open();
    Configure(descriptor, B4800, PARENB | PARODD | CS7 | CSTOPB | CRTSCTS | CLOCAL);
    LineSettings expected;
    expected.baud = 4800;
    expected.parity = LineSettings::Parity::Odd;
    expected.dataBits = 7;
    expected.stopBits = 2;
    expected.hardwareFlow = true;
    expected.ignoresModem = true;
    expected.raw = true;
    EXPECT_EQ(m_port.GetSettings(), expected);
    termios back{};
    EXPECT_EQ(tcgetattr(descriptor, &back), 0);
    EXPECT_EQ(back.c_cflag & (PARENB | PARODD | CSIZE),
              static_cast<tcflag_t>(PARENB | PARODD | CS7));
    Configure(descriptor, B4800, CS8);
    EXPECT_EQ(m_port.GetSettings().parity, LineSettings::Parity::None);
}

TEST_F(DeskSerialPort, SettingsOfAnotherProgramAreFound)
{
    LineSettings other;
    other.baud = 19200;
    other.parity = LineSettings::Parity::Even;
    other.dataBits = 5;
    other.xonXoff = true;
    m_port.SetSettings(other);
    EXPECT_EQ(m_port.GetSettings(), other);
    termios settings{};
    EXPECT_EQ(tcgetattr(Open(), &settings), 0);
    EXPECT_EQ(cfgetispeed(&settings), static_cast<speed_t>(B19200));
    EXPECT_EQ(settings.c_cflag & (PARENB | CSIZE), static_cast<tcflag_t>(PARENB | CS5));
    other.baud = 12345;
    EXPECT_THROW(m_port.SetSettings(other), std::invalid_argument);
}

TEST_F(DeskSerialPort, BytesGoBothWays)
{
    const int descriptor = Open();
    Configure(descriptor, B9600, CS8);
    EXPECT_EQ(write(descriptor, "\x01\x0A\x0D", 3), 3);
    EXPECT_THAT(m_port.ReceiveCount(3), ElementsAre(1, 10, 13));
    EXPECT_TRUE(m_port.Send(Bytes{3, 17, 19}));
    std::uint8_t bytes[3] = {};
    EXPECT_EQ(read(descriptor, bytes, 3), 3);
    EXPECT_THAT(bytes, ElementsAre(3, 17, 19));
    EXPECT_THAT(m_port.Receive(0), IsEmpty());
}

TEST_F(DeskSerialPort, UnpluggedItHangsUp)
{
    const int descriptor = Open();
    Configure(descriptor, B9600, CS8);
    m_port.Unplug();
    EXPECT_FALSE(m_port.IsPlugged());
    char byte = 0;
    EXPECT_EQ(read(descriptor, &byte, 1), 0);
    EXPECT_EQ(write(descriptor, &byte, 1), -1);
    EXPECT_EQ(errno, EIO);
    EXPECT_EQ(isatty(descriptor), 0);
    EXPECT_EQ(Open(), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_FALSE(m_port.Send(Bytes{1}));
    EXPECT_THAT(m_port.Receive(0), IsEmpty());
    m_port.Unplug();
}

TEST_F(DeskSerialPort, PluggedAgainItIsAnother)
{
    const int before = Open();
    Configure(before, B4800, CS8);
    m_port.Unplug();
    m_port.Plug();
    m_port.Plug();
    EXPECT_TRUE(m_port.IsPlugged());
    EXPECT_EQ(m_port.GetSettings(), LineSettings());
    EXPECT_EQ(m_port.CountOpened(), 0);
    const int after = Open();
    Configure(after, B9600, CS8);
    EXPECT_EQ(write(before, "x", 1), -1);
    EXPECT_EQ(write(after, "y", 1), 1);
    EXPECT_THAT(m_port.ReceiveCount(1), ElementsAre('y'));
    EXPECT_EQ(m_port.CountOpen(), 1);
}

TEST_F(DeskSerialPort, RefusesToOpenWhenToldSo)
{
    m_port.RefuseOpen(EBUSY);
    EXPECT_EQ(Open(), -1);
    EXPECT_EQ(errno, EBUSY);
    m_port.RefuseOpen(0);
    EXPECT_NE(Open(O_RDWR | O_NONBLOCK), -1);
    EXPECT_EQ(m_port.GetLastOpenFlags(), O_RDWR | O_NONBLOCK);
}

TEST_F(DeskSerialPort, StalledItTakesNothing)
{
    const int descriptor = Open(O_RDWR | O_NOCTTY | O_NONBLOCK);
    Configure(descriptor, B9600, CS8);
    m_port.Stall();
    EXPECT_EQ(write(descriptor, "x", 1), -1);
    EXPECT_EQ(errno, EAGAIN);
    m_port.Resume();
    EXPECT_EQ(write(descriptor, "y", 1), 1);
    EXPECT_THAT(m_port.ReceiveCount(1), ElementsAre('y'));
}

TEST_F(DeskSerialPort, StalledItKeepsWhatItsBufferHasRoomFor)
{
    const int descriptor = Open(O_RDWR | O_NOCTTY | O_NONBLOCK);
    Configure(descriptor, B9600, CS8);
    EXPECT_EQ(write(descriptor, "a", 1), 1);
    m_port.Stall(3);
    EXPECT_EQ(write(descriptor, "bc", 2), 2);
    EXPECT_EQ(CountQueued(descriptor), 2);
    EXPECT_EQ(write(descriptor, "de", 2), 1);
    EXPECT_EQ(CountQueued(descriptor), 3);
    EXPECT_EQ(write(descriptor, "e", 1), -1);
    EXPECT_EQ(errno, EAGAIN);
    pollfd writable{descriptor, POLLOUT, 0};
    EXPECT_EQ(poll(&writable, 1, 0), 0);
    EXPECT_THAT(m_port.Receive(0), ElementsAre('a'));
    EXPECT_THAT(m_port.Receive(0), IsEmpty());
    m_port.Resume();
    EXPECT_EQ(CountQueued(descriptor), 0);
    EXPECT_EQ(write(descriptor, "ef", 2), 2);
    EXPECT_THAT(m_port.ReceiveCount(4), ElementsAre('b', 'c', 'd', 'e'));
    EXPECT_THAT(m_port.ReceiveCount(1), ElementsAre('f'));
}

TEST_F(DeskSerialPort, KeepsTheOrderOfWhatWasWrittenBeforeAndWhileItWasStalled)
{
    const int descriptor = Open();
    Configure(descriptor, B9600, CS8);
    EXPECT_EQ(write(descriptor, "ab", 2), 2);
    m_port.Stall(10);
    EXPECT_EQ(write(descriptor, "cd", 2), 2);
    m_port.Resume();
    EXPECT_EQ(write(descriptor, "ef", 2), 2);
    EXPECT_THAT(m_port.Receive(20'000), ElementsAre('a', 'b', 'c', 'd', 'e', 'f'));
}

TEST_F(DeskSerialPort, StalledItsWholeBufferIsTheKernelsPage)
{
    const int descriptor = Open(O_RDWR | O_NOCTTY | O_NONBLOCK);
    Configure(descriptor, B9600, CS8);
    m_port.Stall(1'000'000);
    const Bytes bytes(5000);
    EXPECT_EQ(write(descriptor, bytes.data(), bytes.size()), 4096);
    m_port.Resume();
    EXPECT_EQ(m_port.ReceiveCount(4096).size(), 4096U);
}

TEST_F(DeskSerialPort, WhoWritesMoreThanTheBufferHoldsWaits)
{
    const int descriptor = Open();
    Configure(descriptor, B9600, CS8);
    m_port.Stall(1);
    std::thread hand([this, descriptor] {
        EXPECT_TRUE(TestSupport::WaitUntil([descriptor] { return CountQueued(descriptor) == 1; }));
        m_port.Resume();
    });
    EXPECT_EQ(write(descriptor, "abc", 3), 3);
    hand.join();
    EXPECT_THAT(m_port.ReceiveCount(3), ElementsAre('a', 'b', 'c'));
}

TEST_F(DeskSerialPort, WhatItsBufferHoldsCanBeAwaitedAndLost)
{
    const int descriptor = Open();
    Configure(descriptor, B9600, CS8);
    m_port.Stall(10);
    EXPECT_EQ(write(descriptor, "abc", 3), 3);
    EXPECT_EQ(tcflush(descriptor, TCOFLUSH), 0);
    EXPECT_EQ(CountQueued(descriptor), 0);
    EXPECT_EQ(write(descriptor, "d", 1), 1);
    std::thread hand([this] {
        EXPECT_THAT(m_port.Receive(20), IsEmpty());
        m_port.Resume();
    });
    EXPECT_EQ(tcdrain(descriptor), 0);
    EXPECT_EQ(CountQueued(descriptor), 0);
    hand.join();
    EXPECT_THAT(m_port.ReceiveCount(1), ElementsAre('d'));
    m_port.Stall(1);
    EXPECT_EQ(write(descriptor, "e", 1), 1);
    close(descriptor);
    m_descriptors.clear();
    m_port.Resume();
    EXPECT_THAT(m_port.Receive(0), IsEmpty());
}

TEST_F(DeskSerialPort, KeepsItsSpeedWhereItsClockCannotMakeTheNewOne)
{
    const int descriptor = Open();
    Configure(descriptor, B115200, CS8);
    Configure(descriptor, B230400, CS7); // succeeds, as on a real port
    EXPECT_EQ(m_port.GetSettings().baud, 115200);
    EXPECT_EQ(m_port.GetSettings().dataBits, 7);
    termios settings{};
    EXPECT_EQ(tcgetattr(descriptor, &settings), 0);
    EXPECT_EQ(cfgetospeed(&settings), static_cast<speed_t>(B115200));
    LineSettings other;
    other.baud = 460800;
    EXPECT_THROW(m_port.SetSettings(other), std::invalid_argument);
}

TEST_F(DeskSerialPort, AtUsbTakesEverySpeed)
{
    Desk::SerialPort adapter(m_testbed, "/dev/ttyUSB0");
    const int descriptor = open("/dev/ttyUSB0", O_RDWR | O_NOCTTY);
    ASSERT_NE(descriptor, -1);
    Configure(descriptor, B460800, CS8);
    EXPECT_EQ(adapter.GetSettings().baud, 460800);
    close(descriptor);
}

TEST_F(DeskSerialPort, ReceiveEndsWhenWokenOrUnplugged)
{
    constexpr unsigned Forever = 1'000'000;
    std::thread waker([this] { m_port.Wake(); });
    EXPECT_THAT(m_port.Receive(Forever), IsEmpty());
    waker.join();
    std::thread hand([this] {
        m_port.Unplug();
        m_port.Wake(); // where the plug was pulled before anybody waited
    });
    EXPECT_THAT(m_port.Receive(Forever), IsEmpty());
    hand.join();
    m_port.Receive(0); // takes the wake where it was not needed
    std::thread secondWaker([this] { m_port.Wake(); });
    EXPECT_THAT(m_port.Receive(Forever), IsEmpty()); // without a plug
    secondWaker.join();
    std::thread other([this] { m_port.Plug(); });
    m_port.Receive(1);
    other.join();
}

TEST_F(DeskSerialPort, ReceiveWaitsForThePlug)
{
    m_port.Unplug();
    std::thread hand([this] {
        m_port.Plug();
        const int descriptor = Open();
        Configure(descriptor, B9600, CS8);
        EXPECT_EQ(write(descriptor, "z", 1), 1);
    });
    EXPECT_THAT(m_port.ReceiveCount(1), ElementsAre('z'));
    hand.join();
}

TEST_F(DeskSerialPort, AWakeIsForTheOneWhoReceives)
{
    m_port.Wake();
    m_port.Stall();
    m_port.Resume();
    EXPECT_EQ(m_port.GetSettings(), LineSettings());
    constexpr unsigned Forever = 1'000'000;
    EXPECT_THAT(m_port.Receive(Forever), IsEmpty());
}

TEST_F(DeskSerialPort, DelaysItsCalls)
{
    const int descriptor = Open();
    Configure(descriptor, B9600, CS8);
    EXPECT_EQ(m_port.GetDelayed(), 0);
    m_port.SetDelay(1000);
    EXPECT_EQ(write(descriptor, "x", 1), 1);
    Open();
    EXPECT_EQ(m_port.GetDelayed(), 2000);
    m_port.SetDelay(0);
    EXPECT_EQ(write(descriptor, "x", 1), 1);
    EXPECT_EQ(m_port.GetDelayed(), 2000);
}

TEST_F(DeskSerialPort, ReadsFailWhenToldSo)
{
    const int descriptor = Open();
    m_port.RefuseReads(EIO);
    char byte = 0;
    EXPECT_EQ(read(descriptor, &byte, 1), -1);
    EXPECT_EQ(errno, EIO);
}

TEST_F(DeskSerialPort, SurvivesPluggingWhileSomebodyListens)
{
    std::atomic<bool> isEnding{false};
    std::thread listener([&] {
        while (!isEnding) {
            m_port.Receive(100);
            m_port.GetSettings();
            m_port.CountOpen();
        }
    });
    for (int round = 0; round < 200; ++round) {
        m_port.Unplug();
        m_port.Plug();
        m_port.Stall();
        m_port.SetDelay(1);
    }
    isEnding = true;
    m_port.Wake();
    listener.join();
    EXPECT_TRUE(m_port.IsPlugged());
}
