// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <mutex>
#include <string>
#include <vector>

#include "widget/ltc_widget.h"
#include "widget/trackball_widget.h"
#include "widget/um_vex_next_wing.h"
#include "widget/vex4_top_box.h"
#include "widget/widget_signaller.h"

namespace TestSupport
{

inline std::string GetPathText(const Hardware::WidgetMapData& mapData)
{
    return QString::fromStdWString(mapData.GetDevicePath()).toStdString();
}

/// An event in words; "nothing" for none.
inline std::string DescribeEvent(const Hardware::UmWidget::Event* event)
{
    using namespace Hardware;
    const auto join = [](const char* kind, auto... numbers) {
        return (kind + ... + (" " + std::to_string(numbers)));
    };
    if (!event)
        return "nothing";
    if (const auto* const e = dynamic_cast<const UmWing::ButtonEvent*>(event))
        return join("button", e->index, e->pressed);
    if (const auto* const e = dynamic_cast<const UmWing::FaderEvent*>(event))
        return join("fader", e->index, e->value);
    if (const auto* const e = dynamic_cast<const UmVexNextWing::MotorizedFaderEvent*>(event))
        return join("motor fader", e->index, e->value);
    if (const auto* const e = dynamic_cast<const UmWing::EncoderEvent*>(event))
        return join("encoder", e->index, e->delta);
    if (const auto* const e = dynamic_cast<const UmWing::TrackballEvent*>(event))
        return join("wing trackball", e->dx, e->dy);
    if (const auto* const e = dynamic_cast<const UmWing::LedEvent*>(event))
        return join("led", e->index, static_cast<unsigned>(e->state));
    if (const auto* const e = dynamic_cast<const UmVexNextWing::KeyboardDrawerEvent*>(event))
        return join("drawer", e->first, e->second);
    if (const auto* const e = dynamic_cast<const UmWing::ConfigurationEvent*>(event))
        return join("configuration", e->kind);
    if (const auto* const e = dynamic_cast<const TrackballWidget::TrackballEvent*>(event))
        return join("trackball", e->axis, e->value);
    if (const auto* const e = dynamic_cast<const Vex4TopBox::ButtonEvent*>(event))
        return join("bar", e->button, e->pressed);
    if (const auto* const e = dynamic_cast<const LtcWidget::TimecodeEvent*>(event))
        return join("timecode", e->hours, e->minutes, e->seconds, e->frames, e->dropFrame);
    return "unknown";
}

/// What a signaller signalled, as texts such as "added a" and "read a: button 3 1".
class SignalLog
{
public:
    explicit SignalLog(Hardware::WidgetSignaller& signaller)
    {
        using Hardware::WidgetSignaller;
        QObject::connect(&signaller, &WidgetSignaller::widgetAdded,
                         [this](const auto& mapData) { Add("added " + GetPathText(mapData)); });
        QObject::connect(&signaller, &WidgetSignaller::widgetRemoved,
                         [this](const auto& mapData) { Add("removed " + GetPathText(mapData)); });
        QObject::connect(&signaller, &WidgetSignaller::widgetRead, [this](const auto& event) {
            Add("read " + GetPathText(event.mapData) + ": " + DescribeEvent(event.event));
        });
    }
    SignalLog(const SignalLog&) = delete;
    SignalLog& operator=(const SignalLog&) = delete;

    void Add(const std::string& text)
    {
        const std::lock_guard hold(m_mutex);
        m_texts.push_back(text);
    }
    std::vector<std::string> Get() const
    {
        const std::lock_guard hold(m_mutex);
        return m_texts;
    }
    /// All so far, which are forgotten.
    std::vector<std::string> Take()
    {
        const std::lock_guard hold(m_mutex);
        return std::exchange(m_texts, {});
    }

private:
    mutable std::mutex m_mutex;
    std::vector<std::string> m_texts; // guarded by m_mutex
};

} // namespace TestSupport
