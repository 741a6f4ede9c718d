// SPDX-License-Identifier: MIT

// LEDs that follow the kernel's own adapters, in a network namespace of each test's; the same steps
// on virtual ones.

#include "links/links_bench.h"
#include "standalone/network_source.h"
#include "support/network_bench.h"
#include "support/wait.h"

namespace
{

using Hardware::LinkLights;
using TestSupport::GetLights;

class LinkLightsOnNetworks : public testing::TestWithParam<bool>
{
protected:
    void SetUp() override
    {
        std::string reason;
        m_bench = TestSupport::MakeBench(GetParam(), reason);
        if (!m_bench)
            GTEST_SKIP() << reason;
        TestSupport::SetLinkConsole(8, {L"console0"}, {L"fixture0"});
        m_bus = std::make_unique<Desk::WidgetBus>();
        m_board = &m_bus->Add({"LtcWidget", 1, {}});
        m_bench->Add("console0");
        m_bench->Add("fixture0");
        ASSERT_TRUE(LinkLights::Get().Start());
        EXPECT_TRUE(Show("1111"));
    }
    void TearDown() override { LinkLights::Get().Stop(); }

    /// Whether the LEDs come to show that.
    bool Show(const std::string& lights) const
    {
        return TestSupport::WaitUntil([&] { return GetLights(*m_board) == lights; });
    }

    std::unique_ptr<TestSupport::NetworkBench> m_bench;
    std::unique_ptr<Desk::WidgetBus> m_bus;
    Desk::VirtualWidget* m_board = nullptr;
};

INSTANTIATE_TEST_SUITE_P(On, LinkLightsOnNetworks, testing::Values(true, false),
                         [](const auto& test) { return test.param ? "Kernel" : "Virtual"; });

} // namespace

TEST_P(LinkLightsOnNetworks, FollowLinksUpAndDown)
{
    m_bench->SetDown("console0");
    EXPECT_TRUE(Show("0011"));
    m_bench->SetDown("fixture0");
    EXPECT_TRUE(Show("0000"));
    m_bench->SetUp("console0");
    EXPECT_TRUE(Show("1100"));
    m_bench->SetUp("fixture0");
    EXPECT_TRUE(Show("1111"));
}

TEST_P(LinkLightsOnNetworks, FollowAdaptersThatComeAndGo)
{
    m_bench->Remove("fixture0");
    EXPECT_TRUE(Show("1100"));
    m_bench->Add("fixture0");
    EXPECT_TRUE(Show("1111"));
}

TEST_P(LinkLightsOnNetworks, FollowNames)
{
    m_bench->SetDown("console0");
    EXPECT_TRUE(Show("0011"));
    m_bench->SetDown("fixture0");
    m_bench->Rename("fixture0", "other0");
    m_bench->Rename("console0", "fixture0");
    m_bench->SetUp("fixture0");
    EXPECT_TRUE(Show("0011"));
    m_bench->Rename("other0", "console0");
    m_bench->SetUp("console0");
    EXPECT_TRUE(TestSupport::WaitUntil([this] {
        // The far ends keep their names, and are up.
        return GetLights(*m_board) == "1111";
    }));
}

TEST_P(LinkLightsOnNetworks, AThousandFlapsEndInTheRightState)
{
    m_bench->Flap("console0", 500);
    m_bench->SetDown("console0");
    m_bench->Flap("fixture0", 500);
    EXPECT_TRUE(Show("0011"));
    Standalone::FlushNetworkMonitor();
    // Not at once: the kernel may tell of the last link a little later.
    EXPECT_TRUE(Show("0011"));
}
