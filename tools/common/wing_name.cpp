// SPDX-License-Identifier: MIT
#include "common/wing_name.h"

#include <algorithm>
#include <stdexcept>

#include "common/near_names.h"
#include "standalone/wing_table.h"

namespace Tools
{

namespace
{

using Hardware::UmWing;

constexpr unsigned long LargestSerialNumber = 0xFFFF;
constexpr unsigned long LargestKey = 0xFFFFFFFF;

/// A whole number in decimal or, with 0x, in hexadecimal.
bool ParseNumber(const std::string& text, unsigned long largest, unsigned long& number)
{
    try {
        std::size_t end = 0;
        const bool isHex = text.starts_with("0x") || text.starts_with("0X");
        number = std::stoul(text, &end, isHex ? 16 : 10);
        return end == text.size() && text.front() != '-' && text.front() != '+' &&
               number <= largest;
    } catch (const std::exception&) {
        return false;
    }
}

} // namespace

std::string GetWingName(std::uint32_t key)
{
    const auto& models = Standalone::GetWingModels();
    const auto found =
        std::find_if(models.begin(), models.end(), [key](const Hardware::WingModel& model) {
            return model.kind && *model.kind == key >> 16U;
        });
    return found == models.end() ? std::to_string(key)
                                 : found->name + "/" + std::to_string(key & LargestSerialNumber);
}

std::uint32_t ParseWingKey(const std::string& text)
{
    unsigned long number = 0;
    const std::size_t slash = text.find('/');
    if (slash == std::string::npos && ParseNumber(text, LargestKey, number))
        return static_cast<std::uint32_t>(number);
    if (slash == std::string::npos ||
        !ParseNumber(text.substr(slash + 1), LargestSerialNumber, number))
        throw std::invalid_argument("'" + text +
                                    "' is no wing: MODEL/SERIAL, such as PlaybackWing/291, or the "
                                    "number of its key");
    Names names;
    for (const Hardware::WingModel& each : Standalone::GetWingModels())
        if (each.kind)
            names.push_back(each.name);
    const Hardware::WingModel* const model =
        Standalone::FindWingModel(ChooseName("model of wings", text.substr(0, slash), names));
    return *model->kind << 16U | static_cast<std::uint32_t>(number);
}

const std::map<std::string, UmWing::LedState>& GetLedStates()
{
    static const std::map<std::string, UmWing::LedState> states{{"off", UmWing::LedState_Off},
                                                                {"on", UmWing::LedState_On},
                                                                {"flash", UmWing::LedState_Flash},
                                                                {"dim", UmWing::LedState_Dim}};
    return states;
}

std::optional<std::string> FindLedStateName(int state)
{
    for (const auto& [name, value] : GetLedStates())
        if (static_cast<int>(value) == state)
            return name;
    return std::nullopt;
}

const std::map<std::string, UmWing::WingSections>& GetWingSections()
{
    static const std::map<std::string, UmWing::WingSections> sections{
        {"all", UmWing::WingSections_All},
        {"left", UmWing::WingSections_Left},
        {"right", UmWing::WingSections_Right},
        {"centre", UmWing::WingSections_Centre}};
    return sections;
}

} // namespace Tools
