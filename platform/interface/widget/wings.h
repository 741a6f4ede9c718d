// SPDX-License-Identifier: MIT
#pragma once

#include "widget/um_vex_next_wing.h"

namespace Hardware
{

// The models that differ from their base by their data alone, and the one that can beacon by
// section. The expansion wing has a header of its own.

class PLATFORM_EXPORT PlaybackWing : public UmWing
{
public:
    explicit PlaybackWing(const WidgetMapData& mapData);
    ~PlaybackWing() override;
};

class PLATFORM_EXPORT ProgrammerWing : public UmWing
{
public:
    explicit ProgrammerWing(const WidgetMapData& mapData);
    ~ProgrammerWing() override;
};

/// A next-generation wing with motor faders and displays as its model's data tell.
class PLATFORM_EXPORT Vex4Wing : public UmVexNextWing
{
public:
    ~Vex4Wing() override;

    int GetLcdMetric() const override;
    void SetLcdColor(unsigned short lcd, unsigned int rgb) override;
    void SetLcdBrightness(unsigned short lcd, unsigned char brightness) override;
    void SetLcdDisplay(unsigned short lcd, const wchar_t* text) override;
    void ClearLcdDisplay(unsigned short lcd) override;
    void SetLcdFlash(unsigned short lcd, bool flash) override;
    void SetFader(unsigned short mid, unsigned char position) override;
    void SetHash(unsigned int hash) override;
    unsigned int GetHash() const override;

protected:
    Vex4Wing(const WidgetMapData& mapData, const GUID& classId);

private:
    bool HasLcd(unsigned short lcd) const;
};

class PLATFORM_EXPORT Vex4ExternalPlayback : public Vex4Wing
{
public:
    explicit Vex4ExternalPlayback(const WidgetMapData& mapData);
    ~Vex4ExternalPlayback() override;
};

class PLATFORM_EXPORT Vex4Pixi : public Vex4Wing
{
public:
    explicit Vex4Pixi(const WidgetMapData& mapData);
    ~Vex4Pixi() override;
};

class PLATFORM_EXPORT Vex4Sprig : public Vex4Wing
{
public:
    explicit Vex4Sprig(const WidgetMapData& mapData);
    ~Vex4Sprig() override;
};

class PLATFORM_EXPORT Vex4Petite : public Vex4Wing
{
public:
    explicit Vex4Petite(const WidgetMapData& mapData);
    ~Vex4Petite() override;
};

class PLATFORM_EXPORT Vex4DeskPlayback : public Vex4Wing
{
public:
    explicit Vex4DeskPlayback(const WidgetMapData& mapData);
    ~Vex4DeskPlayback() override;
};

class PLATFORM_EXPORT Vex4DeskProgrammer : public Vex4Wing
{
public:
    explicit Vex4DeskProgrammer(const WidgetMapData& mapData);
    ~Vex4DeskProgrammer() override;
};

class PLATFORM_EXPORT Vex4Tarnel : public Vex4Wing
{
public:
    explicit Vex4Tarnel(const WidgetMapData& mapData);
    ~Vex4Tarnel() override;
};

class PLATFORM_EXPORT Vex4Bramble : public Vex4Wing
{
public:
    explicit Vex4Bramble(const WidgetMapData& mapData);
    ~Vex4Bramble() override;
};

class PLATFORM_EXPORT Vex4Keystone : public Vex4Wing
{
public:
    explicit Vex4Keystone(const WidgetMapData& mapData);
    ~Vex4Keystone() override;

    void BeaconSection(WingSections section) override;
};

} // namespace Hardware
