#!/usr/bin/env python3
"""Changes one operator or number of the arithmetic at a time and checks that a test notices.

usage: mutants.py BUILD-FOLDER [--count N] [--seed N] [--file PATTERN]

A changed copy of the source, a mutant, is compiled and linked into separate programs. The tests of its
folder, any other test or a time-out kill it. Exits with 1 if a mutant lives, unless mutants.txt explains
why no test can notice it."""

import argparse
import concurrent.futures
import json
import os
import pathlib
import random
import re
import shlex
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
SOURCES = ("src/geo/*.cpp", "src/time/*.cpp", "src/units/*.cpp", "src/store/D*.cpp", "src/store/I*.cpp")
SWAPS = {"+": "-", "-": "+", "*": "/", "/": "*", "%": "*", "<": "<=", "<=": "<", ">": ">=", ">=": ">",
         "==": "!=", "!=": "==", "&&": "||", "||": "&&", "+=": "-=", "-=": "+=", "*=": "/=", "/=": "*=",
         "true": "false", "false": "true"}
# clang-format puts spaces around binary operators.
SITE = re.compile(r"(?<= )(?:[-+*/%]=?|[<>]=?|[=!]=|&&|\|\|)(?= )|\b(?:true|false)\b|(?<![\w.])\d+(?:\.\d+)?(?:e-?\d+)?f?\b")
# Text that is not changed: comments, literals, directives, static_assert, namespaces.
OUTSIDE = re.compile(r'//[^\n]*|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])*\'|^#[^\n]*|\bstatic_assert\b[^;]*;|^namespace[^\n]*',
                     re.MULTILINE)
PROGRAMS = ("vantrel_tests", "vantrel")
SECONDS = 60


def sites(path):
    """Yields (path, offset, old, new) for every possible change."""
    code = OUTSIDE.sub(lambda match: re.sub(r"[^\n]", " ", match[0]), path.read_text())
    for match in SITE.finditer(code):
        old = match[0]
        new = SWAPS.get(old)
        if new is None:
            suffix = "f" if old.endswith("f") else ""
            number = old.removesuffix("f")
            new = f"{float(number) * 1.0001 if set(number) & set('.e') else int(number) + 1}{suffix}"
        yield path, match.start(), old, new


class Bench:
    """Builds and tests mutants in `folder`."""

    def __init__(self, build, folder):
        self.build, self.folder = build, folder
        commands = json.loads((build / "compile_commands.json").read_text())
        self.compilers = {one["file"]: one["command"] for one in commands}
        folder.mkdir(parents=True, exist_ok=True)
        # The programs expect their files next to them; link() replaces the programs.
        for entry in build.iterdir():
            link = folder / entry.name
            link.unlink(missing_ok=True)
            link.symlink_to(entry)
        listed = subprocess.run([build / "vantrel_tests", "--gtest_list_tests"], check=True,
                                capture_output=True, text=True).stdout
        suite, self.tests = "", []
        for line in listed.splitlines():
            name = line.split("#")[0].strip()
            if line.startswith(" "):
                self.tests.append(suite + name)
            else:
                suite = name

    def compile(self, source, text):
        """Returns the object file; None if `text` does not compile."""
        mutated, made = self.folder / "mutant.cpp", self.folder / "mutant.o"
        mutated.write_text(text)
        words = [word for word in shlex.split(self.compilers[str(source)]) if "ccache" not in word]
        words[words.index("-o") + 1] = str(made)
        words[words.index(str(source))] = str(mutated)
        done = subprocess.run([*words, "-w", "-iquote", source.parent], cwd=self.build, check=False,
                              capture_output=True)
        return made if done.returncode == 0 else None

    def link(self, program, made):
        """Links the program with the object before the archives, which replaces their copy of it."""
        command = subprocess.run(["ninja", "-t", "commands", program], cwd=self.build, check=True,
                                 capture_output=True, text=True).stdout.splitlines()[-1]
        words = shlex.split(command.removeprefix(": && ").split(" && ")[0])
        at = words.index("-o")
        target = self.folder / program
        target.unlink(missing_ok=True)
        words[at + 1] = str(target)
        subprocess.run([*words[:at], made, *words[at:]], cwd=self.build, check=True, capture_output=True)

    def fails(self, command):
        """Whether a test fails or times out, in the environment of the suite."""
        environment = os.environ | {"QT_QPA_PLATFORM": "offscreen", "LC_ALL": "C.UTF-8", "TZ": "UTC"}
        try:
            return subprocess.run(command, cwd=self.folder, env=environment, timeout=SECONDS,
                                  check=False, capture_output=True).returncode != 0
        except subprocess.TimeoutExpired:
            return True

    def any_fails(self, commands):
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            tried = [pool.submit(self.fails, command) for command in commands]
            for one in concurrent.futures.as_completed(tried):
                if one.result():
                    pool.shutdown(wait=True, cancel_futures=True)
                    return True
        return False

    def killed_by(self, folder, made):
        """Returns the kind of test that fails; None if all pass."""
        for program in PROGRAMS:
            self.link(program, made)
        own = suites_of(folder)
        tests = {"its own tests": [], "other tests": []}
        for test in self.tests:
            group = "its own tests" if own & set(re.split(r"[./]", test)) else "other tests"
            tests[group].append(["./vantrel_tests", f"--gtest_filter={test}"])
        for name, commands in tests.items():
            if self.any_fails(commands):
                return name
        transcripts = sorted((ROOT / "tests/cli/transcripts").glob("*.txt"))
        if self.any_fails([[sys.executable, "-B", ROOT / "tests/cli/transcripts.py", self.folder, one]
                           for one in transcripts]):
            return "a transcript"
        return None


def suites_of(folder):
    text = "".join(path.read_text() for path in (ROOT / "tests" / folder).glob("*.cpp"))
    return set(re.findall(r"\b(?:TEST(?:_[FP])?|INSTANTIATE_TEST_SUITE_P)\(\s*(\w+)", text))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("--count", type=int, default=100)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--file", default="")
    options = parser.parse_args()
    bench = Bench(options.build.resolve(), options.build.resolve().parent / "mutants")
    explained = (ROOT / "trials/mutants.txt").read_text()
    everywhere = [site for pattern in SOURCES for path in sorted(ROOT.glob(pattern)) for site in sites(path)
                  if options.file in str(path)]
    random.Random(options.seed).shuffle(everywhere)
    whole = next(path for path, *_ in everywhere)
    if killer := bench.killed_by("", bench.compile(whole, whole.read_text())):
        sys.exit(f"mutants: {killer} fail without a change")
    tried = lives = 0
    for path, offset, old, new in everywhere:
        if tried == options.count:
            break
        text = path.read_text()
        begin, end = text.rfind("\n", 0, offset) + 1, text.find("\n", offset)
        changed = text[:offset] + new + text[offset + len(old):]
        line = text[begin:end].strip()
        what = f"{path.relative_to(ROOT)}: {line} -> {changed[begin:end + len(new) - len(old)].strip()}"
        made = bench.compile(path, changed)
        if not made:
            continue
        tried += 1
        killer = bench.killed_by(path.parent.name, made)
        if not killer and what in explained:
            killer = "nothing: explained"
        lives += not killer
        print(f"{tried:3} {killer or 'LIVES'}: {what}", flush=True)
    print(f"{tried} mutants of {len(everywhere)} places: {tried - lives} killed or explained, {lives} live")
    return 1 if lives or not tried else 0


if __name__ == "__main__":
    sys.exit(main())
