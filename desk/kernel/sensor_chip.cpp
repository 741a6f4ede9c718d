// SPDX-License-Identifier: MIT
#include "desk/sensor_chip.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "kernel/faulty_device.h"

namespace Desk
{

namespace
{

constexpr char Path[] = "/sys/devices/platform/w83627ehf.656/pwm3";

} // namespace

struct SensorChip::Private {
    explicit Private(KernelTestbed& testbed) : device(testbed), file(testbed.GetPathOf(Path))
    {
        device.Name(Path);
        device.Change([](DeskDeviceFaults& faults) { faults.takesNumber = 1; });
    }

    FaultyDevice device;
    const std::filesystem::path file;
};

SensorChip::SensorChip(KernelTestbed& testbed) : m_private(new Private(testbed))
{
    Appear();
}

SensorChip::~SensorChip()
{
    Vanish();
}

std::string SensorChip::GetText() const
{
    std::ifstream in(m_private->file);
    return {std::istreambuf_iterator<char>(in), {}};
}

void SensorChip::SetText(const std::string& text)
{
    std::ofstream(m_private->file) << text;
}

void SensorChip::SetStrict(bool strict)
{
    m_private->device.Change([strict](DeskDeviceFaults& faults) { faults.takesNumber = strict; });
}

void SensorChip::Vanish()
{
    m_private->device.Change(
        [](DeskDeviceFaults& faults) { faults.readError = faults.writeError = ENODEV; });
    std::error_code ignored;
    std::filesystem::remove(m_private->file, ignored);
}

void SensorChip::Appear()
{
    m_private->device.Change(
        [](DeskDeviceFaults& faults) { faults.readError = faults.writeError = 0; });
    if (std::filesystem::exists(m_private->file))
        return;
    std::filesystem::create_directories(m_private->file.parent_path());
    SetText("127\n");
}

void SensorChip::RefuseOpen(int error)
{
    m_private->device.Change([error](DeskDeviceFaults& faults) { faults.openError = error; });
}

void SensorChip::RefuseWrites(int error)
{
    m_private->device.Change([error](DeskDeviceFaults& faults) { faults.writeError = error; });
}

void SensorChip::SetDelay(unsigned microseconds)
{
    m_private->device.Change([microseconds](DeskDeviceFaults& faults) {
        faults.delay = static_cast<long>(microseconds);
    });
}

long SensorChip::GetDelayed() const
{
    return m_private->device.GetUse().delayed;
}

int SensorChip::CountOpen() const
{
    return m_private->device.GetUse().openNow;
}

int SensorChip::CountOpened() const
{
    return m_private->device.GetUse().openedEver;
}

int SensorChip::GetLastOpenFlags() const
{
    return m_private->device.GetUse().lastFlags;
}

} // namespace Desk
