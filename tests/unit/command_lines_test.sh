# The options of all three commands.

test_manuals_list_exactly_the_options() {
    local command option='(^|[^a-z-])--[a-z][a-z0-9-]+'
    for command in tolvane unitctl dvrsim; do
        run 0 "$command" --help
        # Behind "Options:" options are at the start of a line; elsewhere they are prose.
        sed '1,/Options:/d' out | grep -E '^  -' | sed -E 's/^(  -[^ ]*).*/\1/' |
            grep -oE -e "$option" | grep -o -e '--.*' | sort -u >help
        # A dash is written \- in a manual.
        sed -n '/^\.SH OPTIONS/,/^\.SH [^O]/p' "$root/docs/man/$command.1" | tr -d '\\' |
            grep -oE -e "$option" | grep -o -e '--.*' | sort -u >manual
        [ "$(wc -l <help)" -ge 2 ] || fail "$command --help lists no options"
        diff help manual >&2 || fail "the manual of $command has other options than its help"
    done
}

test_errors_are_one_line_and_status_two() {
    local line
    while read -r line; do
        eval "run 2 $line"
        begins err "${line%% *}: "
        has_lines err 1 || fail "more than one line after: $line"
        is out
    done <<'END'
tolvane --nope
tolvane extra
tolvane --com9 foo
tolvane --speed 0
tolvane --speed 1e9
tolvane --speed fast
tolvane --seed -1
tolvane --card /no
tolvane --log
tolvane --reset-command true
tolvane --unit a/b
tolvane convert
tolvane convert /no/file
tolvane --auto convert /no/file --to text
tolvane --auto --record both.txt --trace ./both.txt
tolvane --scenario no.scenario --junit no.scenario
tolvane --headless --report report
tolvane --auto --report report --log report/update.html
dvrsim --nope
dvrsim /dev/a /dev/b
dvrsim --speed 0
dvrsim --seed -1
dvrsim --name a/b
dvrsim --firmware ''
dvrsim --send
dvrsim --card /no
dvrsim /dev/a --link /tmp/b
unitctl
unitctl --nope
unitctl --unit ../x state
unitctl tap $'\xFF'
unitctl run /no/file
END
}

test_the_reference_of_scenarios_is_the_document() {
    run 0 tolvane --help-scenarios
    cmp out "$root/docs/scenarios.md" >&2 || fail 'tools/update-reference brings docs/scenarios.md up to date'
}
