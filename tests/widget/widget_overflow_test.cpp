// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <semaphore>

#include "desk/widget_bus.h"
#include "os/log.h"
#include "support/log_capture.h"
#include "widget/um_wing.h"
#include "widget/widget_facts.h"
#include "widget/widget_signaller.h"

using Hardware::WidgetSignaller;
using testing::IsEmpty;

namespace
{

constexpr int Limit = 20000;
constexpr char Line[] = "Reports are lost: 20000 are waiting";

class WidgetOverflow : public testing::Test
{
protected:
    WidgetOverflow()
    {
        signaller.SetAutoReadRegister(true);
        QObject::connect(&signaller, &WidgetSignaller::widgetRead, [this] { ++read; });
        QObject::connect(&signaller, &WidgetSignaller::widgetRemoved, [this] { ++removed; });
        signaller.RegisterWidgetClass(&GUID_DEVINTERFACE_QRTUMPLAYBACKWING);
    }

    void Press(int times)
    {
        for (int i = 0; i < times; ++i)
            widget.Press(1);
    }

    Desk::WidgetBus bus;
    Desk::VirtualWidget& widget = bus.Add({"PlaybackWing", 1, L"a"});
    WidgetSignaller signaller{&Hardware::UmWing::WingReader};
    std::atomic<int> read = 0, removed = 0;
    TestSupport::LogCapture capture;
};

TEST_F(WidgetOverflow, AsManyReportsWaitAsTheLimitTells)
{
    TestSupport::DriverHold hold(bus);
    Press(Limit);
    hold.End();
    EXPECT_EQ(read, Limit);
    EXPECT_THAT(capture.GetTexts(), IsEmpty());
}

TEST_F(WidgetOverflow, ReportsBeyondAreLostWithOneLine)
{
    TestSupport::DriverHold hold(bus);
    Press(Limit + 100);
    hold.End();
    EXPECT_EQ(read, Limit);
    const auto lines = capture.GetLines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].context, "WidgetDriver");
    EXPECT_EQ(lines[0].level, Os::Log::Error);
    EXPECT_EQ(lines[0].text, Line);
}

TEST_F(WidgetOverflow, AttachmentsAndDetachmentsAreNeverLost)
{
    TestSupport::DriverHold hold(bus);
    Press(Limit + 1);
    widget.Unplug();
    bus.Add({"PlaybackWing", 2, L"b"});
    hold.End();
    EXPECT_EQ(removed, 1);
    EXPECT_EQ(Hardware::WidgetManager::GetClassMapData(GUID_DEVINTERFACE_QRTUMPLAYBACKWING).size(),
              1u);
}

TEST_F(WidgetOverflow, ANewOneHasALineOfItsOwn)
{
    for (int i = 0; i < 2; ++i) {
        bus.SetWaiting(false);
        std::binary_semaphore begun(0), gate(0);
        const auto connection = QObject::connect(&signaller, &WidgetSignaller::widgetAdded, [&] {
            begun.release();
            gate.acquire();
        });
        bus.Add({"PlaybackWing", 2, L"hold " + std::to_wstring(i)});
        begun.acquire();
        Press(Limit + 1);
        gate.release();
        bus.Flush();
        QObject::disconnect(connection);
        Press(1);
        bus.Flush();
    }
    EXPECT_EQ(capture.Count(Line), 2u);
    EXPECT_EQ(read, 2 * (Limit + 1));
}

TEST_F(WidgetOverflow, RoomForOneReportIsNoEndOfIt)
{
    bus.SetWaiting(false);
    std::counting_semaphore<> begun(0), gate(0);
    std::atomic<bool> isFree = false;
    QObject::connect(&signaller, &WidgetSignaller::widgetRead, [&] {
        if (isFree)
            return;
        begun.release();
        gate.acquire();
    });
    Press(1);
    begun.acquire();
    Press(Limit + 1);
    for (int i = 0; i < 10; ++i) {
        gate.release();
        begun.acquire(); // there is room for one
        Press(2);
    }
    isFree = true;
    gate.release();
    bus.Flush();
    EXPECT_EQ(capture.Count(Line), 1u);
    EXPECT_EQ(read, 1 + Limit + 10);
}

} // namespace
