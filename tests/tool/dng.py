"""Writes DNGs of either byte order by means of its own, as they come from cameras: with a preview in front, the mosaic in a
directory below the first, in strips or in tiles; and the GainMap opcodes of their shading."""
import struct

XYZ_TO_SRGB = [(n, 10000) for n in (32405, -15371, -4985, -9693, 18760, 416, 556, -2040, 10572)]
CODES = {1: "B", 3: "H", 4: "I", 6: "b", 8: "h", 9: "i", 11: "f", 12: "d", 13: "I", 14: "I"}


def gain_map(site, width, height, columns, rows, values, spacing=None, first=(0, 0), pitch=2, **overrides):
    """One opcode, for the plane of a site; `values` row by row."""
    spacing = spacing or (1 / max(columns - 1, 1), 1 / max(rows - 1, 1))
    head = {"top": site // 2, "left": site % 2, "bottom": height, "right": width, "plane": 0, "planes": 1,
            "row_pitch": pitch, "column_pitch": pitch, "rows": rows, "columns": columns, "map_planes": 1}
    head.update(overrides)
    words = [head[name] for name in ("top", "left", "bottom", "right", "plane", "planes", "row_pitch", "column_pitch",
                                     "rows", "columns")]
    body = struct.pack(">10I4dI", *words, spacing[1], spacing[0], first[1], first[0], head["map_planes"])
    body += struct.pack(f">{len(values)}f", *values)
    return struct.pack(">4I", 9, 0x01030000, 1, len(body)) + body


def opcode_list(opcodes):
    return struct.pack(">I", len(opcodes)) + b"".join(opcodes)


class Tiff:
    """Grows from its header; directories are added last and pointed to by what is written before."""

    def __init__(self, order):
        self.order = order
        self.data = bytearray({"<": b"II", ">": b"MM"}[order] + struct.pack(order + "HI", 42, 0))

    def add(self, data):
        self.data += bytes(len(self.data) % 2)
        at = len(self.data)
        self.data += data
        return at

    def value(self, kind, values):
        if isinstance(values, bytes):
            return values, len(values)
        if kind in (5, 10):
            pairs = [part for value in values for part in value]
            return struct.pack(self.order + {5: "I", 10: "i"}[kind] * len(pairs), *pairs), len(values)
        return struct.pack(self.order + CODES[kind] * len(values), *values), len(values)

    def directory(self, tags, following=0):
        """`tags` maps tag to (type, values), or to None where it is missing; returns where the directory is."""
        entries, tags = b"", {tag: value for tag, value in tags.items() if value}
        for tag, (kind, values) in sorted(tags.items()):
            data, count = self.value(kind, values)
            data = data.ljust(4, b"\0") if len(data) <= 4 else struct.pack(self.order + "I", self.add(data))
            entries += struct.pack(self.order + "HHI", tag, kind, count) + data
        return self.add(struct.pack(self.order + "H", len(tags)) + entries + struct.pack(self.order + "I", following))

    def finish(self, first):
        self.data[4:8] = struct.pack(self.order + "I", first)
        return bytes(self.data)


def read_directories(data):
    """Tags of the first directory, and of that below it where there is one: {tag: (type, bytes)}. They stand in order, each once,
    at even places, and end within the data."""
    order = {b"II": "<", b"MM": ">"}[data[:2]]
    found, pointer = [], struct.unpack_from(order + "I", data, 4)[0]
    while pointer:
        assert pointer % 2 == 0
        count = struct.unpack_from(order + "H", data, pointer)[0]
        values = {}
        for at in range(pointer + 2, pointer + 2 + 12 * count, 12):
            tag, kind, number = struct.unpack_from(order + "HHI", data, at)
            assert tag > max(values, default=0), tag
            size = number * {1: 1, 2: 1, 3: 2, 4: 4, 5: 8, 7: 1, 10: 8}[kind]
            where = at + 8 if size <= 4 else struct.unpack_from(order + "I", data, at + 8)[0]
            values[tag] = (kind, data[where:where + size])
            assert len(values[tag][1]) == size
        assert struct.unpack_from(order + "I", data, pointer + 2 + 12 * count) == (0,)
        found.append(values)
        pointer = struct.unpack(order + "I", values[330][1])[0] if 330 in values else 0
    return found


def read_gain_maps(data):
    """Of each opcode of the mosaic's list, which has nothing else: the words of its head, and the gains row by row."""
    kind, opcodes = read_directories(data)[-1][51009]
    assert kind == 7
    maps, at = [], 4
    while at < len(opcodes):
        head = struct.unpack_from(">4I10I4dI", opcodes, at)
        maps.append((head, struct.unpack_from(f">{head[12] * head[13]}f", opcodes, at + 92)))
        assert head[:3] == (9, 0x01030000, 1) and head[3] == 76 + 4 * len(maps[-1][1]), head
        at += 16 + head[3]
    assert struct.unpack_from(">I", opcodes) == (len(maps),)
    return maps


def mosaic_tags(order, width, height, pattern, black, white, opcodes):
    tags = {254: (4, [0]), 256: (4, [width]), 257: (4, [height]), 258: (3, [16]), 262: (3, [32803]),
            277: (3, [1]), 284: (3, [1]), 33421: (3, [2, 2]), 33422: (1, [{"R": 0, "G": 1, "B": 2}[c] for c in pattern]),
            50713: (3, [2, 2]), 50714: (5, [(2 * level, 2) for level in black]), 50717: (4, [white])}
    if opcodes is not None:
        tags[51009] = (7, opcodes)
    return tags


def lossless_jpeg(rows):
    """One component of 16 bits, each sample as its difference to its left neighbour; every category has a code of 5 bits."""
    bits = []
    for y, row in enumerate(rows):
        before = rows[y - 1][0] if y else 1 << 15
        for value in row:
            difference, before = value - before, value
            length = abs(difference).bit_length()
            bits.append(f"{length:05b}")
            if 0 < length < 16:
                bits.append(f"{difference if difference > 0 else difference + (1 << length) - 1:0{length}b}")
    text = "".join(bits)
    text += "1" * (-len(text) % 8)
    data = int(text, 2).to_bytes(len(text) // 8, "big").replace(b"\xff", b"\xff\0")
    codes = bytes([0] * 5 + [17] + [0] * 11) + bytes(range(17))
    return (b"\xff\xd8\xff\xc4" + struct.pack(">H", 2 + len(codes)) + codes
            + b"\xff\xc3" + struct.pack(">HBHHB3B", 11, 16, len(rows), len(rows[0]), 1, 0, 0x11, 0)
            + b"\xff\xda" + struct.pack(">HB5B", 8, 1, 0, 0, 1, 0, 0) + data + b"\xff\xd9")


def add_samples(tiff, tags, width, height, sample, tile, compressed, forward):
    """`sample(x, y)` in one strip, in strips of `tile` rows, or in tiles of `tile` (width, height) that reach beyond the frame
    with zeros. Several stand back to front, so that readers must follow their offsets, but where they go `forward`."""
    def block(left, top, columns, rows):
        values = [[sample(x, y) if x < width and y < height else 0 for x in range(left, left + columns)]
                  for y in range(top, top + rows)]
        return lossless_jpeg(values) if compressed else b"".join(struct.pack(f"{tiff.order}{columns}H", *row) for row in values)
    tags[259] = (3, [7 if compressed else 1])
    if isinstance(tile, tuple):
        places = [(left, top, *tile) for top in range(0, height, tile[1]) for left in range(0, width, tile[0])]
    else:
        rows = tile or height
        places = [(0, top, width, min(rows, height - top)) for top in range(0, height, rows)]
    parts = [block(*place) for place in places]
    offsets = [tiff.add(part) for part in parts[::1 if forward else -1]][::1 if forward else -1]
    sizes = [len(part) for part in parts]
    if isinstance(tile, tuple):
        tags.update({322: (4, [tile[0]]), 323: (4, [tile[1]]), 324: (4, offsets), 325: (4, sizes)})
    else:
        tags.update({273: (4, offsets), 278: (4, [rows]), 279: (4, sizes)})


def make_dng(width, height, pattern, sample, opcodes=None, order="<", below=False, black=(60, 61, 62, 63), white=1000,
             tile=None, active=None, extra=None, compressed=False, forward=False):
    """`below` puts the mosaic below a directory of a preview, or behind it: "next"; `extra` are further tags of the mosaic, None
    for one that it lacks."""
    tiff = Tiff(order)
    tags = mosaic_tags(order, width, height, pattern, black, white, opcodes)
    add_samples(tiff, tags, width, height, sample, tile, compressed, forward)
    if active:
        tags[50829] = (4, list(active))
    tags.update(extra or {})
    camera = {50706: (1, [1, 4, 0, 0]), 50707: (1, [1, 3, 0, 0]), 271: (2, b"Some\0"), 272: (2, b"Camera\0"),
              50708: (2, b"Some Camera\0"), 50721: (10, XYZ_TO_SRGB),
              50728: (5, [(1, 1)] * 3), 50778: (3, [21])}
    if not below:
        return tiff.finish(tiff.directory({**camera, **tags}))
    mosaic = tiff.directory(tags)
    preview = tiff.add(bytes(range(12)))
    below = {} if below == "next" else {330: (4, [mosaic])}
    return tiff.finish(tiff.directory({**camera, 254: (4, [1]), 256: (4, [2]), 257: (4, [2]), 258: (3, [8, 8, 8]), 259: (3, [1]),
                                       262: (3, [2]), 273: (4, [preview]), 277: (3, [3]), 278: (4, [2]), 279: (4, [12]),
                                       **below}, 0 if below else mosaic))
