// SPDX-License-Identifier: MIT
#pragma once

#include <utility>

#include "widget/um_widget.h"

namespace Hardware
{

struct WingModel;

/// A control surface with buttons, LEDs, faders and encoders.
///
/// The device numbers its controls from 0 (the index). A map definition says what a control is to
/// the application: first its part id (pid), second its master id (mid).
///
/// The order of the virtual operations is part of the interface.
class PLATFORM_EXPORT UmWing : public UmWidget
{
public:
    /// Part id and master id of a control.
    typedef std::pair<unsigned short, unsigned short> MapDef;

    enum LedState : unsigned { LedState_Off, LedState_On, LedState_Flash, LedState_Dim };
    /// Sections of a wing that can identify themselves one by one.
    enum WingSections : unsigned {
        WingSections_All,
        WingSections_Left,
        WingSections_Right,
        WingSections_Centre
    };
    enum WingMetric : unsigned {
        WingMetric_Sections = 0,         ///< sections with masters
        WingMetric_MastersPerSection = 1 ///< masters of each
    };
    /// Lamps and indicators whose brightness a wing sets.
    enum DimmerIndex : unsigned {
        DimmerIndex_Leds = 1,
        DimmerIndex_ProgrammerLeds = 2, ///< LEDs of the older programmer wing
        DimmerIndex_BlueDeskLight = 3,
        DimmerIndex_WorkLight = 4, ///< the drawer's light on the desk programmer
        DimmerIndex_WhiteDeskLight = 5,
        DimmerIndex_DeskProgrammer6 = 6,
        DimmerIndex_DeskProgrammer7 = 7,
        DimmerIndex_DeskProgrammer8 = 8,
        DimmerIndex_VentLight = 9
    };

    struct ButtonEvent;
    struct FaderEvent;
    struct EncoderEvent;
    struct TrackballEvent;
    struct LedEvent;
    struct ConfigurationEvent;

    /// Reads reports of any wing.
    static std::unique_ptr<Event> WingReader(const WidgetMapData& mapData, void* context);

    ~UmWing() override;

    virtual unsigned short GetVendorId() const;
    virtual unsigned short GetProductId() const;
    virtual WidgetReader GetCallbackFunc() const;
    /// Has one section identify itself. Here nothing: most wings are one section.
    virtual void BeaconSection(WingSections section);
    /// True for a section of a console's own front panel.
    virtual bool IsFrontPanel() const;
    /// Sets the brightness of a channel, 0 to 255. False when nothing reached the wing; a wing
    /// ignores channels that it lacks.
    virtual bool SetDimmer(DimmerIndex channel, unsigned char level);
    // Map definitions. Beyond the model's last index a button and a LED are {100 + index, 65535},
    // an encoder is {200 + index, 0}, everything else {0, 0}.
    virtual MapDef GetButtonMapDef(unsigned short index) const;
    virtual MapDef GetLedMapDef(unsigned short index) const;
    virtual MapDef GetEncoderMapDef(unsigned short index) const;
    virtual int GetWingMetric(WingMetric metric) const;
    /// Sets the LED of a part and a master. False when there is none, or nothing reached the wing.
    /// When several threads set one LED at once, the last one to begin gets its way; the wing may
    /// be sent its state twice.
    virtual bool SetLed(unsigned short pid, unsigned short mid, LedState state);
    virtual bool SetAllLed(LedState state);
    // Last known states; -1 while unknown.
    virtual int GetButtonState(unsigned short index) const;
    virtual int GetLedState(unsigned short index) const;
    virtual int GetFaderState(unsigned short index) const;
    // Index of a part and a master; -1 when there is none.
    virtual int GetButtonIndex(unsigned short pid, unsigned short mid) const;
    virtual int GetLedIndex(unsigned short pid, unsigned short mid) const;
    virtual MapDef GetLcdMapDef(unsigned short index) const;
    virtual MapDef GetFaderMapDef(unsigned short index) const;

    /// Has the wing report the positions of all its controls again. False when nothing reached it.
    bool RefreshState();
    /// Puts the wing to sleep, dark, or wakes it. False when nothing reached it.
    bool SetSleep(bool sleep);
    /// Last known state of the button of a part and a master; -1 while unknown.
    int GetStateOf(unsigned short pid, unsigned short mid) const;

protected:
    UmWing(const WidgetMapData& mapData, const GUID& classId);

    const WingModel& GetModel() const { return m_model; }

private:
    const WingModel& m_model;
};

// What wings report. No event derives from another, so that each has one meaning.

struct PLATFORM_EXPORT UmWing::ButtonEvent : Event {
    ButtonEvent(unsigned short itsIndex, unsigned char isPressed);
    ~ButtonEvent() override;
    unsigned short index;
    unsigned char pressed; ///< 0 for released
};

struct PLATFORM_EXPORT UmWing::FaderEvent : Event {
    FaderEvent(unsigned short itsIndex, int itsValue);
    ~FaderEvent() override;
    unsigned short index;
    int value;
};

struct PLATFORM_EXPORT UmWing::EncoderEvent : Event {
    EncoderEvent(unsigned short itsIndex, int itsDelta);
    ~EncoderEvent() override;
    unsigned short index;
    int delta; ///< steps since the last report, negative for anticlockwise
};

/// A trackball that is built into a wing.
struct PLATFORM_EXPORT UmWing::TrackballEvent : Event {
    TrackballEvent(int itsDx, int itsDy);
    ~TrackballEvent() override;
    int dx;
    int dy;
};

struct PLATFORM_EXPORT UmWing::LedEvent : Event {
    LedEvent(unsigned short itsIndex, LedState itsState);
    ~LedEvent() override;
    unsigned short index;
    LedState state;
};

struct PLATFORM_EXPORT UmWing::ConfigurationEvent : Event {
    explicit ConfigurationEvent(int itsKind);
    ~ConfigurationEvent() override;
    int kind; ///< 8: the displays of an expansion wing
};

} // namespace Hardware
