// SPDX-License-Identifier: MIT
#include "widget/um_widget.h"

#include "widget/device_record.h"

namespace Hardware
{

namespace Report = Standalone::Report;

namespace
{

/// Where there is no device: a widget object on it does nothing.
std::shared_ptr<DeviceRecord> MakeNoDevice()
{
    return std::make_shared<DeviceRecord>(
        Standalone::WidgetDescription{&GUID_DEVINTERFACE_QRTUMLTCD, {}, {}}, nullptr);
}

} // namespace

UmWidget::Event::~Event() = default;

UmWidget::UmWidget(const WidgetMapData& mapData)
    : m_mapData(mapData), m_device(mapData.GetDevice() ? mapData.GetDevice() : MakeNoDevice())
{
    m_device->Hold();
}

UmWidget::~UmWidget()
{
    m_device->Release();
}

bool UmWidget::IsMapDataEqual(const WidgetMapData& one, const WidgetMapData& other)
{
    return one.GetClassId() == other.GetClassId() && one.GetDevicePath() == other.GetDevicePath();
}

bool UmWidget::IsMapDataEqual(const WidgetMapData& mapData) const
{
    return IsMapDataEqual(m_mapData, mapData);
}

unsigned int UmWidget::SerialNumber() const
{
    return m_device->GetSerialNumber().value_or(0);
}

bool UmWidget::Beacon()
{
    return m_device->Write(Report::Beacon{});
}

} // namespace Hardware
