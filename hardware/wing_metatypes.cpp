// SPDX-License-Identifier: MIT

// The types that the wing mapper's and the wing beacon's signals and slots carry, under every
// spelling that one of them uses: a queued connection by name looks them up as text. The driver's
// event is not among them, because what it points to is gone when the signal has been raised.

#include "metatype_registration.h"
#include "widget/expansion_wing.h"
#include "widget/um_wing.h"
#include "widget/widget_key.h"
#include "widget/widget_map_data.h"

namespace Hardware
{

namespace
{

const MetatypeRegistration<WidgetKey> QualifiedKeyMetaType("Hardware::WidgetKey");
const MetatypeRegistration<WidgetKey> KeyMetaType("WidgetKey");
const MetatypeRegistration<UmWing::LedState>
    QualifiedLedStateMetaType("Hardware::UmWing::LedState");
const MetatypeRegistration<UmWing::LedState> LedStateMetaType("UmWing::LedState");
const MetatypeRegistration<UmWing::WingSections>
    QualifiedSectionsMetaType("Hardware::UmWing::WingSections");
const MetatypeRegistration<UmWing::WingSections> SectionsMetaType("UmWing::WingSections");
const MetatypeRegistration<QRT_XWING_CONFIGURATION>
    ConfigurationMetaType("QRT_XWING_CONFIGURATION");
// A queued slot gets a reference to its own copy.
const MetatypeRegistration<QRT_XWING_CONFIGURATION>
    ConfigurationReferenceMetaType("QRT_XWING_CONFIGURATION&");
const MetatypeRegistration<WidgetMapData> MapDataMetaType("Hardware::WidgetMapData");

} // namespace

} // namespace Hardware
