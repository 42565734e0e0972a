#!/usr/bin/env bash
# Proves that the tests fail where the library is wrong: plants the defects of tests/mutants/ one
# by one in a copy of the tree, builds, and runs the tests that have to fail.
#   --list                   prints the defects, and what can't be planted any more, and ends
#   --automatic [FILE...]    plants small changes made by rule instead, in all files or in these
#   WORDS...                 only defects with one of these in "room: name"
# An interrupted run goes on: what was caught stays so while its file and that test are there;
# remove build/mutants/caught to have all tried again.
set -euo pipefail
cd "$(dirname "$0")/.."

work=build/mutants
tree=$work/tree
binaries=$work/binaries
record=$work/caught
plant=tests/mutants/plant.pl
jobs=$(nproc)
# A test that was killed leaves no core, and a defect that eats memory not the machine.
ulimit -c 0
ulimit -v $((8 * 1024 * 1024))
# One failed test is enough.
export GTEST_FAIL_FAST=1

only_list=no
automatic=no
words=()
for argument in "$@"; do
    case $argument in
    --list) only_list=yes ;;
    --automatic) automatic=yes ;;
    -*)
        echo "usage: bash scripts/mutants.sh [--list] [WORDS...]" >&2
        echo "       bash scripts/mutants.sh --automatic [FILE...]" >&2
        exit 2
        ;;
    *) words+=("$argument") ;;
    esac
done

is_chosen() {
    local word
    [ ${#words[@]} -eq 0 ] && return
    for word in "${words[@]}"; do
        [[ "$1" == *"$word"* ]] && return
    done
    return 1
}

# Copies what has changed, and undoes what an interrupted run has left. A copy gets a new time,
# so that it is built again.
sync_tree() {
    local file
    mkdir -p "$tree"
    git ls-files -z --cached --others --exclude-standard | sort -zu >"$work/wanted"
    while IFS= read -r -d '' file; do
        if [ -f "$file" ] && ! cmp -s "$file" "$tree/$file"; then
            mkdir -p "$tree/$(dirname "$file")"
            cp --preserve=mode "$file" "$tree/$file"
        fi
    done <"$work/wanted"
    (cd "$tree" && find . -type f -printf '%P\0') | sort -z >"$work/present"
    comm -z -13 "$work/wanted" "$work/present" | (cd "$tree" && xargs -0r rm -f --)
}

configure() {
    cmake -S "$tree" -B "$binaries" -G Ninja -DCMAKE_CXX_COMPILER=g++ \
        -DCMAKE_BUILD_TYPE=Mutants -DCMAKE_CXX_FLAGS_MUTANTS=-O1 \
        -DCMAKE_LINK_DEPENDS_NO_SHARED=ON \
        -DPELKRAFT_BUILD_TESTS=ON -DPELKRAFT_BUILD_TOOLS=ON -DPELKRAFT_BUILD_BENCHMARKS=OFF \
        -DPELKRAFT_BUILD_PYTHON=ON
}

build() {
    cmake --build "$binaries" -j "$jobs" --target "$@" >"$work/build.log" 2>&1
}

# Runs one test, which ends after so many seconds.
run_test() {
    ctest --test-dir "$binaries" -R "^$1\$" --no-tests=error --timeout "$2" --output-on-failure \
        >"$work/test.log" 2>&1
}

fail() {
    echo "$1" >&2
    tail -n 40 "$2" >&2
    exit 1
}

# All tests pass on the tree as it is, which also shows how long each of them may take.
run_all() {
    local test
    build "${targets[@]}" || fail "the tree does not build" "$work/build.log"
    for test in "${!limit[@]}"; do
        SECONDS=0
        run_test "$test" "${limit[$test]}" || fail "$test fails without a defect" "$work/test.log"
        limit[$test]=$((10 + 5 * SECONDS))
    done
}

# Prints the name of a failed test's first failed case, or that it hung or crashed.
failure_of() {
    local failed
    failed=$(sed -n -e 's/^\(.*: \)\?\[ *FAILED *\] \([^ ,]*\).*/\2/p' \
        -e 's/^FAILED .*\.py::\(\w*\).*/\1/p' "$work/test.log" | head -1)
    if grep -q '\*\*\*Timeout' "$work/test.log"; then
        failed=hang
    elif [ -z "$failed" ]; then
        failed=crash
    fi
    echo "$1 ($failed)"
}

# Says how the first of the tests to fail did so; nothing if all of them pass.
try_tests() {
    local test
    for test in $1; do
        if ! run_test "$test" "${limit[$test]}"; then
            failure_of "$test"
            return
        fi
    done
}

# Builds and runs test by test where each has a target of its own name.
try_mutant() {
    local tests=$1 builds=$2 test verdict
    if [ "$tests" = "$builds" ]; then
        for test in $tests; do
            build "$test" || return 1
            verdict=$(try_tests "$test")
            [ -z "$verdict" ] || break
        done
    else
        # shellcheck disable=SC2086 # a list of words
        build $builds || return 1
        verdict=$(try_tests "$tests")
    fi
    echo "$verdict"
}

# The same for the same planted file, whatever the order of its includes.
key_of() {
    { echo "$2: $3" && grep -v '^#include' "$tree/$1"; } | sha1sum | cut -d ' ' -f 1
}

# Says what caught a defect in an earlier run, as long as that test is still there.
caught_before() {
    local verdict case
    verdict=$(sed -n "s/^$1 //p" "$record" | tail -1)
    [ -n "$verdict" ] || return 1
    case=$(sed -n 's/.*(.*\.\([A-Za-z0-9]*\).*)$/\1/p' <<<"$verdict")
    if [ -n "$case" ]; then
        grep -rqw "$case" tests --include='*.cpp' || return 1
    fi
    echo "$verdict"
}

if [ $automatic = yes ]; then
    bash scripts/setup.sh test
    sync_tree
    configure >"$work/configure.log" 2>&1 ||
        fail "the tree can't be configured" "$work/configure.log"
    build room_tests ||
        fail "the tree does not build" "$work/build.log"
    exec perl tests/mutants/automatic.pl try "$tree" "$binaries" "$work/automatic" "${words[@]}"
fi

start=$EPOCHSECONDS
list=$work/list
mkdir -p "$work"
listed=yes
perl "$plant" list . tests/mutants/*.txt >"$list" || listed=no
chosen=()
while IFS= read -r line; do
    IFS=$'\t' read -r room name _ <<<"$line"
    is_chosen "$room: $name" && chosen+=("$line")
done <"$list"

if [ $only_list = yes ]; then
    for line in "${chosen[@]}"; do
        IFS=$'\t' read -r room name _ <<<"$line"
        echo "$room: $name"
    done
fi
[ $listed = yes ] || exit 1
[ $only_list = no ] || exit 0
if [ ${#chosen[@]} -eq 0 ]; then
    echo "no such defect" >&2
    exit 2
fi

declare -A limit
targets=()
for line in "${chosen[@]}"; do
    IFS=$'\t' read -r _ _ tests builds <<<"$line"
    for target in $builds; do
        targets+=("$target")
    done
    for test in $tests; do
        limit[$test]=600
    done
done

bash scripts/setup.sh test
sync_tree
configure >"$work/configure.log" 2>&1 || fail "the tree can't be configured" "$work/configure.log"
mapfile -t targets < <(printf '%s\n' "${targets[@]}" | sort -u)
run_all

# The quick way first: what it catches stands in the record then.
touch "$record"
mkdir -p "$work/quick"
printf '%s\n' "${chosen[@]}" |
    perl tests/mutants/try_planted.pl "$tree" "$binaries" "$work/quick" "$record"

caught=0
survivors=()
broken=()

for line in "${chosen[@]}"; do
    IFS=$'\t' read -r room name tests builds <<<"$line"
    SECONDS=0
    file=$(perl "$plant" plant "$tree" "tests/mutants/$room.txt" "$name")
    key=$(key_of "$file" "$room" "$name")
    if verdict=$(caught_before "$key"); then
        caught=$((caught + 1))
        result="caught before by $verdict"
    elif ! verdict=$(try_mutant "$tests" "$builds"); then
        broken+=("$room: $name")
        log=$work/broken-${#broken[@]}.log
        cp "$work/build.log" "$log"
        result="DOES NOT BUILD, see $log"
    elif [ -z "$verdict" ]; then
        survivors+=("$room: $name")
        result=SURVIVED
    else
        caught=$((caught + 1))
        echo "$key $verdict" >>"$record"
        result="caught by $verdict"
    fi
    cp "$file" "$tree/$file"
    printf '%3d s  %s: %s: %s\n' "$SECONDS" "$room" "$name" "$result"
done

# A defect that stayed in the tree would have caught the ones after it.
run_all

took=$((EPOCHSECONDS - start))
printf '%d caught, %d survived, %d did not build, in %d min %d s\n' \
    "$caught" "${#survivors[@]}" "${#broken[@]}" $((took / 60)) $((took % 60))
[ ${#survivors[@]} -eq 0 ] && [ ${#broken[@]} -eq 0 ]
