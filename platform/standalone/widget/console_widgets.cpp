// SPDX-License-Identifier: MIT

// The console's widgets that are no wings.

#include "widget/device_record.h"
#include "widget/ltc_widget.h"
#include "widget/trackball_widget.h"
#include "widget/vex4_top_box.h"

namespace Hardware
{

TrackballWidget::TrackballWidget(const WidgetMapData& mapData) : UmWidget(mapData) {}
TrackballWidget::~TrackballWidget() = default;

Vex4TopBox::Vex4TopBox(const WidgetMapData& mapData) : UmWidget(mapData) {}
Vex4TopBox::~Vex4TopBox() = default;

int Vex4TopBox::GetKey(int button)
{
    // The stand-alone platform's own: bits above the low 16, so that a missing cut shows.
    constexpr unsigned FirstKey = 0x00A50300;
    return static_cast<int>(FirstKey + static_cast<unsigned>(button));
}

LtcWidget::LtcWidget(const WidgetMapData& mapData) : UmWidget(mapData) {}
LtcWidget::~LtcWidget() = default;

bool LtcWidget::SetLinkLights(bool consoleActive, bool consoleGigabit, bool fixtureActive,
                              bool fixtureGigabit)
{
    return GetDevice().Write(Standalone::Report::SetLinkLights{consoleActive, consoleGigabit,
                                                               fixtureActive, fixtureGigabit});
}

} // namespace Hardware
