// SPDX-License-Identifier: MIT

// The wing mapper's slots, which work the wings.

#include "hardware/wing_mapper.h"
#include "widget/um_vex_next_wing.h"

namespace Hardware
{

namespace
{

/// The product id of the wings whose LEDs and state the application must not touch.
constexpr unsigned short UntouchedProductId = 1;
/// The parts of a master that have a LED, in the order in which they are set.
constexpr unsigned short MasterParts[] = {70, 71, 72, 74, 54};
/// Masters are numbered from 1 in their section, and sections by tens.
constexpr unsigned MastersPerSection = 10;

} // namespace

template <class Wing> std::shared_ptr<Wing> WingMapper::Find(WidgetKey k)
{
    const Os::ReadKey hold(m_lock);
    const auto found = m_wings.find(k);
    return found == m_wings.end() ? nullptr : std::dynamic_pointer_cast<Wing>(found->second.widget);
}

bool WingMapper::is_wing_connected(WidgetKey k)
{
    return Find<UmWing>(k) != nullptr;
}

std::shared_ptr<UmWing> WingMapper::FindWorkable(WidgetKey k)
{
    const auto wing = Find<UmWing>(k);
    return wing && wing->GetProductId() != UntouchedProductId ? wing : nullptr;
}

void WingMapper::set_led(Hardware::WidgetKey k, unsigned short pid, unsigned short mid,
                         Hardware::UmWing::LedState v)
{
    if (const auto wing = FindWorkable(k))
        wing->SetLed(pid, mid, v);
}

void WingMapper::set_led_all(Hardware::WidgetKey k, Hardware::UmWing::LedState v)
{
    if (const auto wing = FindWorkable(k))
        wing->SetAllLed(v);
}

void WingMapper::set_led_section(Hardware::WidgetKey k, int s, Hardware::UmWing::LedState v)
{
    // Every wing, unlike the slots above: those of product id 1 show their sections too.
    const auto wing = Find<UmWing>(k);
    if (!wing)
        return;
    const int masters = wing->GetWingMetric(UmWing::WingMetric_MastersPerSection);
    for (int i = 1; i <= masters; ++i) {
        const unsigned mid =
            static_cast<unsigned>(s) * MastersPerSection + static_cast<unsigned>(i);
        for (const unsigned short pid : MasterParts)
            wing->SetLed(pid, static_cast<unsigned short>(mid & 0xFFFFU), v);
    }
}

void WingMapper::set_fader(Hardware::WidgetKey k, unsigned short mid, int v)
{
    if (const auto wing = Find<UmVexNextWing>(k))
        wing->SetFader(mid, static_cast<unsigned char>(static_cast<unsigned>(v) & 0xFFU));
}

void WingMapper::set_xwing_surface(Hardware::WidgetKey k, unsigned char s, unsigned char i)
{
    if (const auto wing = Find<ExpansionWing>(k))
        wing->SetSurface(s, i);
}

void WingMapper::clear_xwing_display(Hardware::WidgetKey k, unsigned char s)
{
    const auto wing = Find<ExpansionWing>(k);
    if (!wing)
        return;
    wing->ClearCells(s);
    wing->WriteCells();
}

void WingMapper::refresh_state(Hardware::WidgetKey k)
{
    if (const auto wing = FindWorkable(k))
        wing->RefreshState();
}

} // namespace Hardware
