// SPDX-License-Identifier: MIT
#include <memory>

#include "hwctl/command.h"
#include "hwctl/monitor.h"

namespace Hwctl
{

namespace
{

struct Arguments {
    std::vector<std::string> sources;
    double seconds = 0;
    unsigned frames = 0;
    bool json = false;
};

} // namespace

void AddSimulateCommand(CLI::App& app, const CommonOptions&, Action& action)
{
    auto arguments = std::make_shared<Arguments>();
    CLI::App* const command =
        app.add_subcommand("simulate", "Run simulated timecode sources and print their frames");
    command->add_option(
        "source", arguments->sources,
        "RATE[,start=HH:MM:SS:FF][,backwards]: a rate in frames per second or one of film24, "
        "ebu25, ntsc30, smpte30, the first frame, the direction. Several run side by side; ebu25 "
        "if none is given");
    CLI::Option* const seconds =
        command->add_option("--for", arguments->seconds, "End after so many seconds")
            ->check(InRange(0.0, 1e6));
    CLI::Option* const frames =
        command
            ->add_option("--frames", arguments->frames, "End after so many frames of each source")
            ->check(InRange(1U, 1000000U));
    command->add_flag("--json", arguments->json, "Print JSON, one object a line");
    command->callback([arguments, seconds, frames, &action] {
        action = [arguments, seconds, frames] {
            if (arguments->sources.empty())
                arguments->sources.emplace_back("ebu25");
            MonitorOptions options;
            for (const std::string& source : arguments->sources)
                options.sources.push_back(ParseArgument(Tools::TimecodeSource::Parse, source));
            if (seconds->count() > 0)
                options.seconds = arguments->seconds;
            if (frames->count() > 0)
                options.frames = arguments->frames;
            options.json = arguments->json;
            return Monitor(options, stdout).Run();
        };
    });
}

} // namespace Hwctl
