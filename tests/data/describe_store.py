"""Prints the metadata and the cached model of a store, read with Python alone."""

import base64
import hashlib
import plistlib
import sqlite3
import sys
import zlib

store = sqlite3.connect(f"file:{sys.argv[1]}?mode=ro", uri=True)
for pragma in ("page_size", "auto_vacuum", "encoding", "journal_mode", "user_version",
               "application_id", "integrity_check"):
    print(pragma, *store.execute(f"PRAGMA {pragma}").fetchone())
for row in store.execute("SELECT * FROM Z_PRIMARYKEY ORDER BY Z_ENT"):
    print("entity", *row)
version, uuid, content = store.execute("SELECT Z_VERSION, Z_UUID, Z_PLIST FROM Z_METADATA").fetchone()
print("metadata", version, len(uuid), uuid == uuid.upper(), content[:8].decode())
metadata = plistlib.loads(content)
hashes = metadata.pop("NSStoreModelVersionHashes")
both, alone = hashlib.sha512(), hashlib.sha256()
for name in sorted(hashes, key=str.encode):
    both.update(name.encode() + hashes[name])
    alone.update(hashes[name])
digest = base64.b64encode(both.digest()).decode()
checksum = base64.b64encode(alone.digest()).decode()
print("hashes", *(f"{name}:{len(hashes[name])}" for name in sorted(hashes)))
print("digest", metadata.pop("NSStoreModelVersionHashesDigest", None) == digest)
print("checksum", metadata.pop("NSStoreModelVersionChecksumKey", None) == checksum)
for key in sorted(metadata):
    print(key, repr(metadata[key]))
if len(sys.argv) > 2:
    with open(sys.argv[2] + "/VersionInfo.plist", "rb") as file:
        info = plistlib.load(file)
    current = info["NSManagedObjectModel_CurrentVersionName"]
    print("model", info["NSManagedObjectModel_VersionHashes"][current] == hashes,
          info["NSManagedObjectModel_VersionChecksums"][current] == checksum)
cache = store.execute("SELECT Z_CONTENT FROM Z_MODELCACHE").fetchone()
if cache:
    objects = plistlib.loads(zlib.decompress(cache[0], -15))["$objects"]

    def deref(holder, key):
        value = holder[key]
        return objects[value.data] if isinstance(value, plistlib.UID) else value

    entities = deref(objects[1], "NSEntities")
    print("cache", *deref(entities, "$class")["$classes"])
    names = deref(deref(entities, "searchMapping"), "keys")["NS.objects"]
    for name, entity in zip(names, deref(entities, "values")["NS.objects"]):
        properties = deref(objects[entity.data], "NSProperties")
        kinds = [deref(objects[uid.data], "$class")["$classname"][2:-11] + " " + objects[key.data]
                 for key, uid in zip(properties["NS.keys"], properties["NS.objects"])]
        print(objects[name.data] + ":", ", ".join(sorted(kinds)))
