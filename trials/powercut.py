#!/usr/bin/env python3
"""Simulates a power cut after every call of every operation that writes: builds the disks that may be
left, and checks that each is readable, has the old data or the new, and that the operation can be
repeated.

usage: powercut.py PROGRAM [--operation NAME] [--states COUNT] [--seed N] [--no-sync]

strace records an operation once. After each call, synchronised changes are on the disk; of the others
the disk may have none, all, all but one, a write torn at sectors of 512 bytes, names without data, or
data without names. A rename is atomic. Changes of a folder require a synchronisation of that folder, as
in POSIX; most file systems keep more.

Programs write to a store's -shm through memory, which strace does not see: it is not recorded, and on
each disk missing, zeros or noise. SQLite rebuilds it from the WAL."""

import argparse
import collections
import itertools
import multiprocessing
import os
import pathlib
import random
import re
import shutil
import sqlite3
import sys
import tempfile

from faults import DRAFT, essential
from operations import LONG, OPERATIONS, Operation, nothing, plans
from world import IDENTIFIER, World, content, is_empty_store

RECORDED = ("open openat creat close write writev pwrite64 pwritev pwritev2 truncate ftruncate fallocate"
            " copy_file_range sendfile lseek dup dup2 dup3 rename renameat renameat2 link linkat symlink"
            " symlinkat unlink unlinkat mkdir mkdirat rmdir fsync fdatasync syncfs sync").split()
SECTOR = 512
SHM_SIZE = 32768
READERS = [["today"], ["plan", "list"], ["store", "info"], ["defaults", "read", "note"],
           ["defaults", "read", "note", "--standard"]]


def with_leftovers(world):
    """Adds what killed programs leave: a WAL with data, a draft, unfinished settings, a copy's picture."""
    plans(world)
    connection = sqlite3.connect(world.store)
    connection.execute("UPDATE ZPLANNING SET ZNAME = 'In the log' WHERE ZNAME = 'Sun'")
    connection.commit()
    files = [pathlib.Path(f"{world.store}{suffix}") for suffix in ("", "-wal")]
    left = [file.read_bytes() for file in files]
    connection.close()
    for file, held_bytes in zip(files, left):
        file.write_bytes(held_bytes)
    draft = world.group / ".vantrel-draft.33333333-3333-4333-8333-333333333333"
    draft.mkdir()
    for name in ("vantrel-store-draft.lock", "Draft.sqlite", "Draft.sqlite-journal"):
        (draft / name).write_bytes(b"half ")
    for settings in world.root.rglob("*.plist"):
        settings.with_suffix(".plist.new").write_bytes(b"half")
    shutil.copytree(world.group / ".Vantrel_SUPPORT", world.root / "copies" / ".Copy_SUPPORT")


def journalled(world):
    plans(world)
    world.sql("PRAGMA journal_mode = DELETE")


# Several operations in a row, with no other synchronisation than their own.
IN_A_ROW = [operation.words for operation in OPERATIONS if operation.data is plans]
SEQUENCES = [
    ("first day", nothing,
     [["plan", "add", "--name", "First", "--date", "+1d"],
      ["defaults", "write", "note", "short", "--standard"],
      ["plan", "add", "--name", "Second", "--date", "+1d", "--notes", LONG],
      ["defaults", "write", "note", "short"],
      ["observer", "set", "--latitude", "41", "--longitude", "2"],
      ["camera", "add", "Wide", "--width", "36", "--height", "24"],
      ["store", "copy", "{root}/group/Vantrel.sqlite", "{root}/Copy.sqlite"]]),
    ("all in a row", plans, IN_A_ROW), ("with leftovers", with_leftovers, IN_A_ROW),
    ("without a log", journalled, IN_A_ROW)]

# The changes of a call. `names` maps (folder, name) to the new entry; None if removed.
Data = collections.namedtuple("Data", "file offset bytes")
Size = collections.namedtuple("Size", "file size")
Names = collections.namedtuple("Names", "names folder")
Sync = collections.namedtuple("Sync", "what")  # None: all files

# A disk that may be left: the number of changes before the cut, the fates of those that are not
# synchronised, and the content of each -shm.
Cut = collections.namedtuple("Cut", "count fates kind shm")
KEPT, LOST, TORN, BLANK = range(4)


class Disk:
    """Files (bytes) and folders (number by name) by number; 0 is the root."""

    def __init__(self, root=None):
        self.nodes = [{}]
        if root:
            self.load(pathlib.Path(root), 0)

    def load(self, folder, number):
        for path in sorted(folder.iterdir()):
            is_folder = path.is_dir()
            self.nodes.append({} if is_folder else bytearray(path.read_bytes()))
            self.nodes[number][path.name] = len(self.nodes) - 1
            if is_folder:
                self.load(path, len(self.nodes) - 1)

    def copy(self):
        disk = Disk()
        disk.nodes = [node.copy() for node in self.nodes]
        return disk

    def tree(self, number=0, path=""):
        """Yields (path, bytes or None for a folder) for all entries."""
        for name, inner in sorted(self.nodes[number].items()):
            below = f"{path}/{name}".lstrip("/")
            if isinstance(self.nodes[inner], dict):
                yield below, None
                yield from self.tree(inner, below)
            else:
                yield below, bytes(self.nodes[inner])

    def apply(self, change, fate=KEPT, draw=None):
        if isinstance(change, Sync):
            return
        if isinstance(change, Names):
            for (folder, name), number in change.names.items():
                self.nodes[folder].pop(name, None)
                if number is not None:
                    self.nodes[folder][name] = number
        elif isinstance(change, Size):
            node = self.nodes[change.file]
            del node[change.size:]
            node.extend(bytes(change.size - len(node)))
        elif fate == KEPT:
            self.write(change.file, change.offset, change.bytes)
        elif fate == TORN:
            for offset, sector in sectors(change):
                if draw.random() < 0.5:
                    self.write(change.file, offset, sector)
        elif fate == BLANK:
            # The file has its new size, but the new end was not written.
            size = len(self.nodes[change.file])
            grown = change.offset + len(change.bytes) - size
            if grown > 0:
                self.write(change.file, size, draw.choice([bytes(grown), draw.randbytes(grown)]))

    def write(self, file, offset, data):
        node = self.nodes[file]
        node.extend(bytes(max(0, offset - len(node))))
        node[offset:offset + len(data)] = data


def sectors(change):
    end = change.offset + len(change.bytes)
    start = change.offset
    while start < end:
        stop = min(end, start - start % SECTOR + SECTOR)
        yield start, change.bytes[start - change.offset:stop - change.offset]
        start = stop


class Recorder:
    """Applies a trace to a copy of the disk; `changes` are the changes of files below `root`."""

    def __init__(self, root):
        self.root = str(root)
        self.disk = Disk(root)
        self.changes = []

    def follow(self, trace):
        self.files = {}  # by descriptor: number (None outside `root`), offset, whether O_APPEND
        for line in trace.splitlines():
            if "<unfinished" in line:
                raise ValueError("concurrent threads cannot be recorded")
            found = re.match(r"\d+ +(\w+)\((.*)\) += (-?\d+)", line)
            if found and int(found[3]) >= 0:
                call, arguments, result = found[1], found[2].split(", "), int(found[3])
                if not hasattr(self, "on_" + call):
                    raise ValueError(f"{call} cannot be recorded")
                getattr(self, "on_" + call)(arguments, result)

    def do(self, change):
        self.changes.append(change)
        self.disk.apply(change)

    # Returns (folder, name); (None, None) outside `root` and for a -shm.
    def place(self, folder, path):
        path = text(path)
        if not path.startswith("/"):
            cwd = re.fullmatch(r"AT_FDCWD<(.*)>", folder)
            if cwd:
                path = text(f'"{cwd[1]}"') + "/" + path
            else:
                number = self.files[descriptor(folder)][0]
                if number is None:
                    return None, None
                if "/" in path.rstrip("/"):
                    raise ValueError("a path below a descriptor cannot be recorded")
                return number, path.rstrip("/")
        path = os.path.normpath(path)
        if not path.startswith(self.root + "/") or path.endswith("-shm"):
            return None, None
        *folders, name = path[len(self.root) + 1:].split("/")
        number = 0
        for inner in folders:
            number = self.disk.nodes[number][inner]
        return number, name

    def number_at(self, folder, path):
        path = os.path.normpath(text(path))
        if path == self.root:
            return 0
        link = re.fullmatch(r"/proc/self/fd/(\d+)", path)
        if link:
            return self.files[int(link[1])][0]
        folder, name = self.place(folder, f'"{escaped(path)}"')
        return None if folder is None else self.disk.nodes[folder].get(name)

    def make(self, node, folder, name):
        """Creates a file or folder; without an entry if `name` is None. Returns its number."""
        self.disk.nodes.append(node)
        number = len(self.disk.nodes) - 1
        if name:
            self.do(Names({(folder, name): number}, folder))
        return number

    def on_openat(self, arguments, result):
        flags = arguments[2].split("|")
        if "O_TMPFILE" in flags:
            folder = self.number_at(*arguments[:2])
            number = None if folder is None else self.make(bytearray(), folder, None)
        else:
            number = self.number_at(*arguments[:2])
            folder, name = (None, None) if number is not None else self.place(*arguments[:2])
            if folder is not None and "O_CREAT" in flags:
                number = self.make(bytearray(), folder, name)
            elif number is not None and "O_TRUNC" in flags:
                self.do(Size(number, 0))
        self.files[result] = [number, 0, "O_APPEND" in flags]

    def on_open(self, arguments, result):
        self.on_openat(["AT_FDCWD<>", *arguments], result)

    def on_close(self, arguments, _result):
        self.files.pop(descriptor(arguments[0]), None)

    def on_lseek(self, arguments, result):
        if descriptor(arguments[0]) in self.files:
            self.files[descriptor(arguments[0])][1] = result

    def on_write(self, arguments, result):
        file = self.files.get(descriptor(arguments[0]), [None])
        if file[0] is not None:
            offset = len(self.disk.nodes[file[0]]) if file[2] else file[1]
            self.do(Data(file[0], offset, data(arguments[1])[:result]))
            file[1] = offset + result

    def on_pwrite64(self, arguments, result):
        number = self.files[descriptor(arguments[0])][0]
        if number is not None:
            self.do(Data(number, int(arguments[3]), data(arguments[1])[:result]))

    def on_ftruncate(self, arguments, _result):
        number = self.files[descriptor(arguments[0])][0]
        if number is not None:
            self.do(Size(number, int(arguments[1])))

    def on_mkdirat(self, arguments, _result):
        folder, name = self.place(*arguments[:2])
        if folder is not None:
            self.make({}, folder, name)

    def on_mkdir(self, arguments, result):
        self.on_mkdirat(["AT_FDCWD<>", *arguments], result)

    def on_unlinkat(self, arguments, _result):
        folder, name = self.place(*arguments[:2])
        if folder is not None:
            self.do(Names({(folder, name): None}, folder))

    def on_unlink(self, arguments, result):
        self.on_unlinkat(["AT_FDCWD<>", *arguments], result)

    on_rmdir = on_unlink

    def on_linkat(self, arguments, _result):
        number = self.number_at(*arguments[:2])
        folder, name = self.place(*arguments[2:4])
        if folder is not None:
            self.do(Names({(folder, name): number}, folder))

    def on_link(self, arguments, result):
        self.on_linkat(["AT_FDCWD<>", arguments[0], "AT_FDCWD<>", arguments[1]], result)

    def on_renameat(self, arguments, _result):
        number = self.number_at(*arguments[:2])
        folder, name = self.place(*arguments[2:4])
        if folder is not None:
            self.do(Names({self.place(*arguments[:2]): None, (folder, name): number}, folder))

    def on_rename(self, arguments, result):
        self.on_renameat(["AT_FDCWD<>", arguments[0], "AT_FDCWD<>", arguments[1]], result)

    def on_fsync(self, arguments, _result):
        number = self.files[descriptor(arguments[0])][0]
        if number is not None:
            self.changes.append(Sync(number))

    on_fdatasync = on_fsync

    def on_syncfs(self, _arguments, _result):
        self.changes.append(Sync(None))


def data(argument):
    return bytes.fromhex(argument.strip('"').replace("\\x", ""))


def text(argument):
    return os.fsdecode(data(argument))


def escaped(path):
    return "".join(f"\\x{byte:02x}" for byte in os.fsencode(path))


def descriptor(argument):
    return int(argument.split("<")[0])


def settled(changes):
    """Returns, by the index of a change, the index of the synchronisation that covers it."""
    found = {}
    waiting = []
    for i, change in enumerate(changes):
        if isinstance(change, Sync):
            covered = [j for j in waiting if change.what in (None, covering(changes[j]))]
            found.update((j, i) for j in covered)
            waiting = [j for j in waiting if j not in found]
        else:
            waiting.append(i)
    return found


def covering(change):
    return change.folder if isinstance(change, Names) else change.file


class Recording:
    """One operation or several in a row: their changes, the resulting data and the output of readers."""

    def __init__(self, program, name, prepare, commands, folder, is_synchronised=True):
        self.name = name
        self.commands = commands
        self.folder = pathlib.Path(folder) / name.replace(" ", "-")
        self.before = World(program, self.folder / "data")
        self.program = program
        prepare(self.before)
        place = self.before.copy_to(self.folder / "recorded")
        recorder = Recorder(place.root)
        self.start = recorder.disk.copy()
        self.ends = [0]  # the number of changes when each command had exited
        self.stages = []
        self.add_stage(place)
        trace = self.folder / "trace"
        for number, words in enumerate(commands):
            place.say(*words, before=strace(trace))
            recorder.follow(trace.read_text(encoding="ascii"))
            if list(recorder.disk.tree()) != list(Disk(place.root).tree()):
                raise ValueError(f"{name}: the recording of {words} differs from the files")
            self.ends.append(len(recorder.changes))
            self.add_stage(place)
            again = place.copy_to(self.folder / f"again{number}")
            again.run(*words)
            self.stages[-1]["again"] = held(again)
        self.changes = recorder.changes
        if not is_synchronised:
            self.changes = [change for change in self.changes if not isinstance(change, Sync)]
            self.ends = [sum(not isinstance(change, Sync) for change in recorder.changes[:end])
                         for end in self.ends]
        # Reserve numbers for files and folders that are created later.
        self.start.nodes += [type(node)() for node in recorder.disk.nodes[len(self.start.nodes):]]
        self.base = 0, self.start  # cache: number of changes, the disk after them
        self.settled = settled(self.changes)

    def add_stage(self, place):
        """Adds the present state. If there is no store, a cut may leave an empty one, for which readers
        print something else."""
        number = len(self.stages)
        places = [place.copy_to(self.folder / f"stage{number}")]
        if not place.store.exists():
            places.append(place.copy_to(self.folder / f"empty{number}"))
            places[1].say("plan", "add", "--name", "removed")
            places[1].say("plan", "remove", IDENTIFIER.search(places[1].say("plan", "list", "--json"))[0])
        self.stages.append({"held": held(place), "places": places, "outputs": {}})

    def outputs(self, number, first):
        """Returns the output of the readers, starting with `first`: a reader may migrate the store."""
        stage = self.stages[number]
        if first not in stage["outputs"]:
            stage["outputs"][first] = []
            for place in stage["places"]:
                with tempfile.TemporaryDirectory(dir=self.folder) as folder:
                    stage["outputs"][first].append(outputs_of_readers(place.copy_to(folder), first))
        return stage["outputs"][first]

    def cuts(self, draw, number):
        """Returns up to `number` different disks; up to half of them are cuts after a command."""
        seen = set()
        found = []
        counts = range(len(self.changes) + 1)
        if 4 * number < len(counts):
            counts = sorted({*draw.sample(counts, 4 * number), *self.ends})
        for count in counts:
            for kind, fates in self.fates(count, draw):
                cut = Cut(count, fates, kind, None)
                # The same disk is a different case before and after a command has exited.
                key = hash(tuple(self.disk(cut).tree())), self.stages_at(count)
                if key not in seen:
                    seen.add(key)
                    found.append(cut._replace(shm=draw.choice(["missing", "zeros", "noise"])))
        if len(found) > number:
            ended = [cut for cut in found if cut.count in self.ends]
            others = [cut for cut in found if cut.count not in self.ends]
            ended = draw.sample(ended, min(len(ended), number // 2))
            found = ended + draw.sample(others, min(len(others), number - len(ended)))
        return found

    def fates(self, count, draw):
        """Yields (kind, fates by index) for the changes that are not synchronised."""
        loose = [i for i in range(count) if not isinstance(self.changes[i], Sync)
                 and self.settled.get(i, count) >= count]
        names = [i for i in loose if isinstance(self.changes[i], Names)]
        written = [i for i in loose if isinstance(self.changes[i], Data)]

        def all_but(lost, fate=LOST):
            return tuple(sorted((i, fate) for i in lost))
        yield "all", ()
        if not loose:
            return
        yield "none", all_but(loose)
        for i in draw.sample(loose, min(4, len(loose))):
            yield "all but one", all_but([i])
            yield "none but one", all_but(set(loose) - {i})
        if written:
            for _ in range(2):
                yield "torn", ((written[-1], TORN),)
            yield "names without data", all_but(set(loose) - set(names))
            yield "names without data", all_but(written, BLANK)
            yield "a blank end", ((draw.choice(written), BLANK),)
        if names:
            yield "data without names", all_but(names)
        for _ in range(3):
            yield "some", tuple((i, draw.choice([LOST, TORN, BLANK]) if i in written else LOST)
                                for i in loose if draw.random() < 0.5)

    def disk(self, cut):
        """Returns the disk of a cut; random choices depend on the cut only."""
        draw = random.Random(repr(cut[:3]))
        fates = dict(cut.fates)
        # Disks are equal up to the first change that is not kept.
        first = min([cut.count, *fates])
        done, base = self.base if self.base[0] <= first else (0, self.start)
        base = base.copy()
        for change in self.changes[done:first]:
            base.apply(change)
        self.base = first, base
        disk = base.copy()
        for i, change in enumerate(self.changes[first:cut.count], first):
            if fates.get(i, KEPT) != LOST:
                disk.apply(change, fates.get(i, KEPT), draw)
        return disk

    def stages_at(self, count):
        """Returns the allowed stages: old and new, or after a command has exited only the new."""
        command = max(i for i, end in enumerate(self.ends) if end <= count)
        return (command,) if self.ends[command] == count else (command, command + 1)

    def place(self, cut, folder):
        """Writes the disk after the cut to `folder`."""
        root = pathlib.Path(folder)
        draw = random.Random(repr(cut))
        for path, held_bytes in self.disk(cut).tree():
            if held_bytes is None:
                (root / path).mkdir()
                continue
            (root / path).write_bytes(held_bytes)
            if path.endswith(".sqlite") and cut.shm != "missing":
                noise = bytes(SHM_SIZE) if cut.shm == "zeros" else draw.randbytes(SHM_SIZE)
                (root / f"{path}-shm").write_bytes(noise)
        return World(self.program, root)

    def examine(self, cut):
        """Returns (stage, problems)."""
        draw = random.Random(repr(cut))
        problems = []
        with tempfile.TemporaryDirectory(dir=self.folder) as folder:
            for copy in ("read", "repeat"):
                (pathlib.Path(folder) / copy).mkdir()
            place = self.place(cut, pathlib.Path(folder) / "read")
            try:
                state = held(place)
            except Exception as error:  # reading corrupt files may raise anything
                return None, [f"damaged: {error}"]
            stages = [i for i in self.stages_at(cut.count) if self.stages[i]["held"] == state]
            if not stages:
                known = [i for i, stage in enumerate(self.stages) if stage["held"] == state]
                return None, [f"lost: state after {known[-1]} commands" if known else "neither old nor new"]
            first = draw.randrange(len(READERS))
            outputs = outputs_of_readers(place, first)
            expected = [known for i in stages for known in self.outputs(i, first)]
            if outputs not in expected:
                problems += [f"{' '.join(READERS[i])}: {outputs[i][:1] + outputs[i][2:]}, not {expected[0][i][0]}"
                             for i in outputs if all(outputs[i] != known[i] for known in expected)]
                problems = problems or ["readers differ"]
            place = self.place(cut, pathlib.Path(folder) / "repeat")
            problems += self.repeat(place, cut, stages)
        return stages[-1], problems

    def repeat(self, place, cut, stages):
        command = min(self.stages_at(cut.count)[0], len(self.commands) - 1)
        done = place.run(*self.commands[command])
        # The results on the state before the command and on the state after it.
        ends = [self.stages[i + 1]["held"] if i == command else self.stages[i]["again"] for i in stages]
        state = held(place)
        if state not in ends:
            return [f"repeated: different state, exit {done.returncode} {done.stderr.strip()}"]
        return []


def held(world):
    """Returns the stored data, without harmless leftovers."""
    paths = [path for path in world.files() if not DRAFT.search(str(path.relative_to(world.root)))]
    state = {str(path.relative_to(world.root)): content(path) for path in paths}
    return essential({path: holds for path, holds in state.items() if not is_empty_store(holds)})


def outputs_of_readers(world, first):
    outputs = {}
    for i in itertools.chain(range(first, len(READERS)), range(first)):
        done = world.run(*READERS[i])
        texts = [IDENTIFIER.sub("*", text.replace(str(world.root), "")) for text in (done.stdout, done.stderr)]
        outputs[i] = (done.returncode, re.sub(r"Size .*", "", texts[0]), texts[1])
    return outputs


def strace(output):
    calls = ",".join("?" + call for call in RECORDED)
    return ("strace", "-f", "-y", "-xx", "-s", "10000000", "-o", str(output), "-e", "trace=" + calls,
            "-e", "signal=none")


def report(recording, cuts, results):
    """Prints a line of the table and two problems of each kind. Returns the number of faulty disks."""
    ends = collections.Counter(which for which, _ in results)
    wrong = sum(bool(problems) for _, problems in results)
    last = len(recording.commands)
    print(f"{recording.name:18} {len(recording.changes):8} {len(cuts):7} {ends[0]:6} {ends[last]:6}"
          f" {wrong:6}", flush=True)
    kinds = collections.Counter()
    for cut, (_, problems) in zip(cuts, results):
        for problem in problems:
            kind = IDENTIFIER.sub("*", problem)
            kinds[kind] += 1
            if kinds[kind] <= 2:
                print(f"  {cut.count} of {len(recording.changes)} calls, {cut.kind}, -shm {cut.shm}: {problem}")
    for kind, count in kinds.items():
        if count > 2:
            print(f"  {count} times: {kind}")
    return wrong


RECORDINGS = []  # inherited by the processes of the pool


def examine(number, cut):
    return RECORDINGS[number].examine(cut)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("program")
    parser.add_argument("--operation", help="only this one")
    parser.add_argument("--states", type=int, default=1000, help="maximum number of disks of each operation")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--no-sync", action="store_true",
                        help="ignore all synchronisations: must find faults")
    given = parser.parse_args()
    if os.path.isdir("/dev/shm"):
        tempfile.tempdir = "/dev/shm"
    rows = [Operation(name, data, commands) for name, data, commands in SEQUENCES]
    rows += [operation._replace(words=[operation.words]) for operation in OPERATIONS]
    total = wrong = 0
    print(f"{'operation':18} {'changes':>8} {'states':>7} {'old':>6} {'new':>6} {'faults':>6}")
    with tempfile.TemporaryDirectory() as folder:
        for name, prepare, commands in rows:
            if given.operation not in (None, name):
                continue
            RECORDINGS.append(Recording(given.program, name, prepare, commands, folder, not given.no_sync))
            cuts = RECORDINGS[-1].cuts(random.Random(f"{given.seed} {name}"), given.states)
            with multiprocessing.Pool() as pool:
                jobs = [(len(RECORDINGS) - 1, cut) for cut in cuts]
                wrong += report(RECORDINGS[-1], cuts, pool.starmap(examine, jobs, chunksize=8))
            total += len(cuts)
            shutil.rmtree(RECORDINGS[-1].folder)
    print(f"{total} states, {wrong} of them with faults")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
