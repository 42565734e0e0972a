#!/usr/bin/env bash
# Installs the Debian packages that a script needs, and only those that are missing.
#   setup.sh demo     to build the library and the program, and to run the demo on its page
#   setup.sh test     to build and run all tests, sanitizers too
#   setup.sh package  to make the Debian packages
#   setup.sh package_check  to try them on a bare Debian
#   setup.sh docs     to build the reference of the public headers
#   setup.sh bench    to build and run the benchmarks
#   setup.sh peers    to run them beside public libraries
#   setup.sh coverage to count the lines and branches that the tests reach
#   setup.sh analysis to read all sources with clang-tidy and cppcheck
#   setup.sh windows  to build for Windows and to run the tests under Wine
#   setup.sh windows_program  to build the program for Windows too, and its zip
#   setup.sh msvc     to build for Windows in Microsoft's binary interface, and to run it
#   setup.sh arm      to build for Arm and RISC-V and to run the tests under qemu
#   setup.sh wasm     to build for WebAssembly and to run the tests in Node.js and Chromium
#   setup.sh web      to build the page for authors of patterns
#   setup.sh web_test to run its tests in Chromium, beside the program
# Without a name it takes what the tests need, which is the most.
set -euo pipefail

build_packages=(g++ cmake ninja-build pkg-config libtiff-dev libpng-dev libcli11-dev
    nlohmann-json3-dev)
picture_packages=(ghostscript libtiff-tools)
# g++-multilib, which only adds a link to system headers, would drive out the compilers for other
# processors.
test_packages=(perl clang libclang-rt-14-dev libgtest-dev libbenchmark-dev binutils valgrind
    abigail-tools groff-base fish zsh doxygen libc++-14-dev libc++abi-14-dev g++-12-multilib
    python3)
# To build the Python package, and what its tests and pages ask for.
python_packages=(python3-dev pybind11-dev python3-numpy)
python_test_packages=("${python_packages[@]}" python3-setuptools python3-wheel python3-pip
    python3-venv python3-pytest python3-hypothesis python3-pil python3-tifffile python3-xxhash
    python3-matplotlib python3-dask python3-distributed python3-mpi4py openmpi-bin mypy)
bench_packages=(libbenchmark-dev python3 util-linux)
cross_packages=(g++ cmake ninja-build pkg-config googletest)
peer_packages=(libopencv-dev libyuv-dev libswscale-dev python3-dev python3-numpy)

case "${1:-test}" in
demo)
    wanted=("${build_packages[@]}" "${picture_packages[@]}" "${python_packages[@]}" ghostscript-doc
        python3-pil python3-tifffile python3-xxhash python3-distributed)
    ;;
test)
    wanted=("${build_packages[@]}" "${picture_packages[@]}" "${test_packages[@]}"
        "${python_test_packages[@]}")
    ;;
package)
    wanted=("${build_packages[@]}" "${python_packages[@]}" python3-setuptools dh-python debhelper
        lintian)
    ;;
package_check) wanted=(debootstrap "${picture_packages[@]}") ;;
docs) wanted=(doxygen) ;;
bench)
    wanted=("${build_packages[@]}" "${bench_packages[@]}" "${python_packages[@]}" clang
        libgtest-dev)
    ;;
peers)
    wanted=(g++ cmake ninja-build pkg-config "${bench_packages[@]}" "${peer_packages[@]}"
        libtiff-tools libvips-tools graphicsmagick python3-tifffile)
    ;;
coverage) wanted=("${build_packages[@]}" libgtest-dev gcovr python3) ;;
analysis)
    wanted=("${build_packages[@]}" "${bench_packages[@]}" "${peer_packages[@]}"
        "${python_packages[@]}" clang clang-tidy cppcheck libgtest-dev)
    ;;
windows) wanted=("${cross_packages[@]}" g++-mingw-w64-x86-64-posix clang lld llvm wine64) ;;
windows_program)
    wanted=("${build_packages[@]}" g++-mingw-w64-x86-64-posix libz-mingw-w64-dev dpkg-dev perl zip
        unzip)
    ;;
msvc)
    wanted=(cmake ninja-build clang-14 clang-tools-14 lld-14 llvm-14 libc++-14-dev libwine-dev wine64)
    ;;
arm) wanted=("${cross_packages[@]}" g++-aarch64-linux-gnu g++-riscv64-linux-gnu qemu-user libsimde-dev) ;;
wasm)
    wanted=("${cross_packages[@]}" nlohmann-json3-dev emscripten chromium)
    # Node.js from elsewhere brings an npm of its own, which Debian's would conflict with.
    command -v npm >/dev/null || wanted+=(npm)
    ;;
web | web_test)
    wanted=("${build_packages[@]}" dpkg-dev emscripten)
    [ "$1" = web ] || wanted+=(chromium libtiff-tools)
    command -v npm >/dev/null || wanted+=(npm)
    ;;
*)
    echo "usage: bash scripts/setup.sh [GROUP]" >&2
    sed -n 's/^#   setup.sh/   /p' "$0" >&2
    exit 2
    ;;
esac

installed() {
    dpkg-query -W -f '${db:Status-Status}\n' "$1" 2>/dev/null | grep -qx installed
}

missing=()
for package in "${wanted[@]}"; do
    installed "$package" || missing+=("$package")
done
if [ ${#missing[@]} -eq 0 ]; then
    exit 0
fi

if [ "$(id -u)" -ne 0 ]; then
    echo "setup.sh: root must install: ${missing[*]}" >&2
    exit 1
fi
echo "setup.sh: installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
apt-get update -q
apt-get install -q -y --no-install-recommends "${missing[@]}"
