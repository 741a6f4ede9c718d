// SPDX-License-Identifier: MIT
// Timecode arithmetic on processors that multiply and add at once, which saves a rounding.
#include <dlfcn.h>
#include <gtest/gtest.h>

namespace
{

// Results that come out one frame higher with a rounding less.
struct Case {
    double index;
    double rate;
    int frame;
};
constexpr Case Cases[] = {{40460.0, 59.94, 0}, {8991.5, 23.976, 0}, {20230.25, 29.97, 0}};

typedef int GetFrameNumber(double index, double rate);

/// The arithmetic of a module; null where it cannot run.
GetFrameNumber* Load(const char* module)
{
    void* const loaded = dlopen(module, RTLD_NOW | RTLD_LOCAL);
    EXPECT_NE(loaded, nullptr) << dlerror();
    return loaded ? reinterpret_cast<GetFrameNumber*>(dlsym(loaded, "GetFrameNumber")) : nullptr;
}

class Contraction : public testing::Test
{
protected:
    void SetUp() override
    {
#if defined(__x86_64__)
        if (!__builtin_cpu_supports("fma"))
            GTEST_SKIP() << "the processor cannot multiply and add at once";
#endif
    }
};

TEST_F(Contraction, IsOffInTheLibrary)
{
    GetFrameNumber* const getFrame = Load(LIKE_LIBRARY_MODULE);
    ASSERT_NE(getFrame, nullptr);
    for (const auto& [index, rate, frame] : Cases)
        EXPECT_EQ(getFrame(index, rate), frame) << index << " at " << rate;
}

TEST_F(Contraction, WouldChangeTheseResults)
{
    GetFrameNumber* const getFrame = Load(CONTRACTED_MODULE);
    ASSERT_NE(getFrame, nullptr);
    for (const auto& [index, rate, frame] : Cases)
        EXPECT_EQ(getFrame(index, rate), frame + 1) << index << " at " << rate;
}

} // namespace
