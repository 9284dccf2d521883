#!/usr/bin/env python3
"""Runs `zerklsc batch` over simulated modules: faults, shards, workers, and kills at random moments.

  batch_line.py --tool build/release/tool/zerklsc                                  faults, and 10 kills over 200 modules
  batch_line.py --tool build/release/tool/zerklsc --full-disk                      on a disk of 96 KiB that fills up
  batch_line.py --tool build/release/tool/zerklsc --modules 10000 --kills 100      the kills alone, over so many

--full-disk ends with 77 where no file system can be mounted, not even by a user of a name space of its own.
"""
import base64
import contextlib
import csv
import fcntl
import hashlib
import json
import os
import pty
import random
import re
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import time

from tool import SKIPPED, Tool, options_with_tool

CAPTURES = 8


class Line(Tool):
    """A folder with a manifest of modules that share a few captures."""

    def __init__(self, tool, folder, modules, width=64, height=48):
        """The usual frames are small, and their grid is one that the stream holds."""
        super().__init__(tool, folder)
        for i in range(CAPTURES):
            self.run("simulate", "--quiet", "--width", width, "--height", height, "--seed", i, "-o", f"c{i}.pgm")
        self.modules = [f"M{i:05}" for i in range(modules)]
        self.rows = [[serial, f"c{i * i % CAPTURES}.pgm", ""] for i, serial in enumerate(self.modules)]
        self.write_manifest("lot.csv", self.rows)

    def write_manifest(self, name, rows, *more):
        with open(self.folder / name, "w", newline="") as file:
            csv.writer(file).writerows([["serial", "files", "preset", *more], *rows])

    def popen(self, *words, stderr=subprocess.PIPE, **more):
        return subprocess.Popen([self.path, "batch", *words], cwd=self.folder, stderr=stderr, stdout=subprocess.DEVNULL, text=True, **more)

    def batch(self, output, *words, manifest="lot.csv", **more):
        return self.call("batch", manifest, "-o", output, *words, **more)

    def results(self, name):
        return [json.loads(line) for line in self.read(name).splitlines()]

    def digest(self, name):
        return hashlib.sha256(self.read(name)).hexdigest()


def expect(condition, *what):
    if not condition:
        sys.exit(" ".join(map(str, what)))


def expect_call(done, code, *texts):
    expect(done.returncode == code, "exit code", done.returncode, "not", code, done.stderr)
    for text in texts:
        expect(text in done.stderr, repr(text), "is not in", done.stderr)
    # Beyond a limit of files, a program that counts its branches says that it cannot write them.
    lines = [line for line in done.stderr.splitlines() if not line.startswith("LLVM Profile Error")]
    expect(len(lines) == len(texts), "more lines than expected:", done.stderr)


def expect_files(line, results, *folders):
    """Each result's outputs are whole, in their folders."""
    for result in results:
        for file, folder in zip(result["outputs"], folders, strict=True):
            expect(line.digest(f"{folder}/{file['file']}") == file["sha256"], file)


def expect_goes_on(line, name, whole, *words):
    """Whole lines stand there, and the same command makes the others."""
    part = line.read(name)
    expect(0 < len(part) < len(whole) and part.endswith(b"\n") and whole.startswith(part), "not whole lines")
    expect_call(line.batch(name, *words), 0)
    expect(line.read(name) == whole, "other results when", name, "went on")


def test_workers_and_shards(line):
    """The same bytes from any number of workers; shards hold every module once, by a hash that this computes too."""
    for jobs in ("1", "2", "5"):
        expect_call(line.batch(f"jobs{jobs}", "--jobs", jobs, "--tables", f"t{jobs}", "--streams", f"s{jobs}"), 0)
        expect(line.read(f"jobs{jobs}") == line.read("jobs1"), "other results with", jobs, "workers")
    results = line.results("jobs1")
    expect([result["serial"] for result in results] == line.modules, "not in the order of the manifest")
    expect_files(line, results, "t5", "s5")
    for result in results:
        expect(result["inputs"][0]["sha256"] == line.digest(result["inputs"][0]["file"]), result["inputs"])
        tables = json.loads(line.read(f"t5/{result['outputs'][0]['file']}"))
        expect([result["grid"]["width"], result["grid"]["height"]] == tables["table_size"], result["grid"])
        expect([result["grid"][key] for key in ("step", "algorithm", "filter_radius", "shading_percent")]
               == [tables["step"], *(tables["parameters"][key] for key in ("algorithm", "filter_radius", "shading_percent"))])
        for plane in tables["tables"]:
            expect(base64.b64decode(result["gains"][plane["colour"]])
                   == b"".join(gain.to_bytes(2, "little") for row in plane["gains"] for gain in row), plane["colour"])
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
    rows = list(line.rows)
    rows[2:2] = [["GONE", "gone.pgm", ""], ["M00000", "c1.pgm", ""], ["QUOTES", "a.pgm", "", "more"], ["", "c1.pgm", ""],
                 ["PRESET", "c1.pgm", "gone.toml"], ["UNEVEN", "c1.pgm", "dark.toml"]]
    line.write_manifest("faults.csv", rows)
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
    told = line.document("batch", "faults.csv", "-o", "faults", code=3)
    all_verdicts = [result["verdict"] for result in line.results("faults")]
    counts = {name: all_verdicts.count(name) for name in ("pass", "warn", "refuse", "fail", "error")}
    expected = {"output": "faults", "shard": "1/1", "modules": 85, "done": 85, "taken_up": 85, "verdicts": counts, "bad_lines": 1}
    expect({key: told[key] for key in expected} == expected and counts["error"] == 4 and counts["fail"] == 1, told)
    said = line.batch("faults", manifest="faults.csv").stdout
    words = ", ".join(f"{number} {name}" for name, number in counts.items())
    expect(said == f"faults: 85 of 85 modules: {words}\n85 of them were there already\n", said)
    expect_call(line.batch("faults", manifest="faults.csv"), 3, "faults.csv:7:", "faults: 0 flat fields refused, 4 modules")
    expect(line.read("faults") == b"".join(came), "a finished batch was changed")
    line.write_manifest("fail.csv", [rows[0], rows[7]])
    expect_call(line.batch("fail", manifest="fail.csv"), 1, "UNEVEN: fail", "fail: 1 modules failed a limit")


def test_presets(line):
    """What becomes of a module by its preset, or of its capture, and which files it leaves."""
    for name, width, height, option, value in (("large", 640, 480, "--full-well", 60000), ("dim", 64, 48, "--level", 2),
                                               ("small", 30, 40, "--level", 300), ("dark", 64, 48, "--level", 0)):
        line.run("simulate", "--quiet", "--width", width, "--height", height, option, value, "-o", name + ".pgm")
    both = ["json", "otp"]
    cases = {"GOOD": ("large.pgm", "", "pass", "", both), "DIM": ("dim.pgm", "", "refuse", "exposure", []),
             "SMALL": ("small.pgm", "step = 4\nradius = 2\n", "refuse", "samples are clipped", []),
             "BOTH": ("c1.pgm", "[batch]\nmax-flatness = 0.001\nmax-error = 0.001\n", "fail", "off flat", ["json"]),
             "FLAT": ("large.pgm", "[batch]\nmax-flatness = 50\n", "pass", "", both),
             "A-SERIAL-OF-TWENTY-SIX-XX": ("c1.pgm", "", "error", "a container holds 24", []),
             "ELSEWHERE": (f"{line.folder}/c1.pgm", "[calibrate]\nsterp = 7\n", "warn", "", both),
             "WRONG": ("c1.pgm", "sterp = 7\n", "error", "sterp is no option", []),
             "WORD": ("c1.pgm", 'algorithm = "gamma"\n', "error", "gamma is not known", []),
             "UNKNOWN": ("c1.pgm", "[batch]\ncontainer = true\n", "error", "container is no option", [])}
    for serial, (_, text, *_) in cases.items():
        line.write(serial + ".toml", text)
    line.write_manifest("presets.csv", [[serial, case[0], serial + ".toml"] for serial, case in cases.items()])
    for words in (("--tables", "pt", "--streams", "ps"), ()):
        done = line.batch(f"presets{len(words)}", "-q", *words, manifest="presets.csv")
        expect(done.returncode == 3, done.stderr)
        for result in line.results(f"presets{len(words)}"):
            verdict, reason, files = cases[result["serial"]][2:]
            if not words and reason == "a container holds 24":
                verdict, reason = "warn", ""
            kinds = [file["file"].split(".")[-1] for file in result["outputs"]]
            expect(result["verdict"] == verdict and reason in result["reason"] and kinds == (files if words else []), result)
            expect((result["optical_centre"] is None) == (result["serial"] in ("SMALL", "WRONG", "WORD", "UNKNOWN")), result)
    done = line.batch("darks", "--dark", "dark.pgm", manifest="presets.csv")
    expect(line.results("darks")[3]["inputs"][1] == {"file": "dark.pgm", "sha256": line.digest("dark.pgm")}, done.stderr)


def test_numbers(line):
    """Each number of a result is what the command for it tells of the same captures."""
    for seed in (1, 2):
        line.run("simulate", "--quiet", "--width", 320, "--height", 228, "--pattern", "GBRG", "--black-level", 60, "--seed", seed,
                 "--corners", "31,40,45,52", "--centre", "47,55", "--dust", 3, "-o", f"n{seed}.pgm")
    line.write_manifest("numbers.csv", [["ONE", "n1.pgm", ""], ["TWO", "n1.pgm;n2.pgm", ""]])
    words = ["--step", 16, "--radius", 5, "--shading", 97, "--black-level", "60,59,61,62", "--keep-outliers"]
    for mode in (0, 1):
        expect(line.batch(f"numbers{mode}", *map(str, words), "--mode", str(mode), "--max-error", "50", manifest="numbers.csv").returncode == 0)
        for result, flats in zip(line.results(f"numbers{mode}"), (["n1.pgm"], ["n1.pgm", "n2.pgm"])):
            told = line.document("calibrate", *flats, *words, "-o", "n.json")
            stream = line.document("otp", "encode", "n.json", "--mode", mode, "--max-error", 50, "-o", "n.bin")
            numbers, frame = result["numbers"], result["frame"]
            checks = [{key: check[key] for key in ("name", "plane", "value", "verdict")} for check in told["checks"]]
            expect(result["checks"] == checks and len(checks) > 20, result["checks"])
            expect(max(numbers["predicted_flatness"].values()) == told["predicted_flatness"], numbers, told)
            losses = [channel["largest_gain_error"] for channel in stream["channels"]]
            expect((numbers["otp_bytes"], numbers["otp_loss"]) == (stream["stream_size"], max(losses)), numbers, stream)
            expect([frame[key] for key in ("width", "height", "bits", "pattern", "black_level")] == [320, 228, 10, "GBRG", [60, 59, 61, 62]])
            expect(all(abs(place[0] - 0.47) < 0.02 and abs(place[1] - 0.55) < 0.02 for place in result["optical_centre"].values()),
                   result["optical_centre"])
            if len(flats) == 1:
                for channel in line.document("measure", *flats, "--black-level", "60,59,61,62")["channels"]:
                    expect((numbers["flatness"][channel["colour"]], numbers["corner"][channel["colour"]])
                           == (channel["flatness"], channel["corner_to_centre"]), numbers, channel)
                line.run("correct", *flats, "--black-level", "60,59,61,62", "--tables", "n.json", "-o", "nc.pgm", "-q")
                for channel in line.document("measure", "nc.pgm")["channels"]:
                    expect(numbers["predicted_flatness"][channel["colour"]] == channel["flatness"], numbers, channel)


def test_capture_that_vanishes(line):
    """One that is there when it is hashed and gone when it is read; the pipe behind it stops the batch in between."""
    line.write("first.pgm", line.read("c1.pgm"))
    os.mkfifo(line.folder / "pipe")
    line.write_manifest("vanishing.csv", [["FIRST", "c2.pgm", ""], ["GONE", "first.pgm;pipe", ""], ["LAST", "c3.pgm", ""]])
    with line.popen("vanishing.csv", "-o", "vanished", "--jobs", "2") as running:
        with open(line.folder / "pipe", "wb"):
            (line.folder / "first.pgm").unlink()
        said = running.communicate(timeout=60)[1].splitlines()
    expect(running.returncode == 3 and len(said) == 2, running.returncode, said)
    expect("vanishing.csv:3: GONE: error: first.pgm: cannot be read: No such file" in said[0], said)
    results = line.results("vanished")
    verdicts = [result["verdict"] for result in results]
    expect([verdict == "error" for verdict in verdicts] == [False, True, False], verdicts)
    expect(results[1]["inputs"][0] == {"file": "first.pgm", "sha256": line.digest("c1.pgm")}, results[1]["inputs"])


def test_full_disk(line):
    """No space left for a line, or for a module's files: whole lines with whole files, and the same command goes on."""
    mounted = ("mkdir -p full && mount -t tmpfs -o size=96k none full || exit 77; tool=$0 kept=$1; shift; "
               '"$tool" batch lot.csv -o full/results "$@"; code=$?; cp -r full "$kept"; exit $code')
    def on_a_small_disk(kept, *words):
        return subprocess.run(["unshare", "--map-root-user", "--mount", "sh", "-c", mounted, line.path, kept, *words],
                              cwd=line.folder, capture_output=True, text=True, check=False)
    if not shutil.which("unshare") or on_a_small_disk("trial", "--help").returncode == 77:
        print("no file system can be mounted here")
        sys.exit(SKIPPED)
    files = ("--tables", "full/t", "--streams", "full/s", "--no-gains")
    for kept, what, words in (("lines", "full/results", ()), ("files", "full/t/M00", files)):
        expect_call(line.batch("whole", *words), 0)
        expect_call(on_a_small_disk(kept, *words), 4, what)
        if words:
            expect_files(line, line.results(f"{kept}/results"), f"{kept}/t", f"{kept}/s")
            expect(not list(line.folder.glob(f"{kept}/*/.*")), "half-written files were left")
        expect_goes_on(line, f"{kept}/results", line.read("whole"), *words)
        (line.folder / "whole").unlink()


def on_terminal(line, *words, meanwhile=lambda: None):
    """What a batch writes to a terminal, and its exit code."""
    terminal, end = pty.openpty()
    running = line.popen(*words, stderr=end)
    os.close(end)
    meanwhile()
    shown = b""
    with contextlib.suppress(OSError):  # that the other end is closed
        while more := os.read(terminal, 4096):
            shown += more
    os.close(terminal)
    return shown, running.wait()


def test_estimate(line):
    """One module in two seconds or more, which a pipe holds up: half a module a second at most, and the others to come."""
    line.write("held.pgm", line.read("c1.pgm"))
    os.mkfifo(line.folder / "held")
    line.write_manifest("held.csv", [["HELD", "held.pgm;held", ""], *([f"N{k:02}", "c2.pgm", ""] for k in range(9))])

    def hold_up():
        with open(line.folder / "held", "wb"):
            (line.folder / "held.pgm").unlink()
            time.sleep(2)

    shown, code = on_terminal(line, "held.csv", "-o", "held_up", "--jobs", "1", meanwhile=hold_up)
    done, rate, left = map(float, re.search(rb"(\d+) of 10 modules, (\d+\.\d) a second, (\d+) s left", shown).groups())
    expect(code == 3 and done == 1 and rate <= 0.5 and 9 / (rate + 0.05) - 1 <= left <= 9 / (rate - 0.05), shown)


def test_progress(line):
    """How far it is, on a terminal alone; every other test has a pipe, where nothing is said."""
    begun = time.monotonic()
    shown, code = on_terminal(line, "lot.csv", "-o", "shown", "--jobs", "1")
    seconds = time.monotonic() - begun
    expect(code == 0 and shown.endswith(b"\r\x1b[K"), "the line was not cleared", shown)
    pattern = rb"\r\x1b\[K(\d+) of 200 modules, \d+\.\d a second, \d+ (?:s|min) left"
    steps = [int(done) for done in re.findall(pattern, shown)]
    expect(steps and re.sub(pattern, b"", shown) == b"\r\x1b[K", "shown:", shown)
    expect(steps == sorted(set(steps)) and 0 < steps[0] and steps[-1] <= 200, steps)
    expect(len(steps) <= 4 * seconds + 1, "shown more than four times a second:", seconds, steps)


def test_what_stops_a_batch(line):
    whole = line.read("whole")
    line.write("file", "something of the user's\n")
    expect_call(line.batch("results", "--tables", "file"), 4, "file: cannot be made: Not a directory")
    expect_call(line.batch("file"), 3, "file: holds no results of zerklsc batch")
    expect_call(line.batch("/dev/full"), 2, "/dev/full: is no regular file")
    expect_call(line.batch("gone/results"), 4, "gone/results: cannot be written: No such file or directory")
    expect_call(line.batch("results", manifest="gone.csv"), 4, "gone.csv: cannot be read")
    expect_call(line.batch("whole", "--step", "2"), 3, "whole:1: was made with other options")
    expect_call(line.batch("whole", "--shard", "2/2"), 3, "whole:3: is of M00002, but lot.csv:5 is M00003")
    # Of another manifest; and only a module whose preset or line cannot be used any more is not compared with its options.
    rows = line.rows
    gone = ["M00000", "c0.pgm", "gone.toml"]
    for name, others, code, said in (("short", rows[:9], 3, "whole:10: is a result more than the manifest has modules"),
                                     ("preset", [gone, *rows[1:]], 3, "whole:1: is of M00000, but preset.csv:2 is M00000"),
                                     ("lit", [[*rows[0], "D65"], *rows[1:]], 3, "whole:1: is of M00000, but lit.csv:2 is M00000"),
                                     ("fields", [[*rows[0], "", "more"], *rows[1:]], 0, None)):
        line.write_manifest(name + ".csv", others, *(["illuminant"] if name in ("lit", "fields") else []))
        expect_call(line.batch("whole", manifest=name + ".csv"), code, *([said] if said else []))
    line.write("own.toml", "shading = 90\n")
    line.write_manifest("own.csv", [["M00000", "c0.pgm", "own.toml"]])
    expect_call(line.batch("own", manifest="own.csv"), 0)
    (line.folder / "own.toml").unlink()
    expect_call(line.batch("own", manifest="own.csv"), 0)
    # Another batch is writing, and an output whose place is taken.
    with open(line.folder / "own", "rb") as file:
        fcntl.flock(file, fcntl.LOCK_EX)
        expect_call(line.batch("own", manifest="own.csv"), 4, "own: another batch is writing it")
    (line.folder / "taken/M00005.json").mkdir(parents=True)
    expect_call(line.batch("stopped", "--tables", "taken"), 4, "taken/M00005.json: is a directory")
    expect(line.read("stopped").count(b"\n") == 5, "a line without its file, or a file without its line")
    expect(line.read("file") == b"something of the user's\n", "a file of the user's was changed")
    # A full disk leaves whole lines, and the same command goes on.
    limit = len(whole) // 2
    full = line.batch("whole2", preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit)))
    expect_call(full, 4, "whole2: cannot be written: File too large")
    expect(len(line.read("whole2")) <= limit, "more than fits")
    expect_goes_on(line, "whole2", whole)


def test_torn_ends(line):
    """What is torn is cut off and made again; what is damaged further up is not touched."""
    whole = line.read("whole")
    lines = whole.splitlines(True)
    for torn in (whole[:-1], whole[:-300], whole[:7], lines[0] + bytes(5000), lines[0] + bytes(99) + b"\n" + lines[1]):
        line.write("torn", torn)
        expect_call(line.batch("torn"), 0, "are torn, as by a kill")
        expect(line.read("torn") == whole, "other results after a torn end")
    damaged = lines[0] + b"x" + b"".join(lines[1:])
    line.write("torn", damaged)
    expect_call(line.batch("torn"), 3, "torn:2: is damaged, and more than 64 lines follow")
    expect(line.read("torn") == damaged, "a damaged file was changed")


def test_signals(line):
    """The first signal ends a batch after what runs."""
    running = line.popen("lot.csv", "-o", "ended", "--jobs", "1", preexec_fn=lambda: signal.signal(signal.SIGHUP, signal.SIG_IGN))
    while not (line.folder / "ended").exists() or not line.read("ended"):
        time.sleep(0.001)
    running.send_signal(signal.SIGHUP)  # under nohup, it is none
    time.sleep(0.05)
    expect(running.poll() in (None, 0), "ended by a signal that it was to ignore")
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
        running = line.popen("lot.csv", "-o", "killed", *outputs, stderr=subprocess.DEVNULL)
        time.sleep(chance.uniform(0, 2 * duration / kills))
        running.kill()
        killed += running.wait() == -signal.SIGKILL
        # No line without its files, at any time.
        written = line.read("killed").splitlines(True)[-50:] if (line.folder / "killed").exists() else []
        expect_files(line, [json.loads(text) for text in written if text.endswith(b"\n")], "kt", "ks")
    done = line.batch("killed", *outputs)
    expect(done.returncode == 0, done.stderr)
    expect(line.read("killed") == line.read("undisturbed"), "other results after kills")
    expect([r["serial"] for r in line.results("killed")] == line.modules, "a module is missing, or there twice")
    for ours, theirs in (("kt", "ut"), ("ks", "us")):
        names = sorted(os.listdir(line.folder / theirs))
        expect(sorted(n for n in os.listdir(line.folder / ours) if not n.startswith(".")) == names, "other files")
        expect(all(line.read(f"{ours}/{n}") == line.read(f"{theirs}/{n}") for n in names), "other bytes in", ours)
    print(f"{killed} of {kills} runs killed over {len(line.modules)} modules ({duration:.1f} s undisturbed)")


def main():
    parser = options_with_tool(__doc__)
    parser.add_argument("--modules", type=int)
    parser.add_argument("--full-disk", action="store_true")
    parser.add_argument("--kills", type=int, default=10)
    options = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        line = Line(options.tool, folder, options.modules or 80)
        if options.full_disk:
            return test_full_disk(line)
        if options.modules is None:
            for test in (test_workers_and_shards, test_faults, test_presets, test_numbers, test_capture_that_vanishes, test_what_stops_a_batch,
                         test_torn_ends, test_signals):
                test(line)
            line = Line(options.tool, folder, 200)
            test_progress(line)
            test_estimate(line)
        test_kills(line, options.kills)


if __name__ == "__main__":
    main()
