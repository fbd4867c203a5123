#!/bin/sh
# pkgconfig.sh PKG_CONFIG FILE SOURCE WORK COMPILER...: builds a program as the pkg-config FILE
# says, and runs it.
set -eu
pkg_config=$1 file=$2 source=$3 work=$4
shift 4

PKG_CONFIG_PATH=$(dirname "$file")
export PKG_CONFIG_PATH
package=$(basename "$file" .pc)
"$pkg_config" --print-errors --exists "$package >= 1"

mkdir -p "$work"
# shellcheck disable=SC2046
"$@" -std=c++20 "$source" $("$pkg_config" --cflags --libs "$package") -o "$work/application"
cd "$work"
LD_LIBRARY_PATH=$("$pkg_config" --variable=libdir "$package") ./application
