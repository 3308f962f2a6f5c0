#!/usr/bin/env bash
# Runs one function of a file of shell tests, with the built commands on the path. Every test has its own
# working folder, which is also the user's runtime folder.
# Usage: shell_test.sh BUILD-FOLDER FILE FUNCTION
set -Eeuo pipefail

PATH=$(realpath "$1")/bin:$PATH
# Where the test's own files are, and the speed at which a slow build still keeps up.
tests=$(realpath "$(dirname "$2")")
root=$(realpath "$(dirname "${BASH_SOURCE[0]}")/../..")
free_speed=${TOLVANE_FREE_SPEED:-8}

# Ends the test and shows what the commands printed.
fail() {
    echo "failed: $1" >&2
    tail -v -n 20 -- *out *err >&2 2>/dev/null || true
    exit 1
}

# run STATUS COMMAND...: what it prints goes to the files out and err. It has five minutes.
run() {
    local expected=$1 status=0
    shift
    timeout 300 "$@" </dev/null >out 2>err || status=$?
    [ "$status" = "$expected" ] || fail "status $status, not $expected, of: $*"
}

# start NAME COMMAND...: the same in the background, with the files NAME.out and NAME.err.
start() {
    local name=$1
    shift
    # The files of an earlier process of that name are empty at once, not when the new one has begun.
    : >"$name.out" >"$name.err"
    "$@" </dev/null >"$name.out" 2>"$name.err" &
    processes[$name]=$!
}

# finish NAME STATUS [SIGNAL]: sends the signal, by default TERM, and waits for the end. "none" sends none.
finish() {
    local process=${processes[$1]} status=0
    [ "${3:-}" = none ] || kill -s "${3:-TERM}" "$process"
    unset "processes[$1]"
    wait "$process" || status=$?
    [ "$status" = "$2" ] || fail "status $status, not $2, of $1"
}

# wait_for COMMAND...: repeats a check until it holds, for at most five minutes.
wait_for() {
    local end=$((SECONDS + 300))
    until "$@" >/dev/null 2>&1; do
        ((SECONDS < end)) || fail "waited in vain for: $*"
        sleep 0.02
    done
}

# is FILE LINE...: the file has these lines only.
is() {
    diff -a <([ $# = 1 ] || printf '%s\n' "${@:2}") "$1" >&2 || fail "the file $1 differs as above"
}

# contains FILE TEXT...: each text is in the file.
contains() {
    local text
    for text in "${@:2}"; do
        grep -aqF -- "$text" "$1" || fail "'$text' is not in the file $1"
    done
}

# begins FILE TEXT: the file begins with the text.
begins() {
    [[ $(<"$1") == "$2"* ]] || fail "the file $1 does not begin with '$2'"
}

# has_lines FILE COUNT, for wait_for.
has_lines() {
    [ "$(wc -l <"$1")" = "$2" ]
}

trap 'fail "line $LINENO of a file: $BASH_COMMAND"' ERR
declare -A processes=()
folder=$(mktemp -d)
trap 'kill -KILL "${processes[@]}" 2>/dev/null || true; wait; rm -rf "$folder"' EXIT
cd "$folder"
# A killed unit leaves its temporary folders.
export XDG_RUNTIME_DIR=$folder TMPDIR=$folder
# shellcheck source=/dev/null
source "$tests/$(basename "$2")"
"$3"
