// SPDX-License-Identifier: MIT

// Reads arbitrary texts as desk files, and checks what is said of those that are none and what is
// in the others. Files that a desk names are looked for in a folder that does not exist.

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "desk/cd_disc.h"
#include "desk/desk_data.h"
#include "require.h"

using Fuzz::Require;

namespace
{

constexpr char Name[] = "fuzz";

void CheckReason(const std::string& reason, const std::string& text)
{
    const std::string rest = Fuzz::CheckPlace(reason, Name, text);
    Require(rest.size() > 2, "no reason");
    Require(std::none_of(rest.begin(), rest.end(),
                         [](char sign) { return sign == '\n' || sign == '\0'; }),
            "a reason of several lines");
}

/// No two have one name, and there are not too many.
template <class Entry, class GetName>
void CheckNames(const std::vector<Entry>& entries, std::size_t most, GetName getName)
{
    std::set<decltype(getName(entries.front()))> names;
    for (const Entry& entry : entries) {
        Require(!getName(entry).empty(), "something without a name");
        names.insert(getName(entry));
    }
    Require(names.size() == entries.size(), "a name stands twice");
    Require(entries.size() <= most, "more than a desk can have");
}

void CheckDesk(const Desk::DeskData& desk)
{
    Require(!desk.name.empty(), "a desk without a name");
    Require(desk.platform.productType >= 0 && desk.platform.productType <= 255, "no such model");
    CheckNames(desk.widgets, 256, [](const auto& widget) { return widget.path; });
    CheckNames(desk.midiPorts, 64, [](const auto& port) { return port.name; });
    CheckNames(desk.serialLines, 64, [](const auto& line) { return line.device; });
    CheckNames(desk.adapters, 256, [](const auto& adapter) { return adapter.name; });
    Require(desk.simulate.size() <= 64, "more sources than a desk can have");
    if (!desk.cd)
        return;
    Require(desk.cd->sheet.empty(), "a sheet that is not there was read");
    if (!desk.cd->tracks.empty())
        Desk::CdDisc::MakeAudio(desk.cd->tracks).Check();
    if (desk.cd->dataDisc)
        Desk::CdDisc::MakeData(*desk.cd->dataDisc).Check();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    const std::string text(data, data + size);
    try {
        CheckDesk(Desk::ParseDesk(text, Name, "/nonexistent/folder"));
    } catch (const std::invalid_argument& error) {
        CheckReason(error.what(), text);
    }
    return 0;
}
