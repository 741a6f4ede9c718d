// SPDX-License-Identifier: MIT
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <memory>

#include "common/script_lines.h"
#include "common/timecode_source.h"
#include "console/line_check.h"
#include "console/script.h"
#include "desk/desk_data.h"
#include "hwctl/command.h"
#include "hwctl/desk_run.h"
#include "hwctl/exit_code.h"
#include "hwctl/log_setup.h"

namespace Hwctl
{

namespace
{

constexpr char Input[] = "-";

struct Arguments {
    std::string file;
    std::vector<std::string> scripts;
    std::vector<std::string> lines;
    std::vector<std::string> until;
    double within = 10;
    double seconds = 0;
    bool check = false;
    bool verbs = false;
    std::string state;
    bool json = false;
    bool isQuiet = false;
    bool isLive = false;
};

int PrintVerbs()
{
    for (const Console::VerbHelp& help : Console::Session::GetVerbs())
        std::printf("%-52s %s\n", help.usage.c_str(), help.text.c_str());
    for (const Console::VerbHelp& help : Console::GetScriptVerbs())
        std::printf("%-52s %s\n", help.usage.c_str(), help.text.c_str());
    return ExitCode_Success;
}

void AddScript(DeskRunOptions& options, const std::string& file)
{
    if (file == Input) {
        options.readsInput = true;
        return;
    }
    const auto lines = Console::ParseDeskScript(Tools::ReadWholeFile(file));
    if (lines.empty())
        throw CommandError(file + ": has no line to do");
    for (const Console::ScriptLine& line : lines)
        options.lines.push_back({line.text, file + ":" + std::to_string(line.number)});
}

DeskRunOptions MakeOptions(const Arguments& arguments, bool hasSeconds, bool hasState,
                           bool logsToErrors)
{
    DeskRunOptions options;
    options.json = arguments.json;
    options.isQuiet = arguments.isQuiet;
    options.isLive = arguments.isLive && DeskScreen::IsTerminal(stdout);
    options.logsToScreen = logsToErrors && isatty(STDERR_FILENO) == 1;
    for (const std::string& script : arguments.scripts)
        AddScript(options, script);
    for (const std::string& line : arguments.lines)
        options.lastLines.push_back({line, "--do"});
    if (!arguments.until.empty()) {
        ParseArgument(Console::Condition::Parse, arguments.until); // before anything is started
        std::string line = "until";
        for (const std::string& word : arguments.until)
            line += " " + Console::Quote(word);
        options.lastLines.push_back(
            {line + " within " + std::to_string(arguments.within), "--until"});
    }
    if (hasSeconds)
        options.seconds = arguments.seconds;
    if (hasState)
        options.state = arguments.state;
    options.isEndless = options.lines.empty() && options.lastLines.empty() && !options.readsInput &&
                        !hasSeconds && !hasState;
    return options;
}

/// Standard input as lines of a script, for a check alone.
std::vector<DeskRunOptions::Line> ReadInputLines()
{
    std::string text;
    std::array<char, 4096> piece{};
    for (ssize_t length = 0; (length = read(STDIN_FILENO, piece.data(), piece.size())) != 0;) {
        if (length < 0 && errno == EINTR)
            continue;
        if (length < 0)
            throw CommandError("standard input cannot be read");
        text.append(piece.data(), static_cast<std::size_t>(length));
    }
    std::vector<DeskRunOptions::Line> lines;
    for (const Console::ScriptLine& line : Console::ParseDeskScript(text))
        lines.push_back({line.text, "input:" + std::to_string(line.number)});
    return lines;
}

/// Reads every line before the first one is done. Prints what is wrong with each; false for any.
bool CheckLines(const Desk::DeskData& data, const DeskRunOptions& options, bool isOnlyCheck)
{
    std::vector<DeskRunOptions::Line> lines = options.lines;
    if (isOnlyCheck && options.readsInput)
        lines = ReadInputLines();
    // What standard input says can make names, which lines behind it can use.
    if (isOnlyCheck || !options.readsInput)
        lines.insert(lines.end(), options.lastLines.begin(), options.lastLines.end());
    Console::LineCheck check(data);
    bool isRight = true;
    const auto report = [&isRight](const std::string& place, const std::exception& error) {
        std::fprintf(stderr, "hwctl: %s: %s\n", place.c_str(), error.what());
        isRight = false;
    };
    for (const DeskRunOptions::Line& line : lines)
        try {
            check.Check(line.text);
        } catch (const std::exception& error) {
            report(line.place + ": " + line.text, error);
        }
    try {
        if (options.state && !options.state->empty() && (isOnlyCheck || !options.readsInput))
            check.FindPath(*options.state);
    } catch (const std::exception& error) {
        report("--state", error);
    }
    return isRight;
}

int RunDesk(const Arguments& arguments, bool hasSeconds, bool hasState, bool logsToErrors)
{
    if (arguments.verbs)
        return PrintVerbs();
    if (arguments.file.empty())
        throw UsageError("desk needs a desk file; data/desk has some");
    const Desk::DeskData data = Desk::ReadDesk(
        arguments.file, [](const std::string& source) { Tools::TimecodeSource::Parse(source); });
    const DeskRunOptions options = MakeOptions(arguments, hasSeconds, hasState, logsToErrors);
    if (!CheckLines(data, options, arguments.check))
        return ExitCode_Failure;
    if (arguments.check) {
        std::printf("%s: %s\n", arguments.file.c_str(), data.name.c_str());
        return ExitCode_Success;
    }
    return DeskRun(data, options).Run();
}

void AddOptions(CLI::App& command, Arguments& arguments)
{
    command.add_option("file", arguments.file, "Desk file; data/desk has some");
    command
        .add_option("--script", arguments.scripts,
                    "Script to do, a line after the other, - for standard input; may be repeated")
        ->allow_extra_args(false);
    command
        .add_option("--do", arguments.lines, "One line to do behind the scripts; may be repeated")
        ->allow_extra_args(false);
    CLI::Option* const until =
        command
            .add_option("--until", arguments.until,
                        "PATH OPERATOR VALUE: waits at the end until this holds, and fails when it "
                        "does not come to")
            ->expected(3);
    command.add_option("--within", arguments.within, "Seconds that --until waits; 10 if not given")
        ->check(InRange(0.0, 1e6))
        ->needs(until);
    command.add_flag("--check", arguments.check,
                     "Read the desk file, every line of the scripts and --do, and every name and "
                     "path in them, and do nothing");
    command.add_flag("--verbs", arguments.verbs, "List what a line can be");
    command.add_flag("--quiet", arguments.isQuiet,
                     "Print no signals, and no log lines unless --log or --log-to asks for them");
    command.add_flag("--live", arguments.isLive,
                     "Draw timecode, lights and the last signals again and again, where the output "
                     "is a terminal; print lines otherwise");
    command.add_flag("--json", arguments.json, "Print JSON, one object a line");
}

} // namespace

void AddDeskCommand(CLI::App& app, CommonOptions& options, Action& action)
{
    auto arguments = std::make_shared<Arguments>();
    CLI::App* const command = app.add_subcommand(
        "desk", "Run a virtual desk from a file, with a console's application on it");
    AddOptions(*command, *arguments);
    CLI::Option* const seconds = command
                                     ->add_option("--for", arguments->seconds,
                                                  "Go on for so many seconds behind the last line")
                                     ->check(InRange(0.0, 1e6));
    CLI::Option* const state =
        command
            ->add_option("--state", arguments->state,
                         "Print what the desk shows at the end, or the part at a path")
            ->expected(0, 1);
    command->callback([arguments, seconds, state, &options, &action] {
        options.useVirtual = !arguments->verbs && !arguments->check;
        options.isQuiet = options.isQuiet || arguments->isQuiet;
        action = [arguments, seconds, state, &options] {
            return RunDesk(*arguments, seconds->count() > 0, state->count() > 0,
                           LogsToErrors(options));
        };
    });
}

} // namespace Hwctl
