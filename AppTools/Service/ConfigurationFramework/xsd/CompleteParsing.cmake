# cmake -DSOURCE=FILE -P CompleteParsing.cmake
#
# Changes the parsing functions that xsdcxx generated into FILE where they do not do what the schema
# service needs:
#   - they stop at the first element that the model does not name; it is to be skipped;
#   - they refuse a documentation that holds markup; the markup is to be skipped;
#   - they read a minOccurs that is no number as 0; that is to be a parsing failure;
#   - they recurse as deep as the document; beyond a limit that is to be a parsing failure.
# A generator whose output has another form breaks the build here, not the users' schemas.
cmake_minimum_required(VERSION 3.25)

# Replaces every occurrence in the variable `code` and stores how many there were.
function(replace_counted from to count)
    string(LENGTH "${from}" from_length)
    string(LENGTH "${code}" before)
    string(REPLACE "${from}" "" removed "${code}")
    string(LENGTH "${removed}" after)
    math(EXPR number "(${before} - ${after}) / ${from_length}")
    string(REPLACE "${from}" "${to}" replaced "${code}")
    set(code "${replaced}" PARENT_SCOPE)
    set(${count} ${number} PARENT_SCOPE)
endfunction()

function(expect what number expected)
    if(NOT number EQUAL expected OR number EQUAL 0)
        message(FATAL_ERROR
            "${SOURCE}: ${what}: found ${number}, expected ${expected}. "
            "The generator's output has another form than CompleteParsing.cmake knows.")
    endif()
endfunction()

file(READ "${SOURCE}" code)

set(loop "    for (; p.more_content (); p.next_content (false))\n")
replace_counted("${loop}" "${loop}" loops)
replace_counted("\n      break;\n    }\n" "\n      // Unknown content: skipped.\n    }\n" stops)
expect("ends of the loops over child elements" ${stops} ${loops})

function(check_argument call count_expected checked)
    replace_counted("${call}_traits::create (i, f, this)"
                    "${call}_traits::create (${checked}, f, this)" number)
    expect("parsing of ${call}" ${number} ${count_expected})
    set(code "${code}" PARENT_SCOPE)
endfunction()

check_argument(documentation 1 "::OV_XsdReader::ownText (i), &i")
check_argument(minOccurs 1 "::OV_XsdReader::wholeNumber (i)")
check_argument(complexType 2 "::OV_XsdReader::notTooDeep (i)")

file(WRITE "${SOURCE}" "${code}")
