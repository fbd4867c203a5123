# orvant_configuration_catalogue(TARGET HEADERS HEADER... OBJECTS OBJECT...
#     [SOURCES SOURCE...] [APPLICATION NAME] [ACCEPTED_VERSIONS VERSION...] [WRITTEN_VERSION VERSION]
#     [SYSTEM_FILE FILE] [USER_FILE FILE] [FORMER_PATHS FORMER=NOW...] [FORMER_TEXTS PATH:FORMER=NOW...]
#     [NO_INSTALL])
#
# Writes the catalogue of an application's settings when TARGET is built, and installs it in
# share/orvant/catalogues/NAME.xml, where orvant-config finds it. A small program writes it: it
# includes HEADERS, makes an object of each class in OBJECTS, and is compiled and linked like TARGET.
#
#   HEADERS            declare the classes: files, or <FOLDER/HEADER.h> of a library that TARGET uses
#   OBJECTS            the registered objects: CLASS, which is registered under its own name, or
#                      CLASS=NAME; with [] at the end where there is one for each key
#   SOURCES            what else the classes need, where TARGET is a program; a library is linked
#   APPLICATION        TARGET unless given
#   ACCEPTED_VERSIONS  1.0 unless given; the last one is WRITTEN_VERSION unless that is given
#   SYSTEM_FILE, USER_FILE
#                      where the application has them, unless in the XDG base directories;
#                      "~/" at the front of USER_FILE is the user's home folder
#   FORMER_PATHS       names in files of earlier versions: View/Zoom=View3D/Camera/Zoom
#   FORMER_TEXTS       texts in files of earlier versions: View3D/LengthUnit:in=inch
#
# The target property ORVANT_CATALOGUE of TARGET is the file. A failure leaves the file of the last
# build. When cross compiling, CMAKE_CROSSCOMPILING_EMULATOR runs the program.
function(orvant_configuration_catalogue target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "NO_INSTALL"
        "APPLICATION;WRITTEN_VERSION;SYSTEM_FILE;USER_FILE"
        "HEADERS;OBJECTS;SOURCES;ACCEPTED_VERSIONS;FORMER_PATHS;FORMER_TEXTS")
    if(arg_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "orvant_configuration_catalogue: what is ${arg_UNPARSED_ARGUMENTS}?")
    elseif(arg_KEYWORDS_MISSING_VALUES)
        message(FATAL_ERROR
            "orvant_configuration_catalogue: nothing follows ${arg_KEYWORDS_MISSING_VALUES}")
    elseif(NOT arg_HEADERS OR NOT arg_OBJECTS)
        message(FATAL_ERROR "orvant_configuration_catalogue needs HEADERS and OBJECTS")
    elseif(arg_SYSTEM_FILE AND NOT arg_USER_FILE)
        message(FATAL_ERROR "orvant_configuration_catalogue: SYSTEM_FILE needs USER_FILE, too")
    endif()
    if(NOT arg_APPLICATION)
        set(arg_APPLICATION ${target})
    endif()
    if(NOT arg_ACCEPTED_VERSIONS)
        set(arg_ACCEPTED_VERSIONS 1.0)
    endif()
    if(NOT arg_WRITTEN_VERSION)
        list(GET arg_ACCEPTED_VERSIONS -1 arg_WRITTEN_VERSION)
    endif()

    orvant_catalogue_writer(text)
    if(NOT TARGET ${target})
        message(FATAL_ERROR "orvant_configuration_catalogue: there is no target ${target}")
    endif()

    set(writer ${target}_catalogue)
    set(source "${CMAKE_CURRENT_BINARY_DIR}/${writer}.cpp")
    file(GENERATE OUTPUT "${source}" CONTENT "${text}")
    add_executable(${writer} "${source}" ${arg_SOURCES})
    target_compile_features(${writer} PRIVATE
        cxx_std_20 $<TARGET_PROPERTY:${target},COMPILE_FEATURES>)
    target_include_directories(${writer} PRIVATE $<TARGET_PROPERTY:${target},INCLUDE_DIRECTORIES>)
    target_compile_definitions(${writer} PRIVATE $<TARGET_PROPERTY:${target},COMPILE_DEFINITIONS>)
    target_compile_options(${writer} PRIVATE $<TARGET_PROPERTY:${target},COMPILE_OPTIONS>)
    target_link_options(${writer} PRIVATE $<TARGET_PROPERTY:${target},LINK_OPTIONS>)
    target_link_libraries(${writer} PRIVATE
        Orvant::Service_ConfigurationFramework $<TARGET_PROPERTY:${target},LINK_LIBRARIES>)
    get_target_property(type ${target} TYPE)
    if(NOT type MATCHES "^(EXECUTABLE|MODULE_LIBRARY)$") # which nothing can link
        target_link_libraries(${writer} PRIVATE ${target})
    endif()

    set(folder "${CMAKE_CURRENT_BINARY_DIR}/catalogues")
    set(catalogue "${folder}/${arg_APPLICATION}.xml")
    file(MAKE_DIRECTORY "${folder}")
    add_custom_command(OUTPUT "${catalogue}"
        COMMAND ${writer} "${catalogue}.new"
        COMMAND "${CMAKE_COMMAND}" -E rename "${catalogue}.new" "${catalogue}"
        DEPENDS ${writer}
        COMMENT "Writing the catalogue of ${arg_APPLICATION}"
        VERBATIM)
    add_custom_target(${writer}_file ALL DEPENDS "${catalogue}")
    set_target_properties(${target} PROPERTIES ORVANT_CATALOGUE "${catalogue}")
    if(NOT arg_NO_INSTALL)
        include(GNUInstallDirs) # when a language is known, which need not be so in find_package()
        install(FILES "${catalogue}" DESTINATION "${CMAKE_INSTALL_DATADIR}/orvant/catalogues")
    endif()
endfunction()

# Sets a variable to a text as a literal of C++.
function(orvant_literal result text)
    string(REPLACE "\\" "\\\\" text "${text}")
    string(REPLACE "\"" "\\\"" text "${text}")
    set(${result} "\"${text}\"" PARENT_SCOPE)
endfunction()

# Sets a variable to the source of the writer, according to the arguments arg_* of the function above.
function(orvant_catalogue_writer result)
    set(includes "")
    foreach(header IN LISTS arg_HEADERS)
        if(NOT header MATCHES "^<.+>$")
            cmake_path(ABSOLUTE_PATH header BASE_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}")
            set(header "\"${header}\"")
        endif()
        string(APPEND includes "#include ${header}\n")
    endforeach()
    orvant_literal(application "${arg_APPLICATION}")
    orvant_literal(written "${arg_WRITTEN_VERSION}")
    set(versions "")
    foreach(version IN LISTS arg_ACCEPTED_VERSIONS)
        orvant_literal(version "${version}")
        string(APPEND versions "${version}, ")
    endforeach()
    set(calls "")
    if(arg_SYSTEM_FILE OR arg_USER_FILE)
        orvant_literal(system "${arg_SYSTEM_FILE}")
        orvant_literal(user "${arg_USER_FILE}")
        string(APPEND calls "        catalogue.setFiles(${system}, ${user});\n")
    endif()
    foreach(object IN LISTS arg_OBJECTS)
        if(NOT object MATCHES "^([^]=[]+)(=([^]=[]+))?(\\[\\])?$")
            message(FATAL_ERROR "orvant_configuration_catalogue: ${object} is not CLASS, CLASS=NAME, "
                "CLASS[] or CLASS=NAME[]")
        endif()
        set(class "${CMAKE_MATCH_1}")
        set(name "object.getName()")
        if(CMAKE_MATCH_3)
            orvant_literal(name "${CMAKE_MATCH_3}")
        endif()
        set(keyed false)
        if(CMAKE_MATCH_4)
            set(keyed true)
        endif()
        string(APPEND calls "        {\n            const ${class} object;\n"
            "            catalogue.add(object, ${name}, ${keyed});\n        }\n")
    endforeach()
    foreach(former IN LISTS arg_FORMER_PATHS)
        if(NOT former MATCHES "^([^=]+)=([^=]+)$")
            message(FATAL_ERROR "orvant_configuration_catalogue: ${former} is not FORMER=NOW")
        endif()
        set(now "${CMAKE_MATCH_2}")
        orvant_literal(path "${CMAKE_MATCH_1}")
        orvant_literal(now "${now}")
        string(APPEND calls "        catalogue.addFormerPath(${path}, ${now});\n")
    endforeach()
    foreach(former IN LISTS arg_FORMER_TEXTS)
        if(NOT former MATCHES "^([^:=]+):([^=]*)=(.*)$")
            message(FATAL_ERROR "orvant_configuration_catalogue: ${former} is not PATH:FORMER=NOW")
        endif()
        set(text "${CMAKE_MATCH_2}")
        set(now "${CMAKE_MATCH_3}")
        orvant_literal(path "${CMAKE_MATCH_1}")
        orvant_literal(text "${text}")
        orvant_literal(now "${now}")
        string(APPEND calls "        catalogue.addFormerText(${path}, ${text}, ${now});\n")
    endforeach()
    set(${result} "// Writes the catalogue of an application. Generated by CMake.
#include <ConfigurationFramework/ConfigurationCatalogue.h>

#include <exception>
#include <fstream>
#include <iostream>

${includes}
int main(int, char* argv[]) {
    try {
        Orvant::ConfigurationCatalogue catalogue(${application}, {${versions}}, ${written});
${calls}        std::ofstream file(argv[1], std::ios::binary);
        catalogue.write(file);
        return 0;
    } catch (const std::exception& e) {
        std::cerr << \"The catalogue of \" << ${application} << \" was not written: \" << e.what()
                  << '\\n';
        return 1;
    }
}
" PARENT_SCOPE)
endfunction()
