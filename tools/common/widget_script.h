// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "desk/widget_bus.h"
#include "standalone/wing_table.h"

namespace Tools
{

/// What hands do to virtual widgets, as a text: one step a line, "SECONDS PATH VERB [NUMBER...]",
/// '#' begins a remark. Verbs: plug, unplug, press, release, fader, encoder, roll, axis, touch,
/// untouch, led, open, close, configure.
class WidgetScript
{
public:
    struct Step {
        std::string place; ///< "NAME:LINE" of a script's step
        double seconds;    ///< since the start, never less than the step before
        std::wstring path;
        std::string verb;
        std::vector<int> numbers;
    };

    /// Throws std::invalid_argument with "NAME:LINE: REASON" for a text that is not a script.
    static WidgetScript Parse(const std::string& text, const std::string& name);
    /// Reads a file; throws std::runtime_error when it cannot.
    static WidgetScript Read(const std::string& file);

    /// A step without its time: the verb and its numbers. Throws std::invalid_argument with the
    /// reason.
    static Step ParseAct(const std::string& path, const std::string& text);

    const std::vector<Step>& GetSteps() const { return m_steps; }
    /// Throws std::invalid_argument for what the model does not have.
    static void Check(const Step& step, const Hardware::WingModel& model);
    /// The same for the widget at the step's path. Throws std::invalid_argument also when there is
    /// none.
    static void Check(const Step& step, const Desk::WidgetBus& bus);
    /// Does one step. Throws as Check() does.
    static void Do(const Step& step, const Desk::WidgetBus& bus);

private:
    std::vector<Step> m_steps;
};

} // namespace Tools
