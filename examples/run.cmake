# Runs a program in a copy of its data, then compares what it printed (output.txt) and every file
# that is then there with what is expected: the one in FOLDER/EXPECTED or, for a file that the
# program leaves alone, its original.
cmake_minimum_required(VERSION 3.25)

set(expected "${FOLDER}/${EXPECTED}")
set(data "${FOLDER}/data")
if(NOT EXISTS "${data}")
    set(data "${FOLDER}")
endif()
file(GLOB originals "${data}/*.xml" "${data}/*.xsd" "${data}/*.ini")
file(REMOVE_RECURSE "${WORK}")
file(MAKE_DIRECTORY "${WORK}")
file(COPY ${originals} DESTINATION "${WORK}")

if(NOT RUNS)
    set(RUNS 1)
endif()
foreach(run RANGE 1 ${RUNS})
    execute_process(COMMAND "${PROGRAM}" ${ARGUMENTS} WORKING_DIRECTORY "${WORK}"
        OUTPUT_VARIABLE output ERROR_VARIABLE errors RESULT_VARIABLE result)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "The program failed: ${result}\n${output}${errors}")
    endif()
    # Time and place in a line of the error log differ from build to build.
    string(REGEX REPLACE "\\[[0-9: .-]+\\] (\\[[A-Za-z]+\\] \\[error\\] [^\n]*) \\([^\n]*\\)\n" "\\1\n"
        errors "${errors}")
    file(APPEND "${WORK}/output.txt" "${output}${errors}")
endforeach()

file(GLOB written LIST_DIRECTORIES false RELATIVE "${WORK}" "${WORK}/*")
file(GLOB wanted RELATIVE "${expected}" "${expected}/*")
list(APPEND written ${wanted})
list(REMOVE_DUPLICATES written)
list(FILTER written EXCLUDE REGEX "\\.lock$") # which every save leaves, empty
foreach(name IN LISTS written)
    set(original "${expected}/${name}")
    if(NOT EXISTS "${original}")
        set(original "${data}/${name}")
    endif()
    execute_process(COMMAND "${CMAKE_COMMAND}" -E compare_files "${WORK}/${name}" "${original}"
        RESULT_VARIABLE different ERROR_QUIET)
    if(different)
        set(text "(missing)")
        if(EXISTS "${WORK}/${name}")
            file(READ "${WORK}/${name}" text)
        endif()
        message("${text}")
        message(SEND_ERROR "This ${name} is not as expected. If it shall be so:\n"
            "  cp ${WORK}/${name} ${expected}")
    endif()
endforeach()
