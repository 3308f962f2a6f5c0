#!/usr/bin/env python3
"""Compares the API's constants that the program uses: those of the unit's image, which come from the
desktop's headers, with those of platform/api, which are Windows CE's.

Usage: check_constants.py COMPILE_COMMANDS WORK_FOLDER, in the root of the tree
"""
import json
import pathlib
import re
import shlex
import subprocess
import sys

PROGRAM = ["app", "wizard", "dvrlink", "power", "ui", "MStar_C4", "platform/framework"]
HEADERS = "".join(f"#include <{name}.h>\n" for name in
                  ["windows", "commctrl", "objbase", "winioctl", "msgqueue", "pm", "pkfuncs"])

# Prints a static_assert for every constant.
PRINTER = """
#include <cstdio>
template <typename Value>
void Print(const char* name, Value value) {
    // The condition allows casts of pointers, which some constants are.
    std::printf("static_assert(__builtin_constant_p(%s) ? (unsigned)(%s) == %uU : false, \\"%s\\");\\n", name,
                name, static_cast<unsigned>((unsigned long long)value), name);
}
int main() {
"""


def text_of(folders):
    return "\n".join(path.read_text() for folder in folders
                     for path in sorted(pathlib.Path(folder).rglob("*"))
                     if path.suffix in {".h", ".cpp"})


def used_constants():
    """The names in capitals that platform/api gives a number and the program uses."""
    api = text_of(["platform/api"])
    macros = re.findall(r"^\s*#\s*define ([A-Z][A-Z_0-9]+)[ \t]+(?!void|const|\S*MAKEINTRESOURCE)\S", api, re.M)
    enumerators = re.findall(r"^\s+([A-Z][A-Z_0-9]+) = ", api, re.M)
    code = re.sub(r"//.*", "", text_of(PROGRAM))
    used = set(re.findall(r"\b[A-Z][A-Z_0-9]+\b", code))
    return sorted(used & {*macros, *enumerators})


def run(command, **options):
    result = subprocess.run(command, capture_output=True, text=True, **options)
    if result.returncode != 0:
        errors = re.findall(r"error: (.*)", result.stderr) or [result.stderr.strip()]
        sys.exit("\n".join(f"check-unit: constants: {error}" for error in errors))
    return result.stdout


def main():
    commands, work = map(pathlib.Path, sys.argv[1:])
    names = used_constants()
    printer = work / "print_constants.cpp"
    printer.write_text(HEADERS + PRINTER + "".join(f'Print("{name}", {name});\n' for name in names) + "}\n")
    run(["g++", "-std=c++20", "-I", "platform/api", printer, "-o", printer.with_suffix("")])
    asserts = work / "constants.cpp"
    asserts.write_text(HEADERS + run([printer.with_suffix("").resolve()]))
    # As the image's own sources are compiled.
    entry = next(entry for entry in json.loads(commands.read_text())
                 if entry["file"].endswith("app/Tolvane.cpp"))
    command = shlex.split(entry["command"])
    options = command[:command.index("-o")]
    run([word for word in options if "ccache" not in word] + ["-fsyntax-only", str(asserts.resolve())],
        cwd=entry["directory"])
    print(f"check-unit: {len(names)} constants of the API are those of platform/api")


if __name__ == "__main__":
    main()
