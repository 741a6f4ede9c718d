// SPDX-License-Identifier: MIT

// A link that changes while its adapter is being registered.

#include <gmock/gmock.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <functional>
#include <thread>

#include "platform/network_recorder.h"
#include "standalone/network_source.h"
#include "support/network_bench.h"
#include "support/wait.h"

namespace
{

using Os::NetworkAdapter;
using Os::NetworkAdapterMonitor;
using Standalone::AdapterEvent;
using testing::ElementsAre;
using TestSupport::NetworkRecorder;
using TestSupport::WaitUntil;

NetworkAdapterMonitor& Monitor()
{
    return NetworkAdapterMonitor::Get();
}

/// One adapter, "eth0", whose link may change while it is being read.
class ChangingSource : public Standalone::NetworkSource
{
public:
    std::optional<std::vector<Standalone::AdapterLink>> Enumerate() override
    {
        const std::lock_guard hold(m_mutex);
        return std::vector{m_facts.link};
    }
    Standalone::AdapterFacts Read(const std::wstring&) override
    {
        if (const auto act = std::exchange(beforeRead, {}))
            act();
        Standalone::AdapterFacts read;
        {
            const std::lock_guard hold(m_mutex);
            read = m_facts;
        }
        if (const auto act = std::exchange(afterRead, {}))
            act();
        return read;
    }
    std::unique_ptr<Standalone::AdapterNews> Subscribe() override
    {
        return std::make_unique<News>(*this);
    }

    void Set(NetworkAdapter::State state)
    {
        const std::lock_guard hold(m_mutex);
        m_facts.link.state = state;
        m_events.push_back({AdapterEvent::Kind::Changed, m_facts.link});
        m_isIdle = false;
        eventfd_write(m_descriptor, 1);
    }
    void SetSpeed(std::uint64_t speed)
    {
        const std::lock_guard hold(m_mutex);
        m_facts.statistics.speed = speed;
        m_events.push_back({AdapterEvent::Kind::Settings, m_facts.link});
        m_isIdle = false;
        eventfd_write(m_descriptor, 1);
    }
    /// Waits until the monitor's thread has acted on all events.
    bool WaitUntilIdle()
    {
        return WaitUntil([this] {
            const std::lock_guard hold(m_mutex);
            return m_isIdle;
        });
    }

    std::function<void()> beforeRead;
    std::function<void()> afterRead;

private:
    class News : public Standalone::AdapterNews
    {
    public:
        explicit News(ChangingSource& source) : m_source(source) {}
        int GetDescriptor() const override { return m_source.m_descriptor; }
        std::vector<AdapterEvent> Take() override
        {
            const std::lock_guard hold(m_source.m_mutex);
            eventfd_t count = 0;
            eventfd_read(m_source.m_descriptor, &count);
            m_source.m_isIdle = m_source.m_events.empty(); // those before are done
            return std::exchange(m_source.m_events, {});
        }

    private:
        ChangingSource& m_source;
    };

    const int m_descriptor = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    std::mutex m_mutex; // guards all below
    std::vector<AdapterEvent> m_events;
    bool m_isIdle = true;
    Standalone::AdapterFacts m_facts{{1, L"eth0", NetworkAdapter::State_Up, L"02:00:00:00:00:01"},
                                     {1000, 0, 0}};
};

class NetworkRegistration : public testing::Test
{
protected:
    NetworkRegistration()
    {
        Standalone::SetNetworkSource(m_source);
        // Has the monitor's thread run already.
        EXPECT_TRUE(Monitor().Register(L"other0", 5, &m_other));
    }
    ~NetworkRegistration() override
    {
        Monitor().Unregister(&m_recorder);
        Monitor().Unregister(&m_other);
        Standalone::SetNetworkSource(nullptr);
    }

    const std::shared_ptr<ChangingSource> m_source = std::make_shared<ChangingSource>();
    NetworkRecorder m_other;
    NetworkRecorder m_recorder;
};

} // namespace

TEST_F(NetworkRegistration, ReportsALinkThatChangesJustBeforeItIsRead)
{
    m_source->beforeRead = [this] {
        m_source->Set(NetworkAdapter::State_Down);
        EXPECT_TRUE(m_source->WaitUntilIdle());
    };
    ASSERT_TRUE(Monitor().Register(L"eth0", 5, &m_recorder));
    EXPECT_TRUE(m_source->WaitUntilIdle());
    m_source->Set(NetworkAdapter::State_Up);
    EXPECT_TRUE(m_source->WaitUntilIdle());
    EXPECT_THAT(m_recorder.Take(), ElementsAre("eth0 up->down 1", "eth0 down->up 1"));
}

TEST_F(NetworkRegistration, ReportsALinkThatChangesJustAfterItIsRead)
{
    m_source->afterRead = [this] {
        m_source->Set(NetworkAdapter::State_Down);
        EXPECT_TRUE(m_source->WaitUntilIdle());
    };
    ASSERT_TRUE(Monitor().Register(L"eth0", 5, &m_recorder));
    EXPECT_TRUE(m_source->WaitUntilIdle());
    m_source->Set(NetworkAdapter::State_Up);
    EXPECT_TRUE(m_source->WaitUntilIdle());
    EXPECT_THAT(m_recorder.Take(), ElementsAre("eth0 up->down 1", "eth0 down->up 1"));
}

TEST_F(NetworkRegistration, ReportsASpeedThatChangesWhileItIsRead)
{
    m_source->afterRead = [this] {
        m_source->SetSpeed(100);
        EXPECT_TRUE(m_source->WaitUntilIdle());
    };
    ASSERT_TRUE(Monitor().Register(L"eth0", 5, &m_recorder));
    EXPECT_TRUE(m_source->WaitUntilIdle());
    EXPECT_THAT(m_recorder.Take(), ElementsAre("eth0 up->up 4"));
    EXPECT_EQ(m_recorder.GetLast().GetStatistics().speed, 100U);
}

TEST_F(NetworkRegistration, ReportsOnlyWhatChangedSinceTheSecondRegistration)
{
    ASSERT_TRUE(Monitor().Register(L"eth0", 5, &m_recorder));
    Monitor().Unregister(&m_recorder);
    m_source->SetSpeed(100); // nobody is called
    EXPECT_TRUE(m_source->WaitUntilIdle());
    ASSERT_TRUE(Monitor().Register(L"eth0", 5, &m_recorder));
    m_source->Set(NetworkAdapter::State_Down);
    EXPECT_TRUE(m_source->WaitUntilIdle());
    EXPECT_THAT(m_recorder.Take(), ElementsAre("eth0 up->down 1"));
}

TEST(NetworkRegistrationKernel, NoChangeOfALinkIsMissed)
{
    std::string reason;
    const auto bench = TestSupport::MakeKernelBench(reason);
    if (!bench)
        GTEST_SKIP() << reason;
    NetworkRecorder other; // has the monitor's thread run all the time
    ASSERT_TRUE(Monitor().Register(L"other0", 5, &other));
    bench->SetUp("lo");
    const auto read = [] { return NetworkAdapter::ReadSettings(L"lo").GetState(); };
    ASSERT_TRUE(WaitUntil([&read] { return read() == NetworkAdapter::State_Up; }));
    Standalone::FlushNetworkMonitor();
    constexpr int Rounds = 300;
    int missed = 0;
    for (int round = 0; round < Rounds; ++round) {
        NetworkRecorder recorder;
        std::thread registering(
            [&recorder] { EXPECT_TRUE(Monitor().Register(L"lo", 5, &recorder)); });
        // At another moment of the registration each time.
        std::this_thread::sleep_for(std::chrono::microseconds(round));
        bench->SetDown("lo");
        registering.join();
        Standalone::FlushNetworkMonitor();
        bench->SetUp("lo");
        // The change back is reported whether or not the first change came before the registration.
        Standalone::FlushNetworkMonitor();
        if (recorder.GetLast().GetState() != NetworkAdapter::State_Up)
            ++missed;
        Monitor().Unregister(&recorder);
    }
    EXPECT_EQ(missed, 0);
}
