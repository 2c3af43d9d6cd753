"""Prints what a store says of itself, read with Python alone: an independent witness."""

import base64
import hashlib
import plistlib
import sqlite3
import sys

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
