// SPDX-License-Identifier: MIT
#include <QCoreApplication>
#include <clocale>
#include <cstdio>
#include <exception>

#include "desk/preload.h"
#include "hardware/link_control.h"
#include "hwctl/command.h"
#include "hwctl/command_help.h"
#include "hwctl/exit_code.h"
#include "hwctl/log_setup.h"
#include "standalone/network_source.h"
#include "standalone/platform_settings.h"

namespace
{

using namespace Hwctl;

int Fail(const std::string& message, int code)
{
    std::fprintf(stderr, "hwctl: %s\n", message.c_str());
    return code;
}

/// What was printed is lost where standard output took less, as on a full disk. The stream
/// remembers it, so one look at the end is enough.
int CheckOutput(int code)
{
    const bool isWritten = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
    if (isWritten || code == ExitCode_Usage)
        return code;
    return Fail("standard output could not be written", ExitCode_Failure);
}

void AddCommonOptions(CLI::App& app, CommonOptions& options)
{
    app.set_version_flag("--version", "hwctl " HWCTL_VERSION);
    app.ignore_case();
    app.add_flag("--virtual", options.useVirtual,
                 "Work on virtual devices instead of the machine's own");
    app.add_option("--widgets", options.widgetFile,
                   "JSON file with the virtual widgets, in place of one of each kind")
        ->check([&options](const std::string&) {
            return std::string(options.useVirtual ? "" : "needs --virtual before it");
        });
    app.add_option("--console", options.console,
                   "Number of the console's model to be; 7 with --virtual, otherwise no console")
        ->check(InRange(0, 255));
    const auto isName = [](const std::string& name) {
        return Standalone::IsAdapterName(Standalone::WidenAdapterName(name))
                   ? std::string()
                   : "no network adapter can have the name '" + name + "'";
    };
    app.add_option("--console-network", options.consoleNetwork,
                   "Network adapter for the network of consoles; may be repeated: of those that "
                   "exist, the first is taken")
        ->allow_extra_args(false)
        ->check(isName);
    app.add_option("--fixture-network", options.fixtureNetwork,
                   "The same for the network of lighting fixtures")
        ->allow_extra_args(false)
        ->check(isName);
    app.add_option("--log", options.logMasks,
                   "Log masks, PATH=MASK[,PATH=MASK...], such as Hardware/Midi=31; the variable "
                   "HWCTL_LOG takes the same, and list --logs has the paths");
    app.add_option("--log-to", options.logSink,
                   "Where log lines go: stderr (if not given), journal or none")
        ->transform(CLI::IsMember({"stderr", "journal", "none"}, CLI::ignore_case));
    app.add_flag("--quiet", options.isQuiet,
                 "Write no log lines, unless --log or --log-to asks for them");
    app.require_subcommand(1);
    app.fallthrough(); // these options may stand behind the command too
    app.failure_message(CLI::FailureMessage::simple);
}

std::vector<std::wstring> Widen(const std::vector<std::string>& names)
{
    std::vector<std::wstring> wide;
    wide.reserve(names.size());
    for (const std::string& name : names)
        wide.push_back(Standalone::WidenAdapterName(name));
    return wide;
}

/// The virtual desk is of a model that has every kind of widget, and has an adapter for each
/// network.
void SetUpPlatform(const CommonOptions& options)
{
    constexpr int VirtualConsole = 7;
    Standalone::PlatformSettings settings;
    if (options.console || options.useVirtual)
        settings = Standalone::MakeConsoleSettings(options.console.value_or(VirtualConsole));
    settings.consoleNetwork = Widen(options.consoleNetwork);
    settings.fixtureNetwork = Widen(options.fixtureNetwork);
    if (options.useVirtual && settings.consoleNetwork.empty())
        settings.consoleNetwork = {L"eth0"};
    if (options.useVirtual && settings.fixtureNetwork.empty())
        settings.fixtureNetwork = {L"eth1"};
    Standalone::ConfigurePlatform(settings);
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
    // Qt takes the user's locale; numbers are printed as they are read, with a point.
    // NOLINTNEXTLINE(concurrency-mt-unsafe): no other thread has begun
    std::setlocale(LC_NUMERIC, "C");
    try {
        SetUpLog(options);
        return action();
    } catch (const UsageError& error) {
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
    AddLightsCommand(app, options, action);
    AddLinksCommand(app, options, action);
    AddCdCommand(app, options, action);
    AddDeskCommand(app, options, action);
    AddListCommand(app, options, action);
    AddLtcCommand(app, options, action);
    AddMonitorCommand(app, options, action);
    AddPanelCommand(app, options, action);
    AddSendCommand(app, options, action);
    AddSerialCommand(app, options, action);
    AddSettingsCommand(app, options, action);
    AddSimulateCommand(app, options, action);
    AddWingCommands(app, options, action);
    AddHelpCommand(app, action);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0)
            return app.exit(error); // --help and --version
        const std::string problem = FindCommandProblem(app);
        return Fail(problem.empty() ? error.what() : problem, ExitCode_Usage);
    }
    return RunAction(options, action, argc, argv);
}

} // namespace

int main(int argc, char** argv)
{
    try {
        return CheckOutput(Run(argc, argv));
    } catch (const std::exception& error) {
        return Fail(error.what(), ExitCode_Failure);
    }
}
