#!/usr/bin/env python3
"""Runs programs that write and read one store and one settings file at the same time.

usage: crowd.py PROGRAM [--seconds 60] [--writers 8] [--readers 8]

Every successful write must be stored once, and no reader may see a part of one: plans are written in
batches of one transaction each, settings as a number that only grows."""

import argparse
import collections
import json
import pathlib
import sys
import tempfile
import threading
import time

from world import World

BATCH = 3
BUSY_SECONDS = 5  # how long a program waits for a locked store
LOCKED = 75


class Crowd:
    def __init__(self, world, seconds):
        self.world = world
        self.end = time.monotonic() + seconds
        self.lock = threading.Lock()
        self.acknowledged = collections.Counter()  # by name of a plan or batch
        self.refused = set()
        self.numbers = {}  # the last number written, by setting
        self.problems = []
        self.counts = collections.Counter()
        self.longest = 0

    def run(self, kind, *words):
        start = time.monotonic()
        done = self.world.run(*words)
        took = time.monotonic() - start
        with self.lock:
            self.counts[kind] += 1
            self.counts["refused"] += done.returncode == LOCKED
            self.longest = max(self.longest, took)
            if done.returncode not in (0, LOCKED):
                self.problems.append(f"{words[:3]}: exit {done.returncode}, {done.stderr.strip()}")
        return done

    def write(self, writer):
        number = 0
        while time.monotonic() < self.end:
            number += 1
            single, batch = f"single {writer} {number}", f"batch {writer} {number}"
            file = self.world.root / f"{writer}.json"
            file.write_text(json.dumps({"plans": [{"name": batch, "notes": str(i)} for i in range(BATCH)]}),
                            encoding="utf-8")
            for name, words in ((single, ("plan", "add", "--name", single)),
                                (batch, ("plan", "import", "--quiet", str(file)))):
                done = self.run("write", *words)
                (self.acknowledged.update((name,)) if done.returncode == 0 else self.refused.add(name))
            # The same plan from every writer: it must be stored once.
            common = f"common {number}"
            file.write_text(json.dumps({"plans": [{"name": common, "uniqueIdentifier": common}]}),
                            encoding="utf-8")
            if self.run("write", "plan", "import", "--quiet", str(file)).returncode == 0:
                self.acknowledged.update((common,))
            if self.run("write", "defaults", "write", f"writer {writer}", str(number)).returncode == 0:
                self.numbers[f"writer {writer}"] = number

    def read(self):
        seen = {}
        while time.monotonic() < self.end:
            plans = self.run("read", "plan", "list", "--json")
            if plans.returncode == 0:
                self.check_names(json.loads(plans.stdout)["plans"])
            settings = self.run("read", "defaults", "list", "--json")
            if settings.returncode == 0:
                for key, held in self.settings(settings.stdout).items():
                    if held < seen.get(key, 0):
                        self.problems.append(f"{key} decreased from {seen[key]} to {held}")
                    seen[key] = held

    def check_names(self, plans):
        names = collections.Counter(plan["name"] for plan in plans)
        for name, count in names.items():
            if count != (BATCH if name.startswith("batch") else 1):
                self.problems.append(f"{name}: found {count} times")
        return names

    @staticmethod
    def settings(text):
        found = json.loads(text)["defaults"]
        return {one["key"]: int(one["value"]) for one in found if one["key"].startswith("writer")}

    def check_end(self):
        names = self.check_names(json.loads(self.world.say("plan", "list", "--json"))["plans"])
        self.problems += [f"lost: {name}" for name in self.acknowledged if name not in names]
        self.problems += [f"reported as not stored, but found: {name}" for name in self.refused if name in names]
        held = self.settings(self.world.say("defaults", "list", "--json"))
        self.problems += [f"lost: {key} = {number}" for key, number in self.numbers.items()
                          if held.get(key, 0) < number]
        if self.world.state()["group/Vantrel.sqlite"]["check"] != "ok":
            self.problems.append("the store is corrupt")
        if self.longest > 2 * BUSY_SECONDS:
            self.problems.append(f"a program ran for {self.longest:.1f} s")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("program")
    parser.add_argument("--seconds", type=float, default=60)
    parser.add_argument("--writers", type=int, default=8)
    parser.add_argument("--readers", type=int, default=8)
    given = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        world = World(given.program, pathlib.Path(folder) / "data")
        world.say("plan", "add", "--name", "first")
        crowd = Crowd(world, given.seconds)
        threads = [threading.Thread(target=crowd.write, args=(i,)) for i in range(given.writers)]
        threads += [threading.Thread(target=crowd.read) for _ in range(given.readers)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        crowd.check_end()
    print(f"{given.writers} writers, {given.readers} readers, {given.seconds:g} s:"
          f" {crowd.counts['write']} writes, {crowd.counts['read']} reads,"
          f" {crowd.counts['refused']} times locked, longest run {crowd.longest:.2f} s,"
          f" {len(crowd.problems)} faults")
    for problem in crowd.problems[:20]:
        print(" ", problem)
    return 1 if crowd.problems else 0


if __name__ == "__main__":
    sys.exit(main())
