#!/usr/bin/env bash
# What a maintainer adds to the tests before landing: clang-format, clang-tidy, all tests on Clang
# with AddressSanitizer and UndefinedBehaviorSanitizer (Doxygen's among them), the fuzzers, the Debian
# packages, and how much of the library the tests cover.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/bootstrap.sh build test window page check

echo "== clang-format"
git ls-files '*.h' '*.cpp' | xargs clang-format-19 --dry-run --Werror

echo "== Clang with sanitizers"
cmake --preset asan-ubsan
cmake --build --preset asan-ubsan

echo "== clang-tidy"
run-clang-tidy-19 -quiet -p build/asan-ubsan "^$PWD/((AppTools|examples|fuzzing)/|tools/[^/]+/(?!tests/)).*" 2>/dev/null

echo "== Tests under the sanitizers"
ctest --preset asan-ubsan

echo "== Fuzzers"
scripts/fuzz.sh 60

echo "== Debian packages"
scripts/debian.sh

echo "== Coverage"
scripts/coverage.sh
