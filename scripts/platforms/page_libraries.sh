#!/usr/bin/env bash
# Builds from Debian's source packages what the page reads TIFF files with, and puts it into
# build/page-libraries/: libtiff and zlib, for WebAssembly, as small as they get. Of compressions
# they keep none, LZW, deflate and PackBits, which need no other library.
set -euo pipefail
cd "$(dirname "$0")/../.."
# shellcheck source=scripts/platforms/debian_sources.sh
source scripts/platforms/debian_sources.sh
begin_libraries page

small=(-Oz -DNDEBUG)

mkdir -p "$prefix"/{include,lib}

# Its rules for CMake name a file that Debian leaves out.
unpack zlib
(cd "$work/zlib" && CC=emcc AR=emar RANLIB=emranlib CFLAGS="${small[*]}" \
    quietly ./configure --static && quietly make libz.a)
cp "$work/zlib"/{zlib,zconf}.h "$prefix/include/"
cp "$work/zlib/libz.a" "$prefix/lib/"

unpack tiff
# CMake takes sizes from a file in which emscripten writes them in another way.
quietly cmake -S "$work/tiff" -B "$work/tiff-build" -G Ninja \
    -DCMAKE_TOOLCHAIN_FILE=/usr/share/emscripten/cmake/Modules/Platform/Emscripten.cmake \
    -DCMAKE_FIND_ROOT_PATH="$prefix" -DCMAKE_PREFIX_PATH="$prefix" \
    -DCMAKE_BUILD_TYPE=MinSizeRel -DCMAKE_C_FLAGS_MINSIZEREL="${small[*]}" \
    -DSIZEOF_SIZE_T=4 \
    -DBUILD_SHARED_LIBS=OFF -Dcxx=OFF -Dtiff-tools=OFF -Dtiff-tests=OFF -Dtiff-contrib=OFF \
    -Dtiff-docs=OFF -Djbig=OFF -Djpeg=OFF -Dold-jpeg=OFF -Dlerc=OFF -Dlibdeflate=OFF -Dlzma=OFF \
    -Dwebp=OFF -Dzstd=OFF -Dpixarlog=OFF -Dlogluv=OFF -Dmdi=OFF -Dccitt=OFF -Dthunder=OFF \
    -Dnext=OFF
quietly cmake --build "$work/tiff-build" --target tiff
cp "$work/tiff/libtiff"/{tiff,tiffio,tiffvers}.h "$work/tiff-build/libtiff/tiffconf.h" \
    "$prefix/include/"
cp "$work/tiff-build/libtiff/libtiff.a" "$prefix/lib/"
end_libraries
