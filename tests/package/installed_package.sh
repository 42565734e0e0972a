#!/usr/bin/env bash
# Installs the build into an empty prefix, moves the prefix, and builds customers against it:
#   installed_package.sh SOURCE_DIR BUILD_DIR COMPILER
set -euo pipefail
source_dir=$1 build_dir=$2 compiler=$3
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake --install "$build_dir" --prefix "$work/first" >/dev/null
mv "$work/first" "$work/moved prefix"
bash "$here/customers.sh" "$source_dir" "$work/moved prefix" "$compiler"
