#!/usr/bin/env bash
# Runs the cases of a fault campaign, each in a process of its own, and prints findings and a table. The
# status is 1 when there was a finding. Usage: [JOBS=N] run_cases.sh FAULT_CAMPAIGN OPTION...
set -euo pipefail

export program=$1
shift
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
status=0
# Without the two lines that the wizard prints on its standard output at each start.
"$program" --plan "$folder/cases" "$@" | sed -E '/^(File|Product) Version: /d' || status=$?
[ "$status" -le 1 ] || exit "$status"
# For tools/progress, if tools/fault-campaign set the variable.
progress() {
    [ -z "${TOLVANE_PROGRESS:-}" ] || echo "PROGRESS $*" >&"$TOLVANE_PROGRESS"
}
export -f progress
progress of "$(wc -l <"$folder/cases")"

run_case() {
    local output status=0
    output=$(timeout 600 "$program" --case "$1" 2>&1) || status=$?
    if grep -E '^(FINDING|RESULT) ' <<<"$output" && [ "$status" -le 1 ]; then
        progress 1 "$status"
        return
    fi
    progress 1 1
    # 124 is a case that hangs, more than 128 a signal, and a sanitizer has a status of its own.
    printf 'FINDING  %s: it ended with %s; its last output:\n' "$1" "$status"
    tail -c 3000 <<<"$output"
    echo "RESULT died 1 0 0 0 0 1"
}
export -f run_case
xargs -d '\n' -P "${JOBS:-$(nproc)}" -I{} bash -c 'run_case "$1"' _ {} <"$folder/cases" | awk '
    function row(name,    text, column) {
        text = sprintf("%-20s", name)
        for (column = 1; column <= 6; ++column)
            text = text sprintf(" %9d", sums[name, column])
        return text
    }
    $1 != "RESULT" { print; fflush(); next }
    {
        names[$2]
        for (column = 1; column <= 6; ++column) {
            sums[$2, column] += $(column + 2)
            sums["all", column] += $(column + 2)
        }
    }
    END {
        printf "%-20s %9s %9s %9s %9s %9s %9s\n", "fault", "cases", "occurred", "cycled", "twice", "restarted", "findings"
        fflush()
        for (name in names)
            print row(name) | "sort"
        close("sort")
        print row("all")
        exit sums["all", 6] > 0 || sums["all", 2] * 2 < sums["all", 1]
    }' || status=1
exit "$status"
