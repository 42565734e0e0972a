#!/usr/bin/env bash
# Follows python/README.md: installs the library into a prefix of its own and the package into a
# virtual environment, and runs a program there: installed_by_pip.sh SOURCE_DIR BUILD_DIR COMPILER
set -euo pipefail
source_dir=$1 build_dir=$2
export CXX=$3 PIP_NO_INDEX=1 PIP_DISABLE_PIP_VERSION_CHECK=1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake --install "$build_dir" --prefix "$work/prefix" >/dev/null
# The commands work beside the sources, which stay as they are.
mkdir "$work/tree" "$work/bin"
(cd "$source_dir" && cp -r CMakeLists.txt common pattern python tools "$work/tree")
# Whatever Python comes first in the path, Debian's is meant.
ln -s /usr/bin/python3 "$work/bin/python3"
PATH=$work/bin:$PATH

# Root has installed what the first command names.
readme=$source_dir/python/README.md
commands=$(awk '/^```sh$/ {inside = 1; next} /^```$/ {inside = 0} inside' "$readme" |
    sed -e ':join' -e '/\\$/ { N; s/\\\n//; b join }' | sed '1d')
grep -q '^apt-get install ' "$readme"
# Without optimisation it builds in half the time.
export CMAKE_ARGS=-DCMAKE_CXX_FLAGS_RELEASE=-O0
(cd "$work/tree" && eval "${commands//\/opt\/pelkraft/$work/prefix}") >"$work/log" 2>&1 ||
    { cat "$work/log" >&2 && exit 1; }

cd /
python=$work/tree/build/venv/bin/python
"$python" "$source_dir/tests/package/python_client.py" "$source_dir/examples/patterns/six_ink.txt"
"$python" - "$work/prefix" <<'END'
import importlib.metadata
import pathlib
import sys

import pelkraft
from pelkraft import _core

folder = pathlib.Path(pelkraft.__file__).parent
assert pelkraft.__version__ == importlib.metadata.version("pelkraft"), pelkraft.__version__
assert (folder / "py.typed").exists() and (folder / "_core.pyi").exists()
assert (folder / "pages/__init__.py").exists()
assert _core._library.startswith(sys.argv[1]), _core._library
END
if env -u LD_LIBRARY_PATH "$work/tree/build/venv/bin/pip" check | grep pelkraft; then
    exit 1
fi
echo "pip installs the package beside its library"
