#!/bin/sh
# header.sh INCLUDE HEADER WORK COMPILER...: compiles a header by itself, with the installed tree as
# the only include directory, and checks what it includes: other libraries' headers only where they
# are part of the interface. Then compiles each sample in its comments with what samples.txt adds to
# it.
set -eu
here=$(dirname "$0") include=$1 header=$2 work=$3
shift 3

mkdir -p "$work"
name=$work/$(echo "$header" | tr / .)
echo "#include <$header>" |
    "$@" -std=c++20 -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror -I"$include" \
        -x c++ -fsyntax-only -MD -MF "$name.d" -

grep -q "$include/$header" "$name.d"
case "$header" in
ConfigurationFramework/Xsd* | ConfigurationFramework/xsd/*) others='boost|spdlog|fmt' ;;
GeneralServices/*) others='boost|spdlog|fmt|xsd/cxx' ;;
System/*) others='spdlog|fmt|xercesc|xsd/cxx' ;;
*) others='boost|spdlog|fmt|xercesc|xsd/cxx' ;;
esac
if grep -E "/($others)/" "$name.d"; then
    echo "<$header> pulls in headers of another library" >&2
    exit 1
fi

case "$header" in
*/Export.h | *.generated.h | */ConfigurationAccessResult.h) exit ;; # without a class
*/KeyedGroup.h | */SettingDeclaration.h | */SettingsBase.h) exit ;; # shown in Settings.h
esac
context() {
    awk -v header="$header" '/^== / { wanted = $2 == header; next } wanted' "$here/samples.txt"
}
{
    echo "#include <$header>"
    printf '#include <%s>\n' fstream iostream memory string vector
    context | grep '^#' || true
    echo 'namespace Orvant {'
    context | grep -v '^#' || true
    # A sample is the body of a function, unless it specialises a template of the library.
    awk '/@endcode/ { inside = 0
            if (body ~ /template <>/) print "}\n" body "namespace Orvant {"
            else print "void sample" count "() {\n" body "}" }
        inside { sub("^ */// ?", ""); body = body $0 "\n" }
        /@code/ { print "// sample" ++count; body = ""; inside = 1 }' "$include/$header"
    echo '}'
} >"$name.samples.cpp"
grep -q sample1 "$name.samples.cpp"
"$@" -std=c++20 -I"$include" -fsyntax-only "$name.samples.cpp"
