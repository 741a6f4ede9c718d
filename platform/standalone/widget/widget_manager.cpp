// SPDX-License-Identifier: MIT
#include "widget/widget_manager.h"

#include "widget/widget_driver.h"

namespace Hardware
{

std::set<WidgetMapData> WidgetManager::GetClassMapData(const GUID& classId)
{
    return WidgetDriver::Get().GetClassMapData(classId);
}

bool WidgetManager::RegisterClassCallback(const GUID& classId, ClassCallback callback,
                                          void* context)
{
    return WidgetDriver::Get().RegisterCallback(classId, callback, context);
}

bool WidgetManager::RemoveClassCallback(const GUID& classId, ClassCallback callback, void* context)
{
    return WidgetDriver::Get().RemoveCallback(classId, callback, context);
}

} // namespace Hardware
