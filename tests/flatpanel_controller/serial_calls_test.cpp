// SPDX-License-Identifier: MIT

// The system calls that a serial port makes, and what it does when they are interrupted or fail.

#include <fcntl.h>
#include <gmock/gmock.h>

#include <array>
#include <cerrno>

#include "flatpanel_controller/serial_bench.h"
#include "support/system_calls.h"

namespace
{

using Hardware::Serial;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

class SerialCalls : public TestSupport::SerialBench
{
protected:
    TestSupport::SystemCalls m_calls{"/dev/tty"};
};

const std::vector<std::string> OpenCalls{"open /dev/ttyS0", "tcgetattr",       "tcflush in",
                                         "tcsetattr now",   "fcntl get flags", "fcntl set flags"};

} // namespace

TEST_F(SerialCalls, OpenMakesThemInOrder)
{
    EXPECT_EQ(Open(), 0);
    EXPECT_EQ(m_calls.GetCalls(), OpenCalls);
}

TEST_F(SerialCalls, OpenRepeatsWhatIsInterrupted)
{
    for (const char* const call : {"open", "tcgetattr", "tcflush", "tcsetattr now"}) {
        m_calls.Clear();
        m_calls.Fail(call, {EINTR, EINTR});
        EXPECT_EQ(Open(), 0) << call;
        EXPECT_EQ(m_calls.Count(call), 3);
        m_serial.Close();
    }
}

TEST_F(SerialCalls, OpenThatFailsHalfWayClosesTheDevice)
{
    m_port.SetSettings([] {
        Desk::LineSettings settings;
        settings.baud = 4800;
        return settings;
    }());
    const std::string calls[] = {"tcgetattr", "tcflush in", "tcsetattr now", "fcntl get flags",
                                 "fcntl set flags"};
    for (const std::string& call : calls) {
        m_calls.Clear();
        m_calls.Fail(call, {ENOTTY});
        m_log.Clear();
        EXPECT_EQ(Open(), ENOTTY) << call;
        EXPECT_THAT(m_log.GetTexts(),
                    testing::Contains(testing::EndsWith("error: Inappropriate ioctl for device")))
            << call;
        EXPECT_FALSE(m_serial.IsValid());
        EXPECT_EQ(m_serial.GetDeviceHandle(), -1);
        EXPECT_EQ(m_calls.Count("close"), 1);
        EXPECT_EQ(m_port.CountOpen(), 0);
        EXPECT_EQ(m_port.GetSettings().baud, 4800);
    }
}

TEST_F(SerialCalls, SettingsThatWereNeverReadAreNotPutBack)
{
    m_calls.Fail("tcgetattr", {EIO});
    EXPECT_EQ(Open(), EIO);
    EXPECT_THAT(m_calls.GetCalls(), ElementsAre("open /dev/ttyS0", "tcgetattr", "close"));
    // Nor those of an open before.
    EXPECT_EQ(Open(), 0);
    m_serial.Close();
    m_calls.Clear();
    m_calls.Fail("tcgetattr", {EIO});
    EXPECT_EQ(Open(), EIO);
    EXPECT_THAT(m_calls.GetCalls(), ElementsAre("open /dev/ttyS0", "tcgetattr", "close"));
}

TEST_F(SerialCalls, SettersMakeNone)
{
    EXPECT_EQ(Open(), 0);
    m_calls.Clear();
    m_serial.SetRaw();
    m_serial.SetLocal(true);
    m_serial.SetStopBits();
    m_serial.SetDataBits();
    m_serial.SetParity(Serial::parity_odd);
    m_serial.SetFlowControl(Serial::flowcontrol_xonxoff);
    m_serial.SetSpeed(9600);
    EXPECT_EQ(m_calls.Count("tcsetattr"), 0);
    EXPECT_EQ(m_calls.Count("tcflush"), 0);
}

TEST_F(SerialCalls, ReadAndWriteAreOneCallEach)
{
    EXPECT_EQ(Open(), 0);
    m_calls.Clear();
    std::array<unsigned char, 6> bytes{};
    EXPECT_EQ(m_serial.Write(bytes.data(), 6), 6);
    ASSERT_TRUE(m_port.Send(bytes));
    EXPECT_GE(m_serial.Read(bytes.data(), 5), 1);
    EXPECT_THAT(m_calls.GetCalls(), ElementsAre("write 6", "read 5"));
}

TEST_F(SerialCalls, ReadAndWriteRepeatWhatIsInterrupted)
{
    EXPECT_EQ(Open(), 0);
    std::array<unsigned char, 1> bytes{};
    ASSERT_TRUE(m_port.Send(bytes));
    m_log.Clear();
    m_calls.Fail("write", {EINTR, EINTR});
    m_calls.Fail("read", {EINTR});
    EXPECT_EQ(m_serial.Write(bytes.data(), 1), 1);
    EXPECT_EQ(m_calls.Count("write"), 3);
    EXPECT_EQ(m_serial.Read(bytes.data(), 1), 1);
    EXPECT_EQ(m_calls.Count("read"), 2);
    EXPECT_THAT(m_log.GetTexts(), IsEmpty());
}

TEST_F(SerialCalls, ReadAndWriteTellTheErrorAsAPositiveNumber)
{
    EXPECT_EQ(Open(), 0);
    m_log.Clear();
    std::array<unsigned char, 1> bytes{};
    m_calls.Fail("write", {ENOSPC});
    m_calls.Fail("read", {EIO});
    EXPECT_EQ(m_serial.Write(bytes.data(), 1), ENOSPC);
    EXPECT_EQ(m_serial.Read(bytes.data(), 1), EIO);
    EXPECT_THAT(m_log.GetTexts(),
                ElementsAre("Failed to write to /dev/ttyS0 error No space left on device",
                            "Failed to read from /dev/ttyS0 error Input/output error"));
}

TEST_F(SerialCalls, ResetFlushesBothWaysAndPutsBackTheSavedSettings)
{
    EXPECT_EQ(Open(), 0);
    m_calls.Clear();
    m_calls.Fail("tcflush both", {EINTR});
    m_calls.Fail("tcsetattr flush", {EINTR, EINTR});
    EXPECT_EQ(m_serial.Reset(), 0);
    EXPECT_THAT(m_calls.GetCalls(), ElementsAre("tcflush both", "tcflush both", "tcsetattr flush",
                                                "tcsetattr flush", "tcsetattr flush"));
    EXPECT_EQ(m_port.GetSettings(), Desk::LineSettings());
}

TEST_F(SerialCalls, ResetTellsWhatFailed)
{
    EXPECT_EQ(Open(), 0);
    m_calls.Fail("tcflush both", {EIO});
    EXPECT_EQ(m_serial.Reset(), EIO);
    m_calls.Fail("tcsetattr flush", {ENOTTY});
    EXPECT_EQ(m_serial.Reset(), ENOTTY);
}

TEST_F(SerialCalls, CloseFlushesBothWaysAndPutsBackTheSavedSettings)
{
    EXPECT_EQ(Open(), 0);
    m_calls.Clear();
    m_calls.Fail("tcflush both", {EINTR});
    m_calls.Fail("tcsetattr now", {EINTR});
    m_calls.Fail("close", {EINTR});
    m_serial.Close();
    EXPECT_THAT(m_calls.GetCalls(), ElementsAre("tcflush both", "tcflush both", "tcsetattr now",
                                                "tcsetattr now", "close", "close"));
    EXPECT_EQ(m_serial.GetDeviceHandle(), -1);
}

TEST_F(SerialCalls, CloseGoesOnWhenTheSettingsCannotBePutBack)
{
    EXPECT_EQ(Open(), 0);
    m_calls.Clear();
    m_calls.Fail("tcflush both", {EIO});
    m_calls.Fail("tcsetattr now", {EIO});
    m_serial.Close();
    EXPECT_THAT(m_calls.GetCalls(), ElementsAre("tcflush both", "tcsetattr now", "close"));
    EXPECT_EQ(m_port.CountOpen(), 0);
}

TEST_F(SerialCalls, PortThatDoesNotCloseStaysOpen)
{
    EXPECT_EQ(Open(), 0);
    m_calls.Fail("close", {EIO});
    m_serial.Close();
    EXPECT_TRUE(m_serial.IsValid());
    m_serial.Close();
    EXPECT_FALSE(m_serial.IsValid());
}

TEST_F(SerialCalls, ClosedPortMakesNone)
{
    m_serial.Close();
    m_serial.Reset();
    std::array<unsigned char, 1> bytes{};
    m_serial.Read(bytes.data(), 1);
    m_serial.Write(bytes.data(), 1);
    EXPECT_THAT(m_calls.GetCalls(), IsEmpty());
}

TEST_F(SerialCalls, WaitSplitsTheTimeOut)
{
    EXPECT_EQ(Open(), 0);
    m_calls.Clear();
    m_calls.Fail("select", {EBADF, EBADF, EBADF});
    EXPECT_EQ(Serial::WaitForInput({m_serial.GetDeviceHandle(), -1}, 3'000'007), -1);
    EXPECT_EQ(Serial::WaitForInput({}, 999'999), -1);
    EXPECT_EQ(Serial::WaitForInput({-1}, 4'294'967'295U), -1);
    EXPECT_THAT(m_calls.GetCalls(),
                ElementsAre("select 1024 3 s 7 us device", "select 1024 0 s 999999 us nothing",
                            "select 1024 4294 s 967295 us"));
}

TEST_F(SerialCalls, WaitGoesOnAfterAnInterruptionWithTheTimeThatIsLeft)
{
    EXPECT_EQ(Open(), 0);
    ASSERT_TRUE(m_port.Send(std::array<std::uint8_t, 1>{9}));
    m_calls.Clear();
    m_calls.Fail("select", {EINTR, EINTR});
    EXPECT_EQ(Serial::WaitForInput({m_serial.GetDeviceHandle()}, 20'000'000), 1);
    EXPECT_THAT(m_calls.GetCalls(),
                ElementsAre("select 1024 20 s 0 us device", "select 1024 19 s 0 us device",
                            "select 1024 18 s 0 us device"));
    m_calls.Fail("select", {EINTR});
    EXPECT_EQ(Serial::WaitForInput({}, 1000), 0);
    EXPECT_EQ(m_calls.Count("select 1024 0 s 1000 us nothing"), 2);
}
