// SPDX-License-Identifier: MIT

// What readers make of reports, and the events that they make.

#include "widget/device_record.h"
#include "widget/ltc_widget.h"
#include "widget/trackball_widget.h"
#include "widget/um_vex_next_wing.h"
#include "widget/vex4_top_box.h"

namespace Hardware
{

namespace Report = Standalone::Report;

namespace
{

typedef std::unique_ptr<UmWidget::Event> EventPointer;

/// One overload for each report of a wing; what a wing does not report becomes no event.
struct WingEventMaker {
    EventPointer operator()(const Report::Button& report) const
    {
        return std::make_unique<UmWing::ButtonEvent>(report.index, report.pressed);
    }
    EventPointer operator()(const Report::Fader& report) const
    {
        return std::make_unique<UmWing::FaderEvent>(report.index, report.value);
    }
    EventPointer operator()(const Report::MotorFader& report) const
    {
        return std::make_unique<UmVexNextWing::MotorizedFaderEvent>(report.index, report.value);
    }
    EventPointer operator()(const Report::Encoder& report) const
    {
        return std::make_unique<UmWing::EncoderEvent>(report.index, report.delta);
    }
    EventPointer operator()(const Report::WingTrackball& report) const
    {
        return std::make_unique<UmWing::TrackballEvent>(report.dx, report.dy);
    }
    EventPointer operator()(const Report::LedChange& report) const
    {
        return std::make_unique<UmWing::LedEvent>(report.index,
                                                  static_cast<UmWing::LedState>(report.state));
    }
    EventPointer operator()(const Report::KeyboardDrawer& report) const
    {
        return std::make_unique<UmVexNextWing::KeyboardDrawerEvent>(report.drawer, report.state);
    }
    EventPointer operator()(const Report::Configuration& report) const
    {
        return std::make_unique<UmWing::ConfigurationEvent>(report.kind);
    }
    EventPointer operator()(const Report::TrackballAxis&) const { return nullptr; }
    EventPointer operator()(const Report::BarButton&) const { return nullptr; }
    EventPointer operator()(const Report::Timecode&) const { return nullptr; }
};

} // namespace

EventPointer UmWing::WingReader(const WidgetMapData& mapData, void*)
{
    return std::visit(WingEventMaker{}, mapData.GetDevice()->GetReport());
}

EventPointer TrackballWidget::TrackballReader(const WidgetMapData& mapData, void*)
{
    const auto* const report =
        std::get_if<Report::TrackballAxis>(&mapData.GetDevice()->GetReport());
    return report ? std::make_unique<TrackballEvent>(report->axis, report->value) : nullptr;
}

EventPointer Vex4TopBox::Vex4TopBoxReader(const WidgetMapData& mapData, void*)
{
    const auto* const report = std::get_if<Report::BarButton>(&mapData.GetDevice()->GetReport());
    return report ? std::make_unique<ButtonEvent>(report->button, report->pressed) : nullptr;
}

EventPointer LtcWidget::LtcReader(const WidgetMapData& mapData, void*)
{
    const auto* const report = std::get_if<Report::Timecode>(&mapData.GetDevice()->GetReport());
    return report ? std::make_unique<TimecodeEvent>(report->hours, report->minutes, report->seconds,
                                                    report->frames, report->dropFrame)
                  : nullptr;
}

UmWing::ButtonEvent::ButtonEvent(unsigned short itsIndex, unsigned char isPressed)
    : index(itsIndex), pressed(isPressed)
{
}
UmWing::ButtonEvent::~ButtonEvent() = default;

UmWing::FaderEvent::FaderEvent(unsigned short itsIndex, int itsValue)
    : index(itsIndex), value(itsValue)
{
}
UmWing::FaderEvent::~FaderEvent() = default;

UmWing::EncoderEvent::EncoderEvent(unsigned short itsIndex, int itsDelta)
    : index(itsIndex), delta(itsDelta)
{
}
UmWing::EncoderEvent::~EncoderEvent() = default;

UmWing::TrackballEvent::TrackballEvent(int itsDx, int itsDy) : dx(itsDx), dy(itsDy) {}
UmWing::TrackballEvent::~TrackballEvent() = default;

UmWing::LedEvent::LedEvent(unsigned short itsIndex, LedState itsState)
    : index(itsIndex), state(itsState)
{
}
UmWing::LedEvent::~LedEvent() = default;

UmWing::ConfigurationEvent::ConfigurationEvent(int itsKind) : kind(itsKind) {}
UmWing::ConfigurationEvent::~ConfigurationEvent() = default;

UmVexNextWing::MotorizedFaderEvent::MotorizedFaderEvent(unsigned short itsIndex, int itsValue)
    : index(itsIndex), value(itsValue)
{
}
UmVexNextWing::MotorizedFaderEvent::~MotorizedFaderEvent() = default;

UmVexNextWing::KeyboardDrawerEvent::KeyboardDrawerEvent(int itsFirst, int itsSecond)
    : first(itsFirst), second(itsSecond)
{
}
UmVexNextWing::KeyboardDrawerEvent::~KeyboardDrawerEvent() = default;

TrackballWidget::TrackballEvent::TrackballEvent(int itsAxis, int itsValue)
    : axis(itsAxis), value(itsValue)
{
}
TrackballWidget::TrackballEvent::~TrackballEvent() = default;

Vex4TopBox::ButtonEvent::ButtonEvent(int itsButton, unsigned char isPressed)
    : button(itsButton), pressed(isPressed)
{
}
Vex4TopBox::ButtonEvent::~ButtonEvent() = default;

LtcWidget::TimecodeEvent::TimecodeEvent(unsigned char itsHours, unsigned char itsMinutes,
                                        unsigned char itsSeconds, unsigned char itsFrames,
                                        unsigned char isDropFrame)
    : hours(itsHours), minutes(itsMinutes), seconds(itsSeconds), frames(itsFrames),
      dropFrame(isDropFrame)
{
}
LtcWidget::TimecodeEvent::~TimecodeEvent() = default;

} // namespace Hardware
