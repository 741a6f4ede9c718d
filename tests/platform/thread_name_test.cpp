// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <pthread.h>

#include <array>
#include <string>

#include "os/event.h"
#include "os/thread.h"

using Os::Thread;

namespace
{

/// What the system calls the thread that runs it.
unsigned GetSystemName(void* argument)
{
    std::array<char, 64> name{};
    pthread_getname_np(pthread_self(), name.data(), name.size());
    *static_cast<std::string*>(argument) = name.data();
    return 0;
}

struct NameCase {
    const char* whole;
    const char* shown;
};

TEST(ThreadName, IsCutToFifteenCharactersForTheSystemAndKeptWholeInTheObject)
{
    const NameCase cases[] = {
        {"", ""},
        {"Midi Receiver", "Midi Receiver"},
        {"123456789012345", "123456789012345"},
        {"1234567890123456", "123456789012345"},
        {"ConsoleLightFadingThread", "ConsoleLightFad"},
    };
    for (const NameCase& c : cases) {
        std::string shown = "never asked";
        {
            const Thread thread(&GetSystemName, &shown, c.whole, 0, Thread::DefaultSlice,
                                Thread::DefaultStack);
            EXPECT_EQ(thread.GetName(), c.whole);
        }
        EXPECT_EQ(shown, c.shown);
    }
}

} // namespace
