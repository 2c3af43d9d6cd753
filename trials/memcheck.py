#!/usr/bin/env python3
"""Runs the journeys under valgrind: no invalid access, no use of uninitialised memory, no leak.

usage: memcheck.py BUILD-FOLDER"""

import pathlib
import sys
import tempfile

from journeys import Walk

FOUND = 99


def main() -> int:
    with tempfile.TemporaryDirectory() as folder:
        reports = pathlib.Path(folder) / "reports"
        reports.mkdir()
        watcher = ["valgrind", "--quiet", f"--error-exitcode={FOUND}", "--leak-check=full",
                   "--show-leak-kinds=definite", "--errors-for-leak-kinds=definite",
                   "--num-callers=30", "--trace-children=yes",
                   f"--log-file={reports}/%q{{WALK_LINE}}.%p.%n"]
        walk = Walk(sys.argv[1], folder, watcher)
        try:
            walk.all()
        finally:
            found = "".join(report.read_text() for report in sorted(reports.iterdir()))
            print(found[:20000], end="", file=sys.stderr)
        # The exit code of a parent does not show the report of its child.
        if found:
            return 1
        print(f"memcheck: {walk.count} journeys, {len(list(reports.iterdir()))} processes: no errors")
    return 0


if __name__ == "__main__":
    sys.exit(main())
