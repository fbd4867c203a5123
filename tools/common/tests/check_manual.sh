#!/usr/bin/env bash
# Compares the manual with what --help prints: the same verbs, each with the same arguments and options,
# and the same options for all verbs.
# usage: check_manual.sh PROGRAM MANUAL WORK
set -euo pipefail
program=$1 manual=$2 work=$3
mkdir -p "$work"

# Prints "VERB", "VERB ARGUMENT" and "VERB OPTION,OPTION" as one help text has them, of a verb without what
# all verbs have.
helped() { # [VERB]
    "$program" "$@" --help | awk -v verb="${1:-}" '
        BEGIN { print verb }
        /^[A-Z]/ { heading = $1 }
        heading == "Positionals:" && /^  [A-Z]/ || heading == "Options:" && /^  -/ {
            if (verb == "" || $1 != "-h,--help")
                print verb " " $1
        }'
}
{
    helped
    "$program" --help | awk '/^[A-Z]/ { inside = /^Subcommands:/ } inside && /^  [a-z]/ { print $1 }' |
        while read -r verb; do
            helped "$verb"
        done
} | sort >"$work/helped.txt"

# In the manual: those for all verbs in DESCRIPTION, each verb with its own in VERBS.
awk '
    BEGIN { print "" }
    $1 == ".Sh" { heading = $2; verb = "" }
    heading != "DESCRIPTION" && heading != "VERBS" { next }
    $1 == ".Ss" { verb = $2; print verb }
    $1 == ".It" && $2 == "Ar" { print verb " " $3 }
    $1 == ".It" && $2 == "Fl" {
        names = ""
        for (i = 3; i <= NF && $i != "Ar"; ++i)
            if ($i != ",")
                names = names (names == "" ? "" : ",") "-" $i
        print verb " " names
    }' "$manual" | sort >"$work/documented.txt"
if ! diff -u "$work/documented.txt" "$work/helped.txt"; then
    echo "$manual (-) is not what --help prints (+)"
    exit 1
fi
