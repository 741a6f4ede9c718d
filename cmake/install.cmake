# Installation and the CMake packages that applications find.

include(CMakePackageConfigHelpers)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake)

if(HARDWARE_PLATFORM STREQUAL "standalone")
    install(TARGETS hardwareplatform platform_interface platform_standalone
        EXPORT HardwarePlatformTargets COMPONENT platform)
    set_target_properties(platform_interface PROPERTIES EXPORT_NAME interface)
    set_target_properties(platform_standalone PROPERTIES EXPORT_NAME standalone)
    install(DIRECTORY platform/interface/ platform/standalone/include/
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/hardware-platform COMPONENT platform)
    install(EXPORT HardwarePlatformTargets NAMESPACE HardwarePlatform::
        DESTINATION ${package_dir}/HardwarePlatform COMPONENT platform)
    configure_package_config_file(cmake/HardwarePlatformConfig.cmake.in
        ${CMAKE_CURRENT_BINARY_DIR}/HardwarePlatformConfig.cmake
        INSTALL_DESTINATION ${package_dir}/HardwarePlatform)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/HardwarePlatformConfig.cmake
        DESTINATION ${package_dir}/HardwarePlatform COMPONENT platform)
endif()

install(TARGETS hardware EXPORT HardwareTargets COMPONENT library)
install(DIRECTORY hardware/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT library)
install(EXPORT HardwareTargets NAMESPACE Hardware::
    DESTINATION ${package_dir}/Hardware COMPONENT library)
configure_package_config_file(cmake/HardwareConfig.cmake.in
    ${CMAKE_CURRENT_BINARY_DIR}/HardwareConfig.cmake
    INSTALL_DESTINATION ${package_dir}/Hardware)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/HardwareConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES
    ${CMAKE_CURRENT_BINARY_DIR}/HardwareConfig.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/HardwareConfigVersion.cmake
    DESTINATION ${package_dir}/Hardware COMPONENT library)

if(TARGET hwctl)
    install(TARGETS hwctl COMPONENT tools)
    install(TARGETS desk_preload LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/hardware COMPONENT tools)
    install(FILES docs/man/hwctl.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
    install(DIRECTORY data/midi data/wings DESTINATION ${CMAKE_INSTALL_DATADIR}/hardware COMPONENT tools
        FILES_MATCHING PATTERN "*.txt")
    install(DIRECTORY data/ltc DESTINATION ${CMAKE_INSTALL_DATADIR}/hardware COMPONENT tools
        FILES_MATCHING PATTERN "*.flac")
    install(DIRECTORY data/cd DESTINATION ${CMAKE_INSTALL_DATADIR}/hardware COMPONENT tools
        FILES_MATCHING PATTERN "*.cue")
    install(DIRECTORY data/desk DESTINATION ${CMAKE_INSTALL_DATADIR}/hardware COMPONENT tools
        FILES_MATCHING PATTERN "*.json")
    install(TARGETS virtual-desk COMPONENT tools)
    install(FILES docs/man/virtual-desk.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
endif()
