// SPDX-License-Identifier: MIT
#include "widget/widget_map_data.h"

#include <tuple>
#include <utility>

#include "widget/device_record.h"

namespace Hardware
{

WidgetMapData::WidgetMapData() = default;

WidgetMapData::WidgetMapData(std::shared_ptr<DeviceRecord> device) : m_device(std::move(device)) {}

const GUID* WidgetMapData::GetClassId() const
{
    return m_device ? &m_device->GetClassId() : nullptr;
}

const std::wstring& WidgetMapData::GetDevicePath() const
{
    // Never destroyed, as the devices' own paths are there until the last copy goes.
    static const std::wstring* const nowhere = new std::wstring;
    return m_device ? m_device->GetPath() : *nowhere;
}

bool WidgetMapData::Open()
{
    return m_device && m_device->Open();
}

bool WidgetMapData::Close()
{
    return m_device && m_device->Close();
}

bool WidgetMapData::StopReader()
{
    return m_device && m_device->StopReader();
}

bool WidgetMapData::operator<(const WidgetMapData& other) const
{
    const auto rank = [](const WidgetMapData& data) {
        // The position, not the address: the order is then the same in every run.
        return data.GetClassId() ? static_cast<int>(data.GetClassId()->position) : -1;
    };
    return std::forward_as_tuple(GetDevicePath(), rank(*this)) <
           std::forward_as_tuple(other.GetDevicePath(), rank(other));
}

} // namespace Hardware
