# The built dvrsim, from its standard input and from another process.

sent() { run 0 dvrsim --send "$1"; }
# refused COMMAND LINE: what the command's refusal prints.
refused() {
    run 1 dvrsim --send "$1"
    is err "dvrsim: $2"
}
dvr_is() { dvrsim --send state | grep -F "\"state\": \"$1\""; }

test_updates_fails_and_refuses_by_command() {
    start dvr dvrsim --speed 200 --firmware 14.01.01.V0.00.01
    wait_for dvr_is normal
    refused 'card with image 1.2' "'1.2' is no version of an update image; allowed are 17 to 63\
 characters without spaces, such as 14.09.01.V1.02.03"
    sent 'card with image 15.01.01.V2.00.00'
    refused 'card in' 'a card is in already; take it out first'
    sent 'fault fail-at 57'
    sent reset
    wait_for dvr_is update-failed
    sent state
    contains out '"percent": 57' '"firmware": "14.01.01.V0.00.01"' '"image": "15.01.01.V2.00.00"'
    sent 'fault none'
    sent reset
    wait_for dvr_is update-finished
    sent 'card out'
    refused 'card out' 'there is no card to take out'
    sent reset
    wait_for dvr_is normal
    sent 'power off'
    sent state
    contains out '"state": "off"' '"running_state": "initializing"' '"picture": false' \
        '"installed": "15.01.01.V2.00.00"'
    refused reset 'the DVR is off; power it on'
    refused reboot 'the DVR is off; power it on'
    sent quit
    finish dvr 0 none
}

test_executes_its_standard_input() {
    # The last line has no line end.
    run 0 sh -c "printf 'power off\n\nfault slow 0\nreset\nstate\nhelp\nquit' | dvrsim"
    is err "dvrsim: '0' is not allowed after 'fault slow'; allowed is FACTOR (a whole number from 1 to 100)" \
        'dvrsim: the DVR is off; power it on'
    contains out '"state": "off"' '[dvr] reset'
    # A line that is too long is reported once, and no part of it is executed.
    run 0 sh -c "(head -c 1000000 /dev/zero; printf 'state\nquit\n') | dvrsim"
    is err 'dvrsim: a line of input is too long; at most 65536 bytes are allowed'
    has_lines out 1 || fail 'a part of the line was executed'
}

# The DVR's faults in its state after these commands.
faults_after() {
    { printf 'fault %s\n' "$@" && printf 'state\nquit\n'; } | dvrsim | sed -n '/"faults": {/,/^    }/p'
}

test_each_fault_is_set_and_cleared_alone() {
    local set clear value all=()
    faults_after none >none
    while IFS='|' read -r set clear value; do
        faults_after "$set" >changed
        is <(diff none changed | sed -n 's/^> *//p' | tr -d '\n' | sed 's/,\?$/\n/') "$value"
        faults_after "$set" "$clear" >cleared
        diff none cleared >&2 || fail "'$clear' does not clear '$set'"
        all+=("$set")
    done <"$tests/faults.txt"
    faults_after "${all[@]}" >changed
    has_lines <(grep -Fxf none changed) 2 || fail 'a fault cleared another'
    faults_after "${all[@]}" none >cleared
    diff none cleared >&2 || fail "'fault none' does not clear all"
}

# image_is JSON: what dvrsim reads as the image of the card in the folder "card".
image_is() {
    printf 'card in card\nstate\nquit\n' | dvrsim >state
    contains state "\"image\": $1"
}

test_reads_only_a_well_formed_image() {
    local v17=14.09.01.V1.02.03 v63 content image
    v63=$(printf 'v%.0s' {1..63})
    mkdir card
    while IFS='|' read -r content image; do
        # shellcheck disable=SC2059
        printf "$content" >card/gp_cardvr_upgrade.bin
        image_is "$image"
    done <<END
TOLVANE DVR IMAGE $v17\nrest|"$v17"
TOLVANE DVR IMAGE $v63\n|"$v63"
TOLVANE DVR IMAGE ${v63}v\n|null
TOLVANE DVR IMAGE 14.09.01.V1.02.0\n|null
TOLVANE DVR IMAGE 14.09.01 V1.02.03\n|null
TOLVANE DVR IMAGE $v17\r\n|null
TOLVANE DVR IMAGE $v17|null
TOLVANE DVR image $v17\n|null
|null
END
    head -c 5000000 /dev/zero >card/gp_cardvr_upgrade.bin
    image_is null
    # Opening a pipe without a writer would block for ever. The image may have another name.
    rm card/gp_cardvr_upgrade.bin
    mkfifo card/gp_cardvr_upgrade.bin
    image_is null
    printf 'TOLVANE DVR IMAGE %s\n' $v17 >card/gp_card_upgrade.bin
    image_is "\"$v17\""
    rm -r card
    printf 'card in card\nquit\n' | dvrsim >/dev/null 2>err
    is err "dvrsim: 'card' is not a folder"
}

test_makes_a_limited_number_of_cards() {
    local version=14.09.01.V1.02.03
    {
        printf "card with image $version.%s\ncard out\n" {0..99}
        printf 'card with image 1.2\ncard with image %s\nstate\nquit\n' $version
    } | dvrsim >out 2>err
    has_lines err 2
    contains err 'no more cards can be made; allowed are 100'
    contains out '"in": false'
}

test_reports_a_problem_in_one_line() {
    run 1 dvrsim /dev/no-such-tty
    is err 'dvrsim: /dev/no-such-tty: cannot open the serial device: No such file or directory'
    echo kept >file
    run 1 dvrsim --link file
    is err 'dvrsim: file exists and is not a symlink; give --link another path'
    is file kept
}
