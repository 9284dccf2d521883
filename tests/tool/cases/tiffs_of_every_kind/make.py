"""Writes a TIFF of 6 x 4 samples, and what comes of it by one change each."""
import pathlib
import struct

from dng import Tiff

SAMPLES = [7 * k + 60 for k in range(24)]


def write(name, order="<", depth=16, cut=0, **changes):
    tiff = Tiff(order)
    strips = [tiff.add(struct.pack(f"{order}12{'H' if depth == 16 else 'B'}", *SAMPLES[k:k + 12])) for k in (0, 12)]
    tags = {256: (4, [6]), 257: (4, [4]), 258: (3, [depth]), 259: (3, [1]), 262: (3, [1]), 273: (4, strips), 277: (3, [1]), 278: (4, [2]),
            279: (4, [12 * depth // 8] * 2)}
    tags.update({int(tag[1:]): value for tag, value in changes.items()})
    data = tiff.finish(tiff.directory({tag: value for tag, value in tags.items() if value}))
    pathlib.Path(name).write_bytes(data[:len(data) - cut])


write("a_little.tif")
write("a_big.tif", order=">")
write("a_named_otherwise.mosaic", order=">")
write("a_byte.tiff", depth=8)
for pattern in ("0112", "1021", "2110", "0111", "0113", "011"):
    write(f"a_pattern_{pattern}.tif", _33421=(3, [2, 2]), _33422=(1, [int(colour) for colour in pattern]))
write("b_12_bits.tif", _258=(3, [12]))
write("b_colours.tif", _258=(3, [16] * 3), _277=(3, [3]))
write("b_float.tif", _339=(3, [3]))
write("b_signed.tif", _339=(3, [2]))
write("b_negative.tif", _262=(3, [0]))
write("b_palette.tif", depth=8, _262=(3, [3]), _320=(3, [9] * 768))
for name, sides in (("narrow", (1, 4)), ("low", (6, 1)), ("wide", (65535, 4)), ("high", (6, 65535)), ("long", (6, 400))):
    write(f"b_{name}.tif", _256=(4, [sides[0]]), _257=(4, [sides[1]]))
write("b_tiles.tif", _273=None, _278=None, _279=None, _322=(4, [16]), _323=(4, [16]), _324=(4, [8]), _325=(4, [512]))
write("b_strip_beyond.tif", _273=(4, [8, 5000]))
write("b_no_strips.tif", _273=None)
write("b_directory_cut.tif", cut=20)
for name, data in (("words", b"0123456789"), ("big", b"II+\0\x08\0\0\0\0\0\0\0\0\0\0\0"), ("big_endian", b"MM\0+\0\x08\0\0\0\0\0\0\0\0\0\0")):
    pathlib.Path(f"b_{name}.tif").write_bytes(data)
