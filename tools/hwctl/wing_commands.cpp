// SPDX-License-Identifier: MIT

// The commands that work a wing: led, fader and beacon.

#include <cstdio>
#include <memory>

#include "common/near_names.h"
#include "common/wing_name.h"
#include "common/wing_reach.h"
#include "hardware/wing_beacon.h"
#include "hardware/wing_mapper.h"
#include "hwctl/command.h"
#include "hwctl/exit_code.h"
#include "hwctl/virtual_devices.h"
#include "watch/desk_watch.h"

namespace Hwctl
{

namespace
{

using Hardware::UmWing;
using Hardware::WidgetKey;
using Hardware::WingMapper;

struct Arguments {
    std::string wing;
    std::string state = "on";
    unsigned pid = 0;
    unsigned mid = 65535;
    int section = 0;
    int position = 0;
    std::string beaconSection = "all";
};

template <class Value> std::vector<std::string> GetNames(const std::map<std::string, Value>& map)
{
    std::vector<std::string> names;
    names.reserve(map.size());
    for (const auto& [name, value] : map)
        names.push_back(name);
    return names;
}

/// What a command does to a wing.
struct WingWork {
    std::function<std::string(WidgetKey)> findProblem; ///< why it cannot be done; empty if it can
    std::function<void(WidgetKey)> act;
};

Tools::Names GetAttachedWings()
{
    Tools::Names names;
    for (const WidgetKey key : WingMapper::Get().connected_wings())
        names.push_back(Tools::GetWingName(key));
    return names;
}

/// Throws CommandError if the call cannot reach the wing: the mapper's slots ignore it silently.
void CheckWing(WidgetKey key, const WingWork& work)
{
    const std::string name = Tools::GetWingName(key);
    WingMapper& mapper = WingMapper::Get();
    if (!mapper.is_wing_connected(key))
        throw CommandError(mapper.get_wing(key)
                               ? name + " is not a wing: it has no LEDs, faders or beacon"
                               : "wing " + name + " is not attached" +
                                     Tools::SuggestNames(name, GetAttachedWings()));
    if (const std::string problem = work.findProblem(key); !problem.empty())
        throw CommandError(problem);
}

/// The mapper between its begin and its end.
class MapperRun
{
public:
    MapperRun() { WingMapper::Begin(); }
    ~MapperRun() { WingMapper::End(); }
    MapperRun(const MapperRun&) = delete;
    MapperRun& operator=(const MapperRun&) = delete;
};

/// Begins and ends the mapper around a command, and prints what virtual widgets were made to do.
int WorkWing(const CommonOptions& options, const Arguments& arguments, const WingWork& work)
{
    const WidgetKey key = ParseArgument(Tools::ParseWingKey, arguments.wing);
    const auto devices =
        options.useVirtual ? std::make_unique<VirtualDevices>(options.widgetFile) : nullptr;
    std::size_t outputs = 0;
    const Tools::EventTaker print = [&outputs](const Tools::MonitorEvent& event) {
        // Of a whole section each LED; of more than a screenful only the count.
        constexpr std::size_t Screenful = 60;
        if (++outputs <= Screenful)
            std::printf("%s: %s\n", event.source.c_str(), event.text.c_str());
    };
    {
        const MapperRun mapper;
        CheckWing(key, work);
        const auto watch =
            devices ? std::make_unique<Tools::DeskWatch>(devices->GetBus(), print) : nullptr;
        work.act(key);
        if (!WingMapper::Get().is_wing_connected(key))
            throw CommandError("wing " + arguments.wing + " was removed meanwhile");
    }
    if (devices && outputs == 0)
        throw CommandError("nothing reached wing " + Tools::GetWingName(key));
    return ExitCode_Success;
}

CLI::App* AddWingCommand(CLI::App& app, const char* name, const char* text,
                         const std::shared_ptr<Arguments>& arguments)
{
    CLI::App* const command = app.add_subcommand(name, text);
    command
        ->add_option("wing", arguments->wing,
                     "MODEL/SERIAL, such as PlaybackWing/291, or the number of its key")
        ->required();
    return command;
}

UmWing::LedState GetState(const Arguments& arguments)
{
    return Tools::GetLedStates().at(arguments.state);
}

WingWork MakeLedWork(const Arguments& arguments)
{
    return {[&](WidgetKey key) { return Tools::FindLedProblem(key, arguments.pid, arguments.mid); },
            [&](WidgetKey key) {
                WingMapper::Get().set_led(key, static_cast<unsigned short>(arguments.pid),
                                          static_cast<unsigned short>(arguments.mid),
                                          GetState(arguments));
            }};
}

WingWork MakeLedSectionWork(const Arguments& arguments)
{
    return {[&](WidgetKey key) { return Tools::FindLedSectionProblem(key, arguments.section); },
            [&](WidgetKey key) {
                WingMapper::Get().set_led_section(key, arguments.section, GetState(arguments));
            }};
}

WingWork MakeAllLedsWork(const Arguments& arguments)
{
    return {Tools::FindAllLedsProblem,
            [&](WidgetKey key) { WingMapper::Get().set_led_all(key, GetState(arguments)); }};
}

void AddLedCommand(CLI::App& app, const CommonOptions& options, Action& action)
{
    auto arguments = std::make_shared<Arguments>();
    CLI::App* const command = AddWingCommand(app, "led", "Set LEDs of a wing", arguments);
    command->add_option("state", arguments->state, "off, on, flash or dim")
        ->required()
        ->transform(CLI::IsMember(GetNames(Tools::GetLedStates()), CLI::ignore_case));
    CLI::Option* const pid =
        command->add_option("--part", arguments->pid, "Part id of one LED; all LEDs if not given")
            ->check(InRange(0U, 65535U));
    command
        ->add_option("--master", arguments->mid,
                     "Master id of that LED; 65535, for one without a master, if not given")
        ->check(InRange(0U, 65535U))
        ->needs(pid);
    CLI::Option* const section =
        command
            ->add_option("--section", arguments->section,
                         "All LEDs of the masters of a section, counted from 0")
            ->excludes(pid);
    command->callback([arguments, pid, section, &options, &action] {
        const bool isOne = pid->count() > 0;
        const bool isSection = section->count() > 0;
        action = [arguments, isOne, isSection, &options] {
            return WorkWing(options, *arguments,
                            isOne       ? MakeLedWork(*arguments)
                            : isSection ? MakeLedSectionWork(*arguments)
                                        : MakeAllLedsWork(*arguments));
        };
    });
}

void AddFaderCommand(CLI::App& app, const CommonOptions& options, Action& action)
{
    auto arguments = std::make_shared<Arguments>();
    CLI::App* const command =
        AddWingCommand(app, "fader", "Move a motor fader of a wing", arguments);
    command->add_option("master", arguments->mid, "Master id of the fader")
        ->required()
        ->check(InRange(0U, 65535U));
    command->add_option("position", arguments->position, "0 to 255")
        ->required()
        ->check(InRange(0, 255));
    command->callback([arguments, &options, &action] {
        action = [arguments, &options] {
            return WorkWing(
                options, *arguments,
                {[&](WidgetKey key) { return Tools::FindFaderProblem(key, arguments->mid); },
                 [&](WidgetKey key) {
                     WingMapper::Get().set_fader(key, static_cast<unsigned short>(arguments->mid),
                                                 arguments->position);
                 }});
        };
    });
}

void AddBeaconCommand(CLI::App& app, const CommonOptions& options, Action& action)
{
    auto arguments = std::make_shared<Arguments>();
    CLI::App* const command =
        AddWingCommand(app, "beacon", "Have a wing identify itself", arguments);
    command
        ->add_option("--section", arguments->beaconSection,
                     "all, left, right or centre, where a wing can beacon a section")
        ->transform(CLI::IsMember(GetNames(Tools::GetWingSections()), CLI::ignore_case));
    command->callback([arguments, &options, &action] {
        action = [arguments, &options] {
            return WorkWing(options, *arguments,
                            {Tools::FindBeaconProblem, [&](WidgetKey key) {
                                 Hardware::WingBeacon::Get().beacon(
                                     key, Tools::GetWingSections().at(arguments->beaconSection));
                             }});
        };
    });
}

} // namespace

void AddWingCommands(CLI::App& app, const CommonOptions& options, Action& action)
{
    AddLedCommand(app, options, action);
    AddFaderCommand(app, options, action);
    AddBeaconCommand(app, options, action);
}

} // namespace Hwctl
