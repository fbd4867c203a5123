#!/usr/bin/env bash
# Has a shell complete the command lines of cases.txt (those that begin with "$ ") in a folder with
# copies of files, and compares what it proposes with what stands below them.
# usage: run.sh SHELL COMPLETION FOLDER_OF_PROGRAM WORK CATALOGUE FOLDER_OF_FILES
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
shell=$1 completion=$2
PATH=$3:$PATH
work=$4
unset XDG_CONFIG_HOME XDG_CONFIG_DIRS XDG_DATA_HOME XDG_DATA_DIRS

rm -rf "$work"
mkdir -p "$work/run/.local/share/orvant/catalogues"
cp "$5" "$work/run/.local/share/orvant/catalogues/workshop.xml"
cp "$6"/*.xml "$work/run"
cd "$work/run"
export HOME=$PWD USER=$(id -un) # without USER, fish takes the HOME of the user database
while IFS= read -r line; do
    [[ $line == '$ '* ]] || continue
    printf '%s\n' "$line"
    proposed=$("$shell" "$here/complete.$(basename "$shell")" "$completion" "${line#'$ '}" </dev/null) ||
        true # whether there was any
    [ -z "$proposed" ] || LC_ALL=C sort <<<"$proposed"
done <"$here/cases.txt" >../proposed.txt
diff -u "$here/cases.txt" ../proposed.txt
