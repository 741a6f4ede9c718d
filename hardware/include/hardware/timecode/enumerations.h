// SPDX-License-Identifier: MIT
#pragma once

#include "hardware/export.h"
#include "xtti/type_code.h"

namespace Hardware
{

/// Frame rate family of a timecode. Drop-frame notation is not a format: each Frame carries it.
enum TimecodeFormat : unsigned int {
    TimecodeFormat_Smpte30 = 0, ///< "SMPTE 30", 30 frames per second
    TimecodeFormat_Ntsc30 = 1,  ///< "NTSC 30", 30 frames per second, not 29.97
    TimecodeFormat_Ebu25 = 2,   ///< "EBU 25", 25 frames per second
    TimecodeFormat_Film24 = 3,  ///< "Film 24", 24 frames per second
    TimecodeFormat_Invalid = 4  ///< "Invalid", no rate
};

/// Where a timecode comes from.
enum TimecodeType : unsigned int {
    TimecodeType_None = 0,      ///< "None"
    TimecodeType_Ltc = 1,       ///< "LTC", longitudinal timecode (audio)
    TimecodeType_Vitc = 2,      ///< "VITC", vertical interval timecode (video)
    TimecodeType_Midi = 3,      ///< "MIDI"
    TimecodeType_Cd = 4,        ///< "CD", position of an audio CD
    TimecodeType_Simulated = 5, ///< "Simulated"
    TimecodeType_Invalid = 6    ///< "Invalid", the out-of-range marker
};

/// Video standard.
enum VideoFormat : unsigned int {
    VideoFormat_Pal = 0,    ///< "PAL"
    VideoFormat_Ntsc = 1,   ///< "NTSC"
    VideoFormat_Invalid = 2 ///< the out-of-range marker; has no name
};

} // namespace Hardware

/// 849
template <> HARDWARE_EXPORT unsigned int get_type_code(const Hardware::TimecodeFormat*);
/// 850
template <> HARDWARE_EXPORT unsigned int get_type_code(const Hardware::TimecodeType*);
/// 851
template <> HARDWARE_EXPORT unsigned int get_type_code(const Hardware::VideoFormat*);
