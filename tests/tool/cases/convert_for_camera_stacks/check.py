"""Makes tables whose gains are a known polynomial, and compares what each format holds with that polynomial.

Bicubic interpolation repeats a polynomial of second degree exactly, so only the rounding of the tables remains.
"""
import json
import pathlib
import re
import struct
import subprocess
import sys

from dng import XYZ_TO_SRGB, read_directories, read_gain_maps
from frames import node_place, read_tables, write_pgm, write_tables

SIZE, STEP, LEVEL = (72, 52), 8, 263
COLOURS = ("B", "Gb", "Gr", "R")  # by plane
BENDS = {"warm": {"R": (0.9, 0.5, 0.3), "Gr": (0.7, 0.6, 0.1), "Gb": (0.72, 0.4, 0.2), "B": (0.4, 0.8, 0.05)},
         "dim": {"R": (0.9, 0.5, 0.3), "Gr": (0.7, 0.6, 0.1), "Gb": (0.72, 0.4, 0.2), "B": (0.4, 0.8, 0.05)},
         "cold": {"R": (0.2, 0.9, 0.4), "Gr": (0.5, 0.3, 0.2), "Gb": (0.6, 0.35, 0.1), "B": (4.1, 0.7, 0.2)}}
ROUNDING = 1.5 / 1024


def gain(light, colour, u, v):
    """At fractions of the raw frame from edge to edge."""
    a, b, c = BENDS[light][colour]
    return (0.85 if light == "dim" else 1.05) + a * (u - 0.3) ** 2 + b * (v - 0.6) ** 2 + c * u


def make():
    for light in BENDS:
        write_tables(light + ".json", SIZE, STEP, "BGGR",
                     lambda p, i, j: 1024 * gain(light, COLOURS[p], *node_place(p, i, j, STEP, SIZE)))
    for name, size in (("constant", SIZE), ("small", (4, 2))):
        write_pgm(name + ".pgm", *size, lambda x, y: LEVEL, "pattern=BGGR black=60,61,62,63 white=1000")


def expect(what, found, expected, tolerance=ROUNDING):
    assert len(found) == len(expected), f"{what}: {len(found)} values, not {len(expected)}"
    worst = max(abs(a - b) for a, b in zip(found, expected))
    print(f"{what}: {len(found)} values, {'as expected' if worst <= tolerance else f'off by {worst}'}")


def surface(light, colour, us, vs):
    return [gain(light, colour, u, v) for v in vs for u in us]


def over_minimum(values):
    return [value / min(values) for value in values]


def check_rkisp1():
    text = pathlib.Path("tuning.yaml").read_text()
    points = [i / 16 for i in range(17)]
    assert re.findall(r"ct: (\d+)", text) == ["5000", "2856"]
    assert [float(x) for x in re.search(r"x-size: \[(.*)\]", text)[1].split(",")] == [1 / 16] * 8
    for colour in ("R", "Gr", "Gb", "B"):
        tables = re.findall(rf"^ +{colour.lower()}: \[(.*)\]$", text, re.M)
        for light, table in zip(("warm", "cold"), tables):
            limited = [min(g, 4095 / 1024) for g in surface(light, colour, points, points)]
            expect(f"rkisp1 {light} {colour}", [int(w) / 1024 for w in table.split(",")], limited)


def check_alsc(name, lights, columns, rows):
    alsc = json.loads(pathlib.Path(name).read_text())["algorithms"][0]["rpi.alsc"]
    us, vs = [(i + 0.5) / columns for i in range(columns)], [(j + 0.5) / rows for j in range(rows)]
    green = {light: [(a + b) / 2 for a, b in zip(surface(light, "Gr", us, vs), surface(light, "Gb", us, vs))]
             for light in lights}
    for field, colour in (("calibrations_Cr", "R"), ("calibrations_Cb", "B")):
        print([entry["ct"] for entry in alsc[field]])
        for light, entry in zip(lights, alsc[field]):
            ratio = [a / g for a, g in zip(surface(light, colour, us, vs), green[light])]
            expect(f"{name} {field} {light}", entry["table"], over_minimum(ratio), 3 * ROUNDING)
    mean = [sum(each) / len(lights) for each in zip(*(over_minimum(green[light]) for light in lights))]
    expect(f"{name} luminance", alsc["luminance_lut"], over_minimum(mean), 2 * ROUNDING)


def check_android(name, light):
    shading = json.loads(pathlib.Path(name).read_text())
    us, vs = [i / 4 for i in range(5)], [j / 3 for j in range(4)]
    # Row 0 of BGGR is B Gb: its green is that of the even rows.
    expected = [g for point in zip(*(surface(light, colour, us, vs) for colour in ("R", "Gb", "Gr", "B"))) for g in point]
    gains = sum(shading["gains"], [])
    expect(f"android {light}, {sum(g < 1 for g in expected)} below 1", gains, [max(g, 1) for g in expected])
    assert min(gains) >= 1


def check_plain():
    nodes = [gain for entry in read_tables("warm.json")["tables"] for row in entry["gains"] for gain in row]
    c = pathlib.Path("warm.h").read_text()
    subprocess.run(["c++", "-x", "c++", "-std=c++20", "-fsyntax-only", "warm.h"], check=True)
    expect("c", [int(n) for n in re.findall(r"\d+", c[c.index("= {"):])], nodes, 0)
    lines = pathlib.Path("warm.csv").read_text().splitlines()
    print(lines[0], lines[10])
    expect("csv", [int(line.split(",")[4]) for line in lines[1:]], nodes, 0)
    npy = pathlib.Path("warm.npy").read_bytes()
    size = struct.unpack("<H", npy[8:10])[0]
    print(npy[:8], npy[10:10 + size].decode().split("}")[0], (10 + size) % 64)
    expect("npy", struct.unpack(f"<{len(nodes)}H", npy[10 + size:]), nodes, 0)
    expect("text", [int(n) for n in pathlib.Path("warm.txt").read_text().split()], nodes, 0)


def check_dng():
    data = pathlib.Path("constant.dng").read_bytes()
    tags = read_directories(data)[0]
    short, long = (lambda *values: (3, struct.pack(f"<{len(values)}H", *values))), (lambda *values: (4, struct.pack(f"<{len(values)}I", *values)))
    matrix = [part for number in XYZ_TO_SRGB for part in number]
    assert {**tags, 273: None, 51009: None} == {
        254: long(0), 256: long(SIZE[0]), 257: long(SIZE[1]), 258: short(16), 259: short(1), 262: short(32803), 271: (2, b"Unknown\0"),
        272: (2, b"Bayer sensor\0"), 273: None, 274: short(1), 277: short(1), 278: long(SIZE[1]), 279: long(2 * SIZE[0] * SIZE[1]),
        284: short(1), 33421: short(2, 2), 33422: (1, bytes([2, 1, 1, 0])), 50706: (1, bytes([1, 4, 0, 0])), 50707: (1, bytes([1, 3, 0, 0])),
        50708: (2, b"Unknown Bayer sensor\0"), 50713: short(2, 2), 50714: short(60, 61, 62, 63), 50717: long(1000),
        50721: (10, struct.pack("<18i", *matrix)), 50728: (5, struct.pack("<6I", *[10000] * 6)), 50778: short(21),
        50829: long(0, 0, SIZE[1], SIZE[0]), 51009: None}, tags
    at = struct.unpack("<I", tags[273][1])[0]
    print("last tag", max(tags), "samples", data[at:] == struct.pack("<H", LEVEL) * (SIZE[0] * SIZE[1]))
    for plane, (colour, (head, values)) in enumerate(zip(COLOURS, read_gain_maps(data), strict=True)):
        rows, columns = head[12:14]
        assert head[4:12] == (plane // 2, plane % 2, SIZE[1], SIZE[0], 0, 1, 2, 2), head
        assert head[14:] == (1 / (rows - 1), 1 / (columns - 1), 0, 0, 1), head
        us, vs = [i / (columns - 1) for i in range(columns)], [j / (rows - 1) for j in range(rows)]
        expect(f"dng {colour}, {columns} x {rows} points", values, surface("warm", colour, us, vs))


if sys.argv[1] == "make":
    make()
else:
    check_rkisp1()
    check_alsc("pisp.json", ("cold", "warm"), 32, 32)
    check_alsc("vc4.json", ("warm",), 16, 12)
    check_android("map.json", "warm")
    check_android("dim_map.json", "dim")
    check_plain()
    check_dng()
