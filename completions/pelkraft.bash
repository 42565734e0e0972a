# Completion of pelkraft for bash. Where nothing is offered, bash completes file names.

# Prints the options of a verb and the verbs below it.
_pelkraft_offers() {
    local input='--page --polarity --dot-range --spool-limit' output='--compress --no-clobber'
    local common='--help --quiet --verbose --progress --color --threads --explain --json --dry-run'
    case $1 in
    '')
        echo \
            check \
            convert \
            coverage \
            info \
            join \
            mask \
            pattern \
            preview \
            simulate \
            split \
            --help --version --buildinfo
        ;;
    check) echo "--rules --format $common" ;;
    convert)
        echo "--layout --bits --channels --repeat --mirror --flip --invert --tones --portable $input $output
            $common"
        ;;
    coverage) echo "--limit --window --map --no-clobber $input $common" ;;
    info) echo "--stats $input $common" ;;
    join) echo "--order $input $output $common" ;;
    mask) echo "--verify --export --no-clobber $common" ;;
    pattern) echo "diff explain fix lint plot --plot --no-clobber $common" ;;
    'pattern diff' | 'pattern explain' | 'pattern lint') echo "--format $common" ;;
    'pattern fix' | 'pattern plot') echo "--output --no-clobber $common" ;;
    preview) echo "--inks --print-order --gain --crop --no-clobber $input $common" ;;
    simulate)
        echo "--engine --levels --tone --bits --origin --pages --preview --ink $input $output $common"
        ;;
    split) echo "--inks --naming $input $output $common" ;;
    esac
}

# Prints the values of an option of a verb; fails on one that takes others than a few.
_pelkraft_values() {
    case $1 in
    --layout) echo 'interleaved planar' ;;
    --bits) if [ "$2" = simulate ]; then echo '2 8'; else echo '1 2 8 16'; fi ;;
    --repeat) echo '1 2 4' ;;
    --tones) echo 'scale raw' ;;
    --polarity) echo 'auto ink-high ink-low' ;;
    --compress) echo 'none lzw zip' ;;
    --engine) echo 'auto reference x86 sse' ;;
    --levels) echo 'raw quantize dither' ;;
    --export) echo 'raw16' ;;
    --naming) echo 'gs dot' ;;
    --format) [[ $2 == 'pattern diff' ]] && echo 'text json' || echo 'text json sarif' ;;
    --progress) echo 'auto never json' ;;
    --color) echo 'auto never' ;;
    *) return 1 ;;
    esac
}

# Prints the rules of the verb check by their names.
_pelkraft_rules() {
    echo 'ink-names number-of-inks ink-set duplicate-ink misspelt-ink dot-range polarity extra-samples'
    echo 'profile resolution-missing resolution-unequal resolution-implausible orientation truncated'
    echo 'byte-count'
}

_pelkraft() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local verb= word offered values
    offered=$(_pelkraft_offers '')
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        [[ $word == -* || " $offered " != *" $word "* ]] && continue
        verb+=${verb:+ }$word
        offered=$(_pelkraft_offers "$verb")
    done

    COMPREPLY=()
    # Between an option and its value bash may find a word of its own.
    [[ $previous == = ]] && previous=${COMP_WORDS[COMP_CWORD - 2]}
    [[ $current == = ]] && previous=${COMP_WORDS[COMP_CWORD - 1]} current=
    if values=$(_pelkraft_values "$previous" "$verb"); then
        offered=$values
    else
        case $previous in
        --channels | --origin | --page | --dot-range | --spool-limit | --threads | --ink | --plot | --preview)
            return
            ;;
        --rules)
            mapfile -t COMPREPLY < <(compgen -W "list $(_pelkraft_rules)" -- "$current")
            return
            ;;
        --inks | --map | --window | --limit | --order | --output | --print-order) return ;;
        --gain | --crop) return ;;
        esac
        # Files follow a verb, and verbs below it, unless an option is begun.
        if [[ -n $verb && $current != -* ]]; then
            offered=$(tr ' ' '\n' <<<"$offered" | grep -v -e '^-' || true)
            [[ -z $offered && $verb != pattern* ]] && return
            mapfile -t COMPREPLY < <(compgen -W "$offered" -f -- "$current")
            # A pattern is a text, and no picture.
            [[ $verb == pattern* ]] && mapfile -t COMPREPLY < <(printf '%s\n' "${COMPREPLY[@]}" |
                grep -viE '^$|\.(tiff?|png|jpe?g|pdf|svg|icc|raw)$' || true)
            return
        fi
    fi
    mapfile -t COMPREPLY < <(compgen -W "$offered" -- "$current")
}
complete -o bashdefault -o default -F _pelkraft pelkraft
