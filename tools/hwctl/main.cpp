// SPDX-License-Identifier: MIT
#include <QCoreApplication>
#include <cstdio>
#include <exception>

#include "desk/preload.h"
#include "hardware/link_control.h"
#include "hwctl/command.h"
#include "hwctl/exit_code.h"
#include "hwctl/log_setup.h"
#include "standalone/platform_settings.h"

namespace
{

using namespace Hwctl;

int Fail(const std::string& message, int code)
{
    std::fprintf(stderr, "hwctl: %s\n", message.c_str());
    return code;
}

void AddCommonOptions(CLI::App& app, CommonOptions& options)
{
    app.set_version_flag("--version", "hwctl " HWCTL_VERSION);
    app.add_flag("--virtual", options.useVirtual,
                 "Work on virtual devices instead of the machine's own");
    app.add_option("--widgets", options.widgetFile,
                   "JSON file with the virtual widgets, in place of one of each kind")
        ->check([&options](const std::string&) {
            return std::string(options.useVirtual ? "" : "needs --virtual before it");
        });
    app.add_option("--console", options.console,
                   "Number of the console's model to be; 7 with --virtual, otherwise no console")
        ->check(CLI::Range(0, 255));
    app.add_option("--log", options.logMasks,
                   "Log masks, PATH=MASK[,PATH=MASK...], such as Hardware/Midi=31; the variable "
                   "HWCTL_LOG takes the same");
    app.add_option("--log-to", options.logSink, "Where log lines go: stderr, journal or none")
        ->check(CLI::IsMember({"stderr", "journal", "none"}));
    app.require_subcommand(1);
    app.fallthrough(); // these options may stand behind the command too
    app.failure_message(CLI::FailureMessage::simple);
}

/// The virtual desk is of a model that has every kind of widget.
void SetUpPlatform(const CommonOptions& options)
{
    constexpr int VirtualConsole = 7;
    if (options.console || options.useVirtual)
        Standalone::ConfigurePlatform(
            Standalone::MakeConsoleSettings(options.console.value_or(VirtualConsole)));
}

int RunAction(const CommonOptions& options, const Action& action, int argc, char** argv)
{
    if (options.useVirtual) {
        const char* const missing = Desk::EnsurePreloaded(argv);
        if (*missing != '\0')
            return Fail(missing, ExitCode_Failure);
    }
    SetUpPlatform(options);
    const QCoreApplication application(argc, argv);
    try {
        SetUpLog(options.logSink, options.logMasks);
        return action();
    } catch (const std::invalid_argument& error) {
        return Fail(error.what(), ExitCode_Usage);
    } catch (const std::exception& error) {
        return Fail(error.what(), ExitCode_Failure);
    }
}

int Run(int argc, char** argv)
{
    Hardware_LinkControl();
    CommonOptions options;
    Action action;
    CLI::App app("Looks at and works the hardware of a lighting-control console", "hwctl");
    AddCommonOptions(app, options);
    AddBacklightCommand(app, options, action);
    AddCdCommand(app, options, action);
    AddListCommand(app, options, action);
    AddLtcCommand(app, options, action);
    AddMonitorCommand(app, options, action);
    AddPanelCommand(app, options, action);
    AddSendCommand(app, options, action);
    AddSerialCommand(app, options, action);
    AddSimulateCommand(app, options, action);
    AddWingCommands(app, options, action);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0)
            return app.exit(error); // --help and --version
        return Fail(error.what(), ExitCode_Usage);
    }
    return RunAction(options, action, argc, argv);
}

} // namespace

int main(int argc, char** argv)
{
    try {
        return Run(argc, argv);
    } catch (const std::exception& error) {
        return Fail(error.what(), ExitCode_Failure);
    }
}
