// SPDX-License-Identifier: MIT
#include "virtual-desk/wing_words.h"

#include <QChar>
#include <QStringList>
#include <array>

namespace VirtualDesk
{

namespace
{

constexpr unsigned short NoMaster = 65535;
constexpr int FullLevel = 255;

QString GetLampText(Lamp lamp)
{
    switch (lamp) {
    case Lamp::Off:
        return QStringLiteral("LED off");
    case Lamp::On:
        return QStringLiteral("LED on");
    case Lamp::Flash:
        return QStringLiteral("LED flashing");
    case Lamp::Dim:
        return QStringLiteral("LED dim");
    case Lamp::Unset:
        break;
    }
    return QStringLiteral("LED not set");
}

QString GetFaderText(const ControlFace& face)
{
    QString text = face.position < 0 ? QStringLiteral("not moved yet")
                                     : QStringLiteral("at %1").arg(face.position);
    if (face.target >= 0 && face.target != face.position)
        text += QStringLiteral(", motor sent to %1").arg(face.target);
    return text;
}

QString GetDisplayText(const ControlFace& face)
{
    QStringList cells;
    for (const char32_t code : face.text)
        cells.append(code == 0 ? QStringLiteral("-") : GetCellText(code));
    return QStringLiteral("surface %1, cells %2").arg(face.level).arg(cells.join(' '));
}

QString GetLcdStateText(const ControlFace& face)
{
    const QString level =
        face.level < 0 ? QStringLiteral("brightness not set")
                       : QStringLiteral("brightness %1 of %2").arg(face.level).arg(FullLevel);
    const QString text = GetLcdText(face);
    return text.isEmpty() ? QStringLiteral("empty, ") + level
                          : QStringLiteral("\"%1\", %2").arg(text, level);
}

QString GetHandText(const ControlFace& face)
{
    if (face.isLatched)
        return QStringLiteral("latched down");
    return face.isDown ? QStringLiteral("down") : QStringLiteral("up");
}

} // namespace

QString GetControlName(ControlId id)
{
    switch (id.kind) {
    case ControlKind::Button:
        return QStringLiteral("Key %1").arg(id.index);
    case ControlKind::Fader:
        return QStringLiteral("Fader %1").arg(id.index);
    case ControlKind::Encoder:
        return QStringLiteral("Encoder %1").arg(id.index);
    case ControlKind::Lcd:
        return QStringLiteral("Small display %1").arg(id.index);
    case ControlKind::Display:
        return QStringLiteral("Display %1").arg(id.index);
    case ControlKind::Ball:
        return QStringLiteral("Trackball");
    case ControlKind::Ring:
        return QStringLiteral("Ring");
    case ControlKind::Touch:
        return QStringLiteral("Touch button %1").arg(id.index);
    case ControlKind::Drawer:
        return QStringLiteral("Keyboard drawer");
    case ControlKind::Link:
        return GetLinkName(id.index);
    }
    return {};
}

QString GetIdsText(const PlacedControl& control)
{
    if (!control.hasIds)
        return {};
    const QString part = QStringLiteral("part %1").arg(control.pid);
    return control.mid == NoMaster ? part + QStringLiteral(", no master")
                                   : part + QStringLiteral(", master %1").arg(control.mid);
}

QString GetStateText(ControlId id, const ControlFace& face)
{
    switch (id.kind) {
    case ControlKind::Button:
        return GetLampText(face.lamp) + ", " + GetHandText(face);
    case ControlKind::Touch:
        return GetHandText(face);
    case ControlKind::Fader:
        return GetFaderText(face);
    case ControlKind::Encoder:
    case ControlKind::Ring:
        return QStringLiteral("turned %1 steps").arg(face.position);
    case ControlKind::Lcd:
        return GetLcdStateText(face);
    case ControlKind::Display:
        return GetDisplayText(face);
    case ControlKind::Ball:
        return QStringLiteral("rolled %1 right, %2 down").arg(face.roll.x()).arg(face.roll.y());
    case ControlKind::Drawer:
        if (face.position < 0)
            return QStringLiteral("not moved yet");
        return face.position == 1 ? QStringLiteral("open") : QStringLiteral("closed");
    case ControlKind::Link:
        return face.lamp == Lamp::On ? QStringLiteral("lit") : QStringLiteral("dark");
    }
    return {};
}

QString GetHint(ControlKind kind)
{
    switch (kind) {
    case ControlKind::Button:
    case ControlKind::Touch:
        return QStringLiteral("Hold with the mouse or the space bar; right-click or Shift latches");
    case ControlKind::Fader:
        return QStringLiteral("Drag, turn the wheel, or press arrows, Page Up and Down, Home, End");
    case ControlKind::Encoder:
    case ControlKind::Ring:
        return QStringLiteral("Drag, turn the wheel, or press the up and down arrows");
    case ControlKind::Ball:
        return QStringLiteral("Drag, or press arrows; Shift rolls finely");
    case ControlKind::Drawer:
        return QStringLiteral("Click or press the space bar to open and close");
    case ControlKind::Lcd:
    case ControlKind::Display:
    case ControlKind::Link:
        break;
    }
    return {};
}

QString GetCellText(char32_t code)
{
    if (code == 0)
        return {};
    if (code <= QChar::LastValidCodePoint && QChar::isPrint(code) && !QChar::isSpace(code))
        return QString::fromUcs4(&code, 1);
    return code == U' ' ? QStringLiteral(" ") : GetCodeText(code);
}

QString GetCodeText(char32_t code)
{
    constexpr int Hexadecimal = 16;
    return QString::number(code, Hexadecimal).toUpper();
}

QString GetLcdText(const ControlFace& face)
{
    return QString::fromStdU32String(face.text).simplified();
}

QString GetLinkName(int link)
{
    static constexpr std::array<const char*, 4> Names{"Console link", "Console gigabit",
                                                      "Fixture link", "Fixture gigabit"};
    return QString::fromLatin1(Names.at(static_cast<std::size_t>(link)));
}

QString GetSectionName(int section)
{
    static constexpr std::array<const char*, 4> Names{"all", "left", "right", "centre"};
    return section >= 0 && section < static_cast<int>(Names.size())
               ? QString::fromLatin1(Names.at(static_cast<std::size_t>(section)))
               : QString::number(section);
}

} // namespace VirtualDesk
