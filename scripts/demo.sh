#!/usr/bin/env bash
# Shows the library at work: installs what is missing, builds, runs the example applications.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/bootstrap.sh build
cmake --preset release -DORVANT_BUILD_TESTS=OFF >/dev/null
cmake --build --preset release --target engineering_suite

work=build/demo
rm -rf "$work"
mkdir -p "$work"
cp examples/engineering_suite/data/*.xml "$work"
build/release/examples/engineering_suite/engineering_suite "$work/system.xml" "$work/user.xml"
