# The six identification strings of the library. They are made anew whenever a source of the library
# changes, and only then, so that building an unchanged tree links nothing.

set(quor_ident_source ${CMAKE_CURRENT_BINARY_DIR}/ident.cpp)
target_sources(zelvarquor PRIVATE ${quor_ident_source})
# With link-time optimisation the order of the data is the optimiser's, not the linker's.
set_source_files_properties(${quor_ident_source} PROPERTIES COMPILE_OPTIONS -fno-lto)

function(quor_ident target)
    get_target_property(sources ${target} SOURCES)
    get_target_property(headers ${target} HEADER_SET)
    list(REMOVE_ITEM sources ${quor_ident_source})
    add_custom_command(
        OUTPUT ${quor_ident_source}
        COMMAND
            ${CMAKE_COMMAND} -DOUTPUT=${quor_ident_source} -DVERSION=${PROJECT_VERSION}
            -DBUILD=${QUOR_BUILD_NUMBER} -DREVISION=${QUOR_REVISION}
            -DCOMPILER=${CMAKE_CXX_COMPILER} -DSOURCE_DIR=${PROJECT_SOURCE_DIR} -P
            ${PROJECT_SOURCE_DIR}/cmake/make_ident.cmake
        DEPENDS ${sources} ${headers} ${PROJECT_SOURCE_DIR}/cmake/make_ident.cmake
                ${PROJECT_SOURCE_DIR}/cmake/ident.cpp.in
        COMMENT "Writing the identification strings"
        VERBATIM)
endfunction()
