// SPDX-License-Identifier: MIT

// The command "help", and what to say of a command that there is not.

#include "hwctl/command_help.h"

#include <algorithm>
#include <cstdio>
#include <memory>

#include "common/near_names.h"
#include "hwctl/command.h"
#include "hwctl/exit_code.h"

namespace Hwctl
{

namespace
{

/// Every command, by its name; "ltc decode" is one of "ltc".
Tools::Names GetCommandNames(const CLI::App& app)
{
    Tools::Names names;
    for (const CLI::App* const command :
         app.get_subcommands([](const CLI::App* one) { return !one->get_name().empty(); }))
        names.push_back(command->get_name());
    return names;
}

/// "hwctl" or "hwctl ltc", as somebody types it.
std::string GetLine(const CLI::App& app)
{
    return app.get_parent() ? GetLine(*app.get_parent()) + " " + app.get_name() : app.get_name();
}

std::string RefuseCommand(const CLI::App& app, const std::string& word)
{
    const std::string line = GetLine(app);
    const std::string start =
        word.empty() ? "a command is missing after '" + line + "'"
                     : "there is no command '" + line.substr(line.find(' ') + 1) + " " + word + "'";
    return (word.empty() || app.get_parent() ? start : "there is no command '" + word + "'") +
           Tools::SuggestNames(word, GetCommandNames(app)) + "; see " + line + " --help";
}

} // namespace

std::string FindCommandProblem(const CLI::App& app)
{
    const CLI::App* current = &app;
    while (!current->get_subcommands().empty())
        current = current->get_subcommands().front();
    if (current->get_require_subcommand_min() == 0)
        return {};
    const std::vector<std::string> rest = app.remaining(true);
    const auto word = std::find_if(rest.begin(), rest.end(),
                                   [](const std::string& one) { return !one.starts_with('-'); });
    if (word == rest.end() && !rest.empty())
        return "there is no option '" + rest.front() + "'; see " + GetLine(*current) + " --help";
    return RefuseCommand(*current, word == rest.end() ? std::string() : *word);
}

std::string GetHelp(CLI::App& app, const std::vector<std::string>& words)
{
    CLI::App* command = &app;
    for (const std::string& word : words) {
        const auto name = Tools::FindName(word, GetCommandNames(*command));
        if (!name)
            throw UsageError(RefuseCommand(*command, word));
        command = command->get_subcommand(*name);
    }
    // Not by App::help(), which prints the command that was chosen, and that is "help" here.
    return command->get_formatter()->make_help(command, GetLine(*command),
                                               CLI::AppFormatMode::Normal);
}

void AddHelpCommand(CLI::App& app, Action& action)
{
    auto words = std::make_shared<std::vector<std::string>>();
    CLI::App* const command = app.add_subcommand("help", "Print the help of a command");
    command->add_option("command", *words, "The command, such as list or ltc decode");
    command->callback([words, &app, &action] {
        action = [words, &app] {
            std::fputs(GetHelp(app, *words).c_str(), stdout);
            return ExitCode_Success;
        };
    });
}

} // namespace Hwctl
