# Checks that tools include of the suite only headers that are installed: what a tool needs, others'
# tools need, too.
#
#   cmake -DROOT=. -P CheckTools.cmake [-DTOOLS=tools]
cmake_minimum_required(VERSION 3.25)

if(NOT TOOLS)
    set(TOOLS tools)
endif()
set(include_dir "@CMAKE_INSTALL_INCLUDEDIR@/orvant")
file(STRINGS "${ROOT}/tests/install/files.txt.in" installed REGEX "^${include_dir}/")
file(GLOB_RECURSE files RELATIVE "${ROOT}" "${ROOT}/${TOOLS}/*.h" "${ROOT}/${TOOLS}/*.cpp")
list(FILTER files EXCLUDE REGEX "^${TOOLS}/.*/tests/")
if(NOT installed OR NOT files)
    message(FATAL_ERROR "There is nothing to check")
endif()
foreach(file IN LISTS files)
    file(STRINGS "${ROOT}/${file}" includes REGEX "^ *# *include *<[A-Z][A-Za-z]+/[^>]+\\.h>")
    foreach(include IN LISTS includes)
        string(REGEX REPLACE "^[^<]*<([^>]+)>.*" "\\1" header "${include}")
        if(NOT "${include_dir}/${header}" IN_LIST installed)
            message("${file} includes ${header}, which is not installed")
            message(SEND_ERROR "Tools include public headers only")
        endif()
    endforeach()
endforeach()
