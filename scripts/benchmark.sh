#!/usr/bin/env bash
# Measures the library beside others that applications keep settings with, prints the ratios, and
# writes them to docs/performance.md. Installs what is missing.
# usage: benchmark.sh [REPETITIONS]   (7)
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/bootstrap.sh build benchmark
build=build/benchmark
cmake --preset release -B "$build" -DORVANT_BUILD_BENCHMARKS=ON -DORVANT_BUILD_EXAMPLES=OFF \
    -DORVANT_BUILD_TESTS=OFF >/dev/null
cmake --build "$build" --target benchmarks

# The settings files are in memory, where there is room: what is compared is not the disk.
[ -w /dev/shm ] && export TMPDIR=/dev/shm
# Repetitions of all benchmarks are mixed, so that whatever else the machine does hits them alike.
"$build/benchmarks/benchmarks" --benchmark_repetitions="${1:-7}" --benchmark_min_time=0.1 \
    --benchmark_enable_random_interleaving=true \
    --benchmark_out="$build/benchmarks.json" --benchmark_out_format=json >/dev/null
benchmarks/report.py "$build/benchmarks.json" | tee docs/performance.md
