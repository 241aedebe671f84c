# Debian packages, by cpack: libzelvarquor2.8 with the library, libzelvarquor-dev with what hosts are
# built with and the tools, and two with their debugging information. See the preset "package".
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zelvarquor)
set(CPACK_PACKAGE_VENDOR "libzelvarquor maintainers")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "run-time library of a family of daemons")
set(CPACK_PACKAGE_CONTACT "libzelvarquor maintainers <maintainers@zelvarquor.example>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION}.0)
set(CPACK_SET_DESTDIR ON) # one folder lies outside the prefix
set(CPACK_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_COMPONENTS_ALL runtime development)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(version ${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})

set(runtime libzelvarquor${PROJECT_VERSION})
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
    "Trace, log, reported exceptions and assertions, threads, daemonising and\n\
signals for the daemons and tools of one product family.\n\
This package has the library.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${runtime})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RUNTIME_DEBUGINFO_PACKAGE ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/packaging/debian/triggers
                                               ${PROJECT_SOURCE_DIR}/packaging/debian/shlibs)

set(development libzelvarquor-dev)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
    "Trace, log, reported exceptions and assertions, threads, daemonising and\n\
signals for the daemons and tools of one product family.\n\
This package has the headers, the CMake package, the pkg-config file, a\n\
guide with examples, a format for lnav, and quor-timeline, which shows the\n\
calls that a trace holds.\n\
Programs that include quor/any.h also need libboost-dev.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME ${development})
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${runtime} (= ${version}), libstdc++-12-dev | libstdc++-dev")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_DEVELOPMENT_DEBUGINFO_PACKAGE ON)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS "libboost-dev")

# Every Debian package says what changed and who owns it.
find_program(GZIP gzip REQUIRED)
set(changelog ${PROJECT_BINARY_DIR}/changelog.Debian.gz)
configure_file(${PROJECT_SOURCE_DIR}/packaging/debian/changelog.in ${PROJECT_BINARY_DIR}/changelog @ONLY)
execute_process(COMMAND ${GZIP} -9nc ${PROJECT_BINARY_DIR}/changelog OUTPUT_FILE ${changelog})
foreach(component IN ITEMS runtime development)
    install(
        FILES ${PROJECT_SOURCE_DIR}/packaging/debian/copyright ${changelog}
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${${component}}
        COMPONENT ${component})
    install(
        FILES ${PROJECT_SOURCE_DIR}/packaging/debian/${component}.lintian-overrides
        DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides
        RENAME ${${component}}
        COMPONENT ${component})
endforeach()
install(
    FILES ${PROJECT_SOURCE_DIR}/packaging/debian/README.Debian
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${runtime}
    COMPONENT runtime)
include(CPack)
