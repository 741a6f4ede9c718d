// SPDX-License-Identifier: MIT
// The call that makes an application link every module.
#include "hardware/link_control.h"

#include <gtest/gtest.h>

namespace
{

int g_timecode = 0;
int g_midi = 0;

} // namespace

// This program's own anchors of the modules stand before the library's.

void Timecode_LinkControl()
{
    ++g_timecode;
}

void Midi_LinkControl()
{
    ++g_midi;
}

namespace
{

TEST(LinkAnchor, OfTheLibraryCallsThoseOfItsModules)
{
    Hardware_LinkControl();
    EXPECT_EQ(g_timecode, 1);
    EXPECT_EQ(g_midi, 1);
}

} // namespace
