// SPDX-License-Identifier: MIT

// What the library leaves behind when it goes. This program loads it at run time.

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <QMetaType>
#include <cstdlib>

#include "os/log.h"
#include "xtti/type_reg.h"

namespace
{

bool IsTypeRegistered()
{
    return xtti::find(975U) != nullptr;
}

bool IsContextAlive()
{
    return Os::Log::Context::Find("Hardware/Midi") != nullptr;
}

int CountMetaTypes()
{
    int count = 0;
    for (const char* const name :
         {"Hardware::Midi::Device::Id", "Hardware::Midi::Device::ShortMessage",
          "Hardware::Midi::Device::SysExMessage"})
        count += QMetaType::fromName(name).isValid() ? 1 : 0;
    return count;
}

/// Loads the library and uses its log context; false when it cannot.
bool Load()
{
    void* const library = dlopen(HARDWARE_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    void* const symbol = library ? dlsym(library, "_ZN8Hardware14MidiLogContextEv") : nullptr;
    if (!symbol)
        return false;
    reinterpret_cast<Os::Log::Context& (*)()>(symbol)();
    return true;
}

void SayWhatIsLeft()
{
    if (IsTypeRegistered())
        _exit(1);
    if (IsContextAlive())
        _exit(2);
    _exit(CountMetaTypes() == 0 ? 0 : 3);
}

/// The handler is older than the library's destructors, so it runs after them.
void LoadAndExit()
{
    // Qt's registry must be older than the handler too, or it is gone when the handler asks.
    CountMetaTypes();
    if (std::atexit(&SayWhatIsLeft) != 0 || !Load())
        _exit(4);
    std::exit(5);
}

} // namespace

TEST(MidiUnload, NothingIsThereBeforeTheLibrary)
{
    EXPECT_FALSE(IsTypeRegistered());
    EXPECT_FALSE(IsContextAlive());
    EXPECT_EQ(CountMetaTypes(), 0);
}

TEST(MidiUnload, TypesAreThereWhileTheLibraryIsLoaded)
{
    ASSERT_TRUE(Load()) << dlerror();
    EXPECT_TRUE(IsTypeRegistered());
    EXPECT_TRUE(IsContextAlive());
    EXPECT_EQ(CountMetaTypes(), 3);
}

TEST(MidiUnloadDeathTest, NothingIsLeftAtTheEndOfTheProgram)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(LoadAndExit(), testing::ExitedWithCode(0), "");
}
