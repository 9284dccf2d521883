"""What the programs that measure the tool have in common: a command's cost, and Markdown."""
import contextlib
import os
import pathlib
import platform
import re
import resource
import subprocess
import sys
import textwrap
import time


class Run:
    """A command that has ended: its time, its processor time, the largest memory."""

    def __init__(self, *words, into=subprocess.DEVNULL):
        begun = time.monotonic()
        process = subprocess.Popen([str(word) for word in words], stdout=into)
        _, status, usage = os.wait4(process.pid, 0)
        if status != 0:
            sys.exit(f"failed: {' '.join(map(str, words))}")
        self.seconds = time.monotonic() - begun
        self.processor = usage.ru_utime + usage.ru_stime
        self.megabytes = usage.ru_maxrss / 1024
        # Linux counts what a process was before it became the command: this program.
        own = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss / 1024
        self.peak = f"{self.megabytes:.0f}" if self.megabytes > own else f"≤ {self.megabytes:.0f}"


def table(heads, rows):
    lines = [heads, ["---"] * len(heads), *rows]
    return "".join(f"| {' | '.join(str(cell) for cell in line)} |\n" for line in lines) + "\n"


def paragraph(text):
    return textwrap.fill(text, 120, break_on_hyphens=False) + "\n\n"


def figures(value):
    """Three digits that count."""
    return f"{value:.0f}" if value >= 100 else f"{value:.3g}"


def machine():
    name = platform.processor() or platform.machine()
    with contextlib.suppress(OSError):
        name = re.search(r"model name\s*: (.*)", pathlib.Path("/proc/cpuinfo").read_text())[1]
    return f"{name}, {len(os.sched_getaffinity(0))} processors, Linux {platform.release().split('-')[0]}"


def renew(document, heading, text):
    """Writes a section in the place of the one with the same heading."""
    before, found, after = document.read_text().partition(heading + "\n")
    if not found:
        sys.exit(f"{document}: has no heading {heading!r}")
    document.write_text(before + text + after[after.index("\n## ") + 1:])
