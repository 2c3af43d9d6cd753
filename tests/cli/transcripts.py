#!/usr/bin/env python3
"""Runs transcripts: shell commands with what they print, in a folder of their own.

usage: transcripts.py [--write] FOLDER-OF-PROGRAMS TRANSCRIPT...

Programs beside the transcript are found too.

    # comment, up to the next command
    $ command, a line for sh; `> ` before the lines that go on with it
    what it writes to standard output
    ! what it writes to standard error
    ? its exit code, where it is not 0

One empty line before a comment, a command or the end belongs to nothing. {UUID} stands for an
identifier that is new in every run; {name=UUID} keeps it as the shell's $name, and ${name} or
${name:0:8}, its first eight characters, stand for it in later output, ${HOME} for the folder. All
else is compared: control characters appear as pictures (␛ for escape), bytes that are no UTF-8
as \\xff, a missing end of line as a line of its own. --write puts what the commands do now in the
place of what differs: read it before you keep it."""

import difflib
import os
import pathlib
import re
import subprocess
import sys
import tempfile

UUID = "[0-9A-F]{8}(?:-[0-9A-F]{4}){3}-[0-9A-F]{12}"
HOLE = re.compile(r"\{(?:(\w+)=)?UUID\}|\$\{(\w+)(?::0:(\d+))?\}")
PICTURES = {code: 0x2400 + code for code in range(32) if chr(code) not in "\n\t"} | {127: 0x2421}
# Noon of a summer's day in Madrid, in American English.
SURROUNDINGS = {"VANTREL_NOW": "2026-07-15T10:00:00Z", "TZ": "Europe/Madrid", "TERM": "xterm",
                "LC_ALL": "en_US.UTF-8", "LANGUAGE": "en", "NO_COLOR": "", "SHELL": "/bin/sh"}


def surroundings(folders, home):
    kept = {name: value for name, value in os.environ.items()
            if not name.startswith(("XDG_", "VANTREL_", "LC_"))}
    path = ":".join([*map(str, folders), kept["PATH"]])
    return kept | SURROUNDINGS | {"HOME": home, "PATH": path,
                                  "VANTREL_GROUP_CONTAINER": f"{home}/group"}


def parse(text):
    """[[lines before a command and of it, the command (None at a comment), what it is to print]]"""
    steps = [[[], None, []]]
    for line in text.removesuffix("\n").split("\n"):
        start, command, printed = steps[-1]
        if line.startswith(("$ ", "#")):
            gap = [printed.pop()] if printed[-1:] == [""] else []
            steps.append([gap + [line], line[2:] if line[0] == "$" else None, []])
        elif line.startswith("> ") and command and not printed:
            start.append(line)
            steps[-1][1] += "\n" + line[2:]
        else:
            printed.append(line)
    if steps[-1][2][-1:] == [""]:
        steps[-1][2].pop()
    return steps


def visible(output):
    text = output.decode("utf-8", "backslashreplace").translate(PICTURES)
    if text and not text.endswith("\n"):
        text += "\n\\ no end of line\n"
    return text.split("\n")[:-1]


def run(command, environment):
    done = subprocess.run(["sh", "-c", command], cwd=environment["HOME"], env=environment,
                          stdin=subprocess.DEVNULL, capture_output=True, timeout=60, check=False)
    code = [f"? {done.returncode}"] if done.returncode else []
    return visible(done.stdout) + ["! " + line for line in visible(done.stderr)] + code


def filled(expected, actual, names):
    """The expected line, or the actual one where its random parts alone differ."""
    def pattern(hole):
        name, known, length = hole.groups()
        if known:
            return re.escape(names.get(known, hole[0])[:int(length) if length else None])
        return f"(?P<{name}>{UUID})" if name else UUID
    regex, end = "", 0
    for hole in HOLE.finditer(expected):
        regex += re.escape(expected[end:hole.start()]) + pattern(hole)
        end = hole.end()
    match = re.fullmatch(regex + re.escape(expected[end:]), actual)
    if match:
        names.update(match.groupdict())
    return actual if match else expected


def held(actual, names):
    """What is random taken out again."""
    text = "\n".join(actual)
    for name, value in names.items():
        if name == "HOME" or re.fullmatch(UUID, value):
            text = text.replace(value, f"${{{name}}}")
    return re.sub(UUID, "{UUID}", text).split("\n") if actual else []


def check(programs, path, write):
    """What differs; with write, it is put into the transcript."""
    steps = parse(path.read_text("utf-8"))
    if not any(command for _, command, _ in steps):
        return f"{path}: no command\n"
    differences, kept = "", []
    with tempfile.TemporaryDirectory(prefix="vantrel-test-") as home:
        environment = surroundings([programs, path.resolve().parent], home)
        for start, command, expected in steps:
            actual = run(command, environment) if command else []
            same = [filled(*pair, environment) for pair in zip(expected, actual)]
            same += expected[len(same):]
            kept += start + (expected if same == actual else held(actual, environment))
            differences += "".join(f"{line}\n" for line in difflib.unified_diff(
                same, actual, f"{path}: {command}", "what it does", lineterm=""))
    if write:
        path.write_text("\n".join(kept) + "\n", "utf-8")
    return differences


def main(arguments):
    write = arguments[:1] == ["--write"]
    programs, *paths = map(pathlib.Path, arguments[write:])
    differences = [check(programs.resolve(), path, write) for path in paths]
    print("".join(differences), end="")
    return 1 if not paths or any(differences) else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
