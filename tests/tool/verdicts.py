#!/usr/bin/env python3
"""Simulates captures with and without faults, and holds the verdicts of `zerklsc check` against a table.

  verdicts.py --tool build/release/tool/zerklsc                                    every case, small frames
  verdicts.py --tool build/release/tool/zerklsc --width 4208 --height 3120         the same at 13 megapixels
  verdicts.py --tool build/release/tool/zerklsc --modules 200                      clean captures of many modules
  verdicts.py --tool build/release/tool/zerklsc --flat flat.pgm                    a capture that must pass; 77 where it is
                                                                                   missing
"""
import json
import pathlib
import random
import sys

from tool import SKIPPED, in_a_folder, options_with_tool

# The captures that get each verdict, and the check that must be among those that do not pass, or None where any will do.
# What is no option is a fault. A number is what was put in, of which a tenth may be lost in windows, noise and fall-off;
# a text is a part of the advice.
CASES = {
    ("pass", None): {"--response 1": ""},
    ("pass", "exposure"): {"": 80, "--level 25": 25},
    ("pass", "noise"): {"--colours 30,100,100,25": 100 / (0.25 * 0.75 * 6000) ** 0.5},
    ("pass", "optical-centre"): {"left-aligned": 2.12, "rotated": 2.12},
    ("warn", "dust"): {"--dust 40": ""},
    ("warn", "defects"): {"--defects {defects}": 0.2},
    ("warn", "dead-lines"): {"dead-lines": 12},
    ("warn", "flicker"): {"flicker=5": 5},
    ("warn", "flare"): {"flare-spot=5": "", "flare-spot=15": "", "flare-ring=5": "", "flare-ring=15": ""},
    ("warn", "grain"): {"fine-texture=5": ""},
    ("warn", "uneven-light"): {"uneven=20": 20, "uneven-rows=20": 20, "uneven-diagonal=20": 20},
    ("warn", "exposure"): {"--level 5": 5},
    ("warn", "black-level"): {"stated-black=160": 100 * (160 - 64) / (1023 - 160)},
    ("warn", "green-balance"): {"gr-gb=10": 10},
    ("warn", "fall-off"): {"constant": 100, "--corners 130,125,125,120 --level 60": 125},
    ("refuse", "uneven-light"): {"uneven=40": "brighter at the left", "uneven-rows=40": "brighter at the top", "uneven-diagonal=40": 40},
    ("refuse", "flicker"): {"flicker=20": 20},
    ("refuse", "texture"): {"coarse-texture=10": "", "checkerboard=80": "", "--corners 100,100,100,100 --fault checkerboard=90": ""},
    ("refuse", "shadow"): {"card-edge=40": "", "shadow-band=30": 30, "hand=50": 50, "blob=60": ""},
    ("refuse", "dead-area"): {"half-black": ""},
    ("refuse", "corner"): {"masked-corner=0.8": "", "masked-corner=2": "", "masked-corner=5": "", "masked-corner=12": "",
                           "masked-corner=30": "", "masked-corner=50": "", "dark-corner=10": "top left"},
    ("refuse", "plane-level"): {"plane-level=2": 0.02 * 70},
    ("refuse", "clipping"): {"--level 115": "samples of Gr, Gb are", "--level 1000": 100},
    ("refuse", "plateau"): {"saturation=70": "saturates at 716", "saturation=40": "saturates at 409"},
    ("refuse", "exposure"): {"--level 2": 2, "--level 0.5": 0.5},
    ("refuse", None): {"swapped-bytes": "", "swapped-bytes=50": "", "wrong-width=2": "", "wrong-width=16": "", "wrong-width=128": ""},
    ("refuse", "structure"): {"exchanged-sides": ""},
    ("refuse", "noise"): {"random": ""},
}


def checked(tool, frame, *options):
    """The verdict, and the checks by name."""
    came = tool.call("check", frame, "--json", *options)
    document = json.loads(came.stdout)
    if came.returncode != (3 if document["verdict"] == "refuse" else 0):
        return f"exit {came.returncode} with verdict {document['verdict']}", {}
    return document["verdict"], {check["name"]: check for check in document["checks"]}


def failed(checks):
    return [name for name, check in checks.items() if check["verdict"] != "pass"]


def says(check, expected):
    return expected in check["advice"] if isinstance(expected, str) else abs(check["value"] - expected) <= 0.1 * expected


def judge(tool, options):
    """The same, of a simulated capture."""
    made = tool.call("simulate", "-o", "flat.pgm", *options)
    return checked(tool, "flat.pgm") if made.returncode == 0 else (f"not simulated: {made.stderr}", {})


def try_cases(options, tool):
    wrong = tried = 0
    for (expected, check), captures in CASES.items():
        for capture, said in captures.items():
            fault = capture and not capture.startswith("--")
            words = (f"--fault {capture}" if fault else capture.format(defects=options.width * options.height // 500)).split()
            lens = [] if "--corners" in words else ["--corners", "40,41,42,44"]
            verdict, checks = judge(tool, ["--width", options.width, "--height", options.height, "--seed", options.seed, *lens, *words])
            tried += 1
            found = failed(checks)
            if verdict != expected or (check and ((check in found) == (expected == "pass") or not says(checks[check], said))):
                wrong += 1
                print(f"{capture}: {verdict} for {', '.join(found)}; expected {expected} for {check}, {said}; {checks.get(check)}",
                      flush=True)
    print(f"{tried} cases, {wrong} wrong")
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
    return options + (["--fault", f"{draw.choice(['uneven', 'uneven-rows', 'uneven-diagonal'])}={tilt}"] if tilt else [])


def try_modules(options, tool):
    refused = warned = 0
    for number in range(options.seed, options.seed + options.modules):
        module = random_module(number)
        verdict, checks = judge(tool, module)
        if verdict != "pass":
            print(f"{' '.join(map(str, module))}: {verdict} for {', '.join(failed(checks))}", flush=True)
        refused += verdict not in ("pass", "warn")
        warned += verdict == "warn"
    print(f"{options.modules} clean modules: {refused} refused, {warned} warned")
    return refused + max(0, warned - options.modules // 10)


def try_flat(options, tool):
    if not options.flat.exists():
        sys.exit(SKIPPED)
    verdict, checks = checked(tool, options.flat.resolve(), "--pattern", "RGGB", "--black-level", "64")
    print(verdict, *failed(checks))
    return verdict != "pass"


def main():
    parser = options_with_tool(__doc__)
    parser.add_argument("--width", type=int, default=1600)
    parser.add_argument("--height", type=int, default=1200)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--modules", type=int, default=0)
    parser.add_argument("--flat", type=pathlib.Path)
    options = parser.parse_args()
    with in_a_folder(options.tool) as tool:
        return 1 if (try_flat if options.flat else try_modules if options.modules else try_cases)(options, tool) else 0


if __name__ == "__main__":
    sys.exit(main())
