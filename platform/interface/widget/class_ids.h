// SPDX-License-Identifier: MIT
#pragma once

#include "platform_export.h"

namespace Hardware
{

/// Identifies a class of USB widgets. Identifiers compare as objects: there is exactly one object
/// of each, so take its address and never copy it.
struct WidgetClassId {
    const char* name;  ///< the identifier's own name
    unsigned position; ///< place in the list below, from 0
};

} // namespace Hardware

typedef Hardware::WidgetClassId GUID;

// Wings of their own.
extern const PLATFORM_EXPORT GUID GUID_DEVINTERFACE_QRTUMPLAYBACKWING;
extern const PLATFORM_EXPORT GUID GUID_DEVINTERFACE_QRTUMEXPANSIONWING;
extern const PLATFORM_EXPORT GUID GUID_DEVINTERFACE_QRTUMPROGRAMMERWING;
extern const PLATFORM_EXPORT GUID GUID_DEVINTERFACE_QRTUMVNEXT_EXTERNAL_PLAYBACKWING;
extern const PLATFORM_EXPORT GUID GUID_DEVINTERFACE_QRTUMVNEXT_EXTERNAL_PIXI;
extern const PLATFORM_EXPORT GUID GUID_DEVINTERFACE_QRTUMVNEXT_KEYSTONE;
extern const PLATFORM_EXPORT GUID GUID_DEVINTERFACE_QRTUMVNEXT_SPRIG;
extern const PLATFORM_EXPORT GUID GUID_DEVINTERFACE_QRTUMVNEXT_PETITE;
// Sections of a console's front panel.
extern const PLATFORM_EXPORT GUID GUID_DEVINTERFACE_QRTUMVNEXTPLAYBACKWING;
extern const PLATFORM_EXPORT GUID GUID_DEVINTERFACE_QRTUMVNEXTPROGRAMWING;
extern const PLATFORM_EXPORT GUID GUID_DEVINTERFACE_QRTUMVNEXT_TARNEL;
extern const PLATFORM_EXPORT GUID GUID_DEVINTERFACE_QRTUMVNEXT_BRAMBLE;
// What is no wing.
extern const PLATFORM_EXPORT GUID GUID_DEVINTERFACE_QRTUMVEX4TOUCHD;
extern const PLATFORM_EXPORT GUID GUID_DEVINTERFACE_QRTUMTBALLD;
extern const PLATFORM_EXPORT GUID GUID_DEVINTERFACE_QRTUMLTCD;
