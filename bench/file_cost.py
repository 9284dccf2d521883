#!/usr/bin/env python3
"""Measures what the commands cost from file to file, against `dd` of the same file. Prints a section of Markdown.

  file_cost.py --tool build/release/tool/zerklsc [--renew docs/performance.md]

--renew writes the section in the place of the one with the same heading. Takes about twenty seconds.
"""
import argparse
import pathlib
import statistics
import tempfile

from measured import Run, machine, paragraph, renew, table

HEADING = "## From file to file"
WIDTH, HEIGHT = 4208, 3120


def commands(tool, flat, tables, out):
    """The words of each command, and the multiples of dd's processor time and of the frame's memory it may cost."""
    return {
        "`dd bs=32M`": (["dd", f"if={flat}", f"of={out}.copy", "bs=32M", "status=none"], None, None),
        "`info`": ([tool, "info", flat], 3, 1.3),
        "`measure`": ([tool, "measure", flat], 1.5, 1.3),
        "`check`": ([tool, "check", flat], 4, 1.3),
        "`calibrate` with its check": ([tool, "calibrate", flat, "-o", f"{out}.json"], 5, 1.3),
        "`correct`": ([tool, "correct", flat, "--tables", tables, "-o", f"{out}.pgm"], 2, 1.3),
        "`preview`": ([tool, "preview", flat, "-o", f"{out}.png"], 8, 1.3),
        "`preview --tables`": ([tool, "preview", flat, "--tables", tables, "-o", f"{out}.png"], 8, 1.3),
        "`--version`": ([tool, "--version"], None, None),
    }


def held(value, goal):
    """A figure with its goal, in bold where it misses it."""
    text = f"{value:.2f}"
    return text if goal is None else f"{text} ({goal})" if value <= goal else f"**{text}** ({goal})"


def section(tool, rounds):
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        flat, tables = folder / "flat.pgm", folder / "tables.json"
        Run(tool, "simulate", "-q", "--width", WIDTH, "--height", HEIGHT, "-o", flat)
        Run(tool, "calibrate", "-q", flat, "-o", tables)
        frame = flat.stat().st_size / 2**20
        tried = commands(tool, flat, tables, folder / "out")
        runs = {what: [] for what in tried}
        for _ in range(rounds):
            for what, (words, _, _) in tried.items():
                runs[what].append(Run(*words))
    milliseconds = {what: 1e3 * statistics.median(run.processor for run in those) for what, those in runs.items()}
    copy = milliseconds["`dd bs=32M`"]
    rows = [[what, f"{milliseconds[what]:.1f}", held(milliseconds[what] / copy, cost),
             held(max(run.megabytes for run in runs[what]) / frame, memory) if memory else ""]
            for what, (_, cost, memory) in tried.items()]
    return f"{HEADING}\n\n" + paragraph(
        f"`make bench RENEW=1` measures this and writes it here. {machine()}. A simulated flat of {WIDTH} x {HEIGHT}, "
        f"{frame:.0f} MiB as PGM, in memory: processor time (user and system, median of {rounds} runs in turn) against "
        "one read and one write, and the largest memory against the frame. Goals in brackets; a figure in bold misses "
        "its goal.") + table(
            ["command", "ms of a processor", "× dd", "× frame"], rows)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--tool", required=True, type=lambda path: pathlib.Path(path).resolve())
    parser.add_argument("--rounds", type=int, default=15)
    parser.add_argument("--renew", type=pathlib.Path, metavar="DOCUMENT")
    options = parser.parse_args()
    text = section(options.tool, options.rounds)
    print(text, end="")
    if options.renew:
        renew(options.renew, HEADING, text)


if __name__ == "__main__":
    main()
