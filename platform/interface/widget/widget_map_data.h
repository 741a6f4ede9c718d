// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

#include "platform_export.h"
#include "widget/class_ids.h"

namespace Hardware
{

class DeviceRecord;

/// The driver's record of one attached widget. A value: copies stand for the same device, also
/// after it was detached. Any thread may use a copy of its own.
class PLATFORM_EXPORT WidgetMapData
{
public:
    /// Stands for no device.
    WidgetMapData();
    explicit WidgetMapData(std::shared_ptr<DeviceRecord> device);

    /// The device's class; null when it stands for none.
    const GUID* GetClassId() const;
    /// Where the device is plugged; empty when it stands for none.
    const std::wstring& GetDevicePath() const;

    /// Opens the device; true also when it is open. False when it is detached.
    bool Open();
    /// Closes the device, whoever opened it. A widget object that works it afterwards opens it
    /// anew. False when it was not open.
    bool Close();
    /// Stops the read loop that signallers with automatic reading started. False when none ran.
    bool StopReader();

    /// Orders by device path, then by the class's place among the identifiers.
    bool operator<(const WidgetMapData& other) const;

    const std::shared_ptr<DeviceRecord>& GetDevice() const { return m_device; }

private:
    std::shared_ptr<DeviceRecord> m_device;
};

} // namespace Hardware
