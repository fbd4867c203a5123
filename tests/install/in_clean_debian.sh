#!/bin/sh
# in_clean_debian.sh RUNTIME_PACKAGE: builds programs with the installed development package, and runs
# them with the runtime package alone, and the tools on the catalogues that they install and
# on a schema.
set -eu
cd "$(dirname "$0")"
for program in application first_settings catalogues; do
    cmake -S $program -B build/$program >/dev/null
    cmake --build build/$program >/dev/null
done
cmake --install build/catalogues --prefix /usr/local >/dev/null
sh ./pkgconfig.sh pkg-config \
    "$(dpkg -L libservice-configurationframework-dev | grep '\.pc$')" \
    application/application.cpp build/pkgconfig g++

apt-mark manual "$1" >/dev/null
apt-get purge -qq -y libservice-configurationframework-dev >/dev/null
apt-get autoremove -qq -y >/dev/null
if dpkg-query -W libxerces-c-dev >/dev/null 2>&1; then
    echo "The development packages are still there" >&2
    exit 1
fi
cd build
application/application
first_settings/first_settings
pkgconfig/application

[ "$(orvant-config -a shop list --names)" = "Shop/Currency
Till[*]/Number
Scale[*]/Number" ]
[ "$(orvant-config -a market describe Sales/Currency | head -n 1)" = "Path          Sales/Currency" ]
code=0
orvant-config list 2>message || code=$?
[ $code -eq 3 ] && grep -q 'installed: market, shop' message

[ "$(orvant-xsd types ../machine.xsd | tr '\n' ' ')" = "Axis Coolant Machine ToolMagazine " ]
