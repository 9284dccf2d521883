#!/usr/bin/env python3
"""Compares what `zerklsc lot` says of simulated results with a model that holds them all, and lots that are merged from
summaries of their parts with the lot that was read as one.

  lot.py --tool build/release/tool/zerklsc
"""
import argparse
import itertools
import json
import math
import pathlib
import random
import statistics
import subprocess
import sys
import tempfile

from result_lines import COLOURS, Line, text_of

MAD = 1.482602
GOOD = ("pass", "warn")


def results():
    """Modules in the order of their line: good ones, others in every way, and outliers of each kind."""
    line = Line(7, width=640, height=482, step=64)
    modules = []
    for number in range(13, 13 + 3 * 141, 3):
        fields = line.module(number)
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
    whole[23]["checks"][2]["value"] = None
    whole[29]["serial"] = "no number"
    whole[31]["serial"] = 'Ünit "9" \\ 1000000000000000000000123'
    return line, modules


# The model: what the fields of the document are.

def middle(values):
    return statistics.median(values)


def robust(values):
    return MAD * middle([abs(value - middle(values)) for value in values])


def quantile(values, fraction):
    return sorted(values)[max(math.ceil(fraction * len(values)), 1) - 1]


def distribution(values):
    places = {"smallest": 0, "percent_5": 0.05, "median": 0.5, "percent_95": 0.95, "largest": 1}
    return {name: quantile(values, fraction) if values else None for name, fraction in places.items()}


def costs(modules):
    lost, alone = {}, {}
    for fields in modules:
        if fields["verdict"] in GOOD:
            continue
        causes = {check["name"] for check in fields["checks"] if check["verdict"] == "refuse"} or {fields["verdict"]}
        for cause in causes:
            lost[cause] = lost.get(cause, 0) + 1
            alone[cause] = alone.get(cause, 0) + (len(causes) == 1)
    return {cause: (lost[cause], alone[cause]) for cause in lost}


def checks(modules):
    found = {}
    for fields in modules:
        for check in fields["checks"]:
            found.setdefault((check["name"], check["plane"]), []).append(check)
    return {name: {**distribution([c["value"] for c in all_of if c["value"] is not None]),
                   **{verdict: sum(c["verdict"] == verdict for c in all_of) for verdict in ("pass", "warn", "refuse")}}
            for name, all_of in found.items()}


def numbers(modules):
    found = {}
    for fields in modules:
        for name, value in fields["numbers"].items():
            for plane, number in (value.items() if isinstance(value, dict) else [(None, value)]):
                if number is not None:
                    found.setdefault((name, plane), []).append(number)
    return {name: {"modules": len(values), **distribution(values)} for name, values in found.items()}


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
    found = {}
    for number, fields in numbered:
        found.setdefault(number >> shift, []).append(fields)
    return shift, dict(sorted(found.items()))


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
    """Distance, severity and what is out of place of each module with gains."""
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
        yield fields["serial"], fields["verdict"], math.sqrt(squares), severity, words


# The comparison.

def near(told, expected, what):
    if expected is None or isinstance(expected, (str, list)):
        assert told == expected, (what, told, expected)
    else:
        assert abs(told - expected) < 5.1e-5 * max(1, abs(expected) / 100), (what, told, expected)


def compare_counts(told, modules):
    assert told["modules"] == len(modules) > 100
    verdicts = [fields["verdict"] for fields in modules]
    assert told["verdicts"] == {v: verdicts.count(v) for v in ("pass", "warn", "refuse", "fail", "error")}
    assert all(told["verdicts"].values()), told["verdicts"]
    near(told["yield"], sum(v in GOOD for v in verdicts) / len(verdicts), "yield")
    assert {c["cause"]: (c["lost"], c["lost_alone"]) for c in told["costs"]} == costs(modules)
    lost = [c["lost"] for c in told["costs"]]
    assert lost == sorted(lost, reverse=True) and {"shadow", "dust", "noise", "fail", "error"} == set(costs(modules))
    for part, expected in (("checks", checks(modules)), ("numbers", numbers(modules))):
        assert len(told[part]) == len(expected)
        for entry in told[part]:
            for name, value in expected[entry["name"], entry["plane"]].items():
                assert entry[name] == value, (part, entry["name"], name, entry[name], value)


def compare_histograms(told, modules):
    for entry in told["histograms"]:
        values = {verdict: [c["value"] for fields in modules for c in fields["checks"]
                            if (c["name"], c["verdict"]) == (entry["name"], verdict) and c["value"] is not None]
                  for verdict in ("pass", "warn", "refuse")}
        bars = len(entry["pass"])
        for verdict, of in values.items():
            expected = [0] * bars
            for value in of:
                expected[min(max(math.floor((value - entry["from"]) / entry["width"] + 1e-6), 0), bars - 1)] += 1
            assert entry[verdict] == expected, (entry, expected)
        together = [a + b + c for a, b, c in zip(entry["pass"], entry["warn"], entry["refuse"])]
        assert 1 < bars <= 41 and together[0] > 0 and together[-1] > 0, entry


def compare_tables(told, golden, modules, line):
    for c, colour in enumerate(COLOURS):
        gains = nodes(modules, colour)
        table = told["tables"][c]
        plane = next(t for t in golden["tables"] if t["colour"] == colour)
        for name, of in (("median", middle), ("mean", statistics.mean), ("deviation", statistics.stdev)):
            rows = [value for row in table[name] for value in row]
            assert len(table[name]) == line.rows and len(rows) == len(gains)
            for k, value in enumerate(rows):
                near(value, of(gains[k]), (name, colour, k))
        assert [gain for row in plane["gains"] for gain in row] == [math.floor(middle(g) + 0.5) for g in gains]
        inner = {(i - 1, j - 1): gains[j * line.columns + i] for j in range(1, line.rows - 1)
                 for i in range(1, line.columns - 1)}
        spreads = {place: robust(of) / middle(of) for place, of in inner.items()}
        channel = told["channels"][c]
        near(channel["widest_spread"], max(spreads.values()), "widest")
        assert spreads[tuple(channel["widest_at"])] == max(spreads.values())
        near(channel["usual_spread"], sorted(spreads.values())[len(spreads) // 2], "usual")
        near(channel["largest_gain"], max(math.floor(middle(g) + 0.5) for g in inner.values()) / 1024, "largest")
    assert golden["bayer_pattern"] == "GBRG" and golden["parameters"]["filter_radius"] == 6
    blacks = zip(*[fields["frame"]["black_level"] for fields in modules if fields["gains"]])
    assert golden["black_level"] == [math.floor(middle(level) + 0.5) for level in blacks]


def compare_centres(told, modules):
    assert told["optical_centre"]["modules"] == sum(fields["optical_centre"] is not None for fields in modules)
    for entry in told["optical_centre"]["channels"]:
        for axis, name in enumerate("xy"):
            values = centres(modules, entry["colour"], axis)
            for word, of in (("median", middle), ("mean", statistics.mean), ("deviation", statistics.stdev)):
                near(entry[name][word], of(values), (entry["colour"], name, word))
    pairs = list(itertools.combinations(COLOURS, 2))
    assert [tuple(entry["colours"]) for entry in told["optical_centre"]["correlation"]] == pairs
    for entry in told["optical_centre"]["correlation"]:
        for axis, name in enumerate("xy"):
            columns = [centres(modules, colour, axis) for colour in entry["colours"]]
            near(entry[name], statistics.correlation(*columns), entry)


def compare_sequence(told, modules, line):
    shift, found = blocks(modules)
    assert told["sequence"]["serials_in_a_block"] == 2 ** shift
    assert told["sequence"]["first_serials"] == [place << shift for place in found]
    assert told["sequence"]["modules"] == [len(block) for block in found.values()]
    expected = list(series(modules, line))
    assert len(expected) == len(told["sequence"]["series"])
    for entry, (name, plane, medians, (change, significance)) in zip(told["sequence"]["series"], expected):
        assert (entry["name"], entry["plane"]) == (name, plane)
        for value, median in zip(entry["blocks"], medians, strict=True):
            near(value, median, (name, plane)) if value is not None else near(median, None, (name, plane))
        near(entry["significance"], significance, (name, plane))
        near(entry["change"], change, (name, plane))
        assert entry["drifts"] == (abs(significance) > 3), entry


def compare_distances(told, modules, line):
    expected = {serial: rest for serial, *rest in judged(modules, line)}
    serial, (_, distance, *_) = min(((s, r) for s, r in expected.items() if r[0] in GOOD), key=lambda x: (x[1][1], x[0]))
    assert told["nearest"]["serial"] == serial
    near(told["nearest"]["distance"], distance, "nearest")
    outliers = {s: r for s, r in expected.items() if r[2] > 0}
    listed = told["outliers"]["listed"]
    assert told["outliers"]["count"] == len(listed) == len(outliers), (listed, outliers)
    assert [o["serial"] for o in listed] == sorted(outliers, key=lambda s: (-outliers[s][2], s))
    for entry in listed:
        verdict, distance, severity, words = outliers[entry["serial"]]
        assert entry["verdict"] == verdict and all(word in entry["reason"] for word in words), (entry, words)
        assert entry["reason"].count(";") == sum("node" not in word for word in words) - 1, (entry, words)
        near(entry["distance"], distance, entry)
        near(entry["severity"], severity, entry)
    reasons = [entry["reason"] for entry in listed]
    assert any("gains of B" in r for r in reasons) and any("one gain of Gr" in r and "node 3,2" in r for r in reasons)
    assert any(r.startswith("optical centre of Gb") and ";" not in r for r in reasons), reasons


class Tool:
    def __init__(self, tool, directory):
        self.tool, self.directory = tool, pathlib.Path(directory)

    def run(self, *words, code=0):
        done = subprocess.run([self.tool, *words], cwd=self.directory, capture_output=True, text=True, check=False)
        assert done.returncode == code, (words, done)
        return done

    def write(self, name, lines):
        pathlib.Path(self.directory, name).write_text("".join(lines), encoding="utf-8")
        return name

    def read(self, name):
        return pathlib.Path(self.directory, name).read_bytes()

    def whole(self, *files, results=(), code=0):
        """The bytes of all that is made of a lot."""
        again = ["--results", *results] if results else []
        done = self.run("lot", *files, *again, "--json", "--golden", "golden.json", "-o", "lot.html", code=code)
        text = self.run("lot", *files, *again, code=code).stdout
        return done.stdout, text, self.read("golden.json"), self.read("lot.html")


def check_numbers(tool, line, modules):
    tool.write("all.jsonl", map(text_of, modules))
    told = json.loads(tool.run("lot", "all.jsonl", "--golden", "golden.json", "--json").stdout)
    golden = json.loads(tool.read("golden.json"))
    compare_counts(told, modules)
    compare_histograms(told, modules)
    compare_tables(told, golden, modules, line)
    compare_centres(told, modules)
    compare_sequence(told, modules, line)
    compare_distances(told, modules, line)
    assert not any(told["left_out"].values()) and told["settings"] == 1
    # What was made here is what the other commands take.
    tool.run("simulate", "--width", "640", "--height", "482", "--pattern", "GBRG", "-o", "flat.pgm", "--quiet")
    tool.run("calibrate", "flat.pgm", "--step", "64", "--radius", "6", "--shading", "95", "--relative-to", "golden.json",
             "-o", "ratio.json", "--quiet")
    checked = json.loads(tool.run("check", "flat.pgm", "--reference", "golden.json", "--json",
                                  "--limit", "reference=10,none").stdout)
    assert {"reference", "orientation"} <= {check["name"] for check in checked["checks"]}


def check_parts(tool, modules):
    """Any order of the modules, in any number of files, merged in any grouping."""
    chance = random.Random(3)
    texts = [text_of(fields) for fields in modules]
    one = tool.whole(tool.write("one.jsonl", texts))
    tool.run("lot", "one.jsonl", "--partial", "one.lot")
    for round_ in range(4):
        chance.shuffle(texts)
        cuts = sorted(chance.sample(range(1, len(texts)), 5))
        shards = [tool.write(f"{round_}.{k}.jsonl", texts[a:b])
                  for k, (a, b) in enumerate(zip([0, *cuts], [*cuts, len(texts)]))]
        assert tool.whole(*shards) == one
        parts = []
        for shard in shards:
            parts.append(shard.replace("jsonl", "lot"))
            tool.run("lot", shard, "--partial", parts[-1])
        chance.shuffle(parts)
        assert tool.whole(*parts, results=shards) == one
        tool.run("lot", *parts[:2], "--partial", "pair.lot")
        tool.run("lot", *parts[2:4], shards[0] if parts[4].startswith(f"{round_}.0") else parts[4], "--partial", "three.lot")
        assert tool.whole("pair.lot", parts[5], "three.lot", results=["one.jsonl"]) == one
        tool.run("lot", parts[5], "three.lot", "pair.lot", "--partial", "all.lot")
        assert tool.read("all.lot") == tool.read("one.lot")
    # Without the results, all else is the same.
    without = json.loads(tool.run("lot", "one.lot", "--json").stdout)
    assert {**json.loads(one[0]), "nearest": None, "outliers": None} == without
    missing = tool.run("lot", "one.lot", "--results", *shards[1:], code=3).stderr
    assert f"of the {len(modules)} modules are in the result files" in missing, missing
    twice = tool.run("lot", "pair.lot", "all.lot", code=3).stderr
    assert "serials that were there before" in twice, twice


def check_left_out(tool, line, modules):
    """Lines that count for nothing are said and counted, and change nothing else."""
    texts = [text_of(fields) for fields in modules[:40]]
    clean = json.loads(tool.run("lot", tool.write("clean.jsonl", texts), "--json").stdout)
    other = Line(9, width=512, height=482, step=64).module(77777)
    no_frame = {**modules[0], "serial": "bad 1", "frame": None}
    bad = ["\n", "{}\n", text_of(no_frame), "not JSON\n", texts[3].replace('"version":1', '"version":2'),
           texts[4].replace('"serial":"M', '"serial":"X').replace('"gains":{"R":"', '"gains":{"R":"AAAA')]
    spoilt = [*texts[:20], *bad, texts[5], text_of(other), *texts[20:], texts[7], texts[39][:-300]]
    tool.write("spoilt.jsonl", spoilt)
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
    merged = tool.run("lot", "spoilt.lot", "--results", "spoilt.jsonl", "--json", code=3)
    assert merged.stdout == done.stdout
    # A whole last line without its end counts; one million equal complaints are not all said.
    tool.write("whole.jsonl", ["".join(texts)[:-1]])
    assert json.loads(tool.run("lot", "whole.jsonl", "--json").stdout) == clean
    tool.write("many.jsonl", [texts[0], *["x\n"] * 1000])
    assert len(tool.run("lot", "many.jsonl", code=3).stderr.splitlines()) == 22


def check_refusals(tool, modules):
    tool.write("one.jsonl", map(text_of, modules[:30]))
    tool.run("lot", "one.jsonl", "--partial", "one.lot")
    bytes_ = tool.read("one.lot")
    for name, spoilt in (("short.lot", bytes_[:-1]), ("changed.lot", bytes_[:200] + b"?" + bytes_[201:]),
                         ("later.lot", bytes_.replace(b'"version":1', b'"version":2'))):
        pathlib.Path(tool.directory, name).write_bytes(spoilt)
    tool.write("empty.jsonl", [])
    tool.write("other.jsonl", [text_of(Line(9, width=512, height=482).module(1))])
    tool.run("lot", "other.jsonl", "--partial", "other.lot")
    errors = [m for m in modules if m["verdict"] == "error"]
    tool.write("errors.jsonl", map(text_of, errors))
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
    told = json.loads(tool.run("lot", "errors.jsonl", "--json").stdout)
    assert told["modules"] == len(errors) and told["tables"] == [] and told["yield"] == 0
    assert not pathlib.Path(tool.directory, "none.json").exists()


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--tool", type=lambda path: pathlib.Path(path).resolve(), required=True)
    options = parser.parse_args()
    line, modules = results()
    for check, needed in ((check_numbers, (line, modules)), (check_parts, (modules,)),
                          (check_left_out, (line, modules)), (check_refusals, (modules,))):
        with tempfile.TemporaryDirectory() as directory:
            check(Tool(options.tool, directory), *needed)


if __name__ == "__main__":
    sys.exit(main())
