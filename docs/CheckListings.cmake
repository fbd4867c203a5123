# Compares the listings of a page with the files that they are taken from.
#
#   cmake -DPAGE=docs/guide.md -DROOT=. -P CheckListings.cmake
#
# The line before a code block names its source:
#
#   <!-- listing: examples/first_settings/first_settings.cpp [declare] -->
#
# In the source, the listing stands between two lines "//! [declare]", in XML "<!-- [declare] -->";
# the indentation of its first line is taken off all. Without a name, the whole file is the listing.
# A block of C++, XML or CMake without a source is an error.
cmake_minimum_required(VERSION 3.25)

set(sourced_languages cpp xml cmake)

# Sets RESULT to the part of TEXT before the first SEPARATOR and REST to what is behind it; FOUND
# tells whether there is one.
function(split text separator result rest found)
    string(FIND "${text}" "${separator}" position)
    if(position EQUAL -1)
        set(${found} FALSE PARENT_SCOPE)
        return()
    endif()
    string(LENGTH "${separator}" length)
    string(SUBSTRING "${text}" 0 ${position} before)
    math(EXPR position "${position} + ${length}")
    string(SUBSTRING "${text}" ${position} -1 behind)
    set(${result} "${before}" PARENT_SCOPE)
    set(${rest} "${behind}" PARENT_SCOPE)
    set(${found} TRUE PARENT_SCOPE)
endfunction()

# Sets RESULT to the lines of FILE between the two that mark the listing NAME.
function(read_listing file name result)
    file(READ "${file}" text)
    if(name STREQUAL "")
        # Files that the library writes have no line end at their end; a block always has.
        string(REGEX REPLACE "\n$" "" text "${text}")
        set(${result} "${text}\n" PARENT_SCOPE)
        return()
    endif()
    set(marker "//! [${name}]\n")
    if(file MATCHES "\\.xml$")
        set(marker "<!-- [${name}] -->\n")
    endif()
    split("${text}" "${marker}" before text found_begin)
    split("${text}" "${marker}" listing behind found_end)
    if(NOT found_begin OR NOT found_end)
        message(FATAL_ERROR "${file} has no listing [${name}]")
    endif()
    string(REGEX REPLACE " +$" "" listing "${listing}") # that of the end marker
    if(listing MATCHES "^ +")
        string(REPLACE "\n${CMAKE_MATCH_0}" "\n" listing "\n${listing}")
        string(SUBSTRING "${listing}" 1 -1 listing)
    endif()
    set(${result} "${listing}" PARENT_SCOPE)
endfunction()

file(READ "${ROOT}/${PAGE}" text)
set(count 0)
while(TRUE)
    split("${text}" "\n```" before text found)
    if(NOT found)
        break()
    endif()
    split("${text}" "\n" language text found_language)
    split("\n${text}" "\n```" block text found_end)
    if(NOT found_end)
        message(FATAL_ERROR "${PAGE} has a code block without an end")
    endif()
    string(SUBSTRING "${block}\n" 1 -1 block)
    string(FIND "\n${before}" "\n" line_start REVERSE)
    string(SUBSTRING "${before}" ${line_start} -1 line_before)
    if(line_before MATCHES "^<!-- listing: ([^ ]+)( \\[(.+)\\])? -->$")
        set(source "${CMAKE_MATCH_1}")
        set(name "${CMAKE_MATCH_3}")
        read_listing("${ROOT}/${source}" "${name}" listing)
        if(NOT block STREQUAL listing)
            message("--- in ${PAGE}\n${block}--- in ${source} [${name}]\n${listing}---")
            message(SEND_ERROR "A listing of ${PAGE} is not what ${source} holds")
        endif()
        math(EXPR count "${count} + 1")
    elseif(language IN_LIST sourced_languages)
        message("${block}")
        message(SEND_ERROR "A ${language} listing of ${PAGE} has no source")
    endif()
endwhile()
message("${PAGE}: ${count} listings")
