// SPDX-License-Identifier: MIT
#pragma once

#include <QPoint>
#include <QRect>
#include <string>

#include "desk/widget_controls.h"

namespace VirtualDesk
{

/// What a widget has for a hand to work or an eye to read.
enum class ControlKind {
    Button,  ///< a key, with a LED
    Fader,   ///< with or without a motor
    Encoder, ///< a knob without an end
    Lcd,     ///< a master's small display
    Display, ///< a display of an expansion wing: ten cells
    Ball,    ///< a trackball
    Ring,    ///< the ring around a console's trackball
    Touch,   ///< a button of the touch bar
    Drawer,  ///< the keyboard drawer
    Link     ///< a lamp that tells of a network's link
};

/// One control of a widget: its kind, and its index among its kind.
struct ControlId {
    ControlKind kind = ControlKind::Button;
    int index = 0;

    bool operator==(const ControlId&) const = default;
    bool operator<(const ControlId& other) const
    {
        return kind != other.kind ? kind < other.kind : index < other.index;
    }
};

/// A control and where it stands, in units of the layout.
struct PlacedControl {
    ControlId id;
    QRect rect;
    unsigned short pid = 0; ///< part id, where it has one
    unsigned short mid = 0; ///< master id
    int group = 0;
    bool hasIds = false;
};

/// How a LED stands; numbered as reports number it.
enum class Lamp { Unset = -1, Off, On, Flash, Dim };

/// Everything of a control that is to be seen.
struct ControlFace {
    Lamp lamp = Lamp::Unset;
    bool isDown = false;
    bool isLatched = false;
    int position = -1; ///< a fader's, 0 to 255, -1 while unknown; steps that a knob was turned
    int target = -1;   ///< where a motor was sent last
    int level = -1;    ///< a display's brightness or surface byte
    QPoint roll;       ///< how far a ball was rolled
    std::u32string text;

    bool operator==(const ControlFace&) const = default;
};

/// Faders and motors go so far.
constexpr int FaderEnd = Desk::FaderEnd;
/// Cells of a display of an expansion wing.
constexpr int CellsPerDisplay = 10;
/// Displays that an expansion wing can have.
constexpr int DisplayLimit = 256;

} // namespace VirtualDesk
