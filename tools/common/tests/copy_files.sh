#!/usr/bin/env bash
# Makes a folder anew, with copies of what is in other folders, and of files in places of their own.
# usage: copy_files.sh FOLDER (FOLDER_OF_FILES | FILE=PLACE)...
set -euo pipefail
folder=$1
shift
rm -rf "$folder"
mkdir -p "$folder"
for source; do
    if [ -d "$source" ]; then
        cp -r "$source/." "$folder"
    elif [[ $source == *=* ]]; then
        install -D -m 644 "${source%%=*}" "$folder/${source#*=}"
    fi
done
