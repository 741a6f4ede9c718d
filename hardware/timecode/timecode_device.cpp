// SPDX-License-Identifier: MIT
#include "hardware/link_control.h"
#include "hardware/log_contexts.h"
#include "hardware/timecode/device.h"
#include "metatype_registration.h"

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

const MetatypeRegistration<Device::Id> IdMetaType("Hardware::Timecode::Device::Id");
const MetatypeRegistration<Frame> FrameMetaType("Hardware::Timecode::Frame");

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
