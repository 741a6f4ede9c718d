// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "hwctl/command_error.h"
#include "hwctl/number_range.h"

namespace Hwctl
{

/// Options that stand before the command and hold for every one.
struct CommonOptions {
    bool useVirtual = false;    ///< work on virtual devices
    std::string widgetFile;     ///< the virtual widgets; empty for a desk of one of each kind
    std::optional<int> console; ///< model of the console to be; none to be no console
    std::vector<std::string> consoleNetwork; ///< adapters for the consoles' network, in order
    std::vector<std::string> fixtureNetwork; ///< adapters for the fixtures' network, in order
    std::string logMasks;                    ///< masks of log contexts
    std::string logSink;                     ///< stderr, journal or none; empty for stderr
    bool isQuiet = false;                    ///< no log lines, unless masks or a sink ask for them
};

/// What a command does once the line is understood; returns an ExitCode.
typedef std::function<int()> Action;

// Each adds its command to the line and sets @p action when it is chosen. The options outlive it.
void AddBacklightCommand(CLI::App& app, const CommonOptions& options, Action& action);
void AddHelpCommand(CLI::App& app, Action& action);
void AddLightsCommand(CLI::App& app, const CommonOptions& options, Action& action);
void AddLinksCommand(CLI::App& app, const CommonOptions& options, Action& action);
void AddCdCommand(CLI::App& app, const CommonOptions& options, Action& action);
/// Works on virtual devices in any case, may be quiet, and says so in the options.
void AddDeskCommand(CLI::App& app, CommonOptions& options, Action& action);
void AddListCommand(CLI::App& app, const CommonOptions& options, Action& action);
void AddLtcCommand(CLI::App& app, const CommonOptions& options, Action& action);
void AddMonitorCommand(CLI::App& app, const CommonOptions& options, Action& action);
void AddPanelCommand(CLI::App& app, const CommonOptions& options, Action& action);
void AddSendCommand(CLI::App& app, const CommonOptions& options, Action& action);
void AddSerialCommand(CLI::App& app, const CommonOptions& options, Action& action);
void AddSettingsCommand(CLI::App& app, const CommonOptions& options, Action& action);
void AddSimulateCommand(CLI::App& app, const CommonOptions& options, Action& action);
void AddWingCommands(CLI::App& app, const CommonOptions& options, Action& action);

// The commands behind "ltc".
void AddLtcDecodeCommand(CLI::App& parent, Action& action);
void AddLtcGenerateCommand(CLI::App& parent, Action& action);

} // namespace Hwctl
