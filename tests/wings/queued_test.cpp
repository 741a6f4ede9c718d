// SPDX-License-Identifier: MIT
// Queued connections by name, to and from the mapper and the beacon.
#include <QCoreApplication>

#include "hardware/wing_beacon.h"
#include "widget/widget_manager.h"
#include "wings/wing_bench.h"

using Hardware::UmWing;
using Hardware::WidgetKey;
using Hardware::WingBeacon;
using Hardware::WingMapper;
using testing::ElementsAre;
using testing::IsEmpty;

namespace Report = Standalone::Report;

namespace
{

/// An application's slots, one for each of the mapper's signals.
class WingsQueuedReceiver : public QObject
{
    Q_OBJECT

public:
    std::vector<std::string> arrivals;

public Q_SLOTS:
    void onButton(Hardware::WidgetKey k, unsigned short p, unsigned short m, bool isPress)
    {
        Note("button", k, p, m, isPress);
    }
    void onMove(Hardware::WidgetKey k, unsigned short i, int v) { Note("move", k, i, v); }
    void onBall(Hardware::WidgetKey k, int dx, int dy, int dz) { Note("ball", k, dx, dy, dz); }
    void onLed(Hardware::WidgetKey k, unsigned short i, UmWing::LedState v)
    {
        Note("led", k, i, static_cast<int>(v));
    }
    void onWing(Hardware::WidgetKey k, bool isPresent) { Note("wing", k, isPresent); }
    void onConfiguration(Hardware::WidgetKey k, QRT_XWING_CONFIGURATION& cfg)
    {
        Note("configuration", k, cfg.version, int{cfg.surface[3]});
    }
    void onDrawer(Hardware::WidgetKey k, int i, int v) { Note("drawer", k, i, v); }

private:
    template <class... Parts> void Note(const char* name, const Parts&... parts)
    {
        std::string text = name;
        ((text += " " + std::to_string(parts)), ...);
        arrivals.push_back(text);
    }
};

/// An application's signals, one for each list of arguments of a slot.
class WingsQueuedSender : public QObject
{
    Q_OBJECT

Q_SIGNALS:
    void led(Hardware::WidgetKey k, unsigned short pid, unsigned short mid,
             Hardware::UmWing::LedState v);
    void allLeds(Hardware::WidgetKey k, Hardware::UmWing::LedState v);
    void section(Hardware::WidgetKey k, int s, Hardware::UmWing::LedState v);
    void fader(Hardware::WidgetKey k, unsigned short mid, int v);
    void surface(Hardware::WidgetKey k, unsigned char s, unsigned char i);
    void display(Hardware::WidgetKey k, unsigned char s);
    void wing(Hardware::WidgetKey k);
    void beacon(WidgetKey k, UmWing::WingSections ws);
    void device(const Hardware::WidgetMapData& mapData);
};

class WingsQueued : public TestSupport::WingBench
{
protected:
    static void Deliver() { QCoreApplication::sendPostedEvents(); }

    bool Receive(const char* signal, const char* slot)
    {
        return QObject::connect(&m_mapper, signal, &m_receiver, slot, Qt::QueuedConnection);
    }
    bool Send(const char* signal, const char* slot)
    {
        return QObject::connect(&m_sender, signal, &m_mapper, slot, Qt::QueuedConnection);
    }

    int m_count = 1;
    char m_name[5] = "test";
    char* m_arguments[2] = {m_name, nullptr};
    const QCoreApplication m_application{m_count, m_arguments};
    WingsQueuedReceiver m_receiver;
    WingsQueuedSender m_sender;
};

} // namespace

TEST_F(WingsQueued, EverySignalOfTheMapperArrives)
{
    ASSERT_TRUE(
        Receive(SIGNAL(button_press(Hardware::WidgetKey, unsigned short, unsigned short, bool)),
                SLOT(onButton(Hardware::WidgetKey, unsigned short, unsigned short, bool))));
    for (const char* const signal :
         {SIGNAL(fader_move(Hardware::WidgetKey, unsigned short, int)),
          SIGNAL(fader_motor_move(Hardware::WidgetKey, unsigned short, int)),
          SIGNAL(encoder_move(Hardware::WidgetKey, unsigned short, int))})
        ASSERT_TRUE(Receive(signal, SLOT(onMove(Hardware::WidgetKey, unsigned short, int))));
    ASSERT_TRUE(Receive(SIGNAL(trackball_move(Hardware::WidgetKey, int, int, int)),
                        SLOT(onBall(Hardware::WidgetKey, int, int, int))));
    ASSERT_TRUE(Receive(SIGNAL(led_change(Hardware::WidgetKey, unsigned short, UmWing::LedState)),
                        SLOT(onLed(Hardware::WidgetKey, unsigned short, UmWing::LedState))));
    ASSERT_TRUE(Receive(SIGNAL(wing_change(Hardware::WidgetKey, bool)),
                        SLOT(onWing(Hardware::WidgetKey, bool))));
    ASSERT_TRUE(Receive(SIGNAL(xwing_config(Hardware::WidgetKey, QRT_XWING_CONFIGURATION&)),
                        SLOT(onConfiguration(Hardware::WidgetKey, QRT_XWING_CONFIGURATION&))));
    ASSERT_TRUE(Receive(SIGNAL(keyboard_change(Hardware::WidgetKey, int, int)),
                        SLOT(onDrawer(Hardware::WidgetKey, int, int))));

    Q_EMIT m_mapper.button_press(7, 70, 1, true);
    Q_EMIT m_mapper.fader_move(7, 1, 2);
    Q_EMIT m_mapper.fader_motor_move(7, 3, 4);
    Q_EMIT m_mapper.encoder_move(7, 5, -6);
    Q_EMIT m_mapper.trackball_move(7, 1, 2, 3);
    Q_EMIT m_mapper.led_change(7, 8, UmWing::LedState_Flash);
    Q_EMIT m_mapper.wing_change(7, true);
    {
        QRT_XWING_CONFIGURATION configuration{};
        configuration.version = 9;
        configuration.surface[3] = 11;
        Q_EMIT m_mapper.xwing_config(7, configuration);
        configuration = {};
    }
    Q_EMIT m_mapper.keyboard_change(7, 0, 1);
    EXPECT_THAT(m_receiver.arrivals, IsEmpty());
    Deliver();
    EXPECT_THAT(m_receiver.arrivals,
                ElementsAre("button 7 70 1 1", "move 7 1 2", "move 7 3 4", "move 7 5 -6",
                            "ball 7 1 2 3", "led 7 8 2", "wing 7 1", "configuration 7 9 11",
                            "drawer 7 0 1"));
}

TEST_F(WingsQueued, EverySlotOfTheMapperWorksItsWing)
{
    WingMapper::Begin();
    Desk::VirtualWidget& pixi = Add("Vex4ExternalPlayback");
    Desk::VirtualWidget& expansion = Add("ExpansionWing");
    const WidgetKey key = pixi.GetKey();
    ASSERT_TRUE(Send(SIGNAL(led(Hardware::WidgetKey, unsigned short, unsigned short,
                                Hardware::UmWing::LedState)),
                     SLOT(set_led(Hardware::WidgetKey, unsigned short, unsigned short,
                                  Hardware::UmWing::LedState))));
    ASSERT_TRUE(Send(SIGNAL(allLeds(Hardware::WidgetKey, Hardware::UmWing::LedState)),
                     SLOT(set_led_all(Hardware::WidgetKey, Hardware::UmWing::LedState))));
    ASSERT_TRUE(Send(SIGNAL(section(Hardware::WidgetKey, int, Hardware::UmWing::LedState)),
                     SLOT(set_led_section(Hardware::WidgetKey, int, Hardware::UmWing::LedState))));
    ASSERT_TRUE(Send(SIGNAL(fader(Hardware::WidgetKey, unsigned short, int)),
                     SLOT(set_fader(Hardware::WidgetKey, unsigned short, int))));
    ASSERT_TRUE(Send(SIGNAL(surface(Hardware::WidgetKey, unsigned char, unsigned char)),
                     SLOT(set_xwing_surface(Hardware::WidgetKey, unsigned char, unsigned char))));
    ASSERT_TRUE(Send(SIGNAL(display(Hardware::WidgetKey, unsigned char)),
                     SLOT(clear_xwing_display(Hardware::WidgetKey, unsigned char))));
    ASSERT_TRUE(Send(SIGNAL(wing(Hardware::WidgetKey)), SLOT(refresh_state(Hardware::WidgetKey))));

    Q_EMIT m_sender.allLeds(key, UmWing::LedState_Dim);
    Q_EMIT m_sender.led(key, 70, 1, UmWing::LedState_Flash);
    Q_EMIT m_sender.fader(key, 1, 77);
    Q_EMIT m_sender.wing(key);
    Q_EMIT m_sender.surface(expansion.GetKey(), 2, 5);
    Q_EMIT m_sender.display(expansion.GetKey(), 2);
    EXPECT_THAT(pixi.GetLog(), IsEmpty());
    Deliver();
    EXPECT_THAT(pixi.GetLog(), ElementsAre(Report::Output(Report::SetAllLed{3}),
                                           Report::Output(Report::SetLed{0, 2}), testing::_,
                                           Report::Output(Report::Refresh{})));
    EXPECT_EQ(pixi.GetFader(0), 77);
    EXPECT_EQ(expansion.GetSurface(2), 5);
    Q_EMIT m_sender.section(key, 0, UmWing::LedState_On);
    Deliver();
    EXPECT_EQ(pixi.GetLed(0), UmWing::LedState_On);
}

TEST_F(WingsQueued, TheSlotOfTheBeaconWorksItsWing)
{
    Desk::VirtualWidget& keystone = Add("Vex4Keystone");
    ASSERT_TRUE(QObject::connect(&m_sender, SIGNAL(beacon(WidgetKey, UmWing::WingSections)),
                                 &WingBeacon::Get(), SLOT(beacon(WidgetKey, UmWing::WingSections)),
                                 Qt::QueuedConnection));
    Q_EMIT m_sender.beacon(keystone.GetKey(), UmWing::WingSections_Right);
    EXPECT_THAT(keystone.GetBeacons(), IsEmpty());
    Deliver();
    EXPECT_THAT(keystone.GetBeacons(), ElementsAre(UmWing::WingSections_Right));
}

TEST_F(WingsQueued, TheMapperHearsOfDevices)
{
    Add("Vex4Keystone");
    const auto devices =
        Hardware::WidgetManager::GetClassMapData(GUID_DEVINTERFACE_QRTUMVNEXT_KEYSTONE);
    ASSERT_EQ(devices.size(), 1U);
    ASSERT_TRUE(
        Send(SIGNAL(device(Hardware::WidgetMapData)), SLOT(wing_add(Hardware::WidgetMapData))));
    Q_EMIT m_sender.device(*devices.begin());
    Deliver();
    EXPECT_THAT(m_recorder.Take(), ElementsAre("wing_change 393217 1"));
    QObject::disconnect(&m_sender, nullptr, &m_mapper, nullptr);
    ASSERT_TRUE(
        Send(SIGNAL(device(Hardware::WidgetMapData)), SLOT(wing_remove(Hardware::WidgetMapData))));
    Q_EMIT m_sender.device(*devices.begin());
    Deliver();
    EXPECT_THAT(m_recorder.Take(), ElementsAre("wing_change 393217 0"));
}

TEST_F(WingsQueued, AnEventOfTheDriverIsRefused)
{
    Hardware::WidgetSignaller signaller;
    EXPECT_FALSE(QObject::connect(&signaller, SIGNAL(widgetRead(Hardware::WidgetSignaller::Event)),
                                  &m_mapper, SLOT(wing_read(Hardware::WidgetSignaller::Event)),
                                  Qt::QueuedConnection));
}

#include "queued_test.moc"
