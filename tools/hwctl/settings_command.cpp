// SPDX-License-Identifier: MIT
#include <QStandardPaths>
#include <cstdio>
#include <memory>

#include "common/light_setting.h"
#include "gut/message.h"
#include "hwctl/command.h"
#include "hwctl/display_registers.h"
#include "hwctl/event_printer.h"
#include "hwctl/exit_code.h"
#include "hwctl/light_run.h"
#include "hwctl/log_tap.h"
#include "hwctl/settings_file.h"
#include "standalone/messages.h"

namespace Hwctl
{

namespace
{

struct Arguments {
    std::vector<std::string> changes;
    std::string file;
    bool atOnce = false;
    bool show = false;
    bool json = false;
    bool isForced = false;
};

/// The words of a message, as they are posted.
void PrintMessage(const Gut::Message& message, unsigned systemObject)
{
    std::printf("posted to %u:", systemObject);
    for (std::size_t offset = 0; offset + 4 <= message.Size(); offset += 4)
        std::printf(" %u", static_cast<unsigned>(message.Data()[offset]) |
                               static_cast<unsigned>(message.Data()[offset + 1]) << 8U |
                               static_cast<unsigned>(message.Data()[offset + 2]) << 16U |
                               static_cast<unsigned>(message.Data()[offset + 3]) << 24U);
    std::puts("");
}

void PrintSettings(const std::string& file, bool json)
{
    nlohmann::json object;
    if (!json)
        std::printf("%s\n", file.c_str());
    for (const auto& [name, value] : Tools::DescribeLightSettings(Standalone::GetLightSettings())) {
        if (!json)
            std::printf("  %-10s %s\n", name.c_str(), value.c_str());
        else if (value == "on" || value == "off")
            object[name] = value == "on";
        else
            object[name] = std::stod(value);
    }
    if (json)
        std::printf("%s\n", ToLine(object).c_str());
}

void Change(Standalone::LightSettings& settings, const std::vector<std::string>& changes)
{
    for (const std::string& change : changes)
        Tools::ChangeLightSetting(settings, change);
}

/// Returns false if the settings could not be kept.
bool ChangeSettings(const std::vector<std::string>& changes)
{
    return Standalone::ChangeLightSettings(
        [&changes](Standalone::LightSettings& settings) { Change(settings, changes); });
}

/// Changes the settings and has the lights go from the old ones to the new ones. Returns false if
/// the settings could not be kept.
bool ShowLights(const CommonOptions& options, const Arguments& arguments)
{
    // Outlive the backlight controller, which lives until the process ends.
    static const auto devices =
        options.useVirtual ? std::make_unique<VirtualDevices>(options.widgetFile) : nullptr;
    static const auto displays =
        devices ? std::make_unique<VirtualDisplays>(devices->GetTestbed()) : nullptr;
    CheckDisplayRegisters(arguments.isForced);
    LogTap tap(LogTap::Need::WhatThereIs);
    bool areKept = false;
    {
        LightRun run(LightRun::Show::Changes, devices.get(), displays.get());
        areKept = ChangeSettings(arguments.changes);
        run.Run({Tools::LightStep::Parse(arguments.atOnce ? "apply" : "change")});
        run.Print();
    }
    if (areKept) // otherwise the caller reports that
        CheckLights(tap);
    return areKept;
}

int RunSettings(const CommonOptions& options, const Arguments& arguments)
{
    // Virtual lights leave the user's settings alone, unless told which file.
    const bool hasFile = !arguments.file.empty() || !options.useVirtual;
    const std::string file = hasFile ? UseSettings(arguments.file) : "kept nowhere";
    if (arguments.show && arguments.changes.empty())
        throw UsageError("--show needs a change to show");
    // Looked at before anything begins.
    Standalone::LightSettings checked;
    ParseArgument([&](const auto& changes) { Change(checked, changes); }, arguments.changes);
    if (!arguments.changes.empty()) {
        if (!arguments.json)
            Standalone::SetPostObserver(PrintMessage);
        bool areKept = true;
        if (arguments.show) {
            areKept = ShowLights(options, arguments);
        } else {
            areKept = ChangeSettings(arguments.changes);
            Standalone::AnnounceLightSettings(!arguments.atOnce);
            Standalone::DeliverMessages();
        }
        if (!areKept)
            throw CommandError("cannot write the light settings to '" + file + "'");
    }
    PrintSettings(file, arguments.json);
    return ExitCode_Success;
}

} // namespace

std::string UseSettings(const std::string& file)
{
    std::string name = file;
    if (name.empty())
        name = (QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                "/libhardware/lights.ini")
                   .toStdString();
    if (const std::string problem = Standalone::UseLightSettingsFile(name); !problem.empty())
        throw CommandError(problem);
    return name;
}

void AddSettingsCommand(CLI::App& app, const CommonOptions& options, Action& action)
{
    auto arguments = std::make_shared<Arguments>();
    CLI::App* const command = app.add_subcommand(
        "settings", "Show the light settings, change them, and post the message that tells of it");
    command->add_option("change", arguments->changes,
                        "NAME=VALUE: a level from 0 to 100, or on and off; the list shows the "
                        "names");
    command->add_option("--settings", arguments->file,
                        "The file; the user's own if not given, and none with --virtual");
    command->add_flag("--at-once", arguments->atOnce, "Tell of a change to be shown without fades");
    CLI::Option* const show = command->add_flag(
        "--show", arguments->show, "Have the lights follow, and print every level on its way");
    command->add_flag("--json", arguments->json, "Print the settings as one JSON object")
        ->excludes(show);
    command->add_flag("--force", arguments->isForced, ForceHelp)->needs(show);
    command->callback([arguments, &options, &action] {
        action = [arguments, &options] { return RunSettings(options, *arguments); };
    });
}

} // namespace Hwctl
