# The reports of runs, read as the documents that they are.

# show PAGE CLASS-OR-TAG...: checks that the page is whole by itself, then prints the texts of these
# elements, one a line.
show() {
    python3 - "$@" <<'END'
import base64, struct, sys, xml.etree.ElementTree, zlib

page, *wanted = sys.argv[1:]
with open(page, "rb") as file:
    assert file.readline() == b"<!DOCTYPE html>\n"
    root = xml.etree.ElementTree.parse(file).getroot()
ids = [element.get("id") for element in root.iter() if element.get("id")]
assert len(ids) == len(set(ids)), ids
for element in root.iter():
    assert element.tag not in ("script", "link", "iframe", "object"), element.tag
    assert not any(name.startswith("on") for name in element.keys()), element.attrib
    link = element.get("href", "")
    assert "href" not in element.keys() or link[1:] in ids or link.endswith(".html"), link
    assert "url(" not in (element.text or "") or element.tag != "style"
    if "src" in element.keys():
        kind, data = element.get("src").split(",")
        assert kind == "data:image/png;base64", kind
        png = base64.b64decode(data, validate=True)
        assert png.startswith(b"\x89PNG\r\n\x1a\n"), png[:8]
        width, height, depth, colours = struct.unpack(">IIBB", png[16:26])
        at, pixels = 8, b""
        while at < len(png):
            size, chunk = struct.unpack(">I4s", png[at:at + 8])
            pixels += png[at + 8:at + 8 + size] if chunk == b"IDAT" else b""
            at += 12 + size
        assert (width, height, depth, colours) == (800, 480, 8, 2)
        assert len(zlib.decompress(pixels)) == height * (1 + 3 * width)
for element in root.iter():
    if element.tag in wanted or set(wanted) & set(element.get("class", "").split()):
        print("".join(element.itertext()).strip())
END
}

test_a_page_shows_why_a_run_failed() {
    mkdir one other
    cat >"one/a run.scenario" <<END
# <not> "markup" & more
fault line corrupt checksum of DVR_RunningState indications to-unit times 1
fault call SetEvent times 1
include $root/tests/scenarios/flows/to-updating.scenario
wait percent at least 20
power off
expect text "<b>&'none'</b>"
END
    printf 'wait 1s\n' >"other/a run.scenario"
    printf 'wait 1s\nexpect step result\n' >one/part.scenario
    printf 'include part.scenario\n' >one/index.scenario
    run 1 tolvane --quiet --out left --report report --scenario "one/a run.scenario" \
        "other/a run.scenario" one/index.scenario
    cd report
    is <(ls) 'a run-2.html' 'a run.html' index-2.html index.html
    is <(grep -o 'href="[^"]*"' index.html) 'href="a%20run.html"' 'href="index-2.html"' 'href="a%20run-2.html"'
    is <(show index.html h1) 'failed 1 of 3 passed'
    is <(show index.html tr | sed -E 's/[0-9.]+ s[0-9.]+ s/: /; s/; the step.*//') \
        'VerdictRunUnit timeReal timeFailure' \
        "faileda run: one/a run.scenario:7: expect text \"<b>&'none'</b>\": not true" \
        'failedindex: one/part.scenario:2: expect step result: not true' 'passeda run: '
    is <(show 'a run.html' h1) 'failed a run'
    show 'a run.html' comment >comments
    contains comments '# <not> "markup" & more'
    is <(show 'a run.html' damaged | sed 's/^[0-9.]*//') \
        'to unitINDDVR_RunningState0 initializingchecksum bad: FE6F, must be 0190A5 5A 80 00 10 00 01 00 FE 6F'
    # The marks of the plot, and the line that failed.
    show 'a run.html' mark | sed 's/^[0-9.]* //' >marks
    is <(LC_ALL=C sort -u marks) 'dvr reset' "expect text \"<b>&'none'</b>\"" 'failed-call SetEvent 1 -> 6' \
        'fault 1 (corrupt checksum of DVR_RunningState indications to-unit times 1): IND DVR_RunningState, 1 so far' \
        'fault call SetEvent times 1' \
        'fault line corrupt checksum of DVR_RunningState indications to-unit times 1' \
        'supply line 0 battery 1 percent 100' 'the run failed'
    show 'a run.html' dot >percents
    is <(sed -E 's/.* ([0-9]+ %)/\1/' percents) "$(seq -f '%.0f %%' 20)"
    show 'a run.html' figure >screens
    contains screens insert-card 'On the screen at the failure' 'with other numbers only: 1'
    # Of the included files only the one that failed is open.
    grep -o '<details[^/]*/[a-z.]*' index-2.html >opened || true
    is opened '<details open="open"><summary>one/part.scenario'
}

test_a_page_has_the_output_of_the_run_and_does_not_change_it() {
    run 0 tolvane --auto --quiet --screens screens --log plain.log
    run 0 tolvane --auto --quiet --screens screens --log run.log --report report
    cmp plain.log run.log >&2 || fail 'a report changes the run'
    show report/update.html h1 log-box dd >page
    contains page 'passed update' '14.06.12.V1.00.05, then 14.09.01.V1.02.03'
    is <(sed -nE 's/^(TimeLine)?[0-9]+\.[0-9]{3}//p' page) "$(tr -d '\r' <run.log)"
    run 0 tolvane --replay "$root/tests/recordings/update.recording" --quiet --report report
    [ "$(show report/update.html frames-box | grep -c ok$)" -ge 10 ] || fail 'the frames of the recording are missing'
}

test_a_page_leaves_out_screens_beyond_its_limit() {
    cat >long.scenario <<END
dvr update-time 120s
include $root/tests/scenarios/flows/to-updating.scenario
repeat 34
wait 2s
power off
wait 200ms
power on
wait step updating within 3s
end
END
    run 0 tolvane --scenario long.scenario --report report
    is <(show report/long.html figure | wc -l) 32
    show report/long.html gap >gaps
    grep -qE '^[0-9]+ screens left out here$' gaps || fail 'the page does not say how many screens it left out'
}

test_a_report_that_cannot_be_written_is_one_line() {
    local problem command
    mkdir full
    ln -s /dev/full full/update.html
    touch file
    while IFS='|' read -r problem command; do
        run 1 sh -c "$command"
        is err "tolvane: $problem"
    done <<'END'
full/update.html: No space left on device|tolvane --auto --quiet --screens new --report full
file: Not a directory|tolvane --auto --quiet --screens new --report file
END
}
