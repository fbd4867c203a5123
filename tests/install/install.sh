#!/bin/sh
# install.sh CMAKE BUILD TREE EXPECTED: installs what was built, moves it to TREE, and compares the
# files there with the list EXPECTED.
set -eu
cmake=$1 build=$2 tree=$3 expected=$4

rm -rf "$tree" "$tree.first"
"$cmake" --install "$build" --prefix "$tree.first" >/dev/null
mv "$tree.first" "$tree"

if grep -rIl -e "$build" -e "$tree.first" "$tree"; then
    echo "These files name the place that they were built in or installed to" >&2
    exit 1
fi
find "$tree" ! -type d -printf '%P\n' | LC_ALL=C sort >"$tree.files"
if ! LC_ALL=C sort "$expected" | diff -u - "$tree.files"; then
    echo "Not what is to be installed. If it is, the list is in tests/install/files.txt.in" >&2
    exit 1
fi
