#!/usr/bin/env bash
# catalogues.sh CMAKE TREE WORK OPTION...: builds the project `catalogues` in folders with blanks in their
# names against the installed TREE, and compares the catalogues, and what the tool says of them once
# they are installed, with what it declares.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
cmake=$1 tree=$2 work=$3
shift 3
failed() { echo "catalogues.sh: $*" >&2; exit 1; }

rm -rf "$work"
mkdir -p "$work"
cp -r "$here/catalogues" "$work/its source"
build="$work/its build"
options=("$@")
configure() { # BUILD OPTION...
    "$cmake" -S "$work/its source" -B "$1" "${options[@]}" "${@:2}" >"$work/log" 2>&1 ||
        failed "$(cat "$work/log")"
}
configure "$build" -DCMAKE_INSTALL_PREFIX="$work/in stalled"
"$cmake" --build "$build"
ls -1 "$build/catalogues" | diff <(printf '%s\n' kiosk.xml market.xml shop.xml) -

echo "== Nothing is written again"
touch -d 2000-01-01 "$build/catalogues/"*.xml
before=$(md5sum "$build/catalogues/"*)
"$cmake" --build "$build" >/dev/null
[ "$before" = "$(md5sum "$build/catalogues/"*)" ]

echo "== What was installed"
"$cmake" --install "$build" >/dev/null
export XDG_DATA_DIRS="$work/in stalled/share" XDG_DATA_HOME="$work/none" HOME="$work" LC_ALL=C.UTF-8
unset XDG_CONFIG_HOME XDG_CONFIG_DIRS
tool() { "$tree/bin/orvant-config" "$@"; }
ls -1 "$XDG_DATA_DIRS/orvant/catalogues" | diff <(printf '%s\n' market.xml shop.xml) -
diff - <(tool -a shop list) <<'END'
Shop/Currency     string   "EUR"                  Of prices
Till[*]/Number    int      1       from 1 to 99   Printed on receipts
Scale[*]/Number   int      1       from 1 to 99   Printed on receipts
END
diff - <(tool -a market list) <<'END'
Sales/Currency   string   "GBP"      Of prices
END
diff - <(tool -c "$build/catalogues/kiosk.xml" list --names) <<'END'
Till/Number
END

echo "== What the files say"
head -n 9 "$build/catalogues/market.xml"
grep -o '<accepts [^>]*>\|<files [^>]*>\|<formerly [^>]*>\|writtenVersion="[^"]*"' "$build/catalogues/"*.xml
