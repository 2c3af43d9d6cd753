#!/usr/bin/env python3
"""Whether the programs of a release build are hardened as they should be.

usage: hardening.py BUILD-FOLDER"""

import json
import pathlib
import platform
import re
import subprocess
import sys

# What readelf tells of each; "not" marks what must be absent.
MARKS = {
    "position-independent": r"Type: +DYN \(Position-Independent",
    "relocations read only": r"GNU_RELRO",
    "bound at the start": r"FLAGS_1.*\bNOW\b.*PIE",
    "stack protected": r"UND __stack_chk_fail",
    "checked copies of memory": r"UND __\w+_chk\b",
    "not: stack that runs": r"GNU_STACK.* RWE",
    "not: library path of its own": r"\((RPATH|RUNPATH)\)",
    "not: segment to write and run": r"LOAD.* RWE",
    "not: relocations in its code": r"TEXTREL",
}
# The archives that are linked in bring marks of their own, but few. The start files of the
# distribution have no note of control-flow enforcement, so that no program has it: what can be seen is
# that functions begin with its mark.
LEAST = {"stack protected": (r"call +.*<__stack_chk_fail", 150)}
if platform.machine() == "x86_64":
    LEAST["marked for control-flow enforcement"] = (r"\bendbr64\b", 500)
# What no program shows for certain.
FLAGS = ("-D_FORTIFY_SOURCE=2", "-fstack-clash-protection", "-O3")


def bare_sources(folder):
    commands = json.loads((folder / "compile_commands.json").read_text())
    return [one["file"] for one in commands if not all(flag in one["command"] for flag in FLAGS)]


def main():
    folder = pathlib.Path(sys.argv[1])
    programs = sorted(path for path in folder.glob("vantrel*") if path.is_file() and not path.suffix)
    failed = not programs
    for program in programs:
        told = subprocess.run(["readelf", "-W", "-h", "-l", "-d", "-s", program], check=True,
                              capture_output=True, text=True).stdout
        missing = [name for name, mark in MARKS.items()
                   if bool(re.search(mark, told)) == name.startswith("not")]
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
