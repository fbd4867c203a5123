#!/usr/bin/env bash
# Runs the tests and prints how much of the library they cover: lines, functions and branches,
# except those that exceptions take, then the lines of each file that no test runs. Installs what is
# missing.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/bootstrap.sh build test coverage
cmake --preset coverage
cmake --build --preset coverage
find build/coverage -name '*.gcda' -delete # What earlier runs counted.
ctest --preset coverage -E "^(Install|Symbols|Documentation|SchemaModel)"

table=build/coverage/coverage.txt
gcovr --root . --filter AppTools/ --exclude-throw-branches --exclude-unreachable-branches \
    --print-summary --txt "$table" build/coverage
echo "Lines that no test runs:"
awk '/^AppTools/ { file = $1 } NF > 1 && $(NF - 1) ~ /%$/ { print file ":" $NF }' "$table"
