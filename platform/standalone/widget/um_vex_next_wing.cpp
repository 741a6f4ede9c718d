// SPDX-License-Identifier: MIT
#include "widget/um_vex_next_wing.h"

#include "widget/device_record.h"

namespace Hardware
{

UmVexNextWing::UmVexNextWing(const WidgetMapData& mapData, const GUID& classId)
    : UmWing(mapData, classId)
{
}

UmVexNextWing::~UmVexNextWing() = default;

int UmVexNextWing::GetLcdMetric() const
{
    return -1;
}

void UmVexNextWing::SetLcdColor(unsigned short, unsigned int) {}
void UmVexNextWing::SetLcdBrightness(unsigned short, unsigned char) {}
void UmVexNextWing::SetLcdDisplay(unsigned short, const wchar_t*) {}
void UmVexNextWing::ClearLcdDisplay(unsigned short) {}
void UmVexNextWing::SetLcdFlash(unsigned short, bool) {}
void UmVexNextWing::SetFader(unsigned short, unsigned char) {}
void UmVexNextWing::SetHash(unsigned int) {}

unsigned int UmVexNextWing::GetHash() const
{
    return 0;
}

bool UmVexNextWing::SetAllLcdBrightness(unsigned char brightness)
{
    // Not virtual: it reaches the wing also where a model has no display to set one by one.
    return GetDevice().Write(Standalone::Report::SetAllLcdBrightness{brightness});
}

} // namespace Hardware
