// SPDX-License-Identifier: MIT

// Who is told of what, on virtual adapters.

#include <gmock/gmock.h>

#include <atomic>
#include <future>

#include "desk/virtual_network.h"
#include "os/event.h"
#include "platform/network_recorder.h"
#include "standalone/network_source.h"
#include "support/log_capture.h"
#include "support/process_facts.h"
#include "support/wait.h"

namespace
{

using Os::NetworkAdapter;
using Os::NetworkAdapterMonitor;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::NetworkRecorder;

constexpr unsigned All = NetworkAdapterMonitor::Event_All;

NetworkAdapterMonitor& Monitor()
{
    return NetworkAdapterMonitor::Get();
}

class NetworkMonitorTest : public testing::Test
{
protected:
    NetworkMonitorTest()
    {
        m_network.Add({L"eth0"});
        m_network.Add({L"eth1", false, 100000000});
    }

    Desk::VirtualNetwork m_network;
    NetworkRecorder m_recorder;
};

/// Does something in each call.
class Actor : public NetworkAdapterMonitor::Callback
{
public:
    explicit Actor(std::function<void()> act) : m_act(std::move(act)) {}
    ~Actor() override { Monitor().Unregister(this); }
    void Changed(const NetworkAdapter&, const NetworkAdapter::State&, int) override
    {
        m_act();
        m_count.fetch_add(1);
    }
    int GetCount() const { return m_count.load(); }

private:
    const std::function<void()> m_act;
    std::atomic<int> m_count{0};
};

/// Stops in its first call until it is let go.
class Sleeper : public NetworkAdapterMonitor::Callback
{
public:
    ~Sleeper() override
    {
        LetGo();
        Monitor().Unregister(this);
    }
    void Changed(const NetworkAdapter&, const NetworkAdapter::State&, int) override
    {
        m_isIn.Set();
        m_mayGo.Wait();
        m_hasLeft.store(true);
    }
    bool IsIn() { return m_isIn.Wait(20000); }
    bool HasLeft() const { return m_hasLeft.load(); }
    void LetGo() { m_mayGo.Set(); }

private:
    Os::Event m_isIn;
    Os::Event m_mayGo;
    std::atomic<bool> m_hasLeft{false};
};

} // namespace

TEST_F(NetworkMonitorTest, TellsOfEveryChange)
{
    ASSERT_TRUE(Monitor().Register(L"eth0", All, &m_recorder));
    m_network.SetDown(L"eth0");
    m_network.SetDown(L"eth0");
    m_network.SetUp(L"eth0");
    m_network.SetSpeed(L"eth0", 10000000000);
    EXPECT_EQ(m_recorder.GetLast().GetStatistics().speed, 10000000000U); // beyond 32 bits
    m_network.Remove(L"eth0");
    EXPECT_EQ(m_recorder.GetLast().GetStatistics().speed, 0U);
    m_network.Add({L"eth0", false, 0});
    EXPECT_THAT(m_recorder.Take(),
                ElementsAre("eth0 up->down 1", "eth0 down->up 1", "eth0 up->up 4",
                            "eth0 up->down 1", "eth0 down->absent 7", "eth0 absent->down 3"));
    EXPECT_NE(m_recorder.GetThread(), std::this_thread::get_id());
    EXPECT_EQ(m_recorder.GetLast().GetHardwareAddress(), L"02:00:00:00:00:03");
}

TEST_F(NetworkMonitorTest, TellsNothingAtRegistrationAndNothingOfOthers)
{
    ASSERT_TRUE(Monitor().Register(L"eth0", All, &m_recorder));
    m_network.Flush();
    m_network.SetUp(L"eth1");
    m_network.Add({L"eth2"});
    EXPECT_THAT(m_recorder.Take(), IsEmpty());
}

TEST_F(NetworkMonitorTest, TellsOnlyOfEventsThatWereAskedFor)
{
    NetworkRecorder links;
    NetworkRecorder settings;
    NetworkRecorder both;
    ASSERT_TRUE(Monitor().Register(L"eth0", 1, &links));
    ASSERT_TRUE(Monitor().Register(L"eth0", 4, &settings));
    ASSERT_TRUE(Monitor().Register(L"eth0", 5, &both));
    m_network.SetSpeed(L"eth0", 1);
    m_network.SetDown(L"eth0");
    EXPECT_THAT(links.Take(), ElementsAre("eth0 up->down 1"));
    EXPECT_THAT(settings.Take(), ElementsAre("eth0 up->up 4"));
    EXPECT_THAT(both.Take(), ElementsAre("eth0 up->up 4", "eth0 up->down 1"));
}

TEST_F(NetworkMonitorTest, FollowsNamesWhenAdaptersAreRenamed)
{
    ASSERT_TRUE(Monitor().Register(L"eth0", 5, &m_recorder));
    ASSERT_TRUE(Monitor().Register(L"lan0", 5, &m_recorder));
    m_network.SetDown(L"eth0");
    m_network.Rename(L"eth0", L"lan0");
    EXPECT_THAT(m_recorder.Take(),
                ElementsAre("eth0 up->down 1", "eth0 down->absent 7", "lan0 absent->down 7"));
    m_network.Rename(L"eth1", L"eth0");
    EXPECT_THAT(m_recorder.Take(), ElementsAre("eth0 absent->down 7"));
    m_network.SetUp(L"lan0");
    EXPECT_THAT(m_recorder.Take(), ElementsAre("lan0 down->up 1"));
}

TEST_F(NetworkMonitorTest, RegistersAnAdapterThatIsStillToCome)
{
    ASSERT_TRUE(Monitor().Register(L"usb0", 5, &m_recorder));
    m_network.Add({L"usb0"});
    EXPECT_THAT(m_recorder.Take(), ElementsAre("usb0 absent->up 7"));
}

TEST_F(NetworkMonitorTest, RefusesWhatCanBeNoName)
{
    for (const std::wstring& name : {std::wstring(), std::wstring(L"a/b"), std::wstring(L"a b"),
                                     std::wstring(L"a:b"), std::wstring(L"."), std::wstring(L".."),
                                     std::wstring(16, L'a'), std::wstring(8, L'\u00FC')})
        EXPECT_FALSE(Monitor().Register(name, 5, &m_recorder));
    EXPECT_TRUE(Monitor().Register(std::wstring(15, L'a'), 5, &m_recorder));
    EXPECT_TRUE(Monitor().Register(std::wstring(7, L'\u00FC'), 5, &m_recorder));
    EXPECT_FALSE(Monitor().Register(L"eth0", 0, &m_recorder));
    EXPECT_FALSE(Monitor().Register(L"eth0", 5, nullptr));
}

TEST_F(NetworkMonitorTest, RegisteredTwiceItCallsOnce)
{
    ASSERT_TRUE(Monitor().Register(L"eth0", 1, &m_recorder));
    ASSERT_TRUE(Monitor().Register(L"eth0", 4, &m_recorder));
    m_network.SetDown(L"eth0");
    m_network.SetSpeed(L"eth0", 7);
    EXPECT_THAT(m_recorder.Take(), ElementsAre("eth0 up->down 1", "eth0 down->down 4"));
    EXPECT_TRUE(Monitor().Unregister(L"eth0", All, &m_recorder));
    EXPECT_FALSE(Monitor().Unregister(L"eth0", All, &m_recorder));
    m_network.SetUp(L"eth0");
    EXPECT_THAT(m_recorder.Take(), IsEmpty());
}

TEST_F(NetworkMonitorTest, UnregistersOneNameOrSomeEvents)
{
    for (const wchar_t* const name : {L"eth0", L"eth1"})
        ASSERT_TRUE(Monitor().Register(name, 5, &m_recorder));
    EXPECT_TRUE(Monitor().Unregister(L"eth1", All, &m_recorder));
    EXPECT_TRUE(Monitor().Unregister(L"eth0", 1, &m_recorder));
    EXPECT_FALSE(Monitor().Unregister(L"eth0", 3, &m_recorder));
    m_network.SetUp(L"eth1");
    m_network.SetDown(L"eth0");
    m_network.SetSpeed(L"eth0", 7);
    EXPECT_THAT(m_recorder.Take(), ElementsAre("eth0 down->down 4"));
}

TEST_F(NetworkMonitorTest, UnregistersUnknownAndEmptyNamesWithoutEffect)
{
    ASSERT_TRUE(Monitor().Register(L"eth0", 5, &m_recorder));
    EXPECT_FALSE(Monitor().Unregister(L"", All, &m_recorder));
    EXPECT_FALSE(Monitor().Unregister(L"eth7", All, &m_recorder));
    EXPECT_FALSE(Monitor().Unregister(L"eth0", All, nullptr));
    Monitor().Unregister(nullptr);
    m_network.SetDown(L"eth0");
    EXPECT_THAT(m_recorder.Take(), ElementsAre("eth0 up->down 1"));
}

TEST_F(NetworkMonitorTest, ADestroyedCallbackIsNotCalled)
{
    {
        NetworkRecorder other;
        ASSERT_TRUE(Monitor().Register(L"eth0", 5, &other));
        ASSERT_TRUE(Monitor().Register(L"eth1", 5, &other));
        ASSERT_TRUE(Monitor().Register(L"eth0", 5, &m_recorder));
    }
    m_network.SetDown(L"eth0");
    m_network.SetUp(L"eth1");
    EXPECT_THAT(m_recorder.Take(), ElementsAre("eth0 up->down 1"));
}

/// Leaves it to its base to unregister.
class Careless : public NetworkAdapterMonitor::Callback
{
public:
    void Changed(const NetworkAdapter&, const NetworkAdapter::State&, int) override
    {
        ADD_FAILURE();
    }
};

TEST_F(NetworkMonitorTest, TheBaseOfADestroyedCallbackEndsItsRegistrations)
{
    auto careless = std::make_unique<Careless>();
    ASSERT_TRUE(Monitor().Register(L"eth0", 5, careless.get()));
    ASSERT_TRUE(Monitor().Register(L"eth0", 5, &m_recorder));
    careless.reset();
    m_network.SetDown(L"eth0");
    EXPECT_THAT(m_recorder.Take(), ElementsAre("eth0 up->down 1"));
}

TEST_F(NetworkMonitorTest, AfterAnOverrunEveryoneIsCalled)
{
    ASSERT_TRUE(Monitor().Register(L"eth0", 5, &m_recorder));
    ASSERT_TRUE(Monitor().Register(L"eth1", 5, &m_recorder));
    ASSERT_TRUE(Monitor().Register(L"usb0", 5, &m_recorder));
    const TestSupport::LogCapture log;
    m_network.Overrun([this] {
        m_network.SetUp(L"eth1");
        m_network.Add({L"usb0"});
        m_network.Flap(L"eth0", 1); // as if nothing had been
    });
    EXPECT_THAT(m_recorder.Take(),
                ElementsAre("eth0 up->up 7", "eth1 down->up 7", "usb0 absent->up 7"));
    EXPECT_EQ(log.Count("News of network adapters were lost, all are looked at"), 1U);
    m_network.Remove(L"usb0"); // known by now
    EXPECT_THAT(m_recorder.Take(), ElementsAre("usb0 up->down 1", "usb0 down->absent 7"));
}

TEST_F(NetworkMonitorTest, NoStateIsSkippedHoweverFastTheyFollow)
{
    Sleeper sleeper;
    ASSERT_TRUE(Monitor().Register(L"eth1", 5, &sleeper));
    ASSERT_TRUE(Monitor().Register(L"eth0", 5, &m_recorder));
    m_network.SetWaiting(false);
    m_network.SetUp(L"eth1");
    ASSERT_TRUE(sleeper.IsIn());
    m_network.Flap(L"eth0", 2); // up again before anybody looks
    sleeper.LetGo();
    m_network.Flush();
    EXPECT_THAT(m_recorder.Take(), ElementsAre("eth0 up->down 1", "eth0 down->up 1",
                                               "eth0 up->down 1", "eth0 down->up 1"));
}

TEST_F(NetworkMonitorTest, GoesOnWithAnotherSource)
{
    ASSERT_TRUE(Monitor().Register(L"eth0", 5, &m_recorder));
    {
        Desk::VirtualNetwork other;
        EXPECT_THAT(m_recorder.Take(), ElementsAre("eth0 up->absent 7"));
        m_network.SetSpeed(L"eth0", 3); // no longer under the monitor
        other.Add({L"eth0", false, 0});
        EXPECT_THAT(m_recorder.Take(), ElementsAre("eth0 absent->down 3"));
    }
    EXPECT_TRUE(TestSupport::WaitUntil([this] { return !m_recorder.GetCalls().empty(); }));
}

TEST_F(NetworkMonitorTest, CallsWithoutALockHeld)
{
    // Another thread gets through every operation while a call runs.
    NetworkRecorder other;
    std::future_status status = std::future_status::timeout;
    Actor actor([&] {
        auto done = std::async(std::launch::async, [&other] {
            Monitor().Register(L"eth1", 5, &other);
            Monitor().Unregister(L"eth1", All, &other);
            Monitor().Unregister(&other);
            NetworkAdapter::ReadSettings(L"eth0");
        });
        status = done.wait_for(std::chrono::seconds(20));
    });
    ASSERT_TRUE(Monitor().Register(L"eth0", 5, &actor));
    m_network.SetDown(L"eth0");
    EXPECT_EQ(status, std::future_status::ready);
}

TEST_F(NetworkMonitorTest, UnregisteringByNameDoesNotWaitForARunningCall)
{
    Sleeper sleeper;
    ASSERT_TRUE(Monitor().Register(L"eth0", 5, &sleeper));
    m_network.SetWaiting(false);
    m_network.SetDown(L"eth0");
    ASSERT_TRUE(sleeper.IsIn());
    EXPECT_TRUE(Monitor().Unregister(L"eth0", All, &sleeper));
    EXPECT_FALSE(sleeper.HasLeft());
}

TEST_F(NetworkMonitorTest, RegisteringDoesNotWaitForARunningCall)
{
    Sleeper sleeper;
    ASSERT_TRUE(Monitor().Register(L"eth0", 5, &sleeper));
    m_network.SetWaiting(false);
    m_network.SetDown(L"eth0");
    ASSERT_TRUE(sleeper.IsIn());
    EXPECT_TRUE(Monitor().Unregister(L"eth0", All, &sleeper)); // the last one: the thread is to end
    EXPECT_TRUE(Monitor().Register(L"eth0", 5, &m_recorder));
    m_network.SetUp(L"eth0");
    // One thread calls at a time. Time for a second one to call, which it must not.
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_THAT(m_recorder.GetCalls(), IsEmpty());
    EXPECT_FALSE(sleeper.HasLeft());
    sleeper.LetGo();
    m_network.Flush();
    EXPECT_THAT(m_recorder.Take(), ElementsAre("eth0 down->up 1"));
}

TEST_F(NetworkMonitorTest, UnregisteringACallbackWaitsForItsRunningCall)
{
    Sleeper sleeper;
    ASSERT_TRUE(Monitor().Register(L"eth0", 5, &sleeper));
    m_network.SetWaiting(false);
    m_network.SetDown(L"eth0");
    ASSERT_TRUE(sleeper.IsIn());
    std::atomic<bool> hasBegun{false};
    std::atomic<bool> hasReturned{false};
    std::thread thread([&] {
        hasBegun.store(true);
        Monitor().Unregister(&sleeper);
        EXPECT_TRUE(sleeper.HasLeft());
        hasReturned.store(true);
    });
    EXPECT_TRUE(TestSupport::WaitUntil([&] { return hasBegun.load(); }));
    // Time for one that does not wait to return; one that waits needs none.
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_FALSE(hasReturned.load());
    sleeper.LetGo();
    thread.join();
}

TEST_F(NetworkMonitorTest, UnregisteringACallbackDoesNotWaitForAnothersCall)
{
    Sleeper sleeper;
    ASSERT_TRUE(Monitor().Register(L"eth0", 5, &sleeper));
    ASSERT_TRUE(Monitor().Register(L"eth1", 5, &m_recorder));
    m_network.SetWaiting(false);
    m_network.SetDown(L"eth0");
    ASSERT_TRUE(sleeper.IsIn());
    Monitor().Unregister(L"eth0", All, &sleeper);
    Monitor().Unregister(&m_recorder);
    EXPECT_FALSE(sleeper.HasLeft());
}

TEST_F(NetworkMonitorTest, ACallMayEndItsOwnRegistration)
{
    Actor* self = nullptr;
    Actor actor([&self] { Monitor().Unregister(self); });
    self = &actor;
    ASSERT_TRUE(Monitor().Register(L"eth0", 5, &actor));
    m_network.SetDown(L"eth0");
    m_network.SetUp(L"eth0");
    EXPECT_TRUE(TestSupport::WaitUntil([&actor] { return actor.GetCount() == 1; }));
}

TEST_F(NetworkMonitorTest, ACallMayDestroyAnotherCallback)
{
    auto victim = std::make_unique<NetworkRecorder>();
    Actor actor([&victim] { victim.reset(); });
    ASSERT_TRUE(Monitor().Register(L"eth0", 5, &actor));
    ASSERT_TRUE(Monitor().Register(L"eth0", 5, victim.get()));
    m_network.SetDown(L"eth0");
    EXPECT_EQ(victim, nullptr);
    EXPECT_EQ(actor.GetCount(), 1);
}

TEST_F(NetworkMonitorTest, TheThreadRunsWhileAnybodyIsRegistered)
{
    const auto count = [] { return TestSupport::FindThreads("Network Monitor").size(); };
    EXPECT_EQ(count(), 0U);
    ASSERT_TRUE(Monitor().Register(L"eth0", 5, &m_recorder));
    EXPECT_TRUE(TestSupport::WaitUntil([&] { return count() == 1; }));
    ASSERT_TRUE(Monitor().Register(L"eth1", 5, &m_recorder));
    Monitor().Unregister(L"eth0", All, &m_recorder);
    m_network.SetUp(L"eth1");
    EXPECT_EQ(count(), 1U);
    Monitor().Unregister(L"eth1", All, &m_recorder);
    EXPECT_TRUE(TestSupport::WaitUntil([&] { return count() == 0; }));

    ASSERT_TRUE(Monitor().Register(L"eth0", 5, &m_recorder));
    m_recorder.Take();
    m_network.SetDown(L"eth0");
    EXPECT_THAT(m_recorder.Take(), ElementsAre("eth0 up->down 1"));
    Monitor().Unregister(&m_recorder);
    EXPECT_EQ(count(), 0U) << "it ends with the return";
}

TEST_F(NetworkMonitorTest, IdlesWithoutWakingUp)
{
    ASSERT_TRUE(Monitor().Register(L"eth0", 5, &m_recorder));
    m_network.Flush();
    const std::vector<int> threads = TestSupport::FindThreads("Network Monitor");
    ASSERT_EQ(threads.size(), 1U);
    // Of a thread that waits for a descriptor without a limit the kernel tells the time-out -1:
    // poll(descriptors, 2, -1).
    const std::string file = "/proc/self/task/" + std::to_string(threads[0]) + "/syscall";
    const auto read = [&file] {
        std::array<char, 200> text{};
        std::FILE* const in = std::fopen(file.c_str(), "r");
        if (!in)
            return std::string("cannot");
        const std::size_t length = std::fread(text.data(), 1, text.size(), in);
        std::fclose(in);
        return std::string(text.data(), length);
    };
    if (read() == "cannot" || read().empty())
        GTEST_SKIP() << "the kernel does not tell what a thread waits for";
    EXPECT_TRUE(TestSupport::WaitUntil([&] {
        const std::string text = read();
        return text.starts_with("7 ") && text.find(" 0x2 0xffffffff") != std::string::npos;
    })) << read();
}

TEST_F(NetworkMonitorTest, CallbacksComeAndGoWhileLinksFlap)
{
    m_network.SetWaiting(false);
    std::atomic<bool> isOver{false};
    std::thread flapper([&] {
        while (!isOver.load()) {
            m_network.Flap(L"eth0", 1);
            m_network.Flap(L"eth1", 1);
        }
    });
    std::vector<std::thread> users;
    for (int number = 0; number < 2; ++number)
        users.emplace_back([] {
            for (int round = 0; round < 300; ++round) {
                auto recorder = std::make_unique<NetworkRecorder>();
                ASSERT_TRUE(Monitor().Register(L"eth0", 5, recorder.get()));
                ASSERT_TRUE(Monitor().Register(L"eth1", 5, recorder.get()));
                const auto isCalled = [&recorder] { return !recorder->GetCalls().empty(); };
                EXPECT_TRUE(round % 3 != 0 || TestSupport::WaitUntil(isCalled));
                if (round % 2 == 0)
                    Monitor().Unregister(L"eth0", All, recorder.get());
            }
        });
    for (std::thread& user : users)
        user.join();
    isOver.store(true);
    flapper.join();
    EXPECT_TRUE(
        TestSupport::WaitUntil([] { return TestSupport::FindThreads("Network Monitor").empty(); }));
}
