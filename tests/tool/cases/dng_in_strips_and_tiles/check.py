"""Writes a mosaic into uncompressed DNGs of every layout, and holds what the tool has read of each against it."""
import pathlib
import struct
import sys

from dng import make_dng
from frames import write_tables

WIDTH, HEIGHT, STEP = 202, 120, 8
LAYOUTS = {"whole": {}, "strips": {"tile": 35}, "tiles": {"tile": (64, 48)}, "wide_tiles": {"tile": (208, 16)},
           "one_tile": {"tile": (208, 128)}, "big_endian": {"tile": (64, 48), "order": ">"},
           "below": {"tile": (64, 48), "below": True}, "next": {"below": "next"}, "active": {"tile": (64, 48), "active": (4, 8, 4 + HEIGHT, 8 + WIDTH)},
           "odd": {"active": (5, 7, 5 + HEIGHT, 7 + WIDTH)}, "odd_tiles": {"tile": (64, 48), "active": (5, 8, 5 + HEIGHT, 8 + WIDTH)},
           "inner": {"tile": (64, 48), "active": (100, 132, 100 + HEIGHT, 132 + WIDTH)}, "forward": {"tile": 35, "forward": True},
           "curve": {"tile": 35, "forward": True, "extra": {50712: (3, [60 * k for k in range(1001)]), 50717: (3, [60000])}},
           "compressed": {"active": (4, 7, 4 + HEIGHT, 7 + WIDTH), "compressed": True},
           "compressed_tiles": {"tile": (64, 48), "active": (5, 7, 5 + HEIGHT, 7 + WIDTH), "compressed": True}}


def sample(x, y):
    return (7 * x + 131 * y + x * y) % 1000


if sys.argv[1] == "make":
    write_tables("tables.json", (WIDTH, HEIGHT), STEP, "RGGB", lambda *_: 1100, [0] * 4)
    for name, layout in LAYOUTS.items():
        size = (layout["active"][3] + 11, layout["active"][2] + 5) if "active" in layout else (WIDTH, HEIGHT)
        pathlib.Path(name + ".dng").write_bytes(make_dng(*size, "RGGB", sample, **layout))
    tiles = LAYOUTS["tiles"]
    pathlib.Path("bad_strips.dng").write_bytes(make_dng(WIDTH, HEIGHT, "RGGB", sample, tile=35, extra={258: (3, [12])}))
    pathlib.Path("bad_parts.dng").write_bytes(make_dng(WIDTH, HEIGHT, "RGGB", sample, tile=35, compressed=True))
    curve = LAYOUTS["curve"]["extra"]
    for name, tile, tags in (("rows", 35, {278: None}), ("rows_text", 35, {278: (2, b"35")}), ("words_end", None, {273: (4, [1 << 24])}),
                             ("curve_sizes", 35, {**curve, 279: None}), ("curve_count", 35, {**curve, 279: (4, [9] * 3)}),
                             ("curve_apart", 35, {**curve, 279: (4, [9] * 4)}), ("no_black", None, {50713: None, 50714: None}),
                             ("float", None, {258: (3, [32]), 339: (3, [3])})):
        pathlib.Path(f"bad_{name}.dng").write_bytes(make_dng(WIDTH, HEIGHT, "RGGB", sample, tile=tile, forward=True, extra=tags))
    pathlib.Path("bad_big.dng").write_bytes(make_dng(WIDTH, HEIGHT, "RGGB", sample, compressed=True,
                                                     extra={256: (4, [40000]), 257: (4, [40000])}))
    pathlib.Path("bad_jpeg.dng").write_bytes(make_dng(WIDTH, HEIGHT, "RGGB", sample, compressed=True, extra={257: (4, [HEIGHT // 2 - 2])}))
    pathlib.Path("bad_jpeg_tiles.dng").write_bytes(make_dng(WIDTH, HEIGHT, "RGGB", sample, compressed=True, tile=(64, 48),
                                                            extra={257: (4, [60]), 323: (4, [20])}))
    for name, tags in (("width", {256: (4, [1])}), ("pair", {258: (3, [16, 16])}), ("no_sizes", {325: (2, b"")}), ("float_side", {322: (11, [-1.0])}),
                       ("no_strips", {324: (2, b"")}), ("colour", {33422: (1, [0, 3, 3, 2])}), ("curve", {50712: (3, [60 * k for k in range(1001)])}),
                       ("area_a", {50829: (4, [0, 0, HEIGHT + 9, WIDTH])}), ("area_b", {50829: (4, [0, 0, HEIGHT, WIDTH + 9])}),
                       ("area_c", {50829: (4, [0, 0, 1, WIDTH])}), ("area_e", {50829: (4, [HEIGHT, 0, 0, WIDTH])}),
                       # What follows the three numbers could be a fourth.
                       ("area_three", {50829: (4, [0, 0, HEIGHT]), 51022: (4, [26, 0])}), ("black", {50714: (9, [60, -1, 62, 63])}),
                       ("white_0", {50717: (4, [0])}), ("white_65535", {50717: (4, [65535])}), ("count", {324: (4, [8, 8])}),
                       ("text_offsets", {324: (2, b"x" * 12)}), ("below_0", {324: (9, [-8] * 12)}), ("no_offsets", {324: None}),
                       ("low", {323: (4, [0])}), ("float_width", {322: (12, [1e300])}), ("size", {322: (4, [0])}), ("beyond", {324: (4, [1 << 24] * 12)}),
                       ("deep", {258: (3, [12])}), ("huge", {256: (4, [60000]), 257: (4, [60000]), 322: (4, [60000]), 323: (4, [60000]),
                                                            324: (4, [8])})):
        pathlib.Path(f"bad_{name}.dng").write_bytes(make_dng(WIDTH, HEIGHT, "RGGB", sample, extra=tags, **tiles))
else:
    for name, layout in LAYOUTS.items():
        top, left = layout.get("active", (0, 0))[:2]
        data = pathlib.Path(f"copy_{name}.dng").read_bytes()
        came = struct.unpack(f"<{WIDTH * HEIGHT}H", data[-2 * WIDTH * HEIGHT:])
        factor = 60 if name == "curve" else 1
        wrong = sum(came[y * WIDTH + x] != factor * sample(x + left, y + top) for y in range(HEIGHT) for x in range(WIDTH))
        print(name, "the same" if wrong == 0 else f"{wrong} samples are wrong")
