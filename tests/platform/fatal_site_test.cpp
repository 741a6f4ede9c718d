// SPDX-License-Identifier: MIT
#define HARDWARE_BUILD_DATE "Dec 10 2015" // as a reproducible build does
#include "os/fatal_site.h"

#include <gtest/gtest.h>

TEST(FatalSite, HasTheBuildDateThatIsSet)
{
    EXPECT_STREQ(PLATFORM_FATAL_SITE("os/thread.cpp"), "os/thread.cpp (Dec 10 2015)");
}
