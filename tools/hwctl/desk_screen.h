// SPDX-License-Identifier: MIT
#pragma once

#include <cstdio>
#include <deque>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "watch/event.h"

namespace Hwctl
{

/// What a live screen shows of a desk: timecode, lights as bars, and the last events. Pure.
/// @param state  what Console::Session::GetState() tells
/// @param events newest last; as many as have room are shown
/// @return at most @p height lines of at most @p width columns
std::vector<std::string> DrawDesk(const nlohmann::json& state,
                                  const std::deque<Tools::MonitorEvent>& events, std::size_t width,
                                  std::size_t height);

/// A terminal that is drawn upon again and again. What was on it comes back at the end, with the
/// last drawing below.
class DeskScreen
{
public:
    /// Whether a stream is a terminal to draw upon.
    static bool IsTerminal(std::FILE* out);

    explicit DeskScreen(std::FILE* out);
    ~DeskScreen();
    DeskScreen(const DeskScreen&) = delete;
    DeskScreen& operator=(const DeskScreen&) = delete;

    void Take(Tools::MonitorEvent event);
    void Draw(const nlohmann::json& state);

private:
    std::FILE* const m_out;
    std::deque<Tools::MonitorEvent> m_events;
    std::vector<std::string> m_page; // drawn last
};

} // namespace Hwctl
