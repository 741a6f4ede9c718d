// SPDX-License-Identifier: MIT
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <memory>
#include <optional>
#include <system_error>
#include <vector>

#include "common/hex.h"
#include "common/line_text.h"
#include "common/stop_signals.h"
#include "hardware/flatpanel_controller/serial.h"
#include "hwctl/command.h"
#include "hwctl/exit_code.h"
#include "hwctl/serial_talk.h"
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

/// While it lives, printing to a program that has ended fails instead of ending this one.
class NoPipeSignal
{
public:
    NoPipeSignal()
    {
        struct sigaction ignore {
        };
        ignore.sa_handler = SIG_IGN;
        sigaction(SIGPIPE, &ignore, &m_before);
    }
    ~NoPipeSignal() { sigaction(SIGPIPE, &m_before, nullptr); }
    NoPipeSignal(const NoPipeSignal&) = delete;
    NoPipeSignal& operator=(const NoPipeSignal&) = delete;

private:
    struct sigaction m_before {
    };
};

void Open(Serial& serial, const Arguments& arguments)
{
    const int error =
        serial.Open(arguments.baud, Parities.at(arguments.parity), FlowControls.at(arguments.flow));
    if (error != 0)
        throw CommandError("cannot open " + arguments.port + ": " +
                           std::generic_category().message(error));
    // A port that cannot be set as asked keeps what it has and reports no failure.
    termios held{};
    if (tcgetattr(serial.GetDeviceHandle(), &held) == -1)
        throw CommandError("cannot read the settings of " + arguments.port + ": " +
                           std::generic_category().message(errno));
    const std::string asked = Tools::DescribeLine(arguments.baud, arguments.parity, arguments.flow);
    if (Tools::DescribeLine(held) != asked)
        throw CommandError(arguments.port + " does not take " + asked + "; it holds " +
                           Tools::DescribeLine(held));
    std::printf("%s open: %s\n", arguments.port.c_str(), asked.c_str());
    std::fflush(stdout);
}

/// Talks until the end and puts the port's settings back in every case.
SerialTalk::Result Talk(const Arguments& arguments, const std::vector<std::uint8_t>& bytes)
{
    std::optional<SerialTalk> talk;
    // Before the port is open, so that a signal never finds it with other settings.
    const Tools::StopSignals signals([&talk] {
        if (talk)
            talk->Stop();
    });
    const NoPipeSignal noPipeSignal;
    Serial serial(arguments.port.c_str());
    Open(serial, arguments);
    Dump dump;
    SerialTalk::Options options;
    options.send = bytes;
    options.count = arguments.count;
    options.seconds = arguments.seconds;
    options.baud = static_cast<unsigned>(arguments.baud);
    options.output = STDOUT_FILENO;
    options.take = [&dump](std::span<const std::uint8_t> piece) {
        dump.Print(piece);
        return std::ferror(stdout) == 0;
    };
    options.tellSent = [&bytes] {
        std::printf("%zu bytes sent\n", bytes.size());
        std::fflush(stdout);
    };
    talk.emplace(serial.GetDeviceHandle(), std::move(options));
    SerialTalk::Result result = talk->Run();
    talk.reset(); // before its descriptor is closed
    if (std::ferror(stdout) != 0 && result.problem.empty())
        result.problem = "the output cannot be written";
    return result;
}

int WorkSerial(const CommonOptions& options, const Arguments& arguments)
{
    const auto bytes = Tools::ParseHex(arguments.send);
    if (!bytes)
        throw UsageError("'" + arguments.send + "' is not a row of bytes in hexadecimal digits");
    const auto testbed = options.useVirtual ? std::make_unique<Desk::KernelTestbed>() : nullptr;
    const auto displays = testbed ? std::make_unique<VirtualDisplays>(*testbed) : nullptr;
    const SerialTalk::Result result = Talk(arguments, *bytes);
    if (std::ferror(stdout) == 0)
        std::printf("%zu bytes received\n", result.received);
    std::string problem = result.problem;
    if (result.unsent > 0)
        problem += (problem.empty() ? "" : "; ") + std::to_string(result.unsent) + " of " +
                   std::to_string(bytes->size()) + " bytes were not sent";
    if (!problem.empty())
        throw CommandError(arguments.port + ": " + problem);
    return ExitCode_Success;
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
        ->check(CLI::IsMember(Tools::GetLineSpeeds()));
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
