#!/usr/bin/env bash
# Compares the manual with what --help prints: the same verbs in the same order, each with the same
# arguments and options, and the same options for all verbs.
# usage: check_manual.sh PROGRAM MANUAL WORK
set -euo pipefail
program=$1 manual=$2 work=$3
mkdir -p "$work"

# Prints "OPTION..." and "ARGUMENT" as one help text lists them, for a verb without what all verbs have.
helped() { # [VERB]
    "$program" "$@" --help | awk '
        /^[A-Z]/ { heading = $1 }
        heading == "Positionals:" && /^  [A-Z]/ { print $1 }
        heading == "Options:" && /^  -/ { print $1 }' | grep -vxF -e "${1:+-h,--help}"
}
{
    helped
    "$program" --help | awk '/^[A-Z]/ { inside = /^Subcommands:/ } inside && /^  [a-z]/ { print $1 }' |
        while read -r verb; do
            echo "verb $verb"
            helped "$verb" || true # one without any
        done
} >"$work/helped.txt"

# In the manual: those for all verbs in DESCRIPTION, each verb with its own in VERBS.
awk '
    $1 == ".Sh" { heading = $2 }
    heading != "DESCRIPTION" && heading != "VERBS" { next }
    $1 == ".Ss" { print "verb " $2 }
    $1 == ".It" && $2 == "Ar" { print $3 }
    $1 == ".It" && $2 == "Fl" {
        names = ""
        for (i = 3; i <= NF && $i != "Ar"; ++i)
            if ($i != ",")
                names = names (names == "" ? "" : ",") "-" $i
        print names
    }' "$manual" >"$work/documented.txt"
if ! diff -u "$work/documented.txt" "$work/helped.txt"; then
    echo "$manual (-) is not what --help prints (+)"
    exit 1
fi
