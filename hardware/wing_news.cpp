// SPDX-License-Identifier: MIT
#include "wing_news.h"

#include <algorithm>

namespace Hardware
{

namespace
{

/// True when it was there.
bool Erase(WingNews::Devices& devices, const WidgetMapData& mapData)
{
    return std::erase_if(devices, [&](const WidgetMapData& device) {
               return WingNews::IsSame(device, mapData);
           }) != 0;
}

} // namespace

bool WingNews::IsSame(const WidgetMapData& one, const WidgetMapData& other)
{
    return one.GetDevice() == other.GetDevice();
}

bool WingNews::Contains(const Devices& devices, const WidgetMapData& mapData)
{
    return std::any_of(devices.begin(), devices.end(),
                       [&](const WidgetMapData& device) { return IsSame(device, mapData); });
}

void WingNews::Clear()
{
    m_attached.clear();
    m_caughtUp.clear();
}

bool WingNews::AddReported(const WidgetMapData& mapData)
{
    if (Erase(m_caughtUp, mapData))
        return false;
    m_attached.push_back(mapData);
    return true;
}

bool WingNews::AddCaughtUp(const WidgetMapData& mapData)
{
    if (Contains(m_attached, mapData))
        return false;
    m_attached.push_back(mapData);
    m_caughtUp.push_back(mapData);
    return true;
}

void WingNews::Remove(const WidgetMapData& mapData)
{
    Erase(m_attached, mapData);
    Erase(m_caughtUp, mapData);
}

bool WingNews::Hold(WidgetKey key, bool isPresent)
{
    if (m_isHeldBack)
        m_announcements.emplace_back(key, isPresent);
    return m_isHeldBack;
}

WingNews::Announcements WingNews::Take()
{
    m_isHeldBack = !m_announcements.empty();
    return std::exchange(m_announcements, {});
}

} // namespace Hardware
