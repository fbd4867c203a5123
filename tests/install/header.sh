#!/bin/sh
# header.sh INCLUDE HEADER WORK COMPILER...: compiles a header by itself, with the installed tree as the
# only include directory, and looks at what it pulls in: no other library's headers, but for the schema
# document model those of Xerces-C++ and of the XSD runtime.
set -eu
include=$1 header=$2 work=$3
shift 3

mkdir -p "$work"
dependencies=$work/$(echo "$header" | tr / .).d
echo "#include <$header>" |
    "$@" -std=c++20 -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror -I"$include" \
        -x c++ -fsyntax-only -MD -MF "$dependencies" -

grep -q "$include/$header" "$dependencies"
case "$header" in
ConfigurationFramework/xsd/*) others='/(boost|spdlog|fmt)/' ;;
*) others='/(boost|spdlog|fmt|xercesc|xsd/cxx)/' ;;
esac
if grep -E "$others" "$dependencies"; then
    echo "<$header> pulls in headers of another library" >&2
    exit 1
fi
