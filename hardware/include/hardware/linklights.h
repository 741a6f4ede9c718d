// SPDX-License-Identifier: MIT
#pragma once

#include "gut/message_handler.h"
#include "hardware/export.h"
#include "kel/wstring.h"
#include "os/critical_section.h"
#include "os/network_adapter_monitor.h"
#include "os/platform.h"
#include "widget/widget_manager.h"

namespace Hardware
{

/// Shows on the LEDs of every attached LTC board whether the links of the console's two networks,
/// the consoles' own and the lighting fixtures', are up and run at a gigabit. Only models 8 and 11
/// have such LEDs.
///
/// The names of a network's adapters come from Os::Platform::GetAdapterList(): Protocol_Console for
/// the consoles' own network, Protocol_Fixture for that of the fixtures. Start() asks once and
/// watches, for each network, the first adapter of the list that can be watched, whether or not it
/// exists yet; one that the platform names later is not taken.
///
/// Any thread may call. A change of a network is shown on the network adapter monitor's thread, an
/// LTC board that is attached or detached on the application's message thread.
// Get() alone makes and destroys it.
// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor)
class HARDWARE_EXPORT LinkLights : public Os::NetworkAdapterMonitor::Callback,
                                   public Gut::MessageHandler
{
public:
    /// The only instance, made on first use and destroyed when the process ends.
    static LinkLights& Get();

    /// Begins to watch the networks and the LTC boards, and shows the state of the moment.
    /// @return false on a model without such LEDs, where it does nothing; true as well when it was
    ///         started before, stopped or not, where nothing is watched anew
    bool Start();
    /// Ends watching. The LEDs stay as they are. Whatever was started, it is not started again.
    void Stop();
    /// Asks the state of both networks and shows it on every LTC board.
    void Update();

    /// An LTC board was attached or detached: has the application's message thread show the state.
    /// On the widget driver's thread.
    /// @param pLl the instance; null is fatal
    static void LtcHandler(const WidgetMapData& mapData, WidgetEvent event, void* pLl);

    void Changed(const Os::NetworkAdapter& adapter, const Os::NetworkAdapter::State& previous,
                 int events) override;
    /// @return true for the message that LtcHandler() sends, on which it updates
    bool FilterMessage(const Gut::Message& message) override;

private:
    LinkLights();
    ~LinkLights() override;

    kel::wstring StartMonitor(Os::Platform::Protocol protocol);

    int m_started = 0;
    Os::CriticalSection m_lock; // guards all fields, and holds updates apart
    kel::wstring m_vexNetName;
    kel::wstring m_fixtureNetName;
};

} // namespace Hardware
