// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstdio>

#include "desk/preload.h"

int main(int argc, char** argv)
{
    const char* const missing = Desk::EnsurePreloaded(argv);
    if (*missing != '\0') {
        std::fprintf(stderr, "%s\n", missing);
        return 1;
    }
    Desk::HideMachineDevices();
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
