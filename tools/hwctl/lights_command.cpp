// SPDX-License-Identifier: MIT
#include <QFileInfo>
#include <memory>

#include "hwctl/command.h"
#include "hwctl/display_registers.h"
#include "hwctl/exit_code.h"
#include "hwctl/light_run.h"
#include "hwctl/log_tap.h"
#include "hwctl/settings_file.h"

namespace Hwctl
{

namespace
{

struct Arguments {
    std::vector<std::string> steps;
    std::string settings;
    bool bars = false;
    bool json = false;
    bool isForced = false;
};

int RunLights(const CommonOptions& options, const Arguments& arguments)
{
    std::vector<Tools::LightStep> steps;
    steps.reserve(arguments.steps.size());
    for (const std::string& step : arguments.steps)
        steps.push_back(ParseArgument(Tools::LightStep::Parse, step));
    // Virtual lights leave the user's settings alone, unless told which file.
    if (!arguments.settings.empty() || !options.useVirtual)
        UseSettings(arguments.settings);
    if (!arguments.settings.empty() &&
        !QFileInfo::exists(QString::fromStdString(arguments.settings)))
        throw CommandError("there is no '" + arguments.settings + "'");
    // Outlive the backlight controller, which lives until the process ends.
    static const auto devices =
        options.useVirtual ? std::make_unique<VirtualDevices>(options.widgetFile) : nullptr;
    static const auto displays =
        devices ? std::make_unique<VirtualDisplays>(devices->GetTestbed()) : nullptr;
    const LightRun::Show show = arguments.json   ? LightRun::Show::Json
                                : arguments.bars ? LightRun::Show::Bars
                                                 : LightRun::Show::Changes;
    CheckDisplayRegisters(arguments.isForced);
    LogTap tap(LogTap::Need::WhatThereIs);
    {
        LightRun run(show, devices.get(), displays.get());
        if (!steps.empty())
            run.Run(steps);
        run.Print();
    }
    CheckLights(tap);
    return ExitCode_Success;
}

} // namespace

void AddLightsCommand(CLI::App& app, const CommonOptions& options, Action& action)
{
    auto arguments = std::make_shared<Arguments>();
    CLI::App* const command = app.add_subcommand(
        "lights", "Bring the console's lights to the settings, do steps with them, print every "
                  "level on its way, and list them");
    command->add_option(
        "step", arguments->steps,
        "LIGHT=LEVEL, LIGHT=LEVEL/SECONDS for a fade, start, end, key (the work light's), sleep, "
        "wake, open, close (the drawer), apply or change (the settings, at once or by fades), "
        "reset, wait=SECONDS, settle; one after the other");
    command->add_option("--settings", arguments->settings,
                        "File with the light settings; the user's own if not given, and none with "
                        "--virtual");
    CLI::Option* const bars = command->add_flag(
        "--bars", arguments->bars, "Bars of all lights after each wait, in place of changes");
    command->add_flag("--json", arguments->json, "Print JSON, one object a line")->excludes(bars);
    command->add_flag("--force", arguments->isForced, ForceHelp);
    command->callback([arguments, &options, &action] {
        action = [arguments, &options] { return RunLights(options, *arguments); };
    });
}

} // namespace Hwctl
