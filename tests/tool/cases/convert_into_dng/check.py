"""Puts gain maps into DNGs of several kinds and holds the copies against the originals, byte by byte and tag by tag."""
import json
import pathlib
import struct
import sys

from dng import gain_map, make_dng, opcode_list
from frames import write_tables

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
    kinds = {"strip": {}, "below": {"extra": {51022: (7, b"behind"), 50780: (5, [(1, 1)])}, "active": (4, 6, 4 + HEIGHT, 6 + WIDTH)},
             "packed": {"extra": {259: (3, [7])}}, "mapped": {"opcodes": old, "extra": {51022: (7, b"behind")}}}
    for name, about in kinds.items():
        order, below = MAIN[name]
        size = (80, 61) if "active" in about else (WIDTH, HEIGHT)
        data = make_dng(*size, "GRBG", sample, order=order, below=below, **about)
        # An odd length: what comes behind begins at an even place.
        pathlib.Path(name + ".dng").write_bytes(data + b"\0" * (name == "packed"))
    pathlib.Path("small.dng").write_bytes(make_dng(WIDTH, HEIGHT - 2, "GRBG", sample))
    pathlib.Path("pattern.dng").write_bytes(make_dng(WIDTH, HEIGHT, "RGGB", sample))


def directories(data, order):
    """Tags of the first directory, and of that below it where there is one."""
    found, pointer = [], struct.unpack_from(order + "I", data, 4)[0]
    while pointer:
        assert pointer % 2 == 0
        count = struct.unpack_from(order + "H", data, pointer)[0]
        entries = [struct.unpack_from(order + "HHI", data, pointer + 2 + 12 * k) + (pointer + 10 + 12 * k,) for k in range(count)]
        tags = [entry[0] for entry in entries]
        assert tags == sorted(set(tags)), tags
        assert struct.unpack_from(order + "I", data, pointer + 2 + 12 * count) == (0,)
        values = {}
        for tag, kind, number, at in entries:
            size = number * {1: 1, 2: 1, 3: 2, 4: 4, 5: 8, 7: 1, 10: 8}[kind]
            where = at if size <= 4 else struct.unpack_from(order + "I", data, at)[0]
            values[tag] = (kind, data[where:where + size])
            assert len(values[tag][1]) == size
        found.append(values)
        pointer = struct.unpack(order + "I", values[330][1])[0] if 330 in values else 0
    return found


def check():
    for name, (order, below) in MAIN.items():
        before, after = (pathlib.Path(name + end).read_bytes() for end in (".dng", "_with.dng"))
        changed = [k for k in range(len(before)) if before[k] != after[k]]
        tags_before, tags_after = directories(before, order), directories(after, order)
        maps = tags_after[-1].pop(51009)
        tags_before[-1].pop(51009, None)
        if below:
            assert tags_before[0].pop(330) != tags_after[0].pop(330)
        assert maps[0] == 7 and struct.unpack_from(">4I", maps[1]) == (4, 9, 0x01030000, 1)
        print(name, "the same tags" if tags_before == tags_after else "other tags",
              "in place" if len(changed) <= (10 if name == "mapped" else 4) and max(changed) - min(changed) < 12 else changed)
    for p, entry in enumerate(json.loads(pathlib.Path("back.json").read_text())["tables"]):
        # Rounding, which interpolation there and back makes larger, in the frame.
        off = max(abs(entry["gains"][j][i] - gain(p, i, j)) for j in range(1, ROWS - 2) for i in range(1, COLUMNS - 2))
        print(entry["colour"], "as expected" if off <= 2 else f"off by {off}")


if sys.argv[1] == "make":
    make()
else:
    check()
