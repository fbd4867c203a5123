#!/usr/bin/env bash
# Installs the Debian packages that are missing.
# usage: bootstrap.sh GROUP...   (build, test, window, page, check, coverage, docs, packages, benchmark)
set -euo pipefail

packages=()
for group in "$@"; do
    case "$group" in
    build) packages+=(g++ cmake ninja-build ccache libxerces-c-dev libboost-dev libboost-thread-dev
                      libspdlog-dev xsdcxx libxml2-utils pkg-config libcli11-dev nlohmann-json3-dev) ;;
    test) packages+=(libgtest-dev libgmock-dev mandoc libxml2-dev)
          # Schemas and documents for tests/corpus.
          packages+=(docbook5-xml foomatic-db gdal-data gprconfig-kb ismrmrd-schema opensaml-schemas
                     openscap-common python3-xmlschema sdformat-sdf shibboleth-sp-common xcb-proto
                     xmltooling-schemas xsdcxx) ;;
    window) packages+=(qt6-base-dev fonts-dejavu-core) ;;
    page) packages+=(chromium fonts-dejavu-core) ;;
    benchmark) packages+=(libbenchmark-dev libkf5config-dev qtbase5-dev libboost-dev libpugixml-dev
                          libxml2-dev python3) ;;
    check) packages+=(clang-19 libclang-rt-19-dev clang-tidy-19 clang-format-19 doxygen zsh fish) ;;
    coverage) packages+=(gcovr) ;;
    docs) packages+=(doxygen) ;;
    packages) packages+=(dpkg-dev file mmdebstrap) ;;
    *) echo "bootstrap.sh: no such group: $group" >&2; exit 2 ;;
    esac
done

missing=()
for package in "${packages[@]}"; do
    dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' ||
        missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)
export DEBIAN_FRONTEND=noninteractive
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
