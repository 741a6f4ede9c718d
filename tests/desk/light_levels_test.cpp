// SPDX-License-Identifier: MIT
// The lights of virtual widgets, by name.
#include "desk/light_levels.h"

#include <gmock/gmock.h>

#include <memory>

#include "desk/widget_bus.h"
#include "widget/widget_factory.h"
#include "widget/widget_manager.h"
#include "widget/wings.h"

namespace
{

using Hardware::UmVexNextWing;
using testing::ElementsAre;
using testing::IsEmpty;

typedef std::vector<std::string> Texts;

Texts Describe(const Desk::VirtualWidget& widget)
{
    Texts texts;
    for (const Desk::LightLevel& light : Desk::GetLightLevels(widget))
        texts.push_back(light.name + " " + std::to_string(light.level));
    return texts;
}

/// Sets every channel to ten times its number, and the displays to 100.
void LightAll(const GUID& classId)
{
    unsigned long key = 0;
    const std::unique_ptr<Hardware::UmWidget> widget(Hardware::WidgetFactory::Get().Create(
        *Hardware::WidgetManager::GetClassMapData(classId).begin(), key));
    auto& wing = dynamic_cast<UmVexNextWing&>(*widget);
    for (int channel = 1; channel <= 9; ++channel)
        wing.SetDimmer(static_cast<Hardware::UmWing::DimmerIndex>(channel),
                       static_cast<unsigned char>(10 * channel));
    wing.SetAllLcdBrightness(100);
}

} // namespace

TEST(LightLevels, AreNoneBeforeTheyAreSet)
{
    Desk::WidgetBus bus;
    EXPECT_THAT(Describe(bus.Add({"Vex4Pixi", 1, {}})), IsEmpty());
}

TEST(LightLevels, HaveTheNamesOfTheirChannels)
{
    Desk::WidgetBus bus;
    const Desk::VirtualWidget& playback = bus.Add({"Vex4DeskPlayback", 1, {}});
    const Desk::VirtualWidget& programmer = bus.Add({"Vex4DeskProgrammer", 2, {}});
    LightAll(GUID_DEVINTERFACE_QRTUMVNEXTPLAYBACKWING);
    LightAll(GUID_DEVINTERFACE_QRTUMVNEXTPROGRAMWING);
    EXPECT_THAT(Describe(playback),
                ElementsAre("LEDs 10", "blue desk light 30", "work light 40", "white desk light 50",
                            "vent light 90", "displays 100"));
    EXPECT_THAT(Describe(programmer),
                ElementsAre("LEDs 10", "blue desk light 30", "drawer light 40",
                            "white desk light 50", "dimmer 6 60", "dimmer 7 70", "dimmer 8 80",
                            "vent light 90"));
}

TEST(LightLevels, AreThoseOfTheModelsOwnLights)
{
    Desk::WidgetBus bus;
    const Desk::VirtualWidget& small = bus.Add({"Vex4Petite", 1, {}});
    LightAll(GUID_DEVINTERFACE_QRTUMVNEXT_PETITE);
    EXPECT_THAT(Describe(small), ElementsAre("LEDs 10", "work light 40"));
}
