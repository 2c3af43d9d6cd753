#!/usr/bin/env python3
"""Checks that includes only go down, and that only the folders that wrap a library include it."""

import pathlib
import re
import sys

PLATFORM = {"base", "platform/text", "platform/archive", "platform/system", "platform/view"}
OBJECTSTORE = {"objectstore/model", "objectstore/sqlite", "objectstore"}
# The folders that each folder may include besides itself.
SOURCE = {
    "base": set(),
    "platform/text": {"base"},
    "platform/archive": {"base", "platform/text"},
    "platform/system": {"base", "platform/text", "platform/archive"},
    "platform/view": {"base"},
    "platform/qt": PLATFORM,
    "objectstore/model": PLATFORM,
    "objectstore/sqlite": PLATFORM | {"objectstore/model"},
    "objectstore": PLATFORM | OBJECTSTORE,
    "defaults": PLATFORM,
    "time": PLATFORM,
    "units": PLATFORM | {"defaults"},
    "geo": PLATFORM | {"defaults", "time", "units"},
    "store": PLATFORM | OBJECTSTORE,
    "webservice": PLATFORM,
    "appearance": PLATFORM,
    "widget": PLATFORM | OBJECTSTORE | {"defaults", "time", "appearance", "geo", "store"},
}
# Programs may include common and any folder of src, never each other.
PROGRAMS = ("common", "cli", "today", "lookup")
WITH_QT = ("today", "lookup")
# A library's headers, and the folders (with all below them) whose .cpp files may include them.
LIBRARIES = {
    r"Q[A-Z]\w*|Qt\w+/.*": ("platform/qt",),
    r"unicode/.*|plist/.*": ("platform",),
    r"sqlite3\.h|zlib\.h|nettle/.*": ("objectstore",),
    r"nlohmann/.*": ("webservice",),
    r"uuid/.*": ("base",),
}
QT = re.compile(r"Q[A-Z]\w*|Qt\w+/.*")
INCLUDE = re.compile(r'^\s*#\s*include\s+([<"])([^>"]+)[>"]', re.MULTILINE)


def files_with_includes(folder: pathlib.Path):
    """Yields each source, its folder relative to `folder`, and its includes."""
    for path in sorted(folder.rglob("*")):
        if path.suffix in (".h", ".cpp"):
            where = path.parent.relative_to(folder).as_posix()
            yield path, where, INCLUDE.findall(path.read_text(encoding="utf-8"))


def problems_of_source(root: pathlib.Path):
    for path, folder, includes in files_with_includes(root / "src"):
        for quote, name in includes:
            where = f"{path.relative_to(root)}: includes {name}"
            if quote == '"':
                target = pathlib.PurePath(name).parent.as_posix()
                if target != folder and target not in SOURCE.get(folder, set()):
                    yield f"{where}: src/{folder} must not include src/{target}"
                continue
            for pattern, folders in LIBRARIES.items():
                if not re.fullmatch(pattern, name):
                    continue
                if not any(f"{folder}/".startswith(f"{allowed}/") for allowed in folders):
                    yield f"{where}: only {', '.join(folders)} may include this library"
                elif path.suffix == ".h" and folder != "platform/qt":
                    yield f"{where}: only .cpp files may include a library"


def problems_of_programs(root: pathlib.Path):
    for path, folder, includes in files_with_includes(root / "app"):
        program = folder.split("/")[0]
        for quote, name in includes:
            where = f"{path.relative_to(root)}: includes {name}"
            target = name.split("/")[0]
            if quote == '"' and target in PROGRAMS and target not in (program, "common"):
                yield f"{where}: programs may share app/common only"
            if program not in WITH_QT and (QT.fullmatch(name) or name.startswith("platform/qt/")):
                yield f"{where}: {program} must not include Qt"


def main() -> int:
    root = pathlib.Path(__file__).resolve().parent.parent
    found = [*problems_of_source(root), *problems_of_programs(root)]
    for problem in found:
        print(problem, file=sys.stderr)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
