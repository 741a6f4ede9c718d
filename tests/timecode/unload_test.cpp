// SPDX-License-Identifier: MIT
// What stays behind when the library goes. This program does not link it.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <QMetaType>
#include <cstdlib>

#include "os/log.h"
#include "xtti/type_reg.h"

namespace
{

/// Loads the library and uses its contexts, so that there is something to leave behind.
void* Load()
{
    void* const library = dlopen(HARDWARE_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    if (!library)
        return nullptr;
    void* const symbol = dlsym(library, "_ZN8Hardware18TimecodeLogContextEv");
    if (!symbol)
        return nullptr;
    reinterpret_cast<Os::Log::Context& (*)()>(symbol)();
    return library;
}

bool AreTypesThere()
{
    return xtti::find(849U) && xtti::find(850U) && xtti::find(851U);
}

bool IsAnyTypeThere()
{
    return xtti::find(849U) || xtti::find(850U) || xtti::find(851U);
}

bool AreContextsThere()
{
    return Os::Log::Context::Find("Hardware") && Os::Log::Context::Find("Hardware/Timecode");
}

bool IsAnyContextThere()
{
    return Os::Log::Context::Find("Hardware") || Os::Log::Context::Find("Hardware/Timecode");
}

bool AreMetatypesThere()
{
    return QMetaType::fromName("Hardware::Timecode::Device::Id").isValid() &&
           QMetaType::fromName("Hardware::Timecode::Frame").isValid();
}

bool IsAnyMetatypeThere()
{
    return QMetaType::fromName("Hardware::Timecode::Device::Id").isValid() ||
           QMetaType::fromName("Hardware::Timecode::Frame").isValid();
}

bool IsMapped()
{
    void* const library = dlopen(HARDWARE_LIBRARY, RTLD_NOW | RTLD_NOLOAD);
    if (library)
        dlclose(library);
    return library;
}

TEST(TimecodeLoad, RegistersTypes)
{
    EXPECT_FALSE(IsAnyTypeThere());
    EXPECT_FALSE(IsAnyMetatypeThere());
    ASSERT_NE(Load(), nullptr) << dlerror();
    EXPECT_TRUE(AreTypesThere());
    EXPECT_TRUE(AreMetatypesThere());
}

TEST(TimecodeLoad, ExportsTheLinkAnchors)
{
    void* const library = Load();
    ASSERT_NE(library, nullptr) << dlerror();
    for (const char* const name :
         {"_Z20Hardware_LinkControlv", "_Z20Timecode_LinkControlv", "_Z16Midi_LinkControlv"})
        EXPECT_NE(dlsym(library, name), nullptr) << name;
}

TEST(TimecodeUnload, LeavesOfTypesOfWingsOnlyNamesForBuiltInOnes)
{
    void* const library = Load();
    ASSERT_NE(library, nullptr) << dlerror();
    const char* const names[] = {"Hardware::UmWing::LedState",     "UmWing::LedState",
                                 "Hardware::UmWing::WingSections", "UmWing::WingSections",
                                 "QRT_XWING_CONFIGURATION",        "QRT_XWING_CONFIGURATION&",
                                 "Hardware::WidgetMapData"};
    for (const char* const name : names)
        EXPECT_TRUE(QMetaType::fromName(name).isValid()) << name;
    ASSERT_EQ(dlclose(library), 0);
    for (const char* const name : names)
        EXPECT_FALSE(QMetaType::fromName(name).isValid()) << name;
    EXPECT_STREQ(QMetaType::fromName("Hardware::WidgetKey").name(), "uint");
}

TEST(TimecodeUnload, CanBeFollowedByAnotherLoad)
{
    for (int round = 0; round < 3; ++round) {
        void* const library = Load();
        ASSERT_NE(library, nullptr) << dlerror();
        EXPECT_TRUE(AreTypesThere());
        EXPECT_TRUE(AreMetatypesThere());
        ASSERT_EQ(dlclose(library), 0);
        ASSERT_FALSE(IsMapped());
    }
}

TEST(TimecodeUnload, LeavesNoTypeAndNoContextBehind)
{
    void* const library = Load();
    ASSERT_NE(library, nullptr) << dlerror();
    ASSERT_TRUE(AreContextsThere());
    ASSERT_EQ(dlclose(library), 0);
    ASSERT_FALSE(IsMapped()) << "the loader keeps the library";
    EXPECT_FALSE(IsAnyTypeThere());
    EXPECT_FALSE(IsAnyMetatypeThere());
    EXPECT_FALSE(IsAnyContextThere());
}

/// Runs after the library's own destructors, being registered before they are.
void ExitByWhatIsLeft()
{
    _exit(IsAnyTypeThere() || IsAnyContextThere() || IsAnyMetatypeThere() ? 1 : 0);
}

void LoadAndExit()
{
    // Qt's registry comes with its first use and must outlive the check.
    if (IsAnyMetatypeThere() || std::atexit(&ExitByWhatIsLeft) != 0 || !Load() ||
        !AreTypesThere() || !AreContextsThere() || !AreMetatypesThere())
        _exit(2);
    std::exit(3);
}

TEST(TimecodeUnloadDeathTest, TheEndOfTheProgramLeavesNoTypeAndNoContextBehind)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(LoadAndExit(), testing::ExitedWithCode(0), "");
}

} // namespace
