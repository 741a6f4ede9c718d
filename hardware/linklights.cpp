// SPDX-License-Identifier: MIT
#include "hardware/linklights.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <set>

#include "hardware/log_contexts.h"
#include "os/post.h"
#include "source_site.h"
#include "widget/ltc_widget.h"

namespace Hardware
{

namespace
{

constexpr char SourceFile[] = "linklights.cpp";
constexpr char FatalSite[] = HARDWARE_FATAL_SITE("linklights.cpp");

/// Console models with link lights.
constexpr int FirstModel = 8;
constexpr int SecondModel = 11;

/// What the adapter monitor is to tell of: the link and its settings, the speed among them.
constexpr unsigned WatchedEvents = 5;
constexpr unsigned AllEvents = 65535;
/// The system object that delivers messages on the application's message thread.
constexpr unsigned MessageThread = 32;
constexpr std::uint32_t TargettedMessageCode = 15;

/// State of an adapter whose link is up.
constexpr int LinkIsUp = 3;
/// The highest speed below a gigabit, in bits per second.
constexpr std::uint64_t BelowGigabit = 999999999;

Os::Log::Context& LinkLightsLogContext()
{
    static Os::Log::Context context("LinkLights", &HardwareLogContext(), Os::Log::AllButTrace);
    return context;
}

struct NetworkState {
    bool isActive = false;
    bool isGigabit = false;
};

NetworkState ReadNetwork(const kel::wstring& name)
{
    const Os::NetworkAdapter adapter = Os::NetworkAdapter::ReadSettings(name);
    if (adapter.GetName().empty() || static_cast<int>(adapter.GetState()) != LinkIsUp)
        return {};
    return {true, adapter.GetStatistics().speed > BelowGigabit};
}

} // namespace

LinkLights::LinkLights()
{
    // Log and widget driver are used until the end, so they are to be made first.
    LinkLightsLogContext();
    WidgetManager::GetClassMapData(GUID_DEVINTERFACE_QRTUMLTCD);
}

LinkLights::~LinkLights()
{
    // Not left to the bases: what a call uses is gone by then. The lock is not held, since this
    // waits for a call that is running.
    EndMessages();
    Os::NetworkAdapterMonitor::Get().Unregister(this);
    WidgetManager::RemoveClassCallback(GUID_DEVINTERFACE_QRTUMLTCD, &LinkLights::LtcHandler, this);
}

LinkLights& LinkLights::Get()
{
    static LinkLights instance;
    return instance;
}

bool LinkLights::Start()
{
    const int productType = Os::Platform::GetKelProductType();
    if (productType != FirstModel && productType != SecondModel)
        return false;
    const Os::Key hold(m_lock);
    if (m_started == 0) {
        HARDWARE_LOG(LinkLightsLogContext(), Os::Log::Trace, "Starting linklights driver");
        WidgetManager::RegisterClassCallback(GUID_DEVINTERFACE_QRTUMLTCD, &LinkLights::LtcHandler,
                                             this);
        m_vexNetName = StartMonitor(Os::Platform::Protocol_Console);
        m_fixtureNetName = StartMonitor(Os::Platform::Protocol_Fixture);
        m_started = 1;
        Update();
    }
    return true;
}

/// The name of the adapter that is watched for a network; empty when there is none.
kel::wstring LinkLights::StartMonitor(Os::Platform::Protocol protocol)
{
    for (const Os::NetworkAdapter& adapter : Os::Platform::GetAdapterList(protocol)) {
        const kel::wstring& name = adapter.GetName();
        if (name.empty()) {
            HARDWARE_LOG(LinkLightsLogContext(), Os::Log::Error, "Null adapter name");
            continue;
        }
        if (Os::NetworkAdapterMonitor::Get().Register(name, WatchedEvents, this))
            return name;
        HARDWARE_LOG(LinkLightsLogContext(), Os::Log::Error,
                     "Failed to register adapter monitor for adapter " << name);
    }
    return {};
}

void LinkLights::Stop()
{
    const Os::Key hold(m_lock);
    HARDWARE_LOG(LinkLightsLogContext(), Os::Log::Trace, "Stopping linklight driver");
    Os::NetworkAdapterMonitor& monitor = Os::NetworkAdapterMonitor::Get();
    monitor.Unregister(m_vexNetName, AllEvents, this);
    monitor.Unregister(m_fixtureNetName, AllEvents, this);
    WidgetManager::RemoveClassCallback(GUID_DEVINTERFACE_QRTUMLTCD, &LinkLights::LtcHandler, this);
    // Still started, on purpose: it is not started a second time.
}

void LinkLights::Update()
{
    const Os::Key hold(m_lock);
    const NetworkState vexNet = ReadNetwork(m_vexNetName);
    const NetworkState fixtureNet = ReadNetwork(m_fixtureNetName);
    const std::set<WidgetMapData> boards =
        WidgetManager::GetClassMapData(GUID_DEVINTERFACE_QRTUMLTCD);
    for (const WidgetMapData& board : boards)
        LtcWidget(board).SetLinkLights(vexNet.isActive, vexNet.isGigabit, fixtureNet.isActive,
                                       fixtureNet.isGigabit);
    HARDWARE_LOG(LinkLightsLogContext(), Os::Log::Trace,
                 "Updated linklight state "
                     << "VexNet active = " << vexNet.isActive << ", VexNet gigabit = "
                     << vexNet.isGigabit << ", FixtureNet active = " << fixtureNet.isActive
                     << ", FixtureNet gigabit = " << fixtureNet.isGigabit << " to " << boards.size()
                     << " LTC device(s)");
}

void LinkLights::LtcHandler(const WidgetMapData&, WidgetEvent, void* pLl)
{
    OS_TRAP(!pLl, FatalSite);
    // Boards are worked on the message thread, not on the driver's.
    const Gut::MessageHandler& handler = *static_cast<LinkLights*>(pLl);
    Os::Post(Gut::TargettedMessage(handler, Gut::TargettedMessageType_Default, 0), MessageThread);
}

void LinkLights::Changed(const Os::NetworkAdapter&, const Os::NetworkAdapter::State&, int)
{
    Update();
}

bool LinkLights::FilterMessage(const Gut::Message& message)
{
    std::array<std::uint32_t, 2> words{};
    if (message.Size() < sizeof words)
        return false;
    std::memcpy(words.data(), message.Data(), sizeof words);
    if (words[0] != TargettedMessageCode || words[1] != 0)
        return false;
    Update();
    return true;
}

} // namespace Hardware
