// SPDX-License-Identifier: MIT
#include <algorithm>
#include <charconv>
#include <cstdio>
#include <map>
#include <memory>
#include <string_view>
#include <tuple>

#include "common/number.h"
#include "desk/audio_file.h"
#include "desk/ltc_generator.h"
#include "hwctl/command.h"
#include "hwctl/exit_code.h"

namespace Hwctl
{

namespace
{

struct Arguments {
    std::string file;
    Desk::LtcSettings settings;
    std::string rate = "25";
    std::string start = "10:00:00:00";
    bool dropFrame = false;
    std::string speed = "1";
    std::string userBits;
    bool step = false;
    bool noParity = false;
    double noise = 0;
    std::vector<std::string> silences;
    std::vector<std::string> cuts;
};

/// One or two numbers with a colon between; the second one is the first if it is not there.
std::pair<double, double> ParsePair(const std::string& text, const char* option, bool needsBoth)
{
    const std::size_t colon = std::min(text.find(':'), text.size());
    const auto first = Tools::ParseNumber<double>(std::string_view(text).substr(0, colon));
    auto second = first;
    if (colon < text.size())
        second = Tools::ParseNumber<double>(std::string_view(text).substr(colon + 1));
    if (!first || !second || (needsBoth && colon == text.size()))
        throw UsageError(std::string(option) + ": '" + text + "' is not a " +
                         (needsBoth ? "pair" : "number or pair") + " such as 2.5:0.1");
    return {*first, *second};
}

Desk::LtcRate ParseRate(const std::string& text)
{
    static const std::map<std::string, Desk::LtcRate> rates{{"24", Desk::LtcRate_24},
                                                            {"25", Desk::LtcRate_25},
                                                            {"29.97", Desk::LtcRate_2997},
                                                            {"30", Desk::LtcRate_30}};
    return rates.at(text);
}

Desk::LtcTime ParseStart(std::string text, bool dropFrame, unsigned framesPerSecond)
{
    if (dropFrame)
        std::replace(text.begin(), text.end(), ':', ';');
    const auto time = Desk::ParseLtcTime(text, framesPerSecond);
    if (!time)
        throw UsageError("--start: '" + text + "' is no time at this rate");
    return *time;
}

std::uint32_t ParseUserBits(const std::string& text)
{
    std::uint32_t bits = 0;
    const char* const end = text.data() + text.size();
    const auto at = std::from_chars(text.data(), end, bits, 16);
    if (at.ec != std::errc() || at.ptr != end)
        throw UsageError("--user-bits: '" + text +
                         "' is not a number of up to 8 hexadecimal digits");
    return bits;
}

Desk::LtcSettings GetSettings(const Arguments& arguments, bool hasNoise)
{
    Desk::LtcSettings settings = arguments.settings;
    settings.rate = ParseRate(arguments.rate);
    settings.start =
        ParseStart(arguments.start, arguments.dropFrame, Desk::GetFrameCount(settings.rate));
    std::tie(settings.startSpeed, settings.endSpeed) = ParsePair(arguments.speed, "--speed", false);
    if (!arguments.userBits.empty())
        settings.userBits = ParseUserBits(arguments.userBits);
    if (hasNoise)
        settings.noise = arguments.noise;
    settings.levelShape = arguments.step ? Desk::LevelShape_Step : Desk::LevelShape_Sine;
    settings.parity = !arguments.noParity;
    for (const std::string& text : arguments.silences) {
        const auto [from, length] = ParsePair(text, "--dropout", true);
        settings.dropouts.push_back({from, length, false});
    }
    for (const std::string& text : arguments.cuts) {
        const auto [from, length] = ParsePair(text, "--cut", true);
        settings.dropouts.push_back({from, length, true});
    }
    return settings;
}

int RunGenerate(const Arguments& arguments, bool hasNoise)
{
    const auto generator = ParseArgument(
        [](const Desk::LtcSettings& settings) {
            return std::make_unique<Desk::LtcGenerator>(settings);
        },
        GetSettings(arguments, hasNoise));
    Desk::WriteAudioFile(arguments.file, *generator);
    return ExitCode_Success;
}

void AddTimeOptions(CLI::App& command, Arguments& arguments)
{
    command.add_option("--rate", arguments.rate, "Frames a second: 24, 25, 29.97 or 30; 25")
        ->check(CLI::IsMember({"24", "25", "29.97", "30"}));
    command.add_flag("--drop-frame", arguments.dropFrame,
                     "Count with drop frame, as ; in the first time does");
    command.add_option("--start", arguments.start, "First time, HH:MM:SS:FF; 10:00:00:00");
    command.add_option("--frames", arguments.settings.frames, "How many frames; 250")
        ->check(InRange(1U, 10'000'000U));
    command.add_flag("--backwards", arguments.settings.backwards, "Run backwards");
    command.add_option("--speed", arguments.speed,
                       "Speed, 0.1 to 10, or that of the first and the last frame, such as 0.5:4");
    command.add_option("--user-bits", arguments.userBits,
                       "User bits in hexadecimal, the first group last");
    command.add_flag("--no-parity", arguments.noParity,
                     "Leave the polarity correction bit at zero");
}

CLI::Option* AddSoundOptions(CLI::App& command, Arguments& arguments)
{
    Desk::LtcSettings& settings = arguments.settings;
    command.add_option("--sample-rate", settings.sampleRate, "Samples a second; 48000")
        ->check(InRange(8000U, 192000U));
    command.add_option("--level", settings.level, "Peak in dB of full scale; -6")
        ->check(InRange(-60.0, 0.0));
    CLI::Option* const change =
        command
            .add_option("--level-change", settings.levelChange,
                        "Change of the level in dB, there and back over the length")
            ->check(InRange(-60.0, 60.0));
    command.add_flag("--level-step", arguments.step, "Change it at once, in the middle, for good")
        ->needs(change);
    CLI::Option* const noise =
        command.add_option("--noise", arguments.noise, "White noise: signal-to-noise ratio in dB")
            ->check(InRange(-20.0, 100.0));
    command.add_option("--seed", settings.seed, "Seed of the noise; 1")->needs(noise);
    command.add_option("--dropout", arguments.silences,
                       "FROM:LENGTH in seconds: silence there; may be repeated");
    command.add_option("--cut", arguments.cuts,
                       "FROM:LENGTH in seconds: samples missing there; may be repeated");
    command.add_option("--lead-in", settings.leadIn, "Seconds of silence ahead")
        ->check(InRange(0.0, 86400.0));
    command.add_option("--lead-out", settings.leadOut, "Seconds of silence behind")
        ->check(InRange(0.0, 86400.0));
    return noise;
}

} // namespace

void AddLtcGenerateCommand(CLI::App& parent, Action& action)
{
    auto arguments = std::make_shared<Arguments>();
    CLI::App* const command = parent.add_subcommand("generate", "Write timecode as an audio file");
    command->add_option("file", arguments->file, "Where to: its ending is .wav or .flac")
        ->required();
    AddTimeOptions(*command, *arguments);
    CLI::Option* const noise = AddSoundOptions(*command, *arguments);
    command->callback([arguments, noise, &action] {
        action = [arguments, noise] { return RunGenerate(*arguments, noise->count() > 0); };
    });
}

} // namespace Hwctl
