#!/usr/bin/env python3
"""Writes a scenario for each call that can fail: it fails at the start, and again at steps of the update.

Usage: fault_scenarios.py CALL_TABLE FOLDER, with platform/kernel/call_table.h. The taps are at places
of the screen and nothing is expected, so that a run goes on after any failure.
"""
import pathlib
import re
import sys

NEXT, UPDATE, CLOSE = "tap at 500 438", "tap at 700 438", "tap at 757 26"

# The notice's button is where "Update" is.
SCENARIO = f"""\
fault call {{call}}
wait 3s
{NEXT}
fault call {{call}} times 2
wait 1s
{UPDATE}
wait 5s
fault call {{call}} after 3 times 2
{NEXT}
wait 4s
card in
wait 2s
fault call {{call}} after 1
{UPDATE}
wait 14s
fault call {{call}} times 3
power off
wait 1s
power on
request suspend
wait 1s
fault call {{call}}
{CLOSE}
wait 2s
"""


def main():
    table, folder = map(pathlib.Path, sys.argv[1:])
    calls = re.findall(r"^    CALL\((\w+),", table.read_text(), re.MULTILINE)
    for call in calls:
        (folder / f"{call}.scenario").write_text(SCENARIO.format(call=call))


if __name__ == "__main__":
    main()
