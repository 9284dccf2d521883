#!/usr/bin/env python3
"""Measures what a line of modules costs: `zerklsc batch` over simulated captures, `zerklsc lot` over simulated results,
and what follows for a year of a line and an archive. Prints a section of Markdown.

  line_cost.py --tool build/release/tool/zerklsc [--renew docs/scale.md]

--renew writes the section in the place of the one with the same heading. Takes about six minutes.
"""
import argparse
import csv
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

from measured import Run, figures, machine, paragraph, renew, table

HEADING = "## What it costs"
TESTS = pathlib.Path(__file__).resolve().parent.parent / "tests" / "tool"
SMALL, LARGE = (640, 480), (4208, 3120)
CAPTURES = 8  # distinct ones of a size
YEAR, ARCHIVE = 10_000_000, 100_000_000
NIGHT = 8 * 3600
PARTS = (("libzerklsc", "the library"), ("zerklsc", "the tool"), ("libnettle", "hashes of the captures"),
         ("[kernel", "the kernel"), ("", "libc, libm and others"))


class Line:
    """A folder with a few captures of each size, and manifests that name them over and over."""

    def __init__(self, tool, folder):
        self.tool, self.folder = tool, folder
        for size in (SMALL, LARGE):
            for seed in range(CAPTURES):
                Run(tool, "simulate", "-q", "--width", size[0], "--height", size[1], "--seed", seed, "-o",
                    folder / f"{size[0]}-{seed}.pgm")

    def batch(self, size, modules, *words, before=()):
        manifest, results = self.folder / "lot.csv", self.folder / "results.jsonl"
        with open(manifest, "w", newline="") as file:
            csv.writer(file).writerows([["serial", "files"]] + [
                [f"M{number:07}", f"{size[0]}-{number % CAPTURES}.pgm"] for number in range(modules)])
        results.unlink(missing_ok=True)
        run = Run(*before, self.tool, "batch", "-q", manifest, "-o", results, *words)
        run.line = results.stat().st_size / modules
        return run

    def taken_up(self):
        """The last batch again: all is there already."""
        return Run(self.tool, "batch", "-q", self.folder / "lot.csv", "-o", self.folder / "results.jsonl")


def batch_table(line, counts):
    """The cost of a large module is returned too."""
    rows, rates, large = [], {}, None
    outputs = ("--tables", line.folder / "tables", "--streams", line.folder / "streams")
    few = counts[0] // 10
    for size, modules, jobs, more in (
            (SMALL, few, 1, ()), (SMALL, few, 2, ()), (SMALL, few, 2, outputs), (SMALL, counts[0], 2, ()),
            (LARGE, counts[1] // 5, 2, ()), (LARGE, counts[1], 1, ()), (LARGE, counts[1], 2, ())):
        run = line.batch(size, modules, "--jobs", jobs, *more)
        rates[size, modules, jobs, bool(more)] = modules / run.seconds
        rows.append([f"{size[0]} x {size[1]}" + (", tables and streams written" if more else ""), f"{modules:,}", jobs,
                     figures(modules / run.seconds / jobs), figures(1e3 * run.processor / modules),
                     run.peak, f"{run.line / 1e3:.1f}"])
        large = run if size == LARGE else large
    text = table(["captures", "modules", "workers", "modules per second and core", "ms of a processor each", "peak MB",
                  "KB of results each"], rows)
    scaling = [rates[size, count, 2, False] / rates[size, count, 1, False]
               for size, count in ((SMALL, few), (LARGE, counts[1]))]
    text += paragraph(f"Two workers do {scaling[0]:.2f} times as much as one, at 13 megapixels {scaling[1]:.2f} times.")
    return text, large.processor / counts[1], large.line


def shares(line, size, modules):
    """The part of the time that each object of the program takes, by samples of its clock."""
    samples = line.folder / "perf.data"
    line.batch(size, modules, "--jobs", 1,
               before=("perf", "record", "-q", "-e", "cpu-clock", "-F", "999", "-o", samples))
    told = subprocess.run(["perf", "report", "-i", samples, "--stdio", "--no-children", "--sort=dso"],
                          capture_output=True, text=True, check=True).stdout
    found = dict.fromkeys((name for _, name in PARTS), 0.0)
    for percent, name in re.findall(r"^\s*([\d.]+)%\s+(\S+)", told, re.M):
        found[next(part for prefix, part in PARTS if name.startswith(prefix))] += float(percent)
    return found


def shares_table(line, counts):
    trial = ["perf", "record", "-q", "-e", "cpu-clock", "-o", "/dev/null", "true"]
    if not shutil.which("perf") or subprocess.run(trial, capture_output=True, check=False).returncode != 0:
        return paragraph("Where the time goes was not measured: `perf` cannot run here.")
    both = [shares(line, SMALL, counts[0] // 20), shares(line, LARGE, counts[1] // 2)]
    return paragraph("Where the time goes, by samples of one worker's clock (`perf record -e cpu-clock`):") + table(
        ["in", "640 x 480", "4208 x 3120"], [[part, *(f"{found[part]:.1f} %" for found in both)] for part in both[0]])


def lot_table(line, counts):
    """The seconds of a summary per result are returned too."""
    results, partial = line.folder / "simulated.jsonl", line.folder / "simulated.lot"
    page = ("-o", line.folder / "lot.html")
    rows = []
    for count in counts:
        with open(results, "wb") as file:
            Run(sys.executable, TESTS / "result_lines.py", count, into=file)
        for what, words in (("`lot --partial`", [results, "--partial", partial]),
                            ("`lot` with its page", [results, *page]), ("`lot` of the summary", [partial, *page])):
            run = Run(line.tool, "lot", *words)
            each = run.processor / count
            rows.append([what, f"{count:,}", figures(run.processor),
                         figures(1e6 * each) if results in words else "–", run.peak])
            if partial in words and results in words:
                summary = each
    return table(["command", "results", "s of a processor", "s per million", "peak MB"], rows), summary


def projection(seconds, line_bytes, summary):
    """Of a module of 13 megapixels, its line, and a result in a summary."""
    capture = LARGE[0] * LARGE[1] * 10 / 8
    year = YEAR / (365 * 86400)
    rows = [
        ["processor time", f"{YEAR * seconds / 3600:.0f} h: {year * seconds:.3f} of a core all year round"],
        ["captures, 10 bits packed", f"{YEAR * capture / 1e12:.0f} TB: {year * capture / 1e6:.1f} MB/s all year round"],
        ["results", f"{YEAR * line_bytes / 1e9:.0f} GB"],
        ["all of it again in 8 hours",
         f"{YEAR * seconds / NIGHT:.0f} cores, which read {YEAR * capture / NIGHT / 1e9:.1f} GB/s"]]
    text = paragraph("From these figures, on paper: a line that makes 10 million modules of 13 megapixels a year.")
    text += table(["a year of the line", ""], rows)
    rows = [
        ["results", f"{ARCHIVE * line_bytes / 1e12:.2f} TB"],
        ["summaries of its shards", f"{ARCHIVE * summary / 3600:.0f} h of a processor"],
        ["the same in 8 hours", f"{ARCHIVE * summary / NIGHT:.1f} cores, which read "
                                f"{ARCHIVE * line_bytes / NIGHT / 1e6:.0f} MB/s"],
        ["merging them", f"{ARCHIVE * 8 / 1e9:.1f} GB of summaries, and as serials 12 to 24 bytes each: up to "
                         f"{ARCHIVE * 24 / 1e9:.1f} GB of memory"]]
    return text + paragraph("An archive of 100 million results:") + table(["the archive", ""], rows)


def section(tool, counts, results):
    with tempfile.TemporaryDirectory() as folder:
        line = Line(tool, pathlib.Path(folder))
        batches, seconds, line_bytes = batch_table(line, counts)
        line.batch(SMALL, counts[0] // 10)
        again = line.taken_up().processor / (counts[0] // 10)
        lots, summary = lot_table(line, results)
        text = f"{HEADING}\n\n" + paragraph(
            f"`make bench-line RENEW=1` measures this and writes it here. {machine()}. {CAPTURES} simulated captures of "
            "each size stand for all modules, which name them in turn: they come from memory, as no line's do. Usual "
            "options.")
        text += batches + shares_table(line, counts)
        text += paragraph(f"A finished batch of small modules is taken up at {figures(1e6 * again)} s of a processor per "
                          "million results. Simulated results of 13 megapixels:")
    return text + lots + projection(seconds, line_bytes, summary)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--tool", required=True, type=lambda path: pathlib.Path(path).resolve())
    parser.add_argument("--modules", type=int, nargs=2, default=[10000, 100], help="small ones, large ones")
    parser.add_argument("--results", type=int, nargs="+", default=[10000, 50000])
    parser.add_argument("--renew", type=pathlib.Path, metavar="DOCUMENT")
    options = parser.parse_args()
    text = section(options.tool, options.modules, options.results)
    print(text, end="")
    if options.renew:
        renew(options.renew, HEADING, text)


if __name__ == "__main__":
    main()
