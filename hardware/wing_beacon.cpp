// SPDX-License-Identifier: MIT
#include "hardware/wing_beacon.h"

#include "os/platform.h"
#include "widget/expansion_wing.h"
#include "widget/widget_manager.h"
#include "widget/wings.h"

namespace Hardware
{

namespace
{

/// The last console model whose sections beacon.
constexpr int LastSectionedConsole = 14;

/// Calls @p beacon for every attached wing of a class that has the serial number.
template <class Wing, class Beacon>
void BeaconEqual(const GUID& classId, unsigned serialNumber, Beacon beacon)
{
    for (const WidgetMapData& mapData : WidgetManager::GetClassMapData(classId)) {
        Wing wing(mapData);
        if (wing.SerialNumber() == serialNumber)
            beacon(wing);
    }
}

template <class Wing> void BeaconWhole(const GUID& classId, unsigned serialNumber)
{
    BeaconEqual<Wing>(classId, serialNumber, [](Wing& wing) { wing.Beacon(); });
}

template <class Wing>
void BeaconOneSection(const GUID& classId, unsigned serialNumber, UmWing::WingSections section)
{
    BeaconEqual<Wing>(classId, serialNumber,
                      [section](Wing& wing) { wing.BeaconSection(section); });
}

template <class Wing> void BeaconAll(const GUID& classId)
{
    for (const WidgetMapData& mapData : WidgetManager::GetClassMapData(classId))
        Wing(mapData).Beacon();
}

/// A console's front panel is beaconed as a whole: neither serial number nor section counts.
void BeaconConsole()
{
    const int productType = Os::Platform::GetKelProductType();
    if (!Os::Platform::IsConsole() || productType > LastSectionedConsole)
        return;
    switch (productType) {
    case 10:
    case 12:
    case 13:
    case 14:
        BeaconAll<Vex4Bramble>(GUID_DEVINTERFACE_QRTUMVNEXT_BRAMBLE);
        break;
    case 9:
        BeaconAll<Vex4Tarnel>(GUID_DEVINTERFACE_QRTUMVNEXT_TARNEL);
        break;
    case 7:
    case 8:
        BeaconAll<Vex4DeskPlayback>(GUID_DEVINTERFACE_QRTUMVNEXTPLAYBACKWING);
        BeaconAll<Vex4DeskProgrammer>(GUID_DEVINTERFACE_QRTUMVNEXTPROGRAMWING);
        break;
    default:
        break;
    }
}

} // namespace

WingBeacon& WingBeacon::Get()
{
    static WingBeacon instance;
    return instance;
}

void WingBeacon::beacon(WidgetKey k, UmWing::WingSections ws)
{
    const unsigned kind = k >> 16U & 0xFFU;
    const unsigned serialNumber = k & 0xFFFFU;
    // A programmer wing, kind 3, cannot be beaconed.
    switch (kind) {
    case 1:
        BeaconWhole<PlaybackWing>(GUID_DEVINTERFACE_QRTUMPLAYBACKWING, serialNumber);
        break;
    case 2:
        BeaconOneSection<ExpansionWing>(GUID_DEVINTERFACE_QRTUMEXPANSIONWING, serialNumber, ws);
        break;
    case 4:
        BeaconWhole<Vex4ExternalPlayback>(GUID_DEVINTERFACE_QRTUMVNEXT_EXTERNAL_PLAYBACKWING,
                                          serialNumber);
        break;
    case 5:
        BeaconWhole<Vex4Pixi>(GUID_DEVINTERFACE_QRTUMVNEXT_EXTERNAL_PIXI, serialNumber);
        break;
    case 6:
        BeaconOneSection<Vex4Keystone>(GUID_DEVINTERFACE_QRTUMVNEXT_KEYSTONE, serialNumber, ws);
        break;
    case 11:
    case 12:
    case 13:
    case 14:
        BeaconConsole();
        break;
    case 17:
        BeaconWhole<Vex4Sprig>(GUID_DEVINTERFACE_QRTUMVNEXT_SPRIG, serialNumber);
        break;
    case 18:
        BeaconWhole<Vex4Petite>(GUID_DEVINTERFACE_QRTUMVNEXT_PETITE, serialNumber);
        break;
    default:
        break;
    }
}

} // namespace Hardware
