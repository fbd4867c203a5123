# Generates the classes of the schema document model from ov_schema.xsd at build time.
#
# orvant_generate_schema_model(TARGET): adds them to a library that exports what
# ORVANT_CONFIGURATIONFRAMEWORK_EXPORT marks. The header goes to where
# <ConfigurationFramework/xsd/ov_schema.h> looks for it.
set(orvant_schema_model_dir "${CMAKE_CURRENT_LIST_DIR}")

function(orvant_generate_schema_model target)
    find_program(ORVANT_XSDCXX NAMES xsdcxx xsd REQUIRED DOC "Compiler of CodeSynthesis XSD")

    # The file that the classes come from is also the one place of the namespace.
    set(schema "${orvant_schema_model_dir}/ov_schema.xsd")
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${schema}")
    file(READ "${schema}" text)
    if(NOT text MATCHES "<!ENTITY reader \"([^\"]+)\">")
        message(FATAL_ERROR "${schema} does not declare its namespace as the entity reader")
    endif()
    set(namespace "${CMAKE_MATCH_1}")

    set(generated "${CMAKE_CURRENT_BINARY_DIR}/xsd")
    set(source "${generated}/ov_schema.generated.cpp")
    set(header "${generated}/ov_schema.generated.h")
    set(public_header
        "${PROJECT_BINARY_DIR}/include/${target}/ConfigurationFramework/xsd/ov_schema.generated.h")
    file(MAKE_DIRECTORY "${generated}")
    add_custom_command(
        OUTPUT "${source}" "${public_header}"
        BYPRODUCTS "${header}"
        # Run beside the schema: include guards are made of the path that is given.
        WORKING_DIRECTORY "${orvant_schema_model_dir}"
        COMMAND "${ORVANT_XSDCXX}" cxx-tree
            --std c++11
            --generate-serialization
            # Writes every text of a schema, which is how those that XML cannot hold are found.
            --generate-ostream
            --namespace-map "${namespace}=OV_XsdReader"
            --parser-regex "/(.+)/$1_/"
            --serializer-regex "/(.+)/$1_/"
            --export-symbol ORVANT_CONFIGURATIONFRAMEWORK_EXPORT
            --hxx-prologue "#include <ConfigurationFramework/Export.h>"
            # Users compile the header with their own warning flags.
            --hxx-prologue "#pragma GCC system_header"
            --cxx-prologue "#include <ConfigurationFramework/xsd/ParsingChecks.h>"
            --hxx-suffix .generated.h
            --cxx-suffix .generated.cpp
            --output-dir "${generated}"
            ov_schema.xsd
        COMMAND "${CMAKE_COMMAND}" "-DSOURCE=${source}"
            -P "${orvant_schema_model_dir}/CompleteParsing.cmake"
        COMMAND "${CMAKE_COMMAND}" -E copy_if_different "${header}" "${public_header}"
        DEPENDS "${schema}" "${orvant_schema_model_dir}/CompleteParsing.cmake"
        COMMENT "Generating the schema document model"
        VERBATIM)

    set_source_files_properties("${source}" PROPERTIES
        COMPILE_OPTIONS "$<IF:$<CXX_COMPILER_ID:MSVC>,/w,-w>"
        SKIP_LINTING ON)
    target_sources(${target} PRIVATE "${source}")
    target_compile_definitions(${target} PRIVATE ORVANT_READER_NAMESPACE="${namespace}")
endfunction()
