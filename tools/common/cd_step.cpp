// SPDX-License-Identifier: MIT
#include "common/cd_step.h"

#include <cmath>
#include <map>
#include <optional>
#include <regex>
#include <stdexcept>
#include <string_view>

#include "common/number.h"

namespace Tools
{

namespace
{

constexpr int FramesPerSecond = 75;
/// Of a disc, more than any plays.
constexpr double MostSeconds = 6000;
/// Of following.
constexpr double LongestFollow = 1e6;

typedef CdStep::Verb Verb;

const std::map<std::string, Verb> Verbs{{"status", Verb::Status}, {"contents", Verb::Contents},
                                        {"play", Verb::Play},     {"pause", Verb::Pause},
                                        {"resume", Verb::Resume}, {"stop", Verb::Stop},
                                        {"next", Verb::Next},     {"previous", Verb::Previous},
                                        {"jog", Verb::Jog},       {"follow", Verb::Follow}};

/// A decimal number of seconds, not more than so many in either direction; nothing for any other
/// text.
std::optional<double> ToSeconds(const std::string& word, double most)
{
    return ParseNumber(std::string_view(word).substr(word.starts_with('+') ? 1 : 0), -most, most);
}

/// A place to play from: a track or a time; nothing for any other word.
std::optional<CdStep> ToPlace(const std::string& word)
{
    static const std::regex form("([0-9]{1,3})(?::([0-5]?[0-9])(?::([0-9]{1,2}))?)?");
    std::smatch parts;
    if (!std::regex_match(word, parts, form))
        return std::nullopt;
    const auto toNumber = [&parts](std::size_t part) {
        return parts[part].matched ? std::stoi(parts[part]) : 0;
    };
    if (!parts[2].matched)
        return CdStep{Verb::PlayTrack, toNumber(1)};
    if (toNumber(3) >= FramesPerSecond)
        return std::nullopt;
    return CdStep{Verb::PlayTime, (toNumber(1) * 60 + toNumber(2)) * FramesPerSecond + toNumber(3)};
}

/// The step that @p verb makes with the word behind it, which is null at the end of the row;
/// whether that word belongs to it.
bool TakeArgument(CdStep& step, const std::string* word)
{
    const bool isFree = word && !Verbs.contains(*word);
    if (step.verb == Verb::Play && isFree) {
        const auto place = ToPlace(*word);
        if (!place)
            throw std::invalid_argument("'" + *word + "' is neither a track nor a time MM:SS:FF");
        step = *place;
        return true;
    }
    if (step.verb == Verb::Jog) {
        const auto seconds = isFree ? ToSeconds(*word, MostSeconds) : std::nullopt;
        if (!seconds)
            throw std::invalid_argument("jog needs a number of seconds, such as 10 or -2.5");
        step.number = static_cast<int>(std::lround(*seconds * FramesPerSecond));
        return true;
    }
    if (step.verb == Verb::Follow && isFree) {
        const auto seconds = ToSeconds(*word, LongestFollow);
        if (!seconds || *seconds <= 0)
            throw std::invalid_argument("'" + *word + "' is not a number of seconds to follow for");
        step.seconds = *seconds;
        return true;
    }
    return false;
}

} // namespace

std::vector<CdStep> ParseCdSteps(const std::vector<std::string>& words)
{
    std::vector<CdStep> steps;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const auto verb = Verbs.find(words[i]);
        if (verb == Verbs.end())
            throw std::invalid_argument("'" + words[i] +
                                        "' is none of status, contents, play, pause, resume, "
                                        "stop, next, previous, jog and follow");
        CdStep step{verb->second};
        if (TakeArgument(step, i + 1 < words.size() ? &words[i + 1] : nullptr))
            ++i;
        steps.push_back(step);
    }
    return steps;
}

} // namespace Tools
