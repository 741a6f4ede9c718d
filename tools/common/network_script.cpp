// SPDX-License-Identifier: MIT
#include "common/network_script.h"

#include <functional>
#include <map>
#include <optional>
#include <sstream>
#include <stdexcept>

#include "common/number.h"
#include "common/script_lines.h"

namespace Tools
{

namespace
{

using Desk::VirtualNetwork;
typedef NetworkScript::Step Step;

std::optional<std::uint64_t> ToCount(const std::string& word)
{
    return ParseNumber<std::uint64_t>(word);
}

bool IsNothing(const std::string& word)
{
    return word.empty();
}

bool IsSpeed(const std::string& word)
{
    return ToCount(word).has_value();
}

bool IsCount(const std::string& word)
{
    constexpr std::uint64_t Most = 1000000;
    return ParseNumber<std::uint64_t>(word, 0, Most).has_value();
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
                       const Step& s) { n.SetSpeed(s.adapter, ToCount(s.word).value_or(0)); }}},
        {"rename",
         {&IsName,
          [](VirtualNetwork& n, const Step& s) {
              n.Rename(s.adapter, Standalone::WidenAdapterName(s.word));
          }}},
        {"flap",
         {&IsCount,
          [](VirtualNetwork& n, const Step& s) {
              n.Flap(s.adapter, static_cast<unsigned>(ToCount(s.word).value_or(0)));
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

Step ParseStep(const std::string& text)
{
    std::istringstream words(text);
    Step step{};
    step.seconds = TakeScriptSeconds(words);
    std::string adapter;
    if (!(words >> adapter >> step.verb))
        throw std::invalid_argument("an adapter and a verb follow the seconds");
    if (!IsName(adapter))
        throw std::invalid_argument("no adapter can have the name '" + adapter + "'");
    step.adapter = Standalone::WidenAdapterName(adapter);
    ParseVerb(words, step);
    return step;
}

} // namespace

NetworkScript NetworkScript::Parse(const std::string& text, const std::string& name)
{
    NetworkScript script;
    script.m_steps = ParseTimedScript<std::vector<Step>>(name, text, ParseStep);
    return script;
}

NetworkScript NetworkScript::Read(const std::string& file)
{
    return Parse(ReadWholeFile(file), file);
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
