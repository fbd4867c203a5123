# Checks that every file of the library includes only what the table of arrows on a page allows.
#
#   cmake -DROOT=. -DPAGE=docs/architecture.md [-DSOURCES=AppTools/Service] -P CheckArrows.cmake
#
# A row of the table names a room, and in its second column what files of the room may include:
# rooms or single headers, each in backquotes. `classes` are the library's files that are in no
# room, and `Service` is everything outside the library. The row `every` applies to all rooms but
# `Service`.
cmake_minimum_required(VERSION 3.25)

if(NOT SOURCES)
    set(SOURCES AppTools/Service)
endif()
cmake_path(ABSOLUTE_PATH ROOT)

# Sets allowed_ROOM for each row; of two for the same room, the later counts.
file(STRINGS "${ROOT}/${PAGE}" rows REGEX "^\\| `[A-Za-z]+/?` \\|[^|]*\\|$")
foreach(row IN LISTS rows)
    string(REGEX MATCH "^\\| ([^|]+) \\|([^|]*)\\|$" row "${row}")
    set(cells "${CMAKE_MATCH_1};${CMAKE_MATCH_2}")
    list(TRANSFORM cells REPLACE "[`/,]" "")
    list(POP_FRONT cells room allowed)
    separate_arguments(allowed)
    set(allowed_${room} ${room} ${allowed})
    list(APPEND rooms ${room})
endforeach()
if(NOT rooms)
    message(FATAL_ERROR "${PAGE} has no table of arrows")
endif()

# Sets RESULT to the room of a path below the include root.
function(room_of path result)
    if(NOT path MATCHES "^ConfigurationFramework/(([a-z]+)/)?[^/]+")
        set(${result} Service PARENT_SCOPE)
    elseif(CMAKE_MATCH_2)
        set(${result} "${CMAKE_MATCH_2}" PARENT_SCOPE)
    else()
        set(${result} classes PARENT_SCOPE)
    endif()
endfunction()

file(GLOB_RECURSE files RELATIVE "${ROOT}/${SOURCES}" "${ROOT}/${SOURCES}/*.h" "${ROOT}/${SOURCES}/*.cpp")
foreach(file IN LISTS files)
    room_of("${file}" from)
    set(allowed "${allowed_${from}}")
    if(NOT from STREQUAL "Service")
        list(APPEND allowed ${allowed_every})
    endif()
    # The suite's headers are in folders with a capital letter; other libraries' are not.
    file(STRINGS "${ROOT}/${SOURCES}/${file}" includes REGEX "^ *# *include *(<[A-Z][A-Za-z]+/|\")")
    foreach(include IN LISTS includes)
        if(include MATCHES "\"")
            message("${file} includes in quotes: ${include}")
            message(SEND_ERROR "Includes are <FOLDER/HEADER.h>, which tells the room")
            continue()
        endif()
        string(REGEX REPLACE "^[^<]*<([^>]+)>.*" "\\1" header "${include}")
        room_of("${header}" to)
        cmake_path(GET header STEM name)
        if(NOT to IN_LIST allowed AND NOT name IN_LIST allowed)
            message("${file} includes ${header}: no arrow leads from ${from} to ${to}")
            message(SEND_ERROR "${PAGE} has no such arrow")
        endif()
    endforeach()
endforeach()
