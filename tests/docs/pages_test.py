#!/usr/bin/env python3
"""Whether the manual pages and the completions hold every command and option that --help tells.

usage: pages_test.py BUILD-FOLDER

--help is walked from outside; the pages and completions were made another way. Shells and page
readers of the system say whether they are well-formed, and shells what they complete."""

import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

BUILD = pathlib.Path(sys.argv.pop(1)).resolve()
SHARE = BUILD / "share"
PROGRAMS = ("vantrel", "vantrel-today")


def output(*command, **more):
    done = subprocess.run(command, capture_output=True, text=True, timeout=60, check=False, **more)
    return done.stdout + done.stderr


def section(help_text, title):
    found = re.search(rf"^{title}:\n((?:  .*\n)+)", help_text, re.MULTILINE)
    return found.group(1) if found else ""


def walk(path):
    """{path: options}, for the command and all below it."""
    help_text = output(BUILD / path[0], *path[1:], "--help") + "\n"
    options = re.findall(r"^  (-\S+)", section(help_text, "Options"), re.MULTILINE)
    known = {path: [name for names in options for name in names.split(",")]}
    for name in re.findall(r"^  (\w\S*)", section(help_text, "Commands"), re.MULTILINE):
        known.update(walk((*path, name)))
    return known


COMMANDS = {path: options for program in PROGRAMS for path, options in walk((program,)).items()}


def below(path):
    return {other[-1] for other in COMMANDS if other[:-1] == path}


# Asked for what it would offer for each line, at the first prompt.
ZSH = """fpath=(%s/zsh/vendor-completions $fpath)
autoload -Uz compinit && compinit -uD
compadd() {
  local -a found
  if [[ ${@[1,(i)(-|--)]} != *-[OAD]\\ * ]]; then
    builtin compadd -A found "$@"
    print -rl -- $found >> $ZDOTDIR/offers
  fi
  builtin compadd "$@"
}
zle-line-init() {
  for BUFFER in ${(f)"$(<$ZDOTDIR/lines)"}; do
    CURSOR=$#BUFFER
    print -r -- "=== $BUFFER" >> $ZDOTDIR/offers
    zle offer
  done
  exit
}
zle -C offer list-choices _main_complete
zle -N zle-line-init
""" % SHARE


def offered_by_zsh(lines, environment):
    """{line: words}; it completes only on a terminal."""
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        (folder / ".zshrc").write_text(ZSH)
        (folder / "lines").write_text("\n".join(lines))
        output("script", "-qc", "zsh -d -i", "/dev/null",
               env={**environment, "ZDOTDIR": name, "TERM": "xterm"})
        answers = (folder / "offers").read_text().split("=== ")[1:]
    return {line: words.split("\n") for line, words in (one.split("\n", 1) for one in answers)}


class Pages(unittest.TestCase):
    def test_help_was_understood(self):
        self.assertIn("--latitude", COMMANDS["vantrel", "plan", "add"])
        self.assertIn("--render", COMMANDS["vantrel-today",])

    def test_are_well_formed(self):
        pages = sorted(SHARE.glob("man/*/*"))
        self.assertEqual([page.name for page in pages],
                         ["vantrel-today.1", "vantrel.1", "vantrel-store.5"])
        for page in pages:
            self.assertEqual(output("mandoc", "-T", "lint", page), "")
            read = ("man", "--warnings", "-E", "UTF-8", "-l", "-Tutf8", "-Z", page)
            self.assertNotIn("warning", output(*read, env={**os.environ, "LC_ALL": "C.UTF-8"}))

    def test_tell_every_command_and_option(self):
        for program in PROGRAMS:
            text = (SHARE / "man/man1" / f"{program}.1").read_text().replace("\\-", "-")
            parts = dict(re.findall(r"^\.S[SH] ([\w -]+\w).*\n((?:(?!\.S[SH]).*\n)*)", text, re.M))
            for path, options in COMMANDS.items():
                if path[0] != program or below(path) and len(path) > 1:
                    continue
                part = parts["OPTIONS" if len(path) == 1 else " ".join(path)]
                for option in options:
                    if option not in ("-h", "--help") or len(path) == 1:
                        self.assertIn(f"\\fB{option}\\fR", part, path)


class Completions(unittest.TestCase):
    def test_are_well_formed(self):
        for shell, pattern in (("bash", "bash-completion/completions/*"),
                               ("zsh", "zsh/vendor-completions/*"),
                               ("fish", "fish/vendor_completions.d/*")):
            files = sorted(SHARE.glob(pattern))
            self.assertEqual(len(files), len(PROGRAMS))
            for file in files:
                self.assertEqual(output(shell, "-n", file), "")

    def assert_offered(self, offered):
        """`offered` gives the words for a line whose last word is being typed."""
        for path, options in COMMANDS.items():
            self.assertLessEqual(below(path), set(offered[(*path, "")]), path)
            self.assertLessEqual({name for name in options if name.startswith("--")},
                                 set(offered[(*path, "--")]), path)

    def lines(self):
        return [(*path, start) for path in COMMANDS for start in ("", "--")]

    def test_of_bash(self):
        script = "".join(f"source {SHARE}/bash-completion/completions/{p}\n" for p in PROGRAMS)
        for line in self.lines():
            words = " ".join(f"'{word}'" for word in line)
            function = "_" + line[0].replace("-", "_")
            script += (f"COMP_WORDS=({words}); COMP_CWORD={len(line) - 1}; {function}\n"
                       'echo "${COMPREPLY[@]}"\n')
        answers = output("bash", "--norc", "-c", script).splitlines()
        self.assertEqual(len(answers), len(self.lines()))
        self.assert_offered({l: a.split() for l, a in zip(self.lines(), answers)})

    def test_of_fish(self):
        script = "".join(f"source {SHARE}/fish/vendor_completions.d/{p}.fish\n" for p in PROGRAMS)
        for line in self.lines():
            script += f"echo ===; complete -C '{' '.join(line)}'\n"
        answers = output("fish", "--no-config", "-c", script).split("===\n")[1:]
        self.assertEqual(len(answers), len(self.lines()))
        self.assert_offered({line: [one.split("\t")[0] for one in answer.splitlines()]
                             for line, answer in zip(self.lines(), answers)})

    def test_of_zsh(self):
        answers = offered_by_zsh([" ".join(line) for line in self.lines()], os.environ)
        self.assert_offered({l: answers[" ".join(l)] for l in self.lines()})

    def test_of_plans(self):
        folder = self.enterContext(tempfile.TemporaryDirectory())
        with_plan = {**os.environ, "PATH": f"{BUILD}:{os.environ['PATH']}",
                     "VANTREL_GROUP_CONTAINER": folder + "/group"}
        plan = output("vantrel", "plan", "add", "--name", "A: b", env=with_plan).strip()
        bash = (f"source {SHARE}/bash-completion/completions/vantrel; "
                "COMP_WORDS=(vantrel plan show ''); COMP_CWORD=3; _vantrel; echo $COMPREPLY")
        self.assertEqual(output("bash", "--norc", "-c", bash, env=with_plan), plan + "\n")
        fish = (f"source {SHARE}/fish/vendor_completions.d/vantrel.fish; "
                "complete -C 'vantrel plan edit '")
        self.assertEqual(output("fish", "--no-config", "-c", fish, env=with_plan),
                         plan + "\tA: b\n")
        # An option may stand between the commands, and before the plan.
        line = "vantrel plan --quiet show --json "
        self.assertEqual(offered_by_zsh([line], with_plan)[line], [plan, ""])


if __name__ == "__main__":
    unittest.main()
