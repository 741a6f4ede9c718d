// SPDX-License-Identifier: MIT
#include "standalone/widget_transport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk/widget_bus.h"
#include "os/log.h"
#include "platform/contender.h"
#include "support/log_capture.h"
#include "widget/scripted_transport.h"
#include "widget/signal_log.h"
#include "widget/um_wing.h"
#include "widget/widget_facts.h"
#include "widget/widget_signaller.h"

using Hardware::WidgetManager;
using Standalone::FlushWidgetDriver;
using Standalone::SetWidgetTransport;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::ScriptedTransport;
using TestSupport::SignalLog;

namespace
{

const GUID& Playback = GUID_DEVINTERFACE_QRTUMPLAYBACKWING;

class WidgetTransport : public testing::Test
{
protected:
    WidgetTransport()
    {
        signaller.SetAutoReadRegister(true);
        signaller.RegisterWidgetClass(&Playback);
    }
    ~WidgetTransport() override { SetWidgetTransport(nullptr); }

    const std::shared_ptr<ScriptedTransport> transport = std::make_shared<ScriptedTransport>();
    Hardware::WidgetSignaller signaller{&Hardware::UmWing::WingReader};
    SignalLog log{signaller};
};

TEST_F(WidgetTransport, ItsDevicesAreAttachedWhenItIsSet)
{
    transport->attached = {{&Playback, L"a", 1}, {&Playback, L"b", {}}};
    SetWidgetTransport(transport);
    EXPECT_THAT(log.Get(), ElementsAre("added a", "added b"));
    EXPECT_EQ(WidgetManager::GetClassMapData(Playback).size(), 2u);
}

void CountCall(const Hardware::WidgetMapData&, Hardware::WidgetEvent, void* count)
{
    ++*static_cast<int*>(count);
}

TEST_F(WidgetTransport, ADeviceThatIsToldTwiceIsOne)
{
    int calls = 0;
    WidgetManager::RegisterClassCallback(Playback, &CountCall, &calls);
    transport->attached = {{&Playback, L"a", 1}};
    SetWidgetTransport(transport);
    transport->observer.load()->Attached({&Playback, L"a", 1});
    FlushWidgetDriver();
    WidgetManager::RemoveClassCallback(Playback, &CountCall, &calls);
    EXPECT_EQ(calls, 1);
    EXPECT_THAT(log.Get(), ElementsAre("added a"));
    EXPECT_EQ(WidgetManager::GetClassMapData(Playback).size(), 1u);
}

TEST_F(WidgetTransport, ADeviceThatComesWhileItIsListedIsOne)
{
    transport->attached = {{&Playback, L"a", 1}};
    transport->afterListing = [&] { transport->observer.load()->Attached({&Playback, L"a", 1}); };
    SetWidgetTransport(transport);
    FlushWidgetDriver();
    EXPECT_THAT(log.Get(), ElementsAre("added a"));
}

TEST_F(WidgetTransport, ADeviceThatGoesWhileItIsListedDoesNotStay)
{
    transport->attached = {{&Playback, L"a", 1}};
    transport->afterListing = [&] { transport->observer.load()->Detached(L"a"); };
    SetWidgetTransport(transport);
    FlushWidgetDriver();
    EXPECT_THAT(WidgetManager::GetClassMapData(Playback), IsEmpty());
}

TEST_F(WidgetTransport, ADetachmentOfNothingIsIgnored)
{
    SetWidgetTransport(transport);
    transport->observer.load()->Detached(L"a");
    FlushWidgetDriver();
    EXPECT_THAT(log.Get(), IsEmpty());
}

TEST_F(WidgetTransport, ADeviceWithoutClassIsIgnored)
{
    SetWidgetTransport(transport);
    transport->observer.load()->Attached({nullptr, L"a", 1});
    transport->observer.load()->Attached({&Playback, L"a", 1});
    FlushWidgetDriver();
    EXPECT_THAT(log.Get(), ElementsAre("added a"));
}

TEST_F(WidgetTransport, AReportFromAPathWithoutDeviceIsIgnored)
{
    const TestSupport::LogCapture capture;
    SetWidgetTransport(transport);
    transport->observer.load()->Received(L"a", {0x01, 0, 0, 1});
    transport->observer.load()->Received(L"a", {0xFF});
    FlushWidgetDriver();
    EXPECT_THAT(log.Get(), IsEmpty());
    EXPECT_THAT(capture.GetTexts(), IsEmpty());
}

TEST_F(WidgetTransport, AReplacedOneIsNoLongerWatchedAndItsDevicesAreDetached)
{
    transport->attached = {{&Playback, L"a", 1}, {&Playback, L"b", 1}};
    SetWidgetTransport(transport);
    EXPECT_NE(transport->observer, nullptr);
    const auto next = std::make_shared<ScriptedTransport>();
    next->attached = {{&Playback, L"b", 2}};
    SetWidgetTransport(next);
    EXPECT_EQ(transport->observer, nullptr);
    EXPECT_THAT(log.Get(), ElementsAre("added a", "added b", "removed a", "removed b", "added b"));
    SetWidgetTransport(nullptr);
    EXPECT_EQ(next->observer, nullptr);
    EXPECT_THAT(WidgetManager::GetClassMapData(Playback), IsEmpty());
}

TEST_F(WidgetTransport, TheDriverKeepsNothingOfAReplacedOne)
{
    transport->attached = {{&Playback, L"a", 1}};
    SetWidgetTransport(transport);
    const auto mapData = *WidgetManager::GetClassMapData(Playback).begin();
    SetWidgetTransport(nullptr);
    FlushWidgetDriver();
    EXPECT_EQ(transport.use_count(), 1);
    EXPECT_EQ(mapData.GetDevicePath(), L"a");
}

TEST_F(WidgetTransport, ReplacingWaitsForTheSlots)
{
    transport->attached = {{&Playback, L"a", 1}};
    Os::Event begun, gate;
    QObject::connect(&signaller, &Hardware::WidgetSignaller::widgetAdded, [&] {
        begun.Set();
        gate.Wait();
    });
    const TestSupport::Contender setter([&] { SetWidgetTransport(transport); });
    begun.Wait();
    EXPECT_TRUE(setter.ComesToWait());
    gate.Set();
}

TEST_F(WidgetTransport, OneOfManyThatAreSetAtOnceIsWatched)
{
    std::vector<std::shared_ptr<ScriptedTransport>> all;
    for (int i = 0; i < 200; ++i) {
        all.push_back(std::make_shared<ScriptedTransport>());
        all.back()->attached = {{&Playback, L"port " + std::to_wstring(i), 1}};
    }
    {
        const auto setFrom = [&](std::size_t first) {
            for (std::size_t i = first; i < all.size(); i += 2)
                SetWidgetTransport(all[i]);
        };
        const TestSupport::Contender even([&] { setFrom(0); }), odd([&] { setFrom(1); });
    }
    int watched = 0;
    for (const auto& one : all)
        watched += one->observer != nullptr ? 1 : 0;
    EXPECT_EQ(watched, 1);
    EXPECT_EQ(WidgetManager::GetClassMapData(Playback).size(), 1u);
}

TEST_F(WidgetTransport, ADeviceThatCannotBeOpenedTakesNothing)
{
    transport->attached = {{&Playback, L"a", 1}};
    SetWidgetTransport(transport);
    auto mapData = *WidgetManager::GetClassMapData(Playback).begin();
    EXPECT_FALSE(mapData.Open());
    EXPECT_FALSE(mapData.Close());
    EXPECT_FALSE(mapData.StopReader());
    EXPECT_FALSE(Hardware::UmWidget(mapData).Beacon());
}

TEST_F(WidgetTransport, AReportThatCannotBeReadIsLoggedAndNotDelivered)
{
    Desk::WidgetBus bus;
    auto& widget = bus.Add({"PlaybackWing", 1, L"a"});
    log.Take();
    const TestSupport::LogCapture capture;
    widget.SendBytes({0x01, 0x00});
    const auto lines = capture.GetLines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].context, "WidgetDriver");
    EXPECT_EQ(lines[0].level, Os::Log::Error);
    EXPECT_EQ(lines[0].text,
              "A report that cannot be read, from a: of code 1, 2 bytes; others like "
              "it are counted");
    EXPECT_THAT(log.Get(), IsEmpty());
}

TEST_F(WidgetTransport, ReportsThatCannotBeReadAreLoggedOncePerDeviceAndCodeThenCounted)
{
    Desk::WidgetBus bus;
    auto& widget = bus.Add({"PlaybackWing", 1, L"a"});
    auto& other = bus.Add({"PlaybackWing", 2, L"b"});
    const TestSupport::LogCapture capture;
    for (int i = 0; i < 250; ++i)
        widget.SendBytes({0x01, 0x00});
    for (int i = 0; i < 3; ++i)
        widget.SendBytes({});
    other.SendBytes({0x01, 0x00});
    widget.Unplug();
    other.Unplug();
    EXPECT_THAT(
        capture.GetTexts(),
        ElementsAre(
            "A report that cannot be read, from a: of code 1, 2 bytes; others like it are counted",
            "100 reports of code 1 could not be read, from a",
            "A report that cannot be read, from a: without a code, 0 bytes; others like it are "
            "counted",
            "A report that cannot be read, from b: of code 1, 2 bytes; others like it are counted",
            "3 reports without a code could not be read, from a",
            "250 reports of code 1 could not be read, from a"));
}

TEST_F(WidgetTransport, AReplacedDevicesUnreadableReportsAreLoggedAnew)
{
    Desk::WidgetBus bus;
    auto& widget = bus.Add({"PlaybackWing", 1, L"a"});
    const TestSupport::LogCapture capture;
    widget.SendBytes({0x01, 0x00});
    widget.Unplug();
    widget.Plug();
    widget.SendBytes({0x01, 0x00});
    EXPECT_EQ(capture.Count("A report that cannot be read, from a: of code 1, 2 bytes; others like "
                            "it are counted"),
              2U);
}

TEST_F(WidgetTransport, AttachmentsAreTraced)
{
    Desk::WidgetBus bus;
    const TestSupport::LogCapture capture("WidgetDriver", 31);
    bus.Add({"PlaybackWing", 1, L"a"}).Unplug();
    EXPECT_THAT(capture.GetTexts(),
                ElementsAre("Attached GUID_DEVINTERFACE_QRTUMPLAYBACKWING at a",
                            "Detached GUID_DEVINTERFACE_QRTUMPLAYBACKWING from a"));
}

} // namespace
