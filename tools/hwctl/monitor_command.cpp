// SPDX-License-Identifier: MIT
#include <algorithm>
#include <memory>

#include "hwctl/command.h"
#include "hwctl/exit_code.h"
#include "hwctl/monitor.h"
#include "hwctl/virtual_devices.h"
#include "watch/cd_facts.h"

namespace Hwctl
{

namespace
{

struct Arguments {
    std::vector<std::string> ports;
    std::vector<std::string> simulate;
    std::vector<std::string> hide;
    std::string play;
    std::string playOn;
    std::string work;
    std::string workNetwork;
    std::string ltc;
    std::string disc;
    bool cd = false;
    bool echo = false;
    bool noWait = false;
    double seconds = 0;
    bool json = false;
};

std::vector<Tools::TimecodeSource> ParseSources(const std::vector<std::string>& descriptions)
{
    std::vector<Tools::TimecodeSource> sources;
    sources.reserve(descriptions.size());
    for (const std::string& description : descriptions)
        sources.push_back(ParseArgument(Tools::TimecodeSource::Parse, description));
    return sources;
}

bool Contains(const std::vector<std::string>& list, const char* word)
{
    return std::find(list.begin(), list.end(), word) != list.end();
}

int RunMonitor(const CommonOptions& common, const Arguments& arguments, bool hasSeconds)
{
    MonitorOptions options;
    options.sources = ParseSources(arguments.simulate);
    options.json = arguments.json;
    options.wings = true;
    options.networks = true;
    options.cd = arguments.cd || !arguments.disc.empty();
    options.echo = arguments.echo;
    options.hideClock = Contains(arguments.hide, "clock");
    options.hideFrames = Contains(arguments.hide, "frames");
    if (hasSeconds)
        options.seconds = arguments.seconds;

    Tools::MidiRecording recording;
    if (!arguments.play.empty())
        recording = Tools::MidiRecording::Read(arguments.play);
    const auto devices =
        common.useVirtual ? std::make_unique<VirtualDevices>(common.widgetFile) : nullptr;
    std::unique_ptr<MidiPlayer> player;
    if (!arguments.play.empty()) {
        Desk::MidiPort& port =
            arguments.playOn.empty() ? devices->GetFirstPort() : devices->GetPort(arguments.playOn);
        player = std::make_unique<MidiPlayer>(std::move(recording), port, !arguments.noWait);
    }

    options.midi = true;
    // Onto the machine's own desk a port may come later; a virtual one has all that it will have.
    for (const std::string& port : arguments.ports)
        options.ports.push_back(devices ? devices->GetPort(port).GetName() : port);
    std::unique_ptr<WidgetPlayer> widgetPlayer;
    if (!arguments.work.empty())
        widgetPlayer = std::make_unique<WidgetPlayer>(Tools::WidgetScript::Read(arguments.work),
                                                      devices->GetBus());
    std::unique_ptr<NetworkPlayer> networkPlayer;
    if (!arguments.workNetwork.empty())
        networkPlayer = std::make_unique<NetworkPlayer>(
            Tools::NetworkScript::Read(arguments.workNetwork), devices->GetNetwork());

    Monitor monitor(options, stdout);
    monitor.SetPlayer(player.get());
    monitor.SetWidgetPlayer(widgetPlayer.get());
    monitor.SetNetworkPlayer(networkPlayer.get());
    if (devices)
        monitor.WatchDesk(devices->GetBus());
    if (!arguments.ltc.empty()) {
        devices->LoadTimecode(arguments.ltc);
        monitor.SetTape([&devices] { devices->PlayTimecode(); });
    }
    if (options.cd && devices) {
        devices->GetCdDrive().Insert(Tools::MakeVirtualDisc(arguments.disc));
        CdPlayer().Play();
    }
    const int code = monitor.Run();
    if (devices)
        devices->StopTimecode();
    return code;
}

} // namespace

void AddMonitorCommand(CLI::App& app, const CommonOptions& options, Action& action)
{
    auto arguments = std::make_shared<Arguments>();
    const auto needsVirtual = [&options](const std::string&) {
        return std::string(options.useVirtual ? "" : "needs --virtual before the command");
    };
    CLI::App* const command = app.add_subcommand(
        "monitor",
        "Print every MIDI, timecode, wing and network signal, one line each, and what is "
        "missing; take what comes later");
    command->add_option(
        "-p,--port", arguments->ports,
        "MIDI port to receive from, also one that comes later; may be repeated; all "
        "ports if not given");
    command->add_option("-s,--simulate", arguments->simulate,
                        "Simulated timecode to run beside, as for the simulate command; may be "
                        "repeated");
    CLI::Option* const play =
        command
            ->add_option("--play", arguments->play,
                         "Recording to play into a virtual MIDI port; needs --virtual")
            ->check(needsVirtual);
    command
        ->add_option("--play-on", arguments->playOn,
                     "Virtual port to play it on; the first one if not given")
        ->needs(play);
    command->add_flag("--no-wait", arguments->noWait, "Play without pauses")->needs(play);
    command
        ->add_option("--work", arguments->work,
                     "Script of what hands do to the virtual widgets; needs --virtual")
        ->check(needsVirtual);
    command
        ->add_option("--work-network", arguments->workNetwork,
                     "Script of what happens to the virtual network adapters; needs --virtual")
        ->check(needsVirtual);
    command
        ->add_option("--ltc", arguments->ltc,
                     "Timecode audio to play into the virtual LTC board; needs --virtual")
        ->check(needsVirtual);
    command->add_flag("--cd", arguments->cd,
                      "Watch the CD drive too; a virtual one begins to play");
    command
        ->add_option("--disc", arguments->disc,
                     "The same with the disc of a CUE sheet in the virtual drive; needs --virtual")
        ->check(needsVirtual);
    command->add_flag("--echo", arguments->echo, "Light a button's LED for as long as it is held");
    CLI::Option* const seconds =
        command
            ->add_option("--for", arguments->seconds,
                         "End after so many seconds; otherwise the end of what is played ends it, "
                         "or an interrupt")
            ->check(InRange(0.0, 1e6));
    command
        ->add_option(
            "--hide", arguments->hide,
            "Count but do not print: 'clock' for timing clock and active sensing, 'frames' "
            "for all but one timecode frame a second; may be repeated")
        ->transform(CLI::IsMember({"clock", "frames"}, CLI::ignore_case));
    command->add_flag("--json", arguments->json, "Print JSON, one object a line");
    command->callback([arguments, seconds, &options, &action] {
        action = [arguments, seconds, &options] {
            return RunMonitor(options, *arguments, seconds->count() > 0);
        };
    });
}

} // namespace Hwctl
