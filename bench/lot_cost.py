#!/usr/bin/env python3
"""Measures what `zerklsc lot` costs per million results, in processor time, and how its memory grows with their number.

  lot_cost.py --tool build/release/tool/zerklsc [--modules 5000 20000]
"""
import argparse
import os
import pathlib
import subprocess
import sys
import tempfile

TESTS = pathlib.Path(__file__).resolve().parent.parent / "tests" / "tool"


def cost(words):
    """User and system time, and the largest memory in MB, of a command."""
    process = subprocess.Popen(words, stdout=subprocess.DEVNULL)
    _, status, usage = os.wait4(process.pid, 0)
    assert status == 0, words
    return usage.ru_utime, usage.ru_stime, usage.ru_maxrss / 1024


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--tool", default="build/release/tool/zerklsc")
    parser.add_argument("--modules", type=int, nargs="+", default=[5000, 20000])
    options = parser.parse_args()
    print("modules   what       user s/million  system  peak MB  MB of results")
    with tempfile.TemporaryDirectory() as directory:
        results, partial = f"{directory}/results.jsonl", f"{directory}/part.lot"
        for count in options.modules:
            with open(results, "wb") as file:
                subprocess.run([sys.executable, TESTS / "result_lines.py", str(count)], stdout=file, check=True)
            size = os.path.getsize(results) / 1e6
            for what, words in (("--partial", [results, "--partial", partial]), ("all", [results]), ("merge", [partial])):
                user, system, memory = cost([options.tool, "lot", *words])
                print(f"{count:7}   {what:9} {1e6 * user / count:13.0f} {1e6 * system / count:8.0f} {memory:8.1f} {size:9.0f}")


if __name__ == "__main__":
    main()
