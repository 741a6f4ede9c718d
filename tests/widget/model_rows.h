// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <typeinfo>
#include <vector>

#include "widget/expansion_wing.h"
#include "widget/trackball_widget.h"
#include "widget/vex4_top_box.h"
#include "widget/wings.h"

namespace TestSupport
{

/// What is to be true of one class of widgets.
struct ModelRow {
    const GUID* classId;
    const char* identifier;
    const char* name;
    std::optional<unsigned> kind;
    unsigned productId;
    bool isFrontPanel;
    int mastersPerSection;
    const std::type_info* type; ///< of its widget object; null for none
};

/// All classes, in the order of their identifiers.
inline const std::vector<ModelRow>& GetModelRows()
{
    using namespace Hardware;
    static const std::vector<ModelRow> rows{
        {&GUID_DEVINTERFACE_QRTUMPLAYBACKWING, "GUID_DEVINTERFACE_QRTUMPLAYBACKWING",
         "PlaybackWing", 1, 1, false, 10, &typeid(PlaybackWing)},
        {&GUID_DEVINTERFACE_QRTUMEXPANSIONWING, "GUID_DEVINTERFACE_QRTUMEXPANSIONWING",
         "ExpansionWing", 2, 2, false, 0, &typeid(ExpansionWing)},
        {&GUID_DEVINTERFACE_QRTUMPROGRAMMERWING, "GUID_DEVINTERFACE_QRTUMPROGRAMMERWING",
         "ProgrammerWing", 3, 3, false, 0, &typeid(ProgrammerWing)},
        {&GUID_DEVINTERFACE_QRTUMVNEXT_EXTERNAL_PLAYBACKWING,
         "GUID_DEVINTERFACE_QRTUMVNEXT_EXTERNAL_PLAYBACKWING", "Vex4ExternalPlayback", 4, 0x8B,
         false, 10, &typeid(Vex4ExternalPlayback)},
        {&GUID_DEVINTERFACE_QRTUMVNEXT_EXTERNAL_PIXI, "GUID_DEVINTERFACE_QRTUMVNEXT_EXTERNAL_PIXI",
         "Vex4Pixi", 5, 0x8C, false, 10, &typeid(Vex4Pixi)},
        {&GUID_DEVINTERFACE_QRTUMVNEXT_KEYSTONE, "GUID_DEVINTERFACE_QRTUMVNEXT_KEYSTONE",
         "Vex4Keystone", 6, 0x8D, false, 10, &typeid(Vex4Keystone)},
        {&GUID_DEVINTERFACE_QRTUMVNEXT_SPRIG, "GUID_DEVINTERFACE_QRTUMVNEXT_SPRIG", "Vex4Sprig", 17,
         0x90, false, 10, &typeid(Vex4Sprig)},
        {&GUID_DEVINTERFACE_QRTUMVNEXT_PETITE, "GUID_DEVINTERFACE_QRTUMVNEXT_PETITE", "Vex4Petite",
         18, 0x91, false, 5, &typeid(Vex4Petite)},
        {&GUID_DEVINTERFACE_QRTUMVNEXTPLAYBACKWING, "GUID_DEVINTERFACE_QRTUMVNEXTPLAYBACKWING",
         "Vex4DeskPlayback", 11, 0x88, true, 10, &typeid(Vex4DeskPlayback)},
        {&GUID_DEVINTERFACE_QRTUMVNEXTPROGRAMWING, "GUID_DEVINTERFACE_QRTUMVNEXTPROGRAMWING",
         "Vex4DeskProgrammer", 12, 0x89, true, 0, &typeid(Vex4DeskProgrammer)},
        {&GUID_DEVINTERFACE_QRTUMVNEXT_TARNEL, "GUID_DEVINTERFACE_QRTUMVNEXT_TARNEL", "Vex4Tarnel",
         13, 0x8E, true, 10, &typeid(Vex4Tarnel)},
        {&GUID_DEVINTERFACE_QRTUMVNEXT_BRAMBLE, "GUID_DEVINTERFACE_QRTUMVNEXT_BRAMBLE",
         "Vex4Bramble", 14, 0x8F, true, 10, &typeid(Vex4Bramble)},
        {&GUID_DEVINTERFACE_QRTUMVEX4TOUCHD, "GUID_DEVINTERFACE_QRTUMVEX4TOUCHD", "Vex4TopBox", 7,
         0, false, 0, &typeid(Vex4TopBox)},
        {&GUID_DEVINTERFACE_QRTUMTBALLD, "GUID_DEVINTERFACE_QRTUMTBALLD", "TrackballWidget", 8, 0,
         false, 0, &typeid(TrackballWidget)},
        {&GUID_DEVINTERFACE_QRTUMLTCD,
         "GUID_DEVINTERFACE_QRTUMLTCD",
         "LtcWidget",
         {},
         0,
         false,
         0,
         nullptr},
    };
    return rows;
}

} // namespace TestSupport
