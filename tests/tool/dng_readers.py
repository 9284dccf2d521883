#!/usr/bin/env python3
"""Holds the DNGs of `zerklsc convert` against readers that nobody here wrote: exiftool and darktable.

  dng_readers.py --tool build/release/tool/zerklsc      exits with 77 where a reader is not installed
"""
import argparse
import array
import json
import pathlib
import shutil
import struct
import subprocess
import sys
import tempfile

from dng import make_dng

SKIPPED = 77
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


def check_flat(tool, folder):
    """A simulated flat comes out flat.."""
    run(tool, "simulate", "--width", "640", "--height", "480", "--full-well", "0", "-o", "flat.pgm", cwd=folder)
    run(tool, "calibrate", "flat.pgm", "--step", "8", "--radius", "2", "-o", "tables.json", cwd=folder)
    run(tool, "convert", "tables.json", "--raw", "flat.pgm", "-o", "flat.dng", cwd=folder)
    listed = run("exiftool", "-s", "-OpcodeList2", "flat.dng", cwd=folder)
    assert listed.count("GainMap") == 4, listed
    width, height, rows = render(folder, "flat.dng")
    columns, lines = 8, 6
    for colour in range(3):
        blocks = []
        for j in range(lines):
            for i in range(columns):
                part = [v for y in range(height * j // lines, height * (j + 1) // lines)
                        for v in rows[y][3 * (width * i // columns) + colour:3 * (width * (i + 1) // columns):3]]
                blocks.append(sum(part) / len(part))
        mean = sum(blocks) / len(blocks)
        worst = max(abs(b / mean - 1) for b in blocks)
        print(f"flat, {'RGB'[colour]}: off by {100 * worst:.3f} %")
        assert worst < 0.005, worst


def gain(colour, u, v):
    """Of bends that differ by colour and direction."""
    a, b = {"R": (0.6, 0.3), "Gr": (0.4, 0.5), "Gb": (0.45, 0.35), "B": (0.2, 0.7)}[colour]
    return 1.05 + a * (u - 0.4) ** 2 + b * (v - 0.55) ** 2


def check_constant(tool, folder):
    """Of a constant mosaic, every native site holds the mosaic times its plane's map."""
    width, height, step, level = 320, 240, 8, 16384
    colours = ("R", "Gr", "Gb", "B")
    columns, rows = (width // 2 - 1) // step + 4, (height // 2 - 1) // step + 4
    planes = [{"plane": p, "gains": [[round(1024 * gain(colours[p], (2 * step * (i - 1) + p % 2 + 0.5) / width,
                                                        (2 * step * (j - 1) + p // 2 + 0.5) / height))
                                      for i in range(columns)] for j in range(rows)]} for p in range(4)]
    (folder / "constant.json").write_text(json.dumps(
        {"format": "zerklsc-tables", "version": 1, "raw_size": [width, height], "step": step,
         "table_size": [columns, rows], "algorithm": 2, "filter_radius": 2, "shading_percent": 100,
         "bayer_pattern": "RGGB", "black_level": [0, 0, 0, 0], "bit_depth": 16, "tables": planes}))
    (folder / "constant.pgm").write_bytes(b"P5\n# zerklsc pattern=RGGB black=0\n%d %d\n65535\n" % (width, height)
                                          + level.to_bytes(2, "big") * (width * height))
    run(tool, "convert", "constant.json", "--raw", "constant.pgm", "-o", "constant.dng", cwd=folder)
    camera = make_dng(width, height, "RGGB", lambda x, y: level, order=">", below=True, black=(0, 0, 0, 0), white=65535,
                      extra={50827: (2, b"kept.dng\0")})
    (folder / "camera.dng").write_bytes(camera)
    run(tool, "convert", "constant.json", "--into", "camera.dng", "-o", "inserted.dng", cwd=folder)
    check_tags(folder)
    maps = read_maps((folder / "constant.dng").read_bytes())
    for name in ("constant.dng", "inserted.dng"):
        width_read, height_read, pixels = render(folder, name)
        assert (width_read, height_read) == (width, height)
        for plane, (map_rows, map_columns, values) in enumerate(maps):
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


def read_maps(data):
    count = struct.unpack_from("<H", data, 8)[0]
    at = next(value for tag, _, _, value in (struct.unpack_from("<HHII", data, 10 + 12 * k) for k in range(count))
              if tag == 51009) + 4
    maps = []
    for _ in range(4):
        size, = struct.unpack_from(">I", data, at + 12)
        rows, columns = struct.unpack_from(">2I", data, at + 16 + 32)
        maps.append((rows, columns, struct.unpack_from(f">{rows * columns}f", data, at + 16 + 76)))
        at += 16 + size
    return maps


def bilinear(values, columns, rows, u, v):
    x, y = u * (columns - 1), v * (rows - 1)
    i, j = min(int(x), columns - 2), min(int(y), rows - 2)
    fx, fy = x - i, y - j
    top = values[j * columns + i] * (1 - fx) + values[j * columns + i + 1] * fx
    bottom = values[(j + 1) * columns + i] * (1 - fx) + values[(j + 1) * columns + i + 1] * fx
    return top * (1 - fy) + bottom * fy


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--tool", type=lambda p: pathlib.Path(p).resolve(), required=True)
    tool = parser.parse_args().tool
    for reader in ("exiftool", "darktable-cli"):
        if shutil.which(reader) is None:
            print(f"{reader} is not installed")
            return SKIPPED
    with tempfile.TemporaryDirectory() as folder:
        check_flat(tool, pathlib.Path(folder))
        check_constant(tool, pathlib.Path(folder))
    return 0


if __name__ == "__main__":
    sys.exit(main())
