#!/usr/bin/env bash
# Builds what the program needs for Windows from Debian's source packages, and puts it into
# build/windows-libraries/, where the toolchain files look: libtiff, libpng, libjpeg and libdeflate,
# static; zlib is a Debian package. CLI11 and nlohmann-json are headers alone, and are copied there,
# since a cross compiler that sees /usr/include takes other headers from it too.
#
# Static, because the program puts functions of its own in place of two of libtiff's, which it
# can't do inside a DLL, and because nobody else shares them.
set -euo pipefail
cd "$(dirname "$0")/../.."
prefix=$PWD/build/windows-libraries
work=$PWD/build/windows-sources
[ ! -e "$prefix/complete" ] || exit 0

rm -rf "$prefix" "$work"
mkdir -p "$prefix"/{include,licences,share/cmake} "$work/lists/partial"

# apt-get with the sources of this machine's packages, from Debian's own repositories alone, and a
# list folder that is nobody else's.
# shellcheck disable=SC2016 # apt fills it in
apt-get indextargets --format 'deb-src $(REPO_URI) $(RELEASE) $(COMPONENT)' \
    'Created-By: Packages' 'Origin: Debian' | sort -u >"$work/sources.list"
apt() {
    local command=$1
    shift
    "$command" -q -o Dir::Etc::sourcelist="$work/sources.list" -o Dir::Etc::sourceparts=- \
        -o Dir::State::lists="$work/lists" -o APT::Sandbox::User=root "$@"
}
quietly() { "$@" >"$work/log" 2>&1 || { cat "$work/log" >&2 && return 1; }; }

# A mirror may list a version that it has no longer or not yet: then the one before it serves.
fetch() {
    local version
    while read -r version; do
        quietly apt apt-get source --download-only "$1=$version" && return
        echo "windows_libraries.sh: no $1 $version to be had" >&2
        rm -f "$1"_*
    done < <(apt apt-cache showsrc "$1" | sed -n 's/^Version: //p' | sort -Vru)
    return 1
}

# A source package with Debian's patches, in the folder of its name.
unpack() {
    (cd "$work" && fetch "$1" && quietly dpkg-source -x "$1"_*.dsc "$1")
    cp "$work/$1/debian/copyright" "$prefix/licences/$1"
    echo "windows_libraries.sh: $(sed -nE '1s/^([^ ]+) \((.*)\).*/\1 \2/p' "$work/$1/debian/changelog")"
}

# build NAME FLAG...: by CMake, with the flags.
build() {
    local name=$1
    shift
    unpack "$name"
    quietly cmake -S "$work/$name" -B "$work/$name-build" -G Ninja \
        -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/toolchains/windows-gcc.cmake" \
        -DCMAKE_INSTALL_PREFIX="$prefix" -DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS=OFF "$@"
    quietly cmake --build "$work/$name-build"
    quietly cmake --install "$work/$name-build"
}

quietly apt apt-get update
# The decoder gives the same samples with and without its vector code, which wants an assembler.
build libjpeg-turbo -DENABLE_SHARED=OFF -DWITH_SIMD=OFF -DWITH_TURBOJPEG=OFF
build libpng1.6 -DPNG_SHARED=OFF -DPNG_TESTS=OFF
# Debian's libtiff compresses by it, so that files come out the same with it alone.
unpack libdeflate
quietly make -C "$work/libdeflate" CC=x86_64-w64-mingw32-gcc-posix AR=x86_64-w64-mingw32-ar \
    libdeflatestatic.lib
cp "$work/libdeflate/libdeflate.h" "$prefix/include/"
cp "$work/libdeflate/libdeflatestatic.lib" "$prefix/lib/libdeflate.a"
build tiff -Dcxx=OFF -Dtiff-tools=OFF -Dtiff-tests=OFF -Dtiff-contrib=OFF -Dtiff-docs=OFF \
    -Djbig=OFF -Dlerc=OFF -Dlzma=OFF -Dwebp=OFF -Dzstd=OFF

cp -r /usr/include/CLI /usr/include/nlohmann "$prefix/include/"
cp -r /usr/share/cmake/CLI11 /usr/share/cmake/nlohmann_json "$prefix/share/cmake/"
for package in libz-mingw-w64-dev libcli11-dev nlohmann-json3-dev; do
    cp "/usr/share/doc/$package/copyright" "$prefix/licences/$package"
done
touch "$prefix/complete"
