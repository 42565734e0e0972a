#!/usr/bin/env bash
# Installs the packages of build/packages/ into an empty root, builds customers against it, runs
# the client from it, and sees that removing them leaves nothing: deb_packages.sh SOURCE_DIR
set -euo pipefail
source_dir=$1
here=$(cd "$(dirname "$0")" && pwd)
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
mkdir -p "$root/var/lib/dpkg/info" "$root/var/lib/dpkg/updates"
: >"$root/var/lib/dpkg/status"
dpkg_in_root() { dpkg --root="$root" --force-depends --force-script-chrootless "$@" >/dev/null; }

# The packages' own dependencies are Debian's and stay outside the empty root.
dpkg_in_root --install "$source_dir"/build/packages/*.deb
for compiler in g++ clang++; do
    bash "$here/customers.sh" "$source_dir" "$root/usr" "$compiler"
done
"$root/usr/bin/pelkraft" --help >/dev/null

dpkg_in_root --purge pelkraft libpelkraft-dev libpelkraft1
left=$(find "$root" -path "$root/var/lib/dpkg" -prune -o -not -type d -print)
if [ -n "$left" ]; then
    printf 'left behind:\n%s\n' "$left" >&2
    exit 1
fi
echo "the packages install, serve customers, and leave nothing"
