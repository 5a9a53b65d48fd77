"""Completion of orvctl's arguments, asked of the shells themselves."""

import os
import pty
import re
import shlex
import subprocess
import unittest

from support import BIN, PATIENCE, ProcessTest, needs_a_terminal, read_to_the_end

BASH = """
source {script}
compopt() {{ option=$2; }}  # is only there while a key is pressed; "default" offers files where nothing else is
for line in {lines}; do
  mapfile -t COMP_WORDS < <(grep -o '=\\|[^ =]*' <<<"$line")
  [[ $line == *[\ =] ]] && COMP_WORDS+=('')
  COMP_CWORD=$((${{#COMP_WORDS[@]}} - 1))
  option=; _orvctl
  [[ $option == default && ! $COMPREPLY ]] && COMPREPLY=($(compgen -f -- "${{COMP_WORDS[COMP_CWORD]}}"))
  printf '%s\\n' "line $line" "${{COMPREPLY[@]}}"
done
"""
FISH = """
source {script}
for line in {lines}; echo line $line; complete -C $line; end
"""
# A line editor offers what is at the end of the line when it is asked to list it. What it is about to offer is kept.
ZSH = """
fpath=({folder:q} $fpath); autoload -Uz compinit; compinit -u -D
compadd() {{
  local -a words
  [[ " $* " == *" -"[OAD]" "* ]] || {{ builtin compadd -O words "$@"; print -rl -- $words >>{found:q} }}
  builtin compadd "$@"
}}
zle-line-init() {{
  for BUFFER in {lines}; do
    CURSOR=$#BUFFER; print -r -- "line $BUFFER" >>{found:q}; zle list-choices
  done
  exit
}}
zle -N zle-line-init
"""


class Quoted(str):
    def __format__(self, kind):
        return shlex.quote(self) if kind == "q" else str(self)


def by_line(text):
    """What was offered for each line, without an option that stands before it in the same word."""
    offered = {}
    for part in re.split("^line ", text, flags=re.MULTILINE)[1:]:
        line, *words = part.split("\n")
        plain = (re.sub("^--[a-z]+=(?=.)", "", word.split("\t")[0]).rstrip("= ") for word in words)
        offered[line] = set(filter(None, plain))
    return offered


class CompletionTest(ProcessTest):
    def setUp(self):
        super().setUp()
        (self.folder / "machine.json").touch()
        self.commands = re.findall(r"^  ([a-z]+) ", self.orvctl("--help").partition("Subcommands:")[2], re.MULTILINE)
        self.assertIn("thermal", self.commands)
        self.expected = {"orvctl watch --format ": {"table", "jsonl", "csv", "waybar", "i3bar"},
                         "orvctl watch --format w": {"waybar"}, "orvctl watch --format=w": {"waybar"},
                         "orvctl watch --only F0Ac --fo": {"--format"}, "orvctl watch --only ": set(),
                         "orvctl thermal --simulate mach": {"machine.json"}, "orvctl replay mach": {"machine.json"},
                         "orvctl explain bluetooth h": {"hid"}, "orvctl th": {"thermal"}, "orvctl --v": {"--version"}}
        for command in self.commands:
            options = re.findall(r"^  (?:-\w,)?(--[a-z-]+)", self.orvctl(command, "--help"), re.MULTILINE)
            self.expected[f"orvctl {command} --"] = set(options)

    def write(self, name, shell, text):
        script = self.folder / name
        script.write_text(self.orvctl("completion", shell))
        return text.format(script=shlex.quote(str(script)), folder=Quoted(self.folder),
                           found=Quoted(self.folder / "found"), lines=" ".join(map(shlex.quote, [*self.expected, "orvctl "])))

    def check(self, text):
        offered = by_line(text)
        self.assertLessEqual(set(self.commands), offered.pop("orvctl "))
        self.assertEqual(offered, self.expected)

    def run_shell(self, *command):
        done = subprocess.run(command, cwd=self.folder, env=self.environment | {"HOME": str(self.folder)}, text=True,
                              capture_output=True, timeout=PATIENCE)
        self.assertEqual(done.stderr, "")
        return done.stdout

    def test_bash(self):
        self.check(self.run_shell("bash", "--norc", "-c", self.write("orvctl.bash", "bash", BASH)))

    def test_fish(self):
        self.check(self.run_shell("fish", "--no-config", "-c", self.write("orvctl.fish", "fish", FISH)))

    @needs_a_terminal
    def test_zsh(self):
        (self.folder / ".zshrc").write_text(self.write("_orvctl", "zsh", ZSH))
        controller, terminal = pty.openpty()
        shell = subprocess.Popen(["zsh", "-d", "-i"], cwd=self.folder, stdin=terminal, stdout=terminal, stderr=terminal,
                                 env=self.environment | {"ZDOTDIR": str(self.folder), "TERM": "dumb"},
                                 start_new_session=True)
        self.addCleanup(self.end, shell)
        os.close(terminal)
        shown = read_to_the_end(controller)
        found = self.folder / "found"
        self.assertTrue(found.exists(), shown)
        self.check(found.read_text())


if __name__ == "__main__":
    unittest.main()
