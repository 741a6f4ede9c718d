# cmake -DSCENARIO=... -DSOURCE=... -DBUILD=... -DWORK=... -P use_installation.cmake
#
# application: installs everything and builds and runs an example against it.
# platform:    installs the platform alone, without its stand-alone headers, and builds the product
#              against that package, as a maker with a platform of its own does.

set(prefix ${WORK}/${SCENARIO}-prefix)
set(user ${WORK}/${SCENARIO}-user)
file(REMOVE_RECURSE ${prefix} ${user})

function(must)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output
        ERROR_VARIABLE output)
    if(result)
        message(FATAL_ERROR "failed: ${ARGN}\n${output}")
    endif()
    set(output "${output}" PARENT_SCOPE)
endfunction()

if(SCENARIO STREQUAL "application")
    must(${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix})
    must(${CMAKE_COMMAND} -S ${SOURCE}/examples/frames -B ${user} -G Ninja
        -DCMAKE_PREFIX_PATH=${prefix})
    must(${CMAKE_COMMAND} --build ${user})
    must(${user}/frames)
    if(NOT output MATCHES "source 1: 10:00:00:00\n.*source 1: 10:00:00:24\n")
        message(FATAL_ERROR "the example printed:\n${output}")
    endif()
    must(${prefix}/bin/hwctl --virtual list)
    if(NOT output MATCHES "Stage Keyboard")
        message(FATAL_ERROR "the installed tool printed:\n${output}")
    endif()
else()
    must(${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix} --component platform)
    file(REMOVE_RECURSE ${prefix}/include/hardware-platform/standalone)
    must(${CMAKE_COMMAND} -S ${SOURCE} -B ${user} -G Ninja -DHARDWARE_PLATFORM=package
        -DHARDWARE_WARNINGS_AS_ERRORS=ON -DCMAKE_PREFIX_PATH=${prefix})
    must(${CMAKE_COMMAND} --build ${user})
    file(GLOB_RECURSE library ${user}/libhardware.so.* ${user}/*/libhardware.so.*)
    if(NOT library)
        message(FATAL_ERROR "no library was built")
    endif()
endif()
