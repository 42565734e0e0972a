#!/usr/bin/env bash
# Has lintian read the packages of build/packages/, installs them into an empty root, builds
# customers against it, runs the client and a program in Python on an installed pattern, and sees
# that removing them leaves nothing: deb_packages.sh SOURCE_DIR
set -euo pipefail
source_dir=$1
here=$(cd "$(dirname "$0")" && pwd)
root=$(mktemp -d)
stand_ins=$(mktemp -d)
trap 'rm -rf "$root" "$stand_ins"' EXIT
mkdir -p "$root/var/lib/dpkg/info" "$root/var/lib/dpkg/updates"
: >"$root/var/lib/dpkg/status"
# Python's packages call these two when they come and go, which look for files outside the root.
ln -s /bin/true "$stand_ins/py3compile"
ln -s /bin/true "$stand_ins/py3clean"
dpkg_in_root() {
    PATH=$stand_ins:$PATH dpkg --root="$root" --force-depends --force-script-chrootless "$@" >/dev/null
}

echo "lintian"
lintian --allow-root --fail-on error,warning "$source_dir"/build/packages/*.deb

# The packages' own dependencies are Debian's and stay outside the empty root.
dpkg_in_root --install "$source_dir"/build/packages/*.deb
for compiler in g++ clang++; do
    bash "$here/customers.sh" "$source_dir" "$root/usr" "$compiler"
done
"$root/usr/bin/pelkraft" pattern "$root/usr/share/doc/pelkraft/examples/patterns/six_ink.txt" >/dev/null
PYTHONPATH=$root/usr/lib/python3/dist-packages PYTHONDONTWRITEBYTECODE=1 \
    LD_LIBRARY_PATH=$(dirname "$(find "$root/usr/lib" -name 'libpelkraft.so.*' -print -quit)") \
    /usr/bin/python3 "$here/python_client.py" \
    "$root/usr/share/doc/pelkraft/examples/patterns/six_ink.txt"
for program in "$source_dir"/examples/*.c*; do
    cmp "$program" "$root/usr/share/doc/libpelkraft-dev/examples/$(basename "$program")"
done

dpkg_in_root --purge python3-pelkraft pelkraft libpelkraft-dev libpelkraft1
left=$(find "$root" -path "$root/var/lib/dpkg" -prune -o -not -type d -print)
if [ -n "$left" ]; then
    printf 'left behind:\n%s\n' "$left" >&2
    exit 1
fi
echo "the packages install, serve customers, and leave nothing"
