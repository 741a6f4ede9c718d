// SPDX-License-Identifier: MIT
#pragma once

#include "widget/um_widget.h"

namespace Hardware
{

/// The console's trackball with its ring.
class PLATFORM_EXPORT TrackballWidget : public UmWidget
{
public:
    struct TrackballEvent;

    static std::unique_ptr<Event> TrackballReader(const WidgetMapData& mapData, void* context);

    explicit TrackballWidget(const WidgetMapData& mapData);
    ~TrackballWidget() override;
};

struct PLATFORM_EXPORT TrackballWidget::TrackballEvent : Event {
    TrackballEvent(int itsAxis, int itsValue);
    ~TrackballEvent() override;
    int axis; ///< 0 and 1 for the ball, 2 for the ring
    int value;
};

} // namespace Hardware
