#!/usr/bin/env python3
"""Tests the manual page and the completion as their readers meet them: check_help.py TOOL FOLDER

The folder holds zerklsc.1, zerklsc.bash and _zerklsc.
"""
import pathlib
import re
import subprocess
import sys
import tempfile

TOOL, FOLDER = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
FILES = ["flat field.pgm", "flat.pgm", "tables.json"]

# What is typed, its last word being completed, and what is offered; for bash also after "=".
COMPLETIONS = [
    (["zerklsc", "cal"], ["calibrate"]),
    (["zerklsc", "co"], ["compare", "convert", "correct"]),
    (["zerklsc", "help", "meas"], ["measure"]),
    (["zerklsc", "otp", ""], ["check", "decode", "encode"]),
    (["zerklsc", "otp", "encode", "--ma"], ["--max-error"]),
    (["zerklsc", "measure", "--bl"], ["--black-level", "--blocks"]),
    (["zerklsc", "measure", "fl"], ["flat field.pgm", "flat.pgm"]),
    (["zerklsc", "otp", "check", "ta"], ["tables.json"]),
    (["zerklsc", "correct", "flat.pgm", "--tables", "ta"], ["tables.json"]),
    (["zerklsc", "correct", "flat.pgm", "-o", "ta"], ["tables.json"]),
    (["zerklsc", "calibrate", "flat.pgm", "--algorithm", "orvel-"], ["orvel-otp", "orvel-weights"]),
    (["zerklsc", "measure", "--pattern", "G"], ["GBRG", "GRBG"]),
    (["zerklsc", "measure", "--blocks", "f"], []),
    (["zerklsc", "nothing", "fl"], []),
]
BASH_COMPLETIONS = [
    (["zerklsc", "measure", "--pattern", "=", "B"], ["BGGR"]),
    (["zerklsc", "measure", "--pattern", "="], ["BGGR", "GBRG", "GRBG", "RGGB"]),
    (["zerklsc", "correct", "flat.pgm", "--tables", "=", "ta"], ["tables.json"]),
]

# Types the line into a terminal of zsh, asks for the list of choices, and prints it between marks.
ZSH = r"""
zmodload zsh/zpty
zpty shell zsh -f -i
zpty -w shell 'PS1=; fpath=('$FOLDER' $fpath); autoload -U compinit; compinit -u -D; LISTMAX=10000
  zstyle ":completion:*" list-grouped false; zstyle ":completion:*" verbose false; bindkey "^I" list-choices
  unsetopt list_types auto_list; setopt list_rows_first; stty columns 30; print rea""dy'
zpty -r shell seen '*ready*'
zpty -w -n shell "$LINE"$'\t'
repeat 30; do sleep 0.1; zpty -r -t shell part && print -r -- "$part"; done
zpty -d shell
"""


def output_of(*words, **more):
    return subprocess.run(words, check=True, capture_output=True, text=True, **more).stdout


def help_of(path):
    return output_of(TOOL, *path, "--help")


def commands(path=()):
    """The words that lead to each command that does something."""
    listed = re.search(r"^Subcommands:\n((?:  .*\n)+)", help_of(path), re.M)
    if not listed:
        return [path]
    names = re.findall(r"^  ([a-z][\w-]*) ", listed[1], re.M)
    return [found for name in names for found in commands((*path, name))]


def wrong_in_manual():
    page = FOLDER / "zerklsc.1"
    lint = subprocess.run(["mandoc", "-Tlint", page], check=False, capture_output=True, text=True)
    yield from (lint.stdout + lint.stderr).splitlines()
    text = re.sub(r".\x08", "", output_of("mandoc", "-Tascii", "-Owidth=200", page))
    sections = dict(re.findall(r"^   (zerklsc .*)\n((?: {5,}.*\n|\n)+)", text, re.M))
    for path in commands():
        name = " ".join(("zerklsc", *path))
        options = re.findall(r"^ +((?:-\w,)?--[\w-]+|-\w)\b", help_of(path), re.M)
        if not options:
            yield f"{name}: --help names no option"
        for option in options:
            if not re.search(rf"^ +{option.replace(',', ', ')}(?: |$)", sections.get(name, ""), re.M):
                yield f"zerklsc.1: {name} lacks {option}"


def bash_offers(words, folder):
    script = f'source "{FOLDER}/zerklsc.bash"; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _zerklsc; printf "%s\\n" "${{COMPREPLY[@]}}"'
    return sorted(output_of("bash", "-uc", script, "bash", *words, cwd=folder).split("\n")[:-1])


def wrong_in_completion():
    output_of("bash", "-n", FOLDER / "zerklsc.bash")
    output_of("zsh", "-n", FOLDER / "_zerklsc")
    with tempfile.TemporaryDirectory() as folder:
        for name in FILES:
            pathlib.Path(folder, name).touch()
        for words, expected in COMPLETIONS + BASH_COMPLETIONS:
            offered = [word for word in bash_offers(words, folder) if word]
            if offered != expected:
                yield f"bash: {' '.join(words)}: {offered}, not {expected}"


faults = [*wrong_in_manual(), *wrong_in_completion()]
print("\n".join(faults))
sys.exit(1 if faults else 0)
