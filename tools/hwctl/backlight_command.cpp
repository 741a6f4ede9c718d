// SPDX-License-Identifier: MIT
#include <array>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <memory>

#include "hardware/abstract_backlight_factory.h"
#include "hwctl/command.h"
#include "hwctl/display_registers.h"
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

/// What a chip's output is set by.
constexpr char ChipPath[] = "/sys/devices/platform/w83627ehf.656/pwm3";

const char* Describe(BacklightKind kind)
{
    switch (kind) {
    case BacklightKind::Panels:
        return "Zr4Backlight, flat-panel controllers on serial ports: left and right";
    case BacklightKind::Chip:
        return "Tarnel4Backlight, hardware-monitor chip: right";
    default:
        return "Vex4Backlight, display controllers' registers: left, right and centre, with "
               "frequencies";
    }
}

/// The operations of a controller for a side, in the order of DisplaySides.
struct Side {
    bool (AbstractBacklight::*setLevel)(uires16);
    bool (AbstractBacklight::*setFrequency)(unsigned);
};
constexpr std::array<Side, 3> Sides{
    {{&AbstractBacklight::SetLeftBacklight, &AbstractBacklight::SetLeftBacklightFrequency},
     {&AbstractBacklight::SetRightBacklight, &AbstractBacklight::SetRightBacklightFrequency},
     {&AbstractBacklight::SetCenterBacklight, &AbstractBacklight::SetCenterBacklightFrequency}}};

bool HasSide(BacklightKind kind, std::size_t side)
{
    return kind == BacklightKind::Registers || (kind == BacklightKind::Panels && side < 2) ||
           (kind == BacklightKind::Chip && side == 1);
}

/// What was asked for, by side.
struct Arguments {
    std::array<std::optional<double>, 3> levels;
    std::array<std::optional<unsigned>, 3> frequencies;
    bool isForced = false;
};

/// Where a frequency's field stands in its register.
constexpr unsigned FrequencyShift = 20;

/// What came of a setting.
struct Outcome {
    bool succeeded;
    std::string text;
};

constexpr char NothingDone[] = "this console has none, nothing done";

/// Compares what a device holds with what stands for a level.
Outcome CompareDuty(std::optional<unsigned> held, double percent, const std::string& device)
{
    constexpr double Tolerance = 4; // controllers round down, the centre display's to a percent
    if (!held)
        return {false, "failed, " + device + " does not hold it"};
    const bool isSame = std::abs(*held - percent * 2.55) <= Tolerance;
    return {isSame, (isSame ? "done, " : "failed, ") + device + " holds " + std::to_string(*held) +
                        " of 255"};
}

std::optional<unsigned> ReadChip()
{
    std::ifstream file(ChipPath);
    unsigned value = 0;
    return file >> value ? std::optional(value) : std::nullopt;
}

/// What really became of a level that the controller took.
Outcome CheckLevel(BacklightKind kind, std::size_t side, double level)
{
    switch (kind) {
    case BacklightKind::Panels:
        return {true, "sent, the panel does not answer"};
    case BacklightKind::Chip: // brightest at 0
        return CompareDuty(ReadChip(), 100 - level, "the chip");
    default: {
        constexpr std::size_t Centre = 2; // from 85 percent down to 50
        return CompareDuty(DisplayRegisters().ReadDuty(side),
                           side == Centre ? 85 - level * 0.35 : level, "the register");
    }
    }
}

Outcome SetLevel(AbstractBacklight& controller, BacklightKind kind, std::size_t side, double level)
{
    const auto bits = static_cast<uires16>(std::lround(level * 0x10000));
    const bool wasTaken = (controller.*Sides[side].setLevel)(bits);
    if (!HasSide(kind, side))
        return {false, NothingDone};
    return wasTaken ? CheckLevel(kind, side, level) : Outcome{false, "failed"};
}

Outcome SetFrequency(AbstractBacklight& controller, BacklightKind kind, std::size_t side,
                     unsigned field)
{
    const bool wasTaken = (controller.*Sides[side].setFrequency)(field << FrequencyShift);
    if (kind != BacklightKind::Registers)
        return {false, NothingDone};
    if (!wasTaken)
        return {false, "failed"};
    return DisplayRegisters().ReadFrequency(side) == field
               ? Outcome{true, "done"}
               : Outcome{false, "failed, the register does not hold it"};
}

bool SetSide(AbstractBacklight& controller, BacklightKind kind, std::size_t side,
             const Arguments& arguments)
{
    bool succeeded = true;
    const auto print = [&](const std::string& what, const Outcome& outcome) {
        std::printf("%s %s: %s\n", DisplaySides[side].name, what.c_str(), outcome.text.c_str());
        succeeded = succeeded && outcome.succeeded;
    };
    if (const auto& level = arguments.levels[side]) {
        std::array<char, 32> what{};
        std::snprintf(what.data(), what.size(), "level %g", *level);
        print(what.data(), SetLevel(controller, kind, side, *level));
    }
    if (const auto& field = arguments.frequencies[side])
        print("frequency " + std::to_string(*field), SetFrequency(controller, kind, side, *field));
    return succeeded;
}

void PrintFrequencies()
{
    const DisplayRegisters registers;
    for (std::size_t side = 0; side < Sides.size(); ++side) {
        const auto field = registers.ReadFrequency(side);
        std::printf("%s frequency: %s\n", DisplaySides[side].name,
                    field ? std::to_string(*field).c_str() : "unknown, no register was read");
    }
}

void PrintDevices(const VirtualDisplays& displays)
{
    std::puts("\nDevices");
    const std::vector<std::string> lines = displays.Describe(Os::Platform::GetKelProductType());
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
    CheckDisplayRegisters(arguments.isForced);
    AbstractBacklight& controller = *AbstractBacklightFactory::GetBacklightController();
    const BacklightKind kind = GetBacklightKind(Os::Platform::GetKelProductType());
    std::printf("Console model %d%s\n%s\n", Os::Platform::GetKelProductType(),
                Os::Platform::IsConsole() ? "" : ", no console: registers are left alone",
                Describe(kind));
    bool succeeded = true;
    for (std::size_t side = 0; side < Sides.size(); ++side)
        succeeded = SetSide(controller, kind, side, arguments) && succeeded;
    if (kind == BacklightKind::Registers && Os::Platform::IsConsole())
        PrintFrequencies();
    const std::vector<std::string> failures = tap.TakeFailures();
    for (const std::string& failure : failures)
        std::fprintf(stderr, "hwctl: %s\n", failure.c_str());
    if (displays) {
        displays->WaitForPanels(
            kind == BacklightKind::Panels && arguments.levels[0] ? PanelPacketLength : 0,
            kind == BacklightKind::Panels && arguments.levels[1] ? PanelPacketLength : 0);
        PrintDevices(*displays);
    } else if (kind == BacklightKind::Panels) {
        AwaitSending(PanelPacketLength, PanelBaudRate);
    }
    return succeeded && failures.empty() && !tap.SawErrors() ? ExitCode_Success : ExitCode_Failure;
}

} // namespace

void AddBacklightCommand(CLI::App& app, const CommonOptions& options, Action& action)
{
    auto arguments = std::make_shared<Arguments>();
    CLI::App* const command = app.add_subcommand(
        "backlight",
        "Show which backlight controller this console has, and set levels. Where the "
        "displays have registers, showing sets them up, as the console's start does, but "
        "not where their addresses hold something else: see --force");
    for (std::size_t side = 0; side < Sides.size(); ++side) {
        const std::string name = std::string("--") + DisplaySides[side].name;
        command->add_option(name, arguments->levels[side], "Level in percent, 0 to 100")
            ->check(InRange(0.0, 100.0));
        command
            ->add_option(name + "-frequency", arguments->frequencies[side],
                         "Frequency as the register has it, 0 to 255; 43 is usual")
            ->check(InRange(0U, 255U));
    }
    command->add_flag("--force", arguments->isForced, ForceHelp);
    command->callback([arguments, &options, &action] {
        action = [arguments, &options] { return WorkBacklight(options, *arguments); };
    });
}

} // namespace Hwctl
