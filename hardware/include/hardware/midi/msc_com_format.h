// SPDX-License-Identifier: MIT
#pragma once

#include "hardware/export.h"
#include "xtti/type_code.h"

namespace Hardware
{

/// Command format of MIDI Show Control: the kind of equipment that a message is for.
enum MscComFormat : unsigned int {
    MscComFormat_GeneralLighting = 1, ///< "01: General Lighting"
    MscComFormat_MovingLights = 2,    ///< "02: Moving Lights"
    MscComFormat_ColourChangers = 3,  ///< "03: Colour Changers"
    MscComFormat_Strobes = 4,         ///< "04: Strobes"
    MscComFormat_Lasers = 5,          ///< "05: Lasers"
    MscComFormat_Chasers = 6,         ///< "06: Chasers"
    MscComFormat_MAX = 7              ///< "MscComFormat_MAX"
};

} // namespace Hardware

/// 975
template <> HARDWARE_EXPORT unsigned int get_type_code(const Hardware::MscComFormat*);
