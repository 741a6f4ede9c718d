// SPDX-License-Identifier: MIT
#pragma once

#include "widget/um_widget.h"

namespace Hardware
{

/// The touch button bar on top of a console.
class PLATFORM_EXPORT Vex4TopBox : public UmWidget
{
public:
    struct ButtonEvent;

    static std::unique_ptr<Event> Vex4TopBoxReader(const WidgetMapData& mapData, void* context);
    /// Code of a button's key; its low 16 bits are the part id.
    static int GetKey(int button);

    explicit Vex4TopBox(const WidgetMapData& mapData);
    ~Vex4TopBox() override;
};

struct PLATFORM_EXPORT Vex4TopBox::ButtonEvent : Event {
    ButtonEvent(int itsButton, unsigned char isPressed);
    ~ButtonEvent() override;
    int button;
    unsigned char pressed; ///< 0 for released
};

} // namespace Hardware
