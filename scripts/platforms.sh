#!/usr/bin/env bash
# Builds and tests the library where this machine can only pretend to be: each platform installs
# what it needs, builds, runs its tests and prints ctest's summary and the line of the digests.
#   platforms.sh [--sample] [PLATFORM...]   these platforms, or all of them; the sample is what
#                                           a push runs
# A platform has a script in scripts/platforms/, which gets "whole" or "sample".
set -euo pipefail
cd "$(dirname "$0")/.."

extent=whole
if [ "${1:-}" = --sample ]; then
    extent=sample
    shift
fi
[ $# -ne 0 ] || set -- m32 windows msvc arm wasm
for platform in "$@"; do
    if [ ! -f "scripts/platforms/$platform.sh" ]; then
        echo "platforms.sh: no platform is called $platform" >&2
        exit 2
    fi
done

failed=()
for platform in "$@"; do
    echo "== $platform, $extent"
    started=$SECONDS
    bash "scripts/platforms/$platform.sh" "$extent" || failed+=("$platform")
    echo "== $platform took $((SECONDS - started)) s"
done
if [ ${#failed[@]} -ne 0 ]; then
    echo "platforms.sh: failed: ${failed[*]}" >&2
    exit 1
fi
