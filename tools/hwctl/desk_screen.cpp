// SPDX-License-Identifier: MIT
#include "hwctl/desk_screen.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "common/light_name.h"

namespace Hwctl
{

namespace
{

constexpr std::size_t MostEvents = 200;
constexpr std::size_t DefaultWidth = 80;
constexpr std::size_t DefaultHeight = 24;
constexpr unsigned LongestBar = 40;
/// What stands around a bar: the light's name and its percent.
constexpr std::size_t BesideBar = 34;
constexpr std::size_t SmallestBar = 10;
/// Events get at least that part of the lines, if lights that are off can make room.
constexpr std::size_t EventShare = 4;

// What a terminal does: another page and back, the cursor hidden and shown, the first line, the
// rest of a line and of the page empty.
constexpr char Begin[] = "\x1b[?1049h\x1b[?25l";
constexpr char End[] = "\x1b[?25h\x1b[?1049l";
constexpr char Home[] = "\x1b[H";
constexpr char ClearLine[] = "\x1b[K";
constexpr char ClearRest[] = "\x1b[J";

template <class... Values> std::string Format(const char* format, Values... values)
{
    std::array<char, 256> text{};
    std::snprintf(text.data(), text.size(), format, values...);
    return text.data();
}

std::string GetText(const nlohmann::json& object, const char* name)
{
    const auto found = object.find(name);
    return found != object.end() && found->is_string() ? found->get<std::string>() : "";
}

void DrawTimecode(const nlohmann::json& sources, std::vector<std::string>& lines)
{
    for (const auto& [name, source] : sources.items())
        lines.push_back(Format(
            "%-8s %s%s  %-9s %6.2f/s  age %.1f s  lost %llu  repeated %llu", name.c_str(),
            GetText(source, "frame").c_str(), source["dropFrame"].get<bool>() ? " DF" : "   ",
            GetText(source, "direction").c_str(), source["rate"].get<double>(),
            source["age"].get<double>(), source["lost"].get<unsigned long long>(),
            source["repeated"].get<unsigned long long>()));
}

struct LightLine {
    std::string text;
    bool isOff = false;
};

std::vector<LightLine> DrawLights(const nlohmann::json& lights, std::size_t width)
{
    std::vector<LightLine> lines;
    const std::size_t room = width > BesideBar ? width - BesideBar : 0;
    const auto bar = static_cast<unsigned>(std::clamp<std::size_t>(room, SmallestBar, LongestBar));
    constexpr double One = 0x10000;
    for (unsigned number = 0; number < Hardware::ConsoleLightCount; ++number) {
        const auto id = static_cast<Hardware::ConsoleLightId>(number);
        const auto light = lights.find(Tools::GetLightName(id));
        if (light == lights.end())
            continue;
        const auto level = static_cast<uires16>(std::lround((*light)["level"].get<double>() * One));
        lines.push_back({Tools::FormatLight(id, level, bar), level == 0});
    }
    return lines;
}

/// Leaves out lights that are off, the last ones first, until no more than so many stay. Returns
/// how many went.
std::size_t MakeRoom(std::vector<LightLine>& lines, std::size_t room)
{
    const std::size_t before = lines.size();
    for (std::size_t line = before; line > 0 && lines.size() > room; --line)
        if (lines[line - 1].isOff)
            lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(line - 1));
    return before - lines.size();
}

std::string DrawRest(const nlohmann::json& state)
{
    std::string text = "screen saver " + GetText(state, "screenSaver");
    if (const auto cd = state.find("cd"); cd != state.end())
        text +=
            Format("   cd %s, track %d", GetText(*cd, "status").c_str(), (*cd)["track"].get<int>());
    for (const auto& [name, adapter] : state["adapters"].items())
        text += "   " + name + (adapter["up"].get<bool>() ? " up" : " down");
    return text;
}

} // namespace

std::vector<std::string> DrawDesk(const nlohmann::json& state,
                                  const std::deque<Tools::MonitorEvent>& events, std::size_t width,
                                  std::size_t height)
{
    std::vector<std::string> lines{
        Format("%s   %.1f s   MIDI received %llu, sent %llu bytes", GetText(state, "name").c_str(),
               state["seconds"].get<double>(), state["midi"]["received"].get<unsigned long long>(),
               state["midi"]["sent"].get<unsigned long long>()),
        ""};
    DrawTimecode(state["timecode"], lines);
    lines.emplace_back();
    constexpr std::size_t BelowLights = 2;
    const std::size_t taken =
        lines.size() + BelowLights + std::min(events.size(), height / EventShare);
    std::vector<LightLine> lights = DrawLights(state["lights"], width);
    const std::size_t hidden = MakeRoom(lights, height > taken ? height - taken : 0);
    for (LightLine& light : lights)
        lines.push_back(std::move(light.text));
    lines.push_back(DrawRest(state) +
                    (hidden > 0 ? Format("   at 0 %% and not shown: %zu", hidden) : ""));
    lines.emplace_back();
    const std::size_t room = height > lines.size() ? height - lines.size() : 0;
    const std::size_t count = std::min(room, events.size());
    for (auto event = events.end() - static_cast<std::ptrdiff_t>(count); event != events.end();
         ++event)
        lines.push_back(Format("%9.3f  %-20s ", event->seconds, event->source.c_str()) +
                        event->text);
    lines.resize(std::min(lines.size(), height));
    for (std::string& line : lines)
        line.resize(std::min(line.size(), width));
    return lines;
}

bool DeskScreen::IsTerminal(std::FILE* out)
{
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nobody changes the environment
    const char* const kind = std::getenv("TERM");
    return isatty(fileno(out)) == 1 && !(kind && std::strcmp(kind, "dumb") == 0);
}

DeskScreen::DeskScreen(std::FILE* out) : m_out(out)
{
    std::fputs(Begin, m_out);
}

DeskScreen::~DeskScreen()
{
    std::fputs(End, m_out);
    for (const std::string& line : m_page)
        std::fprintf(m_out, "%s\n", line.c_str());
    std::fflush(m_out);
}

void DeskScreen::Take(Tools::MonitorEvent event)
{
    m_events.push_back(std::move(event));
    if (m_events.size() > MostEvents)
        m_events.pop_front();
}

void DeskScreen::Draw(const nlohmann::json& state)
{
    winsize size{};
    if (ioctl(fileno(m_out), TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0)
        size = {DefaultHeight, DefaultWidth, 0, 0};
    std::string page = Home;
    m_page = DrawDesk(state, m_events, size.ws_col, size.ws_row);
    for (std::size_t line = 0; line < m_page.size(); ++line)
        page += (line == 0 ? "" : "\r\n") + m_page[line] + ClearLine;
    page += ClearRest;
    std::fputs(page.c_str(), m_out);
    std::fflush(m_out);
}

} // namespace Hwctl
