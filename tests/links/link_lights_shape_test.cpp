// SPDX-License-Identifier: MIT

// Bases, operations and fields stand in their order.

#include <gmock/gmock.h>

#include "hardware/linklights.h"
#include "links/links_bench.h"

namespace
{

using Hardware::LinkLights;
typedef Os::NetworkAdapterMonitor::Callback Callback;

static_assert(std::is_base_of_v<Callback, LinkLights>);
static_assert(std::is_base_of_v<Gut::MessageHandler, LinkLights>);
static_assert(!std::is_destructible_v<LinkLights>);
static_assert(!std::is_default_constructible_v<LinkLights>);
static_assert(std::is_same_v<decltype(&LinkLights::Start), bool (LinkLights::*)()>);
static_assert(std::is_same_v<decltype(&LinkLights::Stop), void (LinkLights::*)()>);
static_assert(std::is_same_v<decltype(&LinkLights::Update), void (LinkLights::*)()>);
static_assert(
    std::is_same_v<decltype(&LinkLights::LtcHandler),
                   void (*)(const Hardware::WidgetMapData&, Hardware::WidgetEvent, void*)>);
static_assert(std::is_same_v<decltype(&LinkLights::Changed),
                             void (LinkLights::*)(const Os::NetworkAdapter&,
                                                  const Os::NetworkAdapter::State&, int)>);
static_assert(std::is_same_v<decltype(&LinkLights::FilterMessage),
                             bool (LinkLights::*)(const Gut::Message&)>);

/// What it holds, in order.
struct Fields {
    void* callbackTable;
    void* handlerTable;
    int started;
    Os::CriticalSection lock;
    kel::wstring vexNetName;
    kel::wstring fixtureNetName;
};
static_assert(sizeof(Fields) == sizeof(LinkLights));

class LinkLightsShape : public TestSupport::LinksBench
{
};

} // namespace

TEST_F(LinkLightsShape, TheCallbackIsItsFirstBase)
{
    LinkLights& lights = LinkLights::Get();
    EXPECT_EQ(static_cast<void*>(static_cast<Callback*>(&lights)), &lights);
    EXPECT_EQ(static_cast<void*>(static_cast<Gut::MessageHandler*>(&lights)),
              reinterpret_cast<char*>(&lights) + sizeof(void*));
}

TEST_F(LinkLightsShape, FieldsStandInTheirOrder)
{
    const auto& fields = reinterpret_cast<const Fields&>(LinkLights::Get());
    EXPECT_EQ(fields.started, 0);
    EXPECT_EQ(fields.vexNetName, L"");
    EXPECT_EQ(fields.fixtureNetName, L"");
    ASSERT_TRUE(LinkLights::Get().Start());
    EXPECT_EQ(fields.started, 1);
    EXPECT_EQ(fields.vexNetName, L"vex0");
    EXPECT_EQ(fields.fixtureNetName, L"fix0");
    LinkLights::Get().Stop();
    EXPECT_EQ(fields.started, 1);
}

TEST_F(LinkLightsShape, VirtualOperationsStandInTheirOrder)
{
    const Desk::VirtualWidget& board = AddBoard();
    LinkLights& lights = LinkLights::Get();
    // Two slots of the table are the destructors.
    typedef void ChangedOperation(LinkLights*, const Os::NetworkAdapter&,
                                  const Os::NetworkAdapter::State&, int);
    typedef bool FilterOperation(LinkLights*, const Gut::Message&);
    void* const* const table = *reinterpret_cast<void* const**>(&lights);
    const Os::NetworkAdapter adapter;
    const Os::NetworkAdapter::State state = Os::NetworkAdapter::State_Up;
    reinterpret_cast<ChangedOperation*>(table[2])(&lights, adapter, state, 1);
    EXPECT_EQ(board.GetLog().size(), 1U);
    const std::array<std::uint32_t, 3> words{15, 0, 0};
    const Gut::Message message(words.data(), sizeof words);
    EXPECT_TRUE(reinterpret_cast<FilterOperation*>(table[3])(&lights, message));
    EXPECT_EQ(board.GetLog().size(), 2U);
}
