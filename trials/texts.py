#!/usr/bin/env python3
"""Hostile texts in every output, each parsed back by another reader; hostile zone files.

usage: texts.py PROGRAM

Prints a table of outputs by texts. "ok" means: the reader finds every record with its fields, each
text without what cannot be shown, and no control character that the format does not allow."""

import csv
import io
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unicodedata
import xml.etree.ElementTree as tree

import gpxpy
import icalendar

from world import World

TEXTS = {
    "line breaks": "one\r\ntwo\nthree\rfour\u2028five\u2029six\x85seven\x0beight\x0cnine",
    "tabs": "\tone\ttwo\t",
    "controls": "\x1b]0;title\x07\x1b[31mred\x9b2J\x08\x7fone\x01two\x1f",
    "directions": "\u202egnp.\u2066\u2067one\u200f\u202a\u2069",
    "markup": "<b onload='x'>&amp;one<br>]]>\"-->",
    "formulas": "=HYPERLINK(one)",
    "separators": "one,\"two\";three\\four:five",
    "records": "one\nEND:VEVENT\nBEGIN:VEVENT\nSUMMARY:two",
    "fields": "%s%n{name}{{}}$(one)`two`",
    "invisible": "\ufeffone\u200b\u00ad\ufffetwo\U000e0041",
}
FIRST, LAST = "the first", "the last"
NOBODY = ("setpriv", "--reuid", "65534", "--regid", "65534", "--clear-groups")
SECRET = "only for the owner's eyes"


def require(condition, *told):
    if not condition:
        raise AssertionError(" ".join(map(repr, told)))


def word(text):
    """The text as a word of World.run(), which replaces {root}."""
    return text.replace("{", "{{").replace("}", "}}")


def essence(text):
    """What must survive everywhere: the characters that can be seen."""
    return "".join(c for c in unicodedata.normalize("NFC", str(text))
                   if unicodedata.category(c)[0] not in "CZ" and c != "\ufffd")


def open_directions(line):
    """Returns the embeddings and isolates that are still open at the end of the line."""
    stack = []
    for sign in line:
        if sign in "\u202a\u202b\u202d\u202e\u2066\u2067\u2068":
            stack.append(sign)
        elif sign == "\u202c" and stack and stack[-1] < "\u2066":
            stack.pop()
        elif sign == "\u2069" and any(opened >= "\u2066" for opened in stack):
            while stack.pop() < "\u2066":
                pass
    return stack


def lines_of(text):
    """The lines of a terminal's output. No character may move the cursor or leave a direction open."""
    require(not re.search("[\x00-\x09\x0b-\x1f\x7f-\x9f\u2028\u2029]", text), "control character", text)
    for line in text.splitlines():
        require(not open_directions(line), "open direction", line)
    return text.splitlines()


def of_lines(*words):
    return lambda world: ["".join(lines_of(world.say(*words, "--color", "never")))]


def of_plain(world):
    lines = world.say("plan", "list", "--plain").split("\n")
    require(lines.pop() == "" and len(lines) == 3, "lines", lines)
    rows = [line.split("\t") for line in lines]
    require({len(row) for row in rows} == {7}, "columns", rows)
    return [row[6] for row in rows]


def of_format(world):
    rows = lines_of(world.say("plan", "list", "--format", word("{name}|end")))
    require(len(rows) == 3 and all(row.endswith("|end") for row in rows), "lines", rows)
    return [row.removesuffix("|end") for row in rows]


def of_bar(world):
    (line,) = world.say("today", "--expanded", "--waybar").splitlines()
    bar = json.loads(line)
    # Pango accepts noncharacters, XML does not.
    shown = [tree.fromstring(f"<t>{bar[key]}</t>".replace("\ufffe", "")) for key in ("text", "tooltip")]
    require(not re.search("[\x00-\x09\x0b-\x1f\x7f-\x9f]", bar["text"] + bar["tooltip"]), bar)
    return ["".join(shown[1].itertext())]


def of_json(world):
    return [plan["name"] for plan in json.loads(world.say("plan", "list", "--json"))["plans"]]


def exported(world, form):
    world.say("plan", "export", "--quiet", "{root}/plans." + form)
    data = (world.root / f"plans.{form}").read_bytes().decode()
    require(not re.search("[\x00-\x08\x0b\x0c\x0e-\x1f\x7f-\x9f]", data), "control character", data)
    return data


def of_csv(world):
    _, *rows = csv.reader(io.StringIO(exported(world, "csv"), newline=""), strict=True)
    require({len(row) for row in rows} == {9}, "columns", rows)
    require(not any(row[1][:1] in tuple("=+-@\t\r") for row in rows), "a formula", rows)
    return [row[1].removeprefix("'") for row in rows]


def of_ics(world):
    events = icalendar.Calendar.from_ical(exported(world, "ics")).walk("VEVENT")
    require(all(str(event["DESCRIPTION"]) for event in events), "notes", events)
    return [event["SUMMARY"] for event in events]


def of_gpx(world):
    return [point.name for point in gpxpy.parse(exported(world, "gpx")).waypoints]


def of_kml(world):
    marks = tree.fromstring(exported(world, "kml")).iter("{http://www.opengis.net/kml/2.2}Placemark")
    return [mark.findtext("{http://www.opengis.net/kml/2.2}name") for mark in marks]


def of_errors(world):
    """Messages that repeat a word of the command line."""
    told = []
    for words in (["plan", "show"], ["plan", "import"]):
        done = world.run(*words, word(world.text))
        require(done.returncode in (64, 65, 66), words, done.returncode, done.stderr)
        require(len(lines_of(done.stderr)) == 1 and done.stderr.startswith("vantrel: "), done.stderr)
        told.append(done.stderr.replace("\\n", ""))
    return told


# Lists of plans give the three names, others a text that contains the hostile one.
OUTPUTS = {
    "today": of_lines("today", "--expanded"), "plan list": of_lines("plan", "list"),
    "camera list": of_lines("camera", "list"), "store info": of_lines("store", "info"),
    "errors": of_errors, "today --waybar": of_bar, "plan list --plain": of_plain,
    "plan list --format": of_format, "plan list --json": of_json,
    "csv": of_csv, "ics": of_ics, "gpx": of_gpx, "kml": of_kml,
}


def world_of(program, folder, text):
    """A store in a folder of that name, with a plan and a camera of that name between two others."""
    world = World(program, pathlib.Path(folder) / text.replace("/", "|"))
    world.text = text
    plans = [{"name": name, "notes": text, "date": f"2026-03-0{day}T12:00:00Z", "timezone": "Asia/Tokyo",
              "latitude": day, "longitude": -day} for day, name in enumerate((FIRST, text, LAST), 3)]
    (world.root / "plans.json").write_text(json.dumps({"plans": plans}))
    world.say("plan", "import", "{root}/plans.json")
    world.sql(f"UPDATE ZPLANNING SET ZTIMEZONE = x'{text.encode().hex()}' || '' WHERE ZDATE % 2")
    world.say("camera", "add", word(text), "--width", "36", "--height", "24")
    return world


def check_output(read, world):
    found = read(world)
    if len(found) == 3:
        require([*map(essence, found)] == [*map(essence, (FIRST, world.text, LAST))], found)
    else:
        require(all(essence(world.text) in essence(text) for text in found), found)


def texts(program):
    failed = []
    print(f"{'':20}", *(name.split()[0][:10].rjust(10) for name in TEXTS))
    with tempfile.TemporaryDirectory() as folder:
        worlds = {name: world_of(program, folder, text) for name, text in TEXTS.items()}
        for output, read in OUTPUTS.items():
            cells = []
            for name, world in worlds.items():
                try:
                    check_output(read, world)
                    cells.append("ok")
                except (AssertionError, ValueError, tree.ParseError) as error:
                    cells.append("FAILED")
                    failed.append(f"{output}, {name}: {error}")
            print(f"{output:20}", *(cell.rjust(10) for cell in cells), flush=True)
    return failed


def zone_files(folder):
    """Zone files that must count as unknown zones. Returns their names."""
    real = pathlib.Path("/usr/share/zoneinfo/Europe/Athens").read_bytes()
    version1, footer = real.index(b"TZif", 4), real.rstrip(b"\n").rindex(b"\n")
    contents = {
        "Empty": b"", "Secret": SECRET.encode(), "Short": real[:40], "Half": real[:len(real) // 2],
        "CountsFirst": real[:20] + b"\xff" * 24 + real[44:],
        "CountsLater": real[:version1 + 20] + b"\x7f\xff\xff\xff" * 6 + real[version1 + 44:],
        "Types": real[:footer].replace(b"\x00\x01\x02", b"\xfe\xff\xfd"),
        "Footer": real[:footer] + b"\nA1B" + b"9" * 4000 + b",M99.9.9/999:99,J0\n",
    }
    for name, content in contents.items():
        (folder / name).write_bytes(content)
    with open(folder / "Huge", "wb") as file:
        file.write(real)
        file.truncate(2**33)
    os.mkfifo(folder / "Fifo")
    (folder / "Folder").mkdir()
    (folder / "Loop").symlink_to("Loop")
    (folder / "Device").symlink_to("/dev/zero")
    (folder / "Elsewhere").symlink_to("/etc/passwd")
    return sorted(path.name for path in folder.iterdir())


def check_zone(world, user, **environment):
    done = world.run("plan", "list", "--json", before=user, **environment)
    require(done.returncode == 0 and SECRET not in done.stdout + done.stderr, done)
    dates = [plan["localDate"] for plan in json.loads(done.stdout)["plans"]]
    require(dates == ["2026-03-03T12:00:00Z"], dates)


def zones(program):
    """A hostile zone of the device counts as GMT, one of a plan as the device's."""
    failed = []
    with tempfile.TemporaryDirectory() as place:
        os.chmod(place, 0o755)
        folder = pathlib.Path(place) / "zones"
        folder.mkdir()
        names = zone_files(folder)
        world = World(program, pathlib.Path(place) / "data")
        world.say("plan", "add", "--name", "a", "--date", "2026-03-03T12:00:00Z")
        names += ["../zones/Secret", f"{folder}/Secret", "../../etc/passwd", "/dev/zero", "", "..",
                  "a" * 9000]
        if os.getuid() == 0:
            names.append("unreadable folder")
        world.environment["TZDIR"] = str(folder)
        for name in names:
            user = ()
            if name == "unreadable folder":
                folder.chmod(0)
                subprocess.run(["chmod", "-R", "a+rwX", world.root], check=True)
                user = NOBODY
            try:
                for zone in (name, f":{name}", f":{folder}/{name}"):
                    check_zone(world, user, TZ=zone)
                world.sql(f"UPDATE ZPLANNING SET ZTIMEZONE = '{name}'")
                check_zone(world, user)
            except (AssertionError, subprocess.TimeoutExpired) as error:
                failed.append(f"zone {name[:20]}: {error}")
    print(f"{len(names)} hostile zones, each as the device's in three forms and as a plan's:",
          f"{len(failed)} failed")
    return failed


if __name__ == "__main__":
    problems = texts(sys.argv[1]) + zones(sys.argv[1])
    print(*problems, sep="\n")
    sys.exit(bool(problems))
