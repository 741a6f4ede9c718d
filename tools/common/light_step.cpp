// SPDX-License-Identifier: MIT
#include "common/light_step.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>
#include <utility>

#include "common/light_name.h"
#include "common/number.h"

namespace Tools
{

namespace
{

constexpr double MostSeconds = 3600;
constexpr unsigned ShortestFade = 50; // milliseconds

typedef LightStep::Kind Kind;
constexpr std::array<std::pair<const char*, Kind>, 11> Words{{{"start", Kind::Start},
                                                              {"end", Kind::End},
                                                              {"reset", Kind::Reset},
                                                              {"key", Kind::Key},
                                                              {"sleep", Kind::Sleep},
                                                              {"wake", Kind::Wake},
                                                              {"open", Kind::Open},
                                                              {"close", Kind::Close},
                                                              {"apply", Kind::Apply},
                                                              {"change", Kind::Change},
                                                              {"settle", Kind::Settle}}};

unsigned ParseMilliseconds(const std::string& text)
{
    const auto seconds = ParseNumber(text, 0.0, MostSeconds);
    if (!seconds)
        throw std::invalid_argument("'" + text + "' is not a time from 0 to 3600 seconds");
    return static_cast<unsigned>(std::lround(*seconds * 1000));
}

} // namespace

LightStep LightStep::Parse(const std::string& text)
{
    LightStep step;
    step.text = text;
    const auto* const word = std::find_if(Words.begin(), Words.end(),
                                          [&text](const auto& each) { return text == each.first; });
    if (word != Words.end()) {
        step.kind = word->second;
        return step;
    }
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos)
        throw std::invalid_argument("'" + text +
                                    "' is not a step: LIGHT=LEVEL, "
                                    "LIGHT=LEVEL/SECONDS, wait=SECONDS, start, end, "
                                    "reset, key, sleep, wake, open, close, apply, "
                                    "change or settle");
    const std::string name = text.substr(0, equals);
    const std::string value = text.substr(equals + 1);
    if (name == "wait") {
        step.kind = Kind::Wait;
        step.milliseconds = ParseMilliseconds(value);
        return step;
    }
    step.light = ParseLight(name);
    const std::size_t slash = value.find('/');
    step.level = ParseLevel(value.substr(0, slash));
    if (slash != std::string::npos) {
        step.milliseconds = ParseMilliseconds(value.substr(slash + 1));
        // A fade has a step for each 50 ms, and its target is not among them.
        if (step.milliseconds > ShortestFade)
            step.kind = Kind::Fade;
    }
    return step;
}

} // namespace Tools
