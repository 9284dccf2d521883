"""Writes the samples of flat.pgm as PNG, TIFF and DNG, with the parts of the formats that matter for a mosaic."""
import pathlib
import struct
import zlib

WIDTH, HEIGHT = 124, 96
BLACK = (60, 64, 62, 66)
samples = struct.unpack(f">{WIDTH * HEIGHT}H", pathlib.Path("flat.pgm").read_bytes()[-2 * WIDTH * HEIGHT:])
rows = [samples[y * WIDTH:(y + 1) * WIDTH] for y in range(HEIGHT)]


def chunk(name, data):
    return struct.pack(">I", len(data)) + name + data + struct.pack(">I", zlib.crc32(name + data))


def png(colour=0, interlace=0):
    lines = b"".join(b"\0" + struct.pack(f">{WIDTH}H", *row) for row in rows)
    head = struct.pack(">IIBBBBB", WIDTH, HEIGHT, 16, colour, 0, 0, interlace)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", head) + chunk(b"sBIT", b"\x0a") + chunk(b"IDAT", zlib.compress(lines))
            + chunk(b"IEND", b""))


def tiff(order, entries, strips):
    """entries: (tag, type, values); the strips' places and sizes are added."""
    formats = {1: "B", 2: "s", 3: "H", 4: "I", 5: "I", 10: "i"}
    offsets, at, data = [], 8, b""
    for strip in strips:
        offsets.append(at)
        at += len(strip)
        data += strip
    entries = sorted(entries + [(273, 4, offsets), (279, 4, [len(s) for s in strips])])
    directory = struct.pack(order + "H", len(entries))
    extra, extra_at = b"", at + 2 + 12 * len(entries) + 4
    for tag, kind, values in entries:
        packed = values if kind == 2 else struct.pack(f"{order}{len(values)}{formats[kind]}", *values)
        count = len(values) // (2 if kind in (5, 10) else 1)
        directory += struct.pack(order + "HHI", tag, kind, count)
        if len(packed) > 4:
            directory += struct.pack(order + "I", extra_at + len(extra))
            extra += packed + b"\0" * (len(packed) % 2)
        else:
            directory += packed.ljust(4, b"\0")
    magic = b"II*\0" if order == "<" else b"MM\0*"
    return magic + struct.pack(order + "I", at) + data + directory + struct.pack(order + "I", 0) + extra


def words(order, lines):
    return b"".join(struct.pack(f"{order}{len(line)}H", *line) for line in lines)


grey = [(256, 4, [WIDTH]), (257, 4, [HEIGHT]), (258, 3, [16]), (262, 3, [1]), (277, 3, [1]), (278, 4, [20])]
twenty = [rows[y:y + 20] for y in range(0, HEIGHT, 20)]
pathlib.Path("flat.png").write_bytes(png())
pathlib.Path("truncated.png").write_bytes(png()[:3000])
pathlib.Path("interlaced.png").write_bytes(png(interlace=1))
pathlib.Path("little.tif").write_bytes(tiff("<", grey + [(259, 3, [1])], [words("<", part) for part in twenty]))
pathlib.Path("deflated.tiff").write_bytes(
    tiff(">", grey + [(259, 3, [8])], [zlib.compress(words(">", part)) for part in twenty]))
pathlib.Path("negative.tif").write_bytes(tiff("<", [entry if entry[0] != 262 else (262, 3, [0]) for entry in grey],
                                               [words("<", part) for part in twenty]))
# The smallest mosaic, and one that is no mosaic.
for name, height in (("smallest.tif", 2), ("one_row.tif", 1)):
    sized = [(256, 4, [2]), (257, 4, [height])] + grey[2:] + [(259, 3, [1])]
    pathlib.Path(name).write_bytes(tiff("<", sized, [words("<", [[60, 61]] * height)]))
pathlib.Path("truncated.tif").write_bytes(tiff("<", grey + [(259, 3, [1])], [words("<", rows[:20])]))

# The frame stands inside a larger one of other samples; every plane has a black level of its own.
LEFT, TOP = 8, 6
wide = [[1000] * (WIDTH + 20) for _ in range(HEIGHT + 10)]
for y in range(HEIGHT):
    wide[TOP + y][LEFT:LEFT + WIDTH] = [v + BLACK[x % 2 + y % 2 * 2] - 64 for x, v in enumerate(rows[y])]
dng = [(254, 4, [0]), (256, 4, [WIDTH + 20]), (257, 4, [HEIGHT + 10]), (258, 3, [16]), (259, 3, [1]), (262, 3, [32803]),
       (271, 2, b"Maker\0"), (272, 2, b"Model Z\0"), (277, 3, [1]), (278, 4, [HEIGHT + 10]), (33421, 3, [2, 2]),
       (33422, 1, [2, 1, 1, 0]), (50706, 1, [1, 4, 0, 0]), (50708, 2, b"Maker Model Z\0"), (50713, 3, [2, 2]),
       (50714, 3, list(BLACK)), (50717, 3, [1000]), (50721, 10, [1, 1, 0, 1, 0, 1, 0, 1, 1, 1, 0, 1, 0, 1, 0, 1, 1, 1]),
       (50778, 3, [21]), (50829, 4, [TOP, LEFT, TOP + HEIGHT, LEFT + WIDTH]), (42036, 2, b"24mm f/2\0")]
pathlib.Path("flat.dng").write_bytes(tiff("<", dng, [words("<", wide)]))
pathlib.Path("truncated.dng").write_bytes(tiff("<", dng, [words("<", wide)])[:-300])
