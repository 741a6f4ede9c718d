// SPDX-License-Identifier: MIT

// Opening and closing a serial port, seen from the far end of the line.

#include <fcntl.h>
#include <gmock/gmock.h>

#include <cerrno>
#include <map>

#include "desk/physical_memory.h"
#include "flatpanel_controller/serial_bench.h"

namespace
{

using Desk::LineSettings;
using Hardware::Serial;
using testing::ElementsAre;
using testing::IsEmpty;

class SerialOpen : public TestSupport::SerialBench
{
};

/// What another program might have left, in everything different from what the library sets.
LineSettings GetForeignSettings()
{
    LineSettings foreign;
    foreign.baud = 4800;
    foreign.parity = LineSettings::Parity::Odd;
    foreign.dataBits = 7;
    foreign.stopBits = 2;
    foreign.xonXoff = true;
    foreign.minimum = 3;
    foreign.time = 7;
    return foreign;
}

LineSettings GetRawSettings(int baud)
{
    LineSettings settings;
    settings.baud = baud;
    settings.raw = true;
    settings.ignoresModem = true;
    return settings;
}

} // namespace

TEST_F(SerialOpen, IsClosedAtFirst)
{
    EXPECT_FALSE(m_serial.IsValid());
    EXPECT_EQ(m_serial.GetDeviceHandle(), -1);
    EXPECT_FALSE(Serial().IsValid());
    EXPECT_EQ(Serial().GetDeviceHandle(), -1);
}

TEST_F(SerialOpen, OpensForReadingAndWritingWithoutWaiting)
{
    EXPECT_EQ(Open(), 0);
    EXPECT_TRUE(m_serial.IsValid());
    EXPECT_GE(m_serial.GetDeviceHandle(), 0);
    EXPECT_EQ(m_port.GetLastOpenFlags(), O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    // Later reads block.
    EXPECT_EQ(fcntl(m_serial.GetDeviceHandle(), F_GETFL) & O_NONBLOCK, 0);
}

/// The system's constants.
const std::map<int, int> SpeedParameters{
    {300, 7},    {1200, 9},     {2400, 11},     {4800, 12},     {9600, 13},    {19200, 14},
    {38400, 15}, {57600, 4097}, {115200, 4098}, {230400, 4099}, {460800, 4100}};

/// On an adapter at USB, whose clock makes all of them.
class SerialSpeeds : public TestSupport::SerialBench, public testing::WithParamInterface<int>
{
protected:
    SerialSpeeds() { m_serial.SetDeviceName(m_adapter.GetPath().c_str()); }

    Desk::SerialPort m_adapter{m_testbed, "/dev/ttyUSB0"};
};

TEST_P(SerialSpeeds, ReachTheLine)
{
    m_adapter.SetSettings(GetForeignSettings());
    EXPECT_EQ(Open(GetParam()), 0);
    EXPECT_EQ(m_adapter.GetSettings(), GetRawSettings(GetParam()));
    EXPECT_THAT(
        m_log.GetTexts(),
        ElementsAre("Baud found, baudparam " + std::to_string(SpeedParameters.at(GetParam())),
                    "Parity set to none 0", "Flow control set to none 1"));
    m_serial.Close();
    EXPECT_EQ(m_adapter.GetSettings(), GetForeignSettings());
}

INSTANTIATE_TEST_SUITE_P(AllEleven, SerialSpeeds,
                         testing::Values(300, 1200, 2400, 4800, 9600, 19200, 38400, 57600, 115200,
                                         230400, 460800));

TEST_F(SerialOpen, SetsParityOnTheLine)
{
    const std::pair<Serial::parity_e, LineSettings::Parity> cases[] = {
        {Serial::parity_none, LineSettings::Parity::None},
        {Serial::parity_even, LineSettings::Parity::Even},
        {Serial::parity_odd, LineSettings::Parity::Odd}};
    for (const auto& [parity, expected] : cases) {
        m_port.SetSettings(GetForeignSettings());
        EXPECT_EQ(Open(9600, parity), 0);
        EXPECT_EQ(m_port.GetSettings().parity, expected);
        EXPECT_EQ(m_port.GetSettings().dataBits, 8);
        m_serial.Close();
    }
}

TEST_F(SerialOpen, SetsFlowControlOnTheLine)
{
    for (const bool before : {false, true}) {
        LineSettings other = GetForeignSettings();
        other.hardwareFlow = true;
        other.xonXoff = before;
        m_port.SetSettings(other);
        EXPECT_EQ(Open(9600, Serial::parity_none, Serial::flowcontrol_xonxoff), 0);
        EXPECT_TRUE(m_port.GetSettings().xonXoff);
        EXPECT_FALSE(m_port.GetSettings().hardwareFlow);
        m_serial.Close();
        EXPECT_EQ(m_port.GetSettings(), other);
        EXPECT_EQ(Open(9600, Serial::parity_none, Serial::flowcontrol_none), 0);
        EXPECT_FALSE(m_port.GetSettings().xonXoff);
        EXPECT_FALSE(m_port.GetSettings().hardwareFlow);
        m_serial.Close();
    }
}

TEST_F(SerialOpen, TakesOddParityAndFlowControlForTheDefault)
{
    m_port.SetSettings(GetForeignSettings());
    EXPECT_EQ(Open(9600, static_cast<Serial::parity_e>(3), static_cast<Serial::flowcontrol_e>(-1)),
              0);
    EXPECT_THAT(m_log.GetTexts(), ElementsAre("Baud found, baudparam 13", "Invalid parity 3",
                                              "Invalid flow control -1"));
    // The raw mode has no parity and does not heed XOFF, but leaves the rest as it was.
    EXPECT_EQ(m_port.GetSettings().parity, LineSettings::Parity::None);
    EXPECT_FALSE(m_port.GetSettings().xonXoff);
}

TEST_F(SerialOpen, RefusesOtherSpeeds)
{
    for (const int baud : {600, 1800, 0, -9600, 57601, 921600, 13}) {
        m_log.Clear();
        EXPECT_EQ(Open(baud), EINVAL) << baud;
        EXPECT_THAT(m_log.GetTexts(), ElementsAre("Invalid baud rate " + std::to_string(baud)));
        EXPECT_THAT(m_log.GetLines()[0].function, testing::HasSubstr("Serial::Open(int"));
        EXPECT_FALSE(m_serial.IsValid());
        EXPECT_EQ(m_port.CountOpen(), 0);
    }
    EXPECT_EQ(m_port.GetSettings(), LineSettings());
}

TEST_F(SerialOpen, NeedsAName)
{
    Serial nameless;
    EXPECT_EQ(nameless.Open(9600, Serial::parity_none, Serial::flowcontrol_none), 22);
    EXPECT_THAT(m_log.GetTexts(), ElementsAre("Device name cannot be empty"));
    nameless.SetDeviceName(Path);
    EXPECT_EQ(nameless.Open(9600, Serial::parity_none, Serial::flowcontrol_none), 0);
    nameless.SetDeviceName("");
    EXPECT_TRUE(nameless.IsValid());
    EXPECT_EQ(Serial(nullptr).Open(9600, Serial::parity_none, Serial::flowcontrol_none), 22);
}

TEST_F(SerialOpen, SaysWhatCouldNotBeOpened)
{
    const std::pair<int, const char*> cases[] = {{ENOENT, "No such file or directory"},
                                                 {EBUSY, "Device or resource busy"},
                                                 {EACCES, "Permission denied"},
                                                 {ENODEV, "No such device"}};
    for (const auto& [error, text] : cases) {
        m_log.Clear();
        m_port.RefuseOpen(error);
        EXPECT_EQ(Open(19200, Serial::parity_odd, Serial::flowcontrol_xonxoff), error);
        EXPECT_THAT(m_log.GetTexts(),
                    ElementsAre(std::string("Failed to open device /dev/ttyS0, baud 19200, parity "
                                            "2, flow control 0, error: ") +
                                text));
        EXPECT_FALSE(m_serial.IsValid());
    }
    m_port.RefuseOpen(0);
    EXPECT_EQ(Open(), 0);
}

TEST_F(SerialOpen, FailsWhenThereIsNoSuchPort)
{
    m_serial.SetDeviceName("/dev/ttyS7");
    EXPECT_EQ(Open(), ENOENT);
    m_port.Unplug();
    m_serial.SetDeviceName(Path);
    EXPECT_EQ(Open(), ENOENT);
    m_port.Plug();
    EXPECT_EQ(Open(), 0);
}

TEST_F(SerialOpen, IsForTerminalsOnly)
{
    const Desk::PhysicalMemory memory(m_testbed);
    m_serial.SetDeviceName("/dev/mem");
    EXPECT_EQ(Open(), ENOTTY);
    EXPECT_FALSE(m_serial.IsValid());
    EXPECT_EQ(memory.CountOpened(), 1);
    EXPECT_EQ(memory.CountOpen(), 0);
    EXPECT_THAT(
        m_log.GetTexts(),
        ElementsAre("Failed to get the settings of /dev/mem, which may not be a serial port, "
                    "error: Inappropriate ioctl for device"));
}

TEST_F(SerialOpen, OpenedTwiceLeavesTheFirstDescriptorBehind)
{
    EXPECT_EQ(Open(), 0);
    const int first = m_serial.GetDeviceHandle();
    EXPECT_EQ(Open(), 0);
    EXPECT_NE(m_serial.GetDeviceHandle(), first);
    EXPECT_EQ(m_port.CountOpen(), 2);
    m_serial.Close();
    EXPECT_EQ(m_port.CountOpen(), 1);
    EXPECT_NE(fcntl(first, F_GETFD), -1);
    close(first);
}

TEST_F(SerialOpen, ClosesWhenDestroyed)
{
    m_port.SetSettings(GetForeignSettings());
    {
        Serial other(Path);
        EXPECT_EQ(other.Open(9600, Serial::parity_none, Serial::flowcontrol_none), 0);
        EXPECT_EQ(m_port.CountOpen(), 1);
    }
    EXPECT_EQ(m_port.CountOpen(), 0);
    EXPECT_EQ(m_port.GetSettings(), GetForeignSettings());
}

TEST_F(SerialOpen, ClosesAndOpensAgain)
{
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(Open(), 0);
        m_serial.Close();
        EXPECT_EQ(m_serial.GetDeviceHandle(), -1);
        m_serial.Close();
    }
    EXPECT_EQ(m_port.CountOpen(), 0);
    EXPECT_EQ(m_port.CountOpened(), 3);
}

TEST_F(SerialOpen, ResetPutsBackWhatWasBefore)
{
    EXPECT_EQ(m_serial.Reset(), 22);
    m_port.SetSettings(GetForeignSettings());
    EXPECT_EQ(Open(), 0);
    m_log.Clear();
    EXPECT_EQ(m_serial.Reset(), 0);
    EXPECT_EQ(m_port.GetSettings(), GetForeignSettings());
    EXPECT_TRUE(m_serial.IsValid());
    EXPECT_THAT(m_log.GetTexts(), IsEmpty());
}

TEST_F(SerialOpen, ResetTellsOfALineThatIsGone)
{
    EXPECT_EQ(Open(), 0);
    m_port.Unplug();
    EXPECT_EQ(m_serial.Reset(), EIO);
}

TEST_F(SerialOpen, ClosesALineThatIsGoneOrStuck)
{
    EXPECT_EQ(Open(), 0);
    m_port.Stall();
    std::vector<unsigned char> bytes(1);
    fcntl(m_serial.GetDeviceHandle(), F_SETFL, O_NONBLOCK);
    EXPECT_EQ(m_serial.Write(bytes.data(), 1), EAGAIN);
    m_serial.Close();
    EXPECT_EQ(m_port.CountOpen(), 0);
    EXPECT_EQ(Open(), 0);
    m_port.Unplug();
    m_serial.Close();
    EXPECT_EQ(m_serial.GetDeviceHandle(), -1);
    EXPECT_EQ(m_port.CountOpen(), 0);
}

TEST_F(SerialOpen, LogsAsTheSerialPort)
{
    EXPECT_EQ(Open(), 0);
    ASSERT_FALSE(m_log.GetLines().empty());
    for (const auto& line : m_log.GetLines()) {
        EXPECT_EQ(line.context, "Hardware/Serial");
        EXPECT_EQ(line.level, 1U);
        EXPECT_EQ(line.file, "flatpanel_controller/linux/serial.cpp");
        EXPECT_THAT(line.function, testing::HasSubstr("Serial::"));
    }
}

TEST(SerialLog, IsSilentUntilWidened)
{
    TestSupport::LogCapture log;
    EXPECT_EQ(Serial("").Open(9600, Serial::parity_none, Serial::flowcontrol_none), 22);
    EXPECT_THAT(log.GetTexts(), IsEmpty());
    ASSERT_NE(Os::Log::Context::Find("Hardware/Serial"), nullptr);
    EXPECT_EQ(Os::Log::Context::Find("Hardware/Serial")->GetMask(), 30U);
}

static_assert(!std::is_copy_constructible_v<Serial> && !std::is_copy_assignable_v<Serial>);
static_assert(Serial::parity_none == 0 && Serial::parity_even == 1 && Serial::parity_odd == 2);
static_assert(Serial::flowcontrol_xonxoff == 0 && Serial::flowcontrol_none == 1);
