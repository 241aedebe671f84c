# What a host needs to be built with the library: cmake --install, into any prefix.
#   component runtime      the library
#   component development  headers, link, CMake package, pkg-config, format for lnav; the tools install
#                          themselves
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(
    TARGETS zelvarquor
    EXPORT quorTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
            COMPONENT runtime
            NAMELINK_COMPONENT development
    FILE_SET HEADERS
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        COMPONENT development)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/quor)
install(
    EXPORT quorTargets
    NAMESPACE quor::
    DESTINATION ${package_folder}
    COMPONENT development)
configure_package_config_file(
    ${PROJECT_SOURCE_DIR}/cmake/quorConfig.cmake.in ${PROJECT_BINARY_DIR}/quorConfig.cmake
    INSTALL_DESTINATION ${package_folder}
    NO_SET_AND_CHECK_MACRO NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/quorConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
install(
    FILES ${PROJECT_BINARY_DIR}/quorConfig.cmake ${PROJECT_BINARY_DIR}/quorConfigVersion.cmake
          ${PROJECT_SOURCE_DIR}/cmake/names_in_trace.cmake
    DESTINATION ${package_folder}
    COMPONENT development)

# The file finds the prefix from where it lies itself, so that the installed tree can be moved; only
# a library folder outside the prefix has a fixed place.
set(libdir ${CMAKE_INSTALL_LIBDIR})
set(includedir ${CMAKE_INSTALL_INCLUDEDIR})
set(prefix ${CMAKE_INSTALL_PREFIX})
if(NOT IS_ABSOLUTE ${libdir})
    file(RELATIVE_PATH up /${libdir}/pkgconfig /)
    set(prefix "\${pcfiledir}/${up}")
    string(REGEX REPLACE "/$" "" prefix "${prefix}")
endif()
foreach(folder IN ITEMS libdir includedir)
    if(NOT IS_ABSOLUTE ${${folder}})
        set(${folder} "\${prefix}/${${folder}}")
    endif()
endforeach()
configure_file(${PROJECT_SOURCE_DIR}/cmake/zelvarquor.pc.in ${PROJECT_BINARY_DIR}/zelvarquor.pc @ONLY)
install(
    FILES ${PROJECT_BINARY_DIR}/zelvarquor.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
    COMPONENT development)

# For who reads traces and logs with lnav: lnav -i FILE.
install(
    FILES ${PROJECT_SOURCE_DIR}/packaging/lnav/quor.json
    DESTINATION ${CMAKE_INSTALL_DATADIR}/quor/lnav
    COMPONENT development)

option(QUOR_INSTALL_ASSERT_DIRECTORY "Install the folder that a failed assertion writes to" OFF)
if(QUOR_INSTALL_ASSERT_DIRECTORY)
    # Only the daemons' group may enter: the reports show what their memory held.
    install(
        DIRECTORY
        DESTINATION ${QUOR_ASSERT_DIRECTORY}
        COMPONENT runtime
        DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE)
endif()
