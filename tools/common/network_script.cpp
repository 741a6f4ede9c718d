// SPDX-License-Identifier: MIT
#include "common/network_script.h"

#include <charconv>
#include <functional>
#include <map>
#include <optional>
#include <sstream>
#include <stdexcept>

#include "common/script_lines.h"

namespace Tools
{

namespace
{

using Desk::VirtualNetwork;
typedef NetworkScript::Step Step;

std::optional<std::uint64_t> ParseNumber(const std::string& word)
{
    std::uint64_t number = 0;
    const char* const end = word.data() + word.size();
    const auto [stop, error] = std::from_chars(word.data(), end, number);
    if (error != std::errc() || stop != end || word.empty())
        return std::nullopt;
    return number;
}

bool IsNothing(const std::string& word)
{
    return word.empty();
}

bool IsSpeed(const std::string& word)
{
    return ParseNumber(word).has_value();
}

bool IsCount(const std::string& word)
{
    constexpr std::uint64_t Most = 1000000;
    return ParseNumber(word).value_or(Most + 1) <= Most;
}

bool IsName(const std::string& word)
{
    return Standalone::IsAdapterName(Standalone::WidenAdapterName(word));
}

bool IsUp(const VirtualNetwork& network, const std::wstring& name)
{
    for (const Desk::AdapterData& adapter : network.GetAdapters())
        if (adapter.name == name)
            return adapter.isUp;
    return false;
}

struct Verb {
    bool (*isWord)(const std::string&); ///< what stands behind it
    std::function<void(VirtualNetwork&, const Step&)> act;
};

const std::map<std::string, Verb>& GetVerbs()
{
    static const std::map<std::string, Verb> verbs{
        {"add", {&IsNothing, [](VirtualNetwork& n, const Step& s) { n.Add({s.adapter}); }}},
        {"remove", {&IsNothing, [](VirtualNetwork& n, const Step& s) { n.Remove(s.adapter); }}},
        {"up", {&IsNothing, [](VirtualNetwork& n, const Step& s) { n.SetUp(s.adapter); }}},
        {"down", {&IsNothing, [](VirtualNetwork& n, const Step& s) { n.SetDown(s.adapter); }}},
        {"speed",
         {&IsSpeed, [](VirtualNetwork& n,
                       const Step& s) { n.SetSpeed(s.adapter, ParseNumber(s.word).value_or(0)); }}},
        {"rename",
         {&IsName,
          [](VirtualNetwork& n, const Step& s) {
              n.Rename(s.adapter, Standalone::WidenAdapterName(s.word));
          }}},
        {"flap",
         {&IsCount,
          [](VirtualNetwork& n, const Step& s) {
              n.Flap(s.adapter, static_cast<unsigned>(ParseNumber(s.word).value_or(0)));
          }}},
        {"overrun", {&IsNothing, [](VirtualNetwork& n, const Step& s) {
                         n.Overrun([&] {
                             if (IsUp(n, s.adapter))
                                 n.SetDown(s.adapter);
                             else
                                 n.SetUp(s.adapter);
                         });
                     }}}};
    return verbs;
}

constexpr char Kind[] = "network script";

/// The verb and what stands behind it. Throws std::invalid_argument with the reason alone.
void ParseVerb(std::istream& words, Step& step)
{
    const auto verb = GetVerbs().find(step.verb);
    if (verb == GetVerbs().end())
        throw std::invalid_argument("there is no verb '" + step.verb + "'");
    words >> step.word;
    std::string rest;
    if (!verb->second.isWord(step.word) || words >> rest)
        throw std::invalid_argument("what follows '" + step.verb + "' is not what it takes");
}

Step ParseStep(const std::string& text, std::size_t line)
{
    std::istringstream words(text);
    Step step{};
    std::string adapter;
    if (!(words >> step.seconds) || !(step.seconds >= 0))
        RefuseScriptLine(Kind, line, "it begins with seconds");
    if (!(words >> adapter >> step.verb))
        RefuseScriptLine(Kind, line, "an adapter and a verb follow the seconds");
    if (!IsName(adapter))
        RefuseScriptLine(Kind, line, "no adapter can have the name '" + adapter + "'");
    step.adapter = Standalone::WidenAdapterName(adapter);
    try {
        ParseVerb(words, step);
    } catch (const std::invalid_argument& error) {
        RefuseScriptLine(Kind, line, error.what());
    }
    return step;
}

} // namespace

NetworkScript NetworkScript::Parse(const std::string& text)
{
    NetworkScript script;
    script.m_steps = ParseTimedScript<std::vector<Step>>(Kind, text, ParseStep);
    return script;
}

NetworkScript NetworkScript::Read(const std::string& file)
{
    return Parse(ReadWholeFile(file));
}

NetworkScript::Step NetworkScript::ParseAct(const std::string& adapter, const std::string& text)
{
    std::istringstream words(text);
    Step step{};
    if (!IsName(adapter))
        throw std::invalid_argument("no adapter can have the name '" + adapter + "'");
    step.adapter = Standalone::WidenAdapterName(adapter);
    words >> step.verb;
    ParseVerb(words, step);
    return step;
}

void NetworkScript::Do(const Step& step, VirtualNetwork& network)
{
    GetVerbs().at(step.verb).act(network, step);
}

} // namespace Tools
