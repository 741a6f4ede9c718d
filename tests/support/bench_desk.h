// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "console/script.h"
#include "console/session.h"

namespace TestSupport
{

/// A desk of what benches have in common, for each to add to: the widgets that are like no other,
/// two panels at lines, a disc of two tracks, and the adapters of both networks.
inline Desk::DeskData MakeBenchDesk(int productType)
{
    Desk::DeskData data;
    data.name = "Bench";
    data.platform = Standalone::MakeConsoleSettings(productType);
    data.platform.consoleNetwork = {L"eth0"};
    data.platform.fixtureNetwork = {L"eth1"};
    data.widgets = {{"ExpansionWing", 2, L"expansion"}, {"Vex4ExternalPlayback", 3, L"motor"},
                    {"Vex4DeskPlayback", 4, L"panel"},  {"TrackballWidget", 6, L"trackball"},
                    {"Vex4TopBox", 7, L"bar"},          {"LtcWidget", 8, L"ltc"}};
    data.serialLines = {{"/dev/ttyS0", Desk::SerialLineData::Peer::Panel},
                        {"/dev/ttyS1", Desk::SerialLineData::Peer::Panel}};
    data.cd = Desk::CdData{{}, {180, 240}, {}};
    data.adapters = {{L"eth0"}, {L"eth1", true, 100'000'000}};
    return data;
}

/// A place in a session's state; null for none.
inline nlohmann::json GetState(const Console::Session& session, const std::string& path)
{
    const nlohmann::json state = session.GetState();
    const nlohmann::json* const found = Console::FindInState(state, path);
    return found ? *found : nlohmann::json();
}

} // namespace TestSupport
