#!/usr/bin/env python3
"""Holds what `zerklsc convert` makes of real tuning files against what the files say at some places.

  tuning_files.py --tool build/release/tool/zerklsc FOLDER      exits with 77 where the folder lacks the files
"""
import json
import pathlib
import re
import sys

from tool import SKIPPED, in_a_folder, options_with_tool

RKISP1, ALSC = "libcamera_rkisp1_imx258.yaml", "libcamera_rpi_pisp_imx219.json"


def convert(tool, source, *options):
    tool.run("convert", source, "--pattern", "GBRG", "--step", "32", "-o", "tables.json", *options)
    return json.loads(tool.read("tables.json"))


def gain_at(tables, colour, u, v):
    """Linear between the nodes, which are close enough for that."""
    entry = next(t for t in tables["tables"] if t["colour"] == colour)
    plane, step, (width, height) = entry["plane"], tables["step"], tables["raw_size"]
    x, y = (u * width - 0.5 - plane % 2) / 2 / step + 1, (v * height - 0.5 - plane // 2) / 2 / step + 1
    i, j = int(x), int(y)
    rows = [entry["gains"][j + k][i] * (i + 1 - x) + entry["gains"][j + k][i + 1] * (x - i) for k in (0, 1)]
    return (rows[0] * (j + 1 - y) + rows[1] * (y - j)) / 1024


def expect(what, tables, values, columns, rows, first, spacing):
    """At every point of the file's grid of which all neighbours are in the tables; `values` by colour."""
    worst = 0
    for colour, gains in values.items():
        for j in range(rows):
            for i in range(columns):
                u, v = first[0] + i * spacing[0], first[1] + j * spacing[1]
                if 0.01 < u < 0.99 and 0.01 < v < 0.99:
                    worst = max(worst, abs(gain_at(tables, colour, u, v) / gains[j * columns + i] - 1))
    print(f"{what}: off by {100 * worst:.2f} %")
    assert worst < 0.01, worst


def check_rkisp1(tool, source):
    sets = re.split(r"- ct: ", source.read_text())[1:]
    assert len(sets) > 1
    for text in sets:
        kelvin = text.split()[0]
        values = {name: [int(g) / 1024 for g in re.search(rf"\b{name.lower()}: \[([^\]]*?),? *\]", text)[1].split(",")]
                  for name in ("R", "Gr", "Gb", "B")}
        expect(f"rkisp1, {kelvin} K", convert(tool, source, "--ct", kelvin), values, 17, 17, (0, 0), (1 / 16, 1 / 16))


def check_alsc(tool, source):
    alsc = next(a["rpi.alsc"] for a in json.loads(source.read_text())["algorithms"] if "rpi.alsc" in a)
    for red, blue in zip(alsc["calibrations_Cr"], alsc["calibrations_Cb"]):
        green = alsc["luminance_lut"]
        values = {"Gr": green, "Gb": green, "R": [a * b for a, b in zip(green, red["table"])],
                  "B": [a * b for a, b in zip(green, blue["table"])]}
        tables = convert(tool, source, "--ct", str(red["ct"]), "--size", "3280,2464")
        expect(f"alsc, {red['ct']} K", tables, values, 32, 32, (1 / 64, 1 / 64), (1 / 32, 1 / 32))


def main():
    parser = options_with_tool(__doc__)
    parser.add_argument("folder", type=lambda path: pathlib.Path(path).resolve())
    options = parser.parse_args()
    sources = [options.folder / RKISP1, options.folder / ALSC]
    if not all(source.exists() for source in sources):
        print(f"{options.folder} does not hold {RKISP1} and {ALSC}")
        sys.exit(SKIPPED)
    with in_a_folder(options.tool) as tool:
        check_rkisp1(tool, sources[0])
        check_alsc(tool, sources[1])


if __name__ == "__main__":
    main()
