// SPDX-License-Identifier: MIT
#include "hwctl/display_registers.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstdio>

#include "hwctl/command_error.h"
#include "os/platform.h"

namespace Hwctl
{

namespace
{

constexpr std::uint32_t PageSize = 4096;
// Bits that these registers have. Where no device answers, all bits read as set.
constexpr std::uint32_t BrightnessBits = 0x0000FF01;
constexpr std::uint32_t FrequencyBits = 0x0FF00000;

std::string DescribeWord(std::uint32_t address, std::optional<std::uint32_t> word)
{
    std::array<char, 64> text{};
    if (word)
        std::snprintf(text.data(), text.size(), "%08x holds %08x", address, *word);
    else
        std::snprintf(text.data(), text.size(), "%08x cannot be read", address);
    return text.data();
}

} // namespace

BacklightKind GetBacklightKind(int productType)
{
    switch (productType) {
    case 8:
        return BacklightKind::Panels;
    case 9:
    case 10:
    case 12:
    case 13:
    case 14:
        return BacklightKind::Chip;
    default:
        return BacklightKind::Registers;
    }
}

DisplayRegisters::DisplayRegisters() : m_memory(open("/dev/mem", O_RDONLY | O_SYNC | O_CLOEXEC)) {}

DisplayRegisters::~DisplayRegisters()
{
    if (m_memory != -1)
        close(m_memory);
}

std::optional<std::uint32_t> DisplayRegisters::Read(std::uint32_t address) const
{
    const std::uint32_t inPage = address % PageSize;
    void* const page = mmap(nullptr, PageSize, PROT_READ, MAP_SHARED, m_memory, address - inPage);
    if (page == MAP_FAILED) // NOLINT(*-no-int-to-ptr, *-cstyle-cast): the system's macro
        return std::nullopt;
    const std::uint32_t word =
        *reinterpret_cast<const volatile std::uint32_t*>(static_cast<const char*>(page) + inPage);
    munmap(page, PageSize);
    return word;
}

bool DisplayRegisters::IsRegister(std::uint32_t brightness) const
{
    const auto level = Read(brightness);
    const auto frequency = Read(DisplaySide::GetFrequency(brightness));
    return level && frequency && (*level & ~BrightnessBits) == 0 &&
           (*frequency & ~FrequencyBits) == 0;
}

std::string DisplayRegisters::FindProblem() const
{
    if (m_memory == -1)
        return "";
    for (const DisplaySide& side : DisplaySides) {
        if (IsRegister(side.brightness[0]) || IsRegister(side.brightness[1]))
            continue;
        std::string text = std::string("no register of the ") + side.name + " display:";
        for (const std::uint32_t brightness : side.brightness)
            for (const std::uint32_t address : {brightness, DisplaySide::GetFrequency(brightness)})
                text += " " + DescribeWord(address, Read(address)) + ",";
        text.pop_back();
        return text;
    }
    return "";
}

std::optional<unsigned> DisplayRegisters::ReadDuty(std::size_t side) const
{
    for (const std::uint32_t address : DisplaySides[side].brightness)
        if (const auto word = Read(address); IsRegister(address) && word && IsDutyEnabled(*word))
            return GetDuty(*word);
    return std::nullopt;
}

std::optional<unsigned> DisplayRegisters::ReadFrequency(std::size_t side) const
{
    std::optional<unsigned> field;
    for (const std::uint32_t address : DisplaySides[side].brightness)
        // Of a place that holds 0 it cannot be said whether the register is there.
        if (field.value_or(0) == 0 && IsRegister(address))
            if (const auto word = Read(DisplaySide::GetFrequency(address)))
                field = GetFrequencyField(*word);
    return field;
}

void CheckDisplayRegisters(bool isForced)
{
    if (isForced || !Os::Platform::IsConsole() ||
        GetBacklightKind(Os::Platform::GetKelProductType()) != BacklightKind::Registers)
        return;
    const std::string problem = DisplayRegisters().FindProblem();
    if (!problem.empty())
        throw CommandError("this computer has " + problem +
                           "; use --force to write to these physical addresses nevertheless");
}

} // namespace Hwctl
