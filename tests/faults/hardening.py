#!/usr/bin/env python3
"""Whether the programs of a release build are hardened as they should be.

usage: hardening.py BUILD-FOLDER"""

import pathlib
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
}


def main():
    folder = pathlib.Path(sys.argv[1])
    programs = sorted(path for path in folder.glob("vantrel*") if path.is_file() and not path.suffix)
    failed = not programs
    for program in programs:
        told = subprocess.run(["readelf", "-W", "-h", "-l", "-d", "-s", program], check=True,
                              capture_output=True, text=True).stdout
        missing = [name for name, mark in MARKS.items()
                   if bool(re.search(mark, told)) == name.startswith("not")]
        print(f"{program.name}: {', '.join(missing) or 'hardened'}")
        failed = failed or missing
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
