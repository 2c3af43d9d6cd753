#!/usr/bin/env python3
"""Edits stores of several writers through `vantrel` and compares every table, row and column with the
original. Only the plan that was inserted, edited or deleted may differ.

usage: roundtrip.py VANTREL [STORE...]

STORE: stores of other apps, without plans, which the program must reject and leave unchanged."""

import pathlib
import plistlib
import shutil
import sqlite3
import sys
import tempfile

from operations import PLAN, older, plans
from world import World

PICTURES = ("22222222-2222-4222-8222-222222222222", "33333333-3333-4333-8333-333333333333")


def tables(store):
    """Returns the schema and {table: {key: {column: value}}}."""
    connection = sqlite3.connect(f"file:{store}?mode=ro", uri=True)
    connection.row_factory = sqlite3.Row
    for pragma, good in (("integrity_check", [("ok",)]), ("foreign_key_check", [])):
        found = [tuple(row) for row in connection.execute(f"PRAGMA {pragma}")]
        assert found == good, f"{pragma}: {found}"
    schema = {row["name"]: row["sql"] for row in connection.execute("SELECT * FROM sqlite_schema")}
    found = {}
    for (name,) in connection.execute("SELECT name FROM sqlite_schema WHERE type = 'table'").fetchall():
        rows = connection.execute(f'SELECT rowid AS row, * FROM "{name}" ORDER BY rowid').fetchall()
        found[name] = {row[0]: dict(row) for row in rows}
    connection.close()
    return schema, found


def files(world):
    folder = world.group / ".Vantrel_SUPPORT"
    return {path.name: path.read_bytes() for path in folder.rglob("*") if path.is_file()}


def differences(before, after):
    """Returns {(table, key): (old row, new row)} for the rows that differ."""
    assert before.keys() == after.keys(), f"tables: {before.keys() ^ after.keys()}"
    return {(table, key): (before[table].get(key), after[table].get(key))
            for table in before for key in before[table].keys() | after[table].keys()
            if before[table].get(key) != after[table].get(key)}


def columns(pair):
    old, new = pair
    return {name for name in old if old[name] != new[name]}


def changed(world, *words, reader):
    """Runs a command. Returns its output, the differences in the store, and the new tables."""
    schema, before = tables(world.store)
    if reader:  # keeps a snapshot while the program writes
        reader = sqlite3.connect(world.store)
        reader.execute("BEGIN")
        seen = reader.execute("SELECT * FROM ZPLANNING ORDER BY Z_PK").fetchall()
    printed = world.say(*words)
    if reader:
        assert reader.execute("SELECT * FROM ZPLANNING ORDER BY Z_PK").fetchall() == seen, "snapshot"
        reader.close()
    new_schema, after = tables(world.store)
    assert schema == new_schema, f"schema: {schema.items() ^ new_schema.items()}"
    return printed.strip(), differences(before, after), after


def check(world, reader=False):
    """Inserts, edits and deletes a plan, and edits an existing one. Returns the number of edits."""
    kept = files(world)
    before = tables(world.store)[1]
    entity = next(key for key, row in before["Z_PRIMARYKEY"].items() if row["Z_NAME"] == "Planning")
    key = before["Z_PRIMARYKEY"][entity]["Z_MAX"] + 1
    row = ("ZPLANNING", key)

    identifier, found, after = changed(world, "plan", "add", "--name", "New", "--date", "+1d", reader=reader)
    assert found.keys() == {row, ("Z_PRIMARYKEY", entity)}, f"insert: {found.keys()}"
    assert columns(found["Z_PRIMARYKEY", entity]) == {"Z_MAX"}, "insert: Z_PRIMARYKEY"
    assert after["Z_PRIMARYKEY"][entity]["Z_MAX"] == key, "insert: Z_MAX"
    assert (found[row][1]["Z_ENT"], found[row][1]["Z_OPT"]) == (entity, 1), "insert: row"

    for version in (2, 3):
        _, found, _ = changed(world, "plan", "edit", identifier, "--name", f"New {version}", reader=reader)
        assert found.keys() == {row}, f"edit: {found.keys()}"
        assert columns(found[row]) == {"ZNAME", "Z_OPT"}, f"edit: {columns(found[row])}"
        assert found[row][1]["Z_OPT"] == version, "edit: Z_OPT"

    _, found, after = changed(world, "plan", "remove", identifier, reader=reader)
    assert found.keys() == {row}, f"delete: {found.keys()}"
    assert found[row][1] is None and after["Z_PRIMARYKEY"][entity]["Z_MAX"] == key, "delete: Z_MAX"

    moon = next(row for row in before["ZPLANNING"].values() if row["ZNAME"] == "Moon")
    notes = f"Version {moon['Z_OPT'] + 1}"
    _, found, _ = changed(world, "plan", "edit", moon["ZUNIQUEIDENTIFIER"], "--notes", notes, reader=reader)
    assert found.keys() == {("ZPLANNING", moon["Z_PK"])}, f"edit of Moon: {found.keys()}"
    (pair,) = found.values()
    assert columns(pair) == {"ZNOTES", "Z_OPT"}, f"edit of Moon: {columns(pair)}"
    assert pair[1]["Z_OPT"] == moon["Z_OPT"] + 1, "edit of Moon: Z_OPT"
    assert files(world) == kept, "external files"
    return 5


def without_moon(world):
    """Deletes the plan with a picture; other plans must not change. Returns the number of edits."""
    kept = files(world)
    before = tables(world.store)[1]
    moon = next(row for row in before["ZPLANNING"].values() if row["ZNAME"] == "Moon")
    _, found, _ = changed(world, "plan", "remove", moon["ZUNIQUEIDENTIFIER"], reader=False)
    owner = {"Z_PK": 1} if "ZPLANNING" not in before["ZIMAGE"][1] else {"ZPLANNING": moon["Z_PK"]}
    for (table, _), (old, new) in found.items():
        if table == "ZPLANNING":
            assert old["Z_PK"] == moon["Z_PK"] and new is None, "another plan changed"
        elif table == "ZIMAGE":
            assert owner.items() <= old.items(), "the picture of another plan changed"
        else:
            assert table == "Z_2TIDES" and old["Z_2PLANNINGS"] == moon["Z_PK"] and new is None, table
    gone = kept.keys() - files(world).keys()
    assert gone <= {PICTURES[0]}, f"external files: {gone}"
    return 1


def copied(world, target):
    """Copies the store to `target`; all rows and files must be equal. Returns `target`."""
    target.group.mkdir(parents=True)
    world.say("store", "copy", str(world.store), str(target.store))
    assert tables(world.store) == tables(target.store), "copy"
    assert files(world) == files(target), "files of the copy"
    return target


def own(world):
    plans(world)


def migrated(world):
    older(world)
    world.say("plan", "list")
    world.say("store", "identifiers")


def foreign(world):
    """Creates a store of a newer model: another entity, unknown columns and metadata, history tables, a
    trigger, numbered columns, pictures by a numbered key, and a join table."""
    world.group.mkdir(parents=True)
    pictures = world.group / ".Vantrel_SUPPORT" / "_EXTERNAL_DATA"
    pictures.mkdir(parents=True)
    for name in PICTURES:
        (pictures / name).write_bytes(name.encode())
    metadata = {"NSStoreType": "SQLite", "NSStoreModelVersionHashesVersion": 3, "appKey": {"a": 1},
                "NSStoreModelVersionHashes": {n: n.encode().ljust(32, b"\1") for n in ("Image", "Planning", "Tide")}}
    world.sql(f"""
      PRAGMA auto_vacuum = 2; PRAGMA journal_mode = WAL;
      CREATE TABLE ZPLANNING (Z_PK INTEGER PRIMARY KEY, Z_ENT INTEGER, Z_OPT INTEGER, ZDATE TIMESTAMP,
        ZLATITUDE FLOAT, ZLONGITUDE FLOAT, ZRATING1 DECIMAL, ZNAME VARCHAR, ZNOTES VARCHAR,
        ZTIMEZONE VARCHAR, ZUNIQUEIDENTIFIER VARCHAR, ZTEXT1 VARCHAR, ZEXTRA BLOB);
      CREATE TABLE ZIMAGE (Z_PK INTEGER PRIMARY KEY, Z_ENT INTEGER, Z_OPT INTEGER, Z2IMAGES INTEGER,
        Z_FOK_2IMAGES INTEGER, ZUNIQUEIDENTIFIER VARCHAR, ZDATA BLOB);
      CREATE TABLE ZTIDE (Z_PK INTEGER PRIMARY KEY, Z_ENT INTEGER, Z_OPT INTEGER, ZHEIGHT FLOAT);
      CREATE TABLE Z_2TIDES (Z_2PLANNINGS INTEGER, Z_3TIDES INTEGER, PRIMARY KEY (Z_2PLANNINGS, Z_3TIDES));
      CREATE TABLE ACHANGE (Z_PK INTEGER PRIMARY KEY, Z_ENT INTEGER, Z_OPT INTEGER, ZENTITYPK INTEGER);
      CREATE TABLE ATRANSACTION (Z_PK INTEGER PRIMARY KEY, Z_ENT INTEGER, Z_OPT INTEGER);
      CREATE TABLE Z_PRIMARYKEY (Z_ENT INTEGER PRIMARY KEY, Z_NAME VARCHAR, Z_SUPER INTEGER, Z_MAX INTEGER);
      CREATE TABLE Z_METADATA (Z_VERSION INTEGER PRIMARY KEY, Z_UUID VARCHAR(255), Z_PLIST BLOB);
      CREATE TABLE Z_MODELCACHE (Z_CONTENT BLOB);
      CREATE TABLE COUNTS (PLANS INTEGER);
      CREATE INDEX ZIMAGE_Z2IMAGES_INDEX ON ZIMAGE (Z2IMAGES);
      CREATE TRIGGER TIDES AFTER UPDATE OF ZHEIGHT ON ZTIDE BEGIN UPDATE COUNTS SET PLANS = PLANS + 1; END;
      INSERT INTO COUNTS VALUES (3);
      INSERT INTO Z_PRIMARYKEY VALUES (1,'Image',0,2), (2,'Planning',0,9), (3,'Tide',0,2),
        (16001,'CHANGE',0,1), (16002,'TRANSACTION',0,1);
      INSERT INTO Z_METADATA VALUES (1, 'E8AFD1EB-9427-4A64-ABDA-AA06F7B1092C',
        x'{plistlib.dumps(metadata, fmt=plistlib.FMT_BINARY).hex()}');
      INSERT INTO Z_MODELCACHE VALUES (x'7d535b6c1455183e');
      INSERT INTO ZPLANNING VALUES
        (1,2,1,790000000,41,2,1.25,'Moon',NULL,'Europe/Madrid','{PLAN}','one',x'00ff'),
        (3,2,7,790000000.5,NULL,NULL,NULL,'Sun','',NULL,NULL,'two',NULL),
        (8,2,2,NULL,0,0,3,'Stars',NULL,NULL,NULL,NULL,x'');
      INSERT INTO ZIMAGE VALUES (1,1,1,1,2048,NULL,CAST(x'02' || '{PICTURES[0]}' || x'00' AS BLOB)),
        (2,1,4,3,2048,NULL,CAST(x'02' || '{PICTURES[1]}' || x'00' AS BLOB));
      INSERT INTO ZTIDE VALUES (1,3,1,0.5), (2,3,1,1.5);
      INSERT INTO Z_2TIDES VALUES (1,1), (3,1), (3,2);
      INSERT INTO ACHANGE VALUES (1,16001,1,1);
      INSERT INTO ATRANSACTION VALUES (1,16002,1)""")


def main():
    problems, edits, stores = [], 0, 0
    with tempfile.TemporaryDirectory() as folder:
        for write in (own, foreign, migrated):
            stores += 1
            world = World(sys.argv[1], pathlib.Path(folder) / write.__name__)
            try:
                write(world)
                edits += check(world) + check(world, reader=True)
                there = copied(world, World(sys.argv[1], world.root / "there"))
                edits += check(there)
                back = copied(there, World(sys.argv[1], world.root / "back"))
                edits += check(back) + without_moon(back)
            except AssertionError as error:
                problems.append(f"{write.__name__}: {error}")
        for number, store in enumerate(sys.argv[2:]):
            stores += 1
            world = World(sys.argv[1], pathlib.Path(folder) / str(number))
            world.group.mkdir()
            shutil.copy(store, world.store)
            before = tables(world.store)
            try:
                refused = world.run("plan", "add", "--name", "New", "--date", "+1d")
                assert refused.returncode == 65, f"plan add: exit {refused.returncode}, {refused.stderr}"
                assert tables(world.store) == before, "plan add changed a store without plans"
                refused = world.run("store", "copy", str(world.store), str(world.root / "copy.sqlite"))
                assert refused.returncode == 65, f"store copy: exit {refused.returncode}"
                assert tables(world.store) == before, "store copy changed a store without plans"
            except AssertionError as error:
                problems.append(f"{pathlib.Path(store).name}: {error}")
    for problem in problems:
        print(f"roundtrip: {problem}", file=sys.stderr)
    if not problems:
        print(f"roundtrip: {edits} edits of {stores} stores changed only the rows of their plan")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
