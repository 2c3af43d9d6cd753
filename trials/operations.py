"""All operations that write, and functions that create the data they change."""

import collections
import datetime
import json
import plistlib
import sqlite3

PLAN = "11111111-1111-4111-8111-111111111111"
PICTURE = "22222222-2222-4222-8222-222222222222"
LONG = "long notes " * 2000


def nothing(_world):
    pass


def plans(world):
    """Three plans, one of them with a picture in a file beside the store, a camera and settings."""
    for name in ("Moon", "Sun", "Stars"):
        world.say("plan", "add", "--name", name, "--date", "2026-05-01T05:00:00Z", "--notes", LONG)
    world.say("camera", "add", "Field", "--width", "120", "--height", "90")
    world.say("defaults", "write", "note", LONG)
    world.say("defaults", "write", "note", LONG, "--standard")
    world.say("observer", "set", "--latitude", "41", "--longitude", "2")
    pictures = world.group / ".Vantrel_SUPPORT" / "_EXTERNAL_DATA"
    pictures.mkdir(parents=True)
    (pictures / PICTURE).write_bytes(b"picture")
    world.sql(f"""
        UPDATE ZPLANNING SET ZUNIQUEIDENTIFIER = '{PLAN}' WHERE ZNAME = 'Moon';
        UPDATE Z_PRIMARYKEY SET Z_MAX = 1 WHERE Z_NAME = 'Image';
        INSERT INTO ZIMAGE (Z_PK, Z_ENT, Z_OPT, ZPLANNING, ZDATA)
          SELECT 1, Z_ENT, 1, (SELECT Z_PK FROM ZPLANNING WHERE ZNAME = 'Moon'),
                 CAST(x'02' || '{PICTURE}' || x'00' AS BLOB)
          FROM Z_PRIMARYKEY WHERE Z_NAME = 'Image'""")
    exported = {"plans": [{"name": f"Imported {i}", "notes": LONG, "date": "2026-06-01T05:00:00Z"}
                          for i in range(5)]}
    (world.root / "import.json").write_text(json.dumps(exported), encoding="utf-8")
    (world.root / "copies").mkdir()


def unidentified(world):
    plans(world)
    world.sql("UPDATE ZPLANNING SET ZUNIQUEIDENTIFIER = NULL;"
              "UPDATE ZCUSTOMCAMERA SET ZUNIQUEIDENTIFIER = NULL;"
              "UPDATE ZIMAGE SET ZUNIQUEIDENTIFIER = NULL")


def doubled(world):
    plans(world)
    for name in ("Sun", "Stars", "Stars"):
        world.say("plan", "add", "--name", name, "--date", "2026-05-01T05:00:00Z", "--notes", LONG)
    world.say("camera", "add", "Twin", "--width", "120", "--height", "90")
    world.sql("UPDATE ZCUSTOMCAMERA SET ZMODEL = 'Field'")


def older(world):
    """Turns the store into one of model version 3."""
    plans(world)
    info = plistlib.loads((world.program.parent / "bundle/Vantrel.momd/VersionInfo.plist").read_bytes())
    connection = sqlite3.connect(world.store)
    (packed,) = connection.execute("SELECT Z_PLIST FROM Z_METADATA").fetchone()
    metadata = plistlib.loads(packed)
    metadata["NSStoreModelVersionHashes"] = info["NSManagedObjectModel_VersionHashes"]["Vantrel3"]
    metadata["NSStoreModelVersionIdentifiers"] = ["3"]
    for key in ("NSStoreModelVersionHashesDigest", "NSStoreModelVersionChecksumKey"):
        metadata.pop(key, None)
    packed = plistlib.dumps(metadata, fmt=plistlib.FMT_BINARY)
    connection.execute("UPDATE Z_METADATA SET Z_PLIST = ?", (packed,))
    for table in ("ZPLANNING", "ZIMAGE", "ZCUSTOMPOI", "ZCUSTOMCAMERA"):
        connection.execute(f"ALTER TABLE {table} DROP COLUMN ZUNIQUEIDENTIFIER")
    connection.commit()
    connection.close()


Operation = collections.namedtuple("Operation", "name data words")
OPERATIONS = [
    Operation("first plan", nothing, ["plan", "add", "--name", "First", "--date", "+1d"]),
    Operation("plan add", plans, ["plan", "add", "--name", "New", "--date", "+1d", "--notes", LONG]),
    Operation("plan edit", plans, ["plan", "edit", PLAN, "--name", "Full moon", "--notes", LONG * 3]),
    Operation("plan remove", plans, ["plan", "remove", PLAN]),
    Operation("plan import", plans, ["plan", "import", "{root}/import.json"]),
    Operation("store sample", plans, ["store", "sample"]),
    Operation("store copy", plans,
              ["store", "copy", "{root}/group/Vantrel.sqlite", "{root}/copies/Copy.sqlite"]),
    Operation("copy and migrate", older,
              ["store", "copy", "{root}/group/Vantrel.sqlite", "{root}/copies/Copy.sqlite"]),
    Operation("migrate", older, ["plan", "list", "--json"]),
    Operation("store identifiers", unidentified, ["store", "identifiers"]),
    Operation("plan export", plans, ["plan", "export", "{root}/import.json"]),
    Operation("store dedupe", doubled, ["store", "dedupe"]),
    Operation("camera add", plans, ["camera", "add", "Wide", "--width", "36", "--height", "24"]),
    Operation("defaults write", plans, ["defaults", "write", "note", "short"]),
    Operation("first settings", nothing, ["defaults", "write", "note", "short", "--standard"]),
    Operation("observer set", plans, ["observer", "set", "--altitude", "120", "--offset", "2"]),
]
