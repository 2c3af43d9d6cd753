#!/usr/bin/env python3
"""Runs the journeys and the window under strace: they open local sockets only, and write names of
plans and accounts only to the files that the user put them in. A lookup at the end must be detected,
to show that strace sees network access.

usage: privacy.py BUILD-FOLDER"""

import pathlib
import re
import sys
import tempfile

from journeys import ACCOUNT, KEY, NAME, NOTES, Walk

SECRETS = [text.encode() for text in (NAME, NOTES, ACCOUNT, KEY)]
# Files that may contain secrets: stores, exported files, the key, settings.
PUT_THERE = re.compile(r"group/Vantrel\.sqlite(-wal|-shm)?|copy/Vantrel\.sqlite|plans\.\w+|key|"
                       r"group/Library/Preferences/group\.vantrel\.vantrel\.plist|"
                       r"\.config/vantrel/vantrel\.plist|trace|card\.png|sheet\.png")
SECONDS_OF_WINDOW = 10
ENDED_BY_TIMEOUT = 124


def sockets(trace: pathlib.Path) -> tuple[set[str], set[str]]:
    """Returns the socket families in `trace` ("AF_UNIX") and the paths connected to; empties `trace`."""
    text = trace.read_text(errors="replace")
    trace.write_text("")
    return set(re.findall(r"\bsocket\((\w+)", text)), set(re.findall(r'sun_path=@?"([^"]*)"', text))


def main() -> int:
    problems = []
    with tempfile.TemporaryDirectory() as folder:
        trace = pathlib.Path(folder) / "trace"
        strace = ["strace", "-f", "-qq", "-A", "-e", "trace=socket,connect", "-o", str(trace)]
        walk = Walk(sys.argv[1], folder, strace)

        walk.all()
        families, _ = sockets(trace)
        if families - {"AF_UNIX"}:
            problems.append(f"the commands opened {families}")

        # The window on a separate display and bus.
        walk.watcher = ["xvfb-run", "-a", "dbus-run-session", "--", *strace,
                        "timeout", str(SECONDS_OF_WINDOW)]
        done = walk.run("vantrel-today", QT_QPA_PLATFORM="xcb")
        families, places = sockets(trace)
        if done.returncode != ENDED_BY_TIMEOUT or not any("X11-unix" in one for one in places):
            problems.append(f"the window did not open: {done.stderr}")
        if families - {"AF_UNIX"}:
            problems.append(f"the window opened {families}")

        walk.watcher = strace
        asked = walk.run("vantrel", "lookup", "altitude", "41", "2",
                         VANTREL_LOOKUP_ADDRESS="http://127.0.0.1:9")
        families, _ = sockets(trace)
        if "AF_INET" not in families:
            problems.append(f"the network access of a lookup was not detected: {asked.stderr}")

        for secret in SECRETS:
            if secret.decode() in walk.messages:
                problems.append(f"{secret.decode()} is in the messages:\n{walk.messages}")
        for file in pathlib.Path(folder).rglob("*"):
            place = str(file.relative_to(folder))
            if file.is_file() and not PUT_THERE.fullmatch(place):
                content = file.read_bytes() + place.encode()
                problems += [f"{one.decode()} is in {place}" for one in SECRETS if one in content]
    for problem in problems:
        print(f"privacy: {problem}", file=sys.stderr)
    if not problems:
        print(f"privacy: {walk.count} journeys and the window use local sockets only; "
              f"{len(SECRETS)} secrets are in the expected files only")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
