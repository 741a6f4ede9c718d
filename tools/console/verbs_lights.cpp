// SPDX-License-Identifier: MIT

// Lights, settings and the screen saver.

#include "common/light_setting.h"
#include "common/light_step.h"
#include "common/light_work.h"
#include "console/limits.h"
#include "console/verb.h"
#include "os/thread.h"
#include "standalone/light_settings.h"

namespace Console
{

namespace
{

using Tools::LightStep;

/// The screen saver that a step leaves on or off.
void NoteScreenSaver(Session::Parts& parts, LightStep::Kind kind)
{
    using Kind = LightStep::Kind;
    if (kind == Kind::Sleep)
        parts.isScreenSaverOn = true;
    else if (kind == Kind::Wake || kind == Kind::Start || kind == Kind::End)
        parts.isScreenSaverOn = false;
}

void DoLight(Session::Parts& parts, const Words& words)
{
    CheckCount(words, 1, Limits::MostSteps, "light STEP...");
    std::vector<LightStep> steps;
    for (const std::string& word : words)
        steps.push_back(LightStep::Parse(word));
    for (const LightStep& step : steps) {
        const unsigned before = parts.fadeSteps;
        Tools::DoLightStep(step, &parts.desk.GetBus());
        if (Tools::PostsMessages(step))
            parts.AwaitMessages();
        NoteScreenSaver(parts, step.kind);
        if (Tools::BeginsFades(step))
            Tools::WakeUntilItSteps([&parts, before] { return parts.fadeSteps != before; },
                                    Os::Thread::Sleep);
    }
}

void DoSetting(Session::Parts&, const Words& words)
{
    CheckCount(words, 1, Limits::MostSteps, "setting NAME=VALUE...");
    Standalone::ChangeLightSettings([&words](Standalone::LightSettings& settings) {
        for (const std::string& word : words)
            Tools::ChangeLightSetting(settings, word);
    });
}

} // namespace

void AddLightVerbs(VerbTable& table)
{
    table.Add("light", DoLight,
              {{"light LIGHT=PERCENT[/SECONDS]", "sets a light, or fades it"},
               {"light key", "presses the work-light key"},
               {"light sleep|wake", "the screen saver"},
               {"light open|close", "the keyboard drawer"},
               {"light apply|change", "shows the settings, at once or by fades"},
               {"light start|end|reset", "the console's start and end; stops all fades"}});
    table.Add("setting", DoSetting,
              {{"setting NAME=VALUE...", "what the user wants; light apply or change shows it"}});
}

} // namespace Console
