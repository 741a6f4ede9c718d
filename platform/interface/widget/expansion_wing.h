// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <mutex>

#include "widget/um_wing.h"

/// How the displays of an expansion wing are set up. The name is the driver interface's own.
struct _QRT_XWING_CONFIGURATION { // NOLINT(bugprone-reserved-identifier)
    unsigned char surface[256];   ///< surface byte of each display
    unsigned int version;         ///< counts the changes
};
typedef struct _QRT_XWING_CONFIGURATION QRT_XWING_CONFIGURATION;

namespace Hardware
{

/// The wing with text displays. Surface bytes and text cells are staged in this object and sent
/// by WriteCells(). Any thread may call any operation.
class PLATFORM_EXPORT ExpansionWing : public UmWing
{
public:
    /// Displays that can be addressed: as many as a byte tells apart.
    static constexpr unsigned DisplayCount = 256;
    static constexpr unsigned CellsPerDisplay = 10;

    explicit ExpansionWing(const WidgetMapData& mapData);
    ~ExpansionWing() override;

    void BeaconSection(WingSections section) override;

    /// Fills @p configuration with what the wing reported last.
    void GetConfiguration(_QRT_XWING_CONFIGURATION* configuration) const;

    void SetSurface(unsigned char display, unsigned char surface);
    unsigned char GetSurface(unsigned char display) const;
    /// Sets one of a display's cells, 0 to 9; others are ignored.
    void SetCell(unsigned char display, unsigned cell, unsigned int value);
    /// 0 for a cell beyond the last.
    unsigned int GetCell(unsigned char display, unsigned cell) const;
    /// Sets all cells of a display to 0.
    void ClearCells(unsigned char display);
    /// Sends all cells and surface bytes. False when nothing reached the wing.
    bool WriteCells();

private:
    mutable std::mutex m_mutex; // guards all below
    std::array<unsigned char, DisplayCount> m_surfaces{};
    std::array<unsigned int, std::size_t{DisplayCount} * CellsPerDisplay> m_cells{};
};

} // namespace Hardware
