# shellcheck shell=bash disable=SC2154
# Sourced by scripts that build Debian's source packages for another system: they call
# begin_libraries, then unpack for each package, and end_libraries.

# begin_libraries NAME: what is built goes to $prefix, build/NAME-libraries/, and sources to $work.
# It ends the script where all has been built before.
begin_libraries() {
    prefix=$PWD/build/$1-libraries
    work=$PWD/build/$1-sources
    licences=$prefix/licences
    [ ! -e "$prefix/complete" ] || exit 0
    rm -rf "$prefix" "$work"
    mkdir -p "$prefix"
    prepare_sources
}

end_libraries() { touch "$prefix/complete"; }

quietly() { "$@" >"$work/log" 2>&1 || { cat "$work/log" >&2 && return 1; }; }

# apt-get with the sources of this machine's packages, from Debian's own repositories alone, and a
# list folder that is nobody else's.
apt() {
    local command=$1
    shift
    "$command" -q -o Dir::Etc::sourcelist="$work/${sources:-sources.list}" -o Dir::Etc::sourceparts=- \
        -o Dir::State::lists="$work/lists" -o APT::Sandbox::User=root "$@"
}

prepare_sources() {
    mkdir -p "$work/lists/partial"
    # shellcheck disable=SC2016 # apt fills it in
    apt-get indextargets --format 'deb-src $(REPO_URI) $(RELEASE) $(COMPONENT)' \
        'Created-By: Packages' 'Origin: Debian' | sort -u >"$work/sources.list"
    grep -v -e '-security' "$work/sources.list" >"$work/archive.list"
    quietly apt apt-get update
}

# A mirror may list a version that it has no longer or not yet: then the archive may have it, which
# takes over what the security archive brought, or the one before it serves.
fetch() {
    local version sources
    while read -r version; do
        for sources in sources.list archive.list; do
            quietly apt apt-get source --download-only "$1=$version" 2>/dev/null && return
            rm -f "$1"_*
        done
        echo "$(basename "$0"): no $1 $version to be had" >&2
    done < <(apt apt-cache showsrc "$1" | sed -n 's/^Version: //p' | sort -Vru)
    return 1
}

# A source package with Debian's patches, in the folder of its name; its licence goes to $licences.
unpack() {
    (cd "$work" && fetch "$1" && quietly dpkg-source -x "$1"_*.dsc "$1")
    mkdir -p "$licences"
    cp "$work/$1/debian/copyright" "$licences/$1"
    echo "$(basename "$0"): $(sed -nE '1s/^([^ ]+) \((.*)\).*/\1 \2/p' "$work/$1/debian/changelog")"
}
