// SPDX-License-Identifier: MIT
#pragma once

#include <utility>
#include <vector>

#include "widget/widget_key.h"
#include "widget/widget_map_data.h"

namespace Hardware
{

/// What the wing mapper knows of the devices that came and went since it began, and what of that
/// it has still to announce.
///
/// When the mapper begins, it lists the devices before it hears of changes. What changes in between
/// is found by a second list, while the driver's thread reports already: each device is taken once,
/// and all announcements are made on one thread, in the order of the changes. The mapper's lock
/// guards the object.
class WingNews
{
public:
    typedef std::vector<WidgetMapData> Devices;
    typedef std::vector<std::pair<WidgetKey, bool>> Announcements;

    /// Whether both stand for one device, plugged once. Another at the same place is not the same.
    static bool IsSame(const WidgetMapData& one, const WidgetMapData& other);
    static bool Contains(const Devices& devices, const WidgetMapData& mapData);

    /// Forgets all devices.
    void Clear();
    /// A device of the first list.
    void AddListed(const WidgetMapData& mapData) { m_attached.push_back(mapData); }
    /// One that the driver reports; false when it was caught up on before.
    bool AddReported(const WidgetMapData& mapData);
    /// One of the second list; false when it is known.
    bool AddCaughtUp(const WidgetMapData& mapData);
    void Remove(const WidgetMapData& mapData);
    const Devices& GetDevices() const { return m_attached; }

    /// From now on announcements are held back.
    void HoldBack() { m_isHeldBack = true; }
    /// False when the caller is to announce the change, without the lock.
    bool Hold(WidgetKey key, bool isPresent);
    /// What was held back so far; empty, and nothing is held back any more, when that is all.
    Announcements Take();

private:
    Devices m_attached;
    Devices m_caughtUp; // of these, those that may still be reported
    Announcements m_announcements;
    bool m_isHeldBack = false;
};

} // namespace Hardware
