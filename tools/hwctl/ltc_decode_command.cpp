// SPDX-License-Identifier: MIT
#include <unistd.h>

#include <memory>

#include "desk/audio_file.h"
#include "desk/raw_pcm.h"
#include "hwctl/command.h"
#include "hwctl/ltc_report.h"

namespace Hwctl
{

namespace
{

struct Arguments {
    std::string file;
    std::string raw;
    Desk::PcmLayout layout;
    unsigned channel = 1;
    bool json = false;
};

std::unique_ptr<Desk::AudioSource> Open(const Arguments& arguments)
{
    const bool isRaw = !arguments.raw.empty();
    if (isRaw != (arguments.file == "-"))
        throw UsageError(isRaw ? "--raw reads standard input, which is the file '-'"
                               : "standard input needs --raw");
    if (!isRaw)
        return std::make_unique<Desk::AudioFile>(arguments.file, arguments.channel);
    Desk::PcmLayout layout = arguments.layout;
    layout.format = arguments.raw == "s16le" ? Desk::PcmFormat_S16Le : Desk::PcmFormat_F32Le;
    layout.channel = arguments.channel;
    return ParseArgument(
        [](const Desk::PcmLayout& given) {
            return std::make_unique<Desk::RawPcm>(STDIN_FILENO, given);
        },
        layout);
}

int RunDecode(const Arguments& arguments)
{
    const auto source = Open(arguments);
    EventPrinter printer(arguments.json, stdout);
    return LtcReport(printer, source->GetSampleRate()).Run(*source, arguments.file);
}

} // namespace

void AddLtcDecodeCommand(CLI::App& parent, Action& action)
{
    auto arguments = std::make_shared<Arguments>();
    CLI::App* const command =
        parent.add_subcommand("decode", "Print every frame that an audio file carries");
    command
        ->add_option("file", arguments->file,
                     "WAV, FLAC or whatever else libsndfile reads; - for standard input")
        ->required();
    CLI::Option* const raw = command
                                 ->add_option("--raw", arguments->raw,
                                              "Samples on standard input, without a header: s16le "
                                              "or f32le")
                                 ->transform(CLI::IsMember({"s16le", "f32le"}, CLI::ignore_case));
    command->add_option("--rate", arguments->layout.sampleRate, "Their rate in Hz; 48000")
        ->check(InRange(8000U, 192000U))
        ->needs(raw);
    command->add_option("--channels", arguments->layout.channels, "How many channels; 1")
        ->check(InRange(1U, 64U))
        ->needs(raw);
    command->add_option("--channel", arguments->channel, "Which one to read, from 1; the first")
        ->check(InRange(1U, 1024U));
    command->add_flag("--json", arguments->json, "Print JSON, one object a line");
    command->callback(
        [arguments, &action] { action = [arguments] { return RunDecode(*arguments); }; });
}

} // namespace Hwctl
