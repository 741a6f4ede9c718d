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
#include "hardware/flatpanel_controller/serial.h"
#include "hwctl/command.h"
#include "hwctl/exit_code.h"
#include "hwctl/log_tap.h"
#include "hwctl/sending.h"
#include "hwctl/stop_signals.h"
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

/// An open port while it is listened to.
class Listening
{
public:
    Listening(Serial& serial, LogTap& tap, std::size_t limit)
        : m_serial(serial), m_tap(tap), m_limit(limit)
    {
    }

    /// Until a signal, the time, the count, or the end of the line. Returns an ExitCode.
    int Run(double seconds)
    {
        const StopSignals signals([] { QCoreApplication::exit(ExitCode_Success); });
        std::fflush(stdout); // who sees that the port is open may interrupt
        QSocketNotifier notifier(m_serial.GetDeviceHandle(), QSocketNotifier::Read);
        QObject::connect(&notifier, &QSocketNotifier::activated, &notifier, [this] { Read(); });
        QTimer timer;
        timer.setSingleShot(true);
        QObject::connect(&timer, &QTimer::timeout, &timer,
                         [] { QCoreApplication::exit(ExitCode_Success); });
        if (seconds > 0)
            timer.start(static_cast<int>(seconds * 1000));
        const int code = QCoreApplication::exec();
        std::printf("%zu bytes received\n", m_dump.GetCount());
        return code;
    }

private:
    void Read()
    {
        std::array<unsigned char, 256> bytes{};
        std::size_t room = bytes.size();
        if (m_limit > 0)
            room = std::min(room, m_limit - m_dump.GetCount());
        const int count = m_serial.Read(bytes.data(), room);
        // A failure is a positive number as well, so only the log line tells.
        const std::vector<std::string> failures = m_tap.TakeFailures();
        if (!failures.empty() || count == 0) {
            std::fprintf(stderr, "hwctl: %s\n",
                         failures.empty() ? "the line is gone" : failures.front().c_str());
            QCoreApplication::exit(ExitCode_Failure);
            return;
        }
        m_dump.Print(std::span(bytes).first(static_cast<std::size_t>(count)));
        if (m_limit > 0 && m_dump.GetCount() >= m_limit)
            QCoreApplication::exit(ExitCode_Success);
    }

    Serial& m_serial;
    LogTap& m_tap;
    const std::size_t m_limit;
    Dump m_dump;
};

/// Sends all bytes; false, with a word about it, when the port does not take them.
bool Send(const Serial& serial, LogTap& tap, std::vector<std::uint8_t> bytes)
{
    std::fflush(stdout); // the line may be stuck
    for (std::size_t sent = 0; sent < bytes.size();) {
        const int count = serial.Write(bytes.data() + sent, bytes.size() - sent);
        const std::vector<std::string> failures = tap.TakeFailures();
        if (!failures.empty()) {
            std::fprintf(stderr, "hwctl: %s\n", failures.front().c_str());
            return false;
        }
        sent += static_cast<std::size_t>(count);
    }
    std::printf("%zu bytes sent\n", bytes.size());
    return true;
}

int WorkSerial(const CommonOptions& options, const Arguments& arguments)
{
    const auto bytes = Tools::ParseHex(arguments.send);
    if (!bytes)
        throw std::invalid_argument("'" + arguments.send +
                                    "' is no row of bytes in hexadecimal digits");
    const auto testbed = options.useVirtual ? std::make_unique<Desk::KernelTestbed>() : nullptr;
    const auto displays = testbed ? std::make_unique<VirtualDisplays>(*testbed) : nullptr;
    LogTap tap;
    Serial serial(arguments.port.c_str());
    const int error =
        serial.Open(arguments.baud, Parities.at(arguments.parity), FlowControls.at(arguments.flow));
    if (error != 0) {
        // NOLINTNEXTLINE(concurrency-mt-unsafe): the only thread that asks
        throw CommandError("cannot open " + arguments.port + ": " + std::strerror(error));
    }
    std::printf("%s open: %d baud, parity %s, flow control %s\n", arguments.port.c_str(),
                arguments.baud, arguments.parity.c_str(), arguments.flow.c_str());
    if (!bytes->empty() && !Send(serial, tap, *bytes))
        return ExitCode_Failure;
    const int code = Listening(serial, tap, arguments.count).Run(arguments.seconds);
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
        ->check(CLI::Range(0.001, 1e6));
    command->add_option("--count", arguments->count, "End after so many bytes")
        ->check(CLI::Range(std::size_t{1}, std::size_t{1} << 40U));
    command->callback([arguments, &options, &action] {
        action = [arguments, &options] { return WorkSerial(options, *arguments); };
    });
}

} // namespace Hwctl
