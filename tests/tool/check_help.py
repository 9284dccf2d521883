#!/usr/bin/env python3
"""Tests the manual page and the completion as their readers meet them: check_help.py TOOL FOLDER

The folder holds zerklsc.1, zerklsc.bash and _zerklsc.
"""
import os
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
    (["zerklsc", "batch", "lot.csv", "--streams", "f"], ["folder"]),
    (["zerklsc", "nothing", "fl"], []),
]
# It offers an option again where that may stand again.
ZSH_COMPLETIONS = [
    (["zerklsc", "check", "--limit", "gain=3,9", "--li"], ["--limit"]),
    (["zerklsc", "check", "--preset", "a.toml", "--pre"], []),
]
BASH_COMPLETIONS = [
    (["zerklsc", "measure", "--pattern", "=", "B"], ["BGGR"]),
    (["zerklsc", "measure", "--pattern", "="], ["BGGR", "GBRG", "GRBG", "RGGB"]),
    (["zerklsc", "correct", "flat.pgm", "--tables", "=", "ta"], ["tables.json"]),
]

# Read by a zsh in a terminal of its own: it writes what it offers there, a word a line, and says when it is through.
ZSH_SETUP = r"""
PS1=; fpath=($FOLDER $fpath); autoload -U compinit; compinit -u -D
compadd() {
    if [[ ${@[1,(i)(-|--)]} != *-(O|A|D)\ * ]]; then
        local -a words
        builtin compadd -O words "$@"
        print -rl -- '' "offer:"$^words
    fi
    builtin compadd "$@"
}
offer() { zle list-choices; print -r -- "the end" }
zle -N offer; bindkey "^I" offer
"""
ZSH = r"""
zmodload zsh/zpty
zpty shell zsh -f -i
zpty -w shell 'source setup; print rea""dy'
zpty -r shell seen '*ready*'
zpty -w -n shell "$LINE"$'\t'
zpty -r shell seen '*the end*'
print -r -- "$seen"
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


def zsh_offers(words, folder):
    line = " ".join(word.replace(" ", "\\ ") for word in words)
    seen = output_of("zsh", "-fc", ZSH, cwd=folder, env={**os.environ, "FOLDER": str(FOLDER), "LINE": line}, timeout=300)
    return sorted(set(re.findall(r"^offer:(.+?)\r?$", seen.replace("\\ ", " "), re.M)))


def wrong_in_completion():
    output_of("bash", "-n", FOLDER / "zerklsc.bash")
    output_of("zsh", "-n", FOLDER / "_zerklsc")
    with tempfile.TemporaryDirectory() as folder:
        for name in FILES:
            pathlib.Path(folder, name).touch()
        pathlib.Path(folder, "folder").mkdir()
        for words, expected in COMPLETIONS + BASH_COMPLETIONS:
            offered = [word for word in bash_offers(words, folder) if word]
            if offered != expected:
                yield f"bash: {' '.join(words)}: {offered}, not {expected}"
        pathlib.Path(folder, "setup").write_text(ZSH_SETUP)
        for words, expected in COMPLETIONS + ZSH_COMPLETIONS:
            offered = zsh_offers(words, folder)
            if offered != expected:
                yield f"zsh: {' '.join(words)}: {offered}, not {expected}"


faults = [*wrong_in_manual(), *wrong_in_completion()]
print("\n".join(faults))
sys.exit(1 if faults else 0)
