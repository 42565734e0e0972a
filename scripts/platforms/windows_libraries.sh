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
# shellcheck source=scripts/platforms/debian_sources.sh
source scripts/platforms/debian_sources.sh
begin_libraries windows
mkdir -p "$prefix"/{include,share/cmake}

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
end_libraries
