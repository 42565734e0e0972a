#!/usr/bin/env bash
# Builds the sources as a part of a customer's project, which gets the libraries and no more:
#   embedded.sh SOURCE_DIR COMPILER
set -euo pipefail
source_dir=$1 compiler=$2
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

mkdir "$work/embedding"
cat >"$work/embedding/CMakeLists.txt" <<EOF
cmake_minimum_required(VERSION 3.22)
project(embedding LANGUAGES CXX)
add_subdirectory("$source_dir" pelkraft)
add_executable(consumer "$here/consumer/main.cpp")
target_link_libraries(consumer PRIVATE pelkraft::pelkraft zvk::system_tools)
if(TARGET pelkraft_tool OR TARGET test_rows OR TARGET bench_conversions)
    message(FATAL_ERROR "an embedded build makes more than the libraries")
endif()
EOF
cmake -S "$work/embedding" -B "$work/embedded" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" \
    -DCMAKE_BUILD_TYPE=Debug -DCMAKE_LIBRARY_OUTPUT_DIRECTORY="$work/lib" >/dev/null
cmake --build "$work/embedded" --target consumer >/dev/null
"$work/embedded/consumer"
