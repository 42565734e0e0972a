#!/usr/bin/env bash
# Builds and runs customers of the static package that the vcpkg port makes:
#   vcpkg_port.sh SOURCE_DIR COMPILER
set -euo pipefail
source_dir=$1 compiler=$2
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake -DPORT="$source_dir/packaging/vcpkg/pelkraft" -DCOMPILER="$compiler" -DWORK="$work" \
    -P "$here/vcpkg_stand_in.cmake"
bash "$here/customers.sh" "$source_dir" "$work/packages" "$compiler"
