#!/usr/bin/env python3
"""Runs one case of the tool's tests as a user would type it, and compares what came of it.

A case is a folder with (frames.py reads what the tool has made)
  cmd      the command lines; sh runs them in an empty directory with the tool on its PATH
  exit     the expected exit code; 0 where the file is missing
  stdout   expected standard output; empty where the file is missing
  stderr   expected standard error; empty where the file is missing
  files    the names that must be in the directory afterwards, one a line
  needs    the readers without which there is no such test, one a line: LIBRAW, TIFF, YAML

  run.py --tool build/release/tool/zerklsc tests/tool/cases/NAME            compare
  run.py --tool build/release/tool/zerklsc --renew tests/tool/cases/*       write what came as expected
"""
import argparse
import difflib
import os
import pathlib
import subprocess
import sys
import tempfile

DEFAULTS = {"exit": "0\n", "stdout": "", "stderr": "", "files": ""}


def run_case(case, tool):
    with tempfile.TemporaryDirectory() as top:
        directory = pathlib.Path(top, "run")
        directory.mkdir()
        scratch = pathlib.Path(top, "tmp")
        scratch.mkdir()
        environment = dict(os.environ, PATH=f"{tool.parent}:{os.environ['PATH']}", LC_ALL="C", TMPDIR=str(scratch),
                           PYTHONPATH=str(pathlib.Path(__file__).parent), PYTHONDONTWRITEBYTECODE="1")
        done = subprocess.run(["sh", str(case / "cmd")], cwd=directory, env=environment, stdin=subprocess.DEVNULL,
                              capture_output=True, text=True, errors="replace", check=False)
        leftovers = [f"{p.name} in TMPDIR" for p in scratch.iterdir()]
        files = sorted([p.name for p in directory.iterdir()] + leftovers)
    return {"exit": f"{done.returncode}\n", "stdout": done.stdout, "stderr": done.stderr,
            "files": "".join(f"{name}\n" for name in files)}


def renew(case, came):
    for name, text in came.items():
        if text == DEFAULTS[name]:
            (case / name).unlink(missing_ok=True)
        else:
            (case / name).write_text(text)


def compare(case, came):
    same = True
    for name, default in DEFAULTS.items():
        expected = (case / name).read_text() if (case / name).exists() else default
        if came[name] != expected:
            same = False
            lines = difflib.unified_diff(expected.splitlines(True), came[name].splitlines(True),
                                         f"{case.name}/{name} expected", f"{case.name}/{name} came")
            sys.stdout.writelines(lines)
    return same


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--tool", type=lambda p: pathlib.Path(p).resolve(), required=True)
    parser.add_argument("--renew", action="store_true")
    parser.add_argument("cases", nargs="+", type=lambda p: pathlib.Path(p).resolve())
    options = parser.parse_args()
    same = True
    for case in options.cases:
        came = run_case(case, options.tool)
        if options.renew:
            renew(case, came)
        else:
            same = compare(case, came) and same
    return 0 if same else 1


if __name__ == "__main__":
    sys.exit(main())
