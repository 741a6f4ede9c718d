// SPDX-License-Identifier: MIT

// What the link lights ask of the platform, call by call. This program has such operations of its
// own, which stand before the platform's.

#include <dlfcn.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <future>
#include <thread>

#include "hardware/linklights.h"
#include "os/event.h"
#include "os/log.h"
#include "os/post.h"
#include "standalone/messages.h"
#include "standalone/platform_settings.h"
#include "support/log_capture.h"
#include "widget/class_ids.h"

using Hardware::LinkLights;
using Hardware::WidgetManager;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

typedef std::vector<std::string> Texts;

struct Answers {
    Texts calls;
    std::vector<std::wstring> refused;
    Os::NetworkAdapter adapter; ///< whatever its name
    std::function<void(const std::string& call)> onCall = [](const std::string&) {};
};

Answers& GetAnswers()
{
    static auto* const answers = new Answers; // calls come until the process ends
    return *answers;
}

void Note(const std::string& call)
{
    GetAnswers().calls.push_back(call);
    GetAnswers().onCall(call);
}

std::string Narrow(const std::wstring& name)
{
    return {name.begin(), name.end()};
}

std::string Describe(const std::wstring& name, unsigned mask, const void* callback)
{
    const bool isIt = callback == static_cast<const void*>(&LinkLights::Get());
    return "'" + Narrow(name) + "' " + std::to_string(mask) + (isIt ? "" : " of another");
}

std::string Describe(const GUID& classId, WidgetManager::ClassCallback callback,
                     const void* context)
{
    return std::string(&classId == &GUID_DEVINTERFACE_QRTUMLTCD ? "ltc" : "another class") +
           (callback == &LinkLights::LtcHandler ? " handler" : " another") +
           (context == static_cast<const void*>(&LinkLights::Get()) ? " it" : " another");
}

/// The adapters whose names are asked for, by protocol.
std::vector<Os::NetworkAdapter>& GetAdapters(unsigned protocol)
{
    static auto* const adapters = new std::array<std::vector<Os::NetworkAdapter>, 3>;
    return adapters->at(protocol);
}

void SetAdapters(unsigned protocol, const std::vector<std::wstring>& names)
{
    GetAdapters(protocol).clear();
    for (const std::wstring& name : names)
        GetAdapters(protocol).push_back({name, Os::NetworkAdapter::State_Up, {}, L""});
}

class LinkLightsCalls : public testing::Test
{
protected:
    LinkLightsCalls()
    {
        Standalone::PlatformSettings settings;
        settings.productType = 8;
        Standalone::ConfigurePlatform(settings);
        SetAdapters(0, {L"vex0"});
        SetAdapters(1, {L"fix0"});
        LinkLights::Get();
        GetAnswers().calls.clear();
    }
};

Texts Take()
{
    return std::exchange(GetAnswers().calls, {});
}

} // namespace

namespace Os
{

bool NetworkAdapterMonitor::Register(const kel::wstring& name, unsigned mask, Callback* callback)
{
    Note("register " + Describe(name, mask, callback));
    const auto& refused = GetAnswers().refused;
    return std::find(refused.begin(), refused.end(), name) == refused.end();
}

bool NetworkAdapterMonitor::Unregister(const kel::wstring& name, unsigned mask, Callback* callback)
{
    Note("unregister " + Describe(name, mask, callback));
    return true;
}

std::vector<NetworkAdapter> Platform::GetAdapterList(Protocol protocol)
{
    Note("list " + std::to_string(protocol));
    return GetAdapters(protocol);
}

NetworkAdapter NetworkAdapter::ReadSettings(const kel::wstring& name)
{
    Note("read '" + Narrow(name) + "'");
    return GetAnswers().adapter;
}

} // namespace Os

namespace Hardware
{

std::set<WidgetMapData> WidgetManager::GetClassMapData(const GUID& classId)
{
    Note(&classId == &GUID_DEVINTERFACE_QRTUMLTCD ? "boards" : "others");
    return {};
}

bool WidgetManager::RegisterClassCallback(const GUID& classId, ClassCallback callback,
                                          void* context)
{
    Note("watch " + Describe(classId, callback, context));
    return true;
}

bool WidgetManager::RemoveClassCallback(const GUID& classId, ClassCallback callback, void* context)
{
    Note("unwatch " + Describe(classId, callback, context));
    return true;
}

} // namespace Hardware

TEST_F(LinkLightsCalls, StartWatchesBoardsThenTheNetworksThenUpdates)
{
    EXPECT_TRUE(LinkLights::Get().Start());
    EXPECT_THAT(Take(), ElementsAre("watch ltc handler it", "list 0", "register 'vex0' 5", "list 1",
                                    "register 'fix0' 5", "read 'vex0'", "read 'fix0'", "boards"));
}

TEST_F(LinkLightsCalls, AnAdapterWithoutANameIsNoneWhateverItsLink)
{
    const TestSupport::LogCapture log("Hardware/LinkLights", Os::Log::AllLevels);
    GetAnswers().adapter = {L"", Os::NetworkAdapter::State_Up, {1000000000, 0, 0}, L""};
    LinkLights::Get().Update();
    EXPECT_EQ(log.Count("Updated linklight state VexNet active = false, VexNet gigabit = false, "
                        "FixtureNet active = false, FixtureNet gigabit = false to 0 LTC device(s)"),
              1U);
}

TEST_F(LinkLightsCalls, StartOnAnotherModelAsksNothing)
{
    Standalone::ConfigurePlatform(Standalone::MakeConsoleSettings(7));
    EXPECT_FALSE(LinkLights::Get().Start());
    EXPECT_THAT(Take(), IsEmpty());
}

TEST_F(LinkLightsCalls, StartASecondTimeAsksNothingStoppedOrNot)
{
    LinkLights::Get().Start();
    Take();
    EXPECT_TRUE(LinkLights::Get().Start());
    EXPECT_THAT(Take(), IsEmpty());
    LinkLights::Get().Stop();
    Take();
    EXPECT_TRUE(LinkLights::Get().Start());
    EXPECT_THAT(Take(), IsEmpty());
}

TEST_F(LinkLightsCalls, StopEndsTheNetworksInOrderThenTheBoards)
{
    LinkLights::Get().Start();
    Take();
    LinkLights::Get().Stop();
    EXPECT_THAT(Take(), ElementsAre("unregister 'vex0' 65535", "unregister 'fix0' 65535",
                                    "unwatch ltc handler it"));
}

TEST_F(LinkLightsCalls, StopAsksForNothingFirst)
{
    LinkLights::Get().Stop(); // never started, so with empty names
    EXPECT_THAT(Take(), ElementsAre("unregister '' 65535", "unregister '' 65535",
                                    "unwatch ltc handler it"));
    EXPECT_TRUE(LinkLights::Get().Start());
    EXPECT_EQ(Take().size(), 8U);
}

TEST_F(LinkLightsCalls, AdaptersAreTriedInOrderUntilOneSucceeds)
{
    SetAdapters(0, {L"a", L"", L"b", L"c"});
    SetAdapters(1, {L"", L"d"});
    GetAnswers().refused = {L"a", L"d"};
    LinkLights::Get().Start();
    EXPECT_THAT(Take(),
                ElementsAre("watch ltc handler it", "list 0", "register 'a' 5", "register 'b' 5",
                            "list 1", "register 'd' 5", "read 'b'", "read ''", "boards"));
    LinkLights::Get().Stop();
    EXPECT_THAT(Take(), ElementsAre("unregister 'b' 65535", "unregister '' 65535",
                                    "unwatch ltc handler it"));
}

TEST_F(LinkLightsCalls, UpdateReadsBothAdaptersEachTime)
{
    LinkLights::Get().Start();
    Take();
    LinkLights::Get().Update();
    EXPECT_THAT(Take(), ElementsAre("read 'vex0'", "read 'fix0'", "boards"));
    LinkLights::Get().Changed({}, Os::NetworkAdapter::State_Unknown, 0);
    EXPECT_THAT(Take(), ElementsAre("read 'vex0'", "read 'fix0'", "boards"));
}

TEST_F(LinkLightsCalls, EverythingIsDoneUnderOneLock)
{
    // Another thread's update waits for the end of whatever is running.
    const auto check = [](const std::string& during, const std::function<void()>& run) {
        std::future<void> update;
        GetAnswers().onCall = [&](const std::string& call) {
            if (call != during || update.valid())
                return;
            const std::size_t before = GetAnswers().calls.size();
            update = std::async(std::launch::async, [] { LinkLights::Get().Update(); });
            update.wait_for(std::chrono::milliseconds(50));
            EXPECT_EQ(GetAnswers().calls.size(), before) << during;
        };
        run();
        EXPECT_TRUE(update.valid());
        update.get();
        GetAnswers().onCall = [](const std::string&) {};
    };
    check("list 1", [] { LinkLights::Get().Start(); });
    check("boards", [] { LinkLights::Get().Update(); });
    check("unwatch ltc handler it", [] { LinkLights::Get().Stop(); });
}

namespace
{

/// Runs once the instance is gone, since it is older.
void LeaveWithTheLastCall()
{
    const Texts calls = Take();
    std::_Exit(std::find(calls.begin(), calls.end(), "read 'fix0'") != calls.end() ? 3 : 4);
}

/// Ends the process while another thread handles a message.
[[noreturn]] void ExitDuringAMessage()
{
    Standalone::PlatformSettings settings;
    settings.productType = 8;
    Standalone::ConfigurePlatform(settings);
    SetAdapters(0, {L"vex0"});
    SetAdapters(1, {L"fix0"});
    GetAnswers();
    std::atexit(&LeaveWithTheLastCall);
    LinkLights::Get().Start();
    Take();
    auto* const isHandling = new Os::Event;
    GetAnswers().onCall = [isHandling](const std::string& call) {
        if (call != "read 'vex0'")
            return;
        isHandling->Set();
        // Time for the end of the process to destroy the other name.
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
    };
    Os::Post(Gut::TargettedMessage(LinkLights::Get(), Gut::TargettedMessageType_Default, 0), 32);
    std::thread([] { Standalone::DeliverMessages(); }).detach();
    isHandling->Wait();
    std::exit(5);
}

} // namespace

TEST(LinkLightsCallsEnd, TheInstanceIsDestroyedOnceItsMessageIsHandled)
{
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    EXPECT_EXIT(ExitDuringAMessage(), testing::ExitedWithCode(3), "");
}
