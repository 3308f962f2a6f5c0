#!/usr/bin/env python3
"""Prints a scenario that sends the program frames of every command, type, form and length, whole and
damaged, and noise between them.

Usage: frames_scenario.py SEED
"""
import random
import sys

COMMANDS = range(0x000F, 0x0031)  # one more on each side than the program knows
QUERY = 0x8000
TYPES = [0x10, 0x20, 0x80]
MAX_PAYLOAD = 64
FRAMES_A_LINE = 4


def frame(kind, command, payload):
    body = bytes([0xA5, 0x5A, kind, *command.to_bytes(2, "big"), *len(payload).to_bytes(2, "big")]) + payload
    return body + (sum(body) & 0xFFFF).to_bytes(2, "big")


def damaged(numbers, whole):
    """One byte changed, missing or doubled."""
    place = numbers.randrange(len(whole))
    return whole[:place] + numbers.choice([bytes([whole[place] ^ 1 << numbers.randrange(8)]), b"",
                                           whole[place:place + 1] * 2]) + whole[place + 1:]


def frames(numbers):
    for command in COMMANDS:
        for kind in TYPES:
            for form in (0, QUERY):
                # What handlers decide by is the first bytes and the length.
                for length in (0, 1, 2, 3, 7, 12, 13, 16, 17, 18, MAX_PAYLOAD, MAX_PAYLOAD + 1,
                               numbers.randrange(MAX_PAYLOAD)):
                    payload = bytearray(numbers.choice(b"0123456789.V\0" + bytes(range(20, 30)) + bytes([200]))
                                        for _ in range(length))
                    if payload:
                        payload[0] = numbers.randrange(256 if numbers.random() < 0.1 else 8)
                    whole = frame(kind, command | form, bytes(payload))
                    yield damaged(numbers, whole) if numbers.random() < 0.1 else whole
                yield numbers.randbytes(numbers.randrange(1, 8))


def main():
    numbers = random.Random(int(sys.argv[1]))
    all_frames = list(frames(numbers))
    print('wait button "Power On"\nfault dvr silent on\nwait 5s')
    for first in range(0, len(all_frames), FRAMES_A_LINE):
        sent = b"".join(all_frames[first:first + FRAMES_A_LINE])
        print(f"line inject {sent.hex()} to-unit\nwait 20ms")


if __name__ == "__main__":
    main()
