// SPDX-License-Identifier: MIT
#include <array>
#include <cmath>
#include <cstdio>
#include <memory>

#include "hardware/abstract_backlight_factory.h"
#include "hardware/tarnel4_backlight.h"
#include "hardware/vex4_backlight.h"
#include "hardware/zr4_backlight.h"
#include "hwctl/command.h"
#include "hwctl/exit_code.h"
#include "hwctl/log_tap.h"
#include "hwctl/sending.h"
#include "hwctl/virtual_displays.h"
#include "os/platform.h"

namespace Hwctl
{

namespace
{

/// A packet that sets a level, and the speed at which it goes out.
constexpr std::size_t PanelPacketLength = 8;
constexpr unsigned PanelBaudRate = 57600;

enum class Kind { Registers, Panels, Chip };

Kind GetKind(const AbstractBacklight& controller)
{
    if (dynamic_cast<const Hardware::Zr4Backlight*>(&controller))
        return Kind::Panels;
    return dynamic_cast<const Tarnel4Backlight*>(&controller) ? Kind::Chip : Kind::Registers;
}

const char* Describe(Kind kind)
{
    switch (kind) {
    case Kind::Panels:
        return "Zr4Backlight, flat-panel controllers on serial ports: left and right";
    case Kind::Chip:
        return "Tarnel4Backlight, hardware-monitor chip: right";
    default:
        return "Vex4Backlight, display controllers' registers: left, right and centre, with "
               "frequencies";
    }
}

/// A side, and the operations of a controller for it.
struct Side {
    const char* name;
    bool (AbstractBacklight::*setLevel)(uires16);
    bool (AbstractBacklight::*setFrequency)(unsigned);
    unsigned (AbstractBacklight::*getFrequency)();
};
constexpr std::array<Side, 3> Sides{
    {{"left", &AbstractBacklight::SetLeftBacklight, &AbstractBacklight::SetLeftBacklightFrequency,
      &AbstractBacklight::GetLeftBacklightFrequency},
     {"right", &AbstractBacklight::SetRightBacklight,
      &AbstractBacklight::SetRightBacklightFrequency,
      &AbstractBacklight::GetRightBacklightFrequency},
     {"centre", &AbstractBacklight::SetCenterBacklight,
      &AbstractBacklight::SetCenterBacklightFrequency,
      &AbstractBacklight::GetCenterBacklightFrequency}}};

bool HasSide(Kind kind, std::size_t side)
{
    return kind == Kind::Registers || (kind == Kind::Panels && side < 2) ||
           (kind == Kind::Chip && side == 1);
}

/// What was asked for, by side.
struct Arguments {
    std::array<std::optional<double>, 3> levels;
    std::array<std::optional<unsigned>, 3> frequencies;
};

/// Where a frequency's field stands in its register.
constexpr unsigned FrequencyShift = 20;

/// Sets one thing of one side; returns whether that went well.
bool Work(Kind kind, std::size_t side, const std::string& what, bool succeeded)
{
    const bool isThere = HasSide(kind, side);
    std::printf("%s %s: %s\n", Sides[side].name, what.c_str(),
                !isThere    ? "this console has none, nothing done"
                : succeeded ? "done"
                            : "failed");
    return succeeded && isThere;
}

bool SetSide(AbstractBacklight& controller, Kind kind, std::size_t side, const Arguments& arguments)
{
    bool succeeded = true;
    if (const auto& level = arguments.levels[side]) {
        const auto bits = static_cast<uires16>(std::lround(*level * 0x10000));
        std::array<char, 32> what{};
        std::snprintf(what.data(), what.size(), "level %g", *level);
        succeeded = Work(kind, side, what.data(), (controller.*Sides[side].setLevel)(bits));
    }
    if (const auto& field = arguments.frequencies[side])
        succeeded = Work(kind, side, "frequency " + std::to_string(*field),
                         (controller.*Sides[side].setFrequency)(*field << FrequencyShift)) &&
                    succeeded;
    return succeeded;
}

void PrintFrequencies(AbstractBacklight& controller)
{
    for (const Side& side : Sides)
        std::printf("%s frequency: %u\n", side.name,
                    (controller.*side.getFrequency)() >> FrequencyShift);
}

void PrintDevices(const VirtualDisplays& displays, Kind kind)
{
    std::puts("\nDevices");
    const std::vector<std::string> lines = kind == Kind::Panels ? displays.DescribePanels()
                                           : kind == Kind::Chip ? displays.DescribeChip()
                                                                : displays.DescribeRegisters();
    for (const std::string& line : lines)
        std::printf("  %s\n", line.c_str());
}

int WorkBacklight(const CommonOptions& options, const Arguments& arguments)
{
    // Both outlive the controller, which lives until the process ends.
    static const auto testbed =
        options.useVirtual ? std::make_unique<Desk::KernelTestbed>() : nullptr;
    static const auto displays = testbed ? std::make_unique<VirtualDisplays>(*testbed) : nullptr;
    LogTap tap;
    AbstractBacklight& controller = *AbstractBacklightFactory::GetBacklightController();
    const Kind kind = GetKind(controller);
    std::printf("Console model %d%s\n%s\n", Os::Platform::GetKelProductType(),
                Os::Platform::IsConsole() ? "" : ", no console: registers are left alone",
                Describe(kind));
    bool succeeded = true;
    for (std::size_t side = 0; side < Sides.size(); ++side)
        succeeded = SetSide(controller, kind, side, arguments) && succeeded;
    if (kind == Kind::Registers && Os::Platform::IsConsole())
        PrintFrequencies(controller);
    const std::vector<std::string> failures = tap.TakeFailures();
    for (const std::string& failure : failures)
        std::fprintf(stderr, "hwctl: %s\n", failure.c_str());
    if (displays) {
        displays->WaitForPanels(kind == Kind::Panels && arguments.levels[0] ? PanelPacketLength : 0,
                                kind == Kind::Panels && arguments.levels[1] ? PanelPacketLength
                                                                            : 0);
        PrintDevices(*displays, kind);
    } else if (kind == Kind::Panels) {
        AwaitSending(PanelPacketLength, PanelBaudRate);
    }
    return succeeded && failures.empty() && !tap.SawErrors() ? ExitCode_Success : ExitCode_Failure;
}

} // namespace

void AddBacklightCommand(CLI::App& app, const CommonOptions& options, Action& action)
{
    auto arguments = std::make_shared<Arguments>();
    CLI::App* const command = app.add_subcommand(
        "backlight", "Show which backlight controller this console has, and set levels. Where the "
                     "displays have registers, showing sets them up, as the console's start does");
    for (std::size_t side = 0; side < Sides.size(); ++side) {
        const std::string name = std::string("--") + Sides[side].name;
        command->add_option(name, arguments->levels[side], "Level in percent, 0 to 100")
            ->check(InRange(0.0, 100.0));
        command
            ->add_option(name + "-frequency", arguments->frequencies[side],
                         "Frequency as the register has it, 0 to 255; 43 is usual")
            ->check(InRange(0U, 255U));
    }
    command->callback([arguments, &options, &action] {
        action = [arguments, &options] { return WorkBacklight(options, *arguments); };
    });
}

} // namespace Hwctl
