// SPDX-License-Identifier: MIT
#pragma once

#include <set>
#include <utility>
#include <vector>

#include "virtual-desk/wing_layout.h"

namespace VirtualDesk
{

/// Builds the layout of one model, from the left to the right.
class LayoutMaker
{
public:
    LayoutMaker(const Hardware::WingModel& model, WingLayout& layout);

    void Make(int displays);

private:
    typedef Hardware::WingModel::Map Map;

    void BeginColumn();
    void FillColumns() const;
    void BeginGroup(const QString& title);
    void EndGroup(QSize inner);
    void Place(ControlKind kind, int index, QRect rect);
    void PlaceMapped(ControlKind kind, const Map& map, int index, QRect rect);
    void AddLabel(const QString& text, QRect rect);

    void MakeSection(int section);
    int PlaceLcds(int section, int y);
    int PlaceParts(int section, const std::vector<unsigned short>& parts, int y);
    int PlaceFaders(int section, int y);
    std::vector<unsigned short> GetParts(int section) const;
    std::vector<std::pair<int, int>> FindMasters(const Map& map, int section) const;

    void MakeEncoders();
    void MakeDisplays(int displays);
    void MakeKeys();
    void MakeBall();
    void MakeDrawer();
    void MakeTouchBar();
    void MakeTrackball();
    void MakeLinks();
    /// What is left over of a kind when the masters have theirs.
    std::vector<int> GetLoose(ControlKind kind, const Map& map) const;
    void PlaceRow(ControlKind kind, const Map& map, QSize size, const char* title);

    const Hardware::WingModel& m_model;
    WingLayout& m_layout;
    std::set<ControlId> m_placed;
    QPoint m_corner; ///< where the next group begins
    QPoint m_origin; ///< where the controls of the group under way begin
    int m_bottom;    ///< below all groups so far
    int m_right;     ///< right of all groups so far
};

} // namespace VirtualDesk
