#!/usr/bin/env python3
"""Runs `zerklsc batch` over simulated modules: faults, shards, workers, and kills at random moments.

  batch_line.py --tool build/release/tool/zerklsc                                  faults, and 10 kills over 200 modules
  batch_line.py --tool build/release/tool/zerklsc --modules 10000 --kills 100      the kills alone, over so many
"""
import argparse
import csv
import hashlib
import json
import os
import pathlib
import random
import resource
import signal
import subprocess
import sys
import tempfile
import time

CAPTURES = 8
# Small frames, and a grid that the stream holds.
FRAME = ["--width", "64", "--height", "48"]


class Line:
    """A folder with a manifest of modules that share a few captures."""

    def __init__(self, tool, folder, modules):
        self.tool, self.folder = str(tool), pathlib.Path(folder)
        for i in range(CAPTURES):
            self.call("simulate", "--quiet", *FRAME, "--seed", str(i), "-o", f"c{i}.pgm")
        self.write([[f"M{i:05}", f"c{i * i % CAPTURES}.pgm", ""] for i in range(modules)])

    def call(self, *words, **more):
        return subprocess.run([self.tool, *words], cwd=self.folder, capture_output=True, text=True, check=False, **more)

    def write(self, rows, name="lot.csv"):
        self.modules = [row[0] for row in rows]
        with open(self.folder / name, "w", newline="") as file:
            csv.writer(file).writerows([["serial", "files", "preset"]] + rows)

    def batch(self, output, *words, manifest="lot.csv", **more):
        return self.call("batch", manifest, "-o", output, *words, **more)

    def read(self, name):
        return (self.folder / name).read_bytes()

    def results(self, name):
        return [json.loads(line) for line in self.read(name).splitlines()]


def expect(condition, *what):
    if not condition:
        sys.exit(" ".join(map(str, what)))


def expect_call(done, code, *texts):
    expect(done.returncode == code, "exit code", done.returncode, "not", code, done.stderr)
    for text in texts:
        expect(text in done.stderr, repr(text), "is not in", done.stderr)
    expect(len(done.stderr.splitlines()) == len(texts), "more lines than expected:", done.stderr)


def test_workers_and_shards(line):
    """The same bytes from any number of workers; shards hold every module once, by a hash that this computes too."""
    for jobs in ("1", "2", "5"):
        expect_call(line.batch(f"jobs{jobs}", "--jobs", jobs, "--tables", f"t{jobs}", "--streams", f"s{jobs}"), 0)
        expect(line.read(f"jobs{jobs}") == line.read("jobs1"), "other results with", jobs, "workers")
    results = line.results("jobs1")
    expect([result["serial"] for result in results] == line.modules, "not in the order of the manifest")
    for result in results:
        for file, folder in zip(result["outputs"], ("t5", "s5")):
            expect(hashlib.sha256(line.read(f"{folder}/{file['file']}")).hexdigest() == file["sha256"], file)
        captured = hashlib.sha256(line.read(result["inputs"][0]["file"])).hexdigest()
        expect(result["inputs"][0]["sha256"] == captured, result["inputs"])
    lines = {}
    for i in (1, 2, 3):
        # Into one folder for the files, as hosts with a shared file system do.
        expect_call(line.batch(f"shard{i}", "--shard", f"{i}/3", "--tables", "all", "--streams", "streams"), 0)
        for text, result in zip(line.read(f"shard{i}").splitlines(True), line.results(f"shard{i}")):
            digest = hashlib.sha256(result["serial"].encode()).hexdigest()
            expect(int(digest[:16], 16) % 3 == i - 1, result["serial"], "is in shard", i)
            lines[result["serial"]] = text
    expect(b"".join(lines[serial] for serial in line.modules) == line.read("jobs1"), "shards differ from the whole")


def test_faults(line):
    """Each fault is a line on standard error and a result; the modules around it are what they are without it."""
    expect_call(line.batch("whole"), 0)
    good = line.read("whole").splitlines(True)
    (line.folder / "dark.toml").write_text("level = 1\n[batch]\nlimit = [\"exposure=99,98\"]\nmax-flatness = 0.001\n")
    rows = [[serial, f"c{i * i % CAPTURES}.pgm", ""] for i, serial in enumerate(line.modules)]
    rows[2:2] = [["GONE", "gone.pgm", ""], ["M00000", "c1.pgm", ""], ["QUOTES", "a.pgm", "", "more"], ["", "c1.pgm", ""],
                 ["PRESET", "c1.pgm", "gone.toml"], ["UNEVEN", "c1.pgm", "dark.toml"]]
    serials = line.modules
    line.write(rows, "faults.csv")
    line.modules = serials
    done = line.batch("faults", manifest="faults.csv")
    expect_call(done, 3, "faults.csv:4: GONE: error: gone.pgm: cannot be read: No such file",
                "faults.csv:5: M00000: error: the serial stands in an earlier line",
                "faults.csv:6: QUOTES: error: it has 4 fields, and the first line 3", "faults.csv:7: the serial \"\" is not",
                "faults.csv:8: PRESET: error: gone.toml: cannot be read",
                "faults.csv:9: UNEVEN: fail: c1.pgm: corrected, it is",
                "faults: 0 flat fields refused, 4 modules that could not be read or calibrated, 1 bad lines")
    came = line.read("faults").splitlines(True)
    expect(came[:2] + came[7:] == good, "the modules around the faults differ")
    verdicts = [json.loads(text)["verdict"] for text in came[2:7]]
    expect(verdicts == ["error", "error", "error", "error", "fail"], verdicts)
    # Taken up when it is done, it says the same.
    expect_call(line.batch("faults", manifest="faults.csv"), 3, "faults.csv:7:", "faults: 0 flat fields refused, 4 modules")
    expect(line.read("faults") == b"".join(came), "a finished batch was changed")
    line.write([rows[0], rows[7]], "fail.csv")
    line.modules = serials
    expect_call(line.batch("fail", manifest="fail.csv"), 1, "UNEVEN: fail", "fail: 1 modules failed a limit")


def test_what_stops_a_batch(line):
    whole = line.read("whole")
    (line.folder / "file").write_text("something of the user's\n")
    expect_call(line.batch("results", "--tables", "file"), 4, "file: cannot be made: Not a directory")
    expect_call(line.batch("file"), 3, "file: holds no results of zerklsc batch")
    expect_call(line.batch("/dev/full"), 2, "/dev/full: is no regular file")
    expect_call(line.batch("gone/results"), 4, "gone/results: cannot be written: No such file or directory")
    expect_call(line.batch("results", manifest="gone.csv"), 4, "gone.csv: cannot be read")
    expect_call(line.batch("whole", "--step", "2"), 3, "whole:1: was made with other options")
    expect_call(line.batch("whole", "--shard", "2/2"), 3, "whole:3: is of M00002, but lot.csv:5 is M00003")
    expect((line.folder / "file").read_text() == "something of the user's\n", "a file of the user's was changed")
    # A full disk leaves whole lines, and the same command goes on.
    limit = len(whole) // 2
    full = line.batch("whole2", preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit)))
    expect_call(full, 4, "whole2: cannot be written: File too large")
    part = line.read("whole2")
    expect(0 < len(part) <= limit and part.endswith(b"\n") and whole.startswith(part), "not the whole lines that fit")
    expect_call(line.batch("whole2"), 0)
    expect(line.read("whole2") == whole, "other results after a full disk")


def test_torn_ends(line):
    """What is torn is cut off and made again; what is damaged further up is not touched."""
    whole = line.read("whole")
    lines = whole.splitlines(True)
    for torn in (whole[:-1], whole[:-300], whole[:7], lines[0] + bytes(5000), lines[0] + bytes(99) + b"\n" + lines[1]):
        (line.folder / "torn").write_bytes(torn)
        expect_call(line.batch("torn"), 0, "are torn, as by a kill")
        expect(line.read("torn") == whole, "other results after a torn end")
    damaged = lines[0] + b"x" + b"".join(lines[1:])
    (line.folder / "torn").write_bytes(damaged)
    expect_call(line.batch("torn"), 3, "torn:2: is damaged, and more than 64 lines follow")
    expect(line.read("torn") == damaged, "a damaged file was changed")


def test_signals(line):
    """The first signal ends a batch after what runs."""
    running = subprocess.Popen([line.tool, "batch", "lot.csv", "-o", "ended", "--jobs", "1"], cwd=line.folder,
                               stderr=subprocess.PIPE, stdout=subprocess.DEVNULL, text=True)
    while not (line.folder / "ended").exists() or not line.read("ended"):
        time.sleep(0.001)
    running.send_signal(signal.SIGINT)
    said = running.communicate()[1]
    if running.returncode != 0:  # else it was quicker
        expect(running.returncode == 4 and "ended: ended by a signal" in said, running.returncode, said)
        expect(line.read("ended").endswith(b"\n"), "a torn end after a signal")
    expect_call(line.batch("ended"), 0)
    expect(line.read("ended") == line.read("whole"), "other results after a signal")


def test_kills(line, kills):
    """Every module exactly once, and the bytes of an undisturbed run."""
    outputs = ["--tables", "kt", "--streams", "ks", "--no-gains", "-q"]
    begun = time.monotonic()
    expect_call(line.batch("undisturbed", "--tables", "ut", "--streams", "us", "--no-gains", "-q"), 0)
    duration = time.monotonic() - begun
    chance = random.Random(7)
    killed = 0
    for _ in range(kills):
        running = subprocess.Popen([line.tool, "batch", "lot.csv", "-o", "killed", *outputs], cwd=line.folder,
                                   stderr=subprocess.DEVNULL)
        time.sleep(chance.uniform(0, 2 * duration / kills))
        running.kill()
        killed += running.wait() == -signal.SIGKILL
        # No line without its files, at any time.
        for text in line.read("killed").splitlines(True)[-50:] if (line.folder / "killed").exists() else []:
            if text.endswith(b"\n"):
                for file, folder in zip(json.loads(text)["outputs"], ("kt", "ks")):
                    expect(hashlib.sha256(line.read(f"{folder}/{file['file']}")).hexdigest() == file["sha256"], file)
    done = line.batch("killed", *outputs)
    expect(done.returncode == 0, done.stderr)
    expect(line.read("killed") == line.read("undisturbed"), "other results after kills")
    expect([r["serial"] for r in line.results("killed")] == line.modules, "a module is missing, or there twice")
    for ours, theirs in (("kt", "ut"), ("ks", "us")):
        names = sorted(name for name in os.listdir(line.folder / theirs))
        expect(sorted(n for n in os.listdir(line.folder / ours) if not n.startswith(".")) == names, "other files")
        expect(all(line.read(f"{ours}/{n}") == line.read(f"{theirs}/{n}") for n in names), "other bytes in", ours)
    print(f"{killed} of {kills} runs killed over {len(line.modules)} modules ({duration:.1f} s undisturbed)")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--tool", type=lambda p: pathlib.Path(p).resolve(), required=True)
    parser.add_argument("--modules", type=int)
    parser.add_argument("--kills", type=int, default=10)
    options = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        line = Line(options.tool, folder, options.modules or 80)
        if options.modules is None:
            for test in (test_workers_and_shards, test_faults, test_what_stops_a_batch, test_torn_ends, test_signals):
                test(line)
            line = Line(options.tool, folder, 200)
        test_kills(line, options.kills)


if __name__ == "__main__":
    main()
