// SPDX-License-Identifier: MIT
#include "widget/um_wing.h"

#include <algorithm>

#include "widget/device_record.h"

namespace Hardware
{

namespace Report = Standalone::Report;

namespace
{

// Where a model's map ends. No choice leaves an index as it is, so that a forgotten look-up shows.
constexpr unsigned short OtherButtons = 100;
constexpr unsigned short OtherEncoders = 200;
constexpr unsigned short NoMaster = 65535;

UmWing::MapDef GetMapDef(const WingModel::Map& map, unsigned short index, UmWing::MapDef beyond)
{
    return index < map.size() ? map[index] : beyond;
}

UmWing::MapDef MakeButtonBeyond(unsigned short index)
{
    return {static_cast<unsigned short>(OtherButtons + index), NoMaster};
}

int FindIndex(const WingModel::Map& map, unsigned short pid, unsigned short mid)
{
    const auto found = std::find(map.begin(), map.end(), UmWing::MapDef(pid, mid));
    return found == map.end() ? -1 : static_cast<int>(found - map.begin());
}

} // namespace

UmWing::UmWing(const WidgetMapData& mapData, const GUID& classId)
    : UmWidget(mapData), m_model(Standalone::GetWingModel(classId))
{
}

UmWing::~UmWing() = default;

unsigned short UmWing::GetVendorId() const
{
    return 0; // no real vendor's
}

unsigned short UmWing::GetProductId() const
{
    return m_model.productId;
}

WidgetReader UmWing::GetCallbackFunc() const
{
    return &UmWing::WingReader;
}

void UmWing::BeaconSection(WingSections) {}

bool UmWing::IsFrontPanel() const
{
    return m_model.isFrontPanel;
}

bool UmWing::SetDimmer(DimmerIndex channel, unsigned char level)
{
    return GetDevice().Write(Report::SetDimmer{static_cast<std::uint8_t>(channel), level});
}

UmWing::MapDef UmWing::GetButtonMapDef(unsigned short index) const
{
    return GetMapDef(m_model.buttons, index, MakeButtonBeyond(index));
}

UmWing::MapDef UmWing::GetLedMapDef(unsigned short index) const
{
    return GetMapDef(m_model.leds, index, MakeButtonBeyond(index));
}

UmWing::MapDef UmWing::GetEncoderMapDef(unsigned short index) const
{
    return GetMapDef(m_model.encoders, index,
                     {static_cast<unsigned short>(OtherEncoders + index), 0});
}

int UmWing::GetWingMetric(WingMetric metric) const
{
    switch (metric) {
    case WingMetric_Sections:
        return m_model.sections;
    case WingMetric_MastersPerSection:
        return m_model.mastersPerSection;
    }
    return 0;
}

bool UmWing::SetLed(unsigned short pid, unsigned short mid, LedState state)
{
    const int found = UmWing::GetLedIndex(pid, mid);
    if (found < 0)
        return false;
    return GetDevice().WriteLed(static_cast<unsigned short>(found),
                                static_cast<std::uint8_t>(state));
}

bool UmWing::SetAllLed(LedState state)
{
    return GetDevice().WriteAllLeds(static_cast<std::uint8_t>(state));
}

int UmWing::GetButtonState(unsigned short index) const
{
    return GetDevice().GetButtonState(index);
}

int UmWing::GetLedState(unsigned short index) const
{
    return GetDevice().GetLedState(index);
}

int UmWing::GetFaderState(unsigned short index) const
{
    return GetDevice().GetFaderState(index);
}

int UmWing::GetButtonIndex(unsigned short pid, unsigned short mid) const
{
    return FindIndex(m_model.buttons, pid, mid);
}

int UmWing::GetLedIndex(unsigned short pid, unsigned short mid) const
{
    return FindIndex(m_model.leds, pid, mid);
}

UmWing::MapDef UmWing::GetLcdMapDef(unsigned short index) const
{
    return GetMapDef(m_model.lcds, index, {0, 0});
}

UmWing::MapDef UmWing::GetFaderMapDef(unsigned short index) const
{
    return GetMapDef(m_model.faders, index, {0, 0});
}

bool UmWing::RefreshState()
{
    return GetDevice().Write(Report::Refresh{});
}

bool UmWing::SetSleep(bool sleep)
{
    return GetDevice().Write(Report::SetSleep{sleep});
}

int UmWing::GetStateOf(unsigned short pid, unsigned short mid) const
{
    const int index = GetButtonIndex(pid, mid);
    return index < 0 ? -1 : GetButtonState(static_cast<unsigned short>(index));
}

} // namespace Hardware
