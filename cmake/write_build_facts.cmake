# Fills in TEMPLATE with the project's numbers and:
#   revision         QUOR_REVISION, or git's commit count when that is empty, or 0
#   build_compiler   the first line that COMPILER --version prints
#   build_machine    uname -a
#   build_time       local YYYY/MM/DD hh:mm:ss, or SOURCE_DATE_EPOCH of the environment in UTC
#   build_user       the account
# Every value fits between the quotes of a C++ string and between the dollar signs of a keyword.

function(keep result text)
    string(REPLACE "$" "_" text "${text}")
    string(REGEX REPLACE "[\r\t]" " " text "${text}")
    string(REPLACE "\\" "\\\\" text "${text}")
    string(REPLACE "\"" "\\\"" text "${text}")
    set(${result} "${text}" PARENT_SCOPE)
endfunction()

# The first line that a command prints, or the fallback when it fails or is missing.
function(first_line result fallback)
    execute_process(
        COMMAND ${ARGN}
        OUTPUT_VARIABLE text
        RESULT_VARIABLE status
        ERROR_QUIET)
    string(REGEX REPLACE "\n.*" "" text "${text}")
    if(NOT status EQUAL 0 OR text STREQUAL "")
        set(text "${fallback}")
    endif()
    keep(text "${text}")
    set(${result} "${text}" PARENT_SCOPE)
endfunction()

if(QUOR_REVISION STREQUAL "")
    first_line(revision 0 git -C ${SOURCE_DIR} rev-list --count HEAD)
else()
    keep(revision "${QUOR_REVISION}")
endif()
first_line(build_compiler unknown ${COMPILER} --version)
first_line(build_machine unknown uname -a)
first_line(build_user unknown id -un)
if(DEFINED ENV{SOURCE_DATE_EPOCH})
    string(TIMESTAMP build_time "%Y/%m/%d %H:%M:%S" UTC)
else()
    string(TIMESTAMP build_time "%Y/%m/%d %H:%M:%S")
endif()

configure_file(${TEMPLATE} ${OUTPUT} @ONLY)
file(TOUCH ${OUTPUT}) # an unchanged text is not written again, but the build must see it made
