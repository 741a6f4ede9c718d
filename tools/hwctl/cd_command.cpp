// SPDX-License-Identifier: MIT
#include <cstdio>
#include <memory>

#include "common/cd_step.h"
#include "desk/cd_drive.h"
#include "hwctl/cd_facts.h"
#include "hwctl/cd_follow.h"
#include "hwctl/command.h"
#include "hwctl/exit_code.h"

namespace Hwctl
{

namespace
{

using Tools::CdStep;

/// In place of a sheet: the virtual drive is empty.
constexpr char NoDisc[] = "none";

struct Arguments {
    std::vector<std::string> words;
    std::string disc;
    bool json = false;
};

/// Does steps one after another and prints what came of each. The player tells of no failure, so
/// what can be known before is looked at before, and the drive is asked afterwards.
class CdWork
{
public:
    explicit CdWork(bool json) : m_json(json), m_printer(json, stdout) {}

    void Do(const CdStep& step)
    {
        const std::string problem = FindCdProblem();
        if (!problem.empty())
            throw CommandError(problem);
        switch (step.verb) {
        case CdStep::Verb::Status:
            break;
        case CdStep::Verb::Contents:
            Print(GetCdContents(m_player), DescribeCdContents);
            return;
        case CdStep::Verb::Follow:
            Follow(step.seconds);
            return;
        default:
            Work(step);
            break;
        }
        Print(GetCdStatus(m_player), DescribeCdStatus);
    }

private:
    template <class Describe> void Print(const nlohmann::json& facts, Describe describe) const
    {
        std::printf("%s\n", m_json ? ToLine(facts).c_str() : describe(facts).c_str());
        std::fflush(stdout);
    }

    void Follow(double seconds)
    {
        const std::size_t frames = FollowCd(m_player, seconds, m_printer);
        m_printer.PrintSummary(std::to_string(frames) + " frames", {{"frames", frames}});
    }

    void Work(const CdStep& step)
    {
        switch (step.verb) {
        case CdStep::Verb::Play:
            m_player.Play();
            break;
        case CdStep::Verb::PlayTrack:
            PlayTrack(step.number);
            break;
        case CdStep::Verb::PlayTime:
            PlayTime(step.number);
            break;
        case CdStep::Verb::Next:
            m_player.NextTrack();
            break;
        case CdStep::Verb::Previous:
            m_player.PreviousTrack();
            break;
        case CdStep::Verb::Jog:
            Jog(step.number);
            break;
        case CdStep::Verb::Resume:
            Pause(CdPlayer::Status_Playing, "nothing is paused");
            break;
        case CdStep::Verb::Pause:
            Pause(CdPlayer::Status_Paused, "nothing plays");
            return;
        default: // stop
            m_player.Stop();
            return;
        }
        if (m_player.GetStatus() != CdPlayer::Status_Playing)
            throw CommandError("the drive does not play");
    }

    void PlayTrack(int track)
    {
        const int last = m_player.GetTrackCount();
        if (track < 1 || track > last)
            throw CommandError("there is no track " + std::to_string(track) + ", the last one is " +
                               std::to_string(last));
        m_player.PlayTrack(track);
    }

    void PlayTime(int frames)
    {
        const CdTime end = m_player.GetDiscLength();
        if (frames < 0 || frames >= end.GetRawFrameCount())
            throw CommandError("the disc goes from 00:00:00 to " + ToText(end));
        CdTime time;
        time.SetRawFrameCount(frames);
        m_player.PlayTime(time);
    }

    /// Only while the disc plays: the player takes the place of a paused one for 0.
    void Jog(int frames)
    {
        if (m_player.GetStatus() != CdPlayer::Status_Playing)
            throw CommandError("nothing plays to jog from");
        const int target = m_player.GetCurrentDiscTime().GetRawFrameCount() + frames;
        const CdTime end = m_player.GetDiscLength();
        if (target < 0 || target >= end.GetRawFrameCount())
            throw CommandError("the disc goes from 00:00:00 to " + ToText(end));
        CdTime delta;
        delta.SetRawFrameCount(frames);
        m_player.Jog(delta);
    }

    /// Goes to a status by the player's Pause(), which goes both ways, unless that is the status
    /// already.
    void Pause(CdPlayer::Status wanted, const char* complaint)
    {
        if (m_player.GetStatus() == CdPlayer::Status_Stopped)
            throw CommandError(complaint);
        if (m_player.GetStatus() != wanted)
            m_player.Pause();
        if (m_player.GetStatus() != wanted)
            throw CommandError("the drive does not obey");
    }

    const bool m_json;
    EventPrinter m_printer;
    CdPlayer m_player;
};

int WorkCd(const CommonOptions& options, const Arguments& arguments)
{
    const std::vector<CdStep> steps = Tools::ParseCdSteps(
        arguments.words.empty() ? std::vector<std::string>{"status"} : arguments.words);
    std::unique_ptr<Desk::KernelTestbed> testbed;
    std::unique_ptr<Desk::CdDrive> drive;
    if (options.useVirtual) {
        testbed = std::make_unique<Desk::KernelTestbed>();
        drive = std::make_unique<Desk::CdDrive>(*testbed);
        if (arguments.disc != NoDisc)
            drive->Insert(MakeVirtualDisc(arguments.disc));
    }
    CdWork work(arguments.json);
    for (const CdStep& step : steps)
        work.Do(step);
    return ExitCode_Success;
}

} // namespace

void AddCdCommand(CLI::App& app, const CommonOptions& options, Action& action)
{
    auto arguments = std::make_shared<Arguments>();
    CLI::App* const command =
        app.add_subcommand("cd", "Play audio CDs, and print what the drive and its timecode say");
    command->add_option("step", arguments->words,
                        "What to do, one after another: status (if nothing is given), contents, "
                        "play [TRACK or MM:SS:FF], pause, resume, stop, next, previous, jog "
                        "SECONDS, follow [SECONDS]");
    command
        ->add_option("--disc", arguments->disc,
                     "CUE sheet of the virtual disc, or none for an empty drive; needs --virtual")
        ->check([&options](const std::string&) {
            return std::string(options.useVirtual ? "" : "needs --virtual before the command");
        });
    command->add_flag("--json", arguments->json, "Print JSON, one object a line");
    command->callback([arguments, &options, &action] {
        action = [arguments, &options] { return WorkCd(options, *arguments); };
    });
}

} // namespace Hwctl
