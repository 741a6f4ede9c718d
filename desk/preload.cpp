// SPDX-License-Identifier: MIT
#include "desk/preload.h"

#include <dlfcn.h>
#include <link.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <string_view>

#include "preload/device_faults.h"

namespace Desk
{

namespace
{

/// Holds the program's own name. It is set for the second start, which prevents a third one.
constexpr char StartedAnew[] = "DESK_STARTED_WITH_PRELOAD";

/// Of a thread's name, with the zero behind it.
constexpr std::size_t NameSize = 16;

/// Keeps what the user had in LD_PRELOAD over the second start.
constexpr char PreloadBefore[] = "DESK_PRELOAD_BEFORE";

/// Path of the first loaded library whose path has one of @p names in it; empty for none.
std::string FindLoaded(std::initializer_list<std::string_view> names)
{
    struct Search {
        std::initializer_list<std::string_view> names;
        std::string found;
    } search{names, {}};
    dl_iterate_phdr(
        [](dl_phdr_info* info, std::size_t, void* argument) {
            auto& [wanted, found] = *static_cast<Search*>(argument);
            const std::string_view path = info->dlpi_name;
            for (const std::string_view name : wanted)
                if (path.find(name) != std::string_view::npos)
                    found = path;
            return found.empty() ? 0 : 1;
        },
        &search);
    return search.found;
}

/// Where the device-fault library lies, seen from the program: in a build tree or an installation.
std::string FindDeviceFaults()
{
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");
    const std::filesystem::path prefix = program.parent_path().parent_path();
    for (const char* const folder : {DESK_LIBRARY_FOLDER, DESK_LIBRARY_FOLDER "/hardware"}) {
        const std::filesystem::path library = prefix / folder / "libdesk-preload.so";
        if (std::filesystem::exists(library))
            return library.lexically_normal();
    }
    return {};
}

} // namespace

bool IsPreloaded()
{
    return !FindLoaded({"/libumockdev-preload.so"}).empty() &&
           dlsym(RTLD_DEFAULT, "desk_add_device");
}

// The environment is read and changed before there is a second thread.
// NOLINTBEGIN(concurrency-mt-unsafe)
const char* EnsurePreloaded(char** arguments)
{
    const char* const nameBefore = std::getenv(StartedAnew);
    const bool startedAnew = nameBefore != nullptr;
    if (startedAnew)
        prctl(PR_SET_NAME, nameBefore);
    unsetenv(StartedAnew);
    if (IsPreloaded()) {
        // Not for the programs that this one may start: they get what the user had.
        const char* const before = std::getenv(PreloadBefore);
        if (before)
            setenv("LD_PRELOAD", before, 1);
        else
            unsetenv("LD_PRELOAD");
        unsetenv(PreloadBefore);
        return "";
    }
    if (startedAnew)
        return "the test bed's library libumockdev-preload.so.0 could not be loaded";
    const std::string faults = FindDeviceFaults();
    if (faults.empty())
        return "the library libdesk-preload.so is not where it was installed";

    // A sanitizer's runtime wants to stand before all others.
    std::string preload = FindLoaded({"/libasan.so", "/libtsan.so"});
    if (!preload.empty())
        preload += ':';
    preload += faults + ":libumockdev-preload.so.0";
    if (const char* const before = std::getenv("LD_PRELOAD")) {
        setenv(PreloadBefore, before, 1);
        preload += std::string(":") + before;
    }
    setenv("LD_PRELOAD", preload.c_str(), 1);
    // The name that ps shows and pkill finds: a program started as /proc/self/exe is called "exe".
    std::array<char, NameSize> name{};
    prctl(PR_GET_NAME, name.data());
    setenv(StartedAnew, name.data(), 1);
    execv("/proc/self/exe", arguments);
    return "the program could not be started anew with the preloaded libraries";
}
// NOLINTEND(concurrency-mt-unsafe)

void HideMachineDevices()
{
    if (auto* const hide =
            reinterpret_cast<DeskHideMachine*>(dlsym(RTLD_DEFAULT, "desk_hide_machine")))
        hide("/dev/null/nothing");
}

} // namespace Desk
