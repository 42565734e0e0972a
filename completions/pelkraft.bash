# Completion of pelkraft for bash. Where nothing is offered, bash completes file names.
_pelkraft() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local verb= word offered=
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        case $word in
        convert | pattern | simulate)
            verb=$word
            break
            ;;
        esac
    done

    COMPREPLY=()
    case $previous in
    --layout) offered='interleaved planar' ;;
    --bits) offered='1 2 8 16' ;;
    --repeat) offered='1 2 4' ;;
    --tones) offered='scale raw' ;;
    --polarity) offered='auto ink-high ink-low' ;;
    --compress) offered='none lzw zip' ;;
    --dot-range)
        offered=keep
        [[ $verb == convert ]] && offered='keep scale full'
        ;;
    --engine) offered='auto reference x86 sse' ;;
    --levels) offered='quantize raw' ;;
    --channels | --page | --spool-limit | --threads | --ink | --plot | --preview) return ;;
    *)
        case $verb in
        convert)
            offered='--help --layout --bits --channels --repeat --mirror --tones --page
                --polarity --dot-range --spool-limit --compress --no-clobber --portable --threads --explain
                --json'
            ;;
        pattern) offered='--help --json --plot' ;;
        simulate)
            offered='--help --engine --levels --page --polarity --dot-range --spool-limit
                --compress --no-clobber --threads --preview --ink --explain'
            ;;
        *) offered='convert pattern simulate --help --version --buildinfo' ;;
        esac
        # Files follow a verb, unless an option is begun.
        [[ -n $verb && $current != -* ]] && return
        ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$offered" -- "$current")
}
complete -o bashdefault -o default -F _pelkraft pelkraft
