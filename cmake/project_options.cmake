# Compiler settings that every target of this project shares.

set(HARDWARE_SANITIZE "" CACHE STRING "Sanitizers to build with: '', 'address' or 'thread'")
set_property(CACHE HARDWARE_SANITIZE PROPERTY STRINGS "" address thread)
set(HARDWARE_BUILD_DATE "" CACHE STRING
    "Build date in fatal texts, such as 'Dec 10 2015'; empty for the compiler's date")
option(HARDWARE_WARNINGS_AS_ERRORS "Treat compiler warnings as errors" OFF)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

if(CMAKE_CXX_FLAGS MATCHES "-ffast-math|-Ofast")
    message(FATAL_ERROR "Fast math breaks the rounding and not-a-number rules of timecode values")
endif()

add_library(project_options INTERFACE)
target_compile_options(project_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
    -Wnon-virtual-dtor -Wcast-qual -Wundef)
if(HARDWARE_WARNINGS_AS_ERRORS)
    target_compile_options(project_options INTERFACE -Werror)
endif()
target_compile_definitions(project_options INTERFACE QT_NO_KEYWORDS)

if(HARDWARE_SANITIZE STREQUAL "address")
    set(sanitizers -fsanitize=address,undefined -fno-sanitize-recover=undefined)
elseif(HARDWARE_SANITIZE STREQUAL "thread")
    set(sanitizers -fsanitize=thread)
elseif(HARDWARE_SANITIZE)
    message(FATAL_ERROR "HARDWARE_SANITIZE is '${HARDWARE_SANITIZE}': use address or thread")
endif()
if(HARDWARE_SANITIZE)
    # Of debug information, what reports need: functions and lines.
    target_compile_options(project_options INTERFACE ${sanitizers} -fno-omit-frame-pointer -g1)
    target_link_options(project_options INTERFACE ${sanitizers})
endif()

# hardware_build_date(<target>): its fatal texts have the build date that is set, if any.
function(hardware_build_date target)
    if(HARDWARE_BUILD_DATE)
        target_compile_definitions(${target} PRIVATE
            HARDWARE_BUILD_DATE="${HARDWARE_BUILD_DATE}")
    endif()
endfunction()

# hardware_precompile(<target> <header>...): headers that cost a target most of its compile time.
# Only where a sanitizer is built in: other builds see that every source includes what it uses.
function(hardware_precompile target)
    if(HARDWARE_SANITIZE)
        target_precompile_headers(${target} PRIVATE ${ARGN})
    endif()
endfunction()
