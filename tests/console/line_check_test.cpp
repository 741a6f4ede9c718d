// SPDX-License-Identifier: MIT

// Lines that are read before a desk runs.

#include "console/line_check.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "console/script.h"
#include "console/session.h"
#include "console/usage.h"
#include "support/bench_desk.h"

using testing::HasSubstr;
using testing::StartsWith;

namespace
{

Desk::DeskData MakeDesk()
{
    Desk::DeskData data = TestSupport::MakeBenchDesk(7);
    data.midiPorts = {{"Stage Keys"}, {"Show", false}};
    data.widgets.push_back({"ProgrammerWing", 9, L"programmer"});
    data.simulate = {"25,start=10:00:00:00"};
    return data;
}

std::string Check(const std::vector<std::string>& lines)
{
    Console::LineCheck check(MakeDesk());
    std::string problem;
    for (const std::string& line : lines)
        try {
            check.Check(line);
        } catch (const std::exception& error) {
            problem += (problem.empty() ? "" : "\n") + std::string(error.what());
        }
    return problem;
}

/// A line of each form.
const std::vector<std::string> Lines{
    "widget motor plug",
    "widget motor tap 3",
    "widget motor fader 1 20",
    "widget expansion encoder 0 -3",
    "widget programmer roll 3 -4",
    "widget trackball axis 2 1",
    "widget bar touch 0",
    "widget motor led 3 1",
    "widget panel open",
    "widget expansion configure 1 2 3",
    "widget motor stuck on",
    "wing motor led 71 1 on",
    "wing motor leds flash",
    "wing motor motor 1 200",
    "wing motor beacon all",
    "wing motor refresh",
    "midi \"Stage Keys\" unplug",
    "midi Show feed 90 3C 64",
    "midi show busy on",
    "midi Show full off",
    "midi Show hangup on",
    "midi Show kill",
    "input Show",
    "output Show",
    "receive on",
    "transmit off",
    "running-status on",
    "send F0 7D F7",
    "sim 2 create 30,start=01:00:00:00,backwards",
    "sim 2 start",
    "sim 2 stop",
    "sim 1 enable",
    "sim 1 disable",
    "sim 1 rate -24.5",
    "sim 1 format ntsc30",
    "sim 1 jump 05:06:07:08",
    "sim 1 destroy",
    "ltc ltc play " DATA_FOLDER "/ltc/timecode_25fps.flac loop",
    "ltc ltc stop",
    "ltc ltc dropout 0.5",
    "ltc ltc frame 01:02:03;04",
    "cd insert",
    "cd insert tracks 10 20",
    "cd insert data 30",
    "cd eject",
    "cd scratch on",
    "cd busy off",
    "cd slow 20",
    "cd vanish",
    "cd play 2",
    "cd next",
    "cd jog -2.5",
    "light vent=20/3",
    "light key",
    "light sleep",
    "light open",
    "light change",
    "light reset start",
    "setting blue=on desk=30",
    "adapter eth7 add",
    "adapter eth7 speed 1000000",
    "adapter eth7 rename eth8",
    "adapter eth8 flap 3",
    "adapter eth0 overrun",
    "serial /dev/ttyS0 slow 3",
    "serial /dev/ttyS0 stall",
    "serial /dev/ttyS0 plug",
    "log Hardware/Midi 31",
    "wait 0.5",
    "expect widgets/motor/leds/3 = on",
    "until \"timecode/sim 2/frames\" > 3 within 5",
    "show conditions/widget/motor/stuck",
};

} // namespace

TEST(LineCheck, PassesALineOfEachForm)
{
    EXPECT_EQ(Check(Lines), "");
    for (const std::vector<Console::VerbHelp>& group :
         {Console::Session::GetVerbs(), Console::GetScriptVerbs()})
        for (const Console::VerbHelp& help : group) {
            const std::string start = help.usage.substr(0, help.usage.find(' '));
            const Console::Usage usage(help.usage);
            EXPECT_TRUE(std::any_of(Lines.begin(), Lines.end(), [&](const std::string& line) {
                return line.starts_with(start);
            })) << help.usage;
            EXPECT_EQ(usage.GetParts().front().literals, std::vector{start});
        }
}

TEST(LineCheck, SaysWhatIsWrongWithALine)
{
    const struct {
        const char* line;
        const char* reason;
    } table[] = {
        {"dance", "there is no verb 'dance'; there are "},
        {"widgt motor plug", "there is no verb 'widgt'; the nearest is widget; "},
        {"widget moter plug", "there is no widget at 'moter'; the nearest is motor; "},
        {"widget motor jump", "widget knows no 'jump'; there are plug, "},
        {"widget motor", "a word is missing; there are plug, "},
        {"widget motor press", "it is: widget PATH press|release|tap BUTTON"},
        {"widget motor press 300", "Vex4ExternalPlayback has no button 300"},
        {"widget motor tap 300", "Vex4ExternalPlayback has no button 300"},
        {"wing motor leds blue", "it is: wing PATH leds off|on|flash|dim"},
        {"wing motor motor 1 256", "'256' is not a number from 0 to 255"},
        {"midi Nobody plug", "there is no MIDI port 'Nobody'; there are Stage Keys, Show"},
        {"midi Show feed 9", "'9' is not a row of hexadecimal bytes"},
        {"midi Show busy maybe", "it is: midi PORT busy on|off"},
        {"send", "it is: send HEX..."},
        {"send xx", "'xx' is not a row"},
        {"sim 2 start", "there is no simulated source 2; "},
        {"sim 1 rate nan", "'nan' is not a number from -1000 to 1000"},
        {"sim 1 format pal", "it is: sim NUMBER format film24|ebu25|ntsc30|smpte30"},
        {"sim 3 create pal", "'pal' is neither a rate"},
        {"sim 1 jump soon", "'soon' is no timecode"},
        {"ltc motor stop", "there is no LTC board at 'motor'; there is ltc"},
        {"ltc ltc play nowhere.wav", "there is no file 'nowhere.wav'"},
        {"ltc ltc frame 99:00:00:00", "'99:00:00:00' is not a time"},
        {"cd insert nowhere.cue", "CUE sheet 'nowhere.cue' cannot be read"},
        {"cd insert tracks", "it is: cd insert tracks SECONDS..."},
        {"cd insert data nan", "'nan' is not a number from 1 to 5999"},
        {"cd scratch maybe", "it is: cd scratch on|off"},
        {"cd slow", "it is: cd slow MILLISECONDS"},
        {"cd follow", "that is not for a desk"},
        {"cd dance", "'dance' is none of"},
        {"cd play soon", "'soon' is neither a track nor a time"},
        {"light lamp=5", "'lamp' is not one light; "},
        {"light wait=1", "'wait=1' is not a verb"},
        {"light", "it is: "},
        {"setting lamp=5", "there is no setting 'lamp'; there are left, "},
        {"adapter eth9 up", "there is no adapter 'eth9'; the nearest "},
        {"adapter eth0 flap 0", "'0' is not a number from 1 to 10000"},
        {"serial /dev/ttyS9 plug", "there is no serial line '/dev/ttyS9'; "},
        {"log Hardware/Mid 3", "there is no log context 'Hardware/Mid'; the nearest is "},
        {"wait nan", "'nan' is not a number from 0 to 1000000"},
        {"expect lights/WorkLigth/level != 3", "there is no 'lights/WorkLigth/level': 'lights' has "
                                               "no 'WorkLigth'; the nearest is WorkLight; "},
        {"expect cd/status", "a condition is PATH OPERATOR VALUE"},
        {"expect cd/track > nan", "'nan' is not a number"},
        {"until cd/stat = on within 5",
         "there is no 'cd/stat': 'cd' has no 'stat'; the nearest is status; "},
        {"show widgets/motor/leds/300",
         "there is no 'widgets/motor/leds/300': 'widgets/motor/leds' has no '300'; "},
        {"show", "it is: show PATH"},
        {"wait 1 2", "it is: wait SECONDS"},
        {"midi \"Show plug", "a quote does not end"},
    };
    for (const auto& [line, reason] : table)
        EXPECT_THAT(Check({line}), StartsWith(reason)) << line;
}

TEST(LineCheck, LinesCanNameWhatLinesBeforeMade)
{
    EXPECT_EQ(Check({"sim 7 create 25", "sim 7 start", "expect \"timecode/sim 7/rate\" = 25",
                     "adapter net add", "adapter net up", "adapter net rename other",
                     "expect adapters/other/up = true"}),
              "");
    EXPECT_THAT(Check({"expect \"timecode/sim 7/rate\" = 25"}), HasSubstr("there is no"));
}

TEST(LineCheck, ADeskWithoutADriveHasNoPathsOfOne)
{
    Desk::DeskData data = MakeDesk();
    data.cd.reset();
    Console::LineCheck check(data);
    EXPECT_THROW(check.Check("show cd/status"), std::invalid_argument);
    EXPECT_THROW(check.Check("cd play"), std::runtime_error);
}
