// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>

#include "hardware/timecode/device_ltc.h"
#include "watch/event.h"

namespace Tools
{

/// Watches all LTC boards and reports each of their signals.
class LtcWatch
{
public:
    /// Takes a frame and the number of its board; called on the driver's thread.
    typedef std::function<void(unsigned board, const Hardware::Timecode::Frame& frame)> FrameTaker;

    LtcWatch(EventTaker take, FrameTaker takeFrame);
    LtcWatch(const LtcWatch&) = delete;
    LtcWatch& operator=(const LtcWatch&) = delete;

    void Start() { m_device.Enable(); }
    void Stop() { m_device.Disable(); }

private:
    const EventTaker m_take;
    const FrameTaker m_takeFrame;
    Hardware::Timecode::DeviceLtc m_device{nullptr};
};

} // namespace Tools
