// SPDX-License-Identifier: MIT
#include "virtual-desk/wing_layout.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <utility>

#include "virtual-desk/layout_maker.h"

namespace VirtualDesk
{

namespace
{

/// Being off the line counts so much more than being far.
constexpr int AsideWeight = 4;

/// How far a rectangle begins ahead of where another ends.
int GetAhead(const QRect& from, const QRect& to, QPoint direction)
{
    if (direction.x() != 0)
        return direction.x() > 0 ? to.left() - from.right() : from.left() - to.right();
    return direction.y() > 0 ? to.top() - from.bottom() : from.top() - to.bottom();
}

/// How far a rectangle lies aside of another, seen in a direction; 0 where they face each other.
int GetAside(const QRect& from, const QRect& to, bool isHorizontal)
{
    const int gap = isHorizontal ? std::max(from.top() - to.bottom(), to.top() - from.bottom())
                                 : std::max(from.left() - to.right(), to.left() - from.right());
    return std::max(gap, 0);
}

} // namespace

WingLayout::WingLayout(const Hardware::WingModel& model, int displays)
{
    LayoutMaker(model, *this).Make(displays);
}

std::optional<std::size_t> WingLayout::Find(ControlId id) const
{
    const auto found = std::find_if(m_controls.begin(), m_controls.end(),
                                    [&](const PlacedControl& control) { return control.id == id; });
    if (found == m_controls.end())
        return std::nullopt;
    return static_cast<std::size_t>(found - m_controls.begin());
}

std::optional<std::size_t> WingLayout::FindAt(QPoint point) const
{
    const auto found =
        std::find_if(m_controls.begin(), m_controls.end(),
                     [&](const PlacedControl& control) { return control.rect.contains(point); });
    if (found == m_controls.end())
        return std::nullopt;
    return static_cast<std::size_t>(found - m_controls.begin());
}

std::size_t WingLayout::FindBeside(std::size_t place, QPoint direction) const
{
    const QRect& from = m_controls.at(place).rect;
    std::size_t nearest = place;
    int least = std::numeric_limits<int>::max();
    for (std::size_t other = 0; other < m_controls.size(); ++other) {
        const QRect& to = m_controls[other].rect;
        const int ahead = GetAhead(from, to, direction);
        if (ahead <= 0)
            continue;
        const bool isHorizontal = direction.x() != 0;
        const QPoint way = to.center() - from.center();
        const int offset = std::abs(isHorizontal ? way.y() : way.x());
        const int distance =
            ahead + AsideWeight * GetAside(from, to, isHorizontal) + offset / AsideWeight;
        if (distance < least) {
            least = distance;
            nearest = other;
        }
    }
    return nearest;
}

std::optional<std::size_t> WingLayout::FindNextStop(std::size_t place, bool forward) const
{
    const auto isSameStop = [this](std::size_t a, std::size_t b) {
        return m_controls[a].group == m_controls[b].group &&
               m_controls[a].id.kind == m_controls[b].id.kind;
    };
    const auto getFirst = [&](std::size_t of) {
        std::size_t first = 0;
        while (!isSameStop(first, of))
            ++first;
        return first;
    };
    if (!forward) {
        // Back to where the stop before begins; keys of a section stand around its faders.
        std::optional<std::size_t> before;
        for (std::size_t other = 0; other < m_controls.size(); ++other)
            if (getFirst(other) == other && other < getFirst(place))
                before = other;
        return before;
    }
    for (std::size_t other = getFirst(place) + 1; other < m_controls.size(); ++other)
        if (getFirst(other) == other)
            return other;
    return std::nullopt;
}

} // namespace VirtualDesk
