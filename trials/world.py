"""Runs the program in a temporary folder and reads the files there with other libraries."""

import os
import pathlib
import plistlib
import re
import shutil
import sqlite3
import subprocess
import tempfile

IDENTIFIER = re.compile(r"[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}")
# Files that accompany a store or settings in use.
COMPANIONS = ("-wal", "-shm", "-journal", ".plist.lock")


class World:
    """A group container, settings and a home below `root`; everything else is fixed."""

    def __init__(self, program, root):
        self.program = pathlib.Path(program).resolve()
        self.root = pathlib.Path(root)
        self.group = self.root / "group"
        self.store = self.group / "Vantrel.sqlite"
        self.environment = {
            "PATH": os.environ["PATH"], "LC_ALL": "C.UTF-8", "TZ": "UTC",
            "VANTREL_NOW": "2026-03-01T12:00:00Z", "VANTREL_GROUP_CONTAINER": str(self.group),
            "HOME": str(self.root / "home"), "XDG_CONFIG_HOME": str(self.root / "config")}
        self.root.mkdir(parents=True, exist_ok=True)

    def run(self, *arguments, before=(), **environment):
        command = [*before, self.program, *(word.format(root=self.root) for word in arguments)]
        return subprocess.run(command, env=self.environment | environment, capture_output=True,
                              text=True, errors="replace", timeout=120, check=False)

    def say(self, *arguments, **environment):
        """Returns the standard output. Errors: AssertionError if the exit code is not 0."""
        done = self.run(*arguments, **environment)
        if done.returncode:
            raise AssertionError(f"{arguments}: exit {done.returncode}, {done.stderr.strip()}")
        return done.stdout

    def sql(self, script, store=None):
        connection = sqlite3.connect(store or self.store)
        connection.executescript(script)
        connection.close()

    def copy_to(self, root):
        if self.root.exists():
            shutil.copytree(self.root, root, symlinks=True, dirs_exist_ok=True)
        return World(self.program, root)

    def files(self):
        return sorted(path for path in self.root.rglob("*")
                      if path.is_file() and not path.name.endswith(COMPANIONS))

    def state(self):
        """Returns the content of every file, without values that differ between runs. Omits stores
        without records."""
        held = {str(path.relative_to(self.root)): content(path) for path in self.files()}
        return {path: holds for path, holds in held.items() if not is_empty_store(holds)}

    def answers(self):
        """Returns the same data as printed by the program."""
        asked = [("plan", "list"), ("camera", "list"), ("defaults", "list"), ("observer", "show")]
        runs = [self.run(*words, "--json") for words in asked]
        return [(run.returncode, IDENTIFIER.sub("*", run.stdout)) for run in runs]


def content(path):
    if path.suffix == ".sqlite":
        return rows(path)
    if path.suffix == ".plist":
        return plistlib.loads(path.read_bytes())
    return path.read_bytes()


def is_empty_store(holds):
    return isinstance(holds, dict) and holds.get("check") == "ok" and all(
        row["Z_MAX"] == 0 for row in holds.get("Z_PRIMARYKEY", [])[1:])


def rows(store):
    """Returns all tables of a store. Opens a copy, so that the log of a killed program is not
    checkpointed into the store."""
    with tempfile.TemporaryDirectory() as folder:
        copy = pathlib.Path(folder) / "copy"
        for suffix in ("", "-wal", "-journal"):
            if pathlib.Path(f"{store}{suffix}").exists():
                shutil.copy(f"{store}{suffix}", f"{copy}{suffix}")
        connection = sqlite3.connect(copy)
        connection.row_factory = sqlite3.Row
        found = {"check": connection.execute("PRAGMA integrity_check").fetchone()[0]}
        for name, sql in connection.execute(
                "SELECT name, sql FROM sqlite_schema WHERE type = 'table' ORDER BY name").fetchall():
            table = connection.execute(f'SELECT * FROM "{name}" ORDER BY 1').fetchall()
            found[name] = [sql] + [{key: plain(key, row[key]) for key in row.keys()} for row in table]
        connection.close()
        return found


def plain(key, value):
    if key in ("ZUNIQUEIDENTIFIER", "Z_UUID"):
        return value is not None
    return plistlib.loads(value) if key == "Z_PLIST" else value
