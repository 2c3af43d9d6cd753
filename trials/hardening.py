#!/usr/bin/env python3
"""Checks that the programs of a release build are hardened.

usage: hardening.py BUILD-FOLDER"""

import json
import pathlib
import platform
import re
import subprocess
import sys

# Patterns in the output of readelf; those named "not: …" must not match.
MARKS = {
    "position-independent": r"Type: +DYN \(Position-Independent",
    "read-only relocations": r"GNU_RELRO",
    "bound at start": r"FLAGS_1.*\bNOW\b.*PIE",
    "stack protected": r"UND __stack_chk_fail",
    "checked copies of memory": r"UND __\w+_chk\b",
    "not: executable stack": r"GNU_STACK.* RWE",
    "not: own library path": r"\((RPATH|RUNPATH)\)",
    "not: writable executable segment": r"LOAD.* RWE",
    "not: relocations in code": r"TEXTREL",
}
# Patterns in the disassembly and their minimal number: linked archives of the distribution contain a
# few themselves. Its start files lack the note of control-flow enforcement, so no program has the note;
# functions that begin with `endbr64` show that our sources were compiled for it.
LEAST = {"stack protected": (r"call +.*<__stack_chk_fail", 150)}
if platform.machine() == "x86_64":
    LEAST["marked for control-flow enforcement"] = (r"\bendbr64\b", 500)
# Compiler flags that leave no certain trace in a program.
FLAGS = ("-D_FORTIFY_SOURCE=2", "-fstack-clash-protection", "-O3")


def bare_sources(folder):
    commands = json.loads((folder / "compile_commands.json").read_text())
    return [one["file"] for one in commands if not all(flag in one["command"] for flag in FLAGS)]


def main():
    folder = pathlib.Path(sys.argv[1])
    programs = sorted(path for path in folder.glob("vantrel*") if path.is_file() and not path.suffix)
    failed = not programs
    for program in programs:
        headers = subprocess.run(["readelf", "-W", "-h", "-l", "-d", "-s", program], check=True,
                                 capture_output=True, text=True).stdout
        missing = [name for name, mark in MARKS.items()
                   if bool(re.search(mark, headers)) == name.startswith("not")]
        code = subprocess.run(["objdump", "-d", "--no-show-raw-insn", program], check=True,
                              capture_output=True, text=True).stdout
        missing += [f"{name}: {found} times" for name, (mark, least) in LEAST.items()
                    if (found := len(re.findall(mark, code))) < least]
        print(f"{program.name}: {', '.join(missing) or 'hardened'}")
        failed = failed or missing
    bare = bare_sources(folder)
    print(f"sources without {' '.join(FLAGS)}: {' '.join(bare) or 'none'}")
    return 1 if failed or bare else 0


if __name__ == "__main__":
    sys.exit(main())
