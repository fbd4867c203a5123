#!/usr/bin/env bash
# Compares the library with others that applications keep settings with, prints the ratios, and
# writes them to docs/performance.md. Installs what is missing.
# usage: benchmark.sh [REPETITIONS]   (7)
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/bootstrap.sh build benchmark
build=build/benchmark
cmake --preset release -B "$build" -DORVANT_BUILD_BENCHMARKS=ON -DORVANT_BUILD_EXAMPLES=OFF \
    -DORVANT_BUILD_TESTS=OFF >/dev/null
cmake --build "$build" --target benchmarks

# The settings files are in memory, if there is room, so that the disk is not compared.
[ -w /dev/shm ] && export TMPDIR=/dev/shm
# Repetitions of all benchmarks are mixed, so that other load on the machine hits them alike.
"$build/benchmarks/benchmarks" --benchmark_repetitions="${1:-7}" --benchmark_min_time=0.1 \
    --benchmark_enable_random_interleaving=true \
    --benchmark_out="$build/benchmarks.json" --benchmark_out_format=json >/dev/null
benchmarks/report.py "$build/benchmarks.json" | tee docs/performance.md
