#!/usr/bin/env bash
# Shows the library at work: installs what is missing, builds, runs the example applications.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/bootstrap.sh build
cmake --preset release -DORVANT_BUILD_TESTS=OFF >/dev/null
cmake --build --preset release --target engineering_suite schema_reader

work=build/demo
rm -rf "$work"
mkdir -p "$work"

echo "==== The configuration service: an application of an engineering suite"
echo
cp examples/engineering_suite/data/*.xml "$work"
build/release/examples/engineering_suite/engineering_suite "$work/system.xml" "$work/user.xml"

echo
echo "==== The schema service: a smaller schema of what a tool needs"
echo
schemas=examples/schema_reader
build/release/examples/schema_reader/schema_reader \
    "$schemas/machine.xsd" "$work/reduced.xsd" Machine ToolMagazine

echo
echo "xmllint, with the reduced schema, on a valid document and on a wrong one:"
xmllint --noout --schema "$work/reduced.xsd" "$schemas/valid.xml"
if xmllint --noout --schema "$work/reduced.xsd" "$schemas/invalid.xml"; then
    echo "The wrong document was accepted" >&2
    exit 1
fi
