#!/usr/bin/env bash
# Runs the commands of a session (lines that begin with "$ ") in a new folder with copies of files, and
# compares what they print, and "[exit N]" where they fail, with what the session shows.
# The home folder is that folder.
# usage: run_session.sh SESSION FOLDERS_OF_PROGRAMS WORK FILES... (see copy_files.sh)
set -euo pipefail
session=$1
PATH=$2:$PATH
work=$3
export LC_ALL=C.UTF-8 NO_COLOR=1
unset XDG_CONFIG_HOME XDG_CONFIG_DIRS XDG_DATA_HOME XDG_DATA_DIRS

"$(dirname "$0")/copy_files.sh" "$work/run" "${@:4}"
cd "$work/run"
HOME=$PWD
while IFS= read -r line; do
    [[ $line == '$ '* ]] || continue
    printf '%s\n' "$line"
    code=0
    bash -c "${line#'$ '}" 2>&1 || code=$?
    [ $code -eq 0 ] || printf '[exit %d]\n' $code
done <"$session" >../printed.txt
if ! diff -u "$session" ../printed.txt; then
    echo "If it shall be so: cp $work/printed.txt $session"
    exit 1
fi
