// SPDX-License-Identifier: MIT
#pragma once

#include "widget/um_wing.h"

namespace Hardware
{

/// A wing of the next generation: it may have motor faders and small displays. What a model lacks
/// does nothing here.
///
/// The order of the virtual operations is part of the interface.
class PLATFORM_EXPORT UmVexNextWing : public UmWing
{
public:
    struct MotorizedFaderEvent;
    struct KeyboardDrawerEvent;

    ~UmVexNextWing() override;

    /// Number of displays; -1 when the model has none.
    virtual int GetLcdMetric() const;
    /// Sets the colour of a display's light, 0xRRGGBB.
    virtual void SetLcdColor(unsigned short lcd, unsigned int rgb);
    /// Sets the brightness of a display, 0 to 255.
    virtual void SetLcdBrightness(unsigned short lcd, unsigned char brightness);
    /// Shows a text.
    virtual void SetLcdDisplay(unsigned short lcd, const wchar_t* text);
    virtual void ClearLcdDisplay(unsigned short lcd);
    /// Lets a display flash or stops that.
    virtual void SetLcdFlash(unsigned short lcd, bool flash);
    /// Moves the motor fader of a master, 0 to 255.
    virtual void SetFader(unsigned short mid, unsigned char position);
    /// A number that the application leaves with the wing.
    virtual void SetHash(unsigned int hash);
    /// 0 when none was left.
    virtual unsigned int GetHash() const;

    /// Sets the brightness of all displays at once, 0 to 255. False when nothing reached the wing.
    bool SetAllLcdBrightness(unsigned char brightness);

protected:
    UmVexNextWing(const WidgetMapData& mapData, const GUID& classId);
};

/// A motor fader was moved by hand or by its motor.
struct PLATFORM_EXPORT UmVexNextWing::MotorizedFaderEvent : Event {
    MotorizedFaderEvent(unsigned short itsIndex, int itsValue);
    ~MotorizedFaderEvent() override;
    unsigned short index;
    int value;
};

/// The keyboard drawer was opened or closed.
struct PLATFORM_EXPORT UmVexNextWing::KeyboardDrawerEvent : Event {
    KeyboardDrawerEvent(int itsFirst, int itsSecond);
    ~KeyboardDrawerEvent() override;
    int first;  ///< the drawer, 0
    int second; ///< 0 for open
};

} // namespace Hardware
