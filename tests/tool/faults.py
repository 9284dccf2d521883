#!/usr/bin/env python3
"""Runs every command that writes while something goes wrong, and looks at what it leaves.

  faults.py --tool build/release/tool/zerklsc --shim build/release/tests/tool/fault_shim.so [--kills 10]

Each call of each function of the system that the way of an output takes fails in turn, takes half of what it gets, or is
the last that the process does; a killer comes at random moments; an input is written to while it is read; every option that
takes numbers gets what is none. Whatever happens, each output is the old one or the new one as a whole, the exit code is
right, one line says why, no temporary file stays, and the same command does its work afterwards.
"""
import errno
import itertools
import json
import os
import pathlib
import random
import shutil
import signal
import subprocess
import sys
import time

from tool import in_a_folder, options_with_tool

# The commands, and their outputs; a letter is a file in the folder of outputs.
WRITERS = {
    "simulate": ("simulate --width 64 --height 48 -o out/a.pgm", "a.pgm"),
    "calibrate": ("calibrate flat.pgm --step 16 --radius 4 -o out/a.json --text out/b.txt", "a.json b.txt"),
    "correct": ("correct flat.pgm --tables tables.json -o out/a.pgm", "a.pgm"),
    "preview": ("preview flat.pgm -o out/a.png", "a.png"),
    "report": ("report flat.pgm --tables tables.json -o out/a.html", "a.html"),
    "resample": ("resample tables.json --step 8 -o out/a.json --text out/b.txt", "a.json b.txt"),
    "convert": ("convert tables.json --into camera.dng --replace -o out/a.dng", "a.dng"),
    "otp encode": ("otp encode tables.json --container --force -o out/a.otp --c-array out/b.h", "a.otp b.h"),
    "otp decode": ("otp decode module.otp -o out/a.json", "a.json"),
    "lot": ("lot results.jsonl --golden out/a.json -o out/b.html", "a.json b.html"),
    "lot --partial": ("lot results.jsonl --partial out/a.lot", "a.lot"),
    # Goes on with the results that it finds.
    "batch": ("batch lot.csv -o out/a.jsonl --tables out/t --streams out/s --jobs 1", ""),
}
READERS = {"check": "check flat.pgm", "measure": "measure flat.pgm", "info": "info flat.pgm", "compare": "compare flat.pgm",
           "otp check": "otp check module.otp --tables tables.json"}
FAILING = {"mkostemp": errno.EROFS, "write": errno.ENOSPC, "fchmod": errno.EIO, "fsync": errno.EIO, "fdatasync": errno.EIO,
           "rename": errno.EACCES, "link": errno.EPERM, "unlink": errno.EACCES, "close": errno.EIO, "flock": errno.ENOLCK,
           "open": errno.EMFILE, "ftruncate": errno.EIO, "mkdir": errno.ENOSPC, "pread": errno.EIO}
# Numbers that are none, or too large for any type.
HOSTILE = ["nan", "inf", "-inf", "1e999", "18446744073709551616", "-9223372036854775809", "", " ", "5x", "5 5", "--"]
PREFIXES = {"NAME[=AMOUNT]": "uneven=", "NAME=WARN,REFUSE": "shadow="}
faults = []


class Case:
    """A folder with inputs, in which one command runs again and again."""

    def __init__(self, options, tool, name):
        self.options, self.tool, self.folder, self.name = options, tool, tool.folder, name
        self.words, self.outputs = WRITERS[name][0].split(), WRITERS[name][1].split()
        self.out, self.runs = tool.folder / "out", 0
        self.fresh()
        self.before = self.content()
        started = time.monotonic()
        self.expect(self.run()[0] == 0, "fails by itself")
        self.duration = time.monotonic() - started
        self.after = self.content()

    def expect(self, condition, *what):
        if not condition:
            faults.append(f"{self.name}: {' '.join(map(str, what))}")
            print(faults[-1], flush=True)

    def fresh(self):
        """One output is there before, and the second is not."""
        shutil.rmtree(self.out, ignore_errors=True)
        self.out.mkdir()
        if self.outputs:
            (self.out / self.outputs[0]).write_text("old")

    def content(self):
        return {str(p.relative_to(self.out)): p.read_bytes() for p in sorted(self.out.rglob("*"))
                if p.is_file() and not p.name.startswith(".zerklsc-")}

    def leftovers(self):
        return list(self.out.rglob(".zerklsc-*"))

    def run(self, action="", call="", at=0, number=0, file=""):
        """Exit code, the lines of the failure, and whether it came to the fault."""
        self.runs += 1
        told, tell = os.pipe()
        shim = {"LD_PRELOAD": str(self.options.shim), "FAULT_ACTION": action, "FAULT_CALL": call, "FAULT_AT": str(at),
                "FAULT_ERRNO": str(number), "FAULT_FILE": file, "FAULT_TOLD": str(tell)} if action else {}
        done = self.tool.call(*self.words, env={**os.environ, **shim}, pass_fds=[tell], timeout=300)
        os.close(tell)
        with os.fdopen(told, "rb") as pipe:
            reached = pipe.read() != b""
        return done.returncode, [line for line in done.stderr.splitlines() if not line.startswith("warning: ")], reached

    def in_turn(self, action, call, number=0, file=""):
        """The outcome of each call's fault, until there are no more."""
        for at in range(1, 10000):
            self.fresh()
            code, lines, reached = self.run(action, call, at, number, file)
            if not reached:
                return
            yield f"{action} of {call} {at}", code, lines

    def expect_mended(self, what):
        """The command does its work, and removes what a killed one left."""
        for path in self.leftovers():
            os.utime(path, (0, 0))
        code, lines, _ = self.run()
        self.expect(code == 0 and self.content() == self.after, what, "spoils the next run:", code, lines)
        self.expect(not self.leftovers(), what, "leaves", self.leftovers(), "for good")

    def try_failures(self):
        for call, number in FAILING.items():
            # A capture that cannot be read is the result of its module in a batch, and stays it.
            if not self.outputs and call in ("open", "pread"):
                continue
            for what, code, lines in self.in_turn("fail", call, number):
                told = os.strerror(number) in "".join(lines) or self.name == "batch"
                self.expect((code, len(lines)) == (0, 0) or (code in (3, 4) if self.name == "batch" else code == 4)
                            and told, what, "ends with", code, lines)
                if self.outputs:
                    self.expect(len(lines) <= 1 and self.content() == (self.before if code else self.after),
                                what, "ends with", code, "and", sorted(self.content()))
                self.expect(call == "unlink" or not self.leftovers(), what, "leaves", self.leftovers())
                if not self.outputs:
                    self.expect_mended(what)

    def try_halves(self):
        for what, code, lines in self.in_turn("half", "write"):
            self.expect(code == 0 and self.content() == self.after, what, "ends with", code, lines)

    def expect_whole(self, what):
        for name, content in self.content().items() if self.outputs else ():
            self.expect(content in (self.before.get(name), self.after[name]), what, "leaves a part of", name)
        self.expect_mended(what)

    def try_kills(self):
        for call in ("mkostemp", "write", "fchmod", "fsync", "fdatasync", "link", "rename", "unlink", "mkdir"):
            for what, code, _ in self.in_turn("kill", call):
                self.expect(code == -signal.SIGKILL, what, "ends with", code)
                self.expect_whole(what)
        for _ in range(self.options.kills):
            self.fresh()
            moment = random.uniform(0, 1.2 * self.duration)
            with subprocess.Popen([self.options.tool, *self.words], cwd=self.folder, stdout=subprocess.DEVNULL,
                                  stderr=subprocess.DEVNULL) as process:
                time.sleep(moment)
                process.kill()
            self.expect_whole(f"a kill after {1000 * moment:.1f} ms")

    def try_changes(self):
        """An input is written to just before each part of it is read, and before each file is opened."""
        # The results that lot reads twice may grow meanwhile.
        unseen = ("out/", "results")
        for file in [word for word in self.words if (self.folder / word).is_file() and not word.startswith(unseen)]:
            whole = (self.folder / file).read_bytes()
            (self.folder / file).write_bytes(whole + b"x")
            self.fresh()
            changed = self.run()[0] == 0 and self.content()
            (self.folder / file).write_bytes(whole)
            refused = 0
            for what, code, lines in itertools.chain(*(self.in_turn("change", call, file=file) for call in ("pread", "open"))):
                (self.folder / file).write_bytes(whole)
                right = (self.after, changed) if code == 0 else (self.before,)
                self.expect(code in (0, 3) and len(lines) == (code != 0) and file in "".join(lines or [file])
                            and self.content() in right, what, "of", file, "ends with", code, lines)
                refused += code == 3
            self.expect(refused, "a change of", file, "is never seen")


def numeric_options(tree, path=()):
    for option in tree["options"]:
        value = option["value"]
        if value and value not in ("FILE", "DIR", "SERIAL") and not value.startswith("{"):
            yield " ".join(path), option["names"][-1], value
    for command in tree["commands"]:
        yield from numeric_options(command, (*path, command["name"]))


def try_hostile_numbers(tool):
    words = {**READERS, **{name: words for name, (words, _) in WRITERS.items()}}
    for command, option, kind in numeric_options(json.loads(tool.run("--option-tree").stdout)):
        for number in HOSTILE:
            value = PREFIXES.get(kind, "") + ("/" if "/" in kind else ",").join([number] * (kind.count(",") + kind.count("/") + 1))
            done = tool.call(*words[command].split(), option, value, stdin=subprocess.DEVNULL, timeout=300)
            if done.returncode != 2 or len(done.stderr.splitlines()) != 1 or option.lstrip("-") not in done.stderr:
                faults.append(f"{command} {option} '{value}' ends with {done.returncode}: {done.stderr}")
                print(faults[-1], flush=True)


def make_inputs(tool):
    tool.run("simulate", "--width", "128", "--height", "96", "-o", "flat.pgm")
    tool.run("calibrate", "flat.pgm", "--step", "16", "--radius", "4", "-o", "tables.json")
    tool.run("convert", "tables.json", "--raw", "flat.pgm", "-o", "camera.dng")
    tool.run("otp", "encode", "tables.json", "--container", "--force", "-o", "module.otp")
    tool.write("lot.csv", "serial,files\n" + "".join(f"M{i},flat.pgm\n" for i in range(3)))
    tool.run("batch", "lot.csv", "-o", "results.jsonl")


def main():
    parser = options_with_tool(__doc__)
    parser.add_argument("--shim", type=lambda p: pathlib.Path(p).resolve(), required=True)
    parser.add_argument("--kills", type=int, default=10)
    parser.add_argument("--commands", nargs="*", default=[*WRITERS, "numbers"])
    options = parser.parse_args()
    random.seed(options.kills)
    with in_a_folder(options.tool) as tool:
        make_inputs(tool)
        for name in options.commands:
            if name == "numbers":
                (tool.folder / "out").mkdir(exist_ok=True)
                try_hostile_numbers(tool)
                continue
            case = Case(options, tool, name)
            case.try_failures()
            case.try_halves()
            case.try_kills()
            if case.outputs:
                case.try_changes()
            print(f"{name}: {case.runs} runs", flush=True)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
