#!/usr/bin/env bash
# Makes the Debian packages libpelkraft1, libpelkraft-dev, pelkraft and python3-pelkraft in
# build/packages/.
#   package.sh --windows    makes the zip for Windows there instead
# DEBFULLNAME and DEBEMAIL say who builds them, as with Debian's own tools; without them it is who
# made the last commit.
set -euo pipefail
cd "$(dirname "$0")/.."
if [ "${1:-}" = --windows ]; then
    exec bash packaging/windows/zip.sh
fi
bash scripts/setup.sh package

version=$(sed -nE 's/^project\(pelkraft VERSION ([0-9.]+).*/\1/p' CMakeLists.txt)
# An official package of the same version is newer.
revision=0local1
maintainer="${DEBFULLNAME:-$(id -un)} <${DEBEMAIL:-}>"
[ -n "${DEBEMAIL:-}" ] || maintainer=$(git log -1 --format='%an <%ae>')
debian=build/debian/debian

rm -rf build/debian build/packages
mkdir -p build/debian build/packages
cp -r packaging/debian "$debian"
mv "$debian/libpelkraft.install" "$debian/libpelkraft${version%%.*}.install"
sed "s|@MAINTAINER@|$maintainer|; s|@MAJOR@|${version%%.*}|g" "$debian/control.in" \
    >"$debian/control"
rm "$debian/control.in"

# One entry for each dated version of CHANGELOG.md up to this one, which has the details.
sed -nE 's/^## ([0-9.]+), ([0-9-]+)$/\1 \2/p' CHANGELOG.md |
    while read -r dated date; do
        [ "$(printf '%s\n' "$dated" "$version" | sort -V | tail -n 1)" = "$version" ] || continue
        printf 'pelkraft (%s-%s) unstable; urgency=medium\n\n' "$dated" "$revision"
        printf '  * Version %s; changelog.gz beside this file says what is new.\n\n' "$dated"
        printf ' -- %s  %s\n\n' "$maintainer" "$(LC_ALL=C date -u -d "$date" -R)"
    done >"$debian/changelog"

(cd build/debian && DEB_BUILD_OPTIONS=noautodbgsym dpkg-buildpackage \
    --build=binary --no-sign --no-check-builddeps >../package.log 2>&1) || {
    cat build/package.log >&2
    exit 1
}
mv build/*.deb build/packages/
ls -l build/packages/*.deb
