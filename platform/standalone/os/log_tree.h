// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "os/log.h"

namespace Os::Log
{

/// All living contexts and the masks kept for paths, behind one lock.
struct Tree {
    std::recursive_mutex mutex;     // recursive, so that finding and changing can be one step
    std::vector<Context*> contexts; // in the order they were made, so parents come first
    std::map<std::string, unsigned> masks; // by path, also of contexts that do not exist

    /// Never destroyed: contexts of libraries that unload late still sign off here.
    static Tree& Get();
};

} // namespace Os::Log
