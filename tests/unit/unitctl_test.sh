# The built unitctl against running units.

# start_unit NAME OPTION...: starts a unit and waits for its window.
start_unit() {
    start "$1" tolvane --headless --speed 10 "${@:2}"
    wait_for grep -F -e ---CMainFrame::OnCreate "$1.out"
}
state_has() {
    unitctl state >state
    contains state "$@"
}
# has_only FILE KINDS: each line is an event of these kinds, a regular expression.
has_only() { ! grep -vE "^ *[0-9.]+  ($2) " "$1" >&2 || fail "$1 has the lines above"; }
# in_order FILE TEXT...: lines with these texts follow one another.
in_order() {
    local text line
    for text in "${@:2}"; do
        line=
        while [[ $line != *"$text"* ]]; do
            read -r line <&3 || fail "'$text' is not at its position in the file $1"
        done
    done 3<"$1"
}

test_executes_commands_and_watches_their_events() {
    local request
    start_unit unit
    start watch unitctl watch all
    watches() { unitctl press at 1 1 && unitctl release && test -s watch.out; }
    wait_for watches
    wait_for unitctl request suspend
    for request in suspend resume off; do
        run 0 unitctl request $request
        contains out "  $request acknowledged"
    done
    # The window exists before its first painting.
    shows_the_button() { unitctl texts | grep -x 'Power On'; }
    wait_for shows_the_button
    mkdir 'my card'
    run 0 unitctl tap 'Power On' for 2s
    run 0 unitctl press at 1 1
    run 0 unitctl release
    run 0 unitctl power off
    run 0 unitctl battery 40 flag 2
    run 0 unitctl card in 'my card'
    run 1 unitctl 'card in'
    is err 'unitctl: a card is in already; take it out first'
    run 2 unitctl power maybe
    is err "unitctl: 'maybe' is not allowed after 'power'; allowed is on or off"
    run 0 unitctl screenshot screen.png
    [ "$(stat -c %s screen.png)" -gt 1000 ] || fail 'the picture of the screen is too small'
    run 0 unitctl complete request
    is out suspend resume off
    run 0 unitctl help
    grep -qx 'screenshot FILE' out || fail 'the help lacks a command'
    # A damaged frame for the DVR is counted.
    damage_is_counted() {
        unitctl line inject A55A10801000010001A1 to-dvr
        unitctl state | grep -E '"damaged_frames": [1-9]'
    }
    wait_for damage_is_counted
    state_has '"external": false' '"battery_percent": 40' '"step": -1' '"plugged": true' '"texts": [' \
        '"place": ['
    wait_for grep -F "card       in \"$folder/my card\"" watch.out
    in_order watch.out 'request    _KESTA_Technology,Inc._All_APP_PowerSuspend_Request_' \
        'broadcast  _KESTA_Technology,Inc._Sodrey_PowerSuspend_Acknowledge_ 0x0 0x0' \
        PowerResume_Acknowledge_ PowerOFF_Acknowledge_ 'supply     line 0 battery 2 percent 40'
    # A tap that still runs does not prevent the unit from closing.
    start tap unitctl tap at 2 2 for 60min
    wait_for grep 'finger     down 2 2' watch.out
    run 1 unitctl press at 1 1
    is err 'unitctl: the finger is in the middle of a tap'
    finish unit 0
    finish watch 3 none
    finish tap 3 none
    is watch.err 'unitctl: the server has hung up'
    [ ! -e tolvane/unit.sock ] || fail 'the socket is left'
}

test_the_python_client_controls_a_unit() {
    start_unit unit
    PYTHONPATH=$root/tools/python run 0 python3 -c '
import tolvane

with tolvane.Unit() as unit, tolvane.Unit() as watcher:
    events = watcher.watch("all")
    for _ in range(100):  # The watch has begun when an event comes.
        unit.do("press at 1 1")
        unit.do("release")
    print(next(event for event in events if event["text"].startswith("down "))["kind"])
    unit.run(["wait button \"Power On\"", "say hello"])
    unit.do("line inject A55A80800E000100020E to-unit")
    # No indication of the DVR is a query.
    frame = next(event for event in events if event.get("type") == "IND" and event["query"])
    print(frame["direction"], frame["checksum_good"], frame["payload"])
    print(unit.state()["unit"]["name"])
    unit.wait("button \"Power On\" within 5s")
    try:
        unit.expect("step 6")
    except tolvane.Failed as problem:
        print(str(problem).split(";")[0])
    for command in "power maybe", "card out":
        try:
            unit.do(command)
        except tolvane.Failed as problem:
            print(type(problem).__name__, problem)
try:
    tolvane.Unit("other")
except tolvane.NotRunning as problem:
    print("NotRunning")
'
    is out finger 'to-unit True 00' unit 'expect step 6: not true' \
        "WrongUsage 'maybe' is not allowed after 'power'; allowed is on or off" \
        'Failed there is no card to take out' NotRunning
    finish unit 0
}

test_the_state_is_utf8_although_a_folder_is_not() {
    mkdir $'card\xFF'
    start_unit unit --card $'card\xFF'
    run 0 unitctl card in
    state_has $'card\xEF\xBF\xBD"'
    finish unit 0
}

test_watches_kinds_of_events_and_reports_a_missing_acknowledgement() {
    start_unit unit
    start frames unitctl watch frames
    start broadcasts unitctl watch broadcasts
    start log unitctl watch log
    all_watch() {
        unitctl dvr indicate DVR_RunningState 02
        unitctl request resume
        test -s frames.out -a -s broadcasts.out -a -s log.out
    }
    wait_for all_watch
    # The program's thread ends when its wait for requests fails.
    run 0 unitctl fault call WaitForMultipleObjects always
    run 0 unitctl request resume
    run 1 unitctl request resume
    is err 'unitctl: no acknowledgement came within 2 s'
    finish unit 0
    has_only frames.out frame
    has_only broadcasts.out 'broadcast|request'
    has_only log.out log
}

test_prints_what_faults_were_set() {
    start_unit unit
    run 0 unitctl fault line corrupt checksum of FW_Upgrade_Version indications
    is out 'fault 1: corrupt checksum of FW_Upgrade_Version indications'
    run 0 unitctl fault line drop Time requests to-dvr
    run 0 unitctl fault line clear 1
    is out
    run 0 unitctl fault line list
    is out 'fault 2: drop Time requests to-dvr, applied to 0 of 0'
    # Faults are listed as the commands that set them.
    run 0 unitctl fault clear
    while read -r fault; do
        eval "run 0 unitctl $fault"
    done <"$tests/faults.txt"
    run 0 unitctl fault list
    diff "$tests/faults.txt" out >&2 || fail 'other faults are listed than were set'
    run 0 unitctl fault clear
    # Not sooner: a failing call leaves something open at the end.
    run 0 unitctl fault any-call after 1000000 always
    run 0 unitctl fault driver SCA0: late 10min
    run 0 unitctl fault list
    grep -qxE 'fault any-call after [0-9]+ always' out || fail 'the fault of any call is not listed'
    grep -qxE 'fault driver SCA0: late [56][0-9]{5}(\.[0-9]+)?ms' out || fail 'a late driver is not listed'
    run 0 unitctl fault call clear
    run 0 unitctl fault driver SCA0: late 1ms
    nothing_is_listed() { [ -z "$(unitctl fault list)" ]; }
    wait_for nothing_is_listed
    run 1 unitctl fault driver XYZ1: missing
    is err 'unitctl: there is no driver XYZ1:; allowed is one of COM9:, DVR1:, SCA0:'
    run 1 unitctl fault driver SCA1: missing
    contains err '; did you mean SCA0:?'
    finish unit 0
}

test_runs_scenarios_on_a_running_unit() {
    local text problem
    start_unit unit --out "$folder/left"
    printf 'tap "Power On"\n' >press.scenario
    printf 'wait button "Power On"\ninclude press.scenario\nwait button OK\n' >flow.scenario
    run 0 unitctl run flow.scenario
    begins out $'> wait button "Power On"\n> tap "Power On"\n'
    contains out 'flow: passed, '
    while IFS='|' read -r text problem; do
        echo "$text" >wrong.scenario
        run 1 unitctl run wrong.scenario
        begins err "unitctl: $folder/wrong.scenario:1: $problem"
    done <<'END'
tap 'Power On'|tap "Power On": there is no button "Power On"; the buttons are OK
card inn|'inn' is not allowed after 'card'
seed 3|seed 3: applies when a unit starts
END
    [ "$(stat -c %s left/wrong/state.json)" -gt 100 ] || fail 'the state was not saved'

    # One at a time; a scenario is aborted when its client hangs up.
    printf 'power on\nwait 60min\n' >long.scenario
    start first unitctl run long.scenario
    wait_for test -s first.out
    run 1 unitctl run press.scenario
    is err 'unitctl: the unit already runs the scenario long; allowed is one at a time'
    finish first 137 KILL
    echo 'wait 1ms' >short.scenario
    wait_for unitctl run short.scenario
    # A running scenario does not prevent the unit from closing.
    start last unitctl run long.scenario
    wait_for test -s last.out
    finish unit 0
    finish last 3 none
}

test_reaches_units_by_name_and_replaces_a_killed_unit() {
    run 3 unitctl --unit other state
    is err "unitctl: no unit is running as 'other'; start one with: tolvane"
    start_unit first
    start_unit other --unit garage-2
    run 0 unitctl --unit garage-2 power off
    state_has '"external": true'
    finish first 137 KILL
    run 3 unitctl state
    is err 'unitctl: no unit is running; start one with: tolvane'
    start_unit next
    state_has '"external": true'
    run 0 unitctl --unit garage-2 state
    contains out '"external": false'
    finish other 0
    finish next 0
}

test_an_unsafe_runtime_folder_prevents_only_the_socket() {
    mkdir -m 777 tolvane
    start_unit unit
    finish unit 0
    is unit.err "tolvane: no control socket: $folder/tolvane: other users can access the folder;\
 it must have the permissions 0700"
}

test_waits_and_expects_as_single_commands() {
    start_unit unit
    run 0 unitctl wait button 'Power On'
    is out
    run 0 unitctl tap 'Power On'
    run 0 unitctl wait button OK within 5s
    run 0 unitctl expect no text 'no such text'
    run 0 unitctl wait 20ms
    run 1 unitctl expect step 6
    begins err 'unitctl: expect step 6: not true; the step is '
    run 1 unitctl wait text 'no such text' within 10ms
    begins err 'unitctl: wait text "no such text" within 10ms: not true within 0.01 s'
    # Events count since the unit began or since the last forget, not only since the command.
    run 0 unitctl press at 1 1
    run 0 unitctl release
    run 0 unitctl expect log '---CMainFrame::OnCreate'
    run 0 unitctl forget
    run 0 unitctl expect no log '---CMainFrame::OnCreate'
    run 1 unitctl expect log '---CMainFrame::OnCreate'
    run 2 unitctl expect log
    run 2 unitctl wait button
    run 0 unitctl say hello
    is out hello
    run 1 unitctl seed 3
    is err "unitctl: 'seed 3' applies when a unit starts, and this one runs already"
    run 1 unitctl repeat 3
    is err "unitctl: 'repeat 3' is a line of scenario files only; unitctl run FILE runs such a file"
    run 0 unitctl help
    grep -qx 'wait DURATION' out || fail 'the help lacks wait'
    # Several can wait at a time; one whose client has gone does not disturb the others.
    start first unitctl wait text 'no such text' within 60min
    start second unitctl wait log 'no such line' within 60min
    finish first 137 KILL
    run 0 unitctl wait 1ms
    finish unit 0
    finish second 3 none
}

test_quits_and_restarts() {
    run 3 unitctl quit
    start_unit unit --record unit.rec --log unit.log
    run 0 unitctl wait button 'Power On'
    run 0 unitctl restart
    begun_again() { grep -F -e ---CMainFrame::OnCreate unit.log.2 && unitctl wait button 'Power On'; }
    wait_for begun_again
    run 0 unitctl quit
    finish unit 0 none
    for recording in unit.rec unit.rec.2; do
        tail -n 1 "$recording" >out
        grep -qxE ' *[0-9.]+ +end' out || fail "$recording is not complete"
    done
    printf 'quit\n' >quit.scenario
    run 1 tolvane --scenario quit.scenario
    contains err 'this unit ends with its scenario'
}

# time_of_unit: the unit's time in the file state.
time_of_unit() {
    unitctl state >state
    grep -E '^  "time": ' state
}

test_pauses_steps_and_paces_the_clock() {
    local before
    start_unit unit
    run 0 unitctl wait button 'Power On'
    run 0 unitctl clock pause
    state_has '"paused": true' '"speed": 10'
    before=$(time_of_unit)
    # What needs no time still works; what needs time waits for it.
    run 0 unitctl screenshot screen.png
    start late unitctl wait 10ms
    start events unitctl watch all
    run 0 unitctl power off
    run 0 unitctl dvr reset
    run 0 unitctl texts
    [ "$(time_of_unit)" = "$before" ] || fail 'the time of a paused unit passes'
    [ -e "/proc/${processes[late]}" ] || fail 'a wait ended while the time stood'
    # A step ends at the next event, which it prints; the DVR's start has some to come.
    run 0 unitctl clock step
    grep -qE '^ *[0-9.]+  [a-z]+ ' out || fail 'the step printed no event'
    state_has '"paused": true'
    run 0 unitctl clock speed 20
    state_has '"paused": true' '"speed": 20'
    run 0 unitctl clock resume
    state_has '"paused": false'
    finish late 0 none
    run 2 unitctl clock speed 1001
    contains err 'a number from 0.1 to 1000'
    # A paused unit ends as any other.
    run 0 unitctl clock pause
    run 0 unitctl quit
    finish unit 0 none
    finish events 3 none
    for command in pause resume step 'speed 2'; do
        echo "clock $command" >clock.scenario
        run 1 tolvane --scenario clock.scenario
        contains err 'the clock of a simulated unit has no pace; allowed on a free-running unit'
    done
}
