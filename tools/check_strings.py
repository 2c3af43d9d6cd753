#!/usr/bin/env python3
"""Checks that every language has all keys of the string tables, with the same placeholders, and that
the sources use every key, and no unknown key."""

import pathlib
import re
import sys

PAIR = re.compile(r'^"((?:[^"\\]|\\.)*)"\s*=\s*"((?:[^"\\]|\\.)*)"\s*;', re.MULTILINE)
REFERENCE = "en.lproj"
LITERAL = re.compile(r'"([a-z0-9_]+)"')
LOOKUP = re.compile(r'\b(?:localizedString|localized|text)\(\s*"([a-z0-9]+_[a-z0-9_]+)"')
# Shorter literals could be combined to almost any key.
SHORTEST_PART = 4


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
                    yield f"{where}: {key} has not the placeholders of English"


def is_made_of(key: str, parts: set[str]) -> bool:
    """Whether a concatenation of `parts`, the literals of one source, is the key."""
    return not key or any(is_made_of(key[len(part):], parts)
                          for part in parts if key.startswith(part))


def problems_of_use(root: pathlib.Path):
    tables = sorted((root / "resources" / REFERENCE).glob("*.strings"))
    known = {key for table in tables for key in read(table)}
    unused = set(known)
    for source in sorted([*(root / "src").rglob("*.*"), *(root / "app").rglob("*.*")]):
        if source.suffix not in (".cpp", ".h"):
            continue
        text = source.read_text(encoding="utf-8")
        for key in LOOKUP.findall(text):
            if key not in known:
                yield f"{source.relative_to(root)}: key {key} is in no table"
        literals = set(LITERAL.findall(text))
        parts = {one for one in literals if len(one) >= SHORTEST_PART}
        unused = {key for key in unused - literals if not is_made_of(key, parts)}
    for key in sorted(unused):
        yield f"{REFERENCE}: key {key} is not used"


def main() -> int:
    root = pathlib.Path(__file__).resolve().parent.parent
    found = [*problems(root / "resources"), *problems_of_use(root)]
    for problem in found:
        print(problem, file=sys.stderr)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
