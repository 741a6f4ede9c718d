// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <span>
#include <string>
#include <vector>

#include "desk/kernel_testbed.h"
#include "desk/serial_port.h"
#include "hardware/flatpanel_controller/serial.h"
#include "os/log.h"
#include "support/log_capture.h"

namespace TestSupport
{

/// A serial port of the virtual desk, and all log lines of the library's.
class SerialBench : public testing::Test
{
protected:
    static constexpr char Path[] = "/dev/ttyS0";

    int Open(int baud = 57600, Hardware::Serial::parity_e parity = Hardware::Serial::parity_none,
             Hardware::Serial::flowcontrol_e flow = Hardware::Serial::flowcontrol_none)
    {
        return m_serial.Open(baud, parity, flow);
    }

    Desk::KernelTestbed m_testbed;
    Desk::SerialPort m_port{m_testbed, Path};
    LogCapture m_log{"Hardware/Serial", 31};
    Hardware::Serial m_serial{Path};
};

/// The fields of a serial port in their order, to look at the settings that it keeps to itself.
struct SerialFields {
    int handle;
    std::string name;
    termios saved;
    termios working;
};
static_assert(sizeof(SerialFields) == sizeof(Hardware::Serial));

inline const SerialFields& GetFields(const Hardware::Serial& serial)
{
    return reinterpret_cast<const SerialFields&>(serial);
}

inline void SetWorking(Hardware::Serial& serial, const termios& settings)
{
    reinterpret_cast<SerialFields&>(serial).working = settings;
}

} // namespace TestSupport
