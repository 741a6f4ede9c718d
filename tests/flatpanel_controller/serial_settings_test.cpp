// SPDX-License-Identifier: MIT

// The settings that a serial port keeps, which its setters change and the line never sees.

#include <gmock/gmock.h>

#include <cerrno>

#include "flatpanel_controller/serial_bench.h"

namespace
{

using Hardware::Serial;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::GetFields;

class SerialSettings : public TestSupport::SerialBench
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(Open(9600), 0);
        m_log.Clear();
        m_before = m_port.GetSettings();
    }
    /// No setter reaches the line.
    void TearDown() override
    {
        if (m_serial.IsValid() && m_port.IsPlugged()) {
            EXPECT_EQ(m_port.GetSettings(), m_before);
        }
    }

    /// Settings with every flag set, or none.
    void Fill(bool on)
    {
        termios all{};
        all.c_iflag = all.c_oflag = all.c_cflag = all.c_lflag = on ? ~0U : 0U;
        all.c_cc[VMIN] = 77;
        all.c_cc[VTIME] = 78;
        TestSupport::SetWorking(m_serial, all);
    }
    const termios& GetWorking() const { return GetFields(m_serial).working; }

    Desk::LineSettings m_before;
};

} // namespace

TEST_F(SerialSettings, FieldsStandInTheirOrder)
{
    EXPECT_EQ(GetFields(m_serial).handle, m_serial.GetDeviceHandle());
    EXPECT_EQ(GetFields(m_serial).name, Path);
    EXPECT_EQ(cfgetospeed(&GetFields(m_serial).saved), static_cast<speed_t>(B9600));
    EXPECT_NE(GetFields(m_serial).saved.c_lflag & ICANON, 0U);
    EXPECT_EQ(GetFields(m_serial).working.c_lflag & ICANON, 0U);
}

TEST_F(SerialSettings, NeedAnOpenPort)
{
    m_serial.Close();
    EXPECT_EQ(m_serial.SetRaw(), 22);
    EXPECT_EQ(m_serial.SetLocal(true), 22);
    EXPECT_EQ(m_serial.SetStopBits(), 22);
    EXPECT_EQ(m_serial.SetDataBits(), 22);
    EXPECT_EQ(m_serial.SetParity(Serial::parity_even), 22);
    EXPECT_EQ(m_serial.SetParity(static_cast<Serial::parity_e>(3)), 22);
    EXPECT_EQ(m_serial.SetFlowControl(Serial::flowcontrol_none), 22);
    EXPECT_EQ(m_serial.SetSpeed(9600), 22);
    EXPECT_EQ(m_serial.SetSpeed(600), 22);
    EXPECT_THAT(m_log.GetTexts(), IsEmpty());
}

TEST_F(SerialSettings, RawClearsWhatWouldChangeBytes)
{
    Fill(true);
    EXPECT_EQ(m_serial.SetRaw(), 0);
    EXPECT_EQ(GetWorking().c_iflag, ~static_cast<tcflag_t>(IGNBRK | BRKINT | PARMRK | ISTRIP |
                                                           INLCR | IGNCR | ICRNL | IXON));
    EXPECT_EQ(GetWorking().c_oflag, ~static_cast<tcflag_t>(OPOST));
    EXPECT_EQ(GetWorking().c_lflag, ~static_cast<tcflag_t>(ECHO | ECHONL | ICANON | ISIG | IEXTEN));
    EXPECT_EQ(GetWorking().c_cflag, ~static_cast<tcflag_t>(PARENB));
    EXPECT_EQ(GetWorking().c_cc[VMIN], 1);
    EXPECT_EQ(GetWorking().c_cc[VTIME], 0);
    Fill(false);
    EXPECT_EQ(m_serial.SetRaw(), 0);
    EXPECT_EQ(GetWorking().c_cflag, static_cast<tcflag_t>(CS8));
    EXPECT_EQ(GetWorking().c_iflag | GetWorking().c_oflag | GetWorking().c_lflag, 0U);
}

TEST_F(SerialSettings, LocalBitsAndStopBits)
{
    Fill(false);
    EXPECT_EQ(m_serial.SetLocal(true), 0);
    EXPECT_EQ(GetWorking().c_cflag, static_cast<tcflag_t>(CLOCAL));
    EXPECT_EQ(m_serial.SetLocal(false), 0);
    EXPECT_EQ(GetWorking().c_cflag, 0U);
    EXPECT_EQ(m_serial.SetDataBits(), 0);
    EXPECT_EQ(GetWorking().c_cflag, static_cast<tcflag_t>(CS8));
    Fill(true);
    EXPECT_EQ(m_serial.SetStopBits(), 0);
    EXPECT_EQ(GetWorking().c_cflag, ~static_cast<tcflag_t>(CSTOPB));
}

TEST_F(SerialSettings, Parity)
{
    constexpr auto Both = static_cast<tcflag_t>(PARENB | PARODD);
    Fill(true);
    EXPECT_EQ(m_serial.SetParity(Serial::parity_none), 0);
    EXPECT_EQ(GetWorking().c_cflag, ~Both);
    EXPECT_EQ(m_serial.SetParity(Serial::parity_odd), 0);
    EXPECT_EQ(GetWorking().c_cflag & Both, Both);
    EXPECT_EQ(m_serial.SetParity(Serial::parity_even), 0);
    EXPECT_EQ(GetWorking().c_cflag & Both, static_cast<tcflag_t>(PARENB));
    EXPECT_THAT(m_log.GetTexts(),
                ElementsAre("Parity set to none 0", "Parity set to odd 2", "Parity set to even 1"));
}

TEST_F(SerialSettings, ParityThatIsNoneIsNoErrorAndChangesNothing)
{
    for (const bool on : {true, false})
        for (const int parity : {3, -1}) {
            Fill(on);
            m_log.Clear();
            EXPECT_EQ(m_serial.SetParity(static_cast<Serial::parity_e>(parity)), 0);
            EXPECT_EQ(GetWorking().c_cflag, on ? ~0U : 0U);
            EXPECT_THAT(m_log.GetTexts(), ElementsAre("Invalid parity " + std::to_string(parity)));
        }
}

TEST_F(SerialSettings, FlowControl)
{
    constexpr auto Software = static_cast<tcflag_t>(IXON | IXOFF);
    Fill(true);
    EXPECT_EQ(m_serial.SetFlowControl(Serial::flowcontrol_none), 0);
    EXPECT_EQ(GetWorking().c_cflag, ~static_cast<tcflag_t>(CRTSCTS));
    EXPECT_EQ(GetWorking().c_iflag, ~Software);
    Fill(true);
    EXPECT_EQ(m_serial.SetFlowControl(Serial::flowcontrol_xonxoff), 0);
    EXPECT_EQ(GetWorking().c_cflag, ~static_cast<tcflag_t>(CRTSCTS));
    EXPECT_EQ(GetWorking().c_iflag, ~0U);
    Fill(false);
    EXPECT_EQ(m_serial.SetFlowControl(Serial::flowcontrol_xonxoff), 0);
    EXPECT_EQ(GetWorking().c_iflag, Software);
    EXPECT_THAT(m_log.GetTexts(),
                ElementsAre("Flow control set to none 1", "Flow control set to XonXoff 0",
                            "Flow control set to XonXoff 0"));
}

TEST_F(SerialSettings, FlowControlThatIsNoneIsNoErrorAndChangesNothing)
{
    for (const bool on : {true, false}) {
        Fill(on);
        m_log.Clear();
        EXPECT_EQ(m_serial.SetFlowControl(static_cast<Serial::flowcontrol_e>(2)), 0);
        EXPECT_EQ(GetWorking().c_cflag, on ? ~0U : 0U);
        EXPECT_EQ(GetWorking().c_iflag, on ? ~0U : 0U);
        EXPECT_THAT(m_log.GetTexts(), ElementsAre("Invalid flow control 2"));
    }
}

TEST_F(SerialSettings, SpeedIsSetAndCalledAFailureAllTheSame)
{
    EXPECT_EQ(m_serial.SetSpeed(115200), 22);
    EXPECT_EQ(GetWorking().c_ispeed, static_cast<speed_t>(B115200));
    EXPECT_EQ(GetWorking().c_ospeed, static_cast<speed_t>(B115200));
    EXPECT_THAT(m_log.GetTexts(), ElementsAre("Baud found, baud 4098"));
}

TEST_F(SerialSettings, SpeedThatThereIsNotChangesNothing)
{
    EXPECT_EQ(m_serial.SetSpeed(600), 22);
    EXPECT_EQ(GetWorking().c_ispeed, static_cast<speed_t>(B9600));
    EXPECT_EQ(GetWorking().c_ospeed, static_cast<speed_t>(B9600));
    EXPECT_THAT(m_log.GetTexts(), ElementsAre("Invalid baud rate 600"));
}

TEST_F(SerialSettings, SpeedOfWhatIsNoTerminalAnyMoreIsLeftAlone)
{
    m_port.Unplug();
    EXPECT_EQ(m_serial.SetSpeed(115200), 0);
    EXPECT_EQ(m_serial.SetSpeed(600), 0);
    EXPECT_EQ(GetWorking().c_ospeed, static_cast<speed_t>(B9600));
    EXPECT_THAT(m_log.GetTexts(), IsEmpty());
}
