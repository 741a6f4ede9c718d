// SPDX-License-Identifier: MIT
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>
#include <cmath>
#include <memory>

#include "common/network_text.h"
#include "common/stop_signals.h"
#include "desk/widget_controls.h"
#include "hwctl/command.h"
#include "hwctl/event_queue.h"
#include "hwctl/exit_code.h"
#include "hwctl/network_player.h"
#include "hwctl/virtual_devices.h"
#include "standalone/network_source.h"
#include "standalone/platform_settings.h"
#include "watch/desk_watch.h"
#include "watch/network_watch.h"

namespace Hwctl
{

namespace
{

using Os::Platform;

struct Arguments {
    bool follow = false;
    std::string work;
    double seconds = 0;
    bool json = false;
};

/// The boards with what their LEDs show.
nlohmann::json GetBoards(const Desk::WidgetBus& bus)
{
    nlohmann::json boards = nlohmann::json::array();
    for (const Desk::VirtualWidget* const widget : bus.GetWidgets())
        if (Desk::IsLtcBoard(widget->GetModel()) && widget->IsPlugged()) {
            const std::wstring& path = widget->GetData().path;
            nlohmann::json board = Tools::GetLinkLightFacts(*widget);
            board["path"] = std::string(path.begin(), path.end());
            board["text"] = Tools::DescribeLinkLights(*widget);
            boards.push_back(board);
        }
    return boards;
}

void PrintText(const nlohmann::json& state)
{
    std::puts("Networks");
    for (const auto& network : state["networks"])
        std::printf("  %s  %s\n", network["network"].get_ref<const std::string&>().c_str(),
                    network["text"].get_ref<const std::string&>().c_str());
    if (state["networks"].empty())
        std::puts("  none: name adapters by --console-network and --fixture-network");
    std::printf("\nLink lights\n");
    if (!state["hasLights"].get<bool>())
        std::printf("  none: a console of model %d has no such LEDs\n", state["model"].get<int>());
    else if (state["boards"].empty())
        std::puts("  no LTC board");
    else
        for (const auto& board : state["boards"])
            std::printf("  LTC board at %s: %s\n",
                        board["path"].get_ref<const std::string&>().c_str(),
                        board["text"].get_ref<const std::string&>().c_str());
}

int ShowOnce(const Arguments& arguments, const VirtualDevices* devices)
{
    nlohmann::json networks = nlohmann::json::array();
    for (const Platform::Protocol protocol :
         {Platform::Protocol_Console, Platform::Protocol_Fixture})
        if (const auto adapter = Tools::FindNetworkAdapter(protocol)) {
            nlohmann::json network = Tools::DescribeNetwork(protocol, *adapter);
            network["text"] = Tools::DescribeAdapter(*adapter);
            networks.push_back(network);
        }
    Tools::NetworkWatch watch([](const Tools::MonitorEvent&) {});
    watch.Start();
    const nlohmann::json state{
        {"networks", networks},
        {"model", Platform::GetKelProductType()},
        {"hasLights", watch.HasLights()},
        {"boards", devices ? GetBoards(devices->GetBus()) : nlohmann::json::array()}};
    if (arguments.json)
        std::printf("%s\n", ToLine(state).c_str());
    else
        PrintText(state);
    return ExitCode_Success;
}

int Follow(const Arguments& arguments, VirtualDevices* devices)
{
    EventPrinter printer(arguments.json, stdout);
    EventQueue queue;
    QElapsedTimer clock;
    clock.start();
    const Tools::EventTaker take = [&](Tools::MonitorEvent event) {
        event.seconds = static_cast<double>(clock.nsecsElapsed()) / 1e9;
        queue.Post([&printer, event = std::move(event)] { printer.Print(event); });
    };
    const Tools::StopSignals signals([] { QCoreApplication::exit(ExitCode_Success); });
    QTimer end;
    end.setSingleShot(true);
    QObject::connect(&end, &QTimer::timeout, &end,
                     [] { QCoreApplication::exit(ExitCode_Success); });
    if (arguments.seconds > 0)
        end.start(static_cast<int>(std::lround(arguments.seconds * 1000)));
    std::unique_ptr<NetworkPlayer> player;
    if (!arguments.work.empty())
        player = std::make_unique<NetworkPlayer>(Tools::NetworkScript::Read(arguments.work),
                                                 devices->GetNetwork());
    const auto desk =
        devices ? std::make_unique<Tools::DeskWatch>(devices->GetBus(), take) : nullptr;
    Tools::NetworkWatch watch(take);
    watch.Start();
    if (player)
        player->Start();
    QCoreApplication::exec();
    if (devices)
        devices->GetNetwork().Flush();
    watch.Stop();
    queue.Drain();
    return player && player->HasFailed() ? ExitCode_Failure : ExitCode_Success;
}

int ShowLinks(const CommonOptions& options, const Arguments& arguments)
{
    // The virtual desk is of a model without link lights, unless told otherwise.
    constexpr int ModelWithLights = 8;
    if (options.useVirtual && !options.console) {
        Standalone::PlatformSettings settings = Standalone::GetPlatformSettings();
        settings.productType = ModelWithLights;
        Standalone::ConfigurePlatform(settings);
    }
    const auto devices =
        options.useVirtual ? std::make_unique<VirtualDevices>(options.widgetFile) : nullptr;
    const bool follow = arguments.follow || !arguments.work.empty() || arguments.seconds > 0;
    return follow ? Follow(arguments, devices.get()) : ShowOnce(arguments, devices.get());
}

} // namespace

void AddLinksCommand(CLI::App& app, const CommonOptions& options, Action& action)
{
    auto arguments = std::make_shared<Arguments>();
    CLI::App* const command = app.add_subcommand(
        "links", "Show the links of the console's networks, and work the link lights");
    command->add_flag("--follow", arguments->follow, "Print every change until interrupted");
    command->add_option("--for", arguments->seconds, "Follow, and end after so many seconds")
        ->check(InRange(0.001, 1e6));
    command
        ->add_option("--work", arguments->work,
                     "Follow, and do what a script says to virtual adapters; needs --virtual")
        ->check([&options](const std::string&) {
            return std::string(options.useVirtual ? "" : "needs --virtual before the command");
        });
    command->add_flag("--json", arguments->json, "Print JSON: one object, or one a line");
    command->callback([arguments, &options, &action] {
        action = [arguments, &options] { return ShowLinks(options, *arguments); };
    });
}

} // namespace Hwctl
