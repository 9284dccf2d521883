"""Writes the samples of flat.pgm as PNG, TIFF and DNG, with the parts of the formats that matter for a mosaic."""
import pathlib
import struct
import zlib

from dng import Tiff, make_dng
from frames import read_pgm

WIDTH, HEIGHT = 124, 96
BLACK = (60, 64, 62, 66)
flat = read_pgm("flat.pgm")
rows = [flat.samples[y * WIDTH:(y + 1) * WIDTH] for y in range(HEIGHT)]


def chunk(name, data):
    return struct.pack(">I", len(data)) + name + data + struct.pack(">I", zlib.crc32(name + data))


def png(colour=0, interlace=0, depth=16, bits=b"\x0a"):
    """Of 8 bits, the samples without the two lowest."""
    lines = b"".join(b"\0" + (struct.pack(f">{WIDTH}H", *row) if depth == 16 else bytes(v >> 2 for v in row)) for row in rows)
    head = struct.pack(">IIBBBBB", WIDTH, HEIGHT, depth, colour, 0, 0, interlace)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", head) + (chunk(b"sBIT", bits) if bits else b"")
            + chunk(b"IDAT", zlib.compress(lines)) + chunk(b"IEND", b""))


def tiff(order, tags, strips):
    file = Tiff(order)
    offsets = [file.add(strip) for strip in strips]
    return file.finish(file.directory({**tags, 273: (4, offsets), 279: (4, [len(strip) for strip in strips])}))


def words(order, lines):
    return b"".join(struct.pack(f"{order}{len(line)}H", *line) for line in lines)


def write(name, data):
    pathlib.Path(name).write_bytes(data)


grey = {256: (4, [WIDTH]), 257: (4, [HEIGHT]), 258: (3, [16]), 259: (3, [1]), 262: (3, [1]), 277: (3, [1]), 278: (4, [20])}
twenty = [rows[y:y + 20] for y in range(0, HEIGHT, 20)]
write("flat.png", png())
write("truncated.png", png()[:3000])
write("interlaced.png", png(interlace=1))
write("colour.png", png(colour=2, bits=None))
write("four_bits.png", png(depth=4, bits=None))
write("header.png", png().replace(b"IHDR", b"IHDX"))
write("undescribed.png", png(bits=None))
write("eight.png", png(depth=8, bits=None))
open("eight.pgm", "wb").write(b"P5\n%d %d\n255\n" % (WIDTH, HEIGHT) + bytes(v >> 2 for v in flat.samples))
write("little.tif", tiff("<", grey, [words("<", part) for part in twenty]))
write("deflated.tiff", tiff(">", {**grey, 259: (3, [8])}, [zlib.compress(words(">", part)) for part in twenty]))
write("smallest.tif", tiff("<", {**grey, 256: (4, [2]), 257: (4, [2])}, [words("<", [[60, 61]] * 2)]))
write("truncated.tif", tiff("<", grey, [words("<", rows[:20])]))

# The frame stands inside a larger one of other samples; every plane has a black level of its own.
LEFT, TOP = 8, 6


def sample(x, y):
    x, y = x - LEFT, y - TOP
    return flat.at(x, y) + BLACK[x % 2 + y % 2 * 2] - 64 if 0 <= x < WIDTH and 0 <= y < HEIGHT else 1000


dng = make_dng(WIDTH + 20, HEIGHT + 10, "BGGR", sample, active=(TOP, LEFT, TOP + HEIGHT, LEFT + WIDTH),
               extra={271: (2, b"Maker\0"), 272: (2, b"Model Z\0"), 50708: (2, b"Maker Model Z\0"), 42036: (2, b"24mm f/2\0"),
                      50714: (3, list(BLACK)), 50717: (3, [1000])})
write("flat.dng", dng)
write("truncated.dng", dng[:-300])
