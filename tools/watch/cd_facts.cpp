// SPDX-License-Identifier: MIT
#include "watch/cd_facts.h"

#include <fcntl.h>
#include <linux/cdrom.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <system_error>

#include "desk/cue_sheet.h"

namespace Tools
{

namespace
{

constexpr const char* StatusNames[] = {"stopped", "playing", "paused"};

std::string GetErrorText(int error)
{
    return std::generic_category().message(error);
}

nlohmann::json ToJson(CdTime time)
{
    return {{"frames", time.GetRawFrameCount()}, {"text", ToText(time)}};
}

std::string GetText(const nlohmann::json& time)
{
    return time["text"].get<std::string>();
}

} // namespace

std::string FindCdProblem()
{
    const int drive = open(CdDrivePath, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (drive == -1)
        return std::string("no CD drive: ") + CdDrivePath + ": " + GetErrorText(errno);
    cdrom_tochdr header{};
    const int error = ioctl(drive, CDROMREADTOCHDR, &header) == -1 ? errno : 0;
    close(drive);
    return error == 0 ? "" : "no disc: " + GetErrorText(error);
}

nlohmann::json GetCdStatus(const CdPlayer& player)
{
    const CdPlayer::Status status = player.GetStatus();
    nlohmann::json json{{"status", StatusNames[status]}};
    if (status != CdPlayer::Status_Stopped)
        json["track"] = player.GetCurrentTrack();
    // The player has no times of a paused disc.
    if (status == CdPlayer::Status_Playing) {
        json["discTime"] = ToJson(player.GetCurrentDiscTime());
        json["trackTime"] = ToJson(player.GetCurrentTrackTime());
    }
    return json;
}

nlohmann::json GetCdContents(const CdPlayer& player)
{
    nlohmann::json tracks = nlohmann::json::array();
    for (int track = 1; track <= player.GetTrackCount(); ++track) {
        const CdTime length = player.GetTrackLength(track);
        // A disc may begin with another number; the drive then knows nothing of those before.
        if (player.GetTrackStart(track).GetRawFrameCount() != 0)
            tracks.push_back({{"number", track},
                              {"start", ToJson(player.GetTrackStart(track))},
                              {"length", ToJson(length)}});
    }
    return {{"tracks", tracks}, {"leadOut", ToJson(player.GetDiscLength())}};
}

nlohmann::json GetCdDrive()
{
    const std::string problem = FindCdProblem();
    if (!problem.empty())
        return {{"path", CdDrivePath}, {"problem", problem}};
    const CdPlayer player;
    nlohmann::json json = GetCdContents(player);
    json["path"] = CdDrivePath;
    return json;
}

std::string ToText(CdTime time)
{
    std::array<char, 48> text{};
    std::snprintf(text.data(), text.size(), "%s%02d:%02d:%02d", time.IsNegative() ? "-" : "",
                  time.GetHour() * 60 + time.GetMinute(), time.GetSecond(), time.GetFrame());
    return text.data();
}

std::string DescribeCdStatus(const nlohmann::json& status)
{
    std::string text = status["status"];
    if (status.contains("track"))
        text += ", track " + status["track"].dump();
    if (status.contains("discTime"))
        text += ", " + GetText(status["discTime"]) + " on the disc, " +
                GetText(status["trackTime"]) + " in the track";
    return text;
}

std::string DescribeCdContents(const nlohmann::json& contents)
{
    std::string text;
    for (const auto& track : contents["tracks"]) {
        std::array<char, 96> line{};
        std::snprintf(line.data(), line.size(), "track %2d  at %s  length %s\n",
                      track["number"].get<int>(), GetText(track["start"]).c_str(),
                      GetText(track["length"]).c_str());
        text += line.data();
    }
    return text + "lead-out  at " + GetText(contents["leadOut"]);
}

std::string DescribeCdDrive(const nlohmann::json& drive)
{
    if (drive.contains("problem"))
        return "none to play: " + drive["problem"].get<std::string>();
    return drive["path"].get<std::string>() + "  " + std::to_string(drive["tracks"].size()) +
           " tracks, lead-out at " + GetText(drive["leadOut"]);
}

Desk::CdDisc MakeVirtualDisc(const std::string& sheet)
{
    return sheet.empty() ? Desk::CdDisc::MakeAudio({180, 240, 200, 300, 150, 210})
                         : Desk::ReadCueSheet(sheet);
}

} // namespace Tools
