// SPDX-License-Identifier: MIT

// The commands that work a wing: led, fader and beacon.

#include <cstdio>
#include <memory>

#include "common/wing_name.h"
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
    unsigned mid = 0;
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

/// Begins and ends the mapper around a command, and prints what virtual widgets were made to do.
int WorkWing(const CommonOptions& options, const Arguments& arguments,
             const std::function<void(WidgetKey)>& work)
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
    WingMapper::Begin();
    const bool isKnown = WingMapper::Get().is_wing_connected(key);
    {
        const auto watch =
            devices ? std::make_unique<Tools::DeskWatch>(devices->GetBus(), print) : nullptr;
        if (isKnown)
            work(key);
    }
    WingMapper::End();
    if (!isKnown)
        throw CommandError("wing " + Tools::GetWingName(key) + " is not attached");
    if (devices && outputs == 0)
        std::puts("nothing reached the wing");
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

void AddLedCommand(CLI::App& app, const CommonOptions& options, Action& action)
{
    auto arguments = std::make_shared<Arguments>();
    CLI::App* const command = AddWingCommand(app, "led", "Set LEDs of a wing", arguments);
    command->add_option("state", arguments->state, "off, on, flash or dim")
        ->required()
        ->check(CLI::IsMember(GetNames(Tools::GetLedStates())));
    CLI::Option* const pid =
        command->add_option("--part", arguments->pid, "Part id of one LED; all LEDs if not given")
            ->check(InRange(0U, 65535U));
    command->add_option("--master", arguments->mid, "Master id of that LED")
        ->check(InRange(0U, 65535U))
        ->needs(pid);
    CLI::Option* const section =
        command
            ->add_option("--section", arguments->section,
                         "All LEDs of the masters of a section, counted from 0")
            ->excludes(pid);
    command->callback([arguments, pid, section, &options, &action] {
        action = [arguments, pid, section, &options] {
            return WorkWing(options, *arguments, [&](WidgetKey key) {
                const UmWing::LedState state = Tools::GetLedStates().at(arguments->state);
                if (pid->count() > 0)
                    WingMapper::Get().set_led(key, static_cast<unsigned short>(arguments->pid),
                                              static_cast<unsigned short>(arguments->mid), state);
                else if (section->count() > 0)
                    WingMapper::Get().set_led_section(key, arguments->section, state);
                else
                    WingMapper::Get().set_led_all(key, state);
            });
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
            return WorkWing(options, *arguments, [&](WidgetKey key) {
                WingMapper::Get().set_fader(key, static_cast<unsigned short>(arguments->mid),
                                            arguments->position);
            });
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
        ->check(CLI::IsMember(GetNames(Tools::GetWingSections())));
    command->callback([arguments, &options, &action] {
        action = [arguments, &options] {
            return WorkWing(options, *arguments, [&](WidgetKey key) {
                Hardware::WingBeacon::Get().beacon(
                    key, Tools::GetWingSections().at(arguments->beaconSection));
            });
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
