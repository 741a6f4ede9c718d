// SPDX-License-Identifier: MIT
#include "wings/own_factory.h"

#include <dlfcn.h>

#include "widget/widget_factory.h"

namespace TestSupport
{

std::function<unsigned long(unsigned long)>& OnCreate()
{
    static std::function<unsigned long(unsigned long)> action;
    return action;
}

} // namespace TestSupport

namespace Hardware
{

UmWidget* WidgetFactory::Create(const WidgetMapData& mapData, unsigned long& key)
{
    typedef UmWidget* Operation(WidgetFactory*, const WidgetMapData&, unsigned long&);
    static auto* const real = reinterpret_cast<Operation*>(
        dlsym(RTLD_NEXT, "_ZN8Hardware13WidgetFactory6CreateERKNS_13WidgetMapDataERm"));
    const auto action = TestSupport::OnCreate();
    const unsigned long given = action ? action(key) : 0;
    UmWidget* const widget = real(this, mapData, key);
    if (given != 0)
        key = given;
    return widget;
}

} // namespace Hardware
