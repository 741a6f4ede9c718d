// SPDX-License-Identifier: MIT

// Timecode: simulated sources, and what LTC boards hear.

#include <algorithm>
#include <map>
#include <stdexcept>

#include "common/timecode_source.h"
#include "console/limits.h"
#include "console/verb.h"
#include "desk/ltc_time.h"

namespace Console
{

namespace
{

using Hardware::Timecode::DeviceSim;

/// A verb of one source; false for one that takes another form.
struct SimVerb {
    const char* usage;
    const char* text;
    std::size_t words; ///< behind the verb
    std::function<bool(DeviceSim&, unsigned, const std::string&)> act;
};

const std::map<std::string, SimVerb>& GetSimVerbs()
{
    static const std::map<std::string, SimVerb> verbs{
        {"start",
         {"sim NUMBER start", "lets a source run on from where it stands", 0,
          [](DeviceSim& sim, unsigned n, const std::string&) { return sim.Start(n); }}},
        {"stop",
         {"sim NUMBER stop", "lets it stand where it is", 0,
          [](DeviceSim& sim, unsigned n, const std::string&) { return sim.Stop(n); }}},
        {"enable",
         {"sim NUMBER enable", "lets it emit frames", 0,
          [](DeviceSim& sim, unsigned n, const std::string&) { return sim.Enable(n); }}},
        {"disable",
         {"sim NUMBER disable", "keeps it from emitting; its clock goes on", 0,
          [](DeviceSim& sim, unsigned n, const std::string&) { return sim.Disable(n); }}},
        {"rate",
         {"sim NUMBER rate FRAMES-PER-SECOND", "plays it at this rate; below 0 backwards", 1,
          [](DeviceSim& sim, unsigned n, const std::string& word) {
              return sim.SetRate(n, ToNumber(word, -Limits::HighestRate, Limits::HighestRate));
          }}},
        {"format",
         {"sim NUMBER format film24|ebu25|ntsc30|smpte30", "plays it at the rate of a format", 1,
          [](DeviceSim& sim, unsigned n, const std::string& word) {
              const auto& formats = Tools::TimecodeSource::GetFormats();
              const auto format = formats.find(word);
              if (format == formats.end())
                  throw std::invalid_argument("'" + word +
                                              "' is none of film24, ebu25, ntsc30, smpte30");
              return sim.SetFormat(n, format->second);
          }}},
        {"jump",
         {"sim NUMBER jump HH:MM:SS:FF", "goes on from this time", 1,
          [](DeviceSim& sim, unsigned n, const std::string& word) {
              return sim.Jump(n, Tools::TimecodeSource::ParseFrame(word));
          }}},
        {"destroy",
         {"sim NUMBER destroy", "removes the source for good", 0,
          [](DeviceSim& sim, unsigned n, const std::string&) {
              const std::list<unsigned> all = sim.GetInstances();
              if (std::find(all.begin(), all.end(), n) == all.end())
                  return false;
              sim.Destroy(n);
              return true;
          }}}};
    return verbs;
}

void Create(Session::Parts& parts, unsigned number, const Words& words)
{
    CheckCount(words, 3, 3, "sim NUMBER create RATE[,start=HH:MM:SS:FF][,backwards]");
    const std::list<unsigned> all = parts.simulator.GetInstances();
    if (std::find(all.begin(), all.end(), number) != all.end())
        throw std::runtime_error("there is a source " + std::to_string(number) + " already");
    Tools::TimecodeSource::Parse(words[2]).StartOn(parts.simulator, number);
    parts.NoteSimulators();
}

void DoSim(Session::Parts& parts, const Words& words)
{
    CheckCount(words, 2, 3, "sim NUMBER VERB ...");
    const auto number = static_cast<unsigned>(ToInteger(words[0], 0, Limits::HighestSource));
    if (words[1] == "create") {
        Create(parts, number, words);
        return;
    }
    const auto verb = GetSimVerbs().find(words[1]);
    if (verb == GetSimVerbs().end())
        throw std::invalid_argument("a simulated source knows no '" + words[1] + "'");
    const std::size_t count = verb->second.words + 2;
    CheckCount(words, count, count, verb->second.usage);
    if (!verb->second.act(parts.simulator, number, words.back()))
        throw std::runtime_error("there is no simulated source " + words[0]);
    parts.NoteSimulators();
    if (words[1] == "destroy")
        parts.ForgetTimecode("sim " + std::to_string(number));
}

void SendFrame(Desk::VirtualWidget& board, const std::string& word)
{
    if (!board.IsPlugged())
        throw std::runtime_error("the board is not plugged");
    const auto time = Desk::ParseLtcTime(word, Limits::HighestFrameCount);
    if (!time)
        throw std::invalid_argument("'" + word +
                                    "' is no time, which is HH:MM:SS:FF, or with ; "
                                    "for drop frame");
    Desk::SendTimecode(board, *time);
}

void DoLtc(Session::Parts& parts, const Words& words)
{
    CheckCount(words, 2, 4, "ltc PATH play|stop|dropout|frame ...");
    const std::string& path = words[0];
    const std::string& verb = words[1];
    Desk::VirtualWidget& board = parts.desk.GetBoard(path);
    if (verb == "play") {
        CheckCount(words, 3, 4, "ltc PATH play FILE [loop]");
        if (words.size() == 4 && words[3] != "loop")
            throw std::invalid_argument("behind the file stands loop, or nothing");
        parts.desk.PlayTimecode(path, ToFile(words[2]), words.size() == 4);
    } else if (verb == "stop") {
        CheckCount(words, 2, 2, "ltc PATH stop");
        parts.desk.StopTimecode(path);
    } else if (verb == "dropout") {
        CheckCount(words, 3, 3, "ltc PATH dropout SECONDS");
        parts.desk.DropTimecode(path, ToNumber(words[2], 0, Limits::LongestDropout));
    } else if (verb == "frame") {
        CheckCount(words, 3, 3, "ltc PATH frame HH:MM:SS:FF");
        SendFrame(board, words[2]);
    } else {
        throw std::invalid_argument("an LTC board knows no '" + verb + "'");
    }
}

} // namespace

void AddTimecodeVerbs(VerbTable& table)
{
    std::vector<VerbHelp> help{{"sim NUMBER create RATE[,start=HH:MM:SS:FF][,backwards]",
                                "makes and starts a simulated source"}};
    for (const auto& [name, verb] : GetSimVerbs())
        help.push_back({verb.usage, verb.text});
    table.Add("sim", DoSim, help);
    table.Add("ltc", DoLtc,
              {{"ltc PATH play FILE [loop]", "plays timecode audio into an LTC board"},
               {"ltc PATH stop", "ends that"},
               {"ltc PATH dropout SECONDS", "the board hears nothing for so long"},
               {"ltc PATH frame HH:MM:SS:FF", "the board delivers one frame"}});
}

} // namespace Console
