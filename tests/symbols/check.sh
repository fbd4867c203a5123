#!/bin/sh
# check.sh NM LIST MEASURED LIBRARY: compares what a library exports, and which operations of the
# service libraries it calls, with a list. MEASURED is the file to write the current list to.
set -eu
nm=$1 list=$2 measured=$3 library=$4

# Names only: a constructor has several symbols, and compilers differ in what they make weak.
names() {
    sed -e 's/^ *[0-9a-f]* *[A-Za-z] //' -e 's/std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >/std::string/g' |
        LC_ALL=C sort -u
}
exported=$("$nm" -D -C --defined-only "$library")
needed=$("$nm" -D -C --undefined-only "$library")
{
    echo "$exported" | names | sed 's/^/exports /'
    echo "$needed" | names | sed -n 's/^\(.*Orvant::\)/calls \1/p'
} >"$measured"

if ! diff -u "$list" "$measured"; then
    cat >&2 <<END
The interface of $(basename "$library") is not what $list says.
Hide what no application is to use (without the export macro, or with its _NO_EXPORT), and keep to the
operations of the service libraries that a suite's own have. If it is meant so:
  cp $measured $list
END
    exit 1
fi
