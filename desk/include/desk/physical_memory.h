// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>

#include "desk/kernel_testbed.h"

namespace Desk
{

/// A virtual /dev/mem of four gigabytes. One thread at a time.
///
/// As in a computer, few addresses have anything behind them: at first the pages of the display
/// controllers' registers, which hold 0 until written. Everywhere else there is nothing: all bits
/// read as set, and what is written is kept nowhere. A program sees what it wrote to nothing
/// through the one map that it wrote through, and nowhere else. It can map 1 MiB at most.
class PhysicalMemory
{
public:
    explicit PhysicalMemory(KernelTestbed& testbed);
    ~PhysicalMemory();
    PhysicalMemory(const PhysicalMemory&) = delete;
    PhysicalMemory& operator=(const PhysicalMemory&) = delete;

    /// The 32-bit word at a physical address below 4 GiB.
    std::uint32_t Read(std::uint32_t address) const;
    void Write(std::uint32_t address, std::uint32_t word);

    /// Puts something behind the page of an address, or takes it away, for later maps. There can be
    /// 32 such pages; one more is a std::invalid_argument.
    void SetPresent(std::uint32_t address, bool isPresent);

    /// The device file goes; what is mapped stays.
    void Vanish();
    /// Ends Vanish(): what is present holds 0.
    void Appear();
    /// Lets further opens fail with that errno value; 0 ends it.
    void RefuseOpen(int error);
    /// Lets further maps of the page with that address fail with that errno value; 0 ends it.
    void RefuseMap(std::uint32_t address, int error);
    /// The same for every page.
    void RefuseMaps(int error);

    /// Lets every open take so much longer; 0 ends it.
    void SetDelay(unsigned microseconds);

    /// Descriptors open now, and opens that ever succeeded.
    int CountOpen() const;
    int CountOpened() const;
    /// Flags of the last open, as passed to open().
    int GetLastOpenFlags() const;
    /// Microseconds by which its calls were delayed, together.
    long GetDelayed() const;

private:
    struct Private;

    const std::unique_ptr<Private> m_private;
};

} // namespace Desk
