#!/usr/bin/env bash
# Opens pages in a browser, and looks at what is there once their script has run.
# usage: run_page.sh FOLDER_OF_PROGRAM WORK CATALOGUE FOLDER_OF_FILES
# Exit code 77 where there is no browser.
set -euo pipefail
browser=$(command -v chromium || command -v chromium-browser) || {
    echo "no chromium: the page was not opened"
    exit 77
}
tool=$1/orvant-config
work=$2
catalogue=$3
files=$4
rm -rf "$work"
mkdir -p "$work"
cp "$files"/*.xml "$work"
cd "$work"

failures=0
fail() {
    echo "FAILED: $*"
    failures=$((failures + 1))
}
# make OPTION...: makes page.html
make() { HOME=$work "$tool" -c "$catalogue" "$@" page -o page.html; }
# open FRAGMENT: writes the document to dom.html, and its rows that show to rows.txt
open() {
    timeout 60 "$browser" --headless --no-sandbox --disable-gpu --user-data-dir="$work/profile" \
        --virtual-time-budget=2000 --dump-dom "file://$work/page.html$1" >dom.html 2>browser.txt ||
        { cat browser.txt; exit 1; }
    grep '^<tr class="' dom.html | grep -v '^<tr [^>]*hidden' >rows.txt || true
}
shows() { grep -qF -- "$1" "${2:-rows.txt}" || fail "$1 is not in ${2:-the rows}"; }
hides() { ! grep -qF -- "$1" "${2:-rows.txt}" || fail "$1 is in ${2:-the rows}"; }
# counts ROWS SENTENCE
counts() {
    [ "$(wc -l <rows.txt)" -eq "$1" ] || fail "$(wc -l <rows.txt) rows, not $1"
    shows ">$2</output>" dom.html
}
# row PATH: the row of a setting
row() { grep -F ">$1</a>" rows.txt >row.txt || fail "there is no row of $1"; }

make -s system.xml -u user.xml
open ""
counts 11 "11 of 11 settings"
hides ' hidden=""' rows.txt
row View3D/LengthUnit
shows '<tr class="layer-system locked">' row.txt
shows '<svg aria-hidden="true"><use href="#padlock"></use></svg> locked</span>' row.txt
shows '>user.xml:4</span> says <span class="said">"mm"</span>' row.txt
row Network/LicenceServer
shows '</svg> locked by Network</span>' row.txt
shows '>system.xml:11</span>' row.txt
row View3D/Toolbars
shows '<tr class="layer-user">' row.txt
hides padlock row.txt
row View3D/Camera/Perspective
shows '<tr class="layer-default">' row.txt
shows '<form id="filter" role="search">' dom.html

open "#View3D/Camera"
counts 2 "2 of 11 settings"
row View3D/Camera/FieldOfView
open "#locked%20NETWORK"
counts 2 "2 of 11 settings"
open "#Machine%5BHall%201%5D/MaxFeed"
counts 1 "1 of 11 settings"
row 'Machine[Hall 1]/MaxFeed'
open "#field%20of%20view"
counts 1 "1 of 11 settings"
open "#nothing%20such"
counts 0 "0 of 11 settings"
open "#100%" # which is no address of anything
counts 0 "0 of 11 settings"

# What files say is text, whatever it looks like.
cat >hostile.xml <<'XML'
<Configuration version="2.0">
  <Network>
    <LicenceServer>&lt;/script>&lt;script>document.title="taken"&lt;/script>&lt;b>"'&amp;amp;{{rows}}</LicenceServer>
  </Network>
  <Machine key="&lt;img src=x onerror=&quot;document.title='taken'&quot;>">
    <Spindle>two
lines</Spindle>
  </Machine>
</Configuration>
XML
make -s hostile.xml
open ""
shows '<title>Settings of workshop</title>' dom.html
shows "\"&lt;/script&gt;&lt;script&gt;document.title=\"taken\"&lt;/script&gt;&lt;b&gt;\"'&amp;amp;{{rows}}\"" dom.html
shows ">Machine[&lt;img src=x onerror=\"document.title='taken'\"&gt;]/Spindle</a>" dom.html
hides '<img' dom.html
hides '<b>' dom.html
shows '(not there)' dom.html

# Nothing is fetched from elsewhere.
! grep -nE '(src|href)="[^#]|url\(|@import|https?:' page.html || fail "there are references"

[ $failures -eq 0 ]
