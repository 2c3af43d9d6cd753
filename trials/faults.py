#!/usr/bin/env python3
"""Makes each system call of every operation that writes fail, and kills the program at each. Checks
that the data is the old or the new, that errors are reported, and that the operation can be repeated.

usage: faults.py PROGRAM [--operation NAME] [--sample COUNT]

strace counts the program's calls on its data once; then each fails with ENOSPC and with EIO, and the
program is killed at each."""

import argparse
import collections
import concurrent.futures
import os
import pathlib
import re
import sys
import tempfile

from operations import OPERATIONS
from world import IDENTIFIER, World

# Calls that may fail. strace ignores names that this machine lacks.
FAILING = ("open openat write pwrite64 fsync fdatasync rename renameat renameat2 link linkat mkdir "
           "ftruncate fallocate copy_file_range sendfile syncfs").split()
KILLED = FAILING + "unlink rmdir fcntl flock pread64 close chmod fchmodat".split()
ERRORS = ("ENOSPC", "EIO")
HONEST = (73, 74)  # Cannot create; reading or writing failed.
# A store that cannot be opened for writing is opened for reading, which may fail with another code.
HONEST_OF_OPENING = (*HONEST, 75, 77)

# Unfinished settings, exports and stores.
DRAFT = re.compile(r"\.plist\.new$|\.part\d+$|\.vantrel-draft\." + IDENTIFIER.pattern)

Case = collections.namedtuple("Case", "call number error")  # error None: SIGKILL
Ending = collections.namedtuple("Ending", "code state answers")


def strace(output, calls, *more):
    names = ",".join("?" + call for call in calls)
    return ("strace", "-f", "-y", "-s", "0", "-o", str(output), "-e", "trace=" + names,
            "-e", "signal=none", *more)


def counted_calls(trace, root):
    """Yields (call, its number among the calls of this name, line) for the calls on the data."""
    numbers = collections.Counter()
    for line in trace.splitlines():
        found = re.match(r"\d+ +(\w+)\(", line)
        if not found:
            continue
        call = found[1]
        numbers[call] += 1
        if str(root) in line:
            yield call, numbers[call], line


def undurable(lines):
    """Returns written files and folders with new names that were not synchronised. Omits stores that
    have a WAL."""
    dirty = set()
    for call, _, line in lines:
        paths = re.findall(r'[<"](/[^">]*)', line)
        if not paths or "= -1" in line or any(path.endswith(("-shm", ".lock")) for path in paths):
            continue
        if call in ("write", "pwrite64", "ftruncate", "copy_file_range", "sendfile"):
            dirty.add(paths[0] if call != "copy_file_range" else paths[1])
        elif call.startswith(("rename", "link")):
            dirty.add(os.path.dirname(paths[-1]))
        elif call in ("fsync", "fdatasync", "unlink"):
            dirty.discard(paths[0])
        elif call == "syncfs":
            dirty.clear()
    return sorted(path for path in dirty if not os.path.exists(path + "-wal"))


def essential(state):
    """Returns `state` without pictures that no record names, which a killed program may leave."""
    def counts(path):
        picture = re.fullmatch(r"(.*/)\.(\w+)_SUPPORT/_EXTERNAL_DATA/(.*)", path)
        return not picture or picture[3] in repr(state.get(f"{picture[1]}{picture[2]}.sqlite"))
    return {path: holds for path, holds in state.items() if counts(path)}


class Trial:
    """One operation: its undisturbed result, and its cases."""

    def __init__(self, program, operation, folder):
        self.operation = operation
        self.folder = pathlib.Path(folder) / operation.name.replace(" ", "-")
        self.before = World(program, pathlib.Path(folder) / "data" / operation.data.__name__)
        if not self.before.state():
            operation.data(self.before)
        start = self.before.state()
        first = self.before.copy_to(self.folder / "first")
        trace = self.folder / "trace"
        self.endings = []
        # Run it, and repeat it on the result.
        for before in (strace(trace, KILLED), ()):
            done = first.run(*operation.words, before=before)
            # On a copy: reading may migrate a store of an older version.
            asked = first.copy_to(self.folder / f"asked{len(self.endings)}")
            self.endings.append(Ending(done.returncode, first.state(), asked.answers()))
        self.listing = done.stdout if operation.words[:2] == ["plan", "list"] else None
        self.states = [start, self.endings[0].state]
        calls = list(counted_calls(trace.read_text(encoding="utf-8"), first.root))
        self.problems = [] if self.endings[0].code == 0 else [f"undisturbed: exit {self.endings[0].code}"]
        self.problems += [f"not synchronised: {path}" for path in undurable(calls)]
        self.cases = [Case(call, number, error) for error in (*ERRORS, None)
                      for call, number, _ in calls if error is None or call in FAILING]

    def run(self, case):
        """Returns (index of the resulting state, exit code, leftover files, problems)."""
        with tempfile.TemporaryDirectory(dir=self.folder) as folder:
            world = self.before.copy_to(pathlib.Path(folder) / "data")
            log = pathlib.Path(folder) / "trace"
            fault = f"error={case.error}" if case.error else "signal=KILL"
            inject = f"inject={case.call}:{fault}:when={case.number}"
            done = world.run(*self.operation.words, before=strace(log, KILLED, "-e", inject))
            trace = log.read_text(encoding="utf-8")
            which = self.state_of(world, case)
            problems = ["neither the old state nor the new"] if which is None else []
            if case.error:
                problems += self.dishonesty(case, done, which)
                problems += [] if "INJECTED" in trace else ["did not fail"]
            elif done.returncode != -9:
                problems.append(f"was not killed: exit {done.returncode}")
            if done.returncode == 0:
                lost = undurable(counted_calls(trace, world.root))
                problems += [f"reported success, not synchronised: {path}" for path in lost]
            leftover = None
            if which is not None:
                leftover, more = self.repeat(world, case, self.endings[which])
                problems += more
        return which, done.returncode, leftover, problems

    def state_of(self, world, case):
        """Returns 0 for the old state, 1 for the new. Only a killed program may leave more files."""
        state = world.state()
        if case.error:
            return self.states.index(state) if state in self.states else None
        held = essential({path: holds for path, holds in state.items() if not DRAFT.search(path)})
        states = [essential(known) for known in self.states]
        return states.index(held) if held in states else None

    def dishonesty(self, case, done, which):
        problems = []
        # `plan list` may succeed without migrating the store.
        if done.returncode == 0 and which != 1 and done.stdout != self.listing:
            problems.append("reported success")
        if done.returncode not in (0, *(HONEST_OF_OPENING if "open" in case.call else HONEST)):
            problems.append(f"exit {done.returncode}")
        lines = done.stderr.splitlines()
        if done.returncode and not (len(lines) == 1 and lines[0].startswith("vantrel: ")):
            problems.append(f"printed {lines}")
        return problems

    def repeat(self, world, case, ending):
        code = world.run(*self.operation.words).returncode
        state = world.state()
        leftover = set(state) - set(ending.state)
        if not case.error:
            state = essential({path: holds for path, holds in state.items() if not DRAFT.search(path)})
            ending = ending._replace(state=essential(ending.state))
        problems = [] if code == ending.code else [f"repeated: expected exit {ending.code}, got {code}"]
        if state != ending.state:
            problems.append("repeated: different state")
        if world.answers() != ending.answers:
            problems.append("repeated: different answers")
        return leftover, problems


def sampled(cases, count):
    if count and len(cases) > count:
        return cases[::-(-len(cases) // count)]
    return cases


def report(trial, cases, results):
    """Prints a line of the table and up to three problems of each kind. Returns the number of problems."""
    kills = sum(case.error is None for case in cases)
    ends = collections.Counter(which for which, *_ in results)
    late = sum(which == 1 and code > 0 for which, code, *_ in results)
    leftovers = sum(bool(leftover) for _, _, leftover, _ in results)
    print(f"{trial.operation.name:18} {len(cases) - kills:6} {kills:6} {ends[0]:6} {ends[1]:6} {late:11}"
          f" {leftovers:9}", flush=True)
    problems = [("undisturbed", problem) for problem in trial.problems]
    problems += [(" ".join(map(str, case)), problem)
                 for case, (*_, found) in zip(cases, results) for problem in found]
    kinds = collections.Counter()
    for case, problem in problems:
        kind = IDENTIFIER.sub("*", re.sub(r"/\S+/", "", problem))
        kinds[kind] += 1
        if kinds[kind] <= 3:
            print(f"  {case}: {problem}")
    return len(problems)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("program")
    parser.add_argument("--operation", help="only this one")
    parser.add_argument("--sample", type=int, help="run this many cases of each operation, evenly chosen")
    given = parser.parse_args()
    failed = total = 0
    print(f"{'operation':18} {'fails':>6} {'kills':>6} {'old':>6} {'new':>6} {'late errors':>11}"
          f" {'leftovers':>9}")
    with tempfile.TemporaryDirectory() as folder, \
            concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for operation in OPERATIONS:
            if given.operation in (None, operation.name):
                trial = Trial(given.program, operation, folder)
                cases = sampled(trial.cases, given.sample)
                failed += report(trial, cases, list(pool.map(trial.run, cases)))
                total += len(cases)
    print(f"{total} disturbed runs, {failed} faults")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
