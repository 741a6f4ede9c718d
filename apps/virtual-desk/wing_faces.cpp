// SPDX-License-Identifier: MIT
#include "virtual-desk/wing_faces.h"

#include <algorithm>
#include <array>

#include "desk/light_levels.h"
#include "desk/widget_controls.h"

namespace VirtualDesk
{

namespace
{

constexpr int FewDisplays = 4;
constexpr int DrawerSwitchPart = 75;
constexpr int FullLevel = 255;

std::uint16_t ToIndex(const PlacedControl& control)
{
    return static_cast<std::uint16_t>(control.id.index);
}

Lamp ToLamp(int state)
{
    return state >= 0 && state <= static_cast<int>(Lamp::Dim) ? static_cast<Lamp>(state)
                                                              : Lamp::Unset;
}

Lamp GetLink(const Desk::VirtualWidget& widget, int link)
{
    const auto lights = widget.GetLinkLights();
    const std::array<std::uint8_t, 4> all{lights.consoleActive, lights.consoleGigabit,
                                          lights.fixtureActive, lights.fixtureGigabit};
    return all.at(static_cast<std::size_t>(link)) != 0 ? Lamp::On : Lamp::Off;
}

/// A closed drawer holds its switch down.
bool IsHeldByDrawer(const WingHands& hands, const PlacedControl& control)
{
    return control.pid == DrawerSwitchPart && control.mid == 0 && hands.IsDrawerOpen() == false;
}

bool IsInUse(const Desk::VirtualWidget& widget, unsigned display)
{
    if (widget.GetSurface(display) != 0)
        return true;
    for (unsigned cell = 0; cell < CellsPerDisplay; ++cell)
        if (widget.GetCell(display, cell) != 0)
            return true;
    return false;
}

} // namespace

ControlFace ReadFace(const Desk::VirtualWidget& widget, const WingHands& hands,
                     const PlacedControl& control)
{
    const std::uint16_t index = ToIndex(control);
    ControlFace face;
    face.isDown = hands.IsDown(control.id);
    face.isLatched = hands.IsLatched(control.id);
    switch (control.id.kind) {
    case ControlKind::Button:
        face.lamp = ToLamp(widget.GetLed(index));
        face.isDown = face.isDown || IsHeldByDrawer(hands, control);
        break;
    case ControlKind::Fader:
        face.position = hands.GetFader(control.id.index);
        face.target = widget.GetFader(index);
        break;
    case ControlKind::Encoder:
        face.position = hands.GetSteps(control.id.index);
        break;
    case ControlKind::Ring:
        face.position = hands.GetRingSteps();
        break;
    case ControlKind::Lcd:
        face.level = widget.GetLcdBrightness(index);
        face.text = widget.GetLcdText(index);
        break;
    case ControlKind::Display:
        face.level = widget.GetSurface(index);
        for (unsigned cell = 0; cell < CellsPerDisplay; ++cell)
            face.text.push_back(widget.GetCell(index, cell));
        break;
    case ControlKind::Ball:
        face.roll = hands.GetRoll();
        break;
    case ControlKind::Link:
        face.lamp = GetLink(widget, control.id.index);
        break;
    case ControlKind::Drawer:
        if (const auto isOpen = hands.IsDrawerOpen())
            face.position = *isOpen ? 1 : 0;
        break;
    case ControlKind::Touch:
        break;
    }
    return face;
}

int CountDisplays(const Desk::VirtualWidget& widget)
{
    if (!Desk::HasDisplays(widget.GetModel()))
        return 0;
    int display = DisplayLimit;
    while (display > FewDisplays && !IsInUse(widget, static_cast<unsigned>(display - 1)))
        --display;
    return display;
}

WingFacts ReadFacts(const Desk::VirtualWidget& widget)
{
    WingFacts facts;
    QStringList levels;
    for (const auto& [name, level] : Desk::GetLightLevels(widget))
        levels.append(QStringLiteral("%1 %2 %")
                          .arg(QString::fromStdString(name))
                          .arg((level * 100 + FullLevel / 2) / FullLevel));
    facts.levels = levels.join(", ");
    const int open = widget.CountOpen();
    facts.status =
        open == 1 ? QStringLiteral("1 connection") : QStringLiteral("%1 connections").arg(open);
    facts.isAsleep = widget.IsAsleep();
    facts.isStuck = widget.IsFailing();
    const auto beacons = widget.GetBeacons();
    facts.beacons = beacons.size();
    facts.section = beacons.empty() ? 0 : beacons.back();
    return facts;
}

QString GetIdentity(const Desk::VirtualWidget& widget)
{
    const auto& data = widget.GetData();
    const QString serial =
        data.serialNumber ? QString::number(*data.serialNumber) : QStringLiteral("unreadable");
    const std::uint32_t key = widget.GetKey();
    const QString keyText = key == 0xFFFFFFFF
                                ? QStringLiteral("none")
                                : QStringLiteral("%1").arg(key, 8, 16, QLatin1Char('0'));
    return QStringLiteral("serial %1, key %2").arg(serial, keyText);
}

} // namespace VirtualDesk
