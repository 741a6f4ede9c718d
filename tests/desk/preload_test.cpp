// SPDX-License-Identifier: MIT
#include "desk/preload.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

TEST(Preload, AProgramStartedAnewKeepsItsName)
{
    constexpr std::size_t LongestName = 15;
    ASSERT_TRUE(Desk::IsPreloaded());
    const std::string program = std::filesystem::read_symlink("/proc/self/exe").filename();
    std::string name;
    std::getline(std::ifstream("/proc/self/comm"), name);
    EXPECT_EQ(name, program.substr(0, LongestName));
}
