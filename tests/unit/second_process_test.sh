# A second process of tolvane while the first one runs.

start_unit() { start "$1" tolvane --headless --speed 10 "${@:2}"; }
has_window() { grep -qF -e ---CMainFrame::OnCreate "$1.out"; }

test_free_running_brings_the_first_forward_and_ends_with_status_one() {
    export SDL_VIDEODRIVER=dummy DISPLAY=:0
    local option
    start first tolvane --speed 10
    wait_for has_window first
    for option in --headless --stats; do
        run 1 tolvane --speed 10 $option
        is err 'tolvane: another unit runs already; its window was brought forward'
        is out
    done
    # A unit with another name does not count.
    start_unit other --unit garage-2
    wait_for has_window other
    finish other 0
    finish first 0
    is first.err
}

test_free_running_one_of_two_started_together_runs() {
    one_has_a_window() { has_window 1 || has_window 2; }
    for _ in 1 2 3 4 5; do
        start_unit 1
        start_unit 2
        wait_for one_has_a_window
        local runs=1 ends=2
        has_window 1 || runs=2 ends=1
        finish $ends 1 none
        ! has_window $ends || fail 'both have a window'
        finish $runs 0
    done
}

# tools/soak sets the variable.
test_free_running_runs_after_the_first_was_killed() {
    local round rounds=${TOLVANE_KILLS:-12}
    second_has_decided() { has_window second || [ -s second.err ]; }
    for ((round = 0; round < rounds; ++round)); do
        start_unit first
        # At times from before its socket to after its window.
        sleep "0.$(printf %06d $((round * 84000 / rounds)))"
        ((round % 2)) || start_unit second
        finish first 137 KILL
        ((round % 2 == 0)) || start_unit second
        wait_for second_has_decided
        # A copy may learn of the window just before the first is killed.
        if has_window second; then
            finish second 0
        else
            finish second 1 none
        fi
        [ -z "${TOLVANE_PROGRESS:-}" ] || echo 'PROGRESS 1 0' >&"$TOLVANE_PROGRESS"
    done
}

test_free_running_ignores_a_first_that_hangs_and_takes_its_socket_later() {
    start_unit first
    wait_for has_window first
    kill -STOP "${processes[first]}"
    start_unit second
    wait_for has_window second
    finish first 137 KILL
    wait_for unitctl power off
    wait_for grep AC_LINE_OFFLINE second.out
    # The second is the first now.
    run 1 tolvane --headless --speed 10
    finish second 0
    is second.err
}
