#!/usr/bin/env python3
"""Simulates captures with and without faults, and holds the verdicts of `zerklsc check` against a table.

  verdicts.py --tool build/release/tool/zerklsc                                    every case, small frames
  verdicts.py --tool build/release/tool/zerklsc --width 4208 --height 3120         the same at 13 megapixels
  verdicts.py --tool build/release/tool/zerklsc --modules 200                      clean captures of many modules
  verdicts.py --tool build/release/tool/zerklsc --flat flat.pgm                    a capture that must pass; 77 where it is
                                                                                   missing
"""
import argparse
import json
import pathlib
import random
import subprocess
import sys
import tempfile


def faults(*names):
    return [word for name in names for word in ("--fault", name)]


# The check that must be among those that do not pass, or None where any will do.
CASES = [
    ("pass", None, []),
    ("pass", None, faults("rotated")),
    ("pass", None, faults("left-aligned")),
    ("pass", None, ["--colours", "30,100,100,25"]),
    ("pass", None, ["--level", "25"]),
    ("pass", None, ["--response", "1"]),
    ("warn", "dust", ["--dust", "40"]),
    ("warn", "defects", ["--defects", "{defects}"]),
    ("warn", "dead-lines", faults("dead-lines")),
    ("warn", "flicker", faults("flicker=5")),
    ("warn", "flare", faults("flare-spot=5")),
    ("warn", "flare", faults("flare-spot=15")),
    ("warn", "flare", faults("flare-ring=5")),
    ("warn", "flare", faults("flare-ring=15")),
    ("warn", "grain", faults("fine-texture=5")),
    ("warn", "uneven-light", faults("uneven=20")),
    ("warn", "uneven-light", faults("uneven-rows=20")),
    ("warn", "uneven-light", faults("uneven-diagonal=20")),
    ("warn", "exposure", ["--level", "5"]),
    ("warn", "black-level", faults("stated-black=160")),
    ("warn", "green-balance", faults("gr-gb=10")),
    ("warn", "fall-off", faults("constant")),
    ("warn", "fall-off", ["--corners", "130,125,125,120", "--level", "60"]),
    ("refuse", "uneven-light", faults("uneven=40")),
    ("refuse", "uneven-light", faults("uneven-rows=40")),
    ("refuse", "uneven-light", faults("uneven-diagonal=40")),
    ("refuse", "flicker", faults("flicker=20")),
    ("refuse", "texture", faults("coarse-texture=10")),
    ("refuse", "texture", faults("checkerboard=80")),
    ("refuse", "texture", ["--corners", "100,100,100,100"] + faults("checkerboard=90")),
    ("refuse", "shadow", faults("card-edge=40")),
    ("refuse", "shadow", faults("shadow-band=30")),
    ("refuse", "shadow", faults("hand=50")),
    ("refuse", "shadow", faults("blob=60")),
    ("refuse", "dead-area", faults("half-black")),
    ("refuse", "corner", faults("masked-corner=0.8")),
    ("refuse", "corner", faults("masked-corner=2")),
    ("refuse", "corner", faults("masked-corner=5")),
    ("refuse", "corner", faults("masked-corner=12")),
    ("refuse", "corner", faults("masked-corner=30")),
    ("refuse", "corner", faults("masked-corner=50")),
    ("refuse", "corner", faults("dark-corner=10")),
    ("refuse", "plane-level", faults("plane-level=2")),
    ("refuse", "clipping", ["--level", "115"]),
    ("refuse", "plateau", faults("saturation=70")),
    ("refuse", "plateau", faults("saturation=40")),
    ("refuse", "clipping", ["--level", "1000"]),
    ("refuse", "exposure", ["--level", "2"]),
    ("refuse", "exposure", ["--level", "0.5"]),
    ("refuse", None, faults("swapped-bytes")),
    ("refuse", None, faults("swapped-bytes=50")),
    ("refuse", None, faults("wrong-width=2")),
    ("refuse", None, faults("wrong-width=16")),
    ("refuse", None, faults("wrong-width=128")),
    ("refuse", "structure", faults("exchanged-sides")),
    ("refuse", "noise", faults("random")),
]


def run(tool, *words):
    return subprocess.run([tool, *map(str, words)], capture_output=True, text=True, check=False)


def judge(tool, frame, options):
    """The verdict on a simulated capture, and the checks that did not pass."""
    made = run(tool, "simulate", "-o", frame, *options)
    if made.returncode != 0:
        return f"not simulated: {made.stderr}", []
    came = run(tool, "check", frame, "--json")
    document = json.loads(came.stdout)
    if came.returncode != (3 if document["verdict"] == "refuse" else 0):
        return f"exit {came.returncode} with verdict {document['verdict']}", []
    return document["verdict"], [c["name"] for c in document["checks"] if c["verdict"] != "pass"]


def try_cases(options, frame):
    wrong = 0
    for expected, check, words in CASES:
        words = [word.format(defects=options.width * options.height // 500) for word in words]
        lens = [] if "--corners" in words else ["--corners", "40,41,42,44"]
        verdict, found = judge(options.tool, frame, ["--width", options.width, "--height", options.height,
                                                     "--seed", options.seed, *lens, *words])
        if verdict != expected or (check and check not in found):
            wrong += 1
            print(f"{' '.join(words)}: {verdict} for {', '.join(found)}; expected {expected} for {check}", flush=True)
    return wrong


def random_module(number):
    """Options of a clean capture of some module."""
    draw = random.Random(number)
    width, height = draw.choice([(192, 128), (256, 192), (640, 480), (1280, 720), (1600, 1200), (2104, 1560), (2592, 1944)])
    corner, spread = draw.uniform(20, 90), draw.uniform(0, 8)
    corners = ",".join(f"{min(99, max(15, corner + d * spread)):.1f}" for d in (-1, 0, 0.1, 0.8))
    bits = draw.choice([10, 10, 12, 14, 16])
    options = ["--width", width, "--height", height, "--corners", corners, "--bits", bits,
               "--black-level", draw.choice([0, 16, 64, 200]) << max(bits - 12, 0),
               "--full-well", f"{10 ** draw.uniform(3, 5):.0f}", "--read-noise", draw.choice([1, 3, 6]),
               "--centre", f"{draw.uniform(40, 60):.1f},{draw.uniform(40, 60):.1f}",
               "--wave", draw.choice([0, 0, 2, 5, 8]), "--response", draw.choice([0, 0.5, 1]),
               "--level", f"{draw.uniform(50, 85):.0f}", "--seed", number,
               "--colours", draw.choice(["62,100,100,70", "40,100,99,80", "90,100,100,50", "35,100,100,30"])]
    tilt = draw.choice([0, 0, 3, 6])
    return options + (faults(f"{draw.choice(['uneven', 'uneven-rows', 'uneven-diagonal'])}={tilt}") if tilt else [])


def try_modules(options, frame):
    refused = warned = 0
    for number in range(options.seed, options.seed + options.modules):
        module = random_module(number)
        verdict, found = judge(options.tool, frame, module)
        if verdict != "pass":
            print(f"{' '.join(map(str, module))}: {verdict} for {', '.join(found)}", flush=True)
        refused += verdict not in ("pass", "warn")
        warned += verdict == "warn"
    print(f"{options.modules} clean modules: {refused} refused, {warned} warned")
    return refused + max(0, warned - options.modules // 10)


def try_flat(tool, path):
    if not path.exists():
        print(f"{path} is missing: skipped")
        return 77
    came = run(tool, "check", path, "--pattern", "RGGB", "--black-level", "64", "--json")
    document = json.loads(came.stdout)
    print(document["verdict"], *(c["name"] for c in document["checks"] if c["verdict"] != "pass"))
    return 0 if came.returncode == 0 and document["verdict"] == "pass" else 1


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--tool", type=lambda p: pathlib.Path(p).resolve(), required=True)
    parser.add_argument("--width", type=int, default=1600)
    parser.add_argument("--height", type=int, default=1200)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--modules", type=int, default=0)
    parser.add_argument("--flat", type=pathlib.Path)
    options = parser.parse_args()
    if options.flat:
        return try_flat(options.tool, options.flat)
    with tempfile.TemporaryDirectory() as directory:
        frame = pathlib.Path(directory, "flat.pgm")
        wrong = try_modules(options, frame) if options.modules else try_cases(options, frame)
    if not options.modules:
        print(f"{len(CASES)} cases, {wrong} wrong")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
