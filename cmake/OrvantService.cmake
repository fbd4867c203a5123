# The service libraries that the framework builds on, each of which a suite can replace with its own:
#
#   ORVANT_LOGGING_TARGET   CMake target of the suite that provides <Logging/Logging.h>
#   ORVANT_LOGGING_PACKAGE  CMake package that defines it, where it is not part of the same build
#
# and likewise for the other folders.
set(orvant_services
    ExceptionHandling FileHandling GeneralServices Logging System UnicodeTools VersionControl)

set(orvant_replaced "")          # services
set(orvant_service_packages "")  # what defines the targets that are used instead
foreach(service IN LISTS orvant_services)
    string(TOUPPER ${service} upper)
    set(ORVANT_${upper}_TARGET "" CACHE STRING "The suite's own target instead of Service_${service}")
    set(ORVANT_${upper}_PACKAGE "" CACHE STRING "CMake package that defines ORVANT_${upper}_TARGET")
    mark_as_advanced(ORVANT_${upper}_TARGET ORVANT_${upper}_PACKAGE)
    if(ORVANT_${upper}_TARGET)
        list(APPEND orvant_replaced ${service})
        list(APPEND orvant_service_packages ${ORVANT_${upper}_PACKAGE})
    endif()
endforeach()
list(REMOVE_DUPLICATES orvant_service_packages)

if(orvant_replaced AND ORVANT_BUILD_TESTS)
    message(FATAL_ERROR "The tests are for the service libraries that come with this project; "
        "replaced: ${orvant_replaced}. Set ORVANT_BUILD_TESTS to OFF.")
endif()
foreach(service IN LISTS orvant_replaced)
    string(TOUPPER ${service} upper)
    set(target ${ORVANT_${upper}_TARGET})
    set(package ${ORVANT_${upper}_PACKAGE})
    if(package AND NOT TARGET ${target})
        find_package(${package} REQUIRED)
    endif()
    if(ORVANT_INSTALL AND NOT package)
        message(FATAL_ERROR "Who uses what is installed has to find ${target}, too. Name its CMake "
            "package in ORVANT_${upper}_PACKAGE, or set ORVANT_INSTALL to OFF.")
    elseif(NOT TARGET ${target})
        message(FATAL_ERROR "ORVANT_${upper}_TARGET is ${target}, which is no target here. Define it "
            "before this project, or name its CMake package in ORVANT_${upper}_PACKAGE.")
    endif()
endforeach()

# orvant_service(FOLDER ...): orvant_library, unless the suite brings its own. The headers lie in an
# include root of their own, so that the header of a library that is replaced cannot be found.
function(orvant_service folder)
    string(TOUPPER ${folder} upper)
    if(NOT folder IN_LIST orvant_replaced)
        orvant_library(${folder} INCLUDE_ROOT "${CMAKE_CURRENT_SOURCE_DIR}/${folder}/include" ${ARGN})
        return()
    endif()
    set(target ${ORVANT_${upper}_TARGET})
    get_target_property(aliased ${target} ALIASED_TARGET)
    if(aliased)
        set(target ${aliased})
    endif()
    add_library(Orvant::Service_${folder} ALIAS ${target})
endfunction()
