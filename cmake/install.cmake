# What a host needs to be built with the library: cmake --install, into any prefix.
#   component runtime      the library
#   component development  headers, link, CMake package, pkg-config, guide and examples, format for lnav;
#                          the tools install themselves
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

# The guide and its neighbours, in folders as here, so that their links to each other hold.
if(NOT DEFINED QUOR_DOCUMENTS)
    set(QUOR_DOCUMENTS ${CMAKE_INSTALL_DOCDIR})
endif()
install(
    DIRECTORY ${PROJECT_SOURCE_DIR}/docs ${PROJECT_SOURCE_DIR}/examples ${PROJECT_SOURCE_DIR}/packaging
    DESTINATION ${QUOR_DOCUMENTS}
    COMPONENT development
    FILES_MATCHING
    PATTERN "*.md"
    PATTERN "*.svg"
    PATTERN "*.png"
    PATTERN "*.h"
    PATTERN "*.cpp"
    PATTERN "*.service"
    PATTERN "*.conf"
    PATTERN "*.rulebase"
    PATTERN "*.toml"
    PATTERN logrotate/spoold
    PATTERN docs/man EXCLUDE
    PATTERN packaging/debian EXCLUDE
    PATTERN packaging/lnav EXCLUDE)

option(QUOR_INSTALL_ASSERT_DIRECTORY
       "Fail to install where the folder that a failed assertion writes to cannot be made" OFF)
if(QUOR_INSTALL_ASSERT_DIRECTORY)
    # Only the daemons' group may enter: the reports show what their memory held.
    install(
        DIRECTORY
        DESTINATION ${QUOR_ASSERT_DIRECTORY}
        COMPONENT runtime
        DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE)
elseif(IS_ABSOLUTE ${QUOR_ASSERT_DIRECTORY})
    # It lies outside the prefix, where who installs may not be allowed to write.
    install(
        CODE "
            set(folder \"\$ENV{DESTDIR}${QUOR_ASSERT_DIRECTORY}\")
            if(NOT IS_DIRECTORY \"\${folder}\")
                get_filename_component(parent \"\${folder}\" DIRECTORY)
                execute_process(COMMAND mkdir -p \"\${parent}\" ERROR_QUIET)
                execute_process(COMMAND mkdir -m 750 \"\${folder}\" RESULT_VARIABLE result ERROR_QUIET)
                if(result EQUAL 0)
                    message(STATUS \"Made for reports of failed assertions: \${folder}\")
                else()
                    message(STATUS \"Not allowed to make \${folder}: reports of failed assertions go to standard error\")
                endif()
            endif()"
        COMPONENT runtime)
endif()
