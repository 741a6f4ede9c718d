// SPDX-License-Identifier: MIT
#include "common/widget_script.h"

#include <functional>
#include <map>
#include <optional>
#include <sstream>
#include <stdexcept>

#include "common/script_lines.h"
#include "desk/virtual_widget.h"

namespace Tools
{

namespace
{

typedef std::vector<int> Numbers;

struct Verb {
    std::optional<std::size_t> numbers; ///< how many it takes; any if not told
    std::function<void(Desk::VirtualWidget&, const Numbers&)> act;
};

std::uint16_t ToIndex(int number)
{
    return static_cast<std::uint16_t>(number);
}

std::vector<std::uint8_t> ToBytes(const Numbers& numbers)
{
    std::vector<std::uint8_t> bytes;
    for (const int number : numbers)
        bytes.push_back(static_cast<std::uint8_t>(number));
    return bytes;
}

const std::map<std::string, Verb>& GetVerbs()
{
    using Desk::VirtualWidget;
    static const std::map<std::string, Verb> verbs{
        {"plug", {0, [](VirtualWidget& w, const Numbers&) { w.Plug(); }}},
        {"unplug", {0, [](VirtualWidget& w, const Numbers&) { w.Unplug(); }}},
        {"press", {1, [](VirtualWidget& w, const Numbers& n) { w.Press(ToIndex(n[0])); }}},
        {"release", {1, [](VirtualWidget& w, const Numbers& n) { w.Release(ToIndex(n[0])); }}},
        {"fader",
         {2, [](VirtualWidget& w, const Numbers& n) { w.MoveFader(ToIndex(n[0]), n[1]); }}},
        {"encoder",
         {2, [](VirtualWidget& w, const Numbers& n) { w.TurnEncoder(ToIndex(n[0]), n[1]); }}},
        {"roll", {2, [](VirtualWidget& w, const Numbers& n) { w.RollTrackball(n[0], n[1]); }}},
        {"axis", {2, [](VirtualWidget& w, const Numbers& n) { w.RollAxis(n[0], n[1]); }}},
        {"touch", {1, [](VirtualWidget& w, const Numbers& n) { w.TouchBar(n[0], true); }}},
        {"untouch", {1, [](VirtualWidget& w, const Numbers& n) { w.TouchBar(n[0], false); }}},
        {"led",
         {2,
          [](VirtualWidget& w, const Numbers& n) {
              w.ChangeLed(ToIndex(n[0]), static_cast<std::uint8_t>(n[1]));
          }}},
        {"open", {0, [](VirtualWidget& w, const Numbers&) { w.OpenDrawer(); }}},
        {"close", {0, [](VirtualWidget& w, const Numbers&) { w.CloseDrawer(); }}},
        {"configure", {{}, [](VirtualWidget& w, const Numbers& n) { w.Configure(ToBytes(n)); }}}};
    return verbs;
}

constexpr char Kind[] = "widget script";

[[noreturn]] void Refuse(std::size_t line, const std::string& reason)
{
    RefuseScriptLine(Kind, line, reason);
}

WidgetScript::Step ParseStep(const std::string& text, std::size_t line)
{
    std::istringstream words(text);
    WidgetScript::Step step{};
    std::string path;
    if (!(words >> step.seconds) || step.seconds < 0)
        Refuse(line, "it begins with seconds");
    if (!(words >> path >> step.verb))
        Refuse(line, "a path and a verb follow the seconds");
    step.path.assign(path.begin(), path.end());
    const auto verb = GetVerbs().find(step.verb);
    if (verb == GetVerbs().end())
        Refuse(line, "there is no verb '" + step.verb + "'");
    int number = 0;
    while (words >> number)
        step.numbers.push_back(number);
    if (!words.eof())
        Refuse(line, "only numbers follow the verb");
    if (verb->second.numbers && *verb->second.numbers != step.numbers.size())
        Refuse(line, step.verb + " takes " + std::to_string(*verb->second.numbers) + " numbers");
    return step;
}

} // namespace

WidgetScript WidgetScript::Parse(const std::string& text)
{
    WidgetScript script;
    script.m_steps = ParseTimedScript<std::vector<Step>>(Kind, text, ParseStep);
    return script;
}

WidgetScript WidgetScript::Read(const std::string& file)
{
    return Parse(ReadWholeFile(file));
}

void WidgetScript::Do(const Step& step, const Desk::WidgetBus& bus)
{
    Desk::VirtualWidget* const widget = bus.Find(step.path);
    if (!widget)
        throw std::invalid_argument("there is no widget at '" +
                                    std::string(step.path.begin(), step.path.end()) + "'");
    GetVerbs().at(step.verb).act(*widget, step.numbers);
}

} // namespace Tools
