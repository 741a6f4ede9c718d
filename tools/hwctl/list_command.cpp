// SPDX-License-Identifier: MIT
#include <unistd.h>

#include <cstdio>
#include <memory>

#include "common/log_contexts.h"
#include "common/network_text.h"
#include "common/port_name.h"
#include "common/wing_name.h"
#include "hardware/midi/device.h"
#include "hardware/timecode/enumerations.h"
#include "hardware/wing_mapper.h"
#include "hwctl/command.h"
#include "hwctl/event_printer.h"
#include "hwctl/exit_code.h"
#include "hwctl/virtual_devices.h"
#include "kel/text_base.h"
#include "watch/cd_facts.h"
#include "watch/network_watch.h"
#include "widget/ltc_widget.h"
#include "widget/widget_manager.h"
#include "xtti/type_reg.h"

namespace Hwctl
{

namespace
{

/// Timecode device classes that the library has.
constexpr Hardware::TimecodeType TimecodeDevices[] = {
    Hardware::TimecodeType_Ltc, Hardware::TimecodeType_Cd, Hardware::TimecodeType_Simulated};

std::string GetText(const xtti::type_reg& type, int value)
{
    kel::text<char, 256> text;
    text << type.to_text(type, &value);
    return std::string(text.view());
}

nlohmann::json GetTimecodeDevices()
{
    const xtti::type_reg* const type = xtti::find(get_type_code<Hardware::TimecodeType>());
    nlohmann::json list = nlohmann::json::array();
    for (const Hardware::TimecodeType device : TimecodeDevices)
        list.push_back({{"type", static_cast<int>(device)},
                        {"name", GetText(*type, static_cast<int>(device))}});
    return list;
}

nlohmann::json GetEnumerations()
{
    nlohmann::json list = nlohmann::json::array();
    for (const xtti::type_reg* const type : xtti::registered_types()) {
        nlohmann::json values = nlohmann::json::array();
        for (int value = type->descriptor.first_named; value <= type->descriptor.last_named;
             ++value)
            values.push_back({{"value", value}, {"name", GetText(*type, value)}});
        list.push_back({{"code", type->code},
                        {"name", type->name},
                        {"lowest", type->descriptor.lowest},
                        {"highest", type->descriptor.highest},
                        {"values", values}});
    }
    return list;
}

std::string GetPath(const Hardware::WidgetMapData& mapData)
{
    const std::wstring& path = mapData.GetDevicePath();
    return {path.begin(), path.end()};
}

/// Wings and what else goes by a key, as the mapper finds them.
nlohmann::json GetWings()
{
    Hardware::WingMapper::Begin();
    nlohmann::json list = nlohmann::json::array();
    for (const Hardware::WidgetKey key : Hardware::WingMapper::Get().connected_wings())
        if (const Hardware::UmWidget* const wing = Hardware::WingMapper::Get().get_wing(key))
            list.push_back({{"key", key},
                            {"name", Tools::GetWingName(key)},
                            {"path", GetPath(wing->GetMapData())}});
    Hardware::WingMapper::End();
    return list;
}

nlohmann::json GetLtcBoards()
{
    nlohmann::json list = nlohmann::json::array();
    for (const Hardware::WidgetMapData& board :
         Hardware::WidgetManager::GetClassMapData(GUID_DEVINTERFACE_QRTUMLTCD))
        list.push_back(
            {{"serial", Hardware::LtcWidget(board).SerialNumber()}, {"path", GetPath(board)}});
    return list;
}

/// The adapter that serves each network.
nlohmann::json GetNetworks()
{
    using Os::Platform;
    nlohmann::json list = nlohmann::json::array();
    for (const Platform::Protocol protocol :
         {Platform::Protocol_Console, Platform::Protocol_Fixture})
        if (const auto adapter = Tools::FindNetworkAdapter(protocol)) {
            nlohmann::json network = Tools::DescribeNetwork(protocol, *adapter);
            network["text"] = Tools::DescribeAdapter(*adapter);
            list.push_back(network);
        }
    return list;
}

nlohmann::json GetInventory()
{
    nlohmann::json ports = nlohmann::json::array();
    for (const std::wstring& name : Hardware::Midi::Device::GetInputs())
        ports.push_back(Tools::NarrowPortName(name));
    return {{"sequencer", access("/dev/sequencer", F_OK) == 0},
            {"midiPorts", ports},
            {"wings", GetWings()},
            {"ltcBoards", GetLtcBoards()},
            {"networks", GetNetworks()},
            {"cdDrive", Tools::GetCdDrive()},
            {"timecodeDevices", GetTimecodeDevices()},
            {"enumerations", GetEnumerations()}};
}

void PrintText(const nlohmann::json& inventory)
{
    std::puts("MIDI ports");
    for (const auto& port : inventory["midiPorts"])
        std::printf("  %s\n", port.get_ref<const std::string&>().c_str());
    if (inventory["midiPorts"].empty())
        std::puts(inventory["sequencer"] ? "  none" : "  none: there is no /dev/sequencer");
    std::puts("\nWings");
    for (const auto& wing : inventory["wings"])
        std::printf("  0x%08x  %-24s  at %s\n", wing["key"].get<unsigned>(),
                    wing["name"].get_ref<const std::string&>().c_str(),
                    wing["path"].get_ref<const std::string&>().c_str());
    if (inventory["wings"].empty())
        std::puts("  none");
    std::puts("\nLTC boards");
    for (const auto& board : inventory["ltcBoards"])
        std::printf("  serial number %u  at %s\n", board["serial"].get<unsigned>(),
                    board["path"].get_ref<const std::string&>().c_str());
    if (inventory["ltcBoards"].empty())
        std::puts("  none");
    std::puts("\nNetworks");
    for (const auto& network : inventory["networks"])
        std::printf("  %s  %s\n", network["network"].get_ref<const std::string&>().c_str(),
                    network["text"].get_ref<const std::string&>().c_str());
    if (inventory["networks"].empty())
        std::puts("  none");
    std::printf("\nCD drive\n  %s\n", Tools::DescribeCdDrive(inventory["cdDrive"]).c_str());
    std::puts("\nTimecode devices");
    for (const auto& device : inventory["timecodeDevices"])
        std::printf("  %s\n", device["name"].get_ref<const std::string&>().c_str());
    std::puts("\nEnumerations");
    for (const auto& type : inventory["enumerations"]) {
        std::printf("  %d  %s\n", type["code"].get<int>(),
                    type["name"].get_ref<const std::string&>().c_str());
        for (const auto& value : type["values"])
            std::printf("        %3d  %s\n", value["value"].get<int>(),
                        value["name"].get_ref<const std::string&>().c_str());
    }
}

void PrintLogContexts(bool json)
{
    nlohmann::json list = nlohmann::json::array();
    for (const Tools::LogContextHelp& context : Tools::GetLogContexts()) {
        if (!json)
            std::printf("%-24s %s\n", context.path.c_str(), context.text.c_str());
        list.push_back({{"path", context.path}, {"text", context.text}});
    }
    if (json)
        std::printf("%s\n", ToLine(list).c_str());
}

struct Arguments {
    bool json = false;
    bool logs = false;
};

} // namespace

void AddListCommand(CLI::App& app, const CommonOptions& options, Action& action)
{
    auto arguments = std::make_shared<Arguments>();
    CLI::App* const command = app.add_subcommand(
        "list",
        "List MIDI ports, wings, LTC boards, networks, the CD drive, timecode device types and "
        "registered "
        "enumerations");
    command->add_flag("--json", arguments->json, "Print JSON, one object");
    command->add_flag("--logs", arguments->logs,
                      "List the contexts of the log in place of devices, for --log");
    command->callback([arguments, &options, &action] {
        action = [arguments, &options] {
            if (arguments->logs) {
                PrintLogContexts(arguments->json);
                return ExitCode_Success;
            }
            const auto devices =
                options.useVirtual ? std::make_unique<VirtualDevices>(options.widgetFile) : nullptr;
            const nlohmann::json inventory = GetInventory();
            if (arguments->json)
                std::printf("%s\n", ToLine(inventory).c_str());
            else
                PrintText(inventory);
            return ExitCode_Success;
        };
    });
}

} // namespace Hwctl
