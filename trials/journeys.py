"""Command lines that use every command of vantrel except lookup and watch, for trials that run them
under a tool such as strace. Fails if a command is missing."""

import json
import os
import pathlib
import re
import subprocess
import sys

NAME = "Zebra canyon"
NOTES = "Okapi notes"
ACCOUNT = "quagga-account"
KEY = "oryx-key"

# {store} is the store's file, {folder} the folder of the walk; {plan} and {link} are the output of the
# lines with =plan and =link. A number before the line is the expected exit code, otherwise 0.
LINES = """
66 vantrel today
66 vantrel plan list
vantrel store sample
vantrel today
vantrel today --expanded --json
vantrel today --waybar
vantrel plan add --name {name} --notes {notes} --date +3d --latitude 41.5 --longitude 2.1 =plan
vantrel plan edit {plan} --timezone Asia/Tokyo
vantrel plan show {plan}
vantrel plan show {plan} --json =link
vantrel plan list --from now --to +2w
vantrel plan list --plain
vantrel plan list --json
vantrel open {link}
vantrel-today --render {folder}/sheet.png --open {link} --dark
65 vantrel open vantrel://plan?id=../%00%ff
vantrel plan export {folder}/plans.ics
vantrel plan export {folder}/plans.json
vantrel plan export {folder}/plans.gpx
vantrel plan export {folder}/plans.kml
vantrel plan export {folder}/plans.csv
vantrel plan import {folder}/plans.ics
vantrel plan import {folder}/plans.json
vantrel plan remove {plan}
vantrel plan import {folder}/plans.json
65 vantrel plan import {folder}/plans.csv --format ics
vantrel store info
vantrel store copy {store} {folder}/copy/Vantrel.sqlite
vantrel store identifiers
vantrel store dedupe --dry-run
vantrel store dedupe
vantrel camera add {name} --sensor 6x7 --film
vantrel camera list
vantrel camera show {name}
vantrel camera remove {name}
vantrel camera sensors
vantrel geo curve 41.3851N 2.1734E 20.5 41.7712N 2.4390E 1706.6
65 vantrel geo curve --batch {folder}/pairs
vantrel geo curve --batch {folder}/pairs.good --json
vantrel geo radius 41.4
vantrel geo height --pin2pin-distance 1000 --earth-radius 6371000 --sun-moon-elevation 5 --red-pin-altitude 3 --black-pin-altitude 9
vantrel geo elevation --pin2pin-distance 1000 --earth-radius 6371000 --apparent-height 50 --red-pin-altitude 3 --black-pin-altitude 9
vantrel units set imperial
vantrel units show
vantrel units best 1234
vantrel units format 1234.5 --levels 2
vantrel units fraction 0.4
vantrel planner preset --latitude 41 --longitude 2 --date 2026-07-15T21:40:00Z
vantrel planner panel 2
vantrel planner milky-way on
vantrel planner show
vantrel observer set --latitude 41.3851 --longitude 2.1734 --altitude 12 --offset 8.5
vantrel observer show
vantrel obstacle set --latitude 41.7712 --longitude 2.4390 --altitude 1706.6
vantrel obstacle show
vantrel obstacle toggle
vantrel obstacle clear
vantrel defaults write --standard lookup_username {account}
vantrel defaults write --standard lookup_keyFile {folder}/key
vantrel defaults write walk 2.5 --type double
vantrel defaults read walk
vantrel defaults delete walk
vantrel defaults list
vantrel defaults migrate
64 vantrel paln
vantrel-today --render {folder}/card.png --expanded --scale 2
"""
PAIRS = "41 2 0 42 3 100\n0 0 0 0 0 0\n0 0 0 0.3 179.9 0\n# a remark\n"


class Walk:
    """Runs the journeys in `folder`, each program with the command `watcher` before it."""

    def __init__(self, build, folder, watcher=()):
        self.build = pathlib.Path(build).resolve()
        self.folder = pathlib.Path(folder)
        self.watcher = list(watcher)
        self.messages = ""
        self.count = 0
        self.store = self.folder / "group/Vantrel.sqlite"
        self.words = {"folder": self.folder, "store": self.store, "name": NAME, "notes": NOTES,
                      "account": ACCOUNT}
        self.environment = {
            "PATH": os.environ["PATH"], "HOME": str(self.folder), "TMPDIR": str(self.folder),
            "LC_ALL": "C.UTF-8", "TZ": "Europe/Madrid", "QT_QPA_PLATFORM": "offscreen",
            "VANTREL_GROUP_CONTAINER": str(self.store.parent)}
        (self.folder / "key").write_text(KEY + "\n")
        (self.folder / "key").chmod(0o600)
        (self.folder / "copy").mkdir()
        (self.folder / "pairs.good").write_text(PAIRS)
        (self.folder / "pairs").write_text(PAIRS + "95 0 0 0 0 0\n\xe9\n")

    def run(self, program, *arguments, timeout=300, **environment):
        done = subprocess.run([*self.watcher, self.build / program, *arguments], check=False,
                              env=self.environment | environment, cwd=self.folder, text=True,
                              capture_output=True, timeout=timeout, errors="replace")
        self.messages += done.stderr
        return done

    def line(self, line):
        code, line = re.fullmatch(r"(?:(\d+) )?(.*)", line).groups()
        line, _, kept = line.partition(" =")
        self.environment["WALK_LINE"] = str(self.count)
        words = [word.format(**self.words) for word in line.split(" ")]
        done = self.run(*words)
        if done.returncode != int(code or 0):
            sys.exit(f"{line}: expected exit code {code or 0}, got {done.returncode}\n{done.stderr}")
        if kept:
            printed = done.stdout.strip()
            self.words[kept] = json.loads(printed)[kept] if "--json" in words else printed

    def all(self):
        missing = [command for command in self.commands()
                   if not re.search(rf"^(\d+ )?vantrel {command}\b", LINES, re.M)]
        if missing:
            sys.exit(f"commands without a journey: {', '.join(sorted(missing))}")
        for line in LINES.strip().splitlines():
            self.line(line)
            self.count += 1

    def commands(self, *path):
        """Returns {"today", "plan add", …}: every command that --help lists."""
        listed = subprocess.run([self.build / "vantrel", *path, "--help"], env=self.environment,
                                capture_output=True, text=True, check=True).stdout
        below = re.search(r"^Commands:\n((?:  .*\n)+)", listed, re.M)
        if not below:
            return {" ".join(path)}
        names = re.findall(r"^  (\S+)", below[1], re.M)
        # lookup uses the network; watch runs until interrupted.
        return set().union(*(self.commands(*path, name) for name in names
                             if name not in ("lookup", "watch")))
