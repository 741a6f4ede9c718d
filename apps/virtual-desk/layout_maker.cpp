// SPDX-License-Identifier: MIT
#include "virtual-desk/layout_maker.h"

#include <algorithm>
#include <tuple>

#include "desk/widget_controls.h"

namespace VirtualDesk
{

namespace
{

constexpr int Margin = 8;
constexpr int Gap = 6;
constexpr int GroupGap = 8;
constexpr int Padding = 8;
constexpr int TitleHeight = 18;
constexpr int LabelHeight = 14;
/// Part numbers stand left of the masters.
constexpr int PartWidth = 20;

constexpr QSize KeySize(42, 26);
constexpr int KeyPitchX = KeySize.width() + Gap;
constexpr int KeyPitchY = KeySize.height() + Gap;
constexpr int LcdHeight = 34;
constexpr int FaderHeight = 148;
constexpr QSize EncoderSize(46, 60);
constexpr QSize BallSize(112, 112);
constexpr QSize RingSize(112, 26);
constexpr QSize DrawerSize(112, 40);
constexpr QSize TouchSize(42, 42);
constexpr QSize LinkSize(124, 28);
constexpr QSize DisplaySize(256, 30);

constexpr int MastersToASection = 10; ///< master ids of sections are so far apart
constexpr int KeysInARow = 10;
constexpr int KeysInALongRow = 15;
constexpr int ManyKeys = 40;
constexpr int TouchesInARow = 16;
constexpr int DisplaysInAColumn = 12;
constexpr int DisplayColumns = 4;

constexpr int LinkCount = 4;

int DivideUp(int number, int by)
{
    return (number + by - 1) / by;
}

QSize GetGridSize(int columns, int rows, QSize cell)
{
    return {columns * (cell.width() + Gap) - Gap, rows * (cell.height() + Gap) - Gap};
}

} // namespace

LayoutMaker::LayoutMaker(const Hardware::WingModel& model, WingLayout& layout)
    : m_model(model), m_layout(layout), m_corner(Margin, Margin), m_bottom(Margin), m_right(Margin)
{
}

void LayoutMaker::Make(int displays)
{
    for (int section = 0; section < m_model.sections; ++section)
        MakeSection(section);
    if (displays > 0)
        MakeDisplays(displays);
    if (Desk::IsTouchBar(m_model)) {
        MakeTouchBar();
    } else {
        MakeEncoders();
        MakeKeys();
    }
    BeginColumn();
    if (Desk::HasBall(m_model))
        MakeBall();
    if (Desk::HasDrawer(m_model))
        MakeDrawer();
    if (Desk::IsTrackball(m_model))
        MakeTrackball();
    if (Desk::IsLtcBoard(m_model))
        MakeLinks();
    m_layout.m_size = QSize(m_right - GroupGap + Margin, m_bottom - GroupGap + Margin);
    FillColumns();
}

/// Plates of a column are as wide as its widest, and the lowest goes down to the bottom.
void LayoutMaker::FillColumns() const
{
    auto& groups = m_layout.m_groups;
    for (auto first = groups.begin(); first != groups.end();) {
        const auto end = std::find_if(first + 1, groups.end(), [](const WingLayout::Group& group) {
            return group.rect.top() == Margin;
        });
        int width = 0;
        for (auto group = first; group != end; ++group)
            width = std::max(width, group->rect.width());
        for (auto group = first; group != end; ++group)
            group->rect.setWidth(width);
        QRect& lowest = (end - 1)->rect;
        lowest.setHeight(m_bottom - GroupGap - lowest.top());
        first = end;
    }
}

/// The next group stands at the top again, right of all others.
void LayoutMaker::BeginColumn()
{
    m_corner = QPoint(m_right, Margin);
}

void LayoutMaker::BeginGroup(const QString& title)
{
    m_layout.m_groups.push_back({title, QRect()});
    m_origin = m_corner + QPoint(Padding, TitleHeight);
}

/// The next group stands below, unless a column begins.
void LayoutMaker::EndGroup(QSize inner)
{
    const QSize size(inner.width() + 2 * Padding, inner.height() + TitleHeight + Padding);
    m_layout.m_groups.back().rect = QRect(m_corner, size);
    m_right = std::max(m_right, m_corner.x() + size.width() + GroupGap);
    m_corner.ry() += size.height() + GroupGap;
    m_bottom = std::max(m_bottom, m_corner.y());
}

void LayoutMaker::Place(ControlKind kind, int index, QRect rect)
{
    PlacedControl control;
    control.id = {kind, index};
    control.rect = rect.translated(m_origin);
    control.group = static_cast<int>(m_layout.m_groups.size()) - 1;
    m_layout.m_controls.push_back(control);
    m_placed.insert(control.id);
}

void LayoutMaker::PlaceMapped(ControlKind kind, const Map& map, int index, QRect rect)
{
    Place(kind, index, rect);
    PlacedControl& control = m_layout.m_controls.back();
    std::tie(control.pid, control.mid) = map.at(static_cast<std::size_t>(index));
    control.hasIds = true;
}

void LayoutMaker::AddLabel(const QString& text, QRect rect)
{
    m_layout.m_labels.push_back({text, rect.translated(m_origin)});
}

/// Index and column of each control that belongs to a section's masters.
std::vector<std::pair<int, int>> LayoutMaker::FindMasters(const Map& map, int section) const
{
    const int first = section * MastersToASection + 1;
    std::vector<std::pair<int, int>> found;
    for (std::size_t index = 0; index < map.size(); ++index) {
        const int column = map[index].second - first;
        if (column >= 0 && column < m_model.mastersPerSection)
            found.emplace_back(static_cast<int>(index), column);
    }
    return found;
}

/// The parts that a section's masters have as keys, in the order of the table.
std::vector<unsigned short> LayoutMaker::GetParts(int section) const
{
    std::vector<unsigned short> parts;
    for (const auto& [index, column] : FindMasters(m_model.buttons, section)) {
        const auto pid = m_model.buttons[static_cast<std::size_t>(index)].first;
        if (std::find(parts.begin(), parts.end(), pid) == parts.end())
            parts.push_back(pid);
    }
    return parts;
}

/// From the top: the masters' numbers, displays, more than half of the keys, faders, other keys.
void LayoutMaker::MakeSection(int section)
{
    BeginColumn();
    const int first = section * MastersToASection + 1;
    BeginGroup(
        QStringLiteral("Masters %1 to %2").arg(first).arg(first + m_model.mastersPerSection - 1));
    for (int column = 0; column < m_model.mastersPerSection; ++column)
        AddLabel(QString::number(first + column),
                 {PartWidth + column * KeyPitchX, 0, KeySize.width(), LabelHeight});
    const auto parts = GetParts(section);
    const auto middle = parts.begin() + DivideUp(static_cast<int>(parts.size()), 2);
    int y = PlaceLcds(section, LabelHeight + 2);
    y = PlaceParts(section, {parts.begin(), middle}, y);
    y = PlaceFaders(section, y);
    y = PlaceParts(section, {middle, parts.end()}, y);
    EndGroup({PartWidth + m_model.mastersPerSection * KeyPitchX - Gap, y - Gap});
}

int LayoutMaker::PlaceLcds(int section, int y)
{
    const auto masters = FindMasters(m_model.lcds, section);
    for (const auto& [index, column] : masters)
        PlaceMapped(ControlKind::Lcd, m_model.lcds, index,
                    {PartWidth + column * KeyPitchX, y, KeySize.width(), LcdHeight});
    return masters.empty() ? y : y + LcdHeight + Gap;
}

int LayoutMaker::PlaceParts(int section, const std::vector<unsigned short>& parts, int y)
{
    for (const unsigned short part : parts) {
        AddLabel(QString::number(part), {0, y, PartWidth - 2, KeySize.height()});
        for (const auto& [index, column] : FindMasters(m_model.buttons, section))
            if (m_model.buttons[static_cast<std::size_t>(index)].first == part)
                PlaceMapped(ControlKind::Button, m_model.buttons, index,
                            {QPoint(PartWidth + column * KeyPitchX, y), KeySize});
        y += KeyPitchY;
    }
    return y;
}

int LayoutMaker::PlaceFaders(int section, int y)
{
    const auto masters = FindMasters(m_model.faders, section);
    for (const auto& [index, column] : masters)
        PlaceMapped(ControlKind::Fader, m_model.faders, index,
                    {PartWidth + column * KeyPitchX, y, KeySize.width(), FaderHeight});
    return masters.empty() ? y : y + FaderHeight + Gap;
}

std::vector<int> LayoutMaker::GetLoose(ControlKind kind, const Map& map) const
{
    std::vector<int> loose;
    for (int index = 0; index < static_cast<int>(map.size()); ++index)
        if (!m_placed.contains({kind, index}))
            loose.push_back(index);
    return loose;
}

/// Encoders, and faders and displays that no master has.
void LayoutMaker::MakeEncoders()
{
    BeginColumn();
    PlaceRow(ControlKind::Encoder, m_model.encoders, EncoderSize, "Encoders");
    PlaceRow(ControlKind::Fader, m_model.faders, {KeySize.width(), FaderHeight}, "Other faders");
    PlaceRow(ControlKind::Lcd, m_model.lcds, {KeySize.width(), LcdHeight}, "Other displays");
}

void LayoutMaker::PlaceRow(ControlKind kind, const Map& map, QSize size, const char* title)
{
    const auto loose = GetLoose(kind, map);
    if (loose.empty())
        return;
    BeginGroup(QString::fromLatin1(title));
    int x = 0;
    for (const int index : loose) {
        PlaceMapped(kind, map, index, {QPoint(x, 0), size});
        x += size.width() + Gap;
    }
    EndGroup({x - Gap, size.height()});
}

/// Keys without a master fill the height that the masters have.
void LayoutMaker::MakeKeys()
{
    const auto loose = GetLoose(ControlKind::Button, m_model.buttons);
    if (loose.empty())
        return;
    const int count = static_cast<int>(loose.size());
    int columns = count > ManyKeys ? KeysInALongRow : KeysInARow;
    if (m_model.sections > 0) {
        const int height = m_bottom - m_corner.y() - TitleHeight - Padding - GroupGap + Gap;
        columns = DivideUp(count, std::max(1, height / KeyPitchY));
    }
    BeginGroup(QStringLiteral("Keys"));
    for (int n = 0; n < count; ++n)
        PlaceMapped(ControlKind::Button, m_model.buttons, loose[static_cast<std::size_t>(n)],
                    {QPoint(n % columns * KeyPitchX, n / columns * KeyPitchY), KeySize});
    EndGroup(GetGridSize(std::min(columns, count), DivideUp(count, columns), KeySize));
}

void LayoutMaker::MakeDisplays(int displays)
{
    BeginColumn();
    BeginGroup(QStringLiteral("Displays"));
    const int columns = std::min(DivideUp(displays, DisplaysInAColumn), DisplayColumns);
    const int rows = DivideUp(displays, columns);
    for (int display = 0; display < displays; ++display)
        Place(ControlKind::Display, display,
              {QPoint(display / rows * (DisplaySize.width() + Gap),
                      display % rows * (DisplaySize.height() + Gap)),
               DisplaySize});
    EndGroup(GetGridSize(columns, rows, DisplaySize));
}

void LayoutMaker::MakeTouchBar()
{
    BeginColumn();
    BeginGroup(QStringLiteral("Touch bar"));
    const int count = static_cast<int>(m_model.buttons.size());
    for (int index = 0; index < count; ++index)
        Place(ControlKind::Touch, index,
              {QPoint(index % TouchesInARow * (TouchSize.width() + Gap),
                      index / TouchesInARow * (TouchSize.height() + Gap)),
               TouchSize});
    EndGroup(
        GetGridSize(std::min(count, TouchesInARow), DivideUp(count, TouchesInARow), TouchSize));
}

void LayoutMaker::MakeBall()
{
    BeginGroup(QStringLiteral("Trackball"));
    Place(ControlKind::Ball, 0, {QPoint(0, 0), BallSize});
    EndGroup(BallSize);
}

void LayoutMaker::MakeTrackball()
{
    BeginGroup(QStringLiteral("Trackball and ring"));
    Place(ControlKind::Ball, 0, {QPoint(0, 0), BallSize});
    Place(ControlKind::Ring, 0, {QPoint(0, BallSize.height() + Gap), RingSize});
    EndGroup({BallSize.width(), BallSize.height() + Gap + RingSize.height()});
}

void LayoutMaker::MakeDrawer()
{
    BeginGroup(QStringLiteral("Keyboard drawer"));
    Place(ControlKind::Drawer, 0, {QPoint(0, 0), DrawerSize});
    EndGroup(DrawerSize);
}

void LayoutMaker::MakeLinks()
{
    BeginGroup(QStringLiteral("Network links"));
    for (int link = 0; link < LinkCount; ++link)
        Place(ControlKind::Link, link,
              {QPoint(link % 2 * (LinkSize.width() + Gap), link / 2 * (LinkSize.height() + Gap)),
               LinkSize});
    EndGroup(GetGridSize(2, LinkCount / 2, LinkSize));
}

} // namespace VirtualDesk
