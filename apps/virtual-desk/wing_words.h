// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include "virtual-desk/wing_controls.h"

namespace VirtualDesk
{

/// What a control is called, such as "Key 12".
QString GetControlName(ControlId id);
/// Its part and master, such as "part 71, master 3"; empty for what has none.
QString GetIdsText(const PlacedControl& control);
/// How it stands, such as "LED flashing, down".
QString GetStateText(ControlId id, const ControlFace& face);
/// What a hand can do with it, for a tool tip.
QString GetHint(ControlKind kind);

/// A cell of a display: its character, or its code in hexadecimal where that has none; empty for 0.
QString GetCellText(char32_t code);
QString GetCodeText(char32_t code);
/// What a small display shows.
QString GetLcdText(const ControlFace& face);
QString GetLinkName(int link);
QString GetSectionName(int section);

} // namespace VirtualDesk
