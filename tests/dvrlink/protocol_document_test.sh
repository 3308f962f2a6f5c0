# The examples and the list of commands in docs/protocol.md.

# The program logs the examples to the unit as the document says, and the DVR acknowledges the others.
test_examples_are_what_program_and_dvr_understand() {
    local direction bytes log examples=0
    printf '%s\n' 'wait button "Power On"' 'wait 5s' >examples.scenario
    while IFS='|' read -r _ direction _ bytes log _; do
        bytes=$(tr -d '` ' <<<"$bytes")
        printf '%s\n' 'wait 1s' forget
        if [ "$direction" = ' to DVR ' ]; then
            echo "line inject $bytes to-dvr"
            echo "wait frame 0x${bytes:8:2} acknowledgement to-unit within 100ms"
        else
            echo 'fault dvr silent on'
            echo "line inject $bytes to-unit"
            grep -oE '`[^`]+`' <<<"$log" | sed -E 's/`(.*)`/wait log "\1" within 100ms/'
        fi
        examples=$((examples + 1))
    done < <(grep -E '^\| to (unit|DVR) \|' "$root/docs/protocol.md") >>examples.scenario
    [ "$examples" -ge 15 ] || fail "only $examples examples"
    run 0 tolvane --scenario examples.scenario
}

test_lists_the_commands_of_the_program() {
    sed -nE 's/^ *COMMAND\((0x00[0-9A-F]{2}), (\w+),.*/\1 \2/p' "$root/dvrlink/Commands.h" >commands
    [ "$(wc -l <commands)" -ge 31 ] || fail 'too few commands'
    is <(sed -nE 's/^\| (0x00[0-9A-F]{2}) \| `(\w+)` \|$/\1 \2/p' "$root/docs/protocol.md") \
        "$(<commands)"
}
