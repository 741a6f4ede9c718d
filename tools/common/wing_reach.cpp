// SPDX-License-Identifier: MIT
#include "common/wing_reach.h"

#include <algorithm>
#include <map>
#include <set>

#include "common/wing_name.h"
#include "standalone/wing_table.h"

namespace Tools
{

namespace
{

using Hardware::WingModel;

/// The wing mapper sets LEDs of the wings with this product id by sections alone.
constexpr unsigned short SectionsOnlyProductId = 1;
/// Sections number their masters by tens.
constexpr int MastersPerTen = 10;
/// The kind of wing that has no beacon.
constexpr unsigned SilentKind = 3;
constexpr unsigned NoMaster = 65535;

const WingModel* FindModel(std::uint32_t key)
{
    const auto& models = Standalone::GetWingModels();
    const auto found = std::find_if(models.begin(), models.end(), [key](const WingModel& model) {
        return model.kind && *model.kind == key >> 16U;
    });
    return found == models.end() ? nullptr : &*found;
}

/// Numbers as "1 to 10, 65535".
std::string ListNumbers(const std::set<unsigned>& numbers)
{
    std::string text;
    for (auto first = numbers.begin(); first != numbers.end();) {
        auto last = first;
        while (std::next(last) != numbers.end() && *std::next(last) == *last + 1)
            ++last;
        text += (text.empty() ? "" : ", ") + std::to_string(*first);
        if (last != first)
            text += " to " + std::to_string(*last);
        first = std::next(last);
    }
    return text;
}

/// Parts with their masters, "parts 54, 70 with masters 1 to 10; parts 110 to 129 with master
/// 65535".
std::string ListControls(const WingModel::Map& map)
{
    std::map<unsigned, std::set<unsigned>> mastersByPart;
    for (const auto& [pid, mid] : map)
        mastersByPart[pid].insert(mid);
    std::map<std::set<unsigned>, std::set<unsigned>> partsByMasters;
    for (const auto& [pid, masters] : mastersByPart)
        partsByMasters[masters].insert(pid);
    std::string text;
    for (const auto& [masters, parts] : partsByMasters)
        text += (text.empty() ? "" : "; ") + std::string(parts.size() == 1 ? "part " : "parts ") +
                ListNumbers(parts) + (masters.size() == 1 ? " with master " : " with masters ") +
                ListNumbers(masters);
    return text;
}

std::string DemandSections(std::uint32_t key)
{
    return GetWingName(key) + " takes LEDs by whole sections only: use --section";
}

} // namespace

std::string FindLedProblem(std::uint32_t key, unsigned pid, unsigned mid)
{
    const WingModel* const model = FindModel(key);
    if (!model)
        return "";
    if (model->productId == SectionsOnlyProductId)
        return DemandSections(key);
    if (std::any_of(model->leds.begin(), model->leds.end(),
                    [&](const auto& led) { return led.first == pid && led.second == mid; }))
        return "";
    return GetWingName(key) + " has no LED of part " + std::to_string(pid) +
           (mid == NoMaster ? " without a master" : " and master " + std::to_string(mid)) +
           "; there are " + ListControls(model->leds);
}

std::string FindAllLedsProblem(std::uint32_t key)
{
    const WingModel* const model = FindModel(key);
    return model && model->productId == SectionsOnlyProductId ? DemandSections(key) : "";
}

std::string FindLedSectionProblem(std::uint32_t key, int section)
{
    const WingModel* const model = FindModel(key);
    if (!model)
        return "";
    const bool hasMasters =
        section >= 0 && section < model->sections &&
        std::any_of(model->leds.begin(), model->leds.end(), [&](const auto& led) {
            return led.second > section * MastersPerTen &&
                   led.second <= section * MastersPerTen + model->mastersPerSection;
        });
    if (hasMasters)
        return "";
    if (model->sections == 0)
        return GetWingName(key) + " has no sections with masters";
    return GetWingName(key) + " has no section " + std::to_string(section) + "; " +
           (model->sections == 1 ? "section 0 is the only one"
                                 : "the last one is " + std::to_string(model->sections - 1));
}

std::string FindFaderProblem(std::uint32_t key, unsigned mid)
{
    const WingModel* const model = FindModel(key);
    if (!model)
        return "";
    if (!model->hasMotorFaders || model->faders.empty())
        return GetWingName(key) + " has no motor faders";
    std::set<unsigned> masters;
    for (const auto& [pid, master] : model->faders)
        masters.insert(master);
    if (masters.contains(mid))
        return "";
    return GetWingName(key) + " has no motor fader of master " + std::to_string(mid) +
           "; there are masters " + ListNumbers(masters);
}

std::string FindBeaconProblem(std::uint32_t key)
{
    return key >> 16U == SilentKind ? GetWingName(key) + " cannot identify itself" : "";
}

} // namespace Tools
