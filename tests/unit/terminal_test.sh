# What the commands show on a terminal: colours and the progress line.

# on_terminal STATUS COMMAND: a shell runs the command on a terminal of 64 columns; what it prints there
# goes to the file out.
on_terminal() {
    run "$1" script -qec "stty cols 64; $2" /dev/null
}

# shown FILE: what a terminal shows in the end of what was printed to it, without colours. Fails if a
# progress line is too long for a line of the terminal.
shown() {
    python3 - "$1" <<'END'
import re, sys
text = open(sys.argv[1], newline="").read().replace("\r\n", "\n")
for line in re.sub("\033\\[[0-9;]*m", "", text).split("\n")[:-1]:
    shown = ""
    *redrawn, last = line.split("\r")
    for part in redrawn:
        if len(part) > 63:
            sys.exit(f"too long: {part}")
    for part in redrawn + [last]:
        shown = part + shown[len(part):]
    print(re.sub(r"in [0-9.]+ s\b", "in TIME", shown.rstrip()))
END
}

test_a_terminal_shows_colours_and_progress_and_in_the_end_what_a_pipe_gets() {
    local colours progress environment command found
    printf 'wait button "Power On"\nwait 2s\n' >passes.scenario
    printf 'wait button "Power On"\nexpect step result\n' >fails.scenario
    printf 'PROGRESS of 3\nfirst\nPROGRESS 1 0\nPROGRESS 2 1\nsecond\n' >cases
    export TERM=xterm
    while IFS='|' read -r colours progress environment command; do
        run 0 sh -c "env $environment $command 2>&1 || true"
        cp out piped
        ! grep -q $'[\033\r]' piped || fail "a pipe gets control characters from: $command"
        on_terminal 0 "env $environment $command || true"
        is <(shown out) "$(shown piped)"
        [ "$(grep -c $'\033\\[[0-9;]*m' out)" -gt 0 ] && found=colours || found=
        [ "$found" = "$colours" ] || fail "colours: '$found', not '$colours', of $environment $command"
        grep -qE $'(^|\r)[^\r]+\r +\r' out && found=progress || found=
        [ "$found" = "$progress" ] || fail "progress: '$found', not '$progress', of $environment $command"
    done <<END
colours|progress||tolvane --out left --scenario passes.scenario fails.scenario
colours|progress|NO_COLOR=|tolvane --out left --scenario passes.scenario fails.scenario
|progress|NO_COLOR=1|tolvane --out left --scenario passes.scenario fails.scenario
||TERM=dumb|tolvane --out left --scenario passes.scenario fails.scenario
colours|||tolvane --out left --quiet --scenario passes.scenario fails.scenario
colours|progress||tolvane --auto --screens screens
colours|||tolvane --auto --screens screens --quiet
colours|||tolvane --nope
colours|||unitctl state
colours|||dvrsim --nope
|progress||sh -c '(sleep 0.2; cat cases) | $root/tools/progress soak'
||TERM=dumb|sh -c '(sleep 0.2; cat cases) | $root/tools/progress soak'
END
    on_terminal 1 'tolvane --out left --scenario passes.scenario fails.scenario'
    contains out 'scenario 1 of 2: passes: command 1 of 2' $'passes: \033[32mpassed\033[m, ' \
        $'\033[1;31mtolvane:\033[m \033[31mfails.scenario:2: expect step result: not true' \
        $'fails: \033[31mfailed\033[m, ' $'\033[31m1 of 2 passed\033[m in '
}

test_watch_colours_the_kinds_of_events() {
    start unit tolvane --headless --speed 10
    wait_for unitctl state
    start watch env TERM=xterm script -qefc 'unitctl watch all' /dev/null
    coloured() { unitctl power off && unitctl power on && grep $'\033\\[32msupply\033\\[m  *line 1' watch.out; }
    wait_for coloured
    run 0 unitctl quit
    finish unit 0 none
    finish watch 3 none
}
