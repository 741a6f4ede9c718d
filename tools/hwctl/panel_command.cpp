// SPDX-License-Identifier: MIT
#include <cstdio>
#include <functional>
#include <memory>

#include "common/line_text.h"
#include "hardware/flatpanel_controller/kontron.h"
#include "hwctl/command.h"
#include "hwctl/exit_code.h"
#include "hwctl/log_tap.h"
#include "hwctl/sending.h"
#include "hwctl/virtual_displays.h"

namespace Hwctl
{

namespace
{

using Hardware::Kontron;

struct Arguments {
    std::string port = "/dev/ttyS0";
    unsigned baud = 57600;
    unsigned unit = 0;
    unsigned code = 0;
    unsigned value = 0;
};

typedef std::function<void(Kontron&)> Command;

/// A packet's length from its text: two digits and a blank for each byte.
std::size_t GetLength(const std::string& packet)
{
    return packet.size() / 3;
}

void PrintPanel(const Desk::FlatPanel& panel, const std::string& port, std::size_t bytes)
{
    panel.WaitForBytes(bytes);
    for (const Desk::PanelPacket& packet : panel.GetPackets())
        std::printf("panel at %s: %s\n", port.c_str(), Desk::ToText(packet).c_str());
    if (panel.CountNoise() > 0)
        std::printf("panel at %s: %zu bytes of noise, the line is not set as it is\n", port.c_str(),
                    panel.CountNoise());
}

int WorkPanel(const CommonOptions& options, const Arguments& arguments, const Command& command)
{
    const auto testbed = options.useVirtual ? std::make_unique<Desk::KernelTestbed>() : nullptr;
    const auto displays = testbed ? std::make_unique<VirtualDisplays>(*testbed) : nullptr;
    LogTap tap;
    Kontron controller(arguments.port, arguments.baud);
    command(controller);
    std::size_t bytes = 0;
    for (const std::string& packet : tap.Take("Packet ")) {
        std::printf("packet %s\n", packet.c_str());
        bytes += GetLength(packet);
    }
    const std::vector<std::string> failures = tap.TakeFailures();
    for (const std::string& failure : failures)
        std::fprintf(stderr, "hwctl: %s\n", failure.c_str());
    if (!failures.empty())
        return ExitCode_Failure;
    Desk::FlatPanel* const panel = displays ? displays->FindPanel(arguments.port) : nullptr;
    if (panel)
        PrintPanel(*panel, arguments.port, bytes);
    else
        AwaitSending(bytes, arguments.baud);
    return ExitCode_Success;
}

void AddByte(CLI::App& command, const char* name, unsigned& byte, const char* text)
{
    command.add_option(name, byte, text)->required()->check(InRange(0U, 255U));
}

} // namespace

void AddPanelCommand(CLI::App& app, const CommonOptions& options, Action& action)
{
    auto arguments = std::make_shared<Arguments>();
    CLI::App* const panel =
        app.add_subcommand("panel", "Send commands to a flat-panel controller and print packets");
    panel->add_option("--port", arguments->port, "Serial port")->capture_default_str();
    panel->add_option("--baud", arguments->baud, "Speed")
        ->capture_default_str()
        ->check(CLI::IsMember(Tools::GetLineSpeeds()));
    panel->require_subcommand(1);
    const auto add = [=, &options, &action](const char* name, const char* text, auto send) {
        CLI::App* const command = panel->add_subcommand(name, text);
        command->callback([=, &options, &action] {
            action = [=, &options] {
                return WorkPanel(options, *arguments,
                                 [&](Kontron& controller) { send(controller, *arguments); });
            };
        });
        return command;
    };
    const auto byte = [](unsigned number) { return static_cast<unsigned char>(number); };

    CLI::App* const level =
        add("level", "Set the backlight's level", [](Kontron& controller, const Arguments& given) {
            controller.SetBacklightLevel(given.value);
        });
    AddByte(*level, "level", arguments->value, "0 to 255");

    CLI::App* const adjust =
        add("adjust", "Set an adjuster", [byte](Kontron& controller, const Arguments& given) {
            controller.SetAdjuster(byte(given.unit), byte(given.code), given.value);
        });
    AddByte(*adjust, "unit", arguments->unit, "Unit");
    AddByte(*adjust, "adjuster", arguments->code, "Adjuster; 5 is the backlight");
    AddByte(*adjust, "value", arguments->value, "Value");

    CLI::App* const ask = add("ask", "Ask for an adjuster; the answer is not read",
                              [byte](Kontron& controller, const Arguments& given) {
                                  controller.ReadAdjuster(byte(given.unit), byte(given.code), 0);
                              });
    AddByte(*ask, "unit", arguments->unit, "Unit");
    AddByte(*ask, "adjuster", arguments->code, "Adjuster");

    CLI::App* const call =
        add("action", "Call an action", [byte](Kontron& controller, const Arguments& given) {
            controller.CallAction(byte(given.unit), byte(given.code));
        });
    AddByte(*call, "unit", arguments->unit, "Unit");
    AddByte(*call, "code", arguments->code, "Action");

    CLI::App* const reset =
        add("reset", "Reset a unit", [byte](Kontron& controller, const Arguments& given) {
            controller.Reset(byte(given.unit));
        });
    AddByte(*reset, "unit", arguments->unit, "Unit");
}

} // namespace Hwctl
