// SPDX-License-Identifier: MIT

// Every verb, by what it brings about.

#include <algorithm>
#include <fstream>

#include "console/console_bench.h"
#include "support/wait.h"

namespace
{

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

/// On a console that has a touch button bar.
class WingVerbs : public TestSupport::ConsoleBench
{
protected:
    WingVerbs() : ConsoleBench(7) {}
};
class MidiVerbs : public TestSupport::ConsoleBench
{
};
class TimecodeVerbs : public TestSupport::ConsoleBench
{
};
class CdVerbs : public TestSupport::ConsoleBench
{
};
class LightVerbs : public TestSupport::ConsoleBench
{
};
class DeskVerbs : public TestSupport::ConsoleBench
{
};

} // namespace

TEST_F(WingVerbs, HandsAreHeardByTheApplication)
{
    Expect("widget motor press 3");
    Expect("widget motor release 3");
    Expect("widget motor tap 4");
    Expect("widget motor fader 2 200");
    Expect("widget pixi encoder 1 -3");
    Expect("widget trackball axis 1 5");
    Expect("widget bar touch 4");
    Expect("widget bar untouch 4");
    Expect("widget panel open");
    EXPECT_THAT(GetEvents("wing Vex4ExternalPlayback/3"),
                ElementsAre(HasSubstr("attached"), HasSubstr("button 70 of master 4 pressed"),
                            HasSubstr("button 70 of master 4 released"),
                            HasSubstr("button 70 of master 5 pressed"),
                            HasSubstr("button 70 of master 5 released"),
                            HasSubstr("motor fader 2 at 200")));
    EXPECT_THAT(GetEvents("wing Vex4Pixi/5"), Contains(HasSubstr("by -3")));
    EXPECT_THAT(GetEvents("wing TrackballWidget/6"), Contains(HasSubstr("trackball by 0, 5")));
    EXPECT_THAT(GetEvents("wing Vex4TopBox/7"), Contains(HasSubstr("pressed")));
    EXPECT_THAT(GetEvents("wing Vex4DeskPlayback/4"), Contains(HasSubstr("drawer opened")));
}

TEST_F(WingVerbs, TheApplicationWorksWings)
{
    Expect("wing motor led 70 4 flash");
    Expect("expect widgets/motor/leds/3 = flash");
    Expect("wing motor leds on");
    Expect("expect widgets/motor/leds/0 = on");
    Expect("wing motor motor 3 77");
    Expect("expect widgets/motor/motors/2 = 77");
    Expect("wing motor beacon all");
    Expect("expect widgets/motor/beacons = 1");
    Expect("widget panel fader 2 50");
    Expect("wing panel refresh");
    EXPECT_TRUE(TestSupport::WaitUntil(
        [&] { return GetEvents("wing Vex4DeskPlayback/4: motor fader 2 at 50").size() == 2; }));
}

TEST_F(WingVerbs, WingsComeAndGo)
{
    Expect("widget motor unplug");
    Expect("expect widgets/motor/plugged = false");
    EXPECT_EQ(Do("wing motor leds on"), "the application has no wing 'motor'");
    Expect("widget motor plug");
    Expect("expect widgets/motor/attached = true");
    Expect("widget motor stuck on");
    Expect("expect conditions/widget/motor/stuck = on");
    Expect("wing motor leds dim");
    Expect("expect widgets/motor/leds/0 != dim");
    Expect("widget motor stuck off");
    Expect("expect conditions/widget/motor/stuck = nothing");
    Expect("wing motor leds dim");
    Expect("expect widgets/motor/leds/0 = dim");
}

TEST_F(WingVerbs, WhatMakesNoSenseIsRefused)
{
    EXPECT_THAT(Do("widget nowhere plug"),
                StartsWith("there is no widget at 'nowhere'; there are bar, "));
    EXPECT_THAT(Do("widget moter plug"),
                StartsWith("there is no widget at 'moter'; the nearest is motor; "));
    EXPECT_EQ(Do("widget motor jump"), "there is no verb 'jump'");
    EXPECT_EQ(Do("widget motor press"), "press takes one number");
    EXPECT_EQ(Do("widget motor press x"), "only numbers follow the verb");
    EXPECT_EQ(Do("widget motor"), "it is: widget PATH VERB [NUMBER...]");
    EXPECT_EQ(Do("widget motor stuck maybe"), "'maybe' is neither on nor off");
    EXPECT_EQ(Do("wing motor dance"), "a wing knows no 'dance'");
    EXPECT_EQ(Do("wing motor leds blue"), "'blue' is none of dim, flash, off, on");
    EXPECT_EQ(Do("wing motor motor 1 256"), "'256' is not a number from 0 to 255");
    EXPECT_THAT(Do("dance"), StartsWith("there is no verb 'dance'; there are adapter, "));
    EXPECT_THAT(Do("wiget motor plug"), HasSubstr("; the nearest is widget; "));
    EXPECT_EQ(Console::Session::FindVerb("Expect"), "expect");
    EXPECT_EQ(Do(""), "there is no verb");
}

TEST_F(WingVerbs, NamesCountWhateverTheirCase)
{
    Expect("Widget MOTOR press 3");
    Expect("wing Motor leds on");
    Expect("expect Widgets/MOTOR/leds/0 = on");
    Expect("show lights/worklight/LEVEL");
    EXPECT_THAT(GetShown().back(), StartsWith("lights/WorkLight/level = "));
}

TEST_F(WingVerbs, WhatAWidgetDoesNotHaveIsRefused)
{
    EXPECT_EQ(Do("widget motor press 300"),
              "Vex4ExternalPlayback has no button 300, the last one is 59");
    EXPECT_EQ(Do("widget motor press 65539"), // not button 3
              "Vex4ExternalPlayback has no button 65539, the last one is 59");
    EXPECT_EQ(Do("widget motor tap -1"),
              "Vex4ExternalPlayback has no button -1, the last one is 59");
    EXPECT_EQ(Do("widget motor press 99999999999"), "'99999999999' is out of range");
    EXPECT_EQ(Do("widget bar press 1"), "Vex4TopBox has no keys: its buttons are touched");
    EXPECT_EQ(Do("widget expansion configure"), "configure takes 1 to 256 bytes");
    EXPECT_EQ(Do("widget motor fader 10 5"),
              "Vex4ExternalPlayback has no fader 10, the last one is 9");
    EXPECT_EQ(Do("widget motor fader 1 256"), "256 is no position, which is 0 to 255");
    EXPECT_EQ(Do("widget motor encoder 0 1"), "Vex4ExternalPlayback has no encoder");
    EXPECT_EQ(Do("widget motor led 3 300"), "300 is no LED's state, which is 0 to 255");
    EXPECT_EQ(Do("widget motor roll 1 1"), "Vex4ExternalPlayback has no trackball built in");
    EXPECT_EQ(Do("widget motor axis 0 1"),
              "Vex4ExternalPlayback has no axes: it is not the console's trackball");
    EXPECT_EQ(Do("widget trackball axis 3 1"), "3 is no axis, which is 0 to 2");
    EXPECT_EQ(Do("widget motor touch 1"), "Vex4ExternalPlayback has no touch buttons");
    EXPECT_EQ(Do("widget motor open"), "Vex4ExternalPlayback has no keyboard drawer");
    EXPECT_EQ(Do("widget motor configure 1"), "Vex4ExternalPlayback has no displays to configure");
    EXPECT_EQ(Do("widget expansion configure 256"), "256 is no byte, which is 0 to 255");
    EXPECT_THAT(Do("wing motor led 70 300 on"),
                StartsWith("Vex4ExternalPlayback/3 has no LED of part 70 and master 300; "));
    EXPECT_THAT(Do("wing motor motor 200 5"),
                StartsWith("Vex4ExternalPlayback/3 has no motor fader of master 200; "));
    EXPECT_THAT(GetEvents("wing Vex4ExternalPlayback/3"), ElementsAre(HasSubstr("attached")));
}

TEST_F(MidiVerbs, BytesComeInAndGoOut)
{
    Expect("midi \"Stage Keys\" feed 90 3C 64 F0 7D 01 F7");
    Expect("until midi/received = 2");
    EXPECT_THAT(GetEvents("midi Stage Keys: note"), ElementsAre(HasSubstr("note on ch 1 C4")));
    Expect("send 91 3C 40");
    Expect("until midi/sent = 3");
    Expect("send 91 3D 40"); // running status
    Expect("until midi/sent = 5");
    Expect("running-status off");
    Expect("send 91 3E 40");
    Expect("until midi/sent = 8");
    Expect("send F0 7D 01 F7");
    Expect("until midi/sent = 12");
    EXPECT_THAT(GetEvents("midi Stage Keys out"),
                ElementsAre(HasSubstr("91 3C 40, note on ch 2"), HasSubstr("3D 40"),
                            HasSubstr("91 3E 40, note on"), HasSubstr("F0 7D 01 F7")));
}

TEST_F(MidiVerbs, TheStatusGoesOutAgainWhereAReceiverMayNotKnowIt)
{
    Expect("send 91 3C 40");
    Expect("send F0 7D 01 F7");
    Expect("until midi/sent = 7");
    Expect("send 91 3D 40");
    EXPECT_THAT(
        GetEvents("midi Stage Keys out"),
        ElementsAre(HasSubstr("91 3C 40"), HasSubstr("F0 7D 01 F7"), HasSubstr("91 3D 40")));
    Expect("midi Show plug");
    Expect("output Show");
    Expect("send 91 3E 40");
    Expect("send 91 3F 40");
    EXPECT_THAT(GetEvents("midi Show out"),
                ElementsAre(HasSubstr("91 3E 40"), HasSubstr(": 3F 40")));
}

TEST_F(MidiVerbs, PortsAreChosenAndSwitched)
{
    Expect("midi Show plug");
    Expect("input Show");
    Expect("output Show");
    Expect("expect midi/input = Show");
    Expect("midi Show feed FA");
    Expect("until midi/received = 1");
    Expect("transmit off");
    EXPECT_EQ(Do("send F8"), "transmission is off");
    Expect("transmit on");
    Expect("send F8");
    Expect("until midi/sent = 1");
    Expect("transmit off");
    Expect("receive off");
    Expect("expect midi/receive = off");
    EXPECT_EQ(Do("midi Show feed F8"), "nobody has the port open");
}

TEST_F(MidiVerbs, PortsFail)
{
    Expect("midi \"Stage Keys\" full on");
    Expect("expect \"conditions/midi/Stage Keys/full\" = on");
    EXPECT_EQ(Do("send F0 01 F7"), "the port did not take it");
    EXPECT_EQ(Do("send 90 3C 40"), "the port did not take it");
    Expect("midi \"Stage Keys\" full off");
    Expect("send 90 3C 40");
    Expect("send F0 01 F7");
    Expect("midi \"Stage Keys\" kill");
    EXPECT_EQ(Do("send F0 01 F7"), "the port did not take it");
    Expect("midi \"Stage Keys\" plug");
    Expect("expect \"conditions/midi/Stage Keys/dead\" = nothing");
    Expect("send F0 01 F7");
    Expect("midi \"Stage Keys\" busy on");
    Expect("transmit off");
    Expect("transmit on");
    EXPECT_EQ(Do("send F0 01 F7"), "the port did not take it");
    Expect("midi \"Stage Keys\" busy off");
    Expect("midi \"Stage Keys\" hangup on");
    Expect("midi \"Stage Keys\" hangup off");
    Expect("midi \"Stage Keys\" unplug");
    Expect("expect \"conditions/midi/Stage Keys/plugged\" = off");
    EXPECT_EQ(Do("midi \"Stage Keys\" feed F8"), "the port is not plugged");
    Expect("receive off");
    Expect("receive on");
    EXPECT_THAT(GetEvents("midi Stage Keys: cannot be opened; it is tried again and again"),
                SizeIs(1));
    Expect("midi Show plug");
    Expect("midi Show busy on");
    Expect("input Show");
    EXPECT_THAT(GetEvents("midi Show: cannot be opened"), SizeIs(1));
    EXPECT_EQ(Do("midi Nobody plug"), "there is no MIDI port 'Nobody'; there are Stage Keys, Show");
    EXPECT_EQ(Do("send 9"), "'9' is no row of hexadecimal bytes");
    EXPECT_EQ(Do("midi Show dance"), "a MIDI port knows no 'dance'");
}

TEST_F(TimecodeVerbs, SourcesAreMadeAndWorked)
{
    Expect("until \"timecode/sim 1/frames\" > 2");
    Expect("sim 2 create 30,start=01:00:00:00,backwards");
    Expect("until \"timecode/sim 2/direction\" = backwards");
    Expect("sim 2 stop");
    Expect("sim 2 rate 24");
    Expect("sim 2 format ntsc30");
    Expect("sim 2 jump 05:06:07:08");
    Expect("sim 2 start");
    Expect("until \"timecode/sim 2/direction\" = forwards");
    EXPECT_THAT(Get("timecode/sim 2/frame").get<std::string>(), testing::StartsWith("05:06:"));
    Expect("sim 2 disable");
    Expect("sim 2 enable");
    Expect("sim 2 destroy");
    Expect("expect \"timecode/sim 2/frame\" = nothing");
    EXPECT_EQ(Do("sim 2 start"), "there is no simulated source 2");
    EXPECT_EQ(Do("sim 2 destroy"), "there is no simulated source 2");
    EXPECT_EQ(Do("sim 1 create 25"), "there is a source 1 already");
    EXPECT_EQ(Do("sim 1 dance"), "a simulated source knows no 'dance'");
    EXPECT_EQ(Do("sim 1 rate"), "it is: sim NUMBER rate FRAMES-PER-SECOND");
    for (const char* const word : {"soon", "-1:00:00:00", "01:02:03:04xyz"})
        EXPECT_EQ(Do("sim 1 jump " + std::string(word)),
                  "'" + std::string(word) + "' is no timecode HH:MM:SS:FF");
    for (const char* const time : {"24:00:00:00", "00:60:00:00", "00:00:60:00"})
        EXPECT_EQ(Do("sim 1 jump " + std::string(time)),
                  "'" + std::string(time) + "' is no time of a day");
    EXPECT_EQ(Do("sim 2 create 25,start=99:00:00:00"), "'99:00:00:00' is no time of a day");
}

TEST_F(TimecodeVerbs, BoardsHearAudioAndSingleFrames)
{
    Expect("ltc ltc frame 01:02:03:04");
    Expect("until \"timecode/ltc 0/frame\" = 01:02:03:04");
    Expect("ltc ltc frame 01:02:04;05");
    Expect("until \"timecode/ltc 0/dropFrame\" = true");
    EXPECT_EQ(Do("ltc ltc dropout 1"), "no timecode plays into 'ltc'");
    Expect("ltc ltc play " DATA_FOLDER "/ltc/timecode_25fps.flac loop");
    Expect("until \"timecode/ltc 0/frames\" > 4");
    Expect("ltc ltc dropout 0.8");
    Expect("until \"timecode/ltc 0/lost\" > 0 within 20");
    Expect("ltc ltc stop");
    for (const char* const verb : {"play x.wav", "stop", "dropout 1", "frame 01:02:03:04"})
        EXPECT_EQ(Do("ltc motor " + std::string(verb)),
                  "there is no LTC board at 'motor'; there is ltc");
    EXPECT_EQ(Do("ltc nowhere stop"), "there is no LTC board at 'nowhere'; there is ltc");
    EXPECT_THAT(Do("ltc ltc play nowhere.wav"), HasSubstr("nowhere.wav"));
    EXPECT_EQ(Do("ltc ltc play /dev/zero"), "'/dev/zero' is no file");
    EXPECT_EQ(Do("ltc ltc dance"), "an LTC board knows no 'dance'");
    Expect("widget ltc unplug");
    EXPECT_EQ(Do("ltc ltc frame 01:02:03:04"), "the board is not plugged");
}

TEST_F(CdVerbs, DiscsPlay)
{
    Expect("expect cd/status = stopped");
    Expect("cd play");
    Expect("expect cd/status = playing");
    Expect("until timecode/cd/frames > 2");
    Expect("cd next");
    Expect("expect cd/track = 2");
    Expect("cd previous");
    Expect("expect cd/track = 1");
    Expect("cd play 2");
    Expect("cd pause");
    Expect("expect cd/status = paused");
    Expect("cd resume");
    Expect("cd play 00:30");
    Expect("cd jog 10");
    EXPECT_THAT(Get("cd/position").get<std::string>(), testing::StartsWith("00:4"));
    Expect("cd stop");
    Expect("expect cd/status = stopped");
    EXPECT_EQ(Do("cd jog 10"), "nothing plays to jog from");
    EXPECT_EQ(Do("cd play 9"), "there is no track 9, the last one is 2");
    EXPECT_EQ(Do("cd pause"), "nothing plays");
    EXPECT_EQ(Do("cd play 90:00"), "the disc goes from 00:00:00 to 07:02:00");
}

TEST_F(CdVerbs, DrivesFail)
{
    Expect("cd eject");
    Expect("expect cd/disc = false");
    EXPECT_THAT(Do("cd play"), HasSubstr("no disc"));
    Expect("cd insert tracks 60 70 80");
    Expect("cd play 3");
    Expect("cd scratch on");
    Expect("expect conditions/cd/scratch = on");
    EXPECT_NE(Do("cd next"), "");
    Expect("cd scratch off");
    Expect("cd busy on");
    EXPECT_NE(Do("cd next"), "");
    Expect("cd busy off");
    Expect("cd slow 5");
    Expect("expect conditions/cd/slow = 5");
    Expect("cd stop");
    Expect("cd slow 0");
    Expect("cd insert data 60");
    EXPECT_EQ(Do("cd play"), "the drive does not play");
    Expect("cd scratch on");
    Expect("cd eject");
    EXPECT_EQ(Do("cd eject now"), "it is: cd eject");
    EXPECT_EQ(Do("cd insert data"), "it is: cd insert data SECONDS");
    Expect("cd insert");
    Expect("expect conditions/cd/scratch = nothing"); // it was the other disc's
    Expect("cd play 4");
    Expect("cd vanish");
    Expect("expect conditions/cd/plugged = off");
    EXPECT_THAT(Do("cd play"), HasSubstr("no CD drive"));
    Expect("cd appear");
    Expect("cd play 2");
    Expect("expect cd/track = 2");
    EXPECT_NE(Do("cd dance"), "");
}

TEST_F(CdVerbs, ItsTimecodeEndsWithTheDisc)
{
    Expect("cd play");
    Expect("until timecode/cd/frames > 0");
    Expect("cd eject");
    Expect("wait 0.1");
    EXPECT_THAT(GetEvents("timecode cd"), Contains("timecode cd: removed"));
}

TEST_F(LightVerbs, LevelsAreSetAndFaded)
{
    Expect("light reset"); // the console's start may not have come to its end
    Expect("light vent=25");
    Expect("expect lights/VentLight/level = 25");
    Expect("light work=5");
    Expect("light work=75/1000");
    Expect("expect lights/WorkLight/level < 75"); // it is on its way
    Expect("light reset");
    Expect("light work=75/0.2"); // from 5 or a little more: some steps may have been made
    Expect("until lights/WorkLight/level > 57");
    Expect("expect lights/WorkLight/level < 60"); // a step short, as all fades
    Expect("light left=40");
    Expect("until serial/ttyS0/backlight = 102");
    Expect("expect displays/left = 40");
    EXPECT_EQ(Do("light work=200"), "'200' is not a level from 0 to 100");
    EXPECT_EQ(Do("light wait=1"), "'wait=1' is no verb: a line of its own waits");
}

TEST_F(LightVerbs, TheKeyTheScreenSaverAndTheDrawer)
{
    Expect("light reset"); // the console's start may not have come to its end
    Expect("setting work=60 drawer=70");
    Expect("light apply");
    Expect("expect lights/WorkLight/level = 60");
    Expect("light key");
    Expect("expect lights/WorkLight/level = 0");
    Expect("expect settings/work-on = off");
    Expect("light sleep");
    Expect("expect screenSaver = on");
    Expect("expect widgets/expansion/asleep = true");
    Expect("light wake");
    Expect("expect screenSaver = off");
    Expect("expect widgets/expansion/asleep = false");
    Expect("light close");
    Expect("light open");
    Expect("until lights/KeyboardDrawerLight/level > 60");
    Expect("setting leds=33");
    Expect("light change");
    Expect("expect lights/WingLeds/level = 33");
    Expect("light reset");
    Expect("light sleep");
    Expect("light end");
    Expect("expect screenSaver = off");
    Expect("expect lights/WorkLight/level = 0");
    Expect("light start");
    Expect("until lights/WhiteDeskLight/level > 90");
    EXPECT_NE(Do("setting leds=bright"), "");
}

TEST_F(DeskVerbs, AdaptersLightTheLinks)
{
    Expect("until widgets/ltc/links/consoleGigabit = true");
    Expect("expect widgets/ltc/links/fixtureGigabit = false");
    Expect("adapter eth0 down");
    Expect("until widgets/ltc/links/consoleActive = false");
    Expect("adapter eth1 speed 1000000000");
    Expect("until widgets/ltc/links/fixtureGigabit = true");
    Expect("adapter eth0 flap 3");
    Expect("adapter eth0 overrun");
    Expect("until widgets/ltc/links/consoleActive = true");
    Expect("adapter eth1 remove");
    Expect("until widgets/ltc/links/fixtureActive = false");
    Expect("adapter eth2 add");
    EXPECT_EQ(Do("adapter eth2 rename eth3"),
              "the kernel renames no network adapter that is up, take it down first: 'eth2'");
    Expect("adapter eth2 down");
    Expect("adapter eth2 rename eth3");
    Expect("expect adapters/eth3/up = false");
    EXPECT_NE(Do("adapter eth9 up"), "");
    EXPECT_EQ(Do("adapter eth0 dance"), "there is no verb 'dance'");
}

TEST_F(DeskVerbs, SerialLinesFail)
{
    Expect("serial /dev/ttyS0 slow 1");
    Expect("expect conditions/serial/ttyS0/slow = 1");
    Expect("light left=10");
    Expect("until serial/ttyS0/last = \"unit 0: adjuster 5 set to 25\"");
    Expect("serial /dev/ttyS0 slow 0");
    Expect("serial /dev/ttyS0 stall");
    Expect("expect conditions/serial/ttyS0/stalled = on");
    Expect("serial /dev/ttyS0 resume");
    Expect("expect conditions/serial/ttyS0/stalled = nothing");
    Expect("light left=90");
    Expect("until serial/ttyS0/backlight = 229");
    Expect("serial /dev/ttyS1 slow 3");
    Expect("serial /dev/ttyS1 unplug");
    EXPECT_EQ(Do("serial /dev/ttyS1 stall"), "the line is not plugged");
    Expect("expect conditions/serial/ttyS1/plugged = off");
    Expect("light right=20");
    Expect("serial /dev/ttyS1 plug");
    Expect("expect conditions/serial/ttyS1/plugged = nothing");
    Expect("expect conditions/serial/ttyS1/slow = nothing"); // a fresh line
    EXPECT_THAT(
        Do("serial /dev/ttyS9 plug"),
        StartsWith("there is no serial line '/dev/ttyS9'; the nearest are /dev/ttyS0 and "));
    EXPECT_EQ(Do("serial /dev/ttyS0 dance"), "a serial line knows no 'dance'");
}

TEST_F(DeskVerbs, APanelHearsNothingBehindAPlugThatWasPulled)
{
    Expect("light left=40");
    Expect("until serial/ttyS0/backlight = 102");
    Expect("serial /dev/ttyS0 unplug");
    Expect("serial /dev/ttyS0 plug");
    Expect("light left=80"); // to the line that the library has open, which is no more
    Expect("light right=80");
    Expect("until serial/ttyS1/backlight = 204");
    Expect("expect serial/ttyS0/backlight = 102");
}

TEST_F(DeskVerbs, LogMasksAreSet)
{
    Expect("log Hardware/Midi 31");
    EXPECT_EQ(Do("log Hardware/Midi 32"), "'32' is not a number from 0 to 31");
    EXPECT_THAT(Do("log Nowhere 3"), StartsWith("there is no log context 'Nowhere'; there are "));
    EXPECT_THAT(Do("log Hardware/Mid 3"), HasSubstr("the nearest is Hardware/Midi;"));
}
