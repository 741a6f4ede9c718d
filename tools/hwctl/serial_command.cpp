// SPDX-License-Identifier: MIT
#include <QCoreApplication>
#include <QSocketNotifier>
#include <QTimer>
#include <array>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include "common/hex.h"
#include "common/stop_signals.h"
#include "hardware/flatpanel_controller/serial.h"
#include "hwctl/command.h"
#include "hwctl/exit_code.h"
#include "hwctl/log_tap.h"
#include "hwctl/sending.h"
#include "hwctl/virtual_displays.h"

namespace Hwctl
{

namespace
{

using Hardware::Serial;

const std::map<std::string, Serial::parity_e> Parities{
    {"none", Serial::parity_none}, {"even", Serial::parity_even}, {"odd", Serial::parity_odd}};
const std::map<std::string, Serial::flowcontrol_e> FlowControls{
    {"xonxoff", Serial::flowcontrol_xonxoff}, {"none", Serial::flowcontrol_none}};

struct Arguments {
    std::string port;
    int baud = 9600;
    std::string parity = "none";
    std::string flow = "none";
    std::string send;
    double seconds = 0;
    std::size_t count = 0;
};

/// Prints bytes as rows of sixteen, with their place in all that came and as characters.
class Dump
{
public:
    std::size_t GetCount() const { return m_count; }

    void Print(std::span<const std::uint8_t> bytes)
    {
        constexpr std::size_t RowLength = 16;
        while (!bytes.empty()) {
            const auto row = bytes.first(std::min(bytes.size(), RowLength));
            std::string characters;
            for (const std::uint8_t byte : row)
                characters += byte >= ' ' && byte <= '~' ? static_cast<char>(byte) : '.';
            std::printf("%08zx  %-47s  |%s|\n", m_count, Tools::FormatHex(row).c_str(),
                        characters.c_str());
            m_count += row.size();
            bytes = bytes.subspan(row.size());
        }
        std::fflush(stdout);
    }

private:
    std::size_t m_count = 0;
};

/// An open port while it is talked and listened to.
class Conversation
{
public:
    Conversation(Serial& serial, LogTap& tap, std::vector<std::uint8_t> toSend, std::size_t limit)
        : m_serial(serial), m_tap(tap), m_toSend(std::move(toSend)), m_limit(limit),
          m_readable(serial.GetDeviceHandle(), QSocketNotifier::Read),
          m_writable(serial.GetDeviceHandle(), QSocketNotifier::Write)
    {
        QObject::connect(&m_readable, &QSocketNotifier::activated, &m_readable, [this] { Read(); });
        QObject::connect(&m_writable, &QSocketNotifier::activated, &m_writable,
                         [this] { Write(); });
        m_writable.setEnabled(!m_toSend.empty());
    }

    /// Until a signal, the time, the count, or the end of the line. Returns an ExitCode.
    int Run(double seconds)
    {
        QTimer timer;
        timer.setSingleShot(true);
        QObject::connect(&timer, &QTimer::timeout, &timer,
                         [] { QCoreApplication::exit(ExitCode_Success); });
        if (seconds > 0)
            timer.start(static_cast<int>(seconds * 1000));
        std::fflush(stdout);
        const int code = QCoreApplication::exec();
        std::printf("%zu bytes received\n", m_dump.GetCount());
        if (m_sent == m_toSend.size())
            return code;
        std::fprintf(stderr, "hwctl: the line took %zu of %zu bytes\n", m_sent, m_toSend.size());
        return ExitCode_Failure;
    }

private:
    /// Sends a little more: so much goes into the port's buffer without a wait for the line.
    void Write()
    {
        constexpr std::size_t PieceLength = 16;
        const std::size_t length = std::min(PieceLength, m_toSend.size() - m_sent);
        const int count = m_serial.Write(m_toSend.data() + m_sent, length);
        if (HasFailed())
            return;
        m_sent += static_cast<std::size_t>(count);
        if (m_sent < m_toSend.size())
            return;
        m_writable.setEnabled(false);
        std::printf("%zu bytes sent\n", m_sent);
        std::fflush(stdout);
    }

    void Read()
    {
        std::array<unsigned char, 256> bytes{};
        std::size_t room = bytes.size();
        if (m_limit > 0)
            room = std::min(room, m_limit - m_dump.GetCount());
        const int count = m_serial.Read(bytes.data(), room);
        if (HasFailed())
            return;
        if (count == 0) {
            std::fprintf(stderr, "hwctl: the line is gone\n");
            End(ExitCode_Failure);
            return;
        }
        m_dump.Print(std::span(bytes).first(static_cast<std::size_t>(count)));
        if (m_limit > 0 && m_dump.GetCount() >= m_limit)
            End(ExitCode_Success);
    }

    /// Ends the run where the call before failed: its result is a positive number then as well, so
    /// only the log line tells.
    bool HasFailed()
    {
        const std::vector<std::string> failures = m_tap.TakeFailures();
        if (failures.empty())
            return false;
        std::fprintf(stderr, "hwctl: %s\n", failures.front().c_str());
        End(ExitCode_Failure);
        return true;
    }

    void End(int code)
    {
        m_readable.setEnabled(false);
        m_writable.setEnabled(false);
        QCoreApplication::exit(code);
    }

    Serial& m_serial;
    LogTap& m_tap;
    std::vector<std::uint8_t> m_toSend;
    std::size_t m_sent = 0;
    const std::size_t m_limit;
    Dump m_dump;
    QSocketNotifier m_readable;
    QSocketNotifier m_writable;
};

int WorkSerial(const CommonOptions& options, const Arguments& arguments)
{
    const auto bytes = Tools::ParseHex(arguments.send);
    if (!bytes)
        throw UsageError("'" + arguments.send + "' is not a row of bytes in hexadecimal digits");
    const auto testbed = options.useVirtual ? std::make_unique<Desk::KernelTestbed>() : nullptr;
    const auto displays = testbed ? std::make_unique<VirtualDisplays>(*testbed) : nullptr;
    LogTap tap;
    // Before the port is open, so that it is closed, with its old settings, whatever comes.
    const Tools::StopSignals signals([] { QCoreApplication::exit(ExitCode_Success); });
    Serial serial(arguments.port.c_str());
    const int error =
        serial.Open(arguments.baud, Parities.at(arguments.parity), FlowControls.at(arguments.flow));
    if (error != 0) {
        // NOLINTNEXTLINE(concurrency-mt-unsafe): the only thread that asks
        throw CommandError("cannot open " + arguments.port + ": " + std::strerror(error));
    }
    std::printf("%s open: %d baud, parity %s, flow control %s\n", arguments.port.c_str(),
                arguments.baud, arguments.parity.c_str(), arguments.flow.c_str());
    const int code = Conversation(serial, tap, *bytes, arguments.count).Run(arguments.seconds);
    if (!displays)
        AwaitSending(bytes->size(), static_cast<unsigned>(arguments.baud));
    return code;
}

template <class Value> std::vector<std::string> GetNames(const std::map<std::string, Value>& map)
{
    std::vector<std::string> names;
    names.reserve(map.size());
    for (const auto& [name, value] : map)
        names.push_back(name);
    return names;
}

} // namespace

void AddSerialCommand(CLI::App& app, const CommonOptions& options, Action& action)
{
    auto arguments = std::make_shared<Arguments>();
    CLI::App* const command = app.add_subcommand(
        "serial", "Open a serial port, send bytes, and print what comes, until interrupted");
    command->add_option("port", arguments->port, "Device file, such as /dev/ttyS0")->required();
    command->add_option("--baud", arguments->baud, "Speed")
        ->capture_default_str()
        ->check(CLI::IsMember(
            {300, 1200, 2400, 4800, 9600, 19200, 38400, 57600, 115200, 230400, 460800}));
    command->add_option("--parity", arguments->parity, "none, even or odd")
        ->capture_default_str()
        ->check(CLI::IsMember(GetNames(Parities)));
    command->add_option("--flow", arguments->flow, "Flow control: none or xonxoff")
        ->capture_default_str()
        ->check(CLI::IsMember(GetNames(FlowControls)));
    command->add_option("--send", arguments->send, "Bytes to send first, in hexadecimal digits");
    command->add_option("--for", arguments->seconds, "End after so many seconds")
        ->check(InRange(0.001, 1e6));
    command->add_option("--count", arguments->count, "End after so many bytes")
        ->check(InRange(std::size_t{1}, std::size_t{1} << 40U));
    command->callback([arguments, &options, &action] {
        action = [arguments, &options] { return WorkSerial(options, *arguments); };
    });
}

} // namespace Hwctl
