# What `cmake --install` puts where: libraries, public headers, CMake package, pkg-config file, tool. The
# tree can be moved: nothing in it names the place where it was installed.
include(CMakePackageConfigHelpers)

set(orvant_package "${CMAKE_INSTALL_LIBDIR}/cmake/${PROJECT_NAME}")
# A folder of our own: names such as <Logging/Logging.h> must not clash with a system's headers.
set(orvant_include_dir "${CMAKE_INSTALL_INCLUDEDIR}/orvant")
set(ORVANT_ZSH_COMPLETIONS "${CMAKE_INSTALL_DATADIR}/zsh/site-functions" CACHE STRING
    "Folder for completions of zsh; Debian has ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions")
mark_as_advanced(ORVANT_ZSH_COMPLETIONS)

# orvant_install_library(TARGET INCLUDE_ROOTS ROOT ... [HEADERS HEADER ...]): HEADERs are written as they
# are included. Without any, only the libraries themselves link the library.
function(orvant_install_library target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "INCLUDE_ROOTS;HEADERS")
    if(NOT ORVANT_INSTALL)
        return()
    endif()
    # The libraries find each other side by side.
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN;${CMAKE_INSTALL_RPATH}")
    set(link_name NAMELINK_SKIP)
    if(arg_HEADERS)
        set(link_name NAMELINK_COMPONENT ConfigurationFramework_Development)
        set_property(GLOBAL APPEND PROPERTY ORVANT_LINKED_LIBRARIES ${target})
    endif()
    install(TARGETS ${target} EXPORT ${PROJECT_NAME}
        RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT ConfigurationFramework_Runtime
        LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT ConfigurationFramework_Runtime
                ${link_name}
        ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT ConfigurationFramework_Development
        INCLUDES DESTINATION "${orvant_include_dir}")
    foreach(header IN LISTS arg_HEADERS)
        foreach(root IN LISTS arg_INCLUDE_ROOTS)
            set(file "${root}/${header}")
            if(EXISTS "${file}")
                break()
            endif()
        endforeach()
        # What is in none of them is generated into the last.
        cmake_path(GET header PARENT_PATH folder)
        install(FILES "${file}" DESTINATION "${orvant_include_dir}/${folder}"
            COMPONENT ConfigurationFramework_Development)
    endforeach()
endfunction()

# orvant_install_tool(TARGET COMPONENT COMPONENT MAN_PAGES PAGE ...): a program, with its man pages and the
# completions that orvant_tool_completions() made, which is called like TARGET.
function(orvant_install_tool target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "COMPONENT" "MAN_PAGES")
    if(NOT ORVANT_INSTALL)
        return()
    endif()
    file(RELATIVE_PATH libraries "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
    set_target_properties(${target} PROPERTIES
        INSTALL_RPATH "$ORIGIN/${libraries};${CMAKE_INSTALL_RPATH}")
    set(tool COMPONENT ${arg_COMPONENT})
    install(TARGETS ${target} RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" ${tool})
    foreach(page IN LISTS arg_MAN_PAGES)
        cmake_path(GET page EXTENSION LAST_ONLY section)
        string(REPLACE "." "man" section "${section}")
        install(FILES "${page}" DESTINATION "${CMAKE_INSTALL_MANDIR}/${section}" ${tool})
    endforeach()
    set(completion "${CMAKE_CURRENT_BINARY_DIR}/completions/${target}")
    install(FILES "${completion}.bash" RENAME ${target}
        DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions" ${tool})
    install(FILES "${completion}.zsh" RENAME _${target} DESTINATION "${ORVANT_ZSH_COMPLETIONS}" ${tool})
    install(FILES "${completion}.fish"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d" ${tool})
endfunction()

# orvant_install_package(): the CMake package and the pkg-config file of what was installed.
function(orvant_install_package)
    if(NOT ORVANT_INSTALL)
        return()
    endif()
    set(cmake_dir "${PROJECT_SOURCE_DIR}/cmake")
    set(config "${PROJECT_BINARY_DIR}/${PROJECT_NAME}Config.cmake")
    set(version "${PROJECT_BINARY_DIR}/${PROJECT_NAME}ConfigVersion.cmake")
    set(find_services "")
    if(NOT System IN_LIST orvant_replaced)
        string(APPEND find_services "# For <System/XercesInitializationMutex.h>.\n"
            "find_dependency(Boost 1.74)\n")
    endif()
    foreach(package IN LISTS orvant_service_packages)
        string(APPEND find_services "find_dependency(${package})\n")
    endforeach()
    configure_package_config_file("${cmake_dir}/PackageConfig.cmake.in" "${config}"
        INSTALL_DESTINATION "${orvant_package}")
    write_basic_package_version_file("${version}" COMPATIBILITY SameMajorVersion)
    install(FILES "${config}" "${version}" "${cmake_dir}/OrvantCatalogue.cmake" DESTINATION "${orvant_package}"
        COMPONENT ConfigurationFramework_Development)
    install(EXPORT ${PROJECT_NAME} NAMESPACE Orvant:: FILE ${PROJECT_NAME}Targets.cmake
        DESTINATION "${orvant_package}" COMPONENT ConfigurationFramework_Development)

    # The name of what the suite links instead of a service library is not known here.
    if(orvant_replaced)
        return()
    endif()
    get_property(libraries GLOBAL PROPERTY ORVANT_LINKED_LIBRARIES)
    list(REVERSE libraries)
    list(TRANSFORM libraries PREPEND "-l")
    list(JOIN libraries " " libraries)
    set(prefix "${CMAKE_INSTALL_PREFIX}")
    file(RELATIVE_PATH up "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${prefix}")
    file(RELATIVE_PATH libdir "${prefix}" "${CMAKE_INSTALL_FULL_LIBDIR}")
    file(RELATIVE_PATH includedir "${prefix}" "${CMAKE_INSTALL_FULL_INCLUDEDIR}")
    configure_file("${cmake_dir}/package.pc.in" "${PROJECT_BINARY_DIR}/${PROJECT_NAME}.pc" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/${PROJECT_NAME}.pc"
        DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT ConfigurationFramework_Development)
endfunction()
