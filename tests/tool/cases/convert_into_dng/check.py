"""Puts gain maps into DNGs of several kinds and holds the copies against the originals, byte by byte and tag by tag."""
import pathlib
import sys

from dng import gain_map, make_dng, opcode_list, read_directories, read_gain_maps
from frames import read_tables, write_tables

WIDTH, HEIGHT, STEP = 72, 52, 8
COLUMNS, ROWS = 8, 7
MAIN = {"strip": ("<", False), "below": (">", True), "packed": (">", True), "mapped": ("<", False)}


def gain(plane, i, j):
    return 1100 + 40 * plane + (3 + plane) * i * i + 5 * j


def make():
    write_tables("tables.json", (WIDTH, HEIGHT), STEP, "GRBG", lambda p, i, j: gain(p, i + 1, j + 1))
    sample = lambda x, y: 100 + (7 * x + 13 * y) % 800
    old = opcode_list([gain_map(0, WIDTH, HEIGHT, 1, 1, [1.5], pitch=1)])
    # A tag behind the one that is added, an area within a larger frame, and what looks like another compression.
    kinds = {"strip": {}, "below": {"extra": {51022: (7, b"behind"), 51041: (7, b"farther"), 50780: (5, [(1, 1)])}, "active": (4, 6, 4 + HEIGHT, 6 + WIDTH)},
             "packed": {"extra": {259: (3, [7])}}, "mapped": {"opcodes": old, "extra": {51022: (7, b"behind")}}}
    for name, about in kinds.items():
        order, below = MAIN[name]
        size = (80, 61) if "active" in about else (WIDTH, HEIGHT)
        data = make_dng(*size, "GRBG", sample, order=order, below=below, **about)
        # An odd length: what comes behind begins at an even place.
        pathlib.Path(name + ".dng").write_bytes(data + b"\0" * (name == "packed"))
    pathlib.Path("small.dng").write_bytes(make_dng(WIDTH, HEIGHT - 2, "GRBG", sample))
    pathlib.Path("narrow.dng").write_bytes(make_dng(WIDTH - 2, HEIGHT, "GRBG", sample))
    pathlib.Path("pattern.dng").write_bytes(make_dng(WIDTH, HEIGHT, "RGGB", sample))


def check():
    for name, (_, below) in MAIN.items():
        before, after = (pathlib.Path(name + end).read_bytes() for end in (".dng", "_with.dng"))
        changed = [k for k in range(len(before)) if before[k] != after[k]]
        tags_before, tags_after = read_directories(before), read_directories(after)
        assert len(read_gain_maps(after)) == 4
        del tags_after[-1][51009]
        tags_before[-1].pop(51009, None)
        if below:
            assert tags_before[0].pop(330) != tags_after[0].pop(330)
        print(name, "the same tags" if tags_before == tags_after else "other tags",
              "in place" if len(changed) <= (10 if name == "mapped" else 4) and max(changed) - min(changed) < 12 else changed)
    for p, entry in enumerate(read_tables("back.json")["tables"]):
        # Rounding, which interpolation there and back makes larger, in the frame.
        off = max(abs(entry["gains"][j][i] - gain(p, i, j)) for j in range(1, ROWS - 2) for i in range(1, COLUMNS - 2))
        print(entry["colour"], "as expected" if off <= 2 else f"off by {off}")


if sys.argv[1] == "make":
    make()
else:
    check()
