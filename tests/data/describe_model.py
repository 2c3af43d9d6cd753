"""Prints what a compiled model, or the copy of it in a store, says: a second reader of the format."""
import plistlib
import sqlite3
import sys
import zlib

path = sys.argv[1]
if path.endswith(".sqlite"):
    uri = "file:" + path + "?mode=ro&immutable=1"
    content = sqlite3.connect(uri, uri=True).execute("SELECT Z_CONTENT FROM Z_MODELCACHE").fetchone()[0]
    archive = plistlib.loads(zlib.decompress(content, -15))
    if len(sys.argv) > 2:
        open(sys.argv[2], "wb").write(zlib.decompress(content, -15))
else:
    archive = plistlib.load(open(path, "rb"))
objects = archive["$objects"]


def value(thing, key):
    found = thing.get(key)
    if isinstance(found, plistlib.UID):
        return None if found.data == 0 else objects[found.data]
    return found


def elements(thing, key):
    return [objects[uid.data] for uid in thing[key]]


def class_name(thing):
    return value(thing, "$class")["$classname"]


model = value(archive["$top"], "root")
listed = value(model, "NSEntities")
entities = elements(value(listed, "values") if "values" in listed else listed, "NS.objects")


def describe(entity, inherited):
    properties = dict(inherited)
    for item in elements(value(entity, "NSProperties"), "NS.objects"):
        properties[value(item, "NSPropertyName")] = item
    parent = value(entity, "NSSuperentity")
    print("entity", value(entity, "NSEntityName"), value(parent, "NSEntityName") if parent else "-")
    for name, item in sorted(properties.items()):
        if class_name(item) == "NSAttributeDescription":
            default = value(item, "NSDefaultValue")
            print(" ", name, item["NSAttributeType"], int(item.get("NSIsOptional", False)),
                  int(item.get("NSIsTransient", False)), item["NSFlagsKey"] & 4,
                  "-" if default is None else int(default))
    for name, item in sorted(properties.items()):
        if class_name(item) == "NSRelationshipDescription":
            print(" ", name, value(item, "_NSDestinationEntityName"),
                  value(item, "_NSInverseRelationshipName"), int(item["NSMaxCount"] != 1),
                  item["NSDeleteRule"])
    for child in sorted((e for e in entities if value(e, "NSSuperentity") is entity),
                        key=lambda e: value(e, "NSEntityName").lower()):
        describe(child, properties)


for root in sorted((e for e in entities if not value(e, "NSSuperentity")),
                   key=lambda e: value(e, "NSEntityName").lower()):
    describe(root, {})
print("versions", *elements(value(model, "NSVersionIdentifiers"), "NS.objects"))
