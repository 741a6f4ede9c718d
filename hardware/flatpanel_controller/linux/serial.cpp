// SPDX-License-Identifier: MIT
#include "hardware/flatpanel_controller/serial.h"

#include <fcntl.h>
#include <sys/select.h>
#include <unistd.h>

#include <cerrno>

#include "error_text.h"
#include "flatpanel_controller/serial_log.h"
#include "source_site.h"
#include "system_call.h"

namespace Hardware
{

namespace
{

constexpr char SourceFile[] = "flatpanel_controller/linux/serial.cpp";

constexpr unsigned MicrosecondsPerSecond = 1'000'000;

/// O_NOCTTY: as the controlling terminal of a service, a port that hangs up would end it by SIGHUP.
constexpr int OpenFlags = O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;

struct Speed {
    int baud;
    speed_t parameter;
};
// 600 and 1800 baud are left out on purpose.
constexpr Speed Speeds[] = {{300, B300},       {1200, B1200},     {2400, B2400},    {4800, B4800},
                            {9600, B9600},     {19200, B19200},   {38400, B38400},  {57600, B57600},
                            {115200, B115200}, {230400, B230400}, {460800, B460800}};

const Speed* FindSpeed(int baud)
{
    for (const Speed& speed : Speeds)
        if (speed.baud == baud)
            return &speed;
    return nullptr;
}

} // namespace

Os::Log::Context& SerialLogContext()
{
    static Os::Log::Context context("Serial", &HardwareLogContext(), Os::Log::AllButTrace);
    return context;
}

Serial::Serial() = default;

Serial::Serial(const char* name) : m_name(name ? name : "") {}

Serial::~Serial()
{
    Close();
}

void Serial::SetDeviceName(const char* name)
{
    m_name = name ? name : "";
}

bool Serial::IsValid() const
{
    return m_handle >= 0;
}

int Serial::GetDeviceHandle() const
{
    return m_handle;
}

int Serial::Open(int baud, parity_e parity, flowcontrol_e flow)
{
    if (m_name.empty()) {
        HARDWARE_LOG(SerialLogContext(), Os::Log::Trace, "Device name cannot be empty");
        return EINVAL;
    }
    const int handle = Repeat([this] { return open(m_name.c_str(), OpenFlags); });
    if (handle == -1) {
        const int error = errno;
        HARDWARE_LOG(SerialLogContext(), Os::Log::Trace,
                     "Failed to open device " << m_name << ", baud " << baud << ", parity "
                                              << static_cast<int>(parity) << ", flow control "
                                              << static_cast<int>(flow)
                                              << ", error: " << GetErrorText(error));
        return error;
    }
    // An open port is not looked for: its descriptor would stay open, as the header says.
    m_handle = handle;
    if (Repeat([this] { return tcgetattr(m_handle, &m_saved); }) == -1) {
        // Nothing was saved yet, so nothing must be put back: the device is closed as it is.
        const int error = errno;
        HARDWARE_LOG(SerialLogContext(), Os::Log::Trace,
                     "Failed to get the settings of " << m_name
                                                      << ", which may not be a serial port"
                                                      << ", error: " << GetErrorText(error));
        close(m_handle);
        m_handle = -1;
        return error;
    }
    m_working = m_saved;
    SetRaw();
    const Speed* const speed = FindSpeed(baud);
    if (!speed) {
        HARDWARE_LOG(SerialLogContext(), Os::Log::Trace, "Invalid baud rate " << baud);
        Close();
        return EINVAL;
    }
    HARDWARE_LOG(SerialLogContext(), Os::Log::Trace, "Baud found, baudparam " << speed->parameter);
    cfsetispeed(&m_working, speed->parameter);
    cfsetospeed(&m_working, speed->parameter);
    const int error = Configure(parity, flow);
    if (error != 0) {
        HARDWARE_LOG(SerialLogContext(), Os::Log::Trace,
                     "Failed to set up " << m_name << ", error: " << GetErrorText(error));
        Close();
    }
    return error;
}

/// Gives the opened device its settings. Returns an errno value, or 0.
int Serial::Configure(parity_e parity, flowcontrol_e flow)
{
    m_working.c_cflag &= ~static_cast<tcflag_t>(CSIZE);
    SetStopBits();
    SetDataBits();
    SetParity(parity);
    SetLocal(true);
    SetFlowControl(flow);
    if (Repeat([this] { return tcflush(m_handle, TCIFLUSH); }) == -1 ||
        Repeat([this] { return tcsetattr(m_handle, TCSANOW, &m_working); }) == -1)
        return errno;
    const int flags = fcntl(m_handle, F_GETFL);
    if (flags == -1 || fcntl(m_handle, F_SETFL, flags & ~O_NONBLOCK) == -1)
        return errno;
    return 0;
}

int Serial::SetRaw()
{
    if (!IsValid())
        return EINVAL;
    m_working.c_iflag &=
        ~static_cast<tcflag_t>(IGNBRK | BRKINT | PARMRK | ISTRIP | INLCR | IGNCR | ICRNL | IXON);
    m_working.c_oflag &= ~static_cast<tcflag_t>(OPOST);
    m_working.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHONL | ICANON | ISIG | IEXTEN);
    m_working.c_cflag &= ~static_cast<tcflag_t>(CSIZE | PARENB);
    m_working.c_cflag |= CS8;
    m_working.c_cc[VMIN] = 1;
    m_working.c_cc[VTIME] = 0;
    return 0;
}

int Serial::SetLocal(bool on)
{
    if (!IsValid())
        return EINVAL;
    if (on)
        m_working.c_cflag |= CLOCAL;
    else
        m_working.c_cflag &= ~static_cast<tcflag_t>(CLOCAL);
    return 0;
}

int Serial::SetStopBits()
{
    if (!IsValid())
        return EINVAL;
    m_working.c_cflag &= ~static_cast<tcflag_t>(CSTOPB);
    return 0;
}

int Serial::SetDataBits()
{
    if (!IsValid())
        return EINVAL;
    m_working.c_cflag |= CS8;
    return 0;
}

int Serial::SetParity(parity_e parity)
{
    if (!IsValid())
        return EINVAL;
    const int number = parity;
    switch (parity) {
    case parity_none:
        m_working.c_cflag &= ~static_cast<tcflag_t>(PARENB | PARODD);
        HARDWARE_LOG(SerialLogContext(), Os::Log::Trace, "Parity set to none " << number);
        break;
    case parity_even:
        m_working.c_cflag |= PARENB;
        m_working.c_cflag &= ~static_cast<tcflag_t>(PARODD);
        HARDWARE_LOG(SerialLogContext(), Os::Log::Trace, "Parity set to even " << number);
        break;
    case parity_odd:
        m_working.c_cflag |= PARENB | PARODD;
        HARDWARE_LOG(SerialLogContext(), Os::Log::Trace, "Parity set to odd " << number);
        break;
    default:
        // No error, on purpose.
        HARDWARE_LOG(SerialLogContext(), Os::Log::Trace, "Invalid parity " << number);
        break;
    }
    return 0;
}

int Serial::SetFlowControl(flowcontrol_e flow)
{
    if (!IsValid())
        return EINVAL;
    const int number = flow;
    switch (flow) {
    case flowcontrol_xonxoff:
        m_working.c_cflag &= ~CRTSCTS;
        m_working.c_iflag |= IXON | IXOFF;
        HARDWARE_LOG(SerialLogContext(), Os::Log::Trace, "Flow control set to XonXoff " << number);
        break;
    case flowcontrol_none:
        m_working.c_cflag &= ~CRTSCTS;
        m_working.c_iflag &= ~static_cast<tcflag_t>(IXON | IXOFF);
        HARDWARE_LOG(SerialLogContext(), Os::Log::Trace, "Flow control set to none " << number);
        break;
    default:
        // No error, on purpose.
        HARDWARE_LOG(SerialLogContext(), Os::Log::Trace, "Invalid flow control " << number);
        break;
    }
    return 0;
}

int Serial::SetSpeed(int baud)
{
    if (!IsValid())
        return EINVAL;
    if (isatty(m_handle) == 0)
        return 0;
    const Speed* const speed = FindSpeed(baud);
    if (!speed) {
        HARDWARE_LOG(SerialLogContext(), Os::Log::Trace, "Invalid baud rate " << baud);
        return EINVAL;
    }
    HARDWARE_LOG(SerialLogContext(), Os::Log::Trace, "Baud found, baud " << speed->parameter);
    cfsetispeed(&m_working, speed->parameter);
    cfsetospeed(&m_working, speed->parameter);
    // The same as for a failure, and nothing is applied to the device: kept on purpose.
    return EINVAL;
}

int Serial::Read(unsigned char* buf, std::size_t len) const
{
    const ssize_t count = IsValid() ? Repeat([&] { return read(m_handle, buf, len); }) : -1;
    if (count >= 0)
        return static_cast<int>(count);
    const int error = IsValid() ? errno : EINVAL;
    HARDWARE_LOG(SerialLogContext(), Os::Log::Trace,
                 "Failed to read from " << m_name << " error " << GetErrorText(error));
    return error;
}

int Serial::Write(unsigned char* buf, std::size_t len) const
{
    const ssize_t count = IsValid() ? Repeat([&] { return write(m_handle, buf, len); }) : -1;
    if (count >= 0)
        return static_cast<int>(count);
    const int error = IsValid() ? errno : EINVAL;
    HARDWARE_LOG(SerialLogContext(), Os::Log::Trace,
                 "Failed to write to " << m_name << " error " << GetErrorText(error));
    return error;
}

int Serial::WaitForInput(std::vector<int> descriptors, unsigned int timeout)
{
    // Counts down over interruptions, as the system leaves it.
    timeval left{};
    left.tv_sec = timeout / MicrosecondsPerSecond;
    left.tv_usec = timeout % MicrosecondsPerSecond;
    return Repeat([&] {
        if (descriptors.empty())
            return select(FD_SETSIZE, nullptr, nullptr, nullptr, &left);
        fd_set readable;
        FD_ZERO(&readable);
        for (const int descriptor : descriptors)
            if (descriptor >= 0 && descriptor < FD_SETSIZE)
                FD_SET(descriptor, &readable);
        return select(FD_SETSIZE, &readable, nullptr, nullptr, &left);
    });
}

int Serial::Reset()
{
    if (!IsValid())
        return EINVAL;
    if (Repeat([this] { return tcflush(m_handle, TCIOFLUSH); }) == -1 ||
        Repeat([this] { return tcsetattr(m_handle, TCSAFLUSH, &m_saved); }) == -1)
        return errno;
    return 0;
}

void Serial::Close()
{
    if (!IsValid()) {
        m_handle = -1;
        return;
    }
    Repeat([this] { return tcflush(m_handle, TCIOFLUSH); });
    Repeat([this] { return tcsetattr(m_handle, TCSANOW, &m_saved); });
    // A device that does not close stays open here too.
    if (Repeat([this] { return close(m_handle); }) == 0)
        m_handle = -1;
}

} // namespace Hardware
