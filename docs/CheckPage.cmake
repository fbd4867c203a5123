# Checks that the listings of a page match the files that they are taken from, and that its links
# lead to files and headings of the repository.
#
#   cmake -DROOT=. -DPAGE=docs/guide.md -P CheckPage.cmake
#
# The line before a code block names the source of the listing:
#
#   <!-- listing: examples/first_settings/first_settings.cpp [declare] -->
#
# In the source, the listing is between two lines "//! [declare]", in CMake "# //! [declare]"; the indentation of its first line
# is removed from all. Without a name, the whole file is the listing. A block of C++, XML, CMake or a
# session without a source is an error.
#
#   <!-- session: tools/orvant-config/tests/sessions/list.txt -->
#
# names a session that a test runs. The block shows commands of it ("$ ") that follow each other, each with
# everything that it prints.
cmake_minimum_required(VERSION 3.25)

# Errors come wrapped at blanks; the plain line can be searched.
function(report fault)
    message("${fault}")
    message(SEND_ERROR "${PAGE} has a fault")
endfunction()

# Sets RESULT to the part of TEXT before the first SEPARATOR, REST to what follows it, and FOUND to
# whether there is one.
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

# Sets RESULT to the lines of FILE between the two that mark the listing NAME, or to all without a
# name.
function(read_listing file name result)
    file(READ "${file}" text)
    if(name STREQUAL "")
        # Files that the library writes do not end with a line end; a block always does.
        string(REGEX REPLACE "\n$" "" text "${text}")
        set(${result} "${text}\n" PARENT_SCOPE)
        return()
    endif()
    set(marker "//! [${name}]\n")
    split("${text}" "${marker}" before text found_begin)
    split("${text}" "${marker}" listing behind found_end)
    if(NOT found_begin OR NOT found_end)
        message(FATAL_ERROR "${file} has no listing [${name}]")
    endif()
    string(REGEX REPLACE "[# ]+$" "" listing "${listing}") # that of the end marker
    if(listing MATCHES "^ +")
        string(REPLACE "\n${CMAKE_MATCH_0}" "\n" listing "\n${listing}")
        string(SUBSTRING "${listing}" 1 -1 listing)
    endif()
    set(${result} "${listing}" PARENT_SCOPE)
endfunction()

function(check_listing language block source name)
    if(source)
        read_listing("${ROOT}/${source}" "${name}" listing)
        if(NOT block STREQUAL listing)
            message("--- in ${PAGE}\n${block}--- in ${source} [${name}]\n${listing}---")
            report("A listing of ${PAGE} is not what ${source} holds")
        endif()
    elseif(language MATCHES "^(cpp|xml|cmake|console)$")
        message("${block}")
        report("This ${language} listing of ${PAGE} has no source")
    endif()
endfunction()

function(check_session block source)
    file(READ "${ROOT}/${source}" session)
    string(FIND "\n${session}$ " "\n${block}$ " position)
    if(position EQUAL -1 OR NOT block MATCHES "^\\$ ")
        message("--- in ${PAGE}\n${block}--- in ${source}\n${session}---")
        report("A session of ${PAGE} is not one of ${source}")
    endif()
endfunction()

# Sets RESULT to the text of PAGE without its code blocks, which are checked.
function(check_listings result)
    file(READ "${ROOT}/${PAGE}" text)
    set(prose "")
    while(TRUE)
        split("${text}" "\n```" before text found)
        if(NOT found)
            break()
        endif()
        split("${text}" "\n" language text found)
        split("\n${text}" "\n```" block text found)
        if(NOT found)
            message(FATAL_ERROR "${PAGE} has a code block without an end")
        endif()
        string(SUBSTRING "${block}\n" 1 -1 block)
        string(FIND "\n${before}" "\n" line_start REVERSE)
        string(SUBSTRING "${before}" ${line_start} -1 line_before)
        set(source "")
        set(name "")
        if(line_before MATCHES "^<!-- listing: ([^ ]+)( \\[(.+)\\])? -->$")
            set(source "${CMAKE_MATCH_1}")
            set(name "${CMAKE_MATCH_3}")
        endif()
        if(line_before MATCHES "^<!-- session: ([^ ]+) -->$")
            check_session("${block}" "${CMAKE_MATCH_1}")
        else()
            check_listing("${language}" "${block}" "${source}" "${name}")
        endif()
        string(APPEND prose "${before}\n")
    endwhile()
    set(${result} "${prose}${text}" PARENT_SCOPE)
endfunction()

# Sets RESULT to whether FILE has a heading that the anchor leads to: in lower case, with hyphens for
# blanks and without everything else that is no letter or digit.
function(has_heading file anchor result)
    set(${result} FALSE PARENT_SCOPE)
    file(READ "${file}" rest)
    while(TRUE)
        split("\n${rest}" "\n#" before rest found)
        if(NOT found)
            return()
        endif()
        split("${rest}\n" "\n" heading rest found)
        string(TOLOWER "${heading}" heading)
        string(REGEX REPLACE "^#* " "" heading "${heading}")
        string(REGEX REPLACE "[^a-z0-9 -]" "" heading "${heading}")
        string(REPLACE " " "-" heading "${heading}")
        if(heading STREQUAL anchor)
            set(${result} TRUE PARENT_SCOPE)
            return()
        endif()
    endwhile()
endfunction()

function(check_links text)
    get_filename_component(folder "${ROOT}/${PAGE}" DIRECTORY)
    while(TRUE)
        split("${text}" "](" before text found)
        if(NOT found)
            return()
        endif()
        split("${text}" ")" link text found)
        if(link MATCHES "^https?:" OR NOT link MATCHES "^([^#]*)(#(.+))?$")
            continue()
        endif()
        set(file "${CMAKE_MATCH_1}")
        set(anchor "${CMAKE_MATCH_3}")
        set(target "${ROOT}/${PAGE}")
        if(file)
            set(target "${folder}/${file}")
        endif()
        if(NOT EXISTS "${target}")
            report("${PAGE} links to ${link}, which is not there")
        elseif(anchor)
            has_heading("${target}" "${anchor}" found)
            if(NOT found)
                report("${PAGE} links to ${link}, a heading that is not there")
            endif()
        endif()
    endwhile()
endfunction()

check_listings(prose)
check_links("${prose}")
