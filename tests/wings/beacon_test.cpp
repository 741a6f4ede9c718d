// SPDX-License-Identifier: MIT
#include "hardware/wing_beacon.h"

#include <gmock/gmock.h>

#include <QMetaMethod>
#include <map>

#include "desk/virtual_widget.h"
#include "os/log.h"
#include "support/log_capture.h"
#include "wings/wing_bench.h"

using Hardware::UmWing;
using Hardware::WingBeacon;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

constexpr UmWing::WingSections Section = UmWing::WingSections_Centre;

struct Kind {
    unsigned kind;
    const char* model;
    int section; ///< what the wing is told: 0 for the whole
};

/// Kinds that one wing is found by.
constexpr Kind SerialKinds[] = {{1, "PlaybackWing", 0},         {2, "ExpansionWing", Section},
                                {4, "Vex4ExternalPlayback", 0}, {5, "Vex4Pixi", 0},
                                {6, "Vex4Keystone", Section},   {17, "Vex4Sprig", 0},
                                {18, "Vex4Petite", 0}};

/// Every model twice: serial numbers 5 and 6.
class WingBeaconTest : public testing::Test
{
protected:
    WingBeaconTest()
    {
        for (const Hardware::WingModel& model : Standalone::GetWingModels())
            for (std::uint16_t serialNumber = 5; serialNumber <= 6; ++serialNumber)
                Add(model.name, serialNumber);
    }

    /// A widget whose beacons are taken down, model/serial number/section, in the order of time.
    Desk::VirtualWidget& Add(const std::string& model, std::uint16_t serialNumber,
                             const std::wstring& path = {})
    {
        Desk::VirtualWidget& widget = m_bus.Add({model, serialNumber, path});
        QObject::connect(
            &widget, &Desk::VirtualWidget::beaconed, &m_context,
            [this, name = model + "/" + std::to_string(serialNumber) + "/"](unsigned char section) {
                m_beaconed.push_back(name + std::to_string(section));
            },
            Qt::DirectConnection);
        return widget;
    }

    /// Beacons a key, and returns what was beaconed.
    std::vector<std::string> GetBeaconed(Hardware::WidgetKey key)
    {
        WingBeacon::Get().beacon(key, Section);
        for (Desk::VirtualWidget* const widget : m_bus.GetWidgets())
            EXPECT_EQ(widget->CountOpen(), 0) << widget->GetData().model;
        return std::exchange(m_beaconed, {});
    }

    Desk::WidgetBus m_bus;
    std::vector<std::string> m_beaconed;
    QObject m_context;
};

std::vector<std::string> MakeBoth(const std::string& model)
{
    return {model + "/5/0", model + "/6/0"};
}

} // namespace

TEST_F(WingBeaconTest, ClassNameAndSlotAreAsApplicationsConnectThem)
{
    const QMetaObject& meta = WingBeacon::staticMetaObject;
    EXPECT_STREQ(meta.className(), "Hardware::WingBeacon");
    ASSERT_EQ(meta.methodCount() - meta.methodOffset(), 1);
    const QMetaMethod slot = meta.method(meta.methodOffset());
    EXPECT_EQ(slot.methodSignature(), "beacon(WidgetKey,UmWing::WingSections)");
    EXPECT_EQ(slot.parameterNames().join(','), "k,ws");
    EXPECT_EQ(slot.methodType(), QMetaMethod::Slot);
    EXPECT_EQ(slot.access(), QMetaMethod::Public);
}

TEST_F(WingBeaconTest, IsOneObjectWithoutParentAndWithoutFields)
{
    EXPECT_EQ(&WingBeacon::Get(), &WingBeacon::Get());
    EXPECT_EQ(WingBeacon::Get().parent(), nullptr);
    EXPECT_EQ(sizeof(WingBeacon), sizeof(QObject));
}

TEST_F(WingBeaconTest, FindsTheWingOfTheKindAndSerialNumber)
{
    for (const Kind& kind : SerialKinds)
        EXPECT_THAT(GetBeaconed(kind.kind << 16U | 6U),
                    ElementsAre(kind.model + ("/6/" + std::to_string(kind.section))));
}

TEST_F(WingBeaconTest, BeaconsOnlyThePlaybackWingOfThatSerialNumber)
{
    Add("PlaybackWing", 0x0123);
    EXPECT_THAT(GetBeaconed(65536 + 0x0123), ElementsAre("PlaybackWing/291/0"));
}

TEST_F(WingBeaconTest, BeaconsEveryWingOfThatSerialNumber)
{
    Add("PlaybackWing", 5);
    EXPECT_THAT(GetBeaconed(0x10005), ElementsAre("PlaybackWing/5/0", "PlaybackWing/5/0"));
}

TEST_F(WingBeaconTest, GoesThroughTheWingsByTheirPaths)
{
    TestSupport::SetConsole(9);
    Add("Vex4Tarnel", 8, L"a");
    Add("Vex4Tarnel", 7, L"zz");
    EXPECT_THAT(GetBeaconed(0xB0000), ElementsAre("Vex4Tarnel/8/0", "Vex4Tarnel/5/0",
                                                  "Vex4Tarnel/6/0", "Vex4Tarnel/7/0"));
}

TEST_F(WingBeaconTest, PassesEachSectionOn)
{
    Desk::VirtualWidget& wing = m_bus.Add({"Vex4Keystone", 9, {}});
    for (const auto section : {UmWing::WingSections_All, UmWing::WingSections_Left,
                               UmWing::WingSections_Right, UmWing::WingSections_Centre})
        WingBeacon::Get().beacon(wing.GetKey(), section);
    EXPECT_THAT(wing.GetBeacons(), ElementsAre(0, 1, 2, 3));
}

TEST_F(WingBeaconTest, KindsThatCannotBeaconDoNothing)
{
    TestSupport::SetConsole(7);
    const TestSupport::LogCapture log("Hardware", Os::Log::AllLevels);
    for (const unsigned kind : {0U, 3U, 7U, 8U, 9U, 10U, 15U, 16U, 19U, 20U, 129U, 132U, 255U})
        EXPECT_THAT(GetBeaconed(kind << 16U | 5U), IsEmpty()) << kind;
    EXPECT_THAT(log.GetTexts(), IsEmpty());
}

TEST_F(WingBeaconTest, AnAbsentWingIsIgnoredSilently)
{
    const TestSupport::LogCapture log("Hardware", Os::Log::AllLevels);
    for (const Kind& kind : SerialKinds)
        EXPECT_THAT(GetBeaconed(kind.kind << 16U | 7U), IsEmpty());
    m_bus.Find(L"virtual-1")->Unplug();
    EXPECT_THAT(GetBeaconed(0x10005), IsEmpty());
    EXPECT_THAT(log.GetTexts(), IsEmpty());
}

TEST_F(WingBeaconTest, AConsoleBeaconsAllItsSectionsWhateverTheSerialNumber)
{
    std::map<int, std::vector<std::string>> expected;
    for (const int productType : {10, 12, 13, 14})
        expected[productType] = MakeBoth("Vex4Bramble");
    expected[9] = MakeBoth("Vex4Tarnel");
    for (const int productType : {7, 8})
        expected[productType] = {"Vex4DeskPlayback/5/0", "Vex4DeskPlayback/6/0",
                                 "Vex4DeskProgrammer/5/0", "Vex4DeskProgrammer/6/0"};
    for (int productType = -1; productType <= 20; ++productType) {
        for (const unsigned kind : {11U, 12U, 13U, 14U}) {
            TestSupport::SetConsole(productType);
            EXPECT_EQ(GetBeaconed(kind << 16U | 0xABCDU), expected[productType]) << productType;
            TestSupport::SetConsole(productType, false);
            EXPECT_THAT(GetBeaconed(kind << 16U | 5U), IsEmpty()) << productType;
        }
    }
}

TEST_F(WingBeaconTest, HasNothingToDoWithTheMapper)
{
    // Never begun: the mapper knows no wing.
    EXPECT_THAT(Hardware::WingMapper::Get().connected_wings(), IsEmpty());
    EXPECT_THAT(GetBeaconed(0x10005), ElementsAre("PlaybackWing/5/0"));
}
