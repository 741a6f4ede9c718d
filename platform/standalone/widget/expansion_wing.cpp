// SPDX-License-Identifier: MIT
#include "widget/expansion_wing.h"

#include <algorithm>

#include "widget/device_record.h"

namespace Hardware
{

namespace Report = Standalone::Report;

ExpansionWing::ExpansionWing(const WidgetMapData& mapData)
    : UmWing(mapData, GUID_DEVINTERFACE_QRTUMEXPANSIONWING)
{
}

ExpansionWing::~ExpansionWing() = default;

void ExpansionWing::BeaconSection(WingSections section)
{
    GetDevice().Write(Report::Beacon{static_cast<std::uint8_t>(section)});
}

void ExpansionWing::GetConfiguration(_QRT_XWING_CONFIGURATION* configuration) const
{
    if (configuration)
        *configuration = GetDevice().GetConfiguration();
}

void ExpansionWing::SetSurface(unsigned char display, unsigned char surface)
{
    const std::lock_guard hold(m_mutex);
    m_surfaces[display] = surface;
}

unsigned char ExpansionWing::GetSurface(unsigned char display) const
{
    const std::lock_guard hold(m_mutex);
    return m_surfaces[display];
}

void ExpansionWing::SetCell(unsigned char display, unsigned cell, unsigned int value)
{
    const std::lock_guard hold(m_mutex);
    if (cell < CellsPerDisplay)
        m_cells[display * CellsPerDisplay + cell] = value;
}

unsigned int ExpansionWing::GetCell(unsigned char display, unsigned cell) const
{
    const std::lock_guard hold(m_mutex);
    return cell < CellsPerDisplay ? m_cells[display * CellsPerDisplay + cell] : 0;
}

void ExpansionWing::ClearCells(unsigned char display)
{
    const std::lock_guard hold(m_mutex);
    std::fill_n(m_cells.begin() + std::size_t{display} * CellsPerDisplay, CellsPerDisplay, 0U);
}

bool ExpansionWing::WriteCells()
{
    Report::WriteCells report;
    {
        const std::lock_guard hold(m_mutex);
        report.surfaces.assign(m_surfaces.begin(), m_surfaces.end());
        report.cells.assign(m_cells.begin(), m_cells.end());
    }
    return GetDevice().Write(report);
}

} // namespace Hardware
