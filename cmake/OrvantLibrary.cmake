include(GenerateExportHeader)

# What every target of this project is compiled with.
function(orvant_compile_options target)
    target_compile_features(${target} PUBLIC cxx_std_20)
    set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
    if(MSVC)
        target_compile_options(${target} PRIVATE /W4 /utf-8 $<$<BOOL:${ORVANT_WARNINGS_AS_ERRORS}>:/WX>)
        return()
    endif()
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion
        $<$<BOOL:${ORVANT_WARNINGS_AS_ERRORS}>:-Werror>
        # Source locations in exceptions and logs name files as the source tree does, wherever it was built.
        -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=)
    if(ORVANT_SANITIZERS)
        target_compile_options(${target} PRIVATE
            -fsanitize=${ORVANT_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
        target_link_options(${target} PRIVATE -fsanitize=${ORVANT_SANITIZERS})
    endif()
endfunction()

# orvant_library(FOLDER INCLUDE_ROOT ROOT SOURCES ... [HEADERS ...] [PUBLIC ...] [PRIVATE ...])
#
# One shared library from one folder of AppTools/Service: libService_FOLDER, target
# Orvant::Service_FOLDER, everything hidden but what ORVANT_FOLDER_EXPORT marks
# (header <FOLDER/Export.h>). <FOLDER/HEADER.h> is found in ROOT. HEADERS are its part of the public
# interface: they are installed and documented. PUBLIC and PRIVATE name the libraries it links.
function(orvant_library folder)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "INCLUDE_ROOT" "SOURCES;HEADERS;PUBLIC;PRIVATE")
    set(target Service_${folder})
    string(TOUPPER ${folder} upper)

    add_library(${target} SHARED ${arg_SOURCES})
    add_library(Orvant::${target} ALIAS ${target})
    orvant_compile_options(${target})
    set_target_properties(${target} PROPERTIES
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR})
    # Visibility does not apply to instances of the standard library's templates.
    set(exports "${PROJECT_SOURCE_DIR}/cmake/exports.map")
    if(CMAKE_EXECUTABLE_FORMAT STREQUAL "ELF")
        target_link_options(${target} PRIVATE "LINKER:--version-script=${exports}")
        set_target_properties(${target} PROPERTIES LINK_DEPENDS "${exports}")
    endif()

    set(generated "${PROJECT_BINARY_DIR}/include/${target}")
    generate_export_header(${target}
        BASE_NAME ORVANT_${upper}
        EXPORT_FILE_NAME "${generated}/${folder}/Export.h")
    target_include_directories(${target} PUBLIC
        $<BUILD_INTERFACE:${arg_INCLUDE_ROOT}>
        $<BUILD_INTERFACE:${generated}>)
    target_link_libraries(${target} PUBLIC ${arg_PUBLIC} PRIVATE ${arg_PRIVATE})

    if(arg_HEADERS)
        list(APPEND arg_HEADERS Export.h)
        list(TRANSFORM arg_HEADERS PREPEND "${folder}/")
        set_property(GLOBAL APPEND PROPERTY ORVANT_PUBLIC_HEADERS ${arg_HEADERS})
        # All that is installed, except what is generated.
        set(documented ${arg_HEADERS})
        list(FILTER documented EXCLUDE REGEX "/Export\\.h$|\\.generated\\.h$")
        list(TRANSFORM documented PREPEND "${arg_INCLUDE_ROOT}/")
        set_property(GLOBAL APPEND PROPERTY ORVANT_DOCUMENTED_HEADERS ${documented})
        set_property(GLOBAL APPEND PROPERTY ORVANT_PUBLIC_INCLUDE_ROOTS "${arg_INCLUDE_ROOT}")
    endif()
    orvant_install_library(${target}
        INCLUDE_ROOTS "${arg_INCLUDE_ROOT}" "${generated}" HEADERS ${arg_HEADERS})
endfunction()
