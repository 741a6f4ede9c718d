// SPDX-License-Identifier: MIT

// The kernel's own adapters, in a network namespace of each test's. What can be done to virtual
// ones too is done to both.

#include <fcntl.h>
#include <gmock/gmock.h>

#include <set>

#include "os/event.h"
#include "platform/network_recorder.h"
#include "standalone/network_source.h"
#include "support/log_capture.h"
#include "support/network_bench.h"
#include "support/wait.h"

namespace
{

using Os::NetworkAdapter;
using Os::NetworkAdapterMonitor;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using TestSupport::KernelBench;
using TestSupport::NetworkRecorder;
using TestSupport::WaitUntil;

NetworkAdapterMonitor& Monitor()
{
    return NetworkAdapterMonitor::Get();
}

NetworkAdapter::State ReadState(const wchar_t* name)
{
    return NetworkAdapter::ReadSettings(name).GetState();
}

class NetworkSteps : public testing::TestWithParam<bool>
{
protected:
    void SetUp() override
    {
        std::string reason;
        m_bench = TestSupport::MakeBench(GetParam(), reason);
        if (!m_bench)
            GTEST_SKIP() << reason;
        m_recorder = std::make_unique<NetworkRecorder>();
    }
    /// Whether what was last told of an adapter is this.
    bool Tells(NetworkAdapter::State state)
    {
        return WaitUntil([&] { return m_recorder->GetLast().GetState() == state; });
    }

    std::unique_ptr<TestSupport::NetworkBench> m_bench;
    std::unique_ptr<NetworkRecorder> m_recorder;
};

INSTANTIATE_TEST_SUITE_P(On, NetworkSteps, testing::Values(true, false),
                         [](const auto& test) { return test.param ? "Kernel" : "Virtual"; });

} // namespace

TEST_P(NetworkSteps, UpAndDown)
{
    m_bench->Add("console0");
    EXPECT_TRUE(WaitUntil([] { return ReadState(L"console0") == NetworkAdapter::State_Up; }));
    ASSERT_TRUE(Monitor().Register(L"console0", 5, m_recorder.get()));
    m_bench->SetDown("console0");
    EXPECT_TRUE(Tells(NetworkAdapter::State_Down));
    EXPECT_EQ(ReadState(L"console0"), NetworkAdapter::State_Down);
    m_bench->SetUp("console0");
    EXPECT_TRUE(Tells(NetworkAdapter::State_Up));
    EXPECT_EQ(ReadState(L"console0"), NetworkAdapter::State_Up);
    EXPECT_GT(m_recorder->GetLast().GetStatistics().speed, 999999999U);
}

TEST_P(NetworkSteps, WatchedThroughDescriptorsThatProgramsDoNotInherit)
{
    const auto list = [] {
        std::set<int> descriptors;
        for (int descriptor = 0; descriptor < 1024; ++descriptor)
            if (fcntl(descriptor, F_GETFD) != -1)
                descriptors.insert(descriptor);
        return descriptors;
    };
    const std::set<int> before = list();
    ASSERT_TRUE(Monitor().Register(L"console0", 5, m_recorder.get()));
    m_bench->Add("console0");
    EXPECT_TRUE(Tells(NetworkAdapter::State_Up));
    unsigned count = 0;
    for (const int descriptor : list()) {
        if (before.contains(descriptor))
            continue;
        ++count;
        EXPECT_EQ(fcntl(descriptor, F_GETFD), FD_CLOEXEC) << descriptor;
    }
    EXPECT_GT(count, 0U);
}

TEST_P(NetworkSteps, DeletedAndMadeAgain)
{
    m_bench->Add("console0");
    ASSERT_TRUE(Monitor().Register(L"console0", 5, m_recorder.get()));
    m_bench->Remove("console0");
    EXPECT_TRUE(Tells(NetworkAdapter::State_Absent));
    EXPECT_EQ(NetworkAdapter::ReadSettings(L"console0").GetName(), L"");
    m_bench->Add("console0");
    EXPECT_TRUE(Tells(NetworkAdapter::State_Up));
}

TEST_P(NetworkSteps, Renamed)
{
    m_bench->Add("console0");
    m_bench->SetDown("console0");
    EXPECT_TRUE(WaitUntil([] { return ReadState(L"console0") == NetworkAdapter::State_Down; }));
    NetworkRecorder other;
    ASSERT_TRUE(Monitor().Register(L"console0", 1, m_recorder.get()));
    ASSERT_TRUE(Monitor().Register(L"desk-\u00FC", 1, &other));
    m_bench->Rename("console0", Standalone::NarrowAdapterName(L"desk-\u00FC"));
    EXPECT_TRUE(Tells(NetworkAdapter::State_Absent));
    EXPECT_TRUE(
        WaitUntil([&] { return other.GetLast().GetState() == NetworkAdapter::State_Down; }));
    EXPECT_EQ(ReadState(L"console0"), NetworkAdapter::State_Absent);
    EXPECT_EQ(NetworkAdapter::ReadSettings(L"desk-\u00FC").GetName(), L"desk-\u00FC");
}

TEST_P(NetworkSteps, AThousandFlapsEndInTheRightState)
{
    m_bench->Add("console0");
    ASSERT_TRUE(Monitor().Register(L"console0", 5, m_recorder.get()));
    m_bench->Flap("console0", 1000);
    m_bench->SetDown("console0");
    // Whatever the last call was, nothing newer follows it.
    EXPECT_TRUE(WaitUntil([] { return ReadState(L"console0") == NetworkAdapter::State_Down; }));
    Standalone::FlushNetworkMonitor();
    EXPECT_EQ(m_recorder->GetLast().GetState(), NetworkAdapter::State_Down);
    // The kernel drops what comes too fast for a busy machine; virtual adapters drop nothing.
    EXPECT_GT(m_recorder->GetCalls().size(), GetParam() ? 0U : 100U);
}

namespace
{

class KernelNetwork : public testing::Test
{
protected:
    void SetUp() override
    {
        std::string reason;
        m_bench = TestSupport::MakeKernelBench(reason);
        if (!m_bench)
            GTEST_SKIP() << reason;
        m_bench->Add("console0");
        EXPECT_TRUE(WaitUntil([] { return ReadState(L"console0") == NetworkAdapter::State_Up; }));
        m_recorder = std::make_unique<NetworkRecorder>();
        ASSERT_TRUE(Monitor().Register(L"console0", 5, m_recorder.get()));
    }
    std::unique_ptr<KernelBench> m_bench;
    std::unique_ptr<NetworkRecorder> m_recorder;
};

} // namespace

TEST_F(KernelNetwork, ACableThatIsPulledTakesTheLinkAway)
{
    m_bench->Pull("console0");
    EXPECT_TRUE(WaitUntil([this] { return !m_recorder->GetCalls().empty(); }));
    EXPECT_EQ(m_recorder->GetLast().GetState(), NetworkAdapter::State_Down);
    EXPECT_EQ(ReadState(L"console0"), NetworkAdapter::State_Down); // still switched on
    m_bench->Plug("console0");
    EXPECT_TRUE(
        WaitUntil([this] { return m_recorder->GetLast().GetState() == NetworkAdapter::State_Up; }));
    EXPECT_THAT(m_recorder->Take(), ElementsAre("console0 up->down 1", "console0 down->up 1"));
}

TEST_F(KernelNetwork, WhatIsNoChangeOfTheLinkIsNotTold)
{
    m_bench->SetLength("console0", 1400);
    m_bench->Add("other0");
    Standalone::FlushNetworkMonitor();
    EXPECT_THAT(m_recorder->Take(), IsEmpty());
}

TEST_F(KernelNetwork, AnAdapterThatLeavesABridgeIsNotGone)
{
    try {
        m_bench->AddBridge("bridge0");
    } catch (const std::exception& error) {
        GTEST_SKIP() << error.what();
    }
    m_bench->Join("console0", "bridge0");
    m_bench->Leave("console0");
    Standalone::FlushNetworkMonitor();
    EXPECT_THAT(m_recorder->Take(), Not(Contains(testing::HasSubstr("absent"))));
    EXPECT_EQ(ReadState(L"console0"), NetworkAdapter::State_Up);
}

TEST_F(KernelNetwork, ASecondNameOfAnAdapterIsNone)
{
    EXPECT_EQ(NetworkAdapter::ReadSettings(L"lo").GetName(), L"lo");
    EXPECT_EQ(NetworkAdapter::ReadSettings(L"console0").GetHardwareAddress().size(), 17U);
    EXPECT_EQ(NetworkAdapter::ReadSettings(std::wstring(40, L'x')).GetName(), L"");
}

TEST_F(KernelNetwork, TheSpeedIsTheDriversAndItsChangesAreTold)
{
    if (!m_bench->AddTap("tap0"))
        GTEST_SKIP() << "the kernel has no adapters for programs";
    const auto speed = [] { return NetworkAdapter::ReadSettings(L"tap0").GetStatistics().speed; };
    ASSERT_TRUE(Monitor().Register(L"tap0", 5, m_recorder.get()));
    for (const std::uint32_t megabits : {10U, 100U, 999U, 1000U, 2500U, 10000U, 400000U}) {
        m_recorder->Take();
        m_bench->SetTapSpeed("tap0", megabits);
        EXPECT_EQ(speed(), megabits * 1000000ULL);
        EXPECT_TRUE(WaitUntil([&] {
            return m_recorder->GetLast().GetStatistics().speed == megabits * 1000000ULL;
        })) << megabits;
    }
    m_bench->SetTapSpeed("tap0", 0xFFFFFFFF); // the driver does not know
    EXPECT_EQ(speed(), 0U);
}

/// Holds the monitor's thread in its first call.
class Blocker : public NetworkAdapterMonitor::Callback
{
public:
    ~Blocker() override
    {
        mayGo.Set();
        Monitor().Unregister(this);
    }
    void Changed(const NetworkAdapter&, const NetworkAdapter::State&, int) override
    {
        isIn.Set();
        mayGo.Wait();
    }
    Os::Event isIn;
    Os::Event mayGo;
};

TEST_F(KernelNetwork, AnOverrunEndsInTheRightState)
{
    const TestSupport::LogCapture log;
    m_bench->Add("other0");
    // The kernel reports a new link a little later.
    ASSERT_TRUE(WaitUntil([] { return ReadState(L"other0") == NetworkAdapter::State_Up; }));
    Blocker blocker;
    ASSERT_TRUE(Monitor().Register(L"other0", 1, &blocker));
    m_bench->SetDown("other0");
    ASSERT_TRUE(blocker.isIn.Wait(20000));
    m_bench->Flap("console0", 1000); // more than the kernel keeps
    m_bench->Remove("console0");
    blocker.mayGo.Set();
    EXPECT_TRUE(WaitUntil(
        [&] { return log.Count("News of network adapters were lost, all are looked at") > 0; }));
    EXPECT_TRUE(WaitUntil(
        [this] { return m_recorder->GetLast().GetState() == NetworkAdapter::State_Absent; }));
    Standalone::FlushNetworkMonitor();
    EXPECT_EQ(m_recorder->GetLast().GetState(), NetworkAdapter::State_Absent);
}
