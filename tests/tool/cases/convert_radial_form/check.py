"""Gains of a known radial form, 1 + sum of k_i r^(2 i + 2), as tables and as a tuning file of its own making."""
import math
import pathlib
import re
import sys

from frames import node_place, nodes_of, read_tables, write_tables

WIDTH, HEIGHT, STEP = 176, 104, 8
COLOURS = ("B", "Gb", "Gr", "R")  # by plane
# cx, cy, k0 to k4
FORMS = {"R": (0.47, 0.54, 0.9, 0.35, -0.2, 0.11, -0.03), "Gr": (0.53, 0.45, 0.7, 0.2, 0.1, -0.06, 0.02),
         "Gb": (0.51, 0.48, 0.75, 0.15, 0.12, -0.1, 0.04), "B": (0.44, 0.57, 0.5, 0.4, -0.15, 0.05, 0.01)}


def radial(form, u, v):
    cx, cy, *terms = form
    r = math.hypot((u - cx) * WIDTH, (v - cy) * HEIGHT)
    r /= max(math.hypot((x - cx) * WIDTH, (y - cy) * HEIGHT) for x in (0, 1) for y in (0, 1))
    return 1 + sum(k * r ** (2 * i + 2) for i, k in enumerate(terms))


def uneven(form, u, v):
    return radial(form, u, v) + 0.08 * u * v + 0.05 * math.sin(7 * u) * math.sin(5 * v)


def steep(form, u, v):
    return 1 + 3.2 * (radial(form, u, v) - 1)


def make_tables(name, surface):
    write_tables(name, (WIDTH, HEIGHT), STEP, "BGGR",
                 lambda p, i, j: 1024 * surface(FORMS[COLOURS[p]], *node_place(p, i, j, STEP, (WIDTH, HEIGHT))), [0] * 4)


def make():
    make_tables("round.json", radial)
    make_tables("uneven.json", uneven)
    make_tables("steep.json", steep)
    lines = ["algorithms:", "  - LensShadingCorrection:", "      type: \"polynomial\"", "      sets:", "        - ct: 4000",
             f"          resolution: {WIDTH}x{HEIGHT}"]
    for colour, (cx, cy, *terms) in FORMS.items():
        lines += [f"          {colour.lower()}:", f"            cx: {cx}", f"            cy: {cy:e}"]
        lines += [f"            k{i}: {k}" for i, k in enumerate(terms)]
    text = "\n".join(lines) + "\n"
    pathlib.Path("radial.yaml").write_text(text)
    for name, old, new in (("no_size", f"          resolution: {WIDTH}x{HEIGHT}\n", ""), ("bad_centre", "cx: 0.47", "cx: 1.47"),
                           ("bad_term", "k2: -0.2", "k2: many"), ("bad_missing", "k4: 0.02", "k5: 0.02"),
                           ("bad_type", '"polynomial"', "spline")):
        assert old in text, old
        pathlib.Path(name + ".yaml").write_text(text.replace(old, new))


def check_tables(name):
    """Directly evaluated, so that all nodes but the border are right to the last unit, beyond the frame too."""
    worst = max(abs(gain - 1024 * radial(FORMS[colour], u, v)) for colour, u, v, gain in nodes_of(read_tables(name)))
    print(name, "as expected" if worst < 0.51 else f"off by {worst}")


def forms_of(text):
    """Colour and numbers of each form of a set."""
    return [(name, [float(number) for number in re.findall(r": ([-+.\de]+)", form)])
            for name, form in re.findall(r"(r|gr|gb|b): \{ (.*) \}", text)]


def check_limit():
    """How much of each form is above what the ISP can give is said of the steep lens and of no other."""
    assert "above" not in pathlib.Path("losses").read_text()
    said = {name.lower(): int(count) for name, count in
            re.findall(r"of (\w+) at 3000 K is above 3.999 at (\d+) of 1089 places", pathlib.Path("steep_losses").read_text())}
    above = {name: sum(radial(form, i / 32, j / 32) > 4095 / 1024 for i in range(33) for j in range(33))
             for name, form in forms_of(pathlib.Path("steep.yaml").read_text())}
    expected = {name: count for name, count in above.items() if count}
    print("limits as expected" if said == expected and 0 < len(said) < 4 else f"said {said}, counted {above}")


def check_fits():
    """The round lens is found again. What is said about the other is what its surface shows, but for the rounding of the
    tables and the cubic between their nodes."""
    sets = [forms_of(text) for text in pathlib.Path("fitted.yaml").read_text().split("- ct:")[1:]]
    said = re.findall(r"of (\w+) at (\d+) K is off by ([\d.]+) % \(root mean square\), ([\d.]+) % at most",
                      pathlib.Path("losses").read_text())
    assert len(said) == 8, said
    places = [i / 32 for i in range(33)]
    for light, surface, entries in (("2856", radial, sets[0]), ("5000", uneven, sets[1])):
        for name, form in entries:
            true = next(FORMS[c] for c in FORMS if c.lower() == name)
            off = [radial(form, u, v) / surface(true, u, v) - 1 for v in places for u in places]
            rms, largest = math.sqrt(sum(x * x for x in off) / len(off)), max(map(abs, off))
            _, _, said_rms, said_largest = next(s for s in said if s[0].lower() == name and s[1] == light)
            agree = abs(float(said_rms) / 100 - rms) < 0.0005 and abs(float(said_largest) / 100 - largest) < 0.002
            centre = light == "5000" or math.hypot(form[0] - true[0], form[1] - true[1]) < 0.005
            close = light == "5000" or largest < 0.002
            print(light, name, "as expected" if agree and centre and close else
                  f"off by {rms} and {largest}, said {said_rms} and {said_largest}, {form}")


if sys.argv[1] == "make":
    make()
else:
    check_tables("tables.json")
    check_tables("sized.json")
    check_fits()
    check_limit()
