#!/usr/bin/env python3
"""Which share of the branches of the sources the tests of the preset `coverage` took, and where they took fewest; ends
with 1 where that is less than it must be.

  tests/coverage.py build/coverage                   the shares
  tests/coverage.py --list build/coverage            each branch that no test took, too

Clang counts the two outcomes of each condition as it is written, and of each operand of && and ||: nothing that the
compiler adds, such as the edge of an exception or the end of a temporary. What is compiled several times, a template or
a kernel, counts once, taken where any of its copies took it.
"""
import argparse
import collections
import json
import os
import pathlib
import re
import subprocess
import sys

LEAST = {"src": 99.0, "tool": 95.0}  # per cent


def taken_branches(build):
    """By file and place of each condition: how often it was true, and false."""
    profile = build / "tests.profdata"
    raw = [str(path) for path in (build / "profiles").glob("*.profraw")]
    subprocess.run(["llvm-profdata", "merge", "-sparse", "-failure-mode=all", "-o", profile, *raw], check=True)
    programs = [path for path in build.rglob("*") if path.is_file() and os.access(path, os.X_OK)
                and path.read_bytes()[:4] == b"\x7fELF" and "CMakeFiles" not in path.parts]
    objects = [word for path in programs[1:] for word in ("-object", path)]
    # Of the library, whose folder is kept out of its objects, the names are relative to the top.
    exported = subprocess.run(["llvm-cov", "export", "-compilation-dir", ".", "-instr-profile", profile, programs[0],
                               *objects], capture_output=True, check=True).stdout
    taken = collections.defaultdict(lambda: [0, 0])
    for file in json.loads(exported)["data"][0]["files"]:
        name = os.path.relpath(file["filename"]).removeprefix("../../")  # that of ccache's objects, from the build's folder
        for line, column, _, _, true, false, *_ in file["branches"]:
            taken[name, line, column][0] += true
            taken[name, line, column][1] += false
    return taken


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--list", action="store_true")
    parser.add_argument("build", type=pathlib.Path)
    options = parser.parse_args()
    os.chdir(pathlib.Path(__file__).parents[1])
    taken = taken_branches(options.build)
    status = 0
    for top, least in LEAST.items():
        files = {name: pathlib.Path(name).read_text().split("\n") for name, _, _ in taken if name.startswith(top + "/")}
        # What the compiler decides has one outcome.
        branches = [(name, line, column, counts) for (name, line, column), counts in sorted(taken.items())
                    if name in files and not re.search(r"if constexpr|while \(true\)", files[name][line - 1])]
        missing = collections.Counter()
        for name, line, column, counts in branches:
            for outcome, count in zip(("true", "false"), counts):
                missing[name] += not count
                if options.list and not count:
                    print(f"{name}:{line}:{column}: never {outcome}: {files[name][line - 1].strip()}")
        count = missing.total()
        share = 100 - 100 * count / (2 * len(branches))
        print(f"{top}: {2 * len(branches) - count} of {2 * len(branches)} branches, {share:.2f} %; "
              f"at least {least} % are needed; most are missing in")
        for name, lacking in missing.most_common(5):
            print(f"    {lacking}  {name}")
        status |= share < least
    return status


if __name__ == "__main__":
    sys.exit(main())
