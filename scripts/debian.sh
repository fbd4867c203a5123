#!/usr/bin/env bash
# Makes the Debian packages in build/debian/packages and checks their names and contents. As root,
# if this machine's Debian mirror answers, it also installs them in a clean Debian and builds and
# runs programs there: that shows whether their dependencies are complete.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/bootstrap.sh build packages

build=build/debian
packages=$build/packages
cmake --preset release -B "$build" -DCMAKE_INSTALL_PREFIX=/usr -DCMAKE_SKIP_INSTALL_RPATH=ON \
    -DORVANT_BUILD_TESTS=OFF -DORVANT_BUILD_EXAMPLES=OFF \
    -DORVANT_ZSH_COMPLETIONS=share/zsh/vendor-completions >/dev/null
cmake --build "$build"
rm -rf "$packages"
cpack -G DEB --config "$build/CPackConfig.cmake" -B "$packages" >/dev/null
rm -r "$packages/_CPack_Packages"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed() { echo "debian.sh: $*" >&2; exit 1; }
same() { diff -u "$work/$1" "$work/$2" || failed "$3"; }

version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build/CMakeCache.txt")
runtime_name=libservice-configurationframework${version%%.*}
suffix=${version}-1_$(dpkg --print-architecture).deb
runtime=$packages/${runtime_name}_$suffix
development=$packages/libservice-configurationframework-dev_$suffix
tool=$packages/orvant-config_$suffix
schema_tool=$packages/orvant-xsd_$suffix
printf '%s\n' "$development" "$runtime" "$tool" "$schema_tool" >"$work/names"
ls "$packages"/* >"$work/made"
same names made "These are not the packages that there should be"

echo "== Contents"
# What cmake installs, each file in one of the packages: libraries, each tool with its manual and
# completions, all else.
sed -e "s|@CMAKE_INSTALL_LIBDIR@|usr/lib/$(dpkg-architecture -q DEB_HOST_MULTIARCH)|" \
    -e 's|@CMAKE_INSTALL_INCLUDEDIR@|usr/include|' -e 's|@configuration@|relwithdebinfo|' \
    -e 's|@CMAKE_INSTALL_BINDIR@|usr/bin|' -e 's|@CMAKE_INSTALL_MANDIR@|usr/share/man|' \
    -e 's|@CMAKE_INSTALL_DATADIR@|usr/share|' \
    -e 's|@ORVANT_ZSH_COMPLETIONS@|usr/share/zsh/vendor-completions|' \
    -e "s|@PROJECT_VERSION@|$version|" -e "s|@PROJECT_VERSION_MAJOR@|${version%%.*}|" \
    tests/install/files.txt.in >"$work/files"
contents() { dpkg-deb --fsys-tarfile "$1" | tar -t | sed -n 's|^\./\(.*[^/]\)$|\1|p' | LC_ALL=C sort; }
for package in runtime tool schema_tool development; do
    case $package in
    runtime) options=(-e '\.so\.') ;;
    tool) options=(-e 'orvant-config') ;;
    schema_tool) options=(-e 'orvant-xsd') ;;
    development) options=(-v -e '\.so\.' -e 'orvant-config' -e 'orvant-xsd') ;;
    esac
    grep "${options[@]}" "$work/files" | LC_ALL=C sort >"$work/expected"
    contents "${!package}" >"$work/contained"
    same expected contained "${!package} has other contents"
done

for package in "$development" "$tool" "$schema_tool"; do
    [[ "$(dpkg-deb -f "$package" Depends)," == "$runtime_name (= $version-1),"* ]] ||
        failed "$package does not depend on the runtime package of its version"
done
[ "$(dpkg-deb -f "$tool" Section)" = admin ] || failed "$tool is in another section"
[ "$(dpkg-deb -f "$schema_tool" Section)" = text ] || failed "$schema_tool is in another section"

echo "== In a clean Debian"
if [ "$(id -u)" -ne 0 ]; then
    echo "Not tried: that takes root"
    exit 0
fi
mirror() {
    apt-get indextargets --format 'deb $(REPO_URI) $(RELEASE) $(COMPONENT)' \
        'Created-By: Packages' 'Origin: Debian' | sort -u
}
mirror >"$work/sources.list"
if [ ! -s "$work/sources.list" ]; then
    apt-get update -qq || true
    mirror >"$work/sources.list"
fi
read -r _ uri release _ <"$work/sources.list" || true
if [ -z "${uri:-}" ] ||
    ! /usr/lib/apt/apt-helper download-file "${uri%/}/dists/$release/InRelease" "$work/InRelease" \
        >/dev/null 2>&1; then
    echo "Not tried: no Debian mirror answers"
    exit 0
fi
apt-config dump | grep -E '^Acquire::(http|https|Check|Retries)' >"$work/apt.conf" || true

mkdir "$work/repository" "$work/programs"
cp "$runtime" "$development" "$tool" "$schema_tool" "$work/repository"
(cd "$work/repository" && dpkg-scanpackages . >Packages 2>/dev/null)
cp -r tests/install/application tests/install/catalogues examples/first_settings "$work/programs"
cp examples/schema_filters/data/machine.xsd "$work/programs"
cp tests/install/in_clean_debian.sh tests/install/pkgconfig.sh "$work/programs"
# Everything is in a folder that mmdebstrap makes and removes.
mmdebstrap --quiet --variant=apt --format=null --aptopt="$work/apt.conf" \
    --include=libservice-configurationframework-dev,orvant-config,orvant-xsd,g++,cmake,make,pkg-config \
    --customize-hook="copy-in $work/programs /root" \
    --customize-hook="chroot \"\$1\" sh /root/programs/in_clean_debian.sh $runtime_name" \
    "$release" /dev/null "$work/sources.list" "deb [trusted=yes] copy:$work/repository ./"
