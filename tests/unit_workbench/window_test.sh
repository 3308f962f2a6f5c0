#!/usr/bin/env bash
# The command's window on an X server in memory, with its mouse and keyboard.
# Usage: window_test.sh TOLVANE panel|kiosk|verdict
set -euo pipefail

tolvane=$1
test=$2
folder=$(mktemp -d)
cd "$folder"
server=
program=
trap 'kill $program $server 2>/dev/null || true; wait; rm -rf "$folder"' EXIT

fail() {
    echo "window_test: $1" >&2
    cat err >&2
    exit 1
}
# Repeats a check for at most five minutes: wait_for WHAT CHECK...
wait_for() {
    local what=$1 end=$((SECONDS + 300))
    shift
    until "$@"; do
        ((SECONDS < end)) || fail "waited in vain: $what"
        sleep 0.1
    done
}
expect() {
    [ "$2" "$3" "$4" ] || fail "$1: $2 $3 $4"
}

# -noreset: the server must outlive its first client.
Xvfb -displayfd 1 -nolisten tcp -noreset -screen 0 1280x800x24 >display 2>err &
server=$!
wait_for 'an X server' test -s display
DISPLAY=:$(cat display)
export DISPLAY HOME=$folder XDG_RUNTIME_DIR=$folder SDL_VIDEODRIVER=x11 SDL_RENDER_DRIVER=software
# The thread sanitizer does not see the threads and locks of a graphics driver.
export SDL_FRAMEBUFFER_ACCELERATION=0
# SDL unloads the X libraries before the leak check, so no suppression can name them.
export LSAN_OPTIONS=detect_leaks=0

# A first user's card would lie over the screen, and the letters act only on request.
mkdir -p .local/state/tolvane
printf 'introduced yes\nkeys on\n' >.local/state/tolvane/workbench
unset XDG_STATE_HOME

shown() { xdotool search --onlyvisible --name 'Tolvane - virtual unit' >/dev/null; }
# Starts the command with these options.
open() {
    "$tolvane" --log log "$@" >out 2>err &
    program=$!
    wait_for 'the window' shown
}
interrupt() {
    local status=0
    kill -INT "$program"
    wait "$program" || status=$?
    expect 'exit status' "$status" = 0
}
click() { xdotool mousemove "$1" "$2" click 1; }
click_screen() { click $((22 + $1)) $((12 + $2)); }
logged() { grep -qF -- "$1" log; }
# The newest card report that the program logged.
card_is() { [ "$(grep -o 'DVR_STORAGE_CARD_[A-Z_]*' log | tail -n 1)" = "DVR_STORAGE_CARD_$1" ]; }
expect_log() { wait_for "the log line $1" logged "$1"; }
# The hash of an area's pixels, WIDTHxHEIGHT+X+Y.
pixels() { import -silent -window root look.png && identify -format '%#' "look.png[$1]"; }
shows() { [ "$(pixels "$1")" = "$2" ]; }
shows_other() { ! shows "$@"; }
# How much of the area fulfils a condition on red, green and blue, 0 to 1.
share() { convert "$1" -fx "$2" -format '%[fx:mean]' info:; }
some() { expr "$(share "$1" "$2")" != 0 >/dev/null; }

case $test in
panel)
    open --speed 4
    expect_log DVR_RUNNING_STATE_NORMAL

    # The letters of a command typed into the panel are text, not keys.
    click 300 782
    xdotool type --delay 20 "screenshot $folder/screen.png"
    xdotool key Return
    wait_for 'the screenshot' test -s screen.png
    # P as a key would have saved another screenshot.
    [ ! -e tolvane.png ] || fail 'a letter acted as a key'

    # The window shows the same pixels above the task bar and its clock. Up recalls the command.
    same_screen() {
        xdotool key Up Return
        screen=$(identify -format '%#' 'screen.png[800x472+0+0]')
        shows 800x472+22+12 "$screen"
    }
    wait_for "the unit's screen" same_screen
    some screen.png 'r==1 && g==0 && b==0' || fail 'the screen has no red warning'
    expect 'colours of the panel' "$(identify -format %k 'look.png[430x800+850+0]')" -gt 50

    # The panel's button that inserts the card; then the key that removes it, after a click elsewhere
    # took the keyboard from the command line.
    click 984 296
    wait_for 'the card in the DVR' card_is PLUG_IN
    click_screen 5 5
    xdotool key c
    wait_for 'the DVR without a card' card_is PLUG_OUT
    # "Power On" and the notice's "OK".
    click_screen 500 438
    expect_log CNotify::OnInitDialog
    click_screen 700 438
    expect_log 'CNotify::OnBtnUp, (x, y) = (700, 438)'
    expect_log ---Mstar_C4_Scaler_SetWindow
    wait_for 'the video' shows_other 800x472+22+12 "$screen"

    # Two tabs of the dock; the head of the table shows which one is open.
    row=200x16+10+574
    serial_line=$(pixels $row)
    for _ in 1 2; do
        click 140 526
        wait_for 'the debug output' shows_other $row "$serial_line"
        click 50 526
        wait_for 'the serial line' shows $row "$serial_line"
    done

    # The unit's screen over the whole display, and back.
    xdotool key F11
    wait_for 'the full screen' shows_other $row "$serial_line"
    xdotool key Escape
    wait_for 'the panel' shows $row "$serial_line"

    # A window of any size.
    window=$(xdotool search --name 'Tolvane - virtual unit')
    xdotool windowsize "$window" 300 200
    wait_for 'the narrow window' shows_other $row "$serial_line"
    xdotool windowsize "$window" 1280 800
    wait_for 'the wide window' shows $row "$serial_line"
    interrupt
    expect 'errors' "$(cat err)" = ''
    expect 'the saved size' "$(grep window .local/state/tolvane/workbench)" = 'window 1280 800'
    ;;
verdict)
    # The window stays when the run is over: blue is the head of the card with the verdict.
    printf 'wait button "Power On"\n' >passes.scenario
    open --scenario passes.scenario --window
    verdict() { pixels 1x1 >/dev/null && some 'look.png[20x8+500+200]' 'b > 0.5 && r < 0.3'; }
    wait_for 'the verdict' verdict
    click 249 288
    wait_for 'the end of the first run' grep -q '^passes: passed' out
    # Before the second verdict the click is only a touch of the unit's screen.
    gone() { click 407 288 && ! kill -0 "$program" 2>/dev/null; }
    wait_for 'the end of the second run' gone
    status=0
    wait "$program" || status=$?
    expect 'exit status' "$status" = 0
    expect 'results' "$(grep -c '^passes: passed' out)" = 2
    ;;
kiosk)
    open --kiosk --stats
    # 800 x 480 fills 1280 x 768 of the display, and the red warning spans it. Scaling changes colours.
    spans() {
        local red='r > 0.88 && g < 0.13 && b < 0.13'
        import -silent -window root look.png &&
            some 'look.png[100x60+0+96]' "$red" && some 'look.png[100x60+1180+96]' "$red"
    }
    wait_for 'the red warning' spans
    for bar in 1280x16+0+0 1280x16+0+784; do
        expect "pixels that are not black in $bar" "$(share "look.png[$bar]" 'r + g + b > 0')" = 0
    done
    # "Power On": touch scales with the screen.
    click 800 717
    expect_log CNotify::OnInitDialog
    interrupt
    grep -q ' pictures in ' err || fail 'no statistics'
    ;;
esac
