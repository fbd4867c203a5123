# Debian packages by `cpack -G DEB`, as scripts/debian.sh calls it: one to run applications, one to
# build them, and one for each tool.
set(runtime libservice-configurationframework${PROJECT_VERSION_MAJOR})
set(development libservice-configurationframework-dev)

set(CPACK_PACKAGE_NAME ${runtime})
set(CPACK_PACKAGE_VENDOR "Orvant")
set(CPACK_PACKAGE_CONTACT "Orvant <configuration@orvant.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Settings of an engineering suite's desktop applications")
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL ConfigurationFramework_Runtime ConfigurationFramework_Development)
if(ORVANT_BUILD_TOOLS)
    list(APPEND CPACK_COMPONENTS_ALL ConfigurationFramework_Tool ConfigurationFramework_SchemaTool)
endif()
set(CPACK_COMPONENTS_GROUPING IGNORE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)

set(CPACK_DEBIAN_CONFIGURATIONFRAMEWORK_RUNTIME_PACKAGE_NAME ${runtime})
set(CPACK_DEBIAN_CONFIGURATIONFRAMEWORK_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_CONFIGURATIONFRAMEWORK_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_COMPONENT_CONFIGURATIONFRAMEWORK_RUNTIME_DESCRIPTION
    "Shared libraries that applications of the suite keep their settings with.")

set(CPACK_DEBIAN_CONFIGURATIONFRAMEWORK_DEVELOPMENT_PACKAGE_NAME ${development})
set(CPACK_DEBIAN_CONFIGURATIONFRAMEWORK_DEVELOPMENT_PACKAGE_SECTION libdevel)
# The headers include those of Boost, Xerces-C++ and CodeSynthesis XSD.
set(CPACK_DEBIAN_CONFIGURATIONFRAMEWORK_DEVELOPMENT_PACKAGE_DEPENDS
    "${runtime} (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}), libboost-dev, libxerces-c-dev, xsdcxx")
set(CPACK_COMPONENT_CONFIGURATIONFRAMEWORK_DEVELOPMENT_DESCRIPTION
    "Headers, CMake package and pkg-config file to build applications with.")

foreach(component TOOL SCHEMATOOL)
    set(CPACK_DEBIAN_CONFIGURATIONFRAMEWORK_${component}_PACKAGE_SHLIBDEPS ON)
    set(CPACK_DEBIAN_CONFIGURATIONFRAMEWORK_${component}_PACKAGE_DEPENDS
        "${runtime} (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
endforeach()
# They link the libraries of another of these packages.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
    "${PROJECT_BINARY_DIR}/AppTools/Service" "${PROJECT_BINARY_DIR}/AppTools/Service/ConfigurationFramework")
set(CPACK_DEBIAN_CONFIGURATIONFRAMEWORK_TOOL_PACKAGE_NAME orvant-config)
set(CPACK_DEBIAN_CONFIGURATIONFRAMEWORK_TOOL_PACKAGE_SECTION admin)
set(CPACK_COMPONENT_CONFIGURATIONFRAMEWORK_TOOL_DESCRIPTION
    "Lists, explains, checks, edits and locks applications' settings for administrators.")

set(CPACK_DEBIAN_CONFIGURATIONFRAMEWORK_SCHEMATOOL_PACKAGE_NAME orvant-xsd)
set(CPACK_DEBIAN_CONFIGURATIONFRAMEWORK_SCHEMATOOL_PACKAGE_SECTION text)
set(CPACK_COMPONENT_CONFIGURATIONFRAMEWORK_SCHEMATOOL_DESCRIPTION
    "Lists what XML Schema files declare, and writes them without what is not wanted.")

include(CPack)
