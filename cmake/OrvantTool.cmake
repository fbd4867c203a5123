# What the programs in tools/ have in common beside their sources.
set(orvant_tool_dir "${PROJECT_SOURCE_DIR}/tools/common")

# orvant_tool_completions(TARGET): makes the completions of a program, which is called like TARGET, from
# those that all tools share and what completions/candidates.SHELL says that arguments may be. They are
# in completions/TARGET.SHELL of the current build folder.
function(orvant_tool_completions target)
    set(tool ${target})
    string(REPLACE "-" "_" tool_function ${target})
    foreach(shell bash zsh fish)
        set(candidates "${CMAKE_CURRENT_SOURCE_DIR}/completions/candidates.${shell}")
        set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${candidates}")
        file(READ "${candidates}" tool_candidates)
        configure_file("${orvant_tool_dir}/completions/completion.${shell}.in"
            "${CMAKE_CURRENT_BINARY_DIR}/completions/${target}.${shell}" @ONLY)
    endforeach()
endfunction()

# orvant_tool_tests(TARGET MAN_PAGES PAGE ... [PROGRAMS FOLDER ...] FILES (FOLDER | FILE=PLACE) ...): the
# tests of a program's sessions (sessions/NAME.txt), completions (completions.txt) and manual. The
# commands run in copies of FILES; PROGRAMS are on the path, too. The first man page is the program's.
function(orvant_tool_tests target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "MAN_PAGES;PROGRAMS;FILES")
    set(tests "${orvant_tool_dir}/tests")
    set(here "${CMAKE_CURRENT_SOURCE_DIR}")
    set(work "${CMAKE_CURRENT_BINARY_DIR}")

    # What the commands of a session print, and how they end, is what stands below them.
    list(JOIN arg_PROGRAMS ":" programs)
    file(GLOB sessions CONFIGURE_DEPENDS "${here}/sessions/*.txt")
    foreach(session IN LISTS sessions)
        cmake_path(GET session STEM name)
        add_test(NAME Session.${target}.${name} COMMAND "${tests}/run_session.sh"
            "${session}" "$<TARGET_FILE_DIR:${target}>:${programs}" "${work}/${name}" ${arg_FILES})
        set_tests_properties(Session.${target}.${name} PROPERTIES TIMEOUT 120)
    endforeach()

    # The shells that are there propose what they should.
    foreach(shell bash zsh fish)
        string(TOUPPER ${shell} name)
        find_program(${name} ${shell})
        mark_as_advanced(${name})
        if(NOT ${name})
            message(STATUS "No test of the completion for ${shell}, which is not installed")
            continue()
        endif()
        add_test(NAME Completion.${target}.${shell} COMMAND "${tests}/completions/run.sh"
            "${here}/completions.txt" "${${name}}"
            "$<TARGET_PROPERTY:${target},BINARY_DIR>/completions/${target}.${shell}"
            "$<TARGET_FILE_DIR:${target}>" "${work}/completion_${shell}" ${arg_FILES})
        set_tests_properties(Completion.${target}.${shell} PROPERTIES TIMEOUT 60)
    endforeach()

    list(GET arg_MAN_PAGES 0 manual)
    add_test(NAME Manual.${target}.MatchesHelp COMMAND "${tests}/check_manual.sh"
        "$<TARGET_FILE:${target}>" "${manual}" "${work}/manual")
    find_program(MANDOC mandoc)
    mark_as_advanced(MANDOC)
    if(MANDOC)
        add_test(NAME Manual.${target}.IsWellFormed COMMAND "${MANDOC}" -T lint -W warning
            ${arg_MAN_PAGES})
    endif()
endfunction()
