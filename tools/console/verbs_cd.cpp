// SPDX-License-Identifier: MIT

// The CD drive as hands work it, and the player as the application does.

#include <algorithm>
#include <stdexcept>

#include "common/cd_step.h"
#include "console/limits.h"
#include "console/verb.h"
#include "desk/cue_sheet.h"
#include "watch/cd_facts.h"
#include "watch/cd_transport.h"

namespace Console
{

namespace
{

using Tools::CdStep;

constexpr unsigned MicrosecondsPerMillisecond = 1000;

Desk::CdDrive& GetDrive(Session::Parts& parts)
{
    Desk::CdDrive* const drive = parts.desk.GetCdDrive();
    if (!drive)
        throw std::runtime_error("the desk has no CD drive");
    return *drive;
}

/// insert FILE, insert tracks SECONDS..., insert data SECONDS
Desk::CdDisc MakeDisc(const Words& words)
{
    if (words.size() < 2)
        return Tools::MakeVirtualDisc("");
    if (words[1] == "data") {
        CheckCount(words, 3, 3, "cd insert data SECONDS");
        return Desk::CdDisc::MakeData(ToInteger(words[2], 1, Limits::LongestTrack));
    }
    if (words[1] != "tracks") {
        CheckCount(words, 2, 2, "cd insert FILE");
        return Tools::MakeVirtualDisc(ToFile(words[1]));
    }
    CheckCount(words, 3, 2 + Desk::CdMaximumTracks, "cd insert tracks SECONDS...");
    std::vector<int> seconds;
    for (std::size_t word = 2; word < words.size(); ++word)
        seconds.push_back(ToInteger(words[word], 1, Limits::LongestTrack));
    return Desk::CdDisc::MakeAudio(seconds);
}

typedef std::function<void(Session::Parts&, Desk::CdDrive&, const Words&)> Hand;

void SetCondition(Session::Parts& parts, const std::string& name, bool isOn)
{
    parts.desk.SetCondition("cd/" + name, isOn ? "on" : "");
}

void SetDelay(Session::Parts& parts, Desk::CdDrive& drive, const Words& words)
{
    CheckCount(words, 2, 2, "cd slow MILLISECONDS");
    const int delay = ToInteger(words[1], 0, Limits::LongestDelay);
    drive.SetDelay(static_cast<unsigned>(delay) * MicrosecondsPerMillisecond);
    parts.desk.SetCondition("cd/slow", delay > 0 ? words[1] : "");
}

const std::map<std::string, Hand>& GetHands()
{
    typedef Session::Parts Parts;
    typedef Desk::CdDrive Drive;
    static const std::map<std::string, Hand> hands{
        {"insert",
         [](Parts& parts, Drive& drive, const Words& words) {
             drive.Insert(MakeDisc(words));
             drive.SetScratched(false); // the scratch was the other disc's
             SetCondition(parts, "scratch", false);
         }},
        {"eject",
         [](Parts&, Drive& drive, const Words& words) {
             CheckCount(words, 1, 1, "cd eject");
             drive.Eject();
         }},
        {"scratch",
         [](Parts& parts, Drive& drive, const Words& words) {
             CheckCount(words, 2, 2, "cd scratch on|off");
             drive.SetScratched(ToSwitch(words[1]));
             SetCondition(parts, "scratch", ToSwitch(words[1]));
         }},
        {"busy",
         [](Parts& parts, Drive& drive, const Words& words) {
             CheckCount(words, 2, 2, "cd busy on|off");
             drive.SetBusy(ToSwitch(words[1]));
             SetCondition(parts, "busy", ToSwitch(words[1]));
         }},
        {"slow", SetDelay},
        {"vanish",
         [](Parts& parts, Drive& drive, const Words& words) {
             CheckCount(words, 1, 1, "cd vanish");
             drive.Vanish();
             parts.desk.SetCondition("cd/plugged", "off");
         }},
        {"appear", [](Parts& parts, Drive& drive, const Words& words) {
             CheckCount(words, 1, 1, "cd appear");
             drive.Appear();
             parts.desk.SetCondition("cd/plugged", "");
             parts.player.Open(); // a new device
         }}};
    return hands;
}

void DoCd(Session::Parts& parts, const Words& words)
{
    CheckCount(words, 1, 2 + Desk::CdMaximumTracks, "cd VERB ...");
    Desk::CdDrive& drive = GetDrive(parts);
    if (const auto hand = GetHands().find(words[0]); hand != GetHands().end()) {
        hand->second(parts, drive, words);
        return;
    }
    const std::vector<CdStep> steps = Tools::ParseCdSteps(words);
    const std::string problem = Tools::FindCdProblem();
    if (!problem.empty())
        throw std::runtime_error(problem);
    for (const CdStep& step : steps) {
        Tools::DoCdStep(parts.player, step);
        parts.FollowCd(drive.GetState().status == Desk::CdDrive::Status::Playing);
        Tools::CheckCdStep(parts.player, step);
    }
}

} // namespace

void AddCdVerbs(VerbTable& table)
{
    table.Add("cd", DoCd,
              {{"cd insert [FILE]", "puts in the disc of a CUE sheet, or a sample disc"},
               {"cd insert tracks SECONDS...", "puts in a disc with audio tracks so long"},
               {"cd insert data SECONDS", "puts in a disc of data"},
               {"cd eject", "opens the tray"},
               {"cd scratch on|off", "the disc cannot be read"},
               {"cd busy on|off", "another program has the drive"},
               {"cd slow MILLISECONDS", "every call takes so much longer"},
               {"cd vanish|appear", "pulls the drive's plug, and plugs it in again"},
               {"cd play [TRACK | MM:SS[:FF]]", "the application plays"},
               {"cd pause|resume|stop|next|previous", "the player's other keys"},
               {"cd jog SECONDS", "plays from so much later, or earlier below 0"}});
}

} // namespace Console
