// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk/widget_bus.h"
#include "widget/signal_log.h"
#include "widget/widget_facts.h"
#include "widget/widget_manager.h"

using Hardware::WidgetEvent;
using Hardware::WidgetManager;
using Hardware::WidgetMapData;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

const GUID& Playback = GUID_DEVINTERFACE_QRTUMPLAYBACKWING;
const GUID& Programmer = GUID_DEVINTERFACE_QRTUMPROGRAMMERWING;

typedef std::vector<std::string> Texts;

// The bus waits, so the driver's thread is at rest whenever a test looks.
void Record(const WidgetMapData& mapData, WidgetEvent event, void* texts)
{
    const char* const what = event == Hardware::WidgetEvent_Added ? "added " : "removed ";
    static_cast<Texts*>(texts)->push_back(what + TestSupport::GetPathText(mapData));
}

void RecordElsewhere(const WidgetMapData& mapData, WidgetEvent, void* texts)
{
    static_cast<Texts*>(texts)->push_back("elsewhere " + TestSupport::GetPathText(mapData));
}

class ClassCallbacks : public testing::Test
{
protected:
    ~ClassCallbacks() override
    {
        for (const GUID* const classId : {&Playback, &Programmer})
            for (Texts* const context : {&texts, &otherTexts})
                for (const auto callback : {&Record, &RecordElsewhere})
                    WidgetManager::RemoveClassCallback(*classId, callback, context);
    }

    Desk::WidgetBus bus;
    Texts texts, otherTexts;
};

TEST_F(ClassCallbacks, TellOfAttachmentsAndDetachmentsOfTheirClass)
{
    EXPECT_TRUE(WidgetManager::RegisterClassCallback(Playback, &Record, &texts));
    auto& a = bus.Add({"PlaybackWing", 1, L"a"});
    bus.Add({"ProgrammerWing", 2, L"b"}).Unplug();
    a.Unplug();
    a.Plug();
    EXPECT_THAT(texts, ElementsAre("added a", "removed a", "added a"));
}

TEST_F(ClassCallbacks, TellNothingOfWhatIsAttachedAlready)
{
    auto& a = bus.Add({"PlaybackWing", 1, L"a"});
    WidgetManager::RegisterClassCallback(Playback, &Record, &texts);
    EXPECT_THAT(texts, IsEmpty());
    a.Unplug();
    EXPECT_THAT(texts, ElementsAre("removed a"));
}

TEST_F(ClassCallbacks, AreNotCalledAfterTheirRemoval)
{
    WidgetManager::RegisterClassCallback(Playback, &Record, &texts);
    EXPECT_TRUE(WidgetManager::RemoveClassCallback(Playback, &Record, &texts));
    bus.Add({"PlaybackWing", 1, L"a"}).Unplug();
    EXPECT_THAT(texts, IsEmpty());
}

TEST_F(ClassCallbacks, AreToldApartByAllThree)
{
    EXPECT_TRUE(WidgetManager::RegisterClassCallback(Playback, &Record, &texts));
    EXPECT_FALSE(WidgetManager::RegisterClassCallback(Playback, &Record, &texts));
    EXPECT_TRUE(WidgetManager::RegisterClassCallback(Programmer, &Record, &texts));
    EXPECT_TRUE(WidgetManager::RegisterClassCallback(Playback, &RecordElsewhere, &texts));
    EXPECT_TRUE(WidgetManager::RegisterClassCallback(Playback, &Record, &otherTexts));

    EXPECT_TRUE(WidgetManager::RemoveClassCallback(Playback, &Record, &texts));
    EXPECT_FALSE(WidgetManager::RemoveClassCallback(Playback, &Record, &texts));
    bus.Add({"PlaybackWing", 1, L"a"});
    bus.Add({"ProgrammerWing", 2, L"b"});
    EXPECT_THAT(texts, ElementsAre("elsewhere a", "added b"));
    EXPECT_THAT(otherTexts, ElementsAre("added a"));
}

TEST_F(ClassCallbacks, RemovingNeedsAllThree)
{
    WidgetManager::RegisterClassCallback(Playback, &Record, &texts);
    EXPECT_FALSE(WidgetManager::RemoveClassCallback(Programmer, &Record, &texts));
    EXPECT_FALSE(WidgetManager::RemoveClassCallback(Playback, &RecordElsewhere, &texts));
    EXPECT_FALSE(WidgetManager::RemoveClassCallback(Playback, &Record, &otherTexts));
    bus.Add({"PlaybackWing", 1, L"a"});
    EXPECT_THAT(texts, ElementsAre("added a"));
}

TEST_F(ClassCallbacks, AreCalledInTheOrderOfTheirRegistration)
{
    WidgetManager::RegisterClassCallback(Playback, &RecordElsewhere, &texts);
    WidgetManager::RegisterClassCallback(Playback, &Record, &texts);
    bus.Add({"PlaybackWing", 1, L"a"});
    EXPECT_THAT(texts, ElementsAre("elsewhere a", "added a"));
}

void AskForThread(const WidgetMapData&, WidgetEvent, void* isDriver)
{
    *static_cast<bool*>(isDriver) = TestSupport::IsDriverThread();
}

TEST_F(ClassCallbacks, AreCalledOnTheDriversThread)
{
    bool isDriver = false;
    WidgetManager::RegisterClassCallback(Playback, &AskForThread, &isDriver);
    bus.Add({"PlaybackWing", 1, L"a"});
    WidgetManager::RemoveClassCallback(Playback, &AskForThread, &isDriver);
    EXPECT_TRUE(isDriver);
}

void CountAttached(const WidgetMapData&, WidgetEvent, void* count)
{
    *static_cast<std::size_t*>(count) = WidgetManager::GetClassMapData(Playback).size();
}

TEST_F(ClassCallbacks, MayAskTheManager)
{
    std::size_t count = 99;
    WidgetManager::RegisterClassCallback(Playback, &CountAttached, &count);
    auto& widget = bus.Add({"PlaybackWing", 1, L"a"});
    EXPECT_EQ(count, 1u);
    widget.Unplug();
    EXPECT_EQ(count, 0u);
    WidgetManager::RemoveClassCallback(Playback, &CountAttached, &count);
}

void RemoveRecord(const WidgetMapData&, WidgetEvent, void* texts)
{
    WidgetManager::RemoveClassCallback(Playback, &Record, texts);
}

TEST_F(ClassCallbacks, OneThatAnotherRemovesIsNotCalledAnyMore)
{
    WidgetManager::RegisterClassCallback(Playback, &RemoveRecord, &texts);
    WidgetManager::RegisterClassCallback(Playback, &Record, &texts);
    bus.Add({"PlaybackWing", 1, L"a"});
    WidgetManager::RemoveClassCallback(Playback, &RemoveRecord, &texts);
    EXPECT_THAT(texts, IsEmpty());
}

void RegisterRecord(const WidgetMapData&, WidgetEvent, void* texts)
{
    WidgetManager::RegisterClassCallback(Playback, &Record, texts);
}

TEST_F(ClassCallbacks, OneThatAnotherRegistersIsCalledFromTheNextTimeOn)
{
    WidgetManager::RegisterClassCallback(Playback, &RegisterRecord, &texts);
    auto& widget = bus.Add({"PlaybackWing", 1, L"a"});
    EXPECT_THAT(texts, IsEmpty());
    widget.Unplug();
    WidgetManager::RemoveClassCallback(Playback, &RegisterRecord, &texts);
    EXPECT_THAT(texts, ElementsAre("removed a"));
}

} // namespace
