// SPDX-License-Identifier: MIT
#pragma once

#include "widget/um_widget.h"

namespace Hardware
{

/// The board that decodes longitudinal timecode and carries the network link lights.
class PLATFORM_EXPORT LtcWidget : public UmWidget
{
public:
    struct TimecodeEvent;

    static std::unique_ptr<Event> LtcReader(const WidgetMapData& mapData, void* context);

    explicit LtcWidget(const WidgetMapData& mapData);
    ~LtcWidget() override;

    /// Shows for the console's and the fixture network whether the link is up and whether it runs
    /// at a gigabit. False when nothing reached the board.
    bool SetLinkLights(bool consoleActive, bool consoleGigabit, bool fixtureActive,
                       bool fixtureGigabit);
};

/// One frame of timecode as the board decoded it; ranges are not checked.
struct PLATFORM_EXPORT LtcWidget::TimecodeEvent : Event {
    TimecodeEvent(unsigned char itsHours, unsigned char itsMinutes, unsigned char itsSeconds,
                  unsigned char itsFrames, unsigned char isDropFrame);
    ~TimecodeEvent() override;
    unsigned char hours;
    unsigned char minutes;
    unsigned char seconds;
    unsigned char frames;
    unsigned char dropFrame; ///< 0 for no drop frame
};

} // namespace Hardware
