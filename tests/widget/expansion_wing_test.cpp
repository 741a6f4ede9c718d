// SPDX-License-Identifier: MIT
#include "widget/expansion_wing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk/widget_bus.h"
#include "widget/signal_log.h"
#include "widget/widget_facts.h"
#include "widget/widget_signaller.h"

using Hardware::ExpansionWing;
using testing::ElementsAre;
using testing::IsEmpty;

namespace Report = Standalone::Report;

namespace
{

constexpr unsigned Displays = ExpansionWing::DisplayCount;
constexpr unsigned Cells = ExpansionWing::CellsPerDisplay;

class Expansion : public testing::Test
{
protected:
    Desk::WidgetBus bus;
    Desk::VirtualWidget& widget = bus.Add({"ExpansionWing", 1, L"a"});
    const std::unique_ptr<ExpansionWing> wing = TestSupport::Open<ExpansionWing>(widget);
};

TEST_F(Expansion, HasTwoHundredFiftySixDisplaysOfTenCells)
{
    EXPECT_EQ(Displays, 256u);
    EXPECT_EQ(Cells, 10u);
    EXPECT_EQ(sizeof(QRT_XWING_CONFIGURATION::surface), 256u);
}

TEST_F(Expansion, KeepsEveryCell)
{
    for (unsigned display = 0; display < Displays; ++display)
        for (unsigned cell = 0; cell < Cells; ++cell)
            wing->SetCell(static_cast<unsigned char>(display), cell, display * 100 + cell);
    for (unsigned display = 0; display < Displays; ++display)
        for (unsigned cell = 0; cell < Cells; ++cell)
            EXPECT_EQ(wing->GetCell(static_cast<unsigned char>(display), cell),
                      display * 100 + cell);
}

TEST_F(Expansion, IgnoresCellsBeyondTheLast)
{
    wing->SetCell(0, Cells, 7);
    wing->SetCell(255, Cells, 7);
    wing->SetCell(0, 0xFFFFFFFF, 7);
    EXPECT_EQ(wing->GetCell(0, Cells), 0u);
    EXPECT_EQ(wing->GetCell(0, 0xFFFFFFFF), 0u);
    EXPECT_EQ(wing->GetCell(1, 0), 0u);
}

TEST_F(Expansion, DoesNotReadACellOfTheNextDisplayAsItsOwn)
{
    wing->SetCell(1, 0, 7);
    EXPECT_EQ(wing->GetCell(0, Cells), 0u);
}

TEST_F(Expansion, KeepsEverySurface)
{
    for (unsigned display = 0; display < Displays; ++display)
        wing->SetSurface(static_cast<unsigned char>(display),
                         static_cast<unsigned char>(255 - display));
    for (unsigned display = 0; display < Displays; ++display)
        EXPECT_EQ(wing->GetSurface(static_cast<unsigned char>(display)), 255 - display);
}

TEST_F(Expansion, ClearsTheCellsOfOneDisplay)
{
    for (unsigned char display = 253; display != 0; ++display)
        for (unsigned cell = 0; cell < Cells; ++cell)
            wing->SetCell(display, cell, 1);
    wing->ClearCells(254);
    for (unsigned cell = 0; cell < Cells; ++cell) {
        EXPECT_EQ(wing->GetCell(253, cell), 1u);
        EXPECT_EQ(wing->GetCell(254, cell), 0u);
        EXPECT_EQ(wing->GetCell(255, cell), 1u);
    }
}

TEST_F(Expansion, SendsNothingUntilItWrites)
{
    wing->SetCell(1, 2, 3);
    wing->SetSurface(1, 2);
    wing->ClearCells(1);
    EXPECT_THAT(widget.GetLog(), IsEmpty());
}

TEST_F(Expansion, WritesAllCellsAndSurfacesTheLastOneIncluded)
{
    wing->SetCell(0, 0, 11);
    wing->SetCell(255, 9, 0xFFFFFFFF);
    wing->SetSurface(0, 5);
    wing->SetSurface(255, 6);
    EXPECT_TRUE(wing->WriteCells());
    EXPECT_EQ(widget.GetCell(0, 0), 11u);
    EXPECT_EQ(widget.GetCell(255, 9), 0xFFFFFFFFu);
    EXPECT_EQ(widget.GetCell(0, 1), 0u);
    EXPECT_EQ(widget.GetSurface(0), 5);
    EXPECT_EQ(widget.GetSurface(255), 6);
    ASSERT_EQ(widget.GetLog().size(), 1u);
    const auto report = std::get<Report::WriteCells>(widget.GetLog().front());
    EXPECT_EQ(report.surfaces.size(), 256u);
    EXPECT_EQ(report.cells.size(), 2560u);
}

TEST_F(Expansion, FailsToWriteToADetachedWing)
{
    widget.Unplug();
    EXPECT_FALSE(wing->WriteCells());
}

TEST_F(Expansion, StagesInEachObjectByItself)
{
    wing->SetCell(1, 1, 7);
    EXPECT_EQ(TestSupport::Open<ExpansionWing>(widget)->GetCell(1, 1), 0u);
}

TEST_F(Expansion, HasAnEmptyConfigurationAtFirst)
{
    QRT_XWING_CONFIGURATION configuration;
    configuration.version = 9;
    configuration.surface[255] = 9;
    wing->GetConfiguration(&configuration);
    EXPECT_EQ(configuration.version, 0u);
    EXPECT_EQ(configuration.surface[255], 0);
}

TEST_F(Expansion, TellsTheConfigurationThatTheWingReported)
{
    widget.Configure({1, 2, 3});
    QRT_XWING_CONFIGURATION configuration{};
    wing->GetConfiguration(&configuration);
    EXPECT_EQ(configuration.version, 1u);
    EXPECT_EQ(configuration.surface[0], 1);
    EXPECT_EQ(configuration.surface[2], 3);
    EXPECT_EQ(configuration.surface[3], 0);

    widget.Configure(std::vector<std::uint8_t>(256, 8));
    wing->GetConfiguration(&configuration);
    EXPECT_EQ(configuration.version, 2u);
    EXPECT_EQ(configuration.surface[0], 8);
    EXPECT_EQ(configuration.surface[255], 8);
}

TEST_F(Expansion, TakesNoMoreSurfacesThanItHasDisplays)
{
    widget.Configure(std::vector<std::uint8_t>(1000, 8));
    QRT_XWING_CONFIGURATION configuration{};
    wing->GetConfiguration(&configuration);
    EXPECT_EQ(configuration.surface[255], 8);
    EXPECT_EQ(configuration.version, 1u);
}

TEST_F(Expansion, FillsNoConfigurationWhereThereIsNone)
{
    wing->GetConfiguration(nullptr);
}

TEST_F(Expansion, SignalsAConfigurationOfKindEight)
{
    Hardware::WidgetSignaller signaller(&Hardware::UmWing::WingReader);
    signaller.SetAutoReadRegister(true);
    signaller.RegisterWidgetClass(&GUID_DEVINTERFACE_QRTUMEXPANSIONWING);
    const TestSupport::SignalLog log(signaller);
    widget.Configure({1});
    EXPECT_THAT(log.Get(), ElementsAre("read a: configuration 8"));
}

} // namespace
