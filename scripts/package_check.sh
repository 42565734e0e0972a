#!/usr/bin/env bash
# Makes the Debian packages and has apt install them in a bare Debian 12 that debootstrap has just
# made: customers of the library are built and run there, and the client, without the source tree;
# then the packages are purged, which must leave no file. Needs root and the machine's package
# sources, and takes some minutes.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh package_check
bash scripts/package.sh

root=$(mktemp -d)
home=$root/srv
log=$root.log
trap 'rm -rf --one-file-system "$root" "$log"' EXIT

say() { printf '\n== %3d s: %s\n' "$SECONDS" "$*"; }
# The environment of this machine stays out, except for the way to the network.
in_root() {
    env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 \
        DEBIAN_FRONTEND=noninteractive http_proxy="${http_proxy:-}" \
        https_proxy="${https_proxy:-}" chroot "$root" "$@"
}
quietly() { "$@" >"$log" 2>&1 || { cat "$log" >&2 && return 1; }; }
apt_in_root() { quietly in_root apt-get -y --no-install-recommends "$@"; }

say "a bare Debian 12"
# shellcheck disable=SC2016 # apt fills it in
mirror=$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' 'Codename: bookworm' |
    head -n 1)
quietly debootstrap --variant=minbase --include=ca-certificates bookworm "$root" "$mirror"
for part in sources.list sources.list.d apt.conf.d; do
    rm -rf "$root/etc/apt/$part"
    [ ! -e "/etc/apt/$part" ] || cp -a "/etc/apt/$part" "$root/etc/apt/"
done
apt_in_root update

say "the compilers of customers"
# clang recommends python3, so apt would keep it at the end; NumPy belongs to customers as well.
apt_in_root install g++ clang cmake ninja-build pkg-config python3-numpy
mkdir "$home/customers"
cp -r README.md tests/package/{python_client.py,customers.sh,consumer} "$home/customers/"
cp build/packages/*.deb "$home/"
gs -q -dSAFER -sDEVICE=tiff32nc -r36 -o "$home/page.tif" tests/tools/cmyk_spot_page.ps

# The files in which apt and dpkg keep their own notes are left out.
files_of_root() {
    (cd "$root" && find . -xdev \( -path ./root -o -path ./srv -o -path ./tmp \
        -o -path ./var/cache -o -path ./var/log -o -path ./var/lib/apt -o -path ./var/lib/dpkg \) \
        -prune -o -print) | sort
}
files_of_root >"$home/before"

say "the packages, with what they depend on"
packages=("$home"/*.deb)
apt_in_root install "${packages[@]#"$root"}"
in_root dpkg-query -W '*pelkraft*'

for compiler in g++ clang++; do
    say "customers with $compiler"
    in_root bash /srv/customers/customers.sh /srv/customers /usr "$compiler"
done

say "the client"
client() { in_root /usr/bin/pelkraft "$@"; }
client --version
client convert --layout planar --bits 16 /srv/page.tif /srv/planes.tif
client convert --layout interleaved --bits 8 /srv/planes.tif /srv/back.tif
tiffcmp "$home/page.tif" "$home/back.tif"
pattern=/usr/share/doc/pelkraft/examples/patterns/six_ink.txt
client pattern "$pattern" | tail -n 1
client simulate --preview /srv/seen.png "$pattern" /srv/page.tif /srv/dots.tif
[ -s "$home/dots.tif" ] && [ -s "$home/seen.png" ]

say "the package for Python"
in_root /usr/bin/python3 /srv/customers/python_client.py "$pattern"
in_root /usr/bin/python3 -m pelkraft

say "purging"
apt_in_root purge --autoremove python3-pelkraft pelkraft libpelkraft-dev libpelkraft1
files_of_root | comm -13 "$home/before" - >"$home/left"
if [ -s "$home/left" ]; then
    echo "left behind:" >&2
    cat "$home/left" >&2
    exit 1
fi
say "done: installed, used and purged, nothing is left"
