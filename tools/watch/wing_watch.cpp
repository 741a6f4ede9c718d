// SPDX-License-Identifier: MIT
#include "watch/wing_watch.h"

#include <utility>

#include "common/wing_name.h"
#include "hardware/wing_mapper.h"

namespace Tools
{

namespace
{

using Hardware::UmWing;
using Hardware::WidgetKey;
using Hardware::WingMapper;

constexpr unsigned short NoMaster = 65535;

template <class Signal, class Slot> void Connect(QObject& context, Signal signal, Slot slot)
{
    QObject::connect(&WingMapper::Get(), signal, &context, slot, Qt::DirectConnection);
}

std::string DescribeButton(unsigned short pid, unsigned short mid)
{
    std::string text = "button " + std::to_string(pid);
    if (mid != NoMaster)
        text += " of master " + std::to_string(mid);
    return text;
}

std::string GetLedText(UmWing::LedState state)
{
    return FindLedStateName(static_cast<int>(state)).value_or("in an unknown state");
}

} // namespace

WingWatch::WingWatch(EventTaker take, bool echo) : m_take(std::move(take)), m_echo(echo)
{
    ConnectInputs();
    ConnectRest();
}

WingWatch::~WingWatch()
{
    Stop();
}

void WingWatch::Start()
{
    m_isStarted = true;
    WingMapper::Begin();
}

void WingWatch::Stop()
{
    if (std::exchange(m_isStarted, false))
        WingMapper::End();
}

void WingWatch::Report(WidgetKey key, const char* signal, const std::string& text,
                       nlohmann::json facts) const
{
    facts["key"] = key;
    m_take({0, "wing " + GetWingName(key), signal, text, std::move(facts)});
}

void WingWatch::ConnectInputs()
{
    Connect(m_context, &WingMapper::button_press,
            [this](WidgetKey k, unsigned short p, unsigned short m, bool isPress) {
                Report(k, "button_press",
                       DescribeButton(p, m) + (isPress ? " pressed" : " released"),
                       {{"pid", p}, {"mid", m}, {"pressed", isPress}});
                if (m_echo)
                    Echo(k, p, m, isPress);
            });
    Connect(m_context, &WingMapper::fader_move, [this](WidgetKey k, unsigned short i, int v) {
        Report(k, "fader_move", "fader " + std::to_string(i) + " at " + std::to_string(v),
               {{"index", i}, {"value", v}});
    });
    Connect(m_context, &WingMapper::fader_motor_move, [this](WidgetKey k, unsigned short i, int v) {
        Report(k, "fader_motor_move",
               "motor fader " + std::to_string(i) + " at " + std::to_string(v),
               {{"index", i}, {"value", v}});
    });
    Connect(m_context, &WingMapper::encoder_move, [this](WidgetKey k, unsigned short i, int v) {
        Report(k, "encoder_move", "encoder " + std::to_string(i) + " by " + std::to_string(v),
               {{"pid", i}, {"delta", v}});
    });
    Connect(m_context, &WingMapper::trackball_move, [this](WidgetKey k, int dx, int dy, int dz) {
        Report(k, "trackball_move",
               "trackball by " + std::to_string(dx) + ", " + std::to_string(dy) + ", ring by " +
                   std::to_string(dz),
               {{"dx", dx}, {"dy", dy}, {"dz", dz}});
    });
}

void WingWatch::ConnectRest()
{
    Connect(m_context, &WingMapper::led_change,
            [this](WidgetKey k, unsigned short i, UmWing::LedState v) {
                Report(k, "led_change", "LED " + std::to_string(i) + " " + GetLedText(v),
                       {{"index", i}, {"state", static_cast<int>(v)}});
            });
    Connect(m_context, &WingMapper::wing_change, [this](WidgetKey k, bool isPresent) {
        Report(k, "wing_change", isPresent ? "attached" : "removed", {{"present", isPresent}});
    });
    Connect(m_context, &WingMapper::xwing_config,
            [this](WidgetKey k, const QRT_XWING_CONFIGURATION& configuration) {
                Report(k, "xwing_config",
                       "displays set up, version " + std::to_string(configuration.version),
                       {{"version", configuration.version}});
            });
    Connect(m_context, &WingMapper::keyboard_change, [this](WidgetKey k, int i, int v) {
        Report(k, "keyboard_change", v == 0 ? "keyboard drawer opened" : "keyboard drawer closed",
               {{"drawer", i}, {"state", v}});
    });
}

void WingWatch::Echo(WidgetKey key, unsigned short pid, unsigned short mid, bool isPress) const
{
    WingMapper::Get().set_led(key, pid, mid, isPress ? UmWing::LedState_On : UmWing::LedState_Off);
}

} // namespace Tools
