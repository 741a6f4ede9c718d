// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include "hardware/timecode/device_cd.h"
#include "watch/event.h"

namespace Tools
{

/// Watches the CD drive and reports each signal of its timecode.
class CdWatch
{
public:
    /// Takes a frame; called on the device's thread.
    typedef std::function<void(const Hardware::Timecode::Frame& frame)> FrameTaker;

    /// @param take called on the thread that starts and stops
    CdWatch(EventTaker take, FrameTaker takeFrame);
    CdWatch(const CdWatch&) = delete;
    CdWatch& operator=(const CdWatch&) = delete;

    /// Throws std::runtime_error when there is no drive to open.
    void Start();
    void Stop() { m_device.Disable(); }

private:
    const EventTaker m_take;
    const FrameTaker m_takeFrame;
    Hardware::Timecode::DeviceCd m_device{nullptr};
};

/// What a source of CD timecode is called.
inline constexpr char CdSource[] = "timecode cd";

} // namespace Tools
