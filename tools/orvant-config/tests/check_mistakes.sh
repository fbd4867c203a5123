#!/usr/bin/env bash
# Checks a file of which each line with a mistake ends in a comment "error: TEXT" or "warning: TEXT":
# there has to be one finding for each, with that text in it, and no other.
# usage: check_mistakes.sh PROGRAM CATALOGUE FILE COUNT
set -euo pipefail
program=$1
catalogue=$2
file=$3
count=$4
export LC_ALL=C.UTF-8

expected=$(awk -v file="$file" '
    match($0, /<!-- (error|warning): /) {
        severity = substr($0, RSTART + 5, RLENGTH - 7)
        text = substr($0, RSTART + RLENGTH)
        sub(/ -->$/, "", text)
        print file ":" NR ": " severity ":\t" text
    }' "$file")
findings=$("$program" -c "$catalogue" check "$file") && code=0 || code=$?
failures=0
fail() {
    printf '%s\n' "$*"
    failures=$((failures + 1))
}

[ $code -eq 1 ] || fail "the exit code is $code"
[ "$(wc -l <<<"$expected")" -eq "$count" ] || fail "there are not $count mistakes in the file"
[ "$(wc -l <<<"$findings")" -eq "$count" ] || fail "there are $(wc -l <<<"$findings") findings"
while IFS=$'\t' read -r place text <&3 && IFS= read -r finding <&4; do
    [[ $finding == "$place"*"$text"* ]] || fail "expected: $place $text"$'\n'"found:    $finding"
done 3<<<"$expected" 4<<<"$findings"
[ $failures -eq 0 ]
