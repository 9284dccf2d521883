#!/usr/bin/env python3
"""Holds the DNGs of `zerklsc convert` against readers that nobody here wrote: exiftool and darktable.

  dng_readers.py --tool build/release/tool/zerklsc      exits with 77 where a reader is not installed
"""
import array
import shutil
import subprocess
import sys

from dng import make_dng, read_gain_maps
from frames import node_place, write_pgm, write_tables
from tool import SKIPPED, in_a_folder, options_with_tool

DARKTABLE = ["--apply-custom-presets", "false", "--icc-type", "LIN_REC709", "--core", "--library", ":memory:",
             "--conf", "plugins/darkroom/workflow=none", "--conf", "plugins/imageio/format/tiff/bpp=16",
             "--conf", "write_sidecar_files=never"]


def run(*command, cwd):
    done = subprocess.run([str(word) for word in command], cwd=cwd, capture_output=True, text=True, check=False)
    if done.returncode != 0:
        sys.exit(f"{command[0]}: exit {done.returncode}\n{done.stdout}{done.stderr}")
    return done.stdout


def render(folder, dng):
    """What darktable makes of a DNG: width, height and rows of linear R, G, B from the top."""
    output = folder / (dng + ".pfm")
    run("darktable-cli", dng, output.name, *DARKTABLE, "--configdir", folder / "config", cwd=folder)
    kind, size, scale, data = output.read_bytes().split(b"\n", 3)
    width, height = map(int, size.split())
    assert kind == b"PF" and float(scale) < 0, (kind, scale)
    values = array.array("f", data)
    return width, height, [values[3 * width * y:3 * width * (y + 1)] for y in reversed(range(height))]


def gain(colour, u, v):
    """Of bends that differ by colour and direction."""
    a, b = {"R": (0.6, 0.3), "Gr": (0.4, 0.5), "Gb": (0.45, 0.35), "B": (0.2, 0.7)}[colour]
    return 1.05 + a * (u - 0.4) ** 2 + b * (v - 0.55) ** 2


def check_constant(tool):
    """Of a constant mosaic, every native site holds the mosaic times its plane's map."""
    size, level, black = (320, 240), 16384, [0] * 4
    colours = ("R", "Gr", "Gb", "B")  # by plane
    write_tables(tool.folder / "constant.json", size, 8, "RGGB",
                 lambda p, i, j: 1024 * gain(colours[p], *node_place(p, i, j, 8, size)), black, 16)
    write_pgm(tool.folder / "constant.pgm", *size, lambda x, y: level, "pattern=RGGB black=0", 65535)
    tool.run("convert", "constant.json", "--raw", "constant.pgm", "-o", "constant.dng")
    tool.write("camera.dng", make_dng(*size, "RGGB", lambda x, y: level, order=">", below=True, black=black, white=65535,
                                      extra={50827: (2, b"kept.dng\0")}))
    tool.run("convert", "constant.json", "--into", "camera.dng", "-o", "inserted.dng")
    check_tags(tool.folder)
    maps = read_gain_maps(tool.read("constant.dng"))
    for name in ("constant.dng", "inserted.dng"):
        width, height, pixels = render(tool.folder, name)
        assert (width, height) == size
        for plane, (head, values) in enumerate(maps):
            map_rows, map_columns = head[12:14]
            channel = {"R": 0, "Gr": 1, "Gb": 1, "B": 2}[colours[plane]]
            worst = 0
            # The demosaicing of darktable changes the outermost pixels.
            for y in range(8 + plane // 2, height - 8, 2):
                for x in range(8 + plane % 2, width - 8, 2):
                    expected = level / 65535 * bilinear(values, map_columns, map_rows, x / width, y / height)
                    worst = max(worst, abs(pixels[y][3 * x + channel] / expected - 1))
            print(f"{name}, {colours[plane]}: off by {worst:.2e}")
            assert worst < 1e-4, worst


def check_tags(folder):
    """To exiftool, the copy has four gain maps more, and all else as it was."""
    before, after = ([line for line in run("exiftool", "-a", "-G1", "-s", name, cwd=folder).splitlines()
                      if not line.startswith(("[System]", "[ExifTool]"))] for name in ("camera.dng", "inserted.dng"))
    more = [line for line in after if line not in before]
    assert len(more) == 1 and more[0].count("GainMap") == 4, more
    assert [line for line in after if line != more[0]] == before


def bilinear(values, columns, rows, u, v):
    x, y = u * (columns - 1), v * (rows - 1)
    i, j = min(int(x), columns - 2), min(int(y), rows - 2)
    fx, fy = x - i, y - j
    top = values[j * columns + i] * (1 - fx) + values[j * columns + i + 1] * fx
    bottom = values[(j + 1) * columns + i] * (1 - fx) + values[(j + 1) * columns + i + 1] * fx
    return top * (1 - fy) + bottom * fy


def main():
    options = options_with_tool(__doc__).parse_args()
    for reader in ("exiftool", "darktable-cli"):
        if shutil.which(reader) is None:
            print(f"{reader} is not installed")
            sys.exit(SKIPPED)
    with in_a_folder(options.tool) as tool:
        check_constant(tool)


if __name__ == "__main__":
    main()
