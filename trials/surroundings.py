#!/usr/bin/env python3
"""Runs the program in hostile surroundings: full and read-only disks, files that vanish, are replaced or
are links, other owners, wrong clocks, other versions.

usage: surroundings.py PROGRAM

Restarts itself in a new mount namespace, to mount the small and the read-only disk."""

import concurrent.futures
import os
import pathlib
import re
import shutil
import sqlite3
import subprocess
import sys
import tempfile
import time

import faults
from operations import OPERATIONS, PICTURE, PLAN, nothing, older, plans
from world import World

NOBODY = ("setpriv", "--reuid", "65534", "--regid", "65534", "--clear-groups")


def require(condition, *message):
    if not condition:
        raise AssertionError(" ".join(map(str, message)))


def require_failure(done, codes, words):
    lines = done.stderr.splitlines()
    require(done.returncode in codes and len(lines) == 1 and lines[0].startswith("vantrel: "),
            words[:3], "exit", done.returncode, lines)


def mount(*words):
    subprocess.run(["mount", *map(str, words)], check=True)


def each_operation(world, disturb, codes, calm):
    """Runs every operation with its data on a small disk, after `disturb` and, if it failed, after `calm`."""
    refused = 0
    for operation in OPERATIONS:
        place = World(world.program, world.root / operation.name.replace(" ", "-"))
        mount("-t", "tmpfs", "-o", "size=3m", "disk", place.root)
        try:
            refused += disturbed(place, operation, disturb, codes, calm) != 0
        finally:
            subprocess.run(["umount", "--lazy", str(place.root)], check=True)
    require(refused > len(OPERATIONS) / 2, "only", refused, "operations failed")


def disturbed(place, operation, disturb, codes, calm):
    operation.data(place)
    before = place.state()
    disturb(place)
    done = place.run(*operation.words)
    kept = {path: held for path, held in place.state().items() if path != "filler"}
    if done.returncode:
        require_failure(done, codes, [operation.name])
        require(kept == before, operation.name, "changed data")
    calm(place)
    if done.returncode:
        place.say(*operation.words)
    require(operation.words[:2] == ["plan", "list"] or place.state() != before,
            operation.name, "did nothing")
    return done.returncode


def a_full_disk(world):
    def fill(place):
        with open(place.root / "filler", "wb", buffering=0) as file:
            try:
                while file.write(bytes(1024)):
                    pass
            except OSError:
                return
    each_operation(world, fill, faults.HONEST, lambda place: (place.root / "filler").unlink())


def a_read_only_disk(world):
    each_operation(world, lambda place: mount("-o", "remount,ro", place.root),
                   (*faults.HONEST, 77), lambda place: mount("-o", "remount,rw", place.root))


def while_it_runs(world, words, disturb):
    """Yields (result, world) of runs with `disturb` during a call on the data, for every fourth call."""
    trace = world.root / "trace"
    world.run(*words, before=faults.strace(trace, faults.KILLED))
    calls = list(faults.counted_calls(trace.read_text(encoding="utf-8"), world.group))
    for call, number, _ in calls[::4]:
        with tempfile.TemporaryDirectory() as folder, concurrent.futures.ThreadPoolExecutor(1) as pool:
            place = World(world.program, folder)
            shutil.copytree(world.group, place.group, symlinks=True)
            wait = ("-e", f"inject={call}:delay_enter=400000:when={number}")
            done = pool.submit(place.run, *words, before=faults.strace("/dev/null", faults.KILLED, *wait))
            time.sleep(0.2)
            disturb(place)
            done = done.result()
            if done.returncode:
                require_failure(done, (65, 66, *faults.HONEST_OF_OPENING), [call, number, *words])
            yield done, place


def a_folder_that_vanishes(world):
    plans(world)
    for words in (["plan", "list"], ["plan", "add", "--name", "x"], ["defaults", "write", "a", "b"]):
        for _, place in while_it_runs(world, words, lambda place: shutil.rmtree(place.group)):
            shutil.rmtree(place.group, ignore_errors=True)
            place.say("plan", "add", "--name", "anew")


def a_store_replaced_under_a_reader(world):
    """Replaces the file, or restores its content from another store: one or the other is read."""
    plans(world)
    other = World(world.program, world.root / "other")
    other.say("plan", "add", "--name", "Comet")
    words = ["plan", "list", "--json"]
    names = [set(re.findall('"name": "(.*)"', place.say(*words))) for place in (world, other)]

    def replace(place):
        shutil.copy(other.store, place.root / "new")
        os.replace(place.root / "new", place.store)

    def restore(place):
        subprocess.run(["sqlite3", place.store, f".restore {other.store}"], check=True)

    for disturb in (replace, restore):
        for done, place in while_it_runs(world, words, disturb):
            found = set(re.findall('"name": "(.*)"', done.stdout))
            require(done.returncode or found in names, "a mixture is read:", found)
            require(set(re.findall('"name": "(.*)"', place.say(*words))) == names[1], "not replaced")


def a_plan_removed_while_its_store_is_copied(world):
    """The copy has the plan and its picture, or neither."""
    plans(world)
    words = ["store", "copy", "{root}/group/Vantrel.sqlite", "{root}/Copy.sqlite"]
    for done, place in while_it_runs(world, words, lambda place: place.say("plan", "remove", PLAN)):
        require(done.returncode == 0, "exit", done.returncode, done.stderr)
        connection = sqlite3.connect(place.root / "Copy.sqlite")
        named = {held[1:37].decode() for (held,) in connection.execute("SELECT ZDATA FROM ZIMAGE")}
        connection.close()
        found = {path.name for path in place.root.glob(".Copy_SUPPORT/_EXTERNAL_DATA/*")}
        require(named == found, "named", named, "but found", found)


def copies_to_one_place_at_once(world):
    plans(world)
    words = ["store", "copy", "{root}/group/Vantrel.sqlite", "{root}/copies/Copy.sqlite"]
    for _ in range(20):
        with concurrent.futures.ThreadPoolExecutor(4) as pool:
            ends = sorted(done.returncode for done in pool.map(lambda _: world.run(*words), range(4)))
        require(ends == [0, 73, 73, 73], "exit", ends)
        copies = world.root / "copies"
        found = {str(path.relative_to(copies)) for path in copies.rglob("*") if path.is_file()}
        require(found == {"Copy.sqlite", f".Copy_SUPPORT/_EXTERNAL_DATA/{PICTURE}"}, "found", found)
        shutil.rmtree(copies)
        copies.mkdir()


def clocks_far_away(world):
    for now in ("0001-01-01T00:00:00Z", "1582-10-10T00:00:00Z", "1901-12-13T20:45:51Z",
                "2038-01-19T03:14:08Z", "9999-12-31T23:59:59Z"):
        place = World(world.program, world.root / now)
        place.environment["VANTREL_NOW"] = now
        for words in (["store", "sample"], ["plan", "add", "--name", "Later", "--date", "+3d"],
                      ["today", "--expanded", "--json"], ["plan", "list", "--json"], ["plan", "list"]):
            done = place.run(*words)
            if done.returncode:
                require_failure(done, (64, 65), [now, *words])
            require(done.returncode == 0 or words[1] != "list", now, words, done.stderr)


def other_versions(world):
    """An older version adds records after the migration; a store of a newer version is not changed."""
    older(world)
    world.say("plan", "list")
    world.sql("UPDATE Z_PRIMARYKEY SET Z_MAX = Z_MAX + 1 WHERE Z_NAME = 'Planning';"
              "INSERT INTO ZPLANNING (Z_PK, Z_ENT, Z_OPT, ZNAME) SELECT Z_MAX, Z_ENT, 1, 'Old hand'"
              " FROM Z_PRIMARYKEY WHERE Z_NAME = 'Planning'")
    require("Old hand" in world.say("plan", "list"), "the plan of the older version is missing")
    world.say("store", "identifiers")
    require("null" not in re.findall('"uniqueIdentifier": (.*),', world.say("plan", "list", "--json")),
            "the plan of the older version has no identifier")
    world.sql("UPDATE Z_METADATA SET Z_VERSION = 2")
    before = world.state()
    for operation in OPERATIONS:
        if operation.data not in (nothing,) and operation.words[0] in ("plan", "store", "camera"):
            require_failure(world.run(*operation.words), (65, 66), operation.words)
    require(world.state() == before, "a newer store was changed")


def links_in_place_of_files(world):
    settings = "Library/Preferences/group.vantrel.vantrel.plist"
    names = ["Vantrel.sqlite" + end for end in ("", "-wal", "-shm", "-journal")]
    names += [settings + end for end in ("", ".new", ".lock")]
    for name in names:
        for victim_content in (b"victim " * 1000, None):
            place = World(world.program, tempfile.mkdtemp(dir=world.root))
            plans(place)
            victim, link = place.root / "victim", place.group / name
            if victim_content:
                victim.write_bytes(victim_content)
            link.unlink(missing_ok=True)
            link.symlink_to(victim)
            for words in (["plan", "add", "--name", "x"], ["plan", "list"], ["today"],
                          ["defaults", "write", "a", "b"], ["store", "dedupe"]):
                done = place.run(*words)
                if done.returncode:
                    require_failure(done, (65, 66, *faults.HONEST_OF_OPENING), [name, *words])
            held = victim.read_bytes() if victim.exists() else None
            require(held == victim_content or not victim_content and not held,
                    name, "is a link, and its target was changed")


def other_owners(world):
    if os.getuid() != 0 or subprocess.run([*NOBODY, "true"], check=False).returncode:
        print("  (not tested: only root can run as another user)")
        return
    plans(world)
    os.chmod(world.root, 0o755)
    for parent in world.root.parents:
        require(parent.stat().st_mode & 0o1, parent, "is not accessible to other users: set TMPDIR")
    closed = ["plan", "list"], ["plan", "add", "--name", "x"], ["defaults", "write", "a", "b"]
    before = world.state()
    for words in closed:
        require_failure(world.run(*words, before=NOBODY), (73, 74, 77), ["closed", *words])
    for path in [world.group, *world.group.rglob("*")]:
        os.chmod(path, 0o555 if path.is_dir() else 0o444)
    require(world.run("plan", "list", before=NOBODY).returncode == 0, "a readable store is not listed")
    shared = world.root / "shared"
    shared.mkdir()
    os.chmod(shared, 0o777)
    require(world.run("store", "copy", str(world.store), str(shared / "Copy.sqlite"), before=NOBODY).returncode == 0,
            "a readable store is not copied")
    pictures = {path.name for path in shared.glob(".Copy_SUPPORT/_EXTERNAL_DATA/*")}
    require(pictures == {PICTURE}, "copied without the picture")
    shutil.rmtree(shared)
    for words in closed[1:]:
        require_failure(world.run(*words, before=NOBODY), (73, 74, 77), ["readable", *words])
    require(world.state() == before, "another user changed data")
    shutil.rmtree(world.group)
    world.group.mkdir()
    os.chmod(world.group, 0o777)
    os.umask(0)
    world.say("plan", "add", "--name", "x")
    world.say("defaults", "write", "a", "b")
    for path in world.group.rglob("*"):
        require(not path.stat().st_mode & 0o77, path.name, "is accessible to others")


def main():
    program, *inside = sys.argv[1:]
    if not inside:
        who = () if os.getuid() == 0 else ("--map-root-user",)
        os.execvp("unshare", ["unshare", "--mount", *who, sys.executable, __file__, program, "inside"])
    failed = 0
    for scenario in (a_full_disk, a_read_only_disk, a_folder_that_vanishes,
                     a_store_replaced_under_a_reader, a_plan_removed_while_its_store_is_copied,
                     copies_to_one_place_at_once, clocks_far_away, other_versions,
                     links_in_place_of_files, other_owners):
        with tempfile.TemporaryDirectory() as folder:
            os.chmod(folder, 0o755)
            try:
                scenario(World(program, pathlib.Path(folder) / "data"))
                verdict = "passed"
            except AssertionError as error:
                verdict = f"FAILED: {error}"
                failed += 1
        print(f"{scenario.__name__.replace('_', ' ')}: {verdict}", flush=True)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
