// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "desk/display_registers.h"

namespace Hwctl
{

/// What works the backlights of a console's displays.
enum class BacklightKind { Registers, Panels, Chip };

/// The kind of a console's model.
BacklightKind GetBacklightKind(int productType);

using Desk::DisplaySide;
using Desk::DisplaySides;

/// Duty cycle in a brightness register, 0 to 255.
constexpr unsigned GetDuty(std::uint32_t word)
{
    return word >> 8U & 0xFFU;
}
constexpr bool IsDutyEnabled(std::uint32_t word)
{
    return (word & 1U) != 0;
}
/// Field of a frequency register, 0 to 255.
constexpr unsigned GetFrequencyField(std::uint32_t word)
{
    return word >> 20U & 0xFFU;
}

/// Looks at the display controllers' registers in /dev/mem, and never writes there. One thread at a
/// time.
class DisplayRegisters
{
public:
    DisplayRegisters();
    ~DisplayRegisters();
    DisplayRegisters(const DisplayRegisters&) = delete;
    DisplayRegisters& operator=(const DisplayRegisters&) = delete;

    /// Why writing there would not reach display controllers: on some side neither address holds
    /// words as these registers have them. Empty where all is well, and where memory cannot be
    /// read, since it cannot be written then either.
    std::string FindProblem() const;
    /// The duty cycle that a side's register holds, where one is switched on.
    std::optional<unsigned> ReadDuty(std::size_t side) const;
    /// The frequency field that a side's register holds, where there is one.
    std::optional<unsigned> ReadFrequency(std::size_t side) const;

private:
    std::optional<std::uint32_t> Read(std::uint32_t address) const;
    bool IsRegister(std::uint32_t brightness) const;

    const int m_memory;
};

/// Throws CommandError, with what to do, where the console has display registers and writing to
/// their addresses makes no sense on this computer. Before the backlight controller is made, which
/// writes at once.
void CheckDisplayRegisters(bool isForced);

/// Help for the option that goes round that check.
inline constexpr char ForceHelp[] =
    "Write to the physical addresses of the display registers also where nothing there looks like "
    "them";

} // namespace Hwctl
