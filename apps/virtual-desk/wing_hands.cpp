// SPDX-License-Identifier: MIT
#include "virtual-desk/wing_hands.h"

#include <algorithm>
#include <utility>

namespace VirtualDesk
{

namespace
{

constexpr ControlId Ball{ControlKind::Ball, 0};
constexpr ControlId Ring{ControlKind::Ring, 0};

int ToNumber(const std::string& word)
{
    return QString::fromStdString(word).toInt();
}

} // namespace

WingHands::WingHands(QString address, bool isTrackball, Send send)
    : m_address(std::move(address)), m_isTrackball(isTrackball), m_send(std::move(send))
{
}

void WingHands::Tell(const QString& verb)
{
    const QString line = m_address + ' ' + verb;
    ++m_asked[line];
    m_send(line);
}

/// What has gathered before is told before, so that the widget learns all in order.
void WingHands::Press(ControlId id)
{
    if (id.kind == ControlKind::Drawer) {
        Flush();
        m_isDrawerOpen = !m_isDrawerOpen.value_or(false);
        Tell(*m_isDrawerOpen ? "open" : "close");
        return;
    }
    if ((id.kind != ControlKind::Button && id.kind != ControlKind::Touch) ||
        !m_down.insert(id).second)
        return;
    Flush();
    Tell(QStringLiteral("%1 %2")
             .arg(id.kind == ControlKind::Touch ? "touch" : "press")
             .arg(id.index));
}

void WingHands::Release(ControlId id)
{
    m_latched.erase(id);
    if (m_down.erase(id) == 0)
        return;
    Flush();
    Tell(QStringLiteral("%1 %2")
             .arg(id.kind == ControlKind::Touch ? "untouch" : "release")
             .arg(id.index));
}

void WingHands::ToggleLatch(ControlId id)
{
    if (IsLatched(id)) {
        Release(id);
        return;
    }
    Press(id);
    if (IsDown(id))
        m_latched.insert(id);
}

void WingHands::ReleaseAll()
{
    const auto down = m_down;
    for (const ControlId id : down)
        Release(id);
    Flush();
}

void WingHands::MoveFader(int fader, int value)
{
    const int position = std::clamp(value, 0, FaderEnd);
    if (GetFader(fader) == position)
        return;
    m_faders[fader] = position;
    Gather({ControlKind::Fader, fader});
}

void WingHands::Turn(int encoder, int delta)
{
    m_steps[encoder] += delta;
    m_untoldSteps[encoder] += delta;
    if (delta != 0)
        Gather({ControlKind::Encoder, encoder});
}

void WingHands::Roll(int dx, int dy)
{
    m_roll += QPoint(dx, dy);
    m_untoldRoll += QPoint(dx, dy);
    if (dx != 0 || dy != 0)
        Gather(Ball);
}

void WingHands::TurnRing(int delta)
{
    m_ringSteps += delta;
    m_untoldRing += delta;
    if (delta != 0)
        Gather(Ring);
}

void WingHands::Gather(ControlId id)
{
    if (m_told.insert(id).second)
        TellGathered(id);
    else
        m_gathered.insert(id);
}

void WingHands::TellGathered(ControlId id)
{
    if (id.kind == ControlKind::Fader) {
        Tell(QStringLiteral("fader %1 %2").arg(id.index).arg(GetFader(id.index)));
    } else if (id.kind == ControlKind::Encoder) {
        if (const int delta = std::exchange(m_untoldSteps[id.index], 0); delta != 0)
            Tell(QStringLiteral("encoder %1 %2").arg(id.index).arg(delta));
    } else if (id.kind == ControlKind::Ring) {
        if (const int delta = std::exchange(m_untoldRing, 0); delta != 0)
            Tell(QStringLiteral("axis 2 %1").arg(delta));
    } else if (const QPoint way = std::exchange(m_untoldRoll, QPoint()); !m_isTrackball) {
        if (!way.isNull())
            Tell(QStringLiteral("roll %1 %2").arg(way.x()).arg(way.y()));
    } else {
        if (way.x() != 0)
            Tell(QStringLiteral("axis 0 %1").arg(way.x()));
        if (way.y() != 0)
            Tell(QStringLiteral("axis 1 %1").arg(way.y()));
    }
}

void WingHands::Flush()
{
    m_told.clear();
    const auto gathered = std::exchange(m_gathered, {});
    for (const ControlId id : gathered) {
        TellGathered(id);
        m_told.insert(id);
    }
}

void WingHands::Follow(const QString& line, const std::vector<std::string>& words, bool isDone)
{
    if (const auto asked = m_asked.find(line); asked != m_asked.end()) {
        if (--asked->second == 0)
            m_asked.erase(asked);
        return;
    }
    if (words.size() < 3 || !isDone)
        return;
    const std::string& verb = words[2];
    const int index = words.size() > 3 ? ToNumber(words[3]) : 0;
    if (verb == "press" || verb == "touch") {
        m_down.insert({verb == "touch" ? ControlKind::Touch : ControlKind::Button, index});
    } else if (verb == "release" || verb == "untouch") {
        const ControlId id{verb == "untouch" ? ControlKind::Touch : ControlKind::Button, index};
        m_down.erase(id);
        m_latched.erase(id);
    } else if (verb == "fader" && words.size() > 4) {
        m_faders[index] = std::clamp(ToNumber(words[4]), 0, FaderEnd);
    } else if (verb == "encoder" && words.size() > 4) {
        m_steps[index] += ToNumber(words[4]);
    } else if (verb == "open" || verb == "close") {
        m_isDrawerOpen = verb == "open";
    }
}

void WingHands::FollowMotor(int fader, int position)
{
    int& last = m_motors.try_emplace(fader, -1).first->second;
    if (position >= 0 && position != last)
        m_faders[fader] = position;
    last = position;
}

int WingHands::GetFader(int fader) const
{
    const auto found = m_faders.find(fader);
    return found == m_faders.end() ? -1 : found->second;
}

int WingHands::GetSteps(int encoder) const
{
    const auto found = m_steps.find(encoder);
    return found == m_steps.end() ? 0 : found->second;
}

} // namespace VirtualDesk
