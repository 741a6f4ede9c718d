// SPDX-License-Identifier: MIT
#pragma once

#include "platform_export.h"
#include "widget/um_widget.h"
#include "widget/widget_key.h"

namespace Hardware
{

/// Makes the widget object for a device. Any thread may call any operation.
class PLATFORM_EXPORT WidgetFactory
{
public:
    /// The only factory; it is never destroyed.
    static WidgetFactory& Get();

    /// Makes the widget object for an attached device; the caller owns it.
    /// @param key receives the wing's key, NoWidgetKey when its serial number cannot be read;
    ///            untouched when nothing was made
    /// @return null for a detached device and for a class without widget object
    UmWidget* Create(const WidgetMapData& mapData, unsigned long& key);

private:
    WidgetFactory() = default;
};

} // namespace Hardware
