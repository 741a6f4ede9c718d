// SPDX-License-Identifier: MIT

// Reads arbitrary texts as scripts of a desk, without a desk that runs: each line passes or is
// refused with a reason, and its words come back as they were quoted.

#include <cstdint>
#include <stdexcept>
#include <string>

#include "console/line_check.h"
#include "console/script.h"
#include "require.h"

namespace
{

using Fuzz::Require;

const Desk::DeskData& GetDesk()
{
    static const Desk::DeskData desk = [] {
        Desk::DeskData data;
        data.name = "Fuzzed";
        data.widgets = {{"ExpansionWing", 2, L"expansion"}, {"Vex4ExternalPlayback", 3, L"motor"},
                        {"Vex4DeskPlayback", 4, L"panel"},  {"TrackballWidget", 6, L"trackball"},
                        {"Vex4TopBox", 7, L"bar"},          {"LtcWidget", 8, L"ltc"}};
        data.midiPorts = {{"Stage Keys"}, {"Show", false}};
        data.serialLines = {{"/dev/ttyS0", Desk::SerialLineData::Peer::Panel}};
        data.cd = Desk::CdData{{}, {180, 240}, {}};
        data.adapters = {{L"eth0"}};
        data.simulate = {"25"};
        return data;
    }();
    return desk;
}

void CheckWords(const std::string& line)
{
    try {
        const Console::Words words = Console::SplitWords(line);
        std::string again;
        for (const std::string& word : words)
            again += Console::Quote(word) + " ";
        Require(Console::SplitWords(again) == words, "words do not come back as they were quoted");
    } catch (const std::invalid_argument&) {
        return; // a quote does not end
    }
}

void CheckLine(Console::LineCheck& check, const std::string& line)
{
    try {
        check.Check(line);
    } catch (const std::invalid_argument& error) {
        Require(*error.what() != '\0', "a line is refused without a reason");
    } catch (const std::runtime_error& error) {
        Require(*error.what() != '\0', "a line is refused without a reason");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    const std::string text(data, data + size);
    Console::LineCheck check(GetDesk());
    std::size_t last = 0;
    for (const Console::ScriptLine& line : Console::ParseDeskScript(text)) {
        Require(line.number > last && !line.text.empty(), "lines are not in their order");
        last = line.number;
        CheckWords(line.text);
        CheckLine(check, line.text);
    }
    return 0;
}
