// SPDX-License-Identifier: MIT
#include "desk/physical_memory.h"

#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <set>
#include <stdexcept>
#include <utility>
#include <vector>

#include "desk/display_registers.h"
#include "kernel/faulty_device.h"

namespace Desk
{

namespace
{

constexpr char Path[] = "/dev/mem";
constexpr off_t Size = off_t{1} << 32U;
constexpr std::uint32_t PageMask = 4095;
/// Where there is nothing, nobody answers.
constexpr std::uint32_t Nothing = 0xFFFFFFFF;

} // namespace

struct PhysicalMemory::Private {
    explicit Private(KernelTestbed& testbed)
        : device(testbed), refuseMap(testbed.GetPrivate().refuseMap),
          setPages(testbed.GetPrivate().setPages), file(testbed.GetPathOf(Path))
    {
        device.Name(Path);
    }

    /// Whether there is anything behind the page of an address.
    bool IsPresent(std::uint32_t address) const { return pages.contains(address & ~PageMask); }

    /// Has the library know the pages.
    void TellPages() const
    {
        const std::vector<unsigned long> list(pages.begin(), pages.end());
        setPages(device.GetHandle(), list.data(), static_cast<int>(list.size()));
    }

    FaultyDevice device;
    DeskRefuseMap* refuseMap;
    DeskSetPages* setPages;
    const std::string file;
    int memory = -1;               // the file, by the name that only the desk knows
    std::set<std::uint32_t> pages; // by their first addresses
};

PhysicalMemory::PhysicalMemory(KernelTestbed& testbed) : m_private(new Private(testbed))
{
    for (const DisplaySide& side : DisplaySides)
        for (const std::uint32_t address : side.brightness)
            m_private->pages.insert(address & ~PageMask);
    m_private->TellPages();
    Appear();
}

PhysicalMemory::~PhysicalMemory()
{
    Vanish();
    close(m_private->memory);
}

std::uint32_t PhysicalMemory::Read(std::uint32_t address) const
{
    if (!m_private->IsPresent(address))
        return Nothing;
    std::uint32_t word = 0;
    if (pread(m_private->memory, &word, sizeof word, address) != sizeof word)
        throw std::runtime_error("virtual memory cannot be read");
    return word;
}

void PhysicalMemory::Write(std::uint32_t address, std::uint32_t word)
{
    if (!m_private->IsPresent(address))
        return;
    if (pwrite(m_private->memory, &word, sizeof word, address) != sizeof word)
        throw std::runtime_error("virtual memory cannot be written");
}

void PhysicalMemory::SetPresent(std::uint32_t address, bool isPresent)
{
    if (!isPresent)
        m_private->pages.erase(address & ~PageMask);
    else if (m_private->pages.size() < DeskPageLimit || m_private->IsPresent(address))
        m_private->pages.insert(address & ~PageMask);
    else
        throw std::invalid_argument("too many pages of the virtual memory have something there");
    m_private->TellPages();
}

void PhysicalMemory::Vanish()
{
    std::error_code ignored;
    std::filesystem::remove(m_private->file, ignored);
}

void PhysicalMemory::Appear()
{
    if (std::filesystem::exists(m_private->file))
        return;
    if (m_private->memory != -1)
        close(m_private->memory);
    m_private->memory = open(m_private->file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    // A sparse file: only pages that were written take room.
    if (m_private->memory == -1 || ftruncate(m_private->memory, Size) != 0)
        throw std::runtime_error("no file for the virtual memory");
}

void PhysicalMemory::RefuseOpen(int error)
{
    m_private->device.Change([error](DeskDeviceFaults& faults) { faults.openError = error; });
}

void PhysicalMemory::RefuseMap(std::uint32_t address, int error)
{
    m_private->refuseMap(m_private->device.GetHandle(), address & ~PageMask, error);
}

void PhysicalMemory::RefuseMaps(int error)
{
    m_private->refuseMap(m_private->device.GetHandle(), ~0UL, error);
}

void PhysicalMemory::SetDelay(unsigned microseconds)
{
    m_private->device.Change([microseconds](DeskDeviceFaults& faults) {
        faults.delay = static_cast<long>(microseconds);
    });
}

long PhysicalMemory::GetDelayed() const
{
    return m_private->device.GetUse().delayed;
}

int PhysicalMemory::CountOpen() const
{
    return m_private->device.GetUse().openNow;
}

int PhysicalMemory::CountOpened() const
{
    return m_private->device.GetUse().openedEver;
}

int PhysicalMemory::GetLastOpenFlags() const
{
    return m_private->device.GetUse().lastFlags;
}

} // namespace Desk
