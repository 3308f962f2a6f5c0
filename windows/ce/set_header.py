#!/usr/bin/env python3
"""Makes an image for Windows CE 6.0 of one that the linker wrote for a later Windows on ARM.

Sets the machine, the versions and the subsystem, and removes the base relocations: an executable of
Windows CE is never moved, and its loader does not know the linker's kind of relocations.

Usage: set_header.py IMAGE
"""
import pathlib
import struct
import sys

MACHINE_ARMNT = 0x01C4
MACHINE_THUMB = 0x01C2
RELOCS_STRIPPED = 0x0001
SUBSYSTEM_WINDOWS_CE_GUI = 9
VERSION = (6, 0)
SECTION_BYTES = 40


def remove_relocations(image: bytearray, file_header: int) -> None:
    """Removes the last section, which must be .reloc."""
    optional_header = file_header + 20
    section_count, = struct.unpack_from("<H", image, file_header + 2)
    optional_bytes, = struct.unpack_from("<H", image, file_header + 16)
    section = optional_header + optional_bytes + SECTION_BYTES * (section_count - 1)
    if image[section:section + 8].rstrip(b"\0") != b".reloc":
        raise ValueError("its last section is not .reloc")
    address, _, offset = struct.unpack_from("<3I", image, section + 12)
    image[section:section + SECTION_BYTES] = bytes(SECTION_BYTES)
    del image[offset:]
    struct.pack_into("<H", image, file_header + 2, section_count - 1)
    characteristics, = struct.unpack_from("<H", image, file_header + 18)
    struct.pack_into("<H", image, file_header + 18, characteristics | RELOCS_STRIPPED)
    struct.pack_into("<I", image, optional_header + 56, address)  # of the image's end
    struct.pack_into("<2I", image, optional_header + 96 + 5 * 8, 0, 0)  # base relocations


def convert(image: bytearray) -> None:
    file_header = struct.unpack_from("<I", image, 0x3C)[0] + 4
    optional_header = file_header + 20
    machine, = struct.unpack_from("<H", image, file_header)
    if machine != MACHINE_ARMNT:
        raise ValueError(f"its machine is {machine:#06x}, allowed is {MACHINE_ARMNT:#06x}")
    remove_relocations(image, file_header)
    struct.pack_into("<H", image, file_header, MACHINE_THUMB)
    for version in (40, 48):  # of the operating system, of the subsystem
        struct.pack_into("<2H", image, optional_header + version, *VERSION)
    # The linker takes all code for Thumb code and sets the lowest bit; the entry point is ARM code.
    entry, = struct.unpack_from("<I", image, optional_header + 16)
    struct.pack_into("<I", image, optional_header + 16, entry & ~1)
    # The subsystem, and no characteristics of a DLL.
    struct.pack_into("<2H", image, optional_header + 68, SUBSYSTEM_WINDOWS_CE_GUI, 0)


def main() -> int:
    path = pathlib.Path(sys.argv[1])
    image = bytearray(path.read_bytes())
    try:
        convert(image)
    except ValueError as error:
        print(f"set_header.py: {path} cannot be converted: {error}", file=sys.stderr)
        return 1
    path.write_bytes(image)
    return 0


if __name__ == "__main__":
    sys.exit(main())
