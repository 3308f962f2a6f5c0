# Completion of tolvane, unitctl and dvrsim for bash: source this file. Options come from the
# command's own help and unitctl's words from the running unit, so neither goes stale.

_tolvane_options() {
    "$@" --help 2>/dev/null | grep -oE '^ +(-[a-z],)?--[a-z0-9-]+' | grep -oE -- '--[a-z0-9-]+'
}

_tolvane() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} subcommand=
    [ "$1 ${COMP_WORDS[1]}" != "tolvane convert" ] || subcommand=convert
    case $before in
    --com9) mapfile -t COMPREPLY < <(compgen -W "sim pty" -- "$word"; compgen -f -- "$word") ;;
    --to) mapfile -t COMPREPLY < <(compgen -W "pcapng perfetto text" -- "$word") ;;
    --card | --screens | --out | --report) mapfile -t COMPREPLY < <(compgen -d -- "$word") ;;
    *)
        if [[ $word == -* ]]; then
            mapfile -t COMPREPLY < <(compgen -W "$(_tolvane_options "$1" $subcommand)" -- "$word")
        elif [ "$COMP_CWORD $1" = "1 tolvane" ]; then
            mapfile -t COMPREPLY < <(compgen -W convert -- "$word"; compgen -f -- "$word")
        else
            mapfile -t COMPREPLY < <(compgen -f -- "$word")
        fi
        ;;
    esac
}

_unitctl() {
    local word=${COMP_WORDS[COMP_CWORD]}
    if [[ $word == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$(_tolvane_options "$1")" -- "$word")
        return
    fi
    local words
    words=$("$1" complete "${COMP_WORDS[@]:1:COMP_CWORD-1}" 2>/dev/null)
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
    [ -n "$words" ] || mapfile -t COMPREPLY < <(compgen -f -- "$word")
}

complete -o filenames -F _tolvane tolvane dvrsim
complete -o filenames -F _unitctl unitctl
