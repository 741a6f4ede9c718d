// SPDX-License-Identifier: MIT
#include "desk/desk_data.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <utility>

#include "desk/cd_disc.h"
#include "desk/cue_sheet.h"
#include "files/text_file.h"
#include "standalone/network_source.h"
#include "standalone/wing_table.h"
#include "whole/desk_names.h"
#include "whole/json_lines.h"

namespace Desk
{

namespace
{

using Standalone::PlatformSettings;

constexpr long long HighestProductType = 255;
constexpr long long HighestSerialNumber = 65535;
constexpr long long HighestSpeed = 1'000'000'000'000;
constexpr std::size_t LongestPortName = 30; // bytes of the kernel's record
// More than any desk has, and few enough for threads, devices and pictures of them.
constexpr std::size_t MostWidgets = 256;
constexpr std::size_t MostPorts = 64;
constexpr std::size_t MostLines = 64;
constexpr std::size_t MostAdapters = 256;
constexpr std::size_t MostSources = 64;
constexpr int FullPercent = 100;
constexpr double FixedOne = 0x10000;
/// Seconds of sound that a disc has room for.
constexpr long long LongestTrack = (CdMaximumFrames - 1 - CdFirstFrame) / CdFramesPerSecond;

constexpr char PathLetters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";

bool IsPathWord(const std::string& text)
{
    return !text.empty() && text.find_first_not_of(PathLetters) == std::string::npos;
}

bool IsControl(char character)
{
    constexpr char Blank = ' ';
    constexpr char Delete = 0x7F;
    return (character >= 0 && character < Blank) || character == Delete;
}

/// Names of one kind, of which no two things may have the same.
class NamesTaken
{
public:
    /// @param what has the name, such as "a widget at"
    explicit NamesTaken(std::string what) : m_what(std::move(what)) {}

    void Add(const JsonValue& value, const std::string& name)
    {
        const auto [first, isNew] = m_lines.emplace(name, value.line);
        if (!isNew)
            value.Refuse("there is " + m_what + " " + QuoteJson(name) + " already, in line " +
                         std::to_string(first->second));
    }

private:
    const std::string m_what;
    std::map<std::string, int> m_lines;
};

std::wstring ReadAdapterName(const JsonValue& value, const std::string& what)
{
    const std::string& name = ReadText(value, what);
    std::wstring wide = Standalone::WidenAdapterName(name);
    if (!Standalone::IsAdapterName(wide))
        value.Refuse("no network adapter can have the name " + QuoteJson(name) +
                     R"(, but 1 to 15 bytes without blanks, "/" and ":")");
    return wide;
}

/// Takes a desk's parts out of its text.
class DeskReader
{
public:
    DeskReader(std::filesystem::path folder, const SourceCheck& check)
        : m_folder(std::move(folder)), m_check(check)
    {
    }

    DeskData Read(const JsonValue& value)
    {
        ReadObject(
            value, "a desk",
            {{"$schema", [](const auto& part) { ReadText(part, "\"$schema\""); }},
             {"name", [this](const auto& part) { m_data.name = ReadFilledText(part, "\"name\""); },
              true},
             {"description",
              [this](const auto& part) { m_data.description = ReadText(part, "\"description\""); }},
             {"console", [this](const auto& part) { ReadConsole(part); }},
             {"widgets", [this](const auto& part) { ReadWidgets(part); }},
             {"midi", [this](const auto& part) { ReadMidi(part); }},
             {"serial", [this](const auto& part) { ReadSerial(part); }},
             {"cd", [this](const auto& part) { ReadCd(part); }},
             {"networks", [this](const auto& part) { ReadNetworks(part); }},
             {"timecode", [this](const auto& part) { ReadTimecode(part); }},
             {"settings", [this](const auto& part) { ReadSettings(part); }}});
        return std::move(m_data);
    }

private:
    void ReadConsole(const JsonValue& value)
    {
        int productType = 0;
        std::vector<std::pair<bool PlatformSettings::*, bool>> overrides;
        std::vector<JsonField> fields{
            MakeWholeField("productType", 0, HighestProductType, productType, true)};
        for (const Capability& each : Capabilities)
            fields.push_back({each.name, [&overrides, each](const auto& part) {
                                  overrides.emplace_back(each.field,
                                                         ReadSwitch(part, QuoteJson(each.name)));
                              }});
        ReadObject(value, "\"console\"", fields);

        PlatformSettings made = Standalone::MakeConsoleSettings(productType);
        for (const auto& [field, isThere] : overrides)
            made.*field = isThere;
        made.consoleNetwork = std::move(m_data.platform.consoleNetwork); // may stand ahead
        made.fixtureNetwork = std::move(m_data.platform.fixtureNetwork);
        m_data.platform = std::move(made);
    }

    void ReadWidgets(const JsonValue& value)
    {
        NamesTaken paths("a widget at");
        for (const JsonValue& each : ReadList(value, "\"widgets\"", MostWidgets)) {
            WidgetData widget;
            ReadObject(each, "a widget",
                       {{"model", [&](const auto& part) { widget.model = ReadModel(part); }, true},
                        MakeWholeField("serial", 0, HighestSerialNumber, widget.serialNumber),
                        {"path",
                         [&](const auto& part) {
                             const std::string path = ReadPath(part);
                             paths.Add(part, path);
                             widget.path.assign(path.begin(), path.end());
                         },
                         true}});
            m_data.widgets.push_back(std::move(widget));
        }
    }

    static std::string ReadModel(const JsonValue& value)
    {
        const std::string& model = ReadText(value, "\"model\"");
        if (Standalone::FindWingModel(model))
            return model;
        std::string all;
        for (const Hardware::WingModel& each : Standalone::GetWingModels())
            all += (all.empty() ? "" : ", ") + each.name;
        value.Refuse("there is no widget model " + QuoteJson(model) + "; there are " + all);
    }

    static std::string ReadPath(const JsonValue& value)
    {
        const std::string& path = ReadText(value, "\"path\"");
        if (!IsPathWord(path))
            value.Refuse(R"("path" is one or more letters, digits, "-" and "_", not )" +
                         QuoteJson(path));
        return path;
    }

    void ReadMidi(const JsonValue& value)
    {
        NamesTaken names("a MIDI port");
        for (const JsonValue& each : ReadList(value, "\"midi\"", MostPorts)) {
            MidiPortData port;
            const auto takeName = [&](const JsonValue& part) {
                port.name = ReadPortName(part);
                names.Add(part, port.name);
            };
            if (std::holds_alternative<std::string>(each.content))
                takeName(each);
            else if (std::holds_alternative<JsonValue::Object>(each.content))
                ReadObject(each, "a MIDI port",
                           {{"name", takeName, true}, MakeSwitchField("plugged", port.isPlugged)});
            else
                each.Refuse("a MIDI port is a name, or an object with one");
            m_data.midiPorts.push_back(std::move(port));
        }
    }

    static std::string ReadPortName(const JsonValue& value)
    {
        const std::string& name = ReadText(value, "\"name\"");
        if (name.empty() || name.size() > LongestPortName)
            value.Refuse("a MIDI port's name has 1 to " + std::to_string(LongestPortName) +
                         " bytes, not " + std::to_string(name.size()));
        if (std::any_of(name.begin(), name.end(), IsControl))
            value.Refuse("a MIDI port's name has no control characters, as " + QuoteJson(name) +
                         " has");
        return name;
    }

    void ReadSerial(const JsonValue& value)
    {
        NamesTaken devices("a serial line");
        for (const JsonValue& each : ReadList(value, "\"serial\"", MostLines)) {
            SerialLineData line;
            ReadObject(each, "a serial line",
                       {{"device",
                         [&](const auto& part) {
                             line.device = ReadDevice(part);
                             devices.Add(part, line.device);
                         },
                         true},
                        {"peer", [&](const auto& part) { line.peer = ReadPeer(part); }}});
            m_data.serialLines.push_back(std::move(line));
        }
    }

    static std::string ReadDevice(const JsonValue& value)
    {
        const std::string Beginning = "/dev/tty";
        const std::string& device = ReadText(value, "\"device\"");
        if (!device.starts_with(Beginning) || !IsPathWord(device.substr(Beginning.size())))
            value.Refuse(QuoteJson(device) + " is no serial line, such as \"/dev/ttyS0\"");
        return device;
    }

    static SerialLineData::Peer ReadPeer(const JsonValue& value)
    {
        const std::string& name = ReadText(value, "\"peer\"");
        std::string all;
        for (const PeerName& each : Peers) {
            if (name == each.name)
                return each.peer;
            all += (all.empty() ? "" : ", ") + QuoteJson(each.name);
        }
        value.Refuse("there is no peer " + QuoteJson(name) + "; there are " + all);
    }

    void ReadCd(const JsonValue& value)
    {
        CdData cd;
        std::string first;
        const auto takeOnly = [&first](const JsonValue& part, const char* name) {
            if (!first.empty())
                part.Refuse("a drive holds one disc: " + QuoteJson(name) + " stands beside " +
                            QuoteJson(first));
            first = name;
        };
        ReadObject(value, "\"cd\"",
                   {{"disc",
                     [&](const auto& part) {
                         takeOnly(part, "disc");
                         cd.sheet = ReadSheet(part);
                     }},
                    {"tracks",
                     [&](const auto& part) {
                         takeOnly(part, "tracks");
                         cd.tracks = ReadTracks(part);
                     }},
                    {"data", [&](const auto& part) {
                         takeOnly(part, "data");
                         cd.dataDisc =
                             static_cast<int>(ReadWhole(part, "\"data\"", 1, LongestTrack));
                     }}});
        m_data.cd = std::move(cd);
    }

    std::string ReadSheet(const JsonValue& value) const
    {
        std::string sheet = m_folder / ReadFilledText(value, "\"disc\"");
        if (sheet.find('\0') != std::string::npos)
            value.Refuse("\"disc\" is the name of a file, which has no byte of 0");
        try {
            ReadCueSheet(sheet);
        } catch (const std::runtime_error& error) {
            value.Refuse(error.what());
        }
        return sheet;
    }

    static std::vector<int> ReadTracks(const JsonValue& value)
    {
        std::vector<int> tracks;
        for (const JsonValue& each : ReadList(value, "\"tracks\"", CdMaximumTracks))
            tracks.push_back(
                static_cast<int>(ReadWhole(each, "a track's length in seconds", 1, LongestTrack)));
        try {
            CdDisc::MakeAudio(tracks);
        } catch (const std::invalid_argument& error) {
            value.Refuse(error.what());
        }
        return tracks;
    }

    void ReadNetworks(const JsonValue& value)
    {
        ReadObject(value, "\"networks\"",
                   {{"adapters", [this](const auto& part) { ReadAdapters(part); }},
                    {"console",
                     [this](const auto& part) {
                         m_data.platform.consoleNetwork = ReadNetwork(part, "\"console\"");
                     }},
                    {"fixture", [this](const auto& part) {
                         m_data.platform.fixtureNetwork = ReadNetwork(part, "\"fixture\"");
                     }}});
    }

    void ReadAdapters(const JsonValue& value)
    {
        NamesTaken names("an adapter");
        for (const JsonValue& each : ReadList(value, "\"adapters\"", MostAdapters)) {
            AdapterData adapter;
            ReadObject(each, "an adapter",
                       {{"name",
                         [&](const auto& part) {
                             adapter.name = ReadAdapterName(part, "\"name\"");
                             names.Add(part, Standalone::NarrowAdapterName(adapter.name));
                         },
                         true},
                        MakeSwitchField("up", adapter.isUp),
                        MakeWholeField("speed", 0, HighestSpeed, adapter.speed)});
            m_data.adapters.push_back(std::move(adapter));
        }
    }

    /// Names of adapters that need not be there: one may be plugged later.
    static std::vector<std::wstring> ReadNetwork(const JsonValue& value, const std::string& what)
    {
        NamesTaken names("an adapter");
        std::vector<std::wstring> network;
        for (const JsonValue& each : ReadList(value, what, MostAdapters)) {
            network.push_back(ReadAdapterName(each, "an adapter's name"));
            names.Add(each, Standalone::NarrowAdapterName(network.back()));
        }
        return network;
    }

    void ReadTimecode(const JsonValue& value)
    {
        ReadObject(value, "\"timecode\"",
                   {{"simulate", [this](const auto& part) {
                         for (const auto& each : ReadList(part, "\"simulate\"", MostSources))
                             m_data.simulate.push_back(ReadSource(each));
                     }}});
    }

    std::string ReadSource(const JsonValue& value) const
    {
        const std::string& source = ReadFilledText(value, "a timecode source");
        try {
            if (m_check)
                m_check(source);
        } catch (const std::invalid_argument& error) {
            value.Refuse(error.what());
        }
        return source;
    }

    void ReadSettings(const JsonValue& value)
    {
        std::vector<JsonField> fields;
        fields.reserve(LevelSettings.size() + SwitchSettings.size());
        for (const LevelSetting& each : LevelSettings)
            fields.push_back({each.name, [this, each](const auto& part) {
                                  const double percent =
                                      ReadNumber(part, QuoteJson(each.name), 0, FullPercent);
                                  m_data.settings.*each.field =
                                      static_cast<uires16>(std::lround(percent * FixedOne));
                              }});
        for (const SwitchSetting& each : SwitchSettings)
            fields.push_back(MakeSwitchField(each.name, m_data.settings.*each.field));
        ReadObject(value, "\"settings\"", fields);
    }

    const std::filesystem::path m_folder;
    const SourceCheck& m_check;
    DeskData m_data;
};

} // namespace

std::string GetLineName(const std::string& device)
{
    return device.substr(device.rfind('/') + 1);
}

DeskData ParseDesk(const std::string& text, const std::string& name, const std::string& folder,
                   const SourceCheck& check)
{
    try {
        return DeskReader(folder, check).Read(ParseJson(text));
    } catch (const JsonProblem& problem) {
        throw std::invalid_argument(name + ":" + std::to_string(problem.GetLine()) + ": " +
                                    problem.what());
    }
}

DeskData ReadDesk(const std::string& file, const SourceCheck& check)
{
    return ParseDesk(ReadTextFile(file, file + ":"), file,
                     std::filesystem::path(file).parent_path(), check);
}

} // namespace Desk
