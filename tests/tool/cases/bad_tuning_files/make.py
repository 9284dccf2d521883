"""Writes one good file of each kind, and what comes of it by one change each."""
import json
import math
import pathlib
import struct

from dng import gain_map, make_dng, opcode_list


def write(name, text):
    pathlib.Path(name).write_text(text)


sectors = str([0.0625] * 8)
tables = "".join(f"          {colour}: {[1024 + 3 * i for i in range(289)]}\n" for colour in ("r", "gr", "gb", "b"))
one_set = f"        - ct: 2856\n          resolution: 64x48\n{tables}"
yaml = (f"version: 1\nalgorithms:\n  - LensShadingCorrection:\n      x-size: {sectors}\n      y-size: {sectors}\n"
        f"      sets:\n{one_set}{one_set.replace('2856', '5000')}")
write("good.yaml", yaml)
write("limit.yml", yaml.replace("[1024, ", "[4095, ", 1).replace("      x-size", "      type: table\n      x-size"))
for number, (old, new) in enumerate((("version: 1", "version: [1"), ("LensShading", "Lens"), ("[0.0625, ", "[0.05, "),
                                     ("[0.0625, ", "["), ("          gb:", "          g:"), ("[1024, ", "["), ("[1024, ", "[0, "),
                                     ("[1024, ", "[4096, "), ("[1024, ", "[many, "), ("ct: 2856", "ct: cold"), ("ct: 2856", "ct: 28e"), ("ct: 2856", "ct: [2856]"), ("ct: 2856", "ct: *light"),
                                     ("64x48", "64"), ("64x48", "wide"), ("64x48", "64-48"), ("64x48", "0x48"), ("64x48", "64x48x"), ("64x48", "64x1"),
                                     ("64x48", "70000x48"), ("64x48", "64x70000"), ("ct: 2856", "ct: 0"), ("ct: 2856", "ct: 100001"),
                                     ("      x-size", "      type: spline\n      x-size"), ("      sets:", "      groups:"), (yaml, ""), (yaml, "algorithms: 5"), (yaml, "algorithms: [5]"),
                                     (yaml, "[" * 100000))):
    assert old in yaml, old
    write(f"bad_{number:02}.yaml", yaml.replace(old, new, 1))

# Each end of a range, and what is just beyond it.
for number, (old, new) in enumerate((("ct: 2856", "ct: 1"), ("ct: 2856", "ct: 0.99"), ("ct: 2856", "ct: 100000"), ("[1024, ", "[1, "),
                                     ("[1024, ", "[0.99, "), ("[1024, ", "[4095, "), ("[1024, ", "[4095.5, "), ("64x48", "65534x48"),
                                     ("64x48", "65535x48"), ("64x48", "48x65534"), ("64x48", "48x65535"), ("64x48", "2x2"),
                                     ("64x48", "1x48"), ("[0.0625, ", "[0.0634, "), ("[0.0625, ", "[0.0636, "),
                                     ("      y-size: [0.0625, ", "      y-size: [0.0614, "))):
    assert old in yaml, old
    write(f"edge_{number:02}.yaml", yaml.replace(old, new, 1))

alsc = {"calibrations_Cr": [{"ct": 5000, "table": [1.5] * 192}], "calibrations_Cb": [{"ct": 5000, "table": [1.5] * 192}],
        "luminance_lut": [1.5] * 192}
write("alsc.json", json.dumps({"algorithms": [{"rpi.alsc": alsc}]}))
lit = [{"ct": 5000, "table": [1.5] * 192}]
for number, change in enumerate(({"calibrations_Cr": lit * 0}, {"calibrations_Cr": None}, {"calibrations_Cb": [{"ct": 5000}]},
                                 {"calibrations_Cb": [5000]}, {"calibrations_Cb": [{"table": [1.5] * 192}]}, {"calibrations_Cb": []},
                                 {"calibrations_Cb": [{"ct": "warm", "table": [1.5] * 192}]},
                                 {"calibrations_Cb": [{"ct": 1e6, "table": [1.5] * 192}]},
                                 {"calibrations_Cb": [{"ct": 5000, "table": [1.5] * 1024}]},
                                 {"calibrations_Cb": [{"ct": 4000, "table": [1.5] * 192}]},
                                 {"calibrations_Cb": [{"ct": 0, "table": [1.5] * 192}]}, {"calibrations_Cb": 7},
                                 {"calibrations_Cr": [{"ct": 5000, "table": [1.5] * 1024}]}, {"luminance_lut": [1.5] * 191},
                                 {"luminance_lut": "bright"}, {"luminance_lut": [1.5] * 191 + [0]},
                                 {"luminance_lut": [1.5] * 191 + ["x" * 1000]}, {"luminance_lut": [1.5] * 191 + [1e9]})):
    write(f"bad_{number:02}.json", json.dumps({"algorithms": [{"rpi.alsc": {**alsc, **change}}]}))
for number, (ct, factor) in enumerate(((1, 1.5), (0.99, 1.5), (100000, 1.5), (3000, 64), (3000, 64.1))):
    more = {key: alsc[key] + [{"ct": ct, "table": [factor] + [1.5] * 191}] for key in ("calibrations_Cr", "calibrations_Cb")}
    write(f"edge_{number:02}.json", json.dumps({"algorithms": [{"rpi.alsc": {**alsc, **more}}]}))
for name, root in (("other", {"algorithms": [{"rpi.agc": alsc}]}), ("root_list", ["rpi.alsc"]), ("root_none", {"rpi.agc": 1}), ("no_list", {"algorithms": {"rpi.alsc": 1}}),
                   ("no_objects", {"algorithms": ["rpi.alsc"]})):
    write(f"bad_{name}.json", json.dumps(root))
# Without luminance, in the form of the first version, and with a temperature that one list alone has.
del alsc["luminance_lut"]
write("no_luminance.json", json.dumps({"rpi.alsc": {**alsc, "calibrations_Cb": [{"ct": 5000, "table": [1.25] * 192}, {"ct": 3000, "table": [2] * 192}],
                                                       "calibrations_Cr": [{"ct": 5000, "table": [30] * 192}]}}))
alsc["luminance_lut"] = [1.5] * 192
write("bad_end.json", json.dumps({"algorithms": [{"rpi.alsc": alsc}]})[:-1])
write("bad_list.json", json.dumps({"algorithms": [{"rpi.alsc": [1]}]}))

W, H = 64, 48
maps = [gain_map(plane, W, H, 3, 4, [1 + i / 8 for i in range(12)]) for plane in range(4)]


def dng(name, opcodes, **about):
    pathlib.Path(name).write_bytes(make_dng(W, H, about.pop("pattern", "RGGB"), lambda x, y: 9, opcodes, **about))


def changed(shape=(3, 4), **overrides):
    return opcode_list(maps[:3] + [gain_map(3, W, H, *shape, [1.5] * 12, **overrides)])


dng("good.dng", opcode_list(maps))
for points in 1, 2:
    dng(f"points_{points}.dng", opcode_list([gain_map(plane, W, H, points, 3 - points, [1.5, 1.75][:2]) for plane in range(4)]))
whole = opcode_list(maps)
for number, opcodes in enumerate((
        None, b"", whole[:-1], whole[:21], struct.pack(">I", 5) + whole[4:], opcode_list(maps[:3]), opcode_list(maps + maps[:1]),
        opcode_list([struct.pack(">4I", 4, 0x01030000, 0, 4) + bytes(4)]), changed(row_pitch=1), changed(pitch=4),
        changed(row_pitch=0, column_pitch=0), changed((0, 3)), changed(((1 << 24) + 1, 1)), changed((1, (1 << 24) + 1)), changed(plane=1),
        changed(right=W - 2), changed(top=3), changed(left=3), changed(spacing=(2, 0.5)), changed(first=(2, 0)),
        opcode_list(maps[:3] + [gain_map(3, W, H, 1, 1, [65.0])]),
        changed(planes=3), changed(map_planes=2), changed((3, 0)), changed((1 << 24, 1 << 24)), changed((3, 5)),
        changed(spacing=(0, 0.5)), changed(spacing=(math.nan, 0.5)), changed(first=(math.inf, 0)), changed(bottom=H - 2),
        changed(left=2, top=2), opcode_list(maps[:3] + [gain_map(3, W, H, 1, 1, [math.nan])]),
        opcode_list(maps[:3] + [gain_map(3, W, H, 1, 1, [0.0])]))):
    dng(f"bad_{number:02}.dng", opcodes)
for number, opcodes in enumerate((
        changed((2, 6), spacing=(1, 0.2)), changed((2, 6), spacing=(1.01, 0.2)), changed((6, 2), spacing=(0.2, 1)), changed(first=(-1, 1)),
        changed(first=(0, -1.01)), changed(first=(1, -1)), changed(bottom=H - 1, right=W - 1), changed((1, 12), spacing=(7, 0.1), first=(7, 0)),
        opcode_list(maps[:3] + [gain_map(3, W, H, 1, 1, [64.0])]), opcode_list([gain_map(3, W, H, 3, 4, [1.5] * 12, pitch=1)]))):
    dng(f"edge_{number:02}.dng", opcodes)
dng("bad_pattern.dng", whole, pattern="RGGG")
# Levels in each type of number, and some that are none.
for number, tags in enumerate((*({50714: (kind, [60, 61, 62, 63])} for kind in (1, 3, 4, 6, 8, 9, 11, 12)),
                               {50714: (10, [(120 + 2 * p, 2) for p in range(4)])}, {50714: (3, [64])}, {50714: (8, [60, -1, 62, 63])},
                               {50713: (3, [1, 1])}, {50714: (4, [60, 61, 62, 70000])}, {50717: (11, [-1])}, {50717: (4, [70000])},
                               {50714: (11, [-0.4, 0.5, 65535, 1.4]), 50717: (4, [65535])}, {50714: (4, [65535, 0, 1, 2]), 50717: (4, [0])},
                               {50717: (4, [255])}, {50717: (4, [256])}, {50717: (4, [65536])})):
    dng(f"levels_{number:02}.dng", whole, extra=tags)
dng("levels_none.dng", whole, extra={50714: None, 50717: None})
for name, tags in (("repeat", {33421: (3, [6, 6])}), ("no_width", {256: None}), ("no_height", {257: None}), ("low_colour", {33422: (6, [0, -1, 1, 2])}),
                   ("high_colour", {33422: (1, [0, 1, 3, 2])}), ("kind_13", {262: (13, [34892])}), ("kind_14", {262: (14, [32803])}),
                   ("list_beyond", {51009: (14, [7])}), ("not_cfa", {262: (3, [34892])}), ("area", {50829: (4, [10, 10, 10, 10])}),
                   ("narrow", {50829: (4, [0, 0, H, 1])}), ("low", {50829: (4, [0, 0, 1, W])}), ("wide", {50829: (4, [0, 0, H, 70000])}),
                   ("high", {50829: (4, [0, 0, 70000, W])})):
    dng(f"bad_{name}.dng", whole, extra=tags)


def directory(*entries, promised=None):
    return struct.pack("<H", promised or len(entries)) + b"".join(struct.pack("<HHII", *entry) for entry in entries) + bytes(4)


# More entries than there are, directories below that are nowhere or in a circle, an opcode list longer than any, or than the file.
cfa = (262, 3, 1, 32803)
for number, tail in enumerate((directory(promised=65535), directory(cfa, promised=2)[:-4], directory((330, 4, 1, 65535)), directory((330, 4, 70, 8)) + bytes(300),
                               directory((330, 4, 1, 4))[:-4], directory(cfa, (51009, 7, 1 << 25, 8)), directory(cfa, (51009, 7, 500, 8)))):
    pathlib.Path(f"bad_directory_{number}.dng").write_bytes(b"II*\0\x08\0\0\0" + tail)
dng("bad_long_list.dng", None, extra={51009: (4, [7])})
pathlib.Path("bad_cut.dng").write_bytes(pathlib.Path("good.dng").read_bytes()[:4000])
pathlib.Path("bad_header.dng").write_bytes(b"II*\0\xff\xff\0\0")

gains = " ".join(str(1024 + i) for i in range(4 * 5 * 5))
for name, text in (("tables", gains), ("bad_less", gains[:gains.rindex(" ")]), ("bad_more", gains + "\n1"), ("bad_empty", "\n"),
                   ("bad_word", gains.replace("1030", "10.3")), ("bad_high", gains.replace("1030", "65536"))):
    write(name + ".txt", text)
