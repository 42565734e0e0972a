#!/usr/bin/env bash
# Runs what a page shows: run_page.sh SOURCE_DIR BUILD_DIR PREFIX PAGE
#   ```sh       commands, in a copy of the files that pages speak of
#   ```console  commands after "$ ", whose output is compared with the lines below
#   ```pycon    a session of Python with the package of the build, all blocks of a page one after the
#               other, once the other blocks are through
#   ```text     a dot pattern, the file that a comment above names; loads without a finding
#   ```         what the example above prints, as in its .expected file
#   ```cpp      an example, which docs_show_the_examples compares; README's runs in customers.sh
#   ```c        an example in C
#   ```cmake    README's, which runs in customers.sh
# Any other block fails. Commands within the text run too, by the first words that run_inline knows,
# and a source that it names with its folder must be there.
# Files of the tree that a page's commands write, as the pictures that it shows, must come out the
# same.
set -euo pipefail
source_dir=$1 build_dir=$2 prefix=$3 page=$4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
blocks=$work/blocks
tree=$work/tree
status=0
fail() {
    echo "$page: $*" >&2
    status=1
}

# Writes each block to a file NUMBER.LANGUAGE, and the name from a comment above to
# NUMBER.LANGUAGE.name.
split_page() {
    mkdir "$blocks"
    awk -v blocks="$blocks" '
        /^```/ && file == "" {
            file = sprintf("%s/%03d.%s", blocks, ++count, substr($0, 4))
            printf "" >file
            if (name != "")
                print name >(file ".name")
            next
        }
        /^```$/ { close(file); file = name = ""; next }
        file != "" { print >file; next }
        /^<!-- .* -->$/ { name = $2 }
        END { exit file != "" }' "$source_dir/$page" || fail "a block has no end"
}

# Prints the code between single backticks, one in a line.
inline_code() {
    awk '/^```/ { inside = !inside; next } !inside' "$source_dir/$page" |
        awk -v RS='`' 'NR % 2 == 0 { gsub(/[ \n]+/, " "); print }'
}

# Puts the installed program and package beside what the pages' commands read.
make_tree() {
    # Debian's Python, for which the build's package is, whichever one comes first elsewhere.
    mkdir "$work/bin"
    ln -s /usr/bin/python3 "$work/bin/python3"
    PATH=$prefix/bin:$work/bin:$PATH
    PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name pelkraft.pc)")
    export PATH PKG_CONFIG_PATH PYTHONPATH=$build_dir/python PYTHONDONTWRITEBYTECODE=1
    mkdir -p "$tree/docs" "$tree/examples" "$tree/build"
    ln -s "$build_dir" "$tree/build/release"
    (cd "$source_dir" && find tests -type d -print0) | (cd "$tree" && xargs -0 mkdir -p)
    cp "$source_dir"/examples/*.c* "$tree"
    cp -r "$source_dir/examples/pages" "$source_dir/examples/patterns" "$tree/examples"
    cp -r "$source_dir/docs/pictures" "$tree/docs"
    rm -f "$tree"/docs/pictures/*.png "$tree"/docs/pictures/*.svg
    # Usage lines call their files by these names.
    cp "$source_dir/examples/patterns/six_ink.txt" "$tree/PATTERN"
    cp "$tree/PATTERN" "$tree/FILE"
    gs -q -dSAFER -sDEVICE=tiff32nc -r36 -o "$tree/IN.tif" \
        "$source_dir/tests/tools/cmyk_spot_page.ps"
}

# A script that builds for minutes is not run here but looked at: it must parse, and take the words
# after its name. Whole, test.sh and samples.sh run on each push, and with them setup.sh, package.sh,
# evidence.sh --sample and, by the test reference_is_whole, docs.sh. By hand run demo.sh and package_check.sh
# before a release, mutants.sh and abi.sh as CONTRIBUTING.md says; bench.sh and evidence.sh write
# docs/benchmarks.md with its picture and docs/reliability.md.
look_at_script() {
    local script=$1 word code
    bash -n "$source_dir/$script" || { fail "$script isn't there, or doesn't parse"; return; }
    code=$(code_of "$source_dir/$script")
    for word in "${@:2}"; do
        if [ "$script" = scripts/evidence.sh ] && [[ $word != --* ]]; then
            takes_line "$word" || fail "evidence.sh has no line $word"
        else
            has_word "$word" <<<"$code" || fail "$script takes no $word"
        fi
    done
}
code_of() { cat "$@" | grep -Ev '^ *(#|echo)'; }
has_word() { grep -qE -- "(^|[ |\"])$1([ )|\"]|\$)"; }

# A line of the evidence is a target of fuzzing, or has a script of its own name, or is named in that
# of several lines.
takes_line() {
    local targets=$source_dir/fuzz/CMakeLists.txt
    case $1 in
    fuzz_verb_*) grep -qE "^set\(verbs( .*)? ${1#fuzz_verb_}[ )]" "$targets" ;;
    fuzz_*) grep -qE "^pelkraft_fuzzer\($1( |\$)" "$targets" ;;
    *)
        [ -f "$source_dir/scripts/evidence/$1.sh" ] ||
            grep -rqE "^#   .* whole\|sample (.*\|)?$1([ |]|$)" "$source_dir/scripts/evidence"
        ;;
    esac
}

# Runs a command in the copy as a reader's shell would.
in_tree() {
    (cd "$tree" && set +eo pipefail && eval "$1") </dev/null 2>&1
}

# A build can't be made within its own tests, so its presets must be there; test.sh makes it.
look_at_presets() {
    local preset presets
    presets=$(cd "$source_dir" && cmake --list-presets)
    while IFS= read -r preset; do
        grep -qF "\"$preset\"" <<<"$presets" || fail "no preset $preset"
    done < <(grep -oE '(--preset |--test-dir build/)[a-z-]+' <<<"$1" | sed 's|.*[ /]||')
}

run() {
    local words
    read -ra words <<<"${1%%#*}"
    case $1 in
    "bash scripts/"*) look_at_script "${words[@]:1}" ;;
    "cmake --preset "* | "ctest --test-dir "*) look_at_presets "$1" ;;
    *) in_tree "$1" >"$work/said" || { fail "failed: $1"; cat "$work/said" >&2; } ;;
    esac
}

run_commands() {
    local line command=
    while IFS= read -r line; do
        command+=$line
        if [[ $command == *\\ ]]; then
            command=${command%\\}
        elif [ -n "$command" ]; then
            run "$command"
            command=
        fi
    done <"$1"
}

# Prints what a terminal would show of the block's commands, none of which may fail. A command goes
# on after a backslash, on a line that begins with "> ".
transcript() {
    local line command=
    while IFS= read -r line; do
        [[ $line == '$ '* || ($line == '> '* && -n $command) ]] || continue
        echo "$line"
        command+=${line:2}
        if [[ $command == *\\ ]]; then
            command=${command%\\}
        else
            in_tree "$command" || echo "exit code $?"
            command=
        fi
    done <"$1"
}

# A finding of any kind on a pattern that the page gives as an example spoils it.
load_pattern() {
    local name
    name=$(cat "$1.name" 2>/dev/null) || { fail "a pattern without a name"; return; }
    diff "$source_dir/$name" "$1" || fail "$name is another on the page"
    cp "$1" "$tree/$name"
    pelkraft pattern "$1" >"$work/said" 2>&1 || true
    if [ "$(tail -n 1 "$work/said")" != "0 errors, 0 warnings, 0 notes" ]; then
        fail "$name doesn't load cleanly"
        cat "$work/said" >&2
    fi
}

run_sessions() {
    [ ! -f "$work/session" ] ||
        (cd "$tree" && MPLCONFIGDIR=$work/matplotlib python3 -m doctest "$work/session") ||
        fail "a session goes otherwise"
}

run_block() {
    case $1 in
    *.sh) run_commands "$1" ;;
    *.console) diff "$1" <(transcript "$1") || fail "output has changed" ;;
    *.pycon) cat "$1" >>"$work/session" ;;
    *.text) load_pattern "$1" ;;
    *.cpp | *.c)
        example=$(cat "$1.name" 2>/dev/null || true)
        [ -n "$example" ] || [ "$page" = README.md ] || fail "a program without a name"
        ;;
    *.cmake) [ "$page" = README.md ] || fail "nothing runs a cmake block" ;;
    *.) diff "$source_dir/${example%.*}.expected" "$1" || fail "output of $example has changed" ;;
    *) fail "nothing runs a block of ${1##*.}" ;;
    esac
}

run_inline() {
    local line options
    options=$(for verb in "" check convert coverage info join pattern "pattern diff" "pattern fix" preview simulate split; do
        bash "$source_dir/tests/tools/options_of.sh" pelkraft $verb
    done
    ! grep -q pelkraft.pages "$source_dir/$page" || python3 -m pelkraft.pages --help
    code_of "$source_dir"/scripts/*.sh)
    while IFS= read -r line; do
        case $line in
        # tests/package installs, which a page says without a folder.
        "cmake --install") ;;
        --*) has_word "${line%% *}" <<<"$options" || fail "no option $line" ;;
        "pelkraft pattern "[a-z]*) run "$line --help" ;;
        pelkraft\ *\ *) run "$line" ;;
        pelkraft\ [a-z]*) run "$line --help" ;;
        bash\ * | pelkraft\ * | cmake\ * | ctest\ * | gs\ * | g++\ *) run "$line" ;;
        man\ *) [ -f "$source_dir/man/${line##* }.${line:4:1}" ] || fail "no page for $line" ;;
        *\ *) ;;
        [a-z]*/*.cpp | [a-z]*/*.h | [a-z]*/*.hpp) [ -f "$source_dir/$line" ] || fail "no source $line" ;;
        esac
    done < <(inline_code)
}

# Every file that the page links to is there, and every picture comes from the page's commands, save
# the chart, which the test benchmark_report compares with the stored figures, and the picture that
# web/page/picture.mjs takes of the page for authors.
follow_links() {
    local folder link
    folder=$(dirname "$page")
    while IFS= read -r link; do
        if [ ! -e "$source_dir/$folder/$link" ]; then
            fail "no $link"
        elif [[ $link =~ pictures/(benchmarks\.svg|web_page\.png)$ ]]; then
            continue
        elif [[ $link =~ \.(png|svg)$ ]] && [ ! -e "$tree/$folder/$link" ]; then
            fail "$link is made by no command"
        fi
    done < <(grep -oE '(\]\(|src=")[^)"#]+' "$source_dir/$page" | sed -E 's/^(\]\(|src=")//' |
        grep -v '^https\?:')
}

compare_files() {
    local file
    while IFS= read -r file; do
        [ ! -f "$source_dir/$file" ] || cmp "$source_dir/$file" "$tree/$file" ||
            fail "$file comes out otherwise"
    done < <(cd "$tree" && find . -type f -printf '%P\n')
}

split_page
make_tree
example=
for block in "$blocks"/*; do
    case $block in
    *.name | *'*') ;;
    *) run_block "$block" ;;
    esac
done
run_sessions
run_inline
follow_links
compare_files
exit $status
