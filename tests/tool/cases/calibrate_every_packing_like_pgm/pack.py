"""Writes the samples of flat.pgm in every packing that the tool reads."""
import pathlib
import struct

from frames import read_pgm

WIDTH, HEIGHT = 124, 96
flat = read_pgm("flat.pgm")
rows = [flat.samples[y * WIDTH:(y + 1) * WIDTH] for y in range(HEIGHT)]
# All four low bits differ from sample to sample.
deep = [[min(4 * v + (x + 3 * y) % 4, 4095) for x, v in enumerate(row)] for y, row in enumerate(rows)]
shallow = [[v // 5 + 50 for v in row] for row in rows]


def raw10(row):
    packed = b""
    for x in range(0, WIDTH, 4):
        a, b, c, d = row[x:x + 4]
        packed += bytes([a >> 2, b >> 2, c >> 2, d >> 2, a & 3 | (b & 3) << 2 | (c & 3) << 4 | (d & 3) << 6])
    return packed


def raw12(row):
    packed = b""
    for x in range(0, WIDTH, 2):
        a, b = row[x:x + 2]
        packed += bytes([a >> 4, b >> 4, a & 15 | (b & 15) << 4])
    return packed


def words(row, order=">"):
    return struct.pack(f"{order}{WIDTH}H", *row)


def write(name, packed_rows, stride=0, before=b""):
    padded = b"".join(row.ljust(stride, b"\xa5") for row in packed_rows)
    pathlib.Path(name).write_bytes(before + padded)


def header(maxval):
    return b"P5\n%d %d\n%d\n" % (WIDTH, HEIGHT, maxval)


write("flat.raw10", map(raw10, rows))
write("padded.raw10", map(raw10, rows), 160)
write("packed.bin", map(raw10, rows), before=b"7 bytes")
write("padded.bin", map(words, rows), 256)
write("left.raw", (words([v << 6 for v in row], "<") for row in rows))
write("left.pgm", (words([v << 6 for v in row]) for row in rows), before=header(65535))
write("twelve.pgm", map(words, deep), before=header(4095))
write("twelve.raw12", map(raw12, deep))
write("padded.raw12", map(raw12, deep), 192)
write("eight.pgm", map(bytes, shallow), before=header(255))
write("shallow16.pgm", map(words, shallow), before=header(1023))
