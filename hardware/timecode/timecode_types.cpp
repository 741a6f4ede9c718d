// SPDX-License-Identifier: MIT
#include "enum_registration.h"
#include "hardware/timecode/enumerations.h"

template <> unsigned int get_type_code(const Hardware::TimecodeFormat*)
{
    return 849;
}

template <> unsigned int get_type_code(const Hardware::TimecodeType*)
{
    return 850;
}

template <> unsigned int get_type_code(const Hardware::VideoFormat*)
{
    return 851;
}

namespace
{

const wchar_t* const TimecodeFormatNames[] = {L"SMPTE 30", L"NTSC 30", L"EBU 25", L"Film 24",
                                              L"Invalid"};
const wchar_t* const TimecodeTypeNames[] = {L"None", L"LTC",       L"VITC",   L"MIDI",
                                            L"CD",   L"Simulated", L"Invalid"};
const wchar_t* const VideoFormatNames[] = {L"PAL", L"NTSC"};

// lowest, highest, first named, last named, number of names
constexpr xtti::enum_desc TimecodeFormatDescriptor{0, 4, 0, 4, 5, TimecodeFormatNames};
constexpr xtti::enum_desc TimecodeTypeDescriptor{0, 6, 0, 6, 7, TimecodeTypeNames};
constexpr xtti::enum_desc VideoFormatDescriptor{0, 2, 0, 1, 2, VideoFormatNames};

} // namespace

HARDWARE_REGISTER_ENUM(TimecodeFormat, TimecodeFormatDescriptor);
HARDWARE_REGISTER_ENUM(TimecodeType, TimecodeTypeDescriptor);
HARDWARE_REGISTER_ENUM(VideoFormat, VideoFormatDescriptor);
