#!/usr/bin/env bash
# Has a shell complete the command lines of CASES (those that begin with "$ ") in a folder with
# copies of files, and compares what it proposes with what stands below them.
# usage: run.sh CASES SHELL COMPLETION FOLDER_OF_PROGRAM WORK FILES... (see copy_files.sh)
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
cases=$1 shell=$2 completion=$3
PATH=$4:$PATH
work=$5
unset XDG_CONFIG_HOME XDG_CONFIG_DIRS XDG_DATA_HOME XDG_DATA_DIRS

"$here/../copy_files.sh" "$work/run" "${@:6}"
cd "$work/run"
export HOME=$PWD USER=$(id -un) # without USER, fish takes the HOME of the user database
while IFS= read -r line; do
    [[ $line == '$ '* ]] || continue
    printf '%s\n' "$line"
    proposed=$("$shell" "$here/complete.$(basename "$shell")" "$completion" "${line#'$ '}" </dev/null) ||
        true # whether there was any
    [ -z "$proposed" ] || LC_ALL=C sort <<<"$proposed"
done <"$cases" >../proposed.txt
diff -u "$cases" ../proposed.txt
