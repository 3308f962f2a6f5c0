#!/usr/bin/env python3
"""Checks the unit's image: its header, its sections, its imports, its resources, its size.

Usage: check_image.py IMAGE IMPORTS_FOLDER COMPILED_RESOURCES HOST_PROGRAM

The imports must be the names in IMPORTS_FOLDER/*.def, no more and no fewer. The resources must be
those of COMPILED_RESOURCES, which HOST_PROGRAM, the build for this host, must contain too.
"""
import pathlib
import struct
import sys

import pefile

# The field, its place, the value that Windows CE 6.0 on ARM requires.
HEADER = [
    ("machine (Thumb)", "FILE_HEADER.Machine", 0x01C2),
    ("characteristics (not movable, executable, 32 bits)", "FILE_HEADER.Characteristics", 0x0103),
    ("magic (32 bits)", "OPTIONAL_HEADER.Magic", 0x010B),
    ("base address", "OPTIONAL_HEADER.ImageBase", 0x10000),
    ("section alignment", "OPTIONAL_HEADER.SectionAlignment", 0x1000),
    ("major version of the operating system", "OPTIONAL_HEADER.MajorOperatingSystemVersion", 6),
    ("minor version of the operating system", "OPTIONAL_HEADER.MinorOperatingSystemVersion", 0),
    ("major version of the subsystem", "OPTIONAL_HEADER.MajorSubsystemVersion", 6),
    ("minor version of the subsystem", "OPTIONAL_HEADER.MinorSubsystemVersion", 0),
    ("subsystem (Windows CE GUI)", "OPTIONAL_HEADER.Subsystem", 9),
    ("characteristics of a DLL", "OPTIONAL_HEADER.DllCharacteristics", 0),
    ("reserved stack", "OPTIONAL_HEADER.SizeOfStackReserve", 0x20000),
]

READ, WRITE, EXECUTE = 0x40000000, 0x80000000, 0x20000000
SECTIONS = {".text": READ | EXECUTE, ".rdata": READ, ".data": READ | WRITE, ".rsrc": READ}

# All others must be empty: the loader knows no thread-locals, and another form of unwind tables.
DIRECTORIES = {"IMAGE_DIRECTORY_ENTRY_IMPORT", "IMAGE_DIRECTORY_ENTRY_RESOURCE",
               "IMAGE_DIRECTORY_ENTRY_IAT"}

MAX_PROGRAM_BYTES = 128 * 1024

RT_BITMAP, RT_STRING, RT_GROUP_ICON, RT_VERSION = 2, 6, 14, 16


def check_header(image):
    for name, place, required in HEADER:
        part, field = place.split(".")
        value = getattr(getattr(image, part), field)
        if value != required:
            yield f"{name} is {value:#x}, required is {required:#x}"
    entry = image.OPTIONAL_HEADER.AddressOfEntryPoint
    if entry % 4 != 0:
        yield f"the entry point {entry:#x} is not ARM code"


def check_sections(image):
    found = {section.Name.rstrip(b"\0").decode(): section.Characteristics & (READ | WRITE | EXECUTE)
             for section in image.sections}
    if found != SECTIONS:
        yield f"the sections are {found}, required are {SECTIONS}"
    for directory in image.OPTIONAL_HEADER.DATA_DIRECTORY:
        if (directory.Size != 0) != (directory.name in DIRECTORIES):
            yield f"the directory {directory.name} has {directory.Size} bytes"


def listed_imports(folder):
    """The names of each library."""
    libraries = {}
    for path in sorted(folder.glob("*.def")):
        words = [line.split(";")[0].strip() for line in path.read_text().splitlines()]
        words = [word for word in words if word]
        libraries[words[0].removeprefix("LIBRARY ")] = set(words[2:])
    return libraries


def check_imports(image, folder):
    listed = listed_imports(folder)
    found = {library.dll.decode(): {symbol.name.decode() if symbol.name else f"#{symbol.ordinal}"
                                    for symbol in library.imports}
             for library in image.DIRECTORY_ENTRY_IMPORT}
    for library in sorted(listed.keys() | found.keys()):
        names, required = found.get(library, set()), listed.get(library, set())
        if names - required:
            yield f"{library}: imported but not listed: {', '.join(sorted(names - required))}"
        if required - names:
            yield f"{library}: listed but not imported: {', '.join(sorted(required - names))}"


def image_resources(image):
    """(type, name, language) -> bytes"""
    return {(types.id, names.id, languages.id):
            image.get_data(languages.data.struct.OffsetToData, languages.data.struct.Size)
            for types in image.DIRECTORY_ENTRY_RESOURCE.entries
            for names in types.directory.entries
            for languages in names.directory.entries}


def compiled_resources(data):
    """The same of a .res file, in which types and names are numbers."""
    resources, position = {}, 0
    while position < len(data):
        size, header_size, _, kind, _, name = struct.unpack_from("<IIHHHH", data, position)
        language, = struct.unpack_from("<H", data, position + 22)
        start = position + header_size
        if kind != 0:  # the file's first, empty entry
            resources[kind, name, language] = data[start:start + size]
        position = (start + size + 3) & ~3
    return resources


def check_resources(image, compiled, host_program):
    found, required = image_resources(image), compiled_resources(compiled)
    for key in sorted(found.keys() | required.keys()):
        if found.get(key) != required.get(key):
            yield f"the resource (type, name, language) {key} differs from the compiled one"
    if compiled not in host_program:
        yield "the host's program has other resources"
    kinds = {key[0] for key in found}
    missing = {RT_BITMAP, RT_STRING, RT_GROUP_ICON, RT_VERSION} - kinds
    if missing:
        yield f"no resources of the types {missing}"
    # What a reader of its own makes of them.
    text = next((entry for blocks in image.FileInfo for block in blocks if block.Key == b"StringFileInfo"
                 for table in block.StringTable for entry in table.entries.items()
                 if entry[0] == b"OriginalFilename"), None)
    if text != (b"OriginalFilename", b"Tolvane.exe"):
        yield f"the version resource names {text}"


def check_size(image):
    sizes = {section.Name.rstrip(b"\0").decode(): section.Misc_VirtualSize for section in image.sections}
    program = sizes[".text"] + sizes[".rdata"] + sizes[".data"]
    print(f"check-unit: code {sizes['.text']}, constants {sizes['.rdata']}, data {sizes['.data']}, "
          f"resources {sizes['.rsrc']} bytes")
    if program >= MAX_PROGRAM_BYTES:
        yield f"code and data have {program} bytes, allowed are {MAX_PROGRAM_BYTES - 1}"


def main():
    image_path, imports, compiled, host_program = map(pathlib.Path, sys.argv[1:])
    image = pefile.PE(str(image_path))
    findings = [*check_header(image), *check_sections(image), *check_imports(image, imports),
                *check_resources(image, compiled.read_bytes(), host_program.read_bytes()),
                *check_size(image)]
    for finding in findings:
        print(f"check-unit: {finding}", file=sys.stderr)
    if not findings:
        imported = sum(len(library.imports) for library in image.DIRECTORY_ENTRY_IMPORT)
        print(f"check-unit: header, {imported} imports and "
              f"{len(image_resources(image))} resources are as required")
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
