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
said='<(accepts|files|formerly) [^>]*>|writtenVersion="[^"]*"'
(cd "$build/catalogues" && grep -Eo "$said" *.xml) | diff /dev/fd/3 - 3<<'END'
kiosk.xml:writtenVersion="1.0"
kiosk.xml:<accepts version="1.0"/>
kiosk.xml:<files user="/var/lib/kiosk/till.xml"/>
market.xml:writtenVersion="2.0"
market.xml:<accepts version="2.0"/>
market.xml:<accepts version="1.0"/>
market.xml:<files system="/etc/market/site.xml" user="~/.market.xml"/>
shop.xml:writtenVersion="1.1"
shop.xml:<accepts version="1.0"/>
shop.xml:<accepts version="1.1"/>
shop.xml:<formerly now="Shop" path="Sales"/>
shop.xml:<formerly now="Shop/Currency" path="Sales/Unit"/>
shop.xml:<formerly nowText="Euro &quot;new&quot;" path="Shop/Currency" text="EUR"/>
shop.xml:<formerly nowText="none" path="Shop/Currency" text=""/>
END

echo "== A writer that fails leaves the catalogue of before"
configure "$build" -DFORMER_PATH=Sales=Market
! "$cmake" --build "$build" >"$work/log" 2>&1 || failed "There is no Market, but the build went on"
grep -qF 'The catalogue of shop was not written: there is no "Market" that had another name' "$work/log" ||
    failed "$(cat "$work/log")"
[ "$before" = "$(md5sum "$build/catalogues/"*)" ]

echo "== Cross compiled"
build="$work/cross compiled"
printf '#!/bin/sh\necho "$@" >>"%s/emulated"\nexec "$@"\n' "$work" >"$work/emulator"
chmod +x "$work/emulator"
configure "$build" -DCMAKE_SYSTEM_NAME=Linux -DCMAKE_CROSSCOMPILING_EMULATOR="$work/emulator"
"$cmake" --build "$build" --target shop_catalogue_file >/dev/null
[ "$(cat "$work/emulated")" = "$build/shop_catalogue $build/catalogues/shop.xml.new" ]
diff -r "$build/catalogues/shop.xml" "$work/its build/catalogues/shop.xml"

echo "== Several configurations"
build="$work/several configurations"
options=("${@/#-G*/-GNinja Multi-Config}")
configure "$build"
for configuration in Debug Release; do
    "$cmake" --build "$build" --config $configuration --target shop_catalogue_file >/dev/null
    diff "$build/catalogues/shop.xml" "$work/its build/catalogues/shop.xml"
    rm "$build/catalogues/shop.xml"
done
