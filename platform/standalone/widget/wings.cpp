// SPDX-License-Identifier: MIT
#include "widget/wings.h"

#include <algorithm>
#include <cwchar>

#include "widget/device_record.h"

namespace Hardware
{

namespace Report = Standalone::Report;

Vex4Wing::Vex4Wing(const WidgetMapData& mapData, const GUID& classId)
    : UmVexNextWing(mapData, classId)
{
}

Vex4Wing::~Vex4Wing() = default;

bool Vex4Wing::HasLcd(unsigned short lcd) const
{
    return lcd < GetModel().lcds.size();
}

int Vex4Wing::GetLcdMetric() const
{
    return GetModel().lcds.empty() ? UmVexNextWing::GetLcdMetric()
                                   : static_cast<int>(GetModel().lcds.size());
}

void Vex4Wing::SetLcdColor(unsigned short lcd, unsigned int rgb)
{
    if (HasLcd(lcd))
        GetDevice().Write(Report::SetLcdColor{lcd, rgb});
}

void Vex4Wing::SetLcdBrightness(unsigned short lcd, unsigned char brightness)
{
    if (HasLcd(lcd))
        GetDevice().Write(Report::SetLcdBrightness{lcd, brightness});
}

void Vex4Wing::SetLcdDisplay(unsigned short lcd, const wchar_t* text)
{
    if (HasLcd(lcd) && text)
        GetDevice().Write(Report::SetLcdText{lcd, {text, text + std::wcslen(text)}});
}

void Vex4Wing::ClearLcdDisplay(unsigned short lcd)
{
    if (HasLcd(lcd))
        GetDevice().Write(Report::SetLcdText{lcd, {}});
}

void Vex4Wing::SetLcdFlash(unsigned short lcd, bool flash)
{
    if (HasLcd(lcd))
        GetDevice().Write(Report::SetLcdFlash{lcd, flash});
}

void Vex4Wing::SetFader(unsigned short mid, unsigned char position)
{
    const WingModel::Map& faders = GetModel().faders;
    const auto found = std::find_if(faders.begin(), faders.end(),
                                    [mid](const auto& fader) { return fader.second == mid; });
    if (GetModel().hasMotorFaders && found != faders.end())
        GetDevice().Write(
            Report::SetFader{static_cast<std::uint16_t>(found - faders.begin()), position});
}

void Vex4Wing::SetHash(unsigned int hash)
{
    if (GetDevice().Write(Report::SetHash{hash}))
        GetDevice().SetHash(hash);
}

unsigned int Vex4Wing::GetHash() const
{
    return GetDevice().GetHash();
}

PlaybackWing::PlaybackWing(const WidgetMapData& mapData)
    : UmWing(mapData, GUID_DEVINTERFACE_QRTUMPLAYBACKWING)
{
}
PlaybackWing::~PlaybackWing() = default;

ProgrammerWing::ProgrammerWing(const WidgetMapData& mapData)
    : UmWing(mapData, GUID_DEVINTERFACE_QRTUMPROGRAMMERWING)
{
}
ProgrammerWing::~ProgrammerWing() = default;

Vex4ExternalPlayback::Vex4ExternalPlayback(const WidgetMapData& mapData)
    : Vex4Wing(mapData, GUID_DEVINTERFACE_QRTUMVNEXT_EXTERNAL_PLAYBACKWING)
{
}
Vex4ExternalPlayback::~Vex4ExternalPlayback() = default;

Vex4Pixi::Vex4Pixi(const WidgetMapData& mapData)
    : Vex4Wing(mapData, GUID_DEVINTERFACE_QRTUMVNEXT_EXTERNAL_PIXI)
{
}
Vex4Pixi::~Vex4Pixi() = default;

Vex4Sprig::Vex4Sprig(const WidgetMapData& mapData)
    : Vex4Wing(mapData, GUID_DEVINTERFACE_QRTUMVNEXT_SPRIG)
{
}
Vex4Sprig::~Vex4Sprig() = default;

Vex4Petite::Vex4Petite(const WidgetMapData& mapData)
    : Vex4Wing(mapData, GUID_DEVINTERFACE_QRTUMVNEXT_PETITE)
{
}
Vex4Petite::~Vex4Petite() = default;

Vex4DeskPlayback::Vex4DeskPlayback(const WidgetMapData& mapData)
    : Vex4Wing(mapData, GUID_DEVINTERFACE_QRTUMVNEXTPLAYBACKWING)
{
}
Vex4DeskPlayback::~Vex4DeskPlayback() = default;

Vex4DeskProgrammer::Vex4DeskProgrammer(const WidgetMapData& mapData)
    : Vex4Wing(mapData, GUID_DEVINTERFACE_QRTUMVNEXTPROGRAMWING)
{
}
Vex4DeskProgrammer::~Vex4DeskProgrammer() = default;

Vex4Tarnel::Vex4Tarnel(const WidgetMapData& mapData)
    : Vex4Wing(mapData, GUID_DEVINTERFACE_QRTUMVNEXT_TARNEL)
{
}
Vex4Tarnel::~Vex4Tarnel() = default;

Vex4Bramble::Vex4Bramble(const WidgetMapData& mapData)
    : Vex4Wing(mapData, GUID_DEVINTERFACE_QRTUMVNEXT_BRAMBLE)
{
}
Vex4Bramble::~Vex4Bramble() = default;

Vex4Keystone::Vex4Keystone(const WidgetMapData& mapData)
    : Vex4Wing(mapData, GUID_DEVINTERFACE_QRTUMVNEXT_KEYSTONE)
{
}
Vex4Keystone::~Vex4Keystone() = default;

void Vex4Keystone::BeaconSection(WingSections section)
{
    GetDevice().Write(Report::Beacon{static_cast<std::uint8_t>(section)});
}

} // namespace Hardware
