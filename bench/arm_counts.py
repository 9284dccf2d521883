#!/usr/bin/env python3
"""Counts what the corrections execute on ARM, for want of a board to time them on: instructions per pixel under
user-mode emulation, and what models of processors (llvm-mca) make of the kernel's inner loop.

  arm_counts.py --arm build/arm --aarch64 build/aarch64 [--renew docs/performance.md]

--renew writes the section in the place of the one with the same heading. Takes about two minutes.
"""
import argparse
import os
import pathlib
import re
import subprocess
import sys

from measured import paragraph, renew, table

HEADING = "## On 32-bit ARM"
WIDTH = 4000  # of the frame in correct_once.cpp
LINE = 32  # pixels that the inner loop corrects
STEPS = (64, 32, 16)
ISPS = ("tvessa2", "vessaL2")

FORMS = [  # name, form, bits of the samples, processor
    ("NEON", "kernel", 10, "cortex-a15"),
    ("NEON, samples of 14 bits", "kernel", 14, "cortex-a15"),
    ("`base`, without NEON", "kernel", 10, "cortex-a15,neon=off"),
    ("plain", "plain", 10, "cortex-a15"),
]

# Cross compiler, instruction set of the kernel, and how llvm-mca names the processor family.
TARGETS = {"arm": ("arm-linux-gnueabihf", "neon", ["-mtriple=thumbv7-linux-gnueabihf", "-mattr=+neon"]),
           "aarch64": ("aarch64-linux-gnu", "base", ["-mtriple=aarch64-linux-gnu"])}
MODELS = [("arm", "cortex-a72"), ("aarch64", "cortex-a53"), ("aarch64", "cortex-a55"), ("aarch64", "cortex-a72"),
          ("aarch64", "cortex-a76")]


def executed(build, processor, *arguments):
    """Instructions of one run: the emulator logs a line for each."""
    emulator = ["qemu-arm", "-L", "/usr/arm-linux-gnueabihf", "-singlestep", "-d", "nochain,exec", "-D", "/dev/stdout"]
    run = subprocess.Popen([*emulator, build / "bench/zerklsc_correct_once", *map(str, arguments)],
                           stdout=subprocess.PIPE, env={**os.environ, "QEMU_CPU": processor})
    lines = subprocess.run(["grep", "-c", "^Trace"], stdin=run.stdout, capture_output=True, text=True).stdout
    if run.wait() != 0:
        sys.exit("arm_counts.py: the emulated correction failed")
    return int(lines)


def per_pixel(build, processor, *arguments):
    """From two rows more: what is done once cancels."""
    few, more = (executed(build, processor, *arguments, rows) for rows in (2, 4))
    return (more - few) / (2 * WIDTH)


def inner_loop(build, triplet, instruction_set):
    """The smallest loop that prefetches, in the function that corrects whole cells."""
    kernel, = build.glob(f"src/**/zerklsc_correction_kernel_{instruction_set}.dir/*.o")
    listing = subprocess.run([f"{triplet}-objdump", "-d", "--no-show-raw-insn", kernel], capture_output=True, text=True,
                             check=True).stdout
    cells = listing[listing.index("correct_equal_cells"):]
    code = [(int(address, 16), text) for address, text in re.findall(r"^ +([0-9a-f]+):\t(.*)$", cells, re.M)]
    fetch = next(i for i, (_, text) in enumerate(code) if re.match("pld|prfm", text))
    for address, text in code[fetch:]:
        jump = re.match(r"(b\S*)\s+([0-9a-f]+) <", text)
        if jump and int(jump[2], 16) <= code[fetch][0]:
            return [text for at, text in code if int(jump[2], 16) <= at < address] + [f"{jump[1]} again"]
    sys.exit(f"arm_counts.py: {kernel} has no loop that prefetches")


def modelled(loop, model, options, times=100):
    """Cycles of the loop, its busiest unit and the cycles of that."""
    report = subprocess.run(["llvm-mca", *options, f"-mcpu={model}", f"-iterations={times}"],
                            input="\n".join(["again:", *loop, ""]), capture_output=True, text=True, check=True).stdout
    cycles = int(re.search(r"Total Cycles: +(\d+)", report)[1]) / times
    units = re.findall(r"^\[[\d.]+\] +- (\w+)$", report, re.M)
    pressure = re.search(r"Resource pressure per iteration:\n.*\n(.*)\n", report)[1].split()
    return cycles, *max((0.0 if p == "-" else float(p), unit) for p, unit in zip(pressure, units))


def section(builds):
    counts = [[name] + [f"{per_pixel(builds['arm'], processor, isp, form, bits, step):.2f}"
                        for isp in ISPS for step in STEPS]
              for name, form, bits, processor in FORMS]
    loops = []
    for target, model in MODELS:
        triplet, instruction_set, options = TARGETS[target]
        loop = inner_loop(builds[target], triplet, instruction_set)
        cycles, busy, unit = modelled(loop, model, options)
        loops.append([target, model, len(loop), f"{cycles:.1f}", f"{cycles / LINE:.2f}", f"`{unit}`", f"{busy:.1f}"])
    return f"{HEADING}\n\n" + paragraph(
        "Nobody here has a board, so `make bench-arm RENEW=1` counts and writes it here: instructions per pixel that "
        f"`qemu-arm` executes between two rows and four of a frame {WIDTH} pixels wide, everything but the set-up of a call "
        "included. Samples have 10 bits where nothing else is said; NEON's product needs no case of its own for them.") + table(
            ["instructions per pixel", *(f"{isp}, step {step}" for isp in ISPS for step in STEPS)], counts) + paragraph(
        "Without NEON the kernel goes word by word, and ARM's `smlad` multiplies two words at once.") + paragraph(
        f"What `llvm-mca` of LLVM 14 makes of NEON's inner loop, {LINE} pixels of a cell in the first cache. For 32-bit code it "
        "has no model of Cortex-A53, A55 and A76, so these are of the loop for 64-bit ARM, which is the same source; A72 "
        "and A76 have the model of A57. There the unit that multiplies and shifts vectors (`A57UnitW`) is the bound. A53 and "
        "A55 execute in order, and their models take 6 and 4 cycles from one multiplication to the next that adds to it: the "
        "loop waits for results, for three times as long as its busiest unit works.") + table(
            ["build", "processor", "instructions", "cycles", "per pixel", "busiest unit", "its cycles"], loops)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--arm", required=True, type=pathlib.Path)
    parser.add_argument("--aarch64", required=True, type=pathlib.Path)
    parser.add_argument("--renew", type=pathlib.Path, metavar="DOCUMENT")
    options = parser.parse_args()
    text = section({"arm": options.arm, "aarch64": options.aarch64})
    print(text, end="")
    if options.renew:
        renew(options.renew, HEADING, text)


if __name__ == "__main__":
    main()
