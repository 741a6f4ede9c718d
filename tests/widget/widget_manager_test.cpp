// SPDX-License-Identifier: MIT
#include "widget/widget_manager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk/widget_bus.h"
#include "widget/model_rows.h"
#include "widget/signal_log.h"
#include "widget/widget_facts.h"

using Hardware::WidgetManager;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

std::vector<std::string> ListAttached(const GUID& classId)
{
    std::vector<std::string> paths;
    for (const auto& mapData : WidgetManager::GetClassMapData(classId))
        paths.push_back(TestSupport::GetPathText(mapData));
    return paths;
}

TEST(WidgetManager, KnowsNothingWithoutBus)
{
    for (const auto& row : TestSupport::GetModelRows())
        EXPECT_THAT(WidgetManager::GetClassMapData(*row.classId), IsEmpty()) << row.name;
}

TEST(WidgetManager, KnowsTheWidgetsOfEveryClassThoughNobodyWatchesIt)
{
    Desk::WidgetBus bus;
    for (const auto& row : TestSupport::GetModelRows()) {
        bus.Add({row.name, 1, {}});
        const auto found = WidgetManager::GetClassMapData(*row.classId);
        ASSERT_EQ(found.size(), 1u) << row.name;
        EXPECT_EQ(found.begin()->GetClassId(), row.classId) << row.name;
    }
}

TEST(WidgetManager, KnowsWhatIsAttachedNow)
{
    Desk::WidgetBus bus;
    auto& b = bus.Add({"PlaybackWing", 1, L"b"});
    bus.Add({"PlaybackWing", 1, L"a"});
    bus.Add({"ProgrammerWing", 1, L"c"});
    EXPECT_THAT(ListAttached(GUID_DEVINTERFACE_QRTUMPLAYBACKWING), ElementsAre("a", "b"));
    b.Unplug();
    EXPECT_THAT(ListAttached(GUID_DEVINTERFACE_QRTUMPLAYBACKWING), ElementsAre("a"));
    b.Plug();
    EXPECT_THAT(ListAttached(GUID_DEVINTERFACE_QRTUMPLAYBACKWING), ElementsAre("a", "b"));
}

TEST(WidgetManager, ForgetsAllWithTheBus)
{
    {
        Desk::WidgetBus bus;
        bus.Add({"PlaybackWing", 1, L"a"});
    }
    EXPECT_THAT(ListAttached(GUID_DEVINTERFACE_QRTUMPLAYBACKWING), IsEmpty());
}

} // namespace
