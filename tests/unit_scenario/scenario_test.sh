# Scenario files and their pictures, with the built command.

# scenario NAME LINE...: writes the file.
scenario() { printf '%s\n' "${@:2}" >"$1.scenario"; }
# fails NAME PROBLEM: the scenario's last line fails with a problem that begins so.
fails() {
    run 1 tolvane --out left --scenario "$1.scenario"
    begins err "tolvane: $1.scenario:$(wc -l <"$1.scenario"): $(tail -n 1 "$1.scenario"): $2"
}

test_includes_files_from_their_own_folders() {
    mkdir flows
    scenario main 'seed 7' 'include flows/begin.scenario' 'wait 3s'
    scenario flows/begin 'repeat 2' 'wait 1s' 'include end.scenario' 'end' 'expect text Nowhere'
    printf '\nwait 2s' >flows/end.scenario
    run 1 tolvane --out left --verbose --scenario main.scenario
    is <(grep -oE '> .*' out) '> wait 1s' '> wait 2s' '> wait 1s' '> wait 2s' '> expect text Nowhere'
    begins err 'tolvane: flows/begin.scenario:5: expect text Nowhere: not true'
    contains err 'seed 7; saved in left/main'
    # The place of a line that an included file contains.
    printf '\nexpect text Never' >flows/end.scenario
    run 1 tolvane --out left --scenario main.scenario
    begins err 'tolvane: flows/end.scenario:2: expect text Never: not true'
}

test_refuses_endless_includes() {
    local depth name problem
    scenario circle 'include ./circle.scenario'
    scenario open 'repeat 2'
    scenario leaves-open 'include open.scenario' 'wait 1s'
    for depth in {0..39}; do
        scenario $depth "include $((depth + 1)).scenario" "include $((depth + 1)).scenario"
    done
    scenario 40 "#$(printf '.%.0s' {1..20000})"
    while read -r name problem; do
        run 2 tolvane --scenario "$name.scenario"
        [[ $(<err) == *"$problem" ]] || fail "$name: the last problem is another"
    done <<'END'
circle circle.scenario includes itself
leaves-open open.scenario has no end there
0 including all included files
END
}

test_waits_and_prints_messages() {
    scenario waits 'repeat 3' 'wait 1.5s' "say 'so far'" 'end'
    run 0 tolvane --scenario waits.scenario
    is err 'tolvane: so far' 'tolvane: so far' 'tolvane: so far'
    contains out 'waits: passed, 4.5 s of unit time'
}

test_an_interrupted_scenario_reports_its_command() {
    scenario long 'wait 1s' 'wait 60min'
    start long tolvane --speed 100 --verbose --out left --scenario long.scenario
    wait_for grep -F '> wait 60min' long.out
    finish long 1 INT
    begins long.err 'tolvane: long.scenario:2: wait 60min: interrupted'
}

test_compares_pictures_and_saves_the_difference() {
    local file
    scenario first 'wait button "Power On"' 'wait 1s' 'expect screen first.png' 'expect graphics plain.png' \
        'picture a' 'picture b'
    run 0 tolvane --update-screens --screens pictures --scenario first.scenario
    [ -e pictures/01-a.png ] && [ -e pictures/02-b.png ] || fail 'the pictures have other names'
    run 0 tolvane --screens pictures --scenario first.scenario

    convert first.png -fill '#FF0001' -draw 'point 30,20' -draw 'point 29,22' other.png
    scenario other 'wait button "Power On"' 'wait 1s' 'expect screen other.png'
    fails other '2 pixels differ, from 29,20 to 30,22; see left/other/other-difference.png'
    compare -metric AE left/other/other-actual.png first.png null: >&2 || fail 'another actual picture'
    compare -metric AE left/other/other-expected.png other.png null: >&2 || fail 'another expected picture'
    is <(convert left/other/other-difference.png txt: | grep -oE '^(30,20|29,22): .*#FF2020|.*#FF2020' | wc -l) 2
    is <(convert left/other/other-difference.png -format '%[hex:p{30,20}]\n' info:) FF2020
    for file in failure.txt state.json screen.png debug.log events.log; do
        [ -e left/other/$file ] || fail "$file was not saved"
    done

    convert -size 1x1 xc:black small.png
    scenario small 'expect graphics small.png'
    fails small 'it is 800 x 480 pixels, expected 1 x 1'
    convert -size 4097x1 xc:black wide.png
    scenario wide 'expect screen wide.png'
    fails wide 'wide.png: the picture is 4097 x 1; at most 4096 x 4096 are allowed'
    scenario none 'expect screen none.png'
    fails none 'none.png: No such file or directory'
}
