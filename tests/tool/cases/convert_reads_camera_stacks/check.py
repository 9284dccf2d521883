"""Writes tuning files and DNGs whose gains are known polynomials of second degree, which bicubic interpolation and a
quadratic border repeat, and compares the tables that come of them. What remains is the rounding of each file.

Rounding by half a unit becomes more between nodes: the weights of the cubic add up to 1.25 at most, without their signs,
so to 1.25 ** 2 in two directions. Beyond the last node it becomes 3 * 1 + 3 * 1.25 + 1.25 = 8 times more in a direction.
"""
import json
import pathlib
import re
import sys

from dng import gain_map, make_dng, opcode_list
from frames import node_place, nodes_of, read_tables, write_pgm, write_tables

WIDTH, HEIGHT, STEP = 72, 52, 8
COLOURS = ("B", "Gb", "Gr", "R")  # by plane
BENDS = {2856: {"R": (0.9, 0.5, 0.3), "Gr": (0.7, 0.6, 0.1), "Gb": (0.72, 0.4, 0.2), "B": (0.4, 0.8, 0.05)},
         5000: {"R": (0.2, 0.9, 0.4), "Gr": (0.5, 0.3, 0.2), "Gb": (0.6, 0.35, 0.1), "B": (0.8, 0.7, 0.2)}}
NEAR, FAR = 1.25 ** 2, 8


def gain(light, colour, u, v):
    """At fractions of the raw frame from edge to edge."""
    a, b, c = BENDS[light][colour]
    return 1.15 + a * (u - 0.3) ** 2 + b * (v - 0.6) ** 2 + c * u * (1 - v)


def green(light, u, v):
    return (gain(light, "Gr", u, v) + gain(light, "Gb", u, v)) / 2


def grid(columns, rows, surface, first=(0, 0), spacing=None):
    spacing = spacing or (1 / (columns - 1), 1 / (rows - 1))
    return [surface(first[0] + i * spacing[0], first[1] + j * spacing[1]) for j in range(rows) for i in range(columns)]


def make_rkisp1():
    """In the styles of YAML that people use: flow with a comma at the end, lines, quotes, comments, an anchor."""
    lines = ["%YAML 1.1", "---", "version: 1", "algorithms:", "  - Agc:", "  - LensShadingCorrection:",
             "      x-size: &sectors [ 0.0625, 0.0625, 0.0625, 0.0625, 0.0625, 0.0625, 0.0625, 0.0625, ]",
             "      y-size: *sectors", "      sets:"]
    for light in (5000, 2856):
        lines += ["        # of a light box", f"        - ct: {light}", f'          resolution: "{WIDTH}x{HEIGHT}"']
        for colour in ("R", "Gr", "Gb", "B"):
            words = [round(1024 * g) for g in grid(17, 17, lambda u, v, c=colour: gain(light, c, u, v))]
            if colour == "Gb":
                lines += ["          gb:"] + [f"            - {word}" for word in words]
            else:
                lines.append(f"          {colour.lower()}: [{', '.join(map(str, words))}, ]")
    pathlib.Path("tuning.yaml").write_text("\n".join(lines) + "\n...\n")


def make_alsc(name, columns, rows):
    """Luminance that bends more than a single light's, and a list of each ratio in an order of its own."""
    def centres(surface):
        return grid(columns, rows, surface, (0.5 / columns, 0.5 / rows), (1 / columns, 1 / rows))
    ratios = {c: [{"ct": light, "table": centres(lambda u, v: gain(light, c, u, v) / green(5000, u, v))} for light in lights]
              for c, lights in (("R", (2856, 5000)), ("B", (5000, 2856)))}
    alsc = {"luminance_strength": 0.7, "calibrations_Cr": ratios["R"], "calibrations_Cb": ratios["B"],
            "luminance_lut": centres(lambda u, v: green(5000, u, v))}
    root = {"rpi.alsc": alsc} if columns == 32 else {"version": 2.0, "algorithms": [{"rpi.agc": {}}, {"rpi.alsc": alsc}]}
    pathlib.Path(name).write_text(json.dumps(root))


def make_dngs():
    maps = []
    for plane, colour in reversed(list(enumerate(COLOURS))):
        shape = (9 + plane, 8 - plane)
        first, spacing = (0.01 * plane, 0.02), ((1 - 0.02 * plane) / (shape[0] - 1), 0.96 / (shape[1] - 1))
        values = grid(*shape, lambda u, v, c=colour: gain(5000, c, u, v), first, spacing)
        maps.append(gain_map(plane, WIDTH, HEIGHT, *shape, values, spacing, first))
    other = b"\0\0\0\4\1\3\0\0\0\0\0\0\0\0\0\4\0\0\0\0"
    pathlib.Path("maps.dng").write_bytes(make_dng(80, 60, "BGGR", lambda x, y: 500, opcode_list([other] + maps), ">", True,
                                                  active=(4, 6, 4 + HEIGHT, 6 + WIDTH)))
    rows = [gain(2856, "R", 0, v) for v in (0, 0.5, 1)]
    one = gain_map(0, WIDTH, HEIGHT, 1, 3, rows, pitch=1)
    pathlib.Path("one_map.dng").write_bytes(make_dng(WIDTH, HEIGHT, "RGGB", lambda x, y: 500, opcode_list([one])))


def make_tables():
    write_tables("tables.json", (WIDTH, HEIGHT), STEP, "BGGR",
                 lambda p, i, j: 1024 * gain(5000, COLOURS[p], *node_place(p, i, j, STEP, (WIDTH, HEIGHT))))
    write_pgm("constant.pgm", WIDTH, HEIGHT, lambda x, y: 263, "pattern=BGGR black=60,61,62,63 white=1000")


def compare(name, surface, near, far):
    """Every node of the table file `name`, in units of 1/1024: within `near` in the frame, within `far` beyond it in one
    direction, and in both within what that is again. The border counts where all are alike."""
    tables = read_tables(name)
    worst = {"inside": 0, "beyond": 0, "corner": 0}
    for colour, u, v, value in nodes_of(tables, 0 if near == far else 1):
        where = ("inside", "beyond", "corner")[(u > 1) + (v > 1)]
        worst[where] = max(worst[where], abs(value - 1024 * surface(colour, u, v)))
    limits = {"inside": near, "beyond": far, "corner": far * FAR / NEAR ** 0.5}
    fits = all(worst[where] <= limits[where] for where in worst)
    about = {key: tables[key] for key in ("raw_size", "step", "table_size", "bayer_pattern", "black_level", "bit_depth")}
    print(name, "as expected" if fits else f"off by {worst}, not {limits}", *about.values())


def check_same():
    original = read_tables("tables.json")
    for name in ("back_text.json", "back_json.json"):
        back = read_tables(name)
        same = all(a["gains"] == b["gains"] for a, b in zip(original["tables"], back["tables"]))
        print(name, "the same" if same and all(original[k] == back[k] for k in ("raw_size", "step", "black_level", "bit_depth",
                                                                               "bayer_pattern")) else "another")


def check():
    compare("rkisp1.json", lambda colour, u, v: gain(2856, colour, u, v), 0.5 * NEAR + 0.5, 0.5 * FAR * 1.25 + 0.5)
    exact = 0.51
    for name in ("alsc_back.json", "large_back.json"):
        compare(name, lambda colour, u, v: green(5000, u, v) if colour[0] == "G" else gain(5000, colour, u, v), exact, exact)
    compare("dng.json", lambda colour, u, v: gain(5000, colour, u, v), exact, exact)
    compare("half.json", lambda colour, u, v: gain(2856, "R", 0, v), exact, exact)
    compare("own_step.json", lambda colour, u, v: gain(5000, colour, u, v), exact, exact)
    check_same()
    alsc = json.loads(pathlib.Path("other.json").read_text())["algorithms"][0]["rpi.alsc"]
    print([entry["ct"] for entry in alsc["calibrations_Cr"]], re.findall(r"ct: \d+", pathlib.Path("other.yaml").read_text()))


if sys.argv[1] == "make":
    make_rkisp1()
    make_alsc("alsc.json", 16, 12)
    make_alsc("large.json", 32, 32)
    make_dngs()
    make_tables()
else:
    check()
