#!/usr/bin/env python3
"""Checks that includes only go down, and that libraries stay behind the floor that wraps them."""

import pathlib
import re
import sys

ALLOWED = {
    "base": set(),
    "platform": {"base"},
    "platform/qt": {"base", "platform"},
    "objectstore": {"base", "platform"},
    "defaults": {"base", "platform"},
    "time": {"base", "platform"},
    "units": {"base", "platform", "defaults"},
    "geo": {"base", "platform", "defaults", "time", "units"},
    "store": {"base", "platform", "objectstore"},
    "webservice": {"base", "platform"},
    "appearance": {"base", "platform"},
    "widget": {"base", "platform", "defaults", "time", "appearance", "geo", "store", "objectstore"},
}
# A library's headers, and the folders whose .cpp files may include them.
LIBRARIES = {
    r"Q[A-Z]\w*|Qt\w+/.*": {"platform/qt"},
    r"unicode/.*|absl/.*|plist/.*": {"platform"},
    r"SQLiteCpp/.*|sqlite3\.h|zlib\.h": {"objectstore"},
    r"nettle/.*": {"objectstore"},
    r"nlohmann/.*": {"webservice"},
    r"uuid/.*": {"base"},
    r"fmt/.*": set(ALLOWED),
}
QT = re.compile(r"Q[A-Z]\w*|Qt\w+/.*")
INCLUDE = re.compile(r'^\s*#\s*include\s+([<"])([^>"]+)[>"]', re.MULTILINE)


def folder_of(path: pathlib.PurePath) -> str:
    parts = path.parts[:-1]
    return "/".join(parts)


def problems(root: pathlib.Path):
    source = root / "src"
    for path in sorted(source.rglob("*")):
        if path.suffix not in (".h", ".cpp"):
            continue
        folder = folder_of(path.relative_to(source))
        for quote, name in INCLUDE.findall(path.read_text(encoding="utf-8")):
            where = f"{path.relative_to(root)}: includes {name}"
            if quote == '"':
                target = folder_of(pathlib.PurePath(name))
                if target != folder and target not in ALLOWED.get(folder, set()):
                    yield f"{where}: src/{folder} may not include src/{target or 'the same folder by bare name'}"
                continue
            for pattern, folders in LIBRARIES.items():
                if not re.fullmatch(pattern, name):
                    continue
                if folder not in folders:
                    yield f"{where}: this library belongs to {', '.join(sorted(folders))}"
                elif path.suffix == ".h" and folder != "platform/qt":
                    yield f"{where}: libraries are named in .cpp files only"
    for path in sorted((root / "app").rglob("*")):
        if path.suffix in (".h", ".cpp") and "today" not in path.parts and "lookup" not in path.parts:
            for _, name in INCLUDE.findall(path.read_text(encoding="utf-8")):
                if QT.fullmatch(name) or name.startswith("platform/qt/"):
                    yield f"{path.relative_to(root)}: includes {name}: the command line links no Qt"


def main() -> int:
    found = list(problems(pathlib.Path(__file__).resolve().parent.parent))
    for problem in found:
        print(problem, file=sys.stderr)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
