#!/usr/bin/env python3
"""Checks that every key of a string table stands in every language, with the same placeholders."""

import pathlib
import re
import sys

PAIR = re.compile(r'^"((?:[^"\\]|\\.)*)"\s*=\s*"((?:[^"\\]|\\.)*)"\s*;', re.MULTILINE)
REFERENCE = "en.lproj"


def read(path: pathlib.Path) -> dict[str, str]:
    return dict(PAIR.findall(path.read_text(encoding="utf-8")))


def problems(resources: pathlib.Path):
    for reference in sorted((resources / REFERENCE).glob("*.strings")):
        english = read(reference)
        for language in sorted(resources.glob("*.lproj")):
            path = language / reference.name
            where = f"{language.name}/{reference.name}"
            if not path.exists():
                yield f"{where}: missing"
                continue
            texts = read(path)
            for key in sorted(english.keys() ^ texts.keys()):
                yield f"{where}: key {key} is {'missing' if key in english else 'not in English'}"
            for key in sorted(english.keys() & texts.keys()):
                if english[key].count("%@") != texts[key].count("%@"):
                    yield f"{where}: {key} has other placeholders than English"


def main() -> int:
    resources = pathlib.Path(__file__).resolve().parent.parent / "resources"
    found = list(problems(resources))
    for problem in found:
        print(problem, file=sys.stderr)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
