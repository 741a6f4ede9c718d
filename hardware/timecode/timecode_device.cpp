// SPDX-License-Identifier: MIT
#include "hardware/link_control.h"
#include "hardware/log_contexts.h"
#include "hardware/timecode/device.h"

namespace Hardware
{

Os::Log::Context& TimecodeLogContext()
{
    static Os::Log::Context context("Timecode", &HardwareLogContext(), Os::Log::AllLevels);
    return context;
}

namespace Timecode
{

namespace
{

// At load, so that connections by name and QMetaType::fromName() find the types.
[[maybe_unused]] const int IdMetaType =
    qRegisterMetaType<Device::Id>("Hardware::Timecode::Device::Id");
[[maybe_unused]] const int FrameMetaType = qRegisterMetaType<Frame>("Hardware::Timecode::Frame");

} // namespace

Device::Device(TimecodeType type, QObject* parent) : QObject(parent), m_type(type) {}

Device::~Device() = default;

void Device::emitDeviceAdded(const Id& id)
{
    Q_EMIT deviceAdded(id);
}

void Device::emitDeviceRemoved(const Id& id)
{
    Q_EMIT deviceRemoved(id);
}

void Device::emitFrameRead(const Id& id, const Frame& frame)
{
    Q_EMIT frameRead(id, frame);
}

} // namespace Timecode
} // namespace Hardware

void Timecode_LinkControl() {}
