#!/usr/bin/env python3
"""Runs every command line that documents, pages and --help show; each must be understood and do.

usage: shown_commands_test.py BUILD-FOLDER SOURCE-FOLDER

What they print may differ from what is shown. Identifiers are new in every store: those shown stand
for those that are printed here. Nothing leaves the machine, so that services may be unavailable."""

import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

SOURCE = pathlib.Path(sys.argv.pop()).resolve()
BUILD = pathlib.Path(sys.argv.pop()).resolve()
UUID = re.compile(r"[0-9A-F]{8}(?:-[0-9A-F]{4}){3}-[0-9A-F]{12}")
UNAVAILABLE = 69


def from_markdown(text):
    """[(command, first line of its shown output)]"""
    shown = []
    for kind, block in re.findall(r"^```(console|sh)\n(.*?)^```", text, re.M | re.S):
        block = block.replace("\\\n", "")
        if kind == "sh":
            shown += [(line.split("  #")[0], "") for line in block.splitlines()]
        for command, after in re.findall(r"^\$ (.*)\n([^$\n].*)?", block, re.M):
            shown.append((command, after))
    return shown


def from_page(text):
    for escape, plain in (("\\-", "-"), ("\\(dq", '"'), ("\\(aq", "'"), ("\\e", "\\")):
        text = text.replace(escape, plain)
    blocks = re.findall(r"^\.nf\n(.*?)^\.fi", text, re.M | re.S)
    return [(line, "") for block in blocks for line in block.splitlines()]


class Sandbox:
    def __init__(self, folder):
        self.folder = folder
        self.names = {}
        self.environment = {**os.environ, "HOME": folder, "PATH": f"{BUILD}:{os.environ['PATH']}",
                            "VANTREL_NOW": "2026-07-13T10:00:00Z", "TZ": "Europe/Madrid",
                            "https_proxy": "http://127.0.0.1:9", "QT_QPA_PLATFORM": "none"}
        for name in list(self.environment):
            if name.startswith(("XDG_", "VANTREL_GROUP")):
                del self.environment[name]
        self.run("vantrel store sample")

    def own(self, command):
        """The command on the identifiers and in the folder of this run."""
        for shown, here in self.names.items():
            prefix = re.compile(rf"\b({shown}|{shown[:8]}|{shown[:4]})\b")
            command = prefix.sub(here, command)
        return command.replace("/tmp/", self.folder + "/")

    def run(self, command, shown=""):
        command = self.own(command)
        if exported := re.fullmatch(r"export (\w+)=(\S+)", command):
            self.environment[exported[1]] = exported[2]
            return None
        if command.startswith("vantrel watch") and "|" not in command:
            command += " | head -n 1"
        done = subprocess.run(["bash", "-o", "pipefail", "-c", command], cwd=self.folder,
                              env=self.environment, capture_output=True, text=True, timeout=60,
                              check=False)
        if UUID.fullmatch(shown) and UUID.fullmatch(done.stdout.strip()):
            self.names[shown] = done.stdout.strip()
        return done


class ShownCommands(unittest.TestCase):
    def check(self, shown, least):
        commands = [one for one in shown if re.match(r"vantrel|export ", one[0])]
        self.assertGreaterEqual(len(commands), least)
        with tempfile.TemporaryDirectory() as folder:
            sandbox = Sandbox(folder)
            for command, output in commands:
                done = sandbox.run(command, output)
                # Without a network or a display there is still an answer.
                asks_others = re.search(r"lookup|auto\b|^vantrel-today(?!.*--render)", command)
                allowed = (0, UNAVAILABLE) if asks_others else (0,)
                if done:
                    self.assertIn(done.returncode, allowed, f"{command}\n{done.stderr}")

    def test_in_readme(self):
        self.check(from_markdown((SOURCE / "README.md").read_text()), 5)

    def test_in_docs(self):
        for document in sorted((SOURCE / "docs").glob("*.md")):
            with self.subTest(document.name):
                self.check(from_markdown(document.read_text()), {"guide.md": 30}.get(document.name, 0))

    def test_in_pages(self):
        for page in ("vantrel.1", "vantrel-today.1"):
            with self.subTest(page):
                self.check(from_page((BUILD / "share/man/man1" / page).read_text()), 2)

    def test_in_help(self):
        help_text = subprocess.run([BUILD / "vantrel", "--help"], capture_output=True, text=True,
                                   check=True).stdout
        examples = help_text.split("Examples:\n")[1]
        self.check([(line.strip(), "") for line in examples.splitlines()], 3)


if __name__ == "__main__":
    unittest.main()
