// SPDX-License-Identifier: MIT
#include "widget/widget_factory.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "widget/device_record.h"
#include "widget/expansion_wing.h"
#include "widget/trackball_widget.h"
#include "widget/vex4_top_box.h"
#include "widget/wings.h"

namespace Hardware
{

namespace
{

typedef UmWidget* (*Maker)(const WidgetMapData& mapData);

template <class Widget> UmWidget* Make(const WidgetMapData& mapData)
{
    return new Widget(mapData);
}

/// Null for a class without widget object: the LTC board has none that goes by a key.
Maker FindMaker(const GUID* classId)
{
    // No destructor: the factory is asked until the process ends.
    static constexpr std::pair<const GUID*, Maker> makers[] = {
        {&GUID_DEVINTERFACE_QRTUMPLAYBACKWING, &Make<PlaybackWing>},
        {&GUID_DEVINTERFACE_QRTUMEXPANSIONWING, &Make<ExpansionWing>},
        {&GUID_DEVINTERFACE_QRTUMPROGRAMMERWING, &Make<ProgrammerWing>},
        {&GUID_DEVINTERFACE_QRTUMVNEXT_EXTERNAL_PLAYBACKWING, &Make<Vex4ExternalPlayback>},
        {&GUID_DEVINTERFACE_QRTUMVNEXT_EXTERNAL_PIXI, &Make<Vex4Pixi>},
        {&GUID_DEVINTERFACE_QRTUMVNEXT_KEYSTONE, &Make<Vex4Keystone>},
        {&GUID_DEVINTERFACE_QRTUMVNEXT_SPRIG, &Make<Vex4Sprig>},
        {&GUID_DEVINTERFACE_QRTUMVNEXT_PETITE, &Make<Vex4Petite>},
        {&GUID_DEVINTERFACE_QRTUMVNEXTPLAYBACKWING, &Make<Vex4DeskPlayback>},
        {&GUID_DEVINTERFACE_QRTUMVNEXTPROGRAMWING, &Make<Vex4DeskProgrammer>},
        {&GUID_DEVINTERFACE_QRTUMVNEXT_TARNEL, &Make<Vex4Tarnel>},
        {&GUID_DEVINTERFACE_QRTUMVNEXT_BRAMBLE, &Make<Vex4Bramble>},
        {&GUID_DEVINTERFACE_QRTUMVEX4TOUCHD, &Make<Vex4TopBox>},
        {&GUID_DEVINTERFACE_QRTUMTBALLD, &Make<TrackballWidget>}};
    const auto* const found =
        std::find_if(std::begin(makers), std::end(makers),
                     [classId](const auto& maker) { return maker.first == classId; });
    return found == std::end(makers) ? nullptr : found->second;
}

WidgetKey MakeKey(const DeviceRecord& device)
{
    const auto serialNumber = device.GetSerialNumber();
    const auto kind = device.GetModel().kind;
    return serialNumber && kind ? *kind << 16U | *serialNumber : NoWidgetKey;
}

} // namespace

WidgetFactory& WidgetFactory::Get()
{
    // Never destroyed: singletons ask it until the process ends.
    static auto* const factory = new WidgetFactory;
    return *factory;
}

UmWidget* WidgetFactory::Create(const WidgetMapData& mapData, unsigned long& key)
{
    const Maker maker = FindMaker(mapData.GetClassId());
    if (!maker || !mapData.GetDevice()->IsAttached())
        return nullptr;
    key = MakeKey(*mapData.GetDevice());
    return maker(mapData);
}

} // namespace Hardware
