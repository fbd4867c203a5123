#!/usr/bin/env bash
# Installs what is missing, builds and runs all tests.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/bootstrap.sh build test
cmake --preset dev
cmake --build --preset dev
ctest --preset dev
