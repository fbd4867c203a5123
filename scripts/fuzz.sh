#!/usr/bin/env bash
# Feeds each fuzzing target inputs that libFuzzer makes up, so many seconds long, two targets at a
# time. An input that breaks a promise of the library is kept in fuzzing/found, where the tests find
# it from then on. Installs what is missing.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:?usage: fuzz.sh SECONDS}
scripts/bootstrap.sh build test check
cmake --preset fuzzing >/dev/null
cmake --build --preset fuzzing

scratch=$(mktemp -d -p "$([ -d /dev/shm ] && echo /dev/shm || echo "${TMPDIR:-/tmp}")")
trap 'rm -rf "$scratch"' EXIT
export TMPDIR=$scratch UBSAN_OPTIONS=print_stacktrace=1 seconds

fuzz() {
    target=$1
    log=build/fuzzing/$target.log
    corpus=build/fuzzing/corpus/$target
    found=fuzzing/found/$target
    mkdir -p "$corpus" "$found"
    if build/fuzzing/fuzzing/Fuzz"$target" "$corpus" "fuzzing/seeds/$target" "$found" \
        -artifact_prefix="$found/" -dict=fuzzing/xml.dict -max_total_time="$seconds" \
        -max_len=4096 -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 >"$log" 2>&1; then
        echo "$target: nothing found in $(sed -n 's/^stat::number_of_executed_units: *//p' "$log") inputs"
    else
        tail -n 60 "$log"
        echo "fuzz.sh: $target failed; the input is in $found, the log is $log" >&2
        return 1
    fi
}
export -f fuzz
printf '%s\n' Reader Layers Writer Schema | xargs -P 2 -I{} bash -c 'fuzz {}' || exit 1
