// SPDX-License-Identifier: MIT
#include "console/line_check.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <stdexcept>

#include "common/cd_step.h"
#include "common/hex.h"
#include "common/light_setting.h"
#include "common/light_step.h"
#include "common/log_contexts.h"
#include "common/network_script.h"
#include "common/timecode_source.h"
#include "common/widget_script.h"
#include "console/limits.h"
#include "console/script.h"
#include "console/session.h"
#include "console/usage.h"
#include "desk/cd_disc.h"
#include "desk/ltc_time.h"
#include "watch/cd_facts.h"

namespace Console
{

namespace
{

/// The forms of a verb.
const std::vector<Usage>& GetUsages(const std::string& verb)
{
    static const std::map<std::string, std::vector<Usage>> usages = [] {
        std::map<std::string, std::vector<Usage>> all;
        for (const std::vector<VerbHelp>& group : {Session::GetVerbs(), GetScriptVerbs()})
            for (const VerbHelp& help : group)
                all[help.usage.substr(0, help.usage.find(' '))].emplace_back(help.usage);
        return all;
    }();
    return usages.at(verb);
}

Words GetRest(const Words& words, std::size_t first)
{
    return {words.begin() + static_cast<std::ptrdiff_t>(std::min(first, words.size())),
            words.end()};
}

std::string Join(const Words& words)
{
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : " ") + word;
    return text;
}

/// The second literal of a form, such as "press": where it stands and what it can be.
std::size_t GetSecondLiteral(const Usage& usage)
{
    const auto& parts = usage.GetParts();
    const auto found = std::find_if(parts.begin() + 1, parts.end(),
                                    [](const Usage::Part& part) { return !part.literals.empty(); });
    return static_cast<std::size_t>(found - parts.begin());
}

/// Says what is wrong with words that have none of the forms.
[[noreturn]] void RefuseForm(const Words& words, const std::vector<Usage>& usages)
{
    Tools::Names known;
    std::string forms;
    const std::size_t place = GetSecondLiteral(usages.front());
    for (const Usage& usage : usages) {
        const auto& parts = usage.GetParts();
        const auto literals =
            place < parts.size() ? parts[place].literals : std::vector<std::string>();
        known.insert(known.end(), literals.begin(), literals.end());
        const bool isMeant =
            literals.empty() || (place < words.size() && std::find(literals.begin(), literals.end(),
                                                                   words[place]) != literals.end());
        if (isMeant)
            forms += (forms.empty() ? "" : " or ") + usage.GetText();
    }
    if (!forms.empty())
        throw std::invalid_argument("it is: " + forms);
    const std::string word = place < words.size() ? words[place] : std::string();
    throw std::invalid_argument(
        (word.empty() ? "a word is missing" : words[0] + " knows no '" + word + "'") +
        Tools::SuggestNames(word, known));
}

void CheckFile(const std::string& word)
{
    if (!std::filesystem::is_regular_file(ToFile(word)))
        throw std::runtime_error("there is no file '" + word + "'");
}

void CheckBytes(const Words& words)
{
    const auto bytes = Tools::ParseHex(Join(words));
    if (!bytes || bytes->empty())
        throw std::invalid_argument("'" + Join(words) + "' is not a row of hexadecimal bytes");
    if (bytes->size() > Limits::MostBytes)
        throw std::invalid_argument("more than " + std::to_string(Limits::MostBytes) +
                                    " bytes at once");
}

void CheckWidget(const DeskNames& names, const Words& words)
{
    if (words[2] == "stuck")
        return;
    Words act = GetRest(words, 2);
    if (act[0] == "tap")
        act[0] = "press";
    Tools::WidgetScript::Check(Tools::WidgetScript::ParseAct(words[1], Join(act)),
                               names.GetModel(words[1]));
}

void CheckSource(const DeskNames& names, const Words& words)
{
    const int number = ToInteger(words[1], 0, Limits::HighestSource);
    if (words[2] != "create" && !names.HasSource(static_cast<unsigned>(number)))
        throw std::invalid_argument("there is no simulated source " + words[1] + "; sim " +
                                    words[1] + " create makes it");
    if (words[2] == "create")
        Tools::TimecodeSource::Parse(words[3]);
    else if (words[2] == "rate")
        ToNumber(words[3], -Limits::HighestRate, Limits::HighestRate);
    else if (words[2] == "jump")
        Tools::TimecodeSource::ParseFrame(words[3]);
}

void CheckBoard(const DeskNames&, const Words& words)
{
    if (words[2] == "play")
        CheckFile(words[3]);
    else if (words[2] == "dropout")
        ToNumber(words[3], 0, Limits::LongestDropout);
    else if (words[2] == "frame" && !Desk::ParseLtcTime(words[3], Limits::HighestFrameCount))
        throw std::invalid_argument("'" + words[3] + "' is not a time HH:MM:SS:FF");
}

void CheckInsert(const Words& words)
{
    const std::string kind = words.size() > 2 ? words[2] : std::string();
    if (kind == "tracks")
        CheckCount(words, 4, 3 + Desk::CdMaximumTracks, "cd insert tracks SECONDS...");
    else if (kind == "data")
        CheckCount(words, 4, 4, "cd insert data SECONDS");
    else if (!kind.empty())
        Tools::MakeVirtualDisc(ToFile(kind));
    for (const std::string& seconds : GetRest(words, 3))
        ToInteger(seconds, 1, Limits::LongestTrack);
}

/// What a hand does to the drive; everything else is a row of the player's steps.
bool IsHand(const std::string& verb)
{
    const std::set<std::string> hands{"insert", "eject",  "scratch", "busy",
                                      "slow",   "vanish", "appear"};
    return hands.contains(verb);
}

void CheckSteps(const Words& words)
{
    typedef Tools::CdStep::Verb Verb;
    for (const Tools::CdStep& step : Tools::ParseCdSteps(words))
        if (step.verb == Verb::Status || step.verb == Verb::Contents || step.verb == Verb::Follow)
            throw std::invalid_argument("that is not for a desk");
}

void CheckDrive(const DeskNames& names, const Words& words)
{
    if (!names.HasDrive())
        throw std::runtime_error("the desk has no CD drive");
    if (!IsHand(words[1])) {
        CheckSteps(GetRest(words, 1));
        return;
    }
    const std::vector<Usage>& usages = GetUsages("cd");
    if (std::none_of(usages.begin(), usages.end(),
                     [&words](const Usage& usage) { return usage.Matches(words); }))
        RefuseForm(words, usages);
    if (words[1] == "insert")
        CheckInsert(words);
    else if (words[1] == "slow")
        ToInteger(words[2], 0, Limits::LongestDelay);
}

void CheckLights(const DeskNames&, const Words& words)
{
    const Words steps = GetRest(words, 1);
    CheckCount(steps, 1, Limits::MostSteps, "light STEP...");
    for (const std::string& word : steps) {
        const auto kind = Tools::LightStep::Parse(word).kind;
        if (kind == Tools::LightStep::Kind::Wait || kind == Tools::LightStep::Kind::Settle)
            throw std::invalid_argument("'" + word + "' is not a verb: a line of its own waits");
    }
}

void CheckSettings(const DeskNames&, const Words& words)
{
    const Words changes = GetRest(words, 1);
    CheckCount(changes, 1, Limits::MostSteps, "setting NAME=VALUE...");
    Standalone::LightSettings settings;
    for (const std::string& word : changes)
        Tools::ChangeLightSetting(settings, word);
}

void CheckAdapter(const DeskNames&, const Words& words)
{
    Tools::NetworkScript::ParseAct(words[1], Join(GetRest(words, 2)));
    if (words[2] == "flap")
        ToInteger(words[3], 1, Limits::MostFlaps);
}

void CheckSerial(const DeskNames&, const Words& words)
{
    if (words[2] == "slow")
        ToInteger(words[3], 0, Limits::LongestDelay);
}

void CheckWing(const DeskNames&, const Words& words)
{
    if (words[2] == "led") {
        ToInteger(words[3], 0, Limits::HighestId);
        ToInteger(words[4], 0, Limits::HighestId);
    } else if (words[2] == "motor") {
        ToInteger(words[3], 0, Limits::HighestId);
        ToInteger(words[4], 0, Limits::HighestByte);
    }
}

void CheckLog(const DeskNames&, const Words& words)
{
    Tools::FindLogContext(words[1]);
    ToInteger(words[2], 0, Limits::AllLevels);
}

typedef std::function<void(const DeskNames&, const Words&)> ValueCheck;

/// What values of a line must be, by its verb, once its words have a form of the verb.
const std::map<std::string, ValueCheck>& GetValueChecks()
{
    static const std::map<std::string, ValueCheck> checks{
        {"widget", CheckWidget},
        {"wing", CheckWing},
        {"midi",
         [](const DeskNames&, const Words& words) {
             if (words[2] == "feed")
                 CheckBytes(GetRest(words, 3));
         }},
        {"send", [](const DeskNames&, const Words& words) { CheckBytes(GetRest(words, 1)); }},
        {"sim", CheckSource},
        {"ltc", CheckBoard},
        {"cd", CheckDrive},
        {"light", CheckLights},
        {"setting", CheckSettings},
        {"adapter", CheckAdapter},
        {"serial", CheckSerial},
        {"log", CheckLog},
        {"wait",
         [](const DeskNames&, const Words& words) { ToNumber(words[1], 0, Limits::LongestWait); }},
        {"show", [](const DeskNames& names, const Words& words) { names.FindPath(words[1]); }},
        {"expect",
         [](const DeskNames& names, const Words& words) {
             names.FindPath(Condition::Parse(GetRest(words, 1)).GetPath());
         }},
        {"until", [](const DeskNames& names, const Words& words) {
             names.FindPath(ParseUntil(GetRest(words, 1)).condition.GetPath());
         }}};
    return checks;
}

/// Their lines are rows of steps, which have forms of their own.
bool HasSteps(const std::string& verb)
{
    return verb == "light" || verb == "setting" || verb == "cd" || verb == "expect" ||
           verb == "until";
}

} // namespace

void LineCheck::Check(const std::string& line)
{
    Words words = SplitWords(line);
    if (words.empty())
        throw std::invalid_argument("there is no verb");
    words[0] = Session::FindVerb(words[0]);
    words = m_names.Resolve(std::move(words));
    const std::vector<Usage>& usages = GetUsages(words[0]);
    const bool hasForm = std::any_of(usages.begin(), usages.end(),
                                     [&words](const Usage& usage) { return usage.Matches(words); });
    if (!hasForm && (!HasSteps(words[0]) || words.size() < 2))
        RefuseForm(words, usages);
    if (const auto check = GetValueChecks().find(words[0]); check != GetValueChecks().end())
        check->second(m_names, words);
    m_names.Note(words);
}

} // namespace Console
