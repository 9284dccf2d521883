"""Reads and writes what the tool makes, by means of its own: frames, tables and pictures as lists of numbers."""
import array
import json
import re
import struct
import sys
import zlib


class Frame:
    """Samples by row and column; `remarks` holds the words of the zerklsc comment of a PGM."""

    def __init__(self, width, height, maxval, samples, remarks=None):
        self.width, self.height, self.maxval = width, height, maxval
        self.samples, self.remarks = samples, remarks or {}

    def at(self, x, y):
        return self.samples[y * self.width + x]

    def plane(self, number):
        """The rows of plane `number`."""
        left, top = number & 1, number >> 1
        return [list(self.samples[y * self.width + left:(y + 1) * self.width:2]) for y in range(top, self.height, 2)]


def read_pgm(path):
    data = open(path, "rb").read()
    head = re.match(rb"P5\n((?:#.*\n)*)(\d+) (\d+)\n(\d+)\n", data)
    remarks = {}
    for comment in re.findall("# zerklsc (.*)", head[1].decode()):
        remarks.update(word.split("=") for word in comment.split())
    samples = array.array("H", data[head.end():])
    if sys.byteorder == "little":
        samples.byteswap()
    width, height, maxval = map(int, head.groups()[1:])
    assert len(samples) == width * height, (len(samples), width, height)
    return Frame(width, height, maxval, samples, remarks)


def write_pgm(path, width, height, level, remarks="pattern=RGGB black=64 bits=10", maxval=1023):
    """`level(x, y)` is the sample there."""
    samples = array.array("H", (level(x, y) for y in range(height) for x in range(width)))
    if sys.byteorder == "little":
        samples.byteswap()
    with open(path, "wb") as file:
        file.write(f"P5\n# zerklsc {remarks}\n{width} {height}\n{maxval}\n".encode() + samples.tobytes())


def table_size(side, step):
    """Nodes along a plane's side, border included."""
    return -(-(side // 2) // step) + 3


def node_place(plane, i, j, step, size):
    """Of node (i, j), the border left out, in fractions of the raw frame from edge to edge."""
    return (2 * step * i + plane % 2 + 0.5) / size[0], (2 * step * j + plane // 2 + 0.5) / size[1]


def write_tables(path, size, step, pattern, gain, black=(60, 61, 62, 63), bits=10):
    """`gain(plane, i, j)` is that of node (i, j), the border left out, in units of 1/1024."""
    columns, rows = (table_size(side, step) for side in size)
    planes = [{"plane": p, "gains": [[round(gain(p, i - 1, j - 1)) for i in range(columns)] for j in range(rows)]} for p in range(4)]
    with open(path, "w") as file:
        json.dump({"format": "zerklsc-tables", "version": 1, "raw_size": size, "step": step, "table_size": [columns, rows],
                   "algorithm": 2, "filter_radius": 2, "shading_percent": 100, "bayer_pattern": pattern, "black_level": black,
                   "bit_depth": bits, "tables": planes}, file)


def read_tables(path):
    """A table file; the gains of plane p at row j and column i are tables["tables"][p]["gains"][j][i]."""
    return json.load(open(path))


def nodes_of(tables, border=1):
    """Colour, place and gain of every node but those of a border so wide."""
    for entry in tables["tables"]:
        gains = entry["gains"]
        for j in range(border, len(gains) - border):
            for i in range(border, len(gains[j]) - border):
                u, v = node_place(entry["plane"], i - 1, j - 1, tables["step"], tables["raw_size"])
                yield entry["colour"], u, v, gains[j][i]


def read_png(path):
    """Rows of (red, green, blue), which the tool writes without filters."""
    data = open(path, "rb").read()
    assert data[:8] == b"\x89PNG\r\n\x1a\n"
    at, packed, header = 8, b"", None
    while at < len(data):
        length, kind = struct.unpack(">I4s", data[at:at + 8])
        body = data[at + 8:at + 8 + length]
        assert struct.unpack(">I", data[at + 8 + length:at + 12 + length])[0] == zlib.crc32(kind + body), kind
        if kind == b"IHDR":
            header = struct.unpack(">IIBBBBB", body)
        elif kind == b"IDAT":
            packed += body
        at += 12 + length
    width, height, depth, colours, _, _, interlaced = header
    assert (depth, colours, interlaced) == (8, 2, 0), header
    raw, stride = zlib.decompress(packed), 3 * width + 1
    lines = [raw[y * stride:(y + 1) * stride] for y in range(height)]
    assert len(raw) == height * stride and all(line[0] == 0 for line in lines)
    return [[tuple(line[at:at + 3]) for at in range(1, stride, 3)] for line in lines]
