// SPDX-License-Identifier: MIT
#pragma once

#include "hardware/timecode/device.h"

namespace TestSupport
{

/// The least that is a timecode device.
class StubDevice : public Hardware::Timecode::Device
{
public:
    explicit StubDevice(Hardware::TimecodeType type = Hardware::TimecodeType_Vitc,
                        QObject* parent = nullptr)
        : Device(type, parent)
    {
    }
    bool Enable() override { return true; }
    bool Disable() override { return true; }
    bool IsEnabled() const override { return false; }
    bool IsActive() const override { return false; }
};

} // namespace TestSupport
