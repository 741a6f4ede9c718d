// SPDX-License-Identifier: MIT
#include "common/widget_script.h"

#include <charconv>
#include <functional>
#include <map>
#include <optional>
#include <sstream>
#include <stdexcept>

#include "common/script_lines.h"
#include "desk/virtual_widget.h"
#include "desk/widget_controls.h"
#include "widget/expansion_wing.h"

namespace Tools
{

namespace
{

typedef std::vector<int> Numbers;

constexpr int HighestByte = 255;
constexpr std::size_t MostDisplays = Hardware::ExpansionWing::DisplayCount;
constexpr int RingAxis = 2;

struct Verb {
    std::optional<std::size_t> numbers; ///< how many it takes; any if not told
    /// Throws std::invalid_argument for what the model does not have.
    std::function<void(const Hardware::WingModel&, const Numbers&)> check;
    std::function<void(Desk::VirtualWidget&, const Numbers&)> act;
};

void CheckRange(int number, int lowest, int highest, const char* what)
{
    if (number < lowest || number > highest)
        throw std::invalid_argument(std::to_string(number) + " is no " + what + ", which is " +
                                    std::to_string(lowest) + " to " + std::to_string(highest));
}

void CheckIndex(int index, const Hardware::WingModel& model, const Hardware::WingModel::Map& parts,
                const char* what)
{
    if (parts.empty())
        throw std::invalid_argument(model.name + " has no " + what);
    const int last = static_cast<int>(parts.size()) - 1;
    if (index < 0 || index > last)
        throw std::invalid_argument(model.name + " has no " + what + " " + std::to_string(index) +
                                    ", the last one is " + std::to_string(last));
}

void CheckHas(bool has, const Hardware::WingModel& model, const char* what)
{
    if (!has)
        throw std::invalid_argument(model.name + " has no " + what);
}

void CheckNothing(const Hardware::WingModel&, const Numbers&) {}

void CheckKey(const Hardware::WingModel& model, const Numbers& numbers)
{
    CheckHas(!Desk::IsTouchBar(model), model, "keys: its buttons are touched");
    CheckIndex(numbers[0], model, model.buttons, "button");
}

void CheckFader(const Hardware::WingModel& model, const Numbers& numbers)
{
    CheckIndex(numbers[0], model, model.faders, "fader");
    CheckRange(numbers[1], 0, Desk::FaderEnd, "position");
}

void CheckEncoder(const Hardware::WingModel& model, const Numbers& numbers)
{
    CheckIndex(numbers[0], model, model.encoders, "encoder");
}

void CheckLed(const Hardware::WingModel& model, const Numbers& numbers)
{
    CheckIndex(numbers[0], model, model.leds, "LED");
    CheckRange(numbers[1], 0, HighestByte, "LED's state");
}

void CheckBall(const Hardware::WingModel& model, const Numbers&)
{
    CheckHas(Desk::HasBall(model), model, "trackball built in");
}

void CheckAxis(const Hardware::WingModel& model, const Numbers& numbers)
{
    CheckHas(Desk::IsTrackball(model), model, "axes: it is not the console's trackball");
    CheckRange(numbers[0], 0, RingAxis, "axis");
}

void CheckTouch(const Hardware::WingModel& model, const Numbers& numbers)
{
    CheckHas(Desk::IsTouchBar(model), model, "touch buttons");
    CheckIndex(numbers[0], model, model.buttons, "touch button");
}

void CheckDrawer(const Hardware::WingModel& model, const Numbers&)
{
    CheckHas(Desk::HasDrawer(model), model, "keyboard drawer");
}

void CheckDisplays(const Hardware::WingModel& model, const Numbers& numbers)
{
    CheckHas(Desk::HasDisplays(model), model, "displays to configure");
    if (numbers.empty() || numbers.size() > MostDisplays)
        throw std::invalid_argument("configure takes 1 to " + std::to_string(MostDisplays) +
                                    " bytes");
    for (const int number : numbers)
        CheckRange(number, 0, HighestByte, "byte");
}

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
        {"plug", {0, &CheckNothing, [](VirtualWidget& w, const Numbers&) { w.Plug(); }}},
        {"unplug", {0, &CheckNothing, [](VirtualWidget& w, const Numbers&) { w.Unplug(); }}},
        {"press",
         {1, &CheckKey, [](VirtualWidget& w, const Numbers& n) { w.Press(ToIndex(n[0])); }}},
        {"release",
         {1, &CheckKey, [](VirtualWidget& w, const Numbers& n) { w.Release(ToIndex(n[0])); }}},
        {"fader",
         {2, &CheckFader,
          [](VirtualWidget& w, const Numbers& n) { w.MoveFader(ToIndex(n[0]), n[1]); }}},
        {"encoder",
         {2, &CheckEncoder,
          [](VirtualWidget& w, const Numbers& n) { w.TurnEncoder(ToIndex(n[0]), n[1]); }}},
        {"roll",
         {2, &CheckBall, [](VirtualWidget& w, const Numbers& n) { w.RollTrackball(n[0], n[1]); }}},
        {"axis",
         {2, &CheckAxis, [](VirtualWidget& w, const Numbers& n) { w.RollAxis(n[0], n[1]); }}},
        {"touch",
         {1, &CheckTouch, [](VirtualWidget& w, const Numbers& n) { w.TouchBar(n[0], true); }}},
        {"untouch",
         {1, &CheckTouch, [](VirtualWidget& w, const Numbers& n) { w.TouchBar(n[0], false); }}},
        {"led",
         {2, &CheckLed,
          [](VirtualWidget& w, const Numbers& n) {
              w.ChangeLed(ToIndex(n[0]), static_cast<std::uint8_t>(n[1]));
          }}},
        {"open", {0, &CheckDrawer, [](VirtualWidget& w, const Numbers&) { w.OpenDrawer(); }}},
        {"close", {0, &CheckDrawer, [](VirtualWidget& w, const Numbers&) { w.CloseDrawer(); }}},
        {"configure", {{}, &CheckDisplays, [](VirtualWidget& w, const Numbers& n) {
                           w.Configure(ToBytes(n));
                       }}}};
    return verbs;
}

std::string CountNumbers(std::size_t count)
{
    return count == 0   ? "no number"
           : count == 1 ? "one number"
                        : std::to_string(count) + " numbers";
}

/// What stands behind the path. Throws std::invalid_argument with the reason alone.
void ParseVerb(std::istream& words, WidgetScript::Step& step)
{
    const auto verb = GetVerbs().find(step.verb);
    if (verb == GetVerbs().end())
        throw std::invalid_argument("there is no verb '" + step.verb + "'");
    for (std::string word; words >> word;) {
        int number = 0;
        const char* const last = word.data() + word.size();
        const char* const first = word.data() + (word.starts_with('+') && word.size() > 1 ? 1 : 0);
        const auto [end, error] = std::from_chars(first, last, number);
        if (error == std::errc::result_out_of_range)
            throw std::invalid_argument("'" + word + "' is out of range");
        if (error != std::errc() || end != last)
            throw std::invalid_argument("only numbers follow the verb");
        step.numbers.push_back(number);
    }
    if (verb->second.numbers && *verb->second.numbers != step.numbers.size())
        throw std::invalid_argument(step.verb + " takes " + CountNumbers(*verb->second.numbers));
}

WidgetScript::Step ParseStep(const std::string& text)
{
    std::istringstream words(text);
    WidgetScript::Step step{};
    step.seconds = TakeScriptSeconds(words);
    std::string path;
    if (!(words >> path >> step.verb))
        throw std::invalid_argument("a path and a verb follow the seconds");
    step.path.assign(path.begin(), path.end());
    ParseVerb(words, step);
    return step;
}

Desk::VirtualWidget& FindWidget(const WidgetScript::Step& step, const Desk::WidgetBus& bus)
{
    Desk::VirtualWidget* const widget = bus.Find(step.path);
    if (!widget)
        throw std::invalid_argument("there is no widget at '" +
                                    std::string(step.path.begin(), step.path.end()) + "'");
    return *widget;
}

} // namespace

WidgetScript WidgetScript::Parse(const std::string& text, const std::string& name)
{
    WidgetScript script;
    script.m_steps = ParseTimedScript<std::vector<Step>>(name, text, ParseStep);
    return script;
}

WidgetScript WidgetScript::Read(const std::string& file)
{
    return Parse(ReadWholeFile(file), file);
}

WidgetScript::Step WidgetScript::ParseAct(const std::string& path, const std::string& text)
{
    std::istringstream words(text);
    Step step{};
    step.path.assign(path.begin(), path.end());
    words >> step.verb;
    ParseVerb(words, step);
    return step;
}

void WidgetScript::Check(const Step& step, const Hardware::WingModel& model)
{
    GetVerbs().at(step.verb).check(model, step.numbers);
}

void WidgetScript::Check(const Step& step, const Desk::WidgetBus& bus)
{
    Check(step, FindWidget(step, bus).GetModel());
}

void WidgetScript::Do(const Step& step, const Desk::WidgetBus& bus)
{
    Desk::VirtualWidget& widget = FindWidget(step, bus);
    Check(step, widget.GetModel());
    GetVerbs().at(step.verb).act(widget, step.numbers);
}

} // namespace Tools
