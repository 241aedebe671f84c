# cmake -DOUTPUT= -DVERSION= -DBUILD= -DREVISION= -DCOMPILER= -DSOURCE_DIR= -P make_ident.cmake
# REVISION may be empty. SOURCE_DATE_EPOCH in the environment stands for the time of day, in UTC.

# The first line that a command prints, or the fallback when it fails or is missing.
function(first_line result fallback)
    execute_process(
        COMMAND ${ARGN}
        OUTPUT_VARIABLE text
        RESULT_VARIABLE status
        ERROR_QUIET)
    string(REGEX REPLACE "[\r\n].*" "" text "${text}")
    if(NOT status EQUAL 0 OR text STREQUAL "")
        set(text "${fallback}")
    endif()
    set(${result} "${text}" PARENT_SCOPE)
endfunction()

if(REVISION STREQUAL "")
    first_line(REVISION 0 git -C ${SOURCE_DIR} rev-list --count HEAD)
endif()
first_line(compiler unknown ${COMPILER} --version)
first_line(machine unknown uname -a)
first_line(user unknown id -un)
if(DEFINED ENV{SOURCE_DATE_EPOCH})
    string(TIMESTAMP time "%Y/%m/%d %H:%M:%S" UTC)
else()
    string(TIMESTAMP time "%Y/%m/%d %H:%M:%S")
endif()

set(idents "")
foreach(pair IN ITEMS "KPXVersion=${VERSION}-${BUILD}--r${REVISION}" "KPXSvnRevision=${REVISION}"
                      "KPXBuildCompiler=${compiler}" "KPXBuildMachine=${machine}"
                      "KPXBuildTime=${time}" "KPXBuildUser=${user}")
    string(REGEX MATCH "^([^=]*)=(.*)$" pair "${pair}")
    set(key "${CMAKE_MATCH_1}")
    string(REPLACE "$" "_" value "${CMAKE_MATCH_2}") # a dollar sign ends a keyword
    string(REGEX REPLACE "[\r\n\t]" " " value "${value}")
    string(REPLACE "\\" "\\\\" value "${value}")
    string(REPLACE "\"" "\\\"" value "${value}")
    string(APPEND idents "    \"\$${key}: ${value} \$\\0\"\n")
endforeach()
string(STRIP "${idents}" idents)
configure_file(${CMAKE_CURRENT_LIST_DIR}/ident.cpp.in ${OUTPUT} @ONLY)
file(TOUCH ${OUTPUT}) # unchanged text is not written again, but the build must see it made
