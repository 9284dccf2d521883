#!/usr/bin/env python3
"""Compares what `zerklsc lot` says of simulated results with a model that holds them all, and lots that are merged from
summaries of their parts with the lot that was read as one.

  lot.py --tool build/release/tool/zerklsc
"""
import base64
import itertools
import json
import math
import random
import re
import statistics

from frames import read_png
from result_lines import COLOURS, Line, text_of
from tool import in_a_folder, options_with_tool

MAD = 1.482602
GOOD = ("pass", "warn")


def drifting(fields, number):
    """Gains rise along the line, and the optical centre moves to the right."""
    for gains in fields["gains"].values():
        gains[:] = [min(round(gain + (gain - 1024) * number / 8000), 16383) for gain in gains]
    for centre in fields["optical_centre"].values():
        centre[0] = round(centre[0] + number / 20000, 4)
    return fields


def results():
    """Modules in the order of their line: good ones, others in every way, and outliers of each kind."""
    line = Line(7, width=640, height=482, step=64)
    modules = []
    for number in range(13, 13 + 3 * 141, 3):
        fields = drifting(line.module(number), number)
        chance = line.random.random()
        if chance < 0.05:
            fields = line.refuse(fields, "shadow")
        elif chance < 0.08:
            fields = line.refuse(fields, "dust", "shadow")
        elif chance < 0.11:
            fields = line.refuse(fields, "noise")
        elif chance < 0.14:
            fields.update(verdict="fail", reason="the stream loses too much")
        elif chance < 0.17:
            empty = dict.fromkeys(("frame", "grid", "gains", "optical_centre"))
            fields = line.module(number, verdict="error", checks=[], numbers=dict.fromkeys(fields["numbers"]), **empty)
        elif chance < 0.3:
            fields["verdict"] = "warn"
            fields["checks"][3]["verdict"] = "warn"
        modules.append(fields)
    whole = [fields for fields in modules if fields["gains"] and fields["verdict"] == "pass"]
    whole[5]["gains"]["B"] = [round(1.35 * gain) for gain in whole[5]["gains"]["B"]]
    whole[11]["gains"]["Gr"][3 * line.columns + 4] += 28
    whole[17]["optical_centre"]["Gb"][1] += 0.09
    whole[5]["optical_centre"]["R"][0] += 0.2
    whole[6].update({key: whole[5][key] for key in ("gains", "optical_centre")})
    whole[23]["checks"][2]["value"] = None
    whole[24]["checks"][2]["value"], whole[25]["checks"][2]["value"], whole[26]["numbers"]["otp_loss"] = -0.0125, 0.0, 0.0
    for fields in modules:
        if fields["checks"]:
            fields["checks"].append({"name": "home-made", "plane": None, "value": None, "verdict": "pass"})
    whole[29]["serial"] = "no number"
    whole[17]["serial"], whole[30]["serial"] = "<b>76", "40"
    whole[31]["serial"] = 'Ünit "9" \\ 1000000000000000000000123'
    return line, modules


# The model: what the fields of the document are.

def middle(values):
    return statistics.median(values)


def whole_middle(values):
    return math.floor(middle(values) + 0.5)


def robust(values):
    return MAD * middle([abs(value - middle(values)) for value in values])


def quantile(values, fraction):
    return sorted(values)[max(math.ceil(fraction * len(values)), 1) - 1]


def distribution(values):
    places = {"smallest": 0, "percent_5": 0.05, "median": 0.5, "percent_95": 0.95, "largest": 1}
    return {name: quantile(values, fraction) if values else None for name, fraction in places.items()}


def costs(modules):
    """How many modules each cause has lost, and how many alone."""
    causes = [{check["name"] for check in fields["checks"] if check["verdict"] == "refuse"} or {fields["verdict"]}
              for fields in modules if fields["verdict"] not in GOOD]
    return {cause: (sum(cause in of for of in causes), causes.count({cause})) for cause in set().union(*causes)}


def grouped(pairs):
    found = {}
    for key, value in pairs:
        found.setdefault(key, []).append(value)
    return found


def checks(modules):
    found = grouped(((check["name"], check["plane"]), check) for fields in modules for check in fields["checks"])
    return {name: {**distribution([c["value"] for c in all_of if c["value"] is not None]),
                   **{verdict: sum(c["verdict"] == verdict for c in all_of) for verdict in ("pass", "warn", "refuse")}}
            for name, all_of in found.items()}


def numbers(modules):
    found = grouped(((name, plane), number) for fields in modules for name, value in fields["numbers"].items()
                    for plane, number in (value.items() if isinstance(value, dict) else [(None, value)]))
    values = {name: [number for number in of if number is not None] for name, of in found.items()}
    return {name: {"modules": len(of), **distribution(of)} for name, of in values.items() if of}


def nodes(modules, colour):
    """The gains of each node."""
    return list(zip(*[fields["gains"][colour] for fields in modules if fields["gains"]]))


def centres(modules, colour, axis):
    return [fields["optical_centre"][colour][axis] for fields in modules if fields["optical_centre"]]


def serial_number(serial):
    digits = "".join(c if c in "0123456789" else " " for c in serial).split()
    return int(digits[-1][-18:]) if digits else None


def blocks(modules):
    numbered = [(serial_number(fields["serial"]), fields) for fields in modules]
    numbered = [pair for pair in numbered if pair[0] is not None]
    first, last = min(n for n, _ in numbered), max(n for n, _ in numbered)
    shift = next(s for s in itertools.count() if (last >> s) - (first >> s) < 64)
    return shift, dict(sorted(grouped((number >> shift, fields) for number, fields in numbered).items()))


def trend(points):
    """Change by the median slope, and the statistic of Mann and Kendall with its correction for equal values."""
    if len(points) < 5:
        return 0, 0
    pairs = list(itertools.combinations(points, 2))
    slope = middle([(b[1] - a[1]) / (b[0] - a[0]) for a, b in pairs])
    total = sum((b[1] > a[1]) - (b[1] < a[1]) for a, b in pairs)
    values = [value for _, value in points]
    terms = [len(values)] + [-values.count(value) for value in set(values)]
    variance = sum(math.copysign(abs(n) * (abs(n) - 1) * (2 * abs(n) + 5), n) for n in terms) / 18
    corrected = total - (total > 0) + (total < 0)
    return slope * (points[-1][0] - points[0][0]), corrected / math.sqrt(variance) if variance else 0


def series(modules, line):
    def corners(colour):
        def of(fields):
            rows, right, bottom = fields["gains"], line.columns - 2, line.rows - 2
            four = [rows[colour][j * line.columns + i] for j in (1, bottom) for i in (1, right)]
            return (sum(four) + 2) // 4 / 1024
        return lambda block: [of(fields) for fields in block if fields["gains"]]
    def centre(axis):
        return lambda block: [round(sum(p[axis] for p in fields["optical_centre"].values()) / 4, 6)
                              for fields in block if fields["optical_centre"]]
    shift, found = blocks(modules)
    wanted = [("corner gain", colour, corners(colour)) for colour in COLOURS]
    wanted += [("optical centre x", None, centre(0)), ("optical centre y", None, centre(1))]
    wanted += [("yield", None, lambda block: [sum(f["verdict"] in GOOD for f in block) / len(block)])]
    for name, plane, values_of in wanted:
        values = [(place, values_of(block)) for place, block in found.items()]
        medians = [(place, middle(of)) for place, of in values if of]
        yield name, plane, [middle(of) if of else None for _, of in values], trend(medians)


def judged(modules, line):
    """Each module with gains: how far it is off, and the words for what is out of place."""
    typical = {c: [(middle(node), max(robust(node), middle(node) / 512, 1)) for node in nodes(modules, c)]
               for c in COLOURS}
    inner = [j * line.columns + i for j in range(1, line.rows - 1) for i in range(1, line.columns - 1)]
    for fields in modules:
        if not fields["gains"]:
            continue
        squares, severity, words = 0, 0, []
        for colour in COLOURS:
            off = [abs(fields["gains"][colour][k] - typical[colour][k][0]) / typical[colour][k][1] for k in inner]
            mean = math.sqrt(sum(d * d for d in off) / len(off))
            squares += mean * mean / 4
            if mean > 3.5:
                severity = max(severity, mean / 3.5)
                words.append(f"gains of {colour}")
            elif max(off) > 7:
                severity = max(severity, max(off) / 7)
                k = inner[off.index(max(off))]
                words.append(f"one gain of {colour}")
                words.append(f"node {k % line.columns - 1},{k // line.columns - 1}")
        for colour, axis in itertools.product(COLOURS, (0, 1)):
            values = centres(modules, colour, axis)
            off = abs(fields["optical_centre"][colour][axis] - middle(values)) / max(robust(values), 0.0005)
            if off > 3.5:
                severity = max(severity, off / 3.5)
                words.append(f"optical centre of {colour}")
        yield {"serial": fields["serial"], "verdict": fields["verdict"], "distance": math.sqrt(squares),
               "severity": severity, "words": words}


# The comparison.

def same(told, expected, what=""):
    """All that is expected stands there: fractions in their four digits, the rest as it is."""
    if isinstance(expected, dict):
        for key, value in expected.items():
            same(told[key], value, f"{what} {key}")
    elif isinstance(expected, (list, tuple)):
        assert len(told) == len(expected), (what, told, expected)
        for k, (one, other) in enumerate(zip(told, expected)):
            same(one, other, f"{what} {k}")
    elif isinstance(expected, float):
        assert abs(told - expected) < 5.1e-5 * max(1, abs(expected) / 100), (what, told, expected)
    else:
        assert told == expected, (what, told, expected)


def expected_counts(modules):
    verdicts = [fields["verdict"] for fields in modules]
    return {"modules": len(modules), "verdicts": {v: verdicts.count(v) for v in ("pass", "warn", "refuse", "fail", "error")},
            "yield": sum(v in GOOD for v in verdicts) / len(verdicts), "settings": 1,
            "left_out": dict.fromkeys(("torn", "bad", "repeated", "other_kind"), 0)}


def expected_tables(modules, line):
    """The statistics of each colour's gains, and of those within the border."""
    def rows(values):
        return [values[at:at + line.columns] for at in range(0, len(values), line.columns)]
    found = {"channels": [], "tables": []}
    for colour in COLOURS:
        gains = nodes(modules, colour)
        inner = {(i - 1, j - 1): gains[j * line.columns + i] for j in range(1, line.rows - 1)
                 for i in range(1, line.columns - 1)}
        spreads = {place: robust(of) / middle(of) for place, of in inner.items()}
        widest = max(spreads, key=spreads.get)
        found["channels"].append({"colour": colour, "widest_spread": spreads[widest], "widest_at": widest,
                                  "usual_spread": sorted(spreads.values())[len(spreads) // 2],
                                  "largest_gain": max(whole_middle(of) for of in inner.values()) / 1024})
        found["tables"].append({"colour": colour, **{name: rows([of(values) for values in gains]) for name, of in (
            ("median", middle), ("mean", statistics.mean), ("deviation", statistics.stdev))}})
    return found


def expected_golden(told, modules):
    """The medians as whole gains, plane by plane."""
    blacks = zip(*[fields["frame"]["black_level"] for fields in modules if fields["gains"]])
    medians = {table["colour"]: table["median"] for table in told["tables"]}
    return {"bayer_pattern": "GBRG", "parameters": {"filter_radius": 6, "average": "median"},
            "inputs": [{"role": "lot", "name": f"{sum(fields['gains'] is not None for fields in modules)} modules", "checks": []}],
            "black_level": [*map(whole_middle, blacks)],
            "tables": [{"colour": colour, "gains": [[math.floor(gain + 0.5) for gain in row] for row in medians[colour]]}
                       for colour in ("Gb", "B", "R", "Gr")]}


def expected_centres(modules):
    def statistics_of(values):
        return {"median": middle(values), "mean": statistics.mean(values), "deviation": statistics.stdev(values)}
    def correlation(one, other):
        return {name: statistics.correlation(centres(modules, one, axis), centres(modules, other, axis))
                for axis, name in enumerate("xy")}
    return {"optical_centre": {
        "modules": sum(fields["optical_centre"] is not None for fields in modules),
        "channels": [{"colour": colour, **{name: statistics_of(centres(modules, colour, axis)) for axis, name in enumerate("xy")}}
                     for colour in COLOURS],
        "correlation": [{"colours": pair, **correlation(*pair)} for pair in itertools.combinations(COLOURS, 2)]}}


def expected_sequence(modules, line):
    shift, found = blocks(modules)
    return {"sequence": {
        "serials_in_a_block": 2 ** shift, "first_serials": [place << shift for place in found],
        "modules": [len(block) for block in found.values()],
        "series": [{"name": name, "plane": plane, "blocks": medians, "change": change, "significance": significance,
                    "drifts": abs(significance) > 3}
                   for name, plane, medians, (change, significance) in series(modules, line)]}}


def compare_costs(told, modules):
    assert {c["cause"]: (c["lost"], c["lost_alone"]) for c in told["costs"]} == costs(modules)
    lost = [c["lost"] for c in told["costs"]]
    assert lost == sorted(lost, reverse=True) and {"shadow", "dust", "noise", "fail", "error"} == set(costs(modules))
    for part, expected in (("checks", checks(modules)), ("numbers", numbers(modules))):
        assert len(told[part]) == len(expected)
        for entry in told[part]:
            assert entry.items() >= expected[entry["name"], entry["plane"]].items(), (part, entry, expected)


def compare_histograms(told, modules):
    for entry in told["histograms"]:
        bars = len(entry["pass"])
        for verdict in ("pass", "warn", "refuse"):
            values = [c["value"] for fields in modules for c in fields["checks"]
                      if (c["name"], c["verdict"]) == (entry["name"], verdict) and c["value"] is not None]
            places = [min(max(math.floor((value - entry["from"]) / entry["width"] + 1e-6), 0), bars - 1) for value in values]
            assert entry[verdict] == [places.count(bar) for bar in range(bars)], entry
        together = [a + b + c for a, b, c in zip(entry["pass"], entry["warn"], entry["refuse"])]
        assert (1 < bars <= 41 and together[0] > 0 and together[-1] > 0) == (entry["name"] != "home-made"), entry


def compare_distances(told, modules, line):
    places = list(judged(modules, line))
    nearest = min((place for place in places if place["verdict"] in GOOD), key=lambda p: (p["distance"], p["serial"]))
    same(told["nearest"], {key: nearest[key] for key in ("serial", "verdict", "distance")}, "nearest")
    outliers = sorted((place for place in places if place["severity"] > 0), key=lambda p: (-p["severity"], p["serial"]))
    words = [place.pop("words") for place in outliers]
    same(told["outliers"], {"count": len(outliers), "listed": outliers}, "outliers")
    reasons = [entry["reason"] for entry in told["outliers"]["listed"]]
    for reason, expected in zip(reasons, words):
        assert all(word in reason for word in expected), (reason, expected)
        assert reason.count(";") == sum("node" not in word for word in expected) - 1, (reason, expected)
    assert any("gains of B" in r for r in reasons) and any("one gain of Gr" in r and "node 3,2" in r for r in reasons)
    assert any(r.startswith("optical centre of Gb") and ";" not in r for r in reasons), reasons


def compare_text(told, text, line):
    """The text has the numbers of the document, in its order."""
    def percent(fraction):
        return f"{100 * fraction:.2f} %"
    first = told["sequence"]["first_serials"][0]
    correlation, pair = min((pair[axis], pair["colours"]) for pair in told["optical_centre"]["correlation"] for axis in "xy")
    parts = [[f"{line.width} x {line.height} GBRG, 10 bits, orvel, step 64, radius 6, shading 95 %, tables of {line.columns} x {line.rows}"],
             [f"{told['modules']} modules, yield {percent(told['yield'])}: "
              + ", ".join(f"{number} {verdict}" for verdict, number in told["verdicts"].items())],
             ["lost by", "modules", "of all", "by it alone"],
             *([c["cause"], f"{c['lost']}", percent(c["lost"] / told["modules"]), f"{c['lost_alone']}"] for c in told["costs"]),
             [None, "largest median", "usual spread", "widest", "at node"],
             *([c["colour"], c["largest_gain"], c["usual_spread"], c["widest_spread"], ",".join(map(str, c["widest_at"]))]
               for c in told["channels"]),
             ["optical centre", "x", "deviation", "y", "deviation"],
             *([c["colour"], c["x"]["median"], c["x"]["deviation"], c["y"]["median"], c["y"]["deviation"]]
               for c in told["optical_centre"]["channels"]),
             [f"correlation of the centres between channels: {correlation:.3f} or more, least for {pair[0]} and {pair[1]}"],
             [f"over serial numbers from {first} on, in {len(told['sequence']['modules'])} blocks of {told['sequence']['serials_in_a_block']}:"]]
    lines = [re.split(" {2,}", row) for row in text.split("\n") if row]
    for row, expected in zip(lines, parts):
        assert len(row) == len(expected), (row, expected)
        for cell, value in zip(row, expected):
            if isinstance(value, float):
                number = float(cell.removesuffix(" %")) / (100 if cell.endswith(" %") else 1)
                assert abs(number - value) < (1.1e-4 if cell.endswith(" %") else 5.6e-4), (row, expected)
            else:
                assert value in (None, cell), (row, expected)
    nearest = told["nearest"]
    assert f"\nnearest to the golden tables: {nearest['serial']}, {nearest['distance']:.2f} deviations\n" in text, text
    for entry in told["outliers"]["listed"][:10]:
        assert f"\n  {entry['serial']} ({entry['verdict']}): {entry['reason']}\n" in text, entry


def compare_maps(tool, page, modules, line):
    """The page shows the median gain, and how far the gains of each node lie apart in percent of their median."""
    maps = json.loads(re.search('id="map-data">(.*?)</script>', page, re.S)[1])
    width, height, fields = 316, int(316 / line.width * line.height), []
    for colour in COLOURS:
        spreads = [100 * robust(of) / middle(of) for of in nodes(modules, colour)]
        def at(u, v):
            i, j = int(u), int(v)
            row = [spreads[(j + k) * line.columns + i] * (1 - u + i) + spreads[(j + k) * line.columns + i + 1] * (u - i) for k in (0, 1)]
            return row[0] * (1 - v + j) + row[1] * (v - j)
        fields.append([[at((x + 0.5) * (line.width // 2) / width / 64 + 1, (y + 0.5) * (line.height // 2) / height / 64 + 1)
                        for x in range(width)] for y in range(height)])
    every = sorted(value for field in fields for values in field for value in values)
    end = min(end for end in (1, 2, 5, 10, 20, 50, 100) if every[len(every) * 99 // 100] <= end)
    beyond = 100 * sum(value > end for value in every) / len(every)
    assert [row["title"] for row in maps] == ["median gain", "spread of the gains: robust deviation, percent of the median"
                                              f"; {beyond:.2f} % of the area is beyond the scale"]
    assert maps[1]["labels"] == [f"{end * k / 4:.2f} %" for k in range(5)], maps[1]["labels"]
    def picture(uri):
        return read_png(tool.folder / tool.write("map.png", base64.b64decode(uri.split(",")[1])))
    [scale] = picture(maps[1]["scale"])
    for colour, field, panel in zip(COLOURS, fields, maps[1]["panels"], strict=True):
        values = [value for row in field for value in row]
        assert panel["caption"] == f"{colour}  {min(values):.2f} % to {max(values):.2f} %", panel["caption"]
        for shown, row in zip(picture(panel["image"]), field, strict=True):
            for pixel, value in zip(shown, row, strict=True):
                assert max(abs(a - b) for a, b in zip(pixel, scale[min(int(256 * value / end), 255)])) <= 2, (colour, pixel, value)


def lines_of(modules):
    return "".join(map(text_of, modules))


def made_of(tool, *files, results=()):
    """The bytes of all that is made of a lot."""
    again = ["--results", *results] if results else []
    document = tool.run("lot", *files, *again, "--json", "--golden", "golden.json", "-o", "lot.html").stdout
    return document, tool.run("lot", *files, *again).stdout, tool.read("golden.json"), tool.read("lot.html")


def check_numbers(tool, line, modules):
    tool.write("all.jsonl", lines_of(modules))
    told = tool.document("lot", "all.jsonl", "--golden", "golden.json")
    for expected in (expected_counts(modules), expected_tables(modules, line), expected_centres(modules),
                     expected_sequence(modules, line)):
        same(told, expected)
    assert len(modules) > 100 and all(told["verdicts"].values()), told["verdicts"]
    same(json.loads(tool.read("golden.json")), expected_golden(told, modules))
    compare_costs(told, modules)
    compare_histograms(told, modules)
    compare_distances(told, modules, line)
    text = tool.run("lot", "all.jsonl").stdout
    compare_text(told, text, line)
    drifts = [(entry["name"], entry["plane"], entry["change"]) for entry in told["sequence"]["series"] if entry["drifts"]]
    assert {("optical centre x", None), ("corner gain", "B")} <= {drift[:2] for drift in drifts}, drifts
    for name, plane, change in drifts:
        assert f"\n  {name}{' of ' + plane if plane else ''} drifts by {change:+.4f} (" in text, (name, plane, change, text)
    page = tool.run("lot", "all.jsonl", "-o", "-").stdout
    assert "\\u003cb>76" in page and "<b>76" not in page
    compare_maps(tool, page, modules, line)
    # What was made here is what the other commands take.
    tool.run("simulate", "--width", "640", "--height", "482", "--pattern", "GBRG", "-o", "flat.pgm", "--quiet")
    tool.run("calibrate", "flat.pgm", "--step", "64", "--radius", "6", "--shading", "95", "--relative-to", "golden.json",
             "-o", "ratio.json", "--quiet")
    checked = tool.document("check", "flat.pgm", "--reference", "golden.json", "--limit", "reference=10,none")
    assert {"reference", "orientation"} <= {check["name"] for check in checked["checks"]}


def check_parts(tool, _, modules):
    """Any order of the modules, in any number of files, merged in any grouping."""
    chance = random.Random(3)
    texts = [text_of(fields) for fields in modules]
    one = made_of(tool, tool.write("one.jsonl", "".join(texts)))
    tool.run("lot", "one.jsonl", "--partial", "one.lot")
    for round_ in range(4):
        chance.shuffle(texts)
        cuts = sorted(chance.sample(range(1, len(texts)), 5))
        shards = [tool.write(f"{round_}.{k}.jsonl", "".join(texts[a:b]))
                  for k, (a, b) in enumerate(zip([0, *cuts], [*cuts, len(texts)]))]
        assert made_of(tool, *shards) == one
        parts = []
        for shard in shards:
            parts.append(shard.replace("jsonl", "lot"))
            tool.run("lot", shard, "--partial", parts[-1])
        chance.shuffle(parts)
        assert made_of(tool, *parts, results=shards) == one
        tool.run("lot", *parts[:2], "--partial", "pair.lot")
        tool.run("lot", *parts[2:4], shards[0] if parts[4].startswith(f"{round_}.0") else parts[4], "--partial", "three.lot")
        assert made_of(tool, "pair.lot", parts[5], "three.lot", results=["one.jsonl"]) == one
        tool.run("lot", parts[5], "three.lot", "pair.lot", "--partial", "all.lot")
        assert tool.read("all.lot") == tool.read("one.lot")
    # Without the results, all else is the same.
    assert {**json.loads(one[0]), "nearest": None, "outliers": None} == tool.document("lot", "one.lot")
    missing = tool.run("lot", "one.lot", "--results", *shards[1:], code=3).stderr
    assert f"of the {len(modules)} modules are in the result files" in missing, missing
    twice = tool.run("lot", "pair.lot", "all.lot", code=3).stderr
    assert "serials that were there before" in twice, twice


def check_texts(tool, _, modules):
    """What is said of few outliers and of many, without an optical centre; of equal ones, the first serials are listed."""
    good = next(fields for fields in modules if fields["verdict"] == "pass" and fields["gains"])
    far = {**good, "gains": {**good["gains"], "B": [2 * gain for gain in good["gains"]["B"]]}}
    for spoilt, said in ((0, "0 outliers\n"), (1, "1 outlier:\n"), (12, "and 2 more;"), (230, "and 220 more; the document of --json and the page list 200")):
        lot = [{**(far if k < spoilt else good), "serial": f"S{k}", "optical_centre": None} for k in range(700)]
        done = tool.run("lot", tool.write("some.jsonl", lines_of(lot)))
        assert said in done.stdout and "optical centre" not in done.stdout, done.stdout
    told = tool.document("lot", "some.jsonl")
    assert [entry["serial"] for entry in told["outliers"]["listed"]] == sorted(f"S{k}" for k in range(spoilt))[:200]
    assert told["optical_centre"]["channels"] == [] and told["modules"] == 700
    # Through a pipe, and of serials without a number.
    tool.run("lot", "some.jsonl", "--partial", "some.lot")
    assert tool.call("lot", "-", "--partial", "piped.lot", input=lines_of(lot)).returncode == 0
    assert tool.read("piped.lot") == tool.read("some.lot")
    for serial in "ab":
        tool.run("lot", tool.write(serial, text_of({**good, "serial": serial})), "--partial", serial + ".lot")
    assert tool.document("lot", "a.lot", "b.lot")["sequence"]["modules"] == []
    # A line that no result can have, and one without an end.
    with open(tool.folder / "long.jsonl", "wb") as file:
        for serial in "S1", "S2":
            file.write(text_of({**good, "serial": serial}).encode())
            file.seek((1 << 26) + (2 << 20), 1)
            file.write(b"\n" if serial == "S1" else b"x" * (1 << 20))
    told = tool.run("lot", "long.jsonl", "--json", code=3)
    assert "long.jsonl:2: is longer than any result" in told.stderr, told.stderr
    assert (json.loads(told.stdout)["modules"], json.loads(told.stdout)["left_out"]) == (2, {"torn": 1, "bad": 1, "repeated": 0, "other_kind": 0})


def check_left_out(tool, _, modules):
    """Lines that count for nothing are said and counted, and change nothing else; nine modules are too few for outliers."""
    for count in (9, 10):
        text = tool.run("lot", tool.write("few.jsonl", lines_of(modules[:count]))).stdout
        assert ("outliers are told in lots of 10" in text) == (count < 10), text
    texts = [text_of(fields) for fields in modules[:40]]
    clean = tool.document("lot", tool.write("clean.jsonl", "".join(texts)))
    other = Line(9, width=512, height=482, step=64).module(77777)
    no_frame = {**modules[0], "serial": "bad 1", "frame": None}
    bad = ["\n", "{}\n", text_of(no_frame), "not JSON\n", texts[3].replace('"version":1', '"version":2'),
           texts[4].replace('"serial":"M', '"serial":"X').replace('"gains":{"R":"', '"gains":{"R":"AAAA')]
    spoilt = [*texts[:20], *bad, texts[5], text_of(other), *texts[20:], texts[7], texts[39][:-300]]
    tool.write("spoilt.jsonl", "".join(spoilt))
    done = tool.run("lot", "spoilt.jsonl", "--json", "--golden", "spoilt.json", code=3)
    told = json.loads(done.stdout)
    assert told["left_out"] == {"torn": 1, "bad": len(bad), "repeated": 2, "other_kind": 1}, told["left_out"]
    frame = {"verdict": None, "exit_code": None, "message": None, "left_out": None}
    assert {**told, **frame} == {**clean, **frame}
    said = [message.removeprefix("warning: ") for message in done.stderr.splitlines()]
    assert len(said) == len(bad) + 5, said
    for number, words in ((21, "JSON"), (22, "format"), (23, "neither frame nor grid"), (24, "JSON"), (25, "version 2"),
                          (26, "gains"), (27, f"serial {modules[5]['serial']}"), (28, "M0077777-K"),
                          (49, modules[7]["serial"]), (50, "torn")):
        assert any(message.startswith(f"spoilt.jsonl:{number}:") and words in message for message in said), (number, said)
    tool.run("lot", "spoilt.jsonl", "--partial", "spoilt.lot", code=3)
    assert tool.run("lot", "spoilt.lot", "--results", "spoilt.jsonl", "--json", code=3).stdout == done.stdout
    # A whole last line without its end counts; one million equal complaints are not all said.
    tool.write("whole.jsonl", "".join(texts)[:-1])
    assert tool.document("lot", "whole.jsonl") == clean
    tool.write("many.jsonl", texts[0] + "x\n" * 1000)
    assert len(tool.run("lot", "many.jsonl", code=3).stderr.splitlines()) == 22


def check_refusals(tool, _, modules):
    tool.write("one.jsonl", lines_of(modules[:30]))
    tool.run("lot", "one.jsonl", "--partial", "one.lot")
    summary = tool.read("one.lot")
    tool.write("short.lot", summary[:-1])
    tool.write("changed.lot", summary[:200] + b"?" + summary[201:])
    tool.write("later.lot", summary.replace(b'"version":1', b'"version":2'))
    tool.write("empty.jsonl", "")
    tool.write("other.jsonl", text_of(Line(9, width=512, height=482).module(1)))
    tool.run("lot", "other.jsonl", "--partial", "other.lot")
    errors = [fields for fields in modules if fields["verdict"] == "error"]
    tool.write("errors.jsonl", lines_of(errors))
    for words, code, said in (
            (["short.lot"], 3, "short.lot: is a damaged summary"), (["changed.lot"], 3, "damaged"),
            (["later.lot"], 3, "another version"), (["empty.jsonl"], 3, "holds no result"),
            (["one.lot", "other.lot"], 3, "other.lot: holds modules of another kind"),
            (["none.jsonl"], 4, "none.jsonl: cannot be read"), (["-"], 2, "--partial"),
            (["one.jsonl", "-o", "page.txt"], 2, ".html"), (["one.jsonl", "--golden", "one.jsonl"], 2, "one.jsonl"),
            (["one.lot", "--results", "one.jsonl", "--golden", "one.jsonl"], 2, "one.jsonl"),
            (["one.jsonl", "--partial", "no/where.lot"], 4, "no/where.lot"),
            (["errors.jsonl", "--golden", "none.json"], 3, "no golden tables")):
        done = tool.run("lot", *words, code=code)
        assert said in done.stderr and len(done.stderr.splitlines()) == 1, (words, done.stderr)
    told = tool.document("lot", "errors.jsonl")
    assert told["modules"] == len(errors) and told["tables"] == [] and told["yield"] == 0
    assert not (tool.folder / "none.json").exists()


def main():
    options = options_with_tool(__doc__).parse_args()
    for check in (check_numbers, check_parts, check_texts, check_left_out, check_refusals):
        with in_a_folder(options.tool) as tool:
            check(tool, *results())


if __name__ == "__main__":
    main()
