// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "platform_export.h"
#include "widget/widget_map_data.h"

namespace Hardware
{

/// An open USB widget. The state of the device is shared by all objects that stand for it, so any
/// number may be open at once. Operations may be called from any thread; on a device that was
/// detached they do nothing and say so.
class PLATFORM_EXPORT UmWidget
{
public:
    /// What a device reported. Kinds are told apart by dynamic type.
    class PLATFORM_EXPORT Event
    {
    public:
        Event() = default;
        Event(const Event&) = default;
        Event& operator=(const Event&) = default;
        virtual ~Event();
    };

    explicit UmWidget(const WidgetMapData& mapData);
    virtual ~UmWidget();
    UmWidget(const UmWidget&) = delete;
    UmWidget& operator=(const UmWidget&) = delete;

    /// True when both stand for one class and one device path.
    static bool IsMapDataEqual(const WidgetMapData& one, const WidgetMapData& other);
    bool IsMapDataEqual(const WidgetMapData& mapData) const;

    /// Serial number, 0 to 65535; 0 when it cannot be read.
    unsigned int SerialNumber() const;
    /// Has the unit identify itself visibly. False when nothing reached it.
    bool Beacon();

    const WidgetMapData& GetMapData() const { return m_mapData; }

protected:
    /// The device behind this object; never null.
    DeviceRecord& GetDevice() const { return *m_device; }

private:
    const WidgetMapData m_mapData;
    const std::shared_ptr<DeviceRecord> m_device;
};

/// Decodes the report that a device has just sent, on the driver's thread.
/// @param context what the signaller was constructed with
/// @return the event, or null when the report means nothing to this reader
typedef std::unique_ptr<UmWidget::Event> (*WidgetReader)(const WidgetMapData& mapData,
                                                         void* context);

} // namespace Hardware
