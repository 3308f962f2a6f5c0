# Traces of runs and of recordings, and the tools that read them.

update=$root/tests/recordings/update.recording

# dissect FILE FIELD...: a line for each packet.
dissect() {
    local file=$1 fields=()
    shift
    tshark -X "lua_script:$root/tools/wireshark/tolvane.lua" -r "$file" -V >packets 2>warnings
    ! grep -vE '^Running as user "root"' warnings >&2 || fail 'tshark prints a warning'
    ! grep -iE 'lua error|dissector bug|malformed packet' packets >&2 || fail 'the dissector fails'
    while [ $# -gt 0 ]; do
        fields+=(-e "$1")
        shift
    done
    tshark -X "lua_script:$root/tools/wireshark/tolvane.lua" -r "$file" -T fields -E separator='|' \
        -E aggregator=';' "${fields[@]}" 2>/dev/null
}

test_a_network_analyzer_reads_the_frames_of_a_recording() {
    run 0 tolvane --auto --quiet --screens screens --record frames.rec
    run 0 tolvane convert frames.rec --to text
    run 0 tolvane convert frames.rec --to pcapng
    is err
    # The same frames as in the text, which has three decimals.
    sed -nE 's/^ *([0-9.]+)  frame +to (unit|DVR)  [A-Z]+  ([A-Za-z_]+).*  ok$/\1 to \2 \3/p' frames.txt >text
    [ "$(wc -l <text)" -ge 150 ] || fail 'too few frames'
    dissect frames.pcapng frame.time_epoch tolvane.direction tolvane.name |
        awk -F'|' '{ printf "%.3f %s %s\n", $1, $2, $3 }' >packet_lines
    is packet_lines "$(<text)"
    is <(dissect frames.pcapng tolvane.percent | grep .) $(seq 100)
    is <(dissect frames.pcapng tolvane.running_state | grep . | sort -u) 0 1 2
    is <(dissect frames.pcapng tolvane.card tolvane.card_percent | grep '[0-9]' | sort -u) '0|0' '1|42'
    is <(dissect frames.pcapng tolvane.version | grep . | sort -u) 14.06.12.V1.00.05 14.09.01.V1.02.03
    is <(dissect frames.pcapng frame.interface_name tolvane.type tolvane.checksum_good | sort -u) \
        'to DVR|0x10|1' 'to unit|0x20|1' 'to unit|0x80|1'
}

test_a_run_gives_the_trace_of_its_recording_with_its_faults() {
    local ending format
    cat >faults.scenario <<'END'
wait button "Power On"
fault line corrupt checksum of DVR_RunningState indications to-unit times 1
fault line drop StorageCardStatus indications times 1
fault line corrupt payload of query FW_Upgrade_Version requests to-dvr times 1
dvr reset
wait 6s
fault clear
line inject A55A80001A000101019B010203 to-unit
wait 1s
line inject A55A80 to-unit
wait 20ms
END
    for ending in pcapng json txt; do
        run 0 tolvane --scenario faults.scenario --record run.rec --trace run.$ending
        is err
    done
    for format in pcapng:pcapng perfetto:json; do
        run 0 tolvane convert run.rec --to ${format%:*} --output again
        # Recordings have no debug output.
        [ $format = pcapng:pcapng ] || sed -i '/"name":"log /d' run.json
        cmp run.${format#*:} again >&2 || fail "the trace as $format is not that of the recording"
    done
    run 0 tolvane convert run.rec --to text --output -
    is out "$(grep -vE '^ *[0-9.]+  (log|operator) ' run.txt)"
    dissect run.pcapng tolvane.direction tolvane.name tolvane.checksum_good tolvane.stray frame.comment |
        grep -vE '^to (unit|DVR)\|[A-Za-z_]+\|1\|\|$' | sed -E 's/fault ([0-9]) \(.*, /fault \1, /' >marked
    is marked 'to unit|DVR_RunningState|0||fault 1, 1 so far' '||||fault 2, 1 so far' \
        'to DVR|FW_Upgrade_Version|1||fault 3, 1 so far' 'to unit|||010203|' 'to unit|||a55a80|'
    for format in 'Wrong checksum, must be 0x0190' 'Bytes outside a frame' 'Incomplete frame'; do
        contains packets "$format"
    done
}

test_a_timeline_viewer_reads_a_run() {
    run 0 tolvane --auto --quiet --screens screens --trace run.json
    python3 - run.json >timeline <<'END'
import collections, json, sys

trace = json.load(open(sys.argv[1]))
assert trace["displayTimeUnit"] == "ms"
tracks, slices, counters, kinds = {}, collections.defaultdict(list), collections.defaultdict(list), collections.Counter()
free_from, last = {}, {}
for event in trace["traceEvents"]:
    phase, track = event["ph"], event.get("tid")
    assert phase in "MXBECi" and type(event["ts"]) is int and event["pid"] == 1 and event["name"], event
    if phase == "M":
        if event["name"] == "thread_name":
            tracks[track] = event["args"]["name"]
        continue
    if phase == "C":
        counters[event["name"]].append(event["args"]["percent"])
        continue
    assert track in tracks and event["ts"] >= last.get(track, 0), event
    last[track] = event["ts"]
    kinds[tracks[track]] += 1
    if phase == "X":
        assert event["dur"] >= 0 and event["ts"] >= free_from.get(track, 0), event
        free_from[track] = event["ts"] + event["dur"]
    elif phase == "B":
        slices[track].append(event["name"])
        if tracks[track] == "wizard step":
            print("step", event["name"])
    elif phase == "E":
        assert slices[track].pop() == event["name"], event
    else:
        assert event["s"] == "t", event
assert not any(slices.values()), slices
print("update percent", counters["update percent"] == list(range(1, 101)))
print("empty", sorted(set(tracks.values()) - set(kinds)))
END
    is timeline 'step power-on' 'step notice' 'step power-on' 'step check-card' 'step insert-card' \
        'step updating' 'step wait' 'step notice' 'step remove-card' 'step result' 'update percent True' \
        "empty ['faults', 'power requests and broadcasts']"
}

test_what_cannot_be_traced_is_one_line() {
    local status problem command
    cp "$update" good.rec
    head -n 20 "$update" | sed '$s/ .*/ nonsense/' >damaged.rec
    cp "$update" same.txt
    while IFS='|' read -r status problem command; do
        run "$status" sh -c "$command"
        contains err "tolvane: $problem"
        has_lines err 1 || fail "more than one line after: $command"
    done <<'END'
2|damaged.rec:20: 'nonsense' is not allowed|tolvane convert damaged.rec --to text
2|no.rec: No such file or directory|tolvane convert no.rec --to text
2|--to: 'csv' is not allowed; allowed are pcapng, perfetto and text|tolvane convert good.rec --to csv
2|--trace: 'run.csv' is not allowed; allowed are files that end with .pcapng, .json and .txt|tolvane --auto --trace run.csv
2|same.txt: the trace would replace its recording; allowed is another file|tolvane convert same.txt --to text
2|pcapng is binary and not for a terminal|script -qec 'tolvane convert good.rec --to pcapng --output - 2>&3' /dev/null 3>&2
1|/dev/full: No space left on device|tolvane convert good.rec --to perfetto --output /dev/full
1|standard output: No space left on device|tolvane convert good.rec --to pcapng --output - >/dev/full
1|no/folder.json: No such file or directory|tolvane --auto --quiet --trace no/folder.json
1|full.json: No space left on device|ln -s /dev/full full.json; tolvane --auto --quiet --screens new --trace full.json
END
}

test_the_dissector_has_the_names_of_the_program() {
    sed -nE 's/^ *COMMAND\((0x00[0-9A-F]{2}), (\w+),.*/\1 \2/p' "$root/dvrlink/Commands.h" >commands
    [ "$(wc -l <commands)" -ge 31 ] || fail 'too few commands'
    is <(sed -nE 's/^ +\[(0x00[0-9A-F]{2})\] = "(\w+)",$/\1 \2/p' "$root/tools/wireshark/tolvane.lua") \
        "$(<commands)"
}
