# quor_build_facts(OUTPUT TEMPLATE SOURCE...): makes OUTPUT from TEMPLATE with what is known of the
# build (see write_build_facts.cmake) whenever one of the sources changes, and only then, so that
# building an unchanged tree compiles and links nothing.
function(quor_build_facts output template)
    set(script ${PROJECT_SOURCE_DIR}/cmake/write_build_facts.cmake)
    add_custom_command(
        OUTPUT ${output}
        COMMAND
            ${CMAKE_COMMAND} -DOUTPUT=${output} -DTEMPLATE=${template}
            -DPROJECT_VERSION=${PROJECT_VERSION}
            -DPROJECT_VERSION_MAJOR=${PROJECT_VERSION_MAJOR}
            -DPROJECT_VERSION_MINOR=${PROJECT_VERSION_MINOR}
            -DQUOR_BUILD_NUMBER=${QUOR_BUILD_NUMBER} -DQUOR_REVISION=${QUOR_REVISION}
            -DCOMPILER=${CMAKE_CXX_COMPILER} -DSOURCE_DIR=${PROJECT_SOURCE_DIR} -P ${script}
        DEPENDS ${ARGN} ${template} ${script}
        COMMENT "Writing the build's facts"
        VERBATIM)
endfunction()
