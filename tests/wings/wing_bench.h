// SPDX-License-Identifier: MIT
#pragma once

#include <gmock/gmock.h>

#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "desk/virtual_widget.h"
#include "desk/widget_bus.h"
#include "hardware/wing_mapper.h"
#include "standalone/platform_settings.h"

namespace TestSupport
{

/// Takes down what the wing mapper signals, on whichever thread. Made before Begin().
class WingRecorder : public QObject
{
public:
    WingRecorder()
    {
        using Hardware::WingMapper;
        WingMapper& mapper = WingMapper::Get();
        const auto note = [this](const auto&... parts) { Note(parts...); };
        const auto on = [&](auto signal, auto slot) {
            connect(&mapper, signal, this, slot, Qt::DirectConnection);
        };
        on(&WingMapper::button_press, [note](auto k, auto p, auto m, bool isPress) {
            note("button_press", k, p, m, isPress);
        });
        on(&WingMapper::fader_move, [note](auto k, auto i, int v) { note("fader_move", k, i, v); });
        on(&WingMapper::fader_motor_move,
           [note](auto k, auto i, int v) { note("fader_motor_move", k, i, v); });
        on(&WingMapper::encoder_move,
           [note](auto k, auto i, int v) { note("encoder_move", k, i, v); });
        on(&WingMapper::trackball_move,
           [note](auto k, int dx, int dy, int dz) { note("trackball_move", k, dx, dy, dz); });
        on(&WingMapper::led_change,
           [note](auto k, auto i, auto v) { note("led_change", k, i, static_cast<int>(v)); });
        on(&WingMapper::wing_change,
           [note](auto k, bool isPresent) { note("wing_change", k, isPresent); });
        on(&WingMapper::xwing_config, [note](auto k, QRT_XWING_CONFIGURATION& configuration) {
            note("xwing_config", k, configuration.version, int{configuration.surface[0]},
                 int{configuration.surface[1]});
        });
        on(&WingMapper::keyboard_change,
           [note](auto k, int i, int v) { note("keyboard_change", k, i, v); });
    }

    /// One text for each signal: its name and its arguments, bool as 0 and 1.
    std::vector<std::string> GetSignals() const
    {
        const std::lock_guard hold(m_mutex);
        return m_signals;
    }
    /// The same, and forgets them.
    std::vector<std::string> Take()
    {
        const std::lock_guard hold(m_mutex);
        return std::exchange(m_signals, {});
    }
    std::vector<std::thread::id> GetThreads() const
    {
        const std::lock_guard hold(m_mutex);
        return m_threads;
    }

private:
    template <class... Parts> void Note(const char* name, const Parts&... parts)
    {
        std::string text = name;
        ((text += " " + std::to_string(parts)), ...);
        const std::lock_guard hold(m_mutex);
        m_signals.push_back(text);
        m_threads.push_back(std::this_thread::get_id());
    }

    mutable std::mutex m_mutex;
    std::vector<std::string> m_signals;
    std::vector<std::thread::id> m_threads;
};

/// Makes the machine a console of that model, or a computer that only runs its software.
inline void SetConsole(int productType, bool isConsole = true)
{
    Standalone::PlatformSettings settings;
    settings.productType = productType;
    settings.isConsole = isConsole;
    Standalone::ConfigurePlatform(settings);
}

/// A bus without widgets, and a recorder of a mapper that has not begun.
class WingBench : public testing::Test
{
protected:
    ~WingBench() override { Hardware::WingMapper::End(); }

    Desk::VirtualWidget& Add(const std::string& model, std::uint16_t serialNumber = 1,
                             const std::wstring& path = {})
    {
        return m_bus.Add({model, serialNumber, path});
    }

    Hardware::WingMapper& m_mapper = Hardware::WingMapper::Get();
    Desk::WidgetBus m_bus;
    WingRecorder m_recorder;
};

} // namespace TestSupport
