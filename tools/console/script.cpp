// SPDX-License-Identifier: MIT
#include "console/script.h"

#include <algorithm>
#include <map>
#include <optional>
#include <sstream>

#include "common/number.h"
#include "console/limits.h"

namespace Console
{

namespace
{

using nlohmann::json;

constexpr double DefaultPatience = 10;
constexpr double LookSeconds = 0.02;

std::optional<double> ToDouble(const std::string& text)
{
    return Tools::ParseNumber<double>(text);
}

std::string ToText(const json& value)
{
    return value.is_string() ? value.get<std::string>() : value.dump();
}

/// The line up to a remark, which begins with # outside of quotes.
std::string WithoutRemark(const std::string& line)
{
    bool isQuoted = false;
    for (std::size_t position = 0; position < line.size(); ++position) {
        if (line[position] == '\\' && isQuoted)
            ++position;
        else if (line[position] == '"')
            isQuoted = !isQuoted;
        else if (line[position] == '#' && !isQuoted)
            return line.substr(0, position);
    }
    return line;
}

const std::map<std::string, bool (*)(double, double)>& GetComparisons()
{
    static const std::map<std::string, bool (*)(double, double)> comparisons{
        {"<", [](double a, double b) { return a < b; }},
        {">", [](double a, double b) { return a > b; }},
        {"<=", [](double a, double b) { return a <= b; }},
        {">=", [](double a, double b) { return a >= b; }}};
    return comparisons;
}

void Expect(const Session& session, const Words& words)
{
    const json state = session.GetState();
    const Condition given = Condition::Parse(words);
    const Condition condition = given.WithPath(session.FindPath(given.GetPath(), state));
    if (!condition.Holds(state))
        throw ExpectationError("expected " + condition.GetText() + ", found " +
                               condition.GetFound(state));
}

void Until(const Session& session, const Words& words, const std::function<bool(double)>& pause)
{
    const auto [given, patience] = ParseUntil(words);
    const Condition condition =
        given.WithPath(session.FindPath(given.GetPath(), session.GetState()));
    const double end = session.GetSeconds() + patience;
    for (;;) {
        const json state = session.GetState();
        if (condition.Holds(state))
            return;
        if (session.GetSeconds() >= end)
            throw ExpectationError("in " + ToText(json(patience)) + " s never came " +
                                   condition.GetText() + ", found " + condition.GetFound(state));
        if (!pause(LookSeconds))
            throw ExpectationError("interrupted before " + condition.GetText());
    }
}

} // namespace

std::vector<ScriptLine> ParseDeskScript(const std::string& text)
{
    std::vector<ScriptLine> lines;
    std::istringstream all(text);
    std::string line;
    for (std::size_t number = 1; std::getline(all, line); ++number) {
        line = WithoutRemark(line);
        const std::size_t begin = line.find_first_not_of(" \t\r");
        if (begin != std::string::npos)
            lines.push_back(
                {line.substr(begin, line.find_last_not_of(" \t\r") - begin + 1), number});
    }
    return lines;
}

const std::vector<VerbHelp>& GetScriptVerbs()
{
    static const std::vector<VerbHelp> verbs{
        {"wait SECONDS", "waits"},
        {"expect PATH =|!=|<|>|<=|>= VALUE", "fails unless it holds"},
        {"until PATH =|!=|<|>|<=|>= VALUE [within SECONDS]", "waits until it holds"},
        {"show PATH", "prints what stands there"}};
    return verbs;
}

Patience ParseUntil(Words words)
{
    double patience = DefaultPatience;
    if (words.size() == 5 && words[3] == "within") {
        patience = ToNumber(words[4], 0, Limits::LongestWait);
        words.resize(3);
    }
    return {Condition::Parse(words), patience};
}

Condition Condition::WithPath(const std::string& path) const
{
    Condition condition = *this;
    condition.m_path = path;
    return condition;
}

Condition Condition::Parse(const Words& words)
{
    constexpr std::size_t Parts = 3;
    if (words.size() != Parts)
        throw std::invalid_argument("a condition is PATH OPERATOR VALUE");
    Condition condition;
    condition.m_path = words[0];
    condition.m_operator = words[1];
    condition.m_value = words[2];
    condition.m_text = Quote(words[0]) + " " + words[1] + " " + Quote(words[2]);
    const bool compares = GetComparisons().contains(condition.m_operator);
    if (!compares && condition.m_operator != "=" && condition.m_operator != "!=")
        throw std::invalid_argument("'" + condition.m_operator + "' is none of = != < > <= >=");
    if (compares && !ToDouble(condition.m_value))
        throw std::invalid_argument("'" + condition.m_value + "' is not a number");
    return condition;
}

bool Condition::Holds(const json& state) const
{
    const json* const found = FindInState(state, m_path);
    if (const auto compare = GetComparisons().find(m_operator); compare != GetComparisons().end()) {
        if (!found || found->is_null())
            return false;
        if (!found->is_number())
            throw std::invalid_argument("'" + m_path + "' is not a number but " + ToText(*found));
        return compare->second(found->get<double>(), ToDouble(m_value).value_or(0));
    }
    bool isEqual = m_value == GetFound(state);
    if (found && found->is_number())
        if (const auto number = ToDouble(m_value))
            isEqual = found->get<double>() == *number;
    return isEqual == (m_operator == "=");
}

std::string Condition::GetFound(const json& state) const
{
    const json* const found = FindInState(state, m_path);
    return found && !found->is_null() ? ToText(*found) : "nothing";
}

const json* FindInState(const json& state, const std::string& path)
{
    const json* value = &state;
    std::size_t begin = 0;
    while (begin <= path.size()) {
        if (!value->is_object())
            return nullptr;
        // A name may hold a stroke itself: the longest that there is counts.
        std::size_t end = path.size();
        while (!value->contains(path.substr(begin, end - begin))) {
            if (end <= begin)
                return nullptr;
            end = path.rfind('/', end - 1);
            if (end == std::string::npos || end <= begin)
                return nullptr;
        }
        value = &value->at(path.substr(begin, end - begin));
        begin = end + 1;
    }
    return value;
}

void DoScriptLine(Session& session, const std::string& text,
                  const std::function<bool(double seconds)>& pause,
                  const std::function<void(const std::string&)>& print)
{
    const std::string line = WithoutRemark(text);
    Words words = SplitWords(line);
    const std::string verb = words.empty() ? std::string() : Session::FindVerb(words.front());
    const auto rest = [&words] { return Words(words.begin() + 1, words.end()); };
    if (verb == "wait") {
        CheckCount(rest(), 1, 1, "wait SECONDS");
        if (!pause(ToNumber(words[1], 0, Limits::LongestWait)))
            throw std::runtime_error("interrupted");
    } else if (verb == "expect") {
        Expect(session, rest());
    } else if (verb == "until") {
        Until(session, rest(), pause);
    } else if (verb == "show") {
        CheckCount(rest(), 1, 1, "show PATH");
        const json state = session.GetState();
        const std::string path = session.FindPath(words[1], state);
        const json* const found = FindInState(state, path);
        print(path + " = " + (found ? ToText(*found) : "nothing"));
    } else {
        session.Do(line);
    }
}

} // namespace Console
