// SPDX-License-Identifier: MIT
#include "desk/desk_data.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "common/light_setting.h"
#include "common/timecode_source.h"
#include "standalone/network_source.h"

namespace
{

using Desk::DeskData;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

DeskData Parse(const std::string& text)
{
    return Desk::ParseDesk(text, "a.json", "");
}

/// What is wrong with a desk, or nothing.
std::string GetProblem(const std::string& text)
{
    try {
        Desk::ParseDesk(text, "a.json", "desks");
        return "nothing";
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
}

std::string JoinLines(const nlohmann::json& lines)
{
    std::string text;
    for (const auto& line : lines)
        text += (&line == &lines.front() ? "" : "\n") + line.get<std::string>();
    return text;
}

DeskData ReadExample(const std::string& name)
{
    return Desk::ReadDesk(DATA_FOLDER "/desk/" + name + ".json");
}

std::vector<std::string> GetModels(const DeskData& desk)
{
    std::vector<std::string> models;
    for (const Desk::WidgetData& widget : desk.widgets)
        models.push_back(widget.model);
    return models;
}

std::vector<std::pair<std::string, bool>> GetPorts(const DeskData& desk)
{
    std::vector<std::pair<std::string, bool>> ports;
    for (const Desk::MidiPortData& port : desk.midiPorts)
        ports.emplace_back(port.name, port.isPlugged);
    return ports;
}

std::vector<std::string> GetAdapters(const DeskData& desk)
{
    std::vector<std::string> adapters;
    for (const Desk::AdapterData& adapter : desk.adapters)
        adapters.push_back(Standalone::NarrowAdapterName(adapter.name) +
                           (adapter.isUp ? " up " : " down ") + std::to_string(adapter.speed));
    return adapters;
}

/// Without what networks have.
Standalone::PlatformSettings GetCapabilities(const DeskData& desk)
{
    Standalone::PlatformSettings settings = desk.platform;
    settings.consoleNetwork.clear();
    settings.fixtureNetwork.clear();
    return settings;
}

/// A folder of its own, gone afterwards.
class DeskFile : public testing::Test
{
protected:
    DeskFile()
    {
        std::string name = (std::filesystem::temp_directory_path() / "desk-XXXXXX").string();
        EXPECT_NE(mkdtemp(name.data()), nullptr);
        m_folder = name;
    }
    ~DeskFile() override { std::filesystem::remove_all(m_folder); }

    std::string Write(const std::string& name, const std::string& text) const
    {
        std::ofstream(m_folder / name, std::ios::binary) << text;
        return m_folder / name;
    }

    std::filesystem::path m_folder;
};

} // namespace

// The same table tells the test of the schema what that can see.
TEST(DeskData, TellsTheFirstMistakeAndItsLine)
{
    std::ifstream in(BAD_DESKS);
    const auto table = nlohmann::json::parse(in);
    ASSERT_THAT(table, SizeIs(testing::Ge(40U)));
    for (const auto& row : table)
        EXPECT_EQ(GetProblem(JoinLines(row["text"])),
                  "a.json:" + std::to_string(row["line"].get<int>()) + ": " +
                      row["reason"].get<std::string>())
            << row["what"];
}

TEST(DeskData, FindsBytesThatAreNoText)
{
    EXPECT_EQ(GetProblem("{\n\"name\": \"A\xFF\"}"),
              "a.json:2: syntax error: invalid string: ill-formed UTF-8 byte");
    EXPECT_EQ(GetProblem("{\n\n\xFF}"),
              "a.json:3: syntax error: invalid literal \"\uFFFD\"; expected string literal");
    // What was read last is not taken for what is wrong.
    EXPECT_EQ(GetProblem("{\"control character U+000A ] - ; last read: \": x}"),
              "a.json:1: syntax error: invalid literal \"x\"");
    const std::string behind("{\"name\": \"A\"}\n\0", 15);
    EXPECT_EQ(GetProblem(behind), "a.json:2: syntax error: there is a byte of 0");
}

TEST(DeskData, CountsLinesOfAnySystem)
{
    EXPECT_EQ(GetProblem("\xEF\xBB\xBF{\r\n\r\n\"name\": 1\r\n\r\n}"),
              "a.json:3: \"name\" is a text that is not empty");
    // A number ends with the line, and what is wrong with it is still said of its own.
    EXPECT_EQ(GetProblem("{\"name\": \"A\", \"settings\": {\"left\":\n101\n\n}}"),
              "a.json:2: \"left\" is a number from 0 to 100");
}

TEST(DeskData, NeedsNothingButAName)
{
    const DeskData desk = Parse(R"({"name": "Bare"})");
    EXPECT_EQ(desk.name, "Bare");
    EXPECT_EQ(desk.description, "");
    EXPECT_EQ(desk.platform, Standalone::PlatformSettings());
    EXPECT_FALSE(desk.platform.isConsole);
    EXPECT_THAT(desk.widgets, IsEmpty());
    EXPECT_THAT(desk.midiPorts, IsEmpty());
    EXPECT_THAT(desk.serialLines, IsEmpty());
    EXPECT_FALSE(desk.cd.has_value());
    EXPECT_THAT(desk.adapters, IsEmpty());
    EXPECT_THAT(desk.simulate, IsEmpty());
    EXPECT_EQ(desk.settings, Standalone::LightSettings());
}

TEST(DeskData, FillsInWhatADeviceDoesNotSay)
{
    const DeskData desk = Parse(R"({
        "name": "A",
        "widgets": [{"model": "Vex4Pixi", "path": "a_B-3"}],
        "midi": ["Keys", {"name": "More Keys"}],
        "serial": [{"device": "/dev/ttyUSB0"}],
        "cd": {},
        "networks": {"adapters": [{"name": "eth0"}]}
    })");
    EXPECT_THAT(desk.widgets, ElementsAre(Desk::WidgetData{"Vex4Pixi", std::nullopt, L"a_B-3"}));
    EXPECT_THAT(GetPorts(desk), ElementsAre(Pair("Keys", true), Pair("More Keys", true)));
    ASSERT_THAT(desk.serialLines, SizeIs(1));
    EXPECT_EQ(desk.serialLines[0].device, "/dev/ttyUSB0");
    EXPECT_EQ(desk.serialLines[0].peer, Desk::SerialLineData::Peer::Nobody);
    ASSERT_TRUE(desk.cd.has_value());
    EXPECT_EQ(desk.cd->sheet, "");
    EXPECT_THAT(desk.cd->tracks, IsEmpty());
    EXPECT_EQ(desk.cd->dataDisc, std::nullopt);
    EXPECT_THAT(GetAdapters(desk), ElementsAre("eth0 up 1000000000"));
    EXPECT_THAT(desk.platform.consoleNetwork, IsEmpty());
}

TEST(DeskData, TakesWhatEachDeviceSays)
{
    const DeskData desk = Parse(R"({
        "name": "A", "$schema": "desk.schema.json", "description": "B",
        "widgets": [{"path": "w", "serial": 65535, "model": "LtcWidget"},
                    {"path": "W", "serial": 0, "model": "LtcWidget"}],
        "midi": [{"plugged": false, "name": "123456789012345678901234567890"}],
        "serial": [{"peer": "panel", "device": "/dev/ttyS0"},
                   {"peer": "echo", "device": "/dev/ttyS1"},
                   {"peer": "nobody", "device": "/dev/ttyS2"}],
        "cd": {"tracks": [1, 5996]},
        "networks": {"adapters": [{"name": "a-b_c.15_bytes!", "up": false, "speed": 1e12},
                                  {"name": "e\u00e9", "speed": 0}],
                     "console": ["eth9", "e\u00e9"], "fixture": ["eth9"]},
        "timecode": {"simulate": ["25", "not checked here"]}
    })");
    EXPECT_EQ(desk.description, "B");
    EXPECT_THAT(desk.widgets, ElementsAre(Desk::WidgetData{"LtcWidget", 65535, L"w"},
                                          Desk::WidgetData{"LtcWidget", 0, L"W"}));
    EXPECT_THAT(GetPorts(desk), ElementsAre(Pair("123456789012345678901234567890", false)));
    ASSERT_THAT(desk.serialLines, SizeIs(3));
    EXPECT_EQ(desk.serialLines[0].peer, Desk::SerialLineData::Peer::Panel);
    EXPECT_EQ(desk.serialLines[1].peer, Desk::SerialLineData::Peer::Echo);
    EXPECT_EQ(desk.serialLines[2].peer, Desk::SerialLineData::Peer::Nobody);
    EXPECT_THAT(desk.cd->tracks, ElementsAre(1, 5996));
    EXPECT_THAT(GetAdapters(desk),
                ElementsAre("a-b_c.15_bytes! down 1000000000000", "e\u00e9 up 0"));
    EXPECT_THAT(desk.platform.consoleNetwork, ElementsAre(L"eth9", L"e\u00e9"));
    EXPECT_THAT(desk.platform.fixtureNetwork, ElementsAre(L"eth9"));
    EXPECT_THAT(desk.simulate, ElementsAre("25", "not checked here"));
    EXPECT_EQ(Parse(R"({"name": "A", "cd": {"data": 60}})").cd->dataDisc, 60);
}

TEST(DeskData, GivesAConsoleWhatItsModelHas)
{
    for (const int productType : {0, 7, 8, 9, 11, 14, 255}) {
        const DeskData desk =
            Parse(R"({"name": "A", "console": {"productType": )" + std::to_string(productType) +
                  R"(}, "networks": {"console": ["eth0"]}})");
        EXPECT_EQ(GetCapabilities(desk), Standalone::MakeConsoleSettings(productType));
        EXPECT_THAT(desk.platform.consoleNetwork, ElementsAre(L"eth0"));
    }
}

TEST(DeskData, LetsAConsoleDifferFromItsModel)
{
    // Networks and differences may stand ahead of the model.
    const DeskData desk = Parse(R"({"name": "A",
        "networks": {"console": ["eth1"], "fixture": ["eth0"]}, "console": {
        "ventLight": false, "blueDesklights": false, "productType": 7,
        "whiteDesklights": true, "illuminatedKeyboardDrawer": false}})");
    Standalone::PlatformSettings expected = Standalone::MakeConsoleSettings(7);
    expected.hasVentLight = false;
    expected.hasBlueDesklights = false;
    expected.hasIlluminatedKeyboardDrawer = false;
    expected.consoleNetwork = {L"eth1"};
    expected.fixtureNetwork = {L"eth0"};
    EXPECT_EQ(desk.platform, expected);

    const DeskData other = Parse(R"({"name": "A", "console": {
        "productType": 1, "worklights": true, "ventLight": true, "blueDesklights": true,
        "whiteDesklights": true, "illuminatedKeyboardDrawer": true}})");
    expected = Standalone::MakeConsoleSettings(7);
    expected.productType = 1;
    EXPECT_EQ(other.platform, expected);
}

// Names and effects are those of the command line.
TEST(DeskData, HasTheSettingsOfTheCommandLine)
{
    const auto defaults = Tools::DescribeLightSettings({});
    for (const auto& [name, value] : defaults) {
        const bool isSwitch = value == "on" || value == "off";
        for (const std::string& each : isSwitch ? std::vector<std::string>{"on", "off"}
                                                : std::vector<std::string>{"0", "37.55", "100"}) {
            Standalone::LightSettings expected;
            Tools::ChangeLightSetting(expected, name + "=" + each);
            const std::string json = !isSwitch ? each : each == "on" ? "true" : "false";
            EXPECT_EQ(
                Parse(R"({"name": "A", "settings": {")" + name + "\": " + json + "}}").settings,
                expected)
                << name << " " << each;
        }
    }
    EXPECT_THAT(defaults, SizeIs(12));
}

TEST_F(DeskFile, LooksForTheSheetInTheDesksFolder)
{
    Write("disc.cue", "FILE \"a.wav\" WAVE\n  REM LENGTH 01:00:00\n  TRACK 01 AUDIO\n"
                      "    INDEX 01 00:00:00\n");
    const std::string file = Write("a.json", R"({"name": "A", "cd": {"disc": "disc.cue"}})");
    EXPECT_EQ(Desk::ReadDesk(file).cd->sheet, m_folder / "disc.cue");
    // Wherever its whole name leads.
    const std::string elsewhere =
        R"({"name": "A", "cd": {"disc": ")" + (m_folder / "disc.cue").string() + "\"}}";
    EXPECT_EQ(Desk::ParseDesk(elsewhere, "b.json", "somewhere").cd->sheet, m_folder / "disc.cue");
}

TEST_F(DeskFile, TellsWhatIsWrongWithTheSheet)
{
    const std::string sheet = Write("disc.cue", "TITLE \"A\"\nFILES\n");
    const std::string file =
        Write("a.json", "{\"name\": \"A\",\n \"cd\": {\"disc\": \"disc.cue\"}}");
    try {
        Desk::ReadDesk(file);
        FAIL();
    } catch (const std::invalid_argument& error) {
        EXPECT_THAT(error.what(),
                    testing::StartsWith(file + ":2: CUE sheet '" + sheet + "', line 2: "));
    }
}

TEST_F(DeskFile, TellsThatAFileCannotBeRead)
{
    for (const std::filesystem::path& file : {m_folder / "missing.json", m_folder})
        try {
            Desk::ReadDesk(file);
            ADD_FAILURE();
        } catch (const std::invalid_argument&) {
            ADD_FAILURE();
        } catch (const std::runtime_error& error) {
            EXPECT_EQ(error.what(), file.string() + ": cannot be read");
        }
}

TEST_F(DeskFile, RefusesAFileWithoutEnd)
{
    try {
        Desk::ReadDesk("/dev/zero");
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "/dev/zero: is longer than 1048576 bytes");
    }
}

TEST(DeskData, HasABoundedNumberOfEachThing)
{
    const auto repeat = [](const std::string& begin, const char* entry, int count) {
        std::string text = begin;
        for (int i = 0; i < count; ++i)
            text += (i > 0 ? ",\n" : "") + std::string(entry) + std::to_string(i) + "\"";
        return text;
    };
    const std::string begin = "{\"name\": \"A\",\n";
    EXPECT_EQ(GetProblem(repeat(begin + "\"midi\": [", "\"port ", 65) + "]}"),
              "a.json:66: \"midi\" has at most 64 entries, not 65");
    EXPECT_EQ(GetProblem(repeat(begin + "\"midi\": [", "\"port ", 64) + "]}"), "nothing");
    EXPECT_EQ(
        GetProblem(repeat(begin + "\"timecode\": {\"simulate\": [", "\"25,start=", 70) + "]}}"),
        "a.json:66: \"simulate\" has at most 64 entries, not 70");
    EXPECT_EQ(GetProblem(repeat(begin + "\"networks\": {\"console\": [", "\"eth", 257) + "]}}"),
              "a.json:258: \"console\" has at most 256 entries, not 257");
}

TEST(DeskData, NamesADiscByAFile)
{
    for (const char* const sheet : {"/dev/zero", "/dev/null", "/"})
        EXPECT_EQ(
            GetProblem("{\"name\": \"A\", \"cd\": {\"disc\": \"" + std::string(sheet) + "\"}}"),
            "a.json:1: CUE sheet '" + std::string(sheet) + "' cannot be read");
    EXPECT_EQ(GetProblem(R"({"name": "A", "cd": {"disc": "a\u0000b"}})"),
              "a.json:1: \"disc\" is the name of a file, which has no byte of 0");
}

TEST(DeskExamples, HaveAFullConsole)
{
    const DeskData desk = ReadExample("full-console");
    EXPECT_EQ(desk.name, "Full console");
    EXPECT_EQ(GetCapabilities(desk), Standalone::MakeConsoleSettings(7));
    EXPECT_THAT(GetModels(desk), SizeIs(14));
    EXPECT_THAT(GetModels(desk),
                testing::IsSupersetOf({"Vex4DeskPlayback", "Vex4DeskProgrammer", "Vex4TopBox",
                                       "TrackballWidget", "LtcWidget"}));
    EXPECT_THAT(GetPorts(desk), ElementsAre(Pair("Stage Keyboard", true),
                                            Pair("Show Control", true), Pair("Spare", false)));
    EXPECT_THAT(desk.serialLines, IsEmpty());
    EXPECT_THAT(desk.cd->sheet, testing::EndsWith("/desk/../cd/soundtrack.cue"));
    EXPECT_THAT(GetAdapters(desk), ElementsAre("eth0 up 1000000000", "eth1 up 100000000"));
    EXPECT_EQ(desk.settings.leds, 0x3E8000U); // 62.5
}

TEST(DeskExamples, HaveAConsoleWithFlatPanels)
{
    const DeskData desk = ReadExample("panel-console");
    EXPECT_EQ(GetCapabilities(desk), Standalone::MakeConsoleSettings(8));
    EXPECT_THAT(GetModels(desk), testing::Contains("LtcWidget"));
    ASSERT_THAT(desk.serialLines, SizeIs(3));
    EXPECT_EQ(desk.serialLines[0].device, "/dev/ttyS0");
    EXPECT_EQ(desk.serialLines[0].peer, Desk::SerialLineData::Peer::Panel);
    EXPECT_EQ(desk.serialLines[1].device, "/dev/ttyS1");
    EXPECT_EQ(desk.serialLines[1].peer, Desk::SerialLineData::Peer::Panel);
    EXPECT_EQ(desk.serialLines[2].peer, Desk::SerialLineData::Peer::Echo);
    EXPECT_THAT(desk.cd->tracks, ElementsAre(180, 240, 95));
    EXPECT_THAT(desk.platform.consoleNetwork, ElementsAre(L"eth0", L"eth2"));
    EXPECT_TRUE(desk.settings.desklightBlue);
    EXPECT_FALSE(desk.settings.worklightOn);
}

TEST(DeskExamples, HaveACompactConsole)
{
    const DeskData desk = ReadExample("compact-console");
    EXPECT_EQ(GetCapabilities(desk), Standalone::MakeConsoleSettings(10));
    EXPECT_THAT(GetModels(desk), testing::Contains("Vex4Bramble"));
    EXPECT_EQ(desk.cd->dataDisc, 600);
    EXPECT_EQ(desk.settings.backlightLeft, 0x428000U); // 66.5
}

TEST(DeskExamples, HaveADeskAtHome)
{
    const DeskData desk = ReadExample("home-desk");
    EXPECT_FALSE(desk.platform.isConsole);
    EXPECT_THAT(GetModels(desk), ElementsAre("Vex4Pixi", "Vex4Petite"));
    EXPECT_THAT(GetPorts(desk), ElementsAre(Pair("USB Keyboard", true)));
    ASSERT_TRUE(desk.cd.has_value());
    EXPECT_EQ(desk.cd->sheet, "");
    EXPECT_THAT(desk.platform.fixtureNetwork, IsEmpty());
}

TEST(DeskExamples, HaveEverythingThatTheyName)
{
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(DATA_FOLDER "/desk")) {
        const std::filesystem::path& path = entry.path();
        if (path.extension() != ".json" || path.filename() == "desk.schema.json")
            continue;
        ++count;
        const DeskData desk = Desk::ReadDesk(path);
        EXPECT_THAT(desk.description, testing::EndsWith(".")) << path;
        EXPECT_THAT(desk.simulate, testing::Not(IsEmpty())) << path;
        for (const std::string& source : desk.simulate)
            EXPECT_NO_THROW(Tools::TimecodeSource::Parse(source)) << path << source;
        std::vector<std::wstring> adapters;
        for (const Desk::AdapterData& adapter : desk.adapters)
            adapters.push_back(adapter.name);
        EXPECT_THAT(adapters, testing::IsSupersetOf(desk.platform.consoleNetwork)) << path;
        EXPECT_THAT(adapters, testing::IsSupersetOf(desk.platform.fixtureNetwork)) << path;
    }
    EXPECT_EQ(count, 4);
}
