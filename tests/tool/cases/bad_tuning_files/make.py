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
for number, (old, new) in enumerate((("version: 1", "version: [1"), ("LensShading", "Lens"), ("[0.0625, ", "[0.05, "),
                                     ("[0.0625, ", "["), ("          gb:", "          g:"), ("[1024, ", "["), ("[1024, ", "[0, "),
                                     ("[1024, ", "[4096, "), ("[1024, ", "[many, "), ("ct: 2856", "ct: cold"),
                                     ("64x48", "64"), ("64x48", "0x48"), ("64x48", "64x48x"), ("64x48", "64x1"),
                                     ("64x48", "70000x48"), ("64x48", "64x70000"), ("ct: 2856", "ct: 0"), ("ct: 2856", "ct: 100001"),
                                     ("      x-size", "      type: spline\n      x-size"), ("      sets:", "      groups:"), (yaml, ""),
                                     (yaml, "[" * 100000))):
    assert old in yaml, old
    write(f"bad_{number:02}.yaml", yaml.replace(old, new, 1))

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
                                 {"calibrations_Cb": [{"ct": 0, "table": [1.5] * 192}]},
                                 {"calibrations_Cr": [{"ct": 5000, "table": [1.5] * 1024}]}, {"luminance_lut": [1.5] * 191},
                                 {"luminance_lut": "bright"}, {"luminance_lut": [1.5] * 191 + [0]},
                                 {"luminance_lut": [1.5] * 191 + ["x" * 1000]}, {"luminance_lut": [1.5] * 191 + [1e9]})):
    write(f"bad_{number:02}.json", json.dumps({"algorithms": [{"rpi.alsc": {**alsc, **change}}]}))
write("bad_other.json", json.dumps({"algorithms": [{"rpi.agc": alsc}]}))
write("bad_end.json", json.dumps({"algorithms": [{"rpi.alsc": alsc}]})[:-1])
write("bad_list.json", json.dumps({"algorithms": [{"rpi.alsc": [1]}]}))

W, H = 64, 48
maps = [gain_map(plane, W, H, 3, 4, [1 + i / 8 for i in range(12)]) for plane in range(4)]


def dng(name, opcodes, **about):
    pathlib.Path(name).write_bytes(make_dng(W, H, about.pop("pattern", "RGGB"), lambda x, y: 9, opcodes, **about))


def changed(shape=(3, 4), **overrides):
    return opcode_list(maps[:3] + [gain_map(3, W, H, *shape, [1.5] * 12, **overrides)])


dng("good.dng", opcode_list(maps))
whole = opcode_list(maps)
for number, opcodes in enumerate((
        None, b"", whole[:-1], whole[:21], struct.pack(">I", 5) + whole[4:], opcode_list(maps[:3]), opcode_list(maps + maps[:1]),
        opcode_list([struct.pack(">4I", 4, 0x01030000, 0, 4) + bytes(4)]), changed(row_pitch=1), changed(pitch=4),
        changed(row_pitch=0, column_pitch=0), changed((0, 3)), changed((1 << 24, 1)), changed((1, 1 << 24)),
        changed(right=W - 2), changed(top=4), changed(left=4), changed(spacing=(2, 0.5)), changed(first=(2, 0)),
        opcode_list(maps[:3] + [gain_map(3, W, H, 1, 1, [65.0])]),
        changed(planes=3), changed(map_planes=2), changed((3, 0)), changed((1 << 24, 1 << 24)), changed((3, 5)),
        changed(spacing=(0, 0.5)), changed(spacing=(math.nan, 0.5)), changed(first=(math.inf, 0)), changed(bottom=H - 2),
        changed(left=2, top=2), opcode_list(maps[:3] + [gain_map(3, W, H, 1, 1, [math.nan])]),
        opcode_list(maps[:3] + [gain_map(3, W, H, 1, 1, [0.0])]))):
    dng(f"bad_{number:02}.dng", opcodes)
dng("bad_pattern.dng", whole, pattern="RGGG")
dng("bad_not_cfa.dng", whole, extra={262: (3, [34892])})
dng("bad_area.dng", whole, active=(10, 10, 10, 10))
# Levels in each type of number, and some that are none.
for number, tags in enumerate((*({50714: (kind, [60, 61, 62, 63])} for kind in (1, 3, 4, 6, 8, 9, 11, 12)),
                               {50714: (10, [(120 + 2 * p, 2) for p in range(4)])}, {50714: (3, [64])}, {50714: (8, [60, -1, 62, 63])},
                               {50713: (3, [1, 1])}, {50714: (4, [60, 61, 62, 70000])}, {50717: (11, [-1])}, {50717: (4, [70000])})):
    dng(f"levels_{number:02}.dng", whole, extra=tags)
dng("bad_repeat.dng", whole, extra={33421: (3, [6, 6])})
dng("bad_long_list.dng", None, extra={51009: (4, [7])})
pathlib.Path("bad_cut.dng").write_bytes(pathlib.Path("good.dng").read_bytes()[:4000])
pathlib.Path("bad_header.dng").write_bytes(b"II*\0\xff\xff\0\0")

gains = " ".join(str(1024 + i) for i in range(4 * 5 * 5))
write("tables.txt", gains)
write("bad_less.txt", gains[:gains.rindex(" ")])
write("bad_more.txt", gains + "\n1")
write("bad_word.txt", gains.replace("1030", "10.3"))
write("bad_high.txt", gains.replace("1030", "65536"))
write("bad_empty.txt", "\n")
