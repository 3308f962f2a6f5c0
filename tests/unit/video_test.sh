# Videos of runs, and what happens without a working ffmpeg.

write_scenario() {
    cat >touch.scenario <<'SCENARIO'
wait button "Power On"
wait 2s
press at 400 300
wait 2s
release
wait 1s
SCENARIO
}

# stream_of FILE FIELDS: what ffprobe reads there.
stream_of() {
    ffprobe -v error -of csv=p=0 -show_entries "stream=$2" "$1"
}

# within NUMBER LEAST MOST
within() {
    awk -v number="$1" -v least="$2" -v most="$3" 'BEGIN { exit !(number >= least && number <= most) }' ||
        fail "$1 is not from $2 to $3"
}

test_a_scenario_becomes_a_video_that_shows_the_finger() {
    write_scenario
    local file
    for file in run.mp4 run.gif; do
        run 0 tolvane --scenario touch.scenario --video "$file"
        is <(stream_of "$file" width,height) 800,480
        # The run takes 5 s, its last picture stands for one more.
        within "$(stream_of "$file" duration)" 5.9 6.6
        # While the finger is down, and after it.
        for back in 3.2 1.2; do
            ffmpeg -v error -sseof "-$back" -i "$file" -frames:v 1 -y "$back.png"
            convert "$back.png" -format '%[fx:p{400,300}.intensity > 0.3]\n' info:
        done >finger
        is finger 1 0
    done
}

test_a_replay_becomes_a_video_as_fast_as_asked() {
    write_scenario
    run 0 tolvane --scenario touch.scenario --record run.rec
    run 0 tolvane --replay run.rec --video fast.apng --video-speed 2
    # 20 pictures in 2 s of the run, and its last picture for 1 s.
    within "$(ffprobe -v error -of csv=p=0 -count_frames -show_entries stream=nb_read_frames fast.apng)" 70 75
}

test_no_video_is_one_line_and_leaves_no_file() {
    write_scenario
    run 2 tolvane --auto --video run.avi
    is err "tolvane: --video: 'run.avi' is not allowed; allowed are files that end with .mp4, .webm, .gif, .apng, .png and .webp"
    run 1 tolvane --scenario touch.scenario --video missing/run.mp4
    contains err 'tolvane: missing/run.mp4: No such file or directory'
    local tolvane
    tolvane=$(command -v tolvane)
    mkdir none broken
    run 1 env PATH="$folder/none" "$tolvane" --scenario touch.scenario --video run.mp4
    printf '#!/bin/sh\necho "no room" >&2\nexit 3\n' >broken/ffmpeg
    chmod +x broken/ffmpeg
    contains err 'tolvane: ffmpeg, which encodes videos, is not installed; '
    run 1 env PATH="$folder/broken:$PATH" tolvane --scenario touch.scenario --video run.mp4
    is err 'tolvane: run.mp4: ffmpeg has ended: no room'
    ln -s /dev/full full.gif
    run 1 tolvane --scenario touch.scenario --video full.gif
    is err 'tolvane: full.gif: ffmpeg failed with status 1: Error writing trailer of file:full.gif: No space left on device'
    [ ! -e run.mp4 ] || fail 'half a video is left'
}
