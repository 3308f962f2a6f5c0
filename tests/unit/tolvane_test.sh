# The built command tolvane: updates by itself, scenarios, and a real DVR's line.

test_updates_by_itself_with_a_picture_of_every_screen() {
    local picture
    run 0 tolvane --auto --screens screens --log log
    is err
    contains log $'FW_Upgrade_Version_IND, Percent:100%\r'
    for picture in 01-power-on 03-notice-check-card 11-updating-half 13-notice-remove-card \
        17-result-success; do
        [ "$(stat -c %s screens/$picture.png)" -gt 1000 ] || fail "the picture $picture"
    done
}

# start_on_a_line OPTION...: a unit on a line whose other end is silent.
start_on_a_line() {
    start line dvrsim --off --link "$folder/line"
    wait_for test -e line
    start unit tolvane --headless --speed 10 --com9 "$folder/line" "$@"
    wait_for grep -F -e ---CMainFrame::OnCreate unit.out
}

test_closes_at_a_signal_and_asks_for_what_a_real_dvr_needs() {
    local signal
    for signal in INT TERM; do
        start_on_a_line
        run 0 unitctl dvr reset
        run 0 unitctl card in
        run 0 unitctl card out
        finish unit 0 $signal
        finish line 0
        is unit.err \
            "tolvane: The program resets the DVR: switch the DVR's power off and on." \
            'tolvane: Put the SD card with the update image into the DVR.' \
            'tolvane: Take the SD card out of the DVR.'
        # The last one is printed at the end of an orderly close.
        contains unit.out 'File Version: 0.7.0.0' ---CPowerDetector::DeInit
    done
}

test_ends_at_once_without_the_line_or_the_display_that_was_asked_for() {
    local problem environment command
    while IFS='|' read -r problem environment command; do
        run 1 env -u DISPLAY -u WAYLAND_DISPLAY $environment $command
        is err "tolvane: $problem"
        is out
    done <<'END'
/dev/no-such-tty: cannot open the serial device: No such file or directory||tolvane --headless --com9 /dev/no-such-tty
/dev/null: not a serial device||tolvane --auto --com9 /dev/null
no display: DISPLAY=:77 cannot be used: x11 not available; --auto and --headless need none|DISPLAY=:77|tolvane
END
}

test_output_that_cannot_be_written_is_status_one() {
    local problem command
    while IFS='|' read -r problem command; do
        run 1 sh -c "$command --out left --auto"
        contains err "tolvane: $problem"
    done <<'END'
standard output: No space left on device|exec >/dev/full; tolvane --screens new --quiet
standard output: No space left on device|exec >/dev/full; tolvane --screens new
/dev/full: No space left on device; the debug output in it is cut off|tolvane --screens new --quiet --log /dev/full
/dev/full: No space left on device|tolvane --screens new --quiet --record /dev/full
update.scenario:6: picture power-on: /dev/null/01-power-on.png: Not a directory|tolvane --screens /dev/null
the SD card's folder cannot be made: the folder of temporary files: Not a directory|TMPDIR=/dev/null tolvane
END
}

test_the_reset_command_runs_once_more_for_all_resets_during_a_run() {
    local work='echo run >>runs; until [ -e go ]; do sleep 0.01; done; echo end >>ends' number
    resets() { [ "$(grep -cE 'dvr +reset$' watch.out)" = "$1" ]; }
    start_on_a_line --reset-command "$work"
    start watch unitctl watch all
    watches() { unitctl power off && unitctl power on && test -s watch.out; }
    wait_for watches
    start reset0 unitctl dvr reset
    wait_for test -s runs
    for number in 1 2 3; do
        start reset$number unitctl dvr reset
    done
    wait_for resets 4
    is runs run
    touch go
    for number in 0 1 2 3; do
        finish reset$number 0 none
    done
    is ends end end
    run 0 unitctl dvr reset
    is runs run run run
    is ends end end end
    finish unit 0
    finish watch 3 none
}

test_a_failed_reset_command_is_reported() {
    local work how
    while IFS='|' read -r work how; do
        start_on_a_line --reset-command "$work"
        run 1 unitctl dvr reset
        is err "unitctl: the reset command $how: $work"
        is unit.err "tolvane: the reset command $how: $work"
        finish unit 0
        finish line 0
    done <<'END'
exit 3|failed with status 3
kill -9 $$|was ended by signal 9
END
}

test_a_scenario_reports_its_failure_and_saves_what_it_left() {
    local passes=$folder/passes.scenario fails=$folder/fails.scenario wrong=$folder/wrong.scenario
    printf 'wait button "Power On"\nwait 2s\n' >"$passes"
    printf 'seed 9\nwait button "Power On"\nexpect step result\n' >"$fails"
    printf '# fine\nwait step 9\n' >"$wrong"

    run 0 tolvane --out left --scenario "$passes" "$passes"
    is err
    contains out 'passes: passed, 2.' '2 of 2 passed in '
    [ ! -e left ] || fail 'a scenario that passed left something'

    run 1 tolvane --out left --scenario "$fails" "$passes"
    begins err "tolvane: $fails:3: expect step result: not true; the step is -1, power on"$'\n'
    contains err 'seed 9; saved in left/fails'
    contains out 'fails: failed, ' 'passes: passed, '
    contains left/fails/debug.log ---CMainFrame::OnCreate
    contains left/fails/failure.txt 'seed 9'
    contains left/fails/screen.png PNG
    run 1 tolvane --out other --quiet --junit results.xml --scenario "$fails" "$passes"
    python3 - >junit <<'END'
import xml.etree.ElementTree
suites = xml.etree.ElementTree.parse("results.xml").getroot()
print(suites.get("tests"), suites.get("failures"))
for case in suites.iter("testcase"):
    failure, output = case.find("failure"), case.findtext("system-out", "")
    print(case.get("name"), failure is not None and failure.get("message").split(": ", 1)[1],
          "---CMainFrame::OnCreate\n" in output)
END
    is junit '2 1' 'fails expect step result: not true; the step is -1, power on True' 'passes False False'
    grep -qxE '1 of 2 passed in [0-9.]+ s' out && has_lines out 1 || fail 'there is more than the summary'
    # The report goes when the scenario passes; what else is in its folder stays.
    touch left/fails/mine
    cp "$passes" "$fails"
    run 0 tolvane --out left --quiet --scenario "$fails"
    is <(ls left/fails) mine

    run 2 tolvane --out left --scenario "$passes" "$wrong"
    is err "tolvane: $wrong:2: '9' is not allowed after 'wait step'; allowed is power-on, check-card,\
 insert-card, updating, wait, remove-card, result, reopen or STEP (a whole number from -1 to 6)"
    is out
}

test_a_seed_repeats_a_run_and_the_command_line_has_priority() {
    local run=0 seed
    printf '%s\n' 'seed 9' 'wait button "Power On"' 'tap "Power On"' 'wait button OK' 'tap OK' \
        'wait button Next' 'expect step result' >flow.scenario
    for seed in 4 4 5; do
        run 1 tolvane --out left --scenario flow.scenario --seed $seed
        mv left/flow/events.log $((++run)).log
    done
    contains 1.log 'frame      to unit  '
    cmp 1.log 2.log >&2 || fail 'the same seed gave another run'
    ! cmp -s 2.log 3.log || fail 'another seed gave the same run'
}

test_free_running_over_a_pseudo_terminal() {
    run 0 tolvane --scenario "$tests/free-running.scenario" --com9 pty --speed "$free_speed"
}

# Unit and DVR are two processes with a serial line between them; the test is the operator at the DVR.
test_free_running_with_an_outside_dvr() {
    local put='tolvane: Put the SD card with the update image into the DVR.'
    local take='tolvane: Take the SD card out of the DVR.'
    dvr_is() { dvrsim --send state | grep -F "$1"; }
    start dvr dvrsim --link line --speed "$free_speed"
    wait_for dvrsim --send 'update-time 6s'
    start unit tolvane --auto --speed "$free_speed" --com9 "$folder/line" --screens screens \
        --reset-command 'dvrsim --send reset && echo reset >&2'
    wait_for has_lines unit.err 3
    is unit.err reset reset "$put"
    # A DVR that finds a card while it boots starts the update before Update is tapped.
    wait_for dvr_is '"state": "normal"'
    run 0 dvrsim --send 'card in'
    wait_for grep -F "$take" unit.err
    run 0 dvrsim --send 'card out'
    finish unit 0 none
    is unit.err reset reset "$put" reset "$take" reset
    dvr_is '"firmware": "14.09.01.V1.02.03"' || fail 'the new firmware does not run'
    finish dvr 0
}
