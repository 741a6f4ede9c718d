// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QEventLoop>
#include <QObject>
#include <atomic>
#include <vector>

#include "common/light_step.h"
#include "hwctl/event_printer.h"
#include "hwctl/event_queue.h"
#include "hwctl/log_tap.h"
#include "hwctl/virtual_devices.h"
#include "hwctl/virtual_displays.h"

namespace Hwctl
{

/// The console's lights at work: does steps one after the other and shows the levels.
///
/// Levels are told on the fading thread; each becomes an event that the thread of the event loop
/// prints.
class LightRun
{
public:
    enum class Show {
        Changes, ///< a line for every level
        Bars,    ///< bars of all lights after every wait
        Json     ///< an object for every level
    };

    /// Brings the lights to the settings and connects them. The devices are null on real ones.
    LightRun(Show show, VirtualDevices* devices, const VirtualDisplays* displays);
    /// Ends the fading thread; lights stay as they are.
    ~LightRun();
    LightRun(const LightRun&) = delete;
    LightRun& operator=(const LightRun&) = delete;

    /// Does the steps, then waits until nothing fades, or until an interrupt.
    void Run(const std::vector<Tools::LightStep>& steps);
    /// Prints every light, and what virtual devices show.
    void Print() const;

private:
    void ConnectLights();
    void Disconnect();
    void WatchLevels();
    void Do(const Tools::LightStep& step);
    void Wait(unsigned milliseconds);
    void Settle();
    void PrintBars(const std::string& title) const;
    void PrintDevices() const;
    double GetSeconds() const;

    const Show m_show;
    VirtualDevices* const m_devices;
    const VirtualDisplays* const m_displays;
    EventPrinter m_printer;
    QElapsedTimer m_clock;
    std::vector<QMetaObject::Connection> m_connections; // until the console's start makes its own
    std::atomic<qint64> m_lastStep{0}; // milliseconds of the clock, of a fade's last step
    std::atomic<unsigned> m_steps{0};  // of fades
    EventQueue m_queue;
    QEventLoop m_loop;
    bool m_isInterrupted = false;
    bool m_hasDone = false; // changes or bars were printed
    QObject m_context;      // last: no slot runs once it is gone
};

/// Throws CommandError when, by the log, something could not be set.
void CheckLights(LogTap& tap);

} // namespace Hwctl
