#!/bin/sh
# refused.sh MESSAGE COMPILER...: the compiler fails, with an error that matches.
set -eu
message=$1
shift
if output=$("$@" 2>&1); then
    echo "it compiles"
    exit 1
fi
echo "$output"
echo "$output" | grep -Eq "error: (.*: )?$message"
