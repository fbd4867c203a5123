#!/usr/bin/env bash
# Checks what is found of the rights of a system file, and of the folders that it is in.
# usage: check_rights.sh PROGRAM CATALOGUE SYSTEM_FILE
set -euo pipefail
program=$1
catalogue=$2
export LC_ALL=C.UTF-8
# Not in the folder for builds: those above it may be closed to others.
folder=$(mktemp -d /tmp/orvant-config.XXXXXX)
trap 'rm -rf "$folder"' EXIT
file=$folder/etc/system.xml
mkdir -m 755 "$folder/etc"
chmod 755 "$folder"
cp "$3" "$file"
cp "$catalogue" "$folder/catalogue.xml"

failures=0
# usage: expect EXIT_CODE TEXT OPTION...: TEXT has FOLDER where the folder stands
expect() {
    local code=0 printed
    printed=$("$program" -c "$folder/catalogue.xml" -s "$file" -u '' "${@:3}" check 2>&1) || code=$?
    printed=${printed//$folder/FOLDER}
    [ "$code" = "$1" ] && [ "$printed" = "$2" ] && return
    printf 'expected %s: %s\nfound %s: %s\n' "$1" "$2" "$code" "$printed"
    failures=$((failures + 1))
}
expectMode() {
    chmod "$1" "$file"
    chmod "$2" "$folder/etc"
    expect "${@:3}"
}
in=FOLDER/etc/system.xml:

expectMode 644 755 0 ''
expectMode 600 755 1 "$in error: users cannot read the file"
expectMode 666 755 1 "$in error: every user can write the file and remove its locks"
expectMode 644 777 1 "$in error: every user can write the folder \"FOLDER/etc\" and replace what is there"
expectMode 644 1777 0 ''
expectMode 644 700 1 "$in error: users cannot go into the folder \"FOLDER/etc\" to read the file"
ln -s etc "$folder/link"
real=$file
file=$folder/link/system.xml
chmod 755 "$folder/etc"
chmod 666 "$real"
expect 1 "FOLDER/link/system.xml: error: every user can write the file and remove its locks"
file=$real
chmod 644 "$file"
expect 64 'orvant-config: there is no user "nobody there"' --as 'nobody there'

if [ "$(id -u)" -eq 0 ]; then
    chgrp 12345 "$file"
    expectMode 640 755 0 "$in warning: only members of the group \"12345\" can read the file"
    expectMode 664 755 0 "$in warning: members of the group \"12345\" can write the file and remove its locks"
    expectMode 640 755 1 "$in error: the user \"nobody\" cannot read the file" --as nobody
    chgrp "$(id -g nobody)" "$file"
    expectMode 640 755 0 '' --as nobody
    expectMode 660 755 1 "$in error: the user \"nobody\" can write the file and remove its locks" --as nobody
    expectMode 644 700 1 "$in error: the user \"nobody\" cannot go into the folder \"FOLDER/etc\" to read the file" --as nobody
    chown nobody "$folder/etc"
    expectMode 644 755 1 "$in error: the user \"nobody\" can write the folder \"FOLDER/etc\" and replace what is there" --as nobody
    own='setpriv --reuid=nobody --regid=nogroup --clear-groups'
else
    own=
fi
chmod 755 "$folder/etc"
chmod 644 "$file"
code=0
# shellcheck disable=SC2086
printed=$($own "$program" -c "$folder/catalogue.xml" -s "$file" -u '' --as daemon check 2>&1) || code=$?
if [ $code -ne 2 ] || [ "$printed" != 'orvant-config: only root can find out what "daemon" may read and write' ]; then
    printf 'found %s: %s\n' "$code" "$printed"
    failures=$((failures + 1))
fi
[ $failures -eq 0 ]
