// SPDX-License-Identifier: MIT
#include <cstdio>
#include <memory>

#include "common/cd_step.h"
#include "desk/cd_drive.h"
#include "hwctl/cd_follow.h"
#include "hwctl/command.h"
#include "hwctl/exit_code.h"
#include "watch/cd_facts.h"
#include "watch/cd_transport.h"

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

/// Does steps one after another and prints what came of each.
class CdWork
{
public:
    explicit CdWork(bool json) : m_json(json), m_printer(json, stdout) {}

    void Do(const CdStep& step)
    {
        const std::string problem = Tools::FindCdProblem();
        if (!problem.empty())
            throw CommandError(problem);
        switch (step.verb) {
        case CdStep::Verb::Status:
            break;
        case CdStep::Verb::Contents:
            Print(Tools::GetCdContents(m_player), Tools::DescribeCdContents);
            return;
        case CdStep::Verb::Follow:
            Follow(step.seconds);
            return;
        default:
            Tools::DoCdStep(m_player, step);
            Tools::CheckCdStep(m_player, step);
            break;
        }
        Print(Tools::GetCdStatus(m_player), Tools::DescribeCdStatus);
    }

private:
    template <class Describe> void Print(const nlohmann::json& facts, Describe describe) const
    {
        std::printf("%s\n", m_json ? ToLine(facts).c_str() : describe(facts).c_str());
        std::fflush(stdout);
    }

    void Follow(double seconds)
    {
        const CdFollowResult result = FollowCd(m_player, seconds, m_printer);
        m_printer.PrintSummary(std::to_string(result.frames) + " frames",
                               {{"frames", result.frames}});
        if (!result.problem.empty())
            throw CommandError(result.problem);
    }

    const bool m_json;
    EventPrinter m_printer;
    CdPlayer m_player;
};

int WorkCd(const CommonOptions& options, const Arguments& arguments)
{
    const std::vector<CdStep> steps = ParseArgument(
        Tools::ParseCdSteps,
        arguments.words.empty() ? std::vector<std::string>{"status"} : arguments.words);
    std::unique_ptr<Desk::KernelTestbed> testbed;
    std::unique_ptr<Desk::CdDrive> drive;
    if (options.useVirtual) {
        testbed = std::make_unique<Desk::KernelTestbed>();
        drive = std::make_unique<Desk::CdDrive>(*testbed);
        if (arguments.disc != NoDisc)
            drive->Insert(Tools::MakeVirtualDisc(arguments.disc));
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
