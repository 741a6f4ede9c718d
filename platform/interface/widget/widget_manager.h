// SPDX-License-Identifier: MIT
#pragma once

#include <set>

#include "platform_export.h"
#include "widget/widget_map_data.h"

namespace Hardware
{

/// What happened to a widget of a watched class.
enum WidgetEvent : unsigned { WidgetEvent_Added, WidgetEvent_Removed };

/// Asks the driver about attached widgets. Any thread may call any operation.
class PLATFORM_EXPORT WidgetManager
{
public:
    /// Called on the driver's thread, with no lock of the driver held.
    typedef void (*ClassCallback)(const WidgetMapData& mapData, WidgetEvent event, void* context);

    /// The widgets of a class that are attached now, whether or not anybody watches the class.
    static std::set<WidgetMapData> GetClassMapData(const GUID& classId);

    /// Has @p callback called for every widget of the class that is attached or detached from now
    /// on. False when these three are registered already.
    static bool RegisterClassCallback(const GUID& classId, ClassCallback callback, void* context);
    /// Ends that, and waits for a call that is running, unless on the driver's thread: hold no lock
    /// that the callback takes. False when these three were not registered.
    static bool RemoveClassCallback(const GUID& classId, ClassCallback callback, void* context);
};

} // namespace Hardware
