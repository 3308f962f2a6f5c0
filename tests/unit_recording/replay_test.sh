# Recordings and their replays by the built command.

recordings=$root/tests/recordings
update=$recordings/update.recording

test_the_kept_recording_of_an_update_is_reproduced() {
    run 0 tolvane --replay "$update" --log log
    is err
    grep -qE "^$update: passed, 10 frames, 4 requests, 0 broadcasts, 8 screens equal; 6.1 s of unit time in [0-9.]+ s" out ||
        fail 'the summary is another'
    contains log 'FW_Upgrade_Version_IND, Percent:4%'
}

# A recording of a free run is compared with tolerance. The columns: the change, the output that differs, how
# many lines after the change, and what was recorded and replayed.
test_a_changed_line_is_the_first_difference() {
    local change what later recorded replayed line mode
    while IFS='|' read -r change what later recorded replayed; do
        sed -E "$change" "$update" >changed
        line=$(cmp "$update" changed || true)
        line=${line##*line }
        for mode in simulated 'free speed 1'; do
            sed -i "s/^mode .*/mode $mode/" changed
            run 1 tolvane --replay changed --screens screens
            contains out "changed:$((line + later)): failed, the replay differs in a $what; before it"
            grep -q "^  recorded .*$recorded" out || fail "it was not recorded: $recorded"
            grep -q "^  replayed .*$replayed" out || fail "it was not replayed: $replayed"
            contains out '  on the screen then: '
        done
    done <<'END'
0,/(to-dvr A5 5A 10 80 2E 00 01) 00 01 BE/s//\1 01 01 BF/|frame|0|A5 ... \[-01-\] ... |A5 ... {+00+} ...
0,/control 0x0881 02/s//control 0x0881 03/|request|0|\[-03-\]|{+02+}
0,/Update Percent : 3%/s//Update Percent : 8%/|screen|0|Update Percent : 8%|Update Percent : 3%
0,/Update Percent : 4%/s//Update Percent : 9%/|screen|0|Update Percent : 9%|Update Percent : 4%
0,/screen bce1/s//screen ace1/|screen|0|ace1|bce1
0,/80 00 2E 00 12 03 (.*) 05 23/s//80 00 2E 00 12 07 \1 05 27/|screen|1|Update Percent : 3%|Update Percent : 7%
0,/finger up/{//d}|screen|0|SDカードを抜いて下さい。|Power On
0,/^23\./s//22.000000 line to-dvr A5 5A 10 80 11 00 01 00 01 A1\n&/|frame|0|DVR_Mode query|nothing
s/^.* end$/26.110000 line to-dvr A5 5A 10 80 11 00 01 00 01 A1\n&/|frame|0|DVR_Mode query|nothing
END
}

test_frames_of_a_free_run_may_change_places() {
    sed '0,/80 11 00 01/{/80 10 00 01/{h;d};/80 11 00 01/G}' "$update" >changed
    ! cmp -s "$update" changed || fail 'nothing was changed'
    run 1 tolvane --replay changed --screens screens
    sed -i 's/^mode simulated/mode free speed 1/' changed
    run 0 tolvane --replay changed
}

test_every_input_of_a_unit_is_replayed() {
    run 0 tolvane --scenario "$recordings/inputs.scenario" --log alone
    run 0 tolvane --scenario "$recordings/inputs.scenario" --log recorded --record recording
    cmp alone recorded >&2 || fail 'recording changed the run'
    [ "$(stat -c %s recorded)" -gt 4000 ] || fail 'the program printed too little'
    contains recording PowerOFF_Acknowledge_ ' -> 170' ' clock forward 3600.000000'
    run 0 tolvane --replay recording --log replayed
    cmp recorded replayed >&2 || fail 'the replay printed something else'
}

test_a_recording_that_was_cut_off_is_replayed_up_to_there() {
    head -c $(($(stat -c %s "$update") / 2)) "$update" >cut
    run 0 tolvane --replay cut
    contains out ', where the recording was cut off'
    has_lines err 0 || fail 'the replay noted something else'
}

test_free_running_recordings_are_reproduced() {
    # The scenario's own speed is one that every build keeps up with.
    local line faster=()
    [ "$free_speed" -lt 8 ] || faster=(--speed "$free_speed")
    # Both record at the same time, as this waits for the host's clock.
    for line in sim pty; do
        start $line tolvane --scenario "$recordings/free.scenario" --com9 $line --record $line "${faster[@]}"
    done
    for line in sim pty; do
        finish $line 0 none
        run 0 tolvane --replay $line
        contains out ' equal; '
    done
}

test_a_difference_saves_the_screen_and_other_files_are_refused() {
    sed 's/Update Percent : 3%/Update Percent : 8%/' "$update" >changed
    run 1 tolvane --replay changed --screens screens
    contains screens/replay.png PNG
    # Whoever changes a frame by hand forgets its checksum.
    sed '0,/80 00 2E 00 12 03/s//80 00 2E 00 12 07/' "$update" >damaged
    run 1 tolvane --quiet --replay damaged
    contains out "  the frame given at line $(cmp "$update" damaged | grep -oE '[0-9]+$') has a bad checksum"
    echo 'tolvane recording 2' >newer
    run 2 tolvane --replay newer
    is err 'tolvane: newer:1: the recording has version 2; this tolvane reads version 1'
    run 1 tolvane --auto --record no/folder
    is err 'tolvane: no/folder: No such file or directory'
}
