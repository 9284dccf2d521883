"""Writes results of modules that do not exist, as `zerklsc batch` writes those of real ones, and reads summaries' text.

  result_lines.py COUNT [--width 4208 --height 3120 --step 64] > results.jsonl

Planes differ in fall-off, place of the centre and black level; modules in a few numbers each, and a few are spoilt.
"""
import argparse
import array
import base64
import json
import random
import sys

from frames import table_size

COLOURS = ("R", "Gr", "Gb", "B")
CHECKS = ("clipping", "exposure", "noise", "corner", "gain", "fall-off", "shadow", "dust", "defects", "green-balance")


class Line:
    """A line that makes modules of one kind."""

    def __init__(self, seed, width=4208, height=3120, step=64, bits=10, algorithm=2):
        self.random = random.Random(seed)
        self.width, self.height, self.step = width, height, step
        self.frame = {"width": width, "height": height, "bits": bits, "pattern": "GBRG"}
        self.columns, self.rows = table_size(width, step), table_size(height, step)
        self.grid = {"algorithm": algorithm, "step": step, "width": self.columns, "height": self.rows,
                     "filter_radius": 6, "shading_percent": 95}
        self.shapes = {}

    def gains(self, number, centre, strength):
        """A fall-off with the fourth power of the distance; all but the module's own factor is made once a colour."""
        if number not in self.shapes:
            self.shapes[number] = [
                ((i / (self.columns - 1) - centre[0]) ** 2 * 1.7 + (j / (self.rows - 1) - centre[1]) ** 2) ** (1.1 + 0.1 * number)
                for j in range(self.rows) for i in range(self.columns)]
        tilt = self.random.gauss(0, 2)
        return [min(round(1024 + strength * part + tilt * (k % self.columns) / self.columns), 16383)
                for k, part in enumerate(self.shapes[number])]

    def module(self, number, **changes):
        """One result as the fields of its line; `changes` replaces some of them."""
        chance = self.random
        shift = chance.gauss(0, 0.004), chance.gauss(0, 0.007)
        centres = {colour: [round(0.49 + 0.004 * c + shift[0] + chance.gauss(0, 0.001), 4),
                            round(0.52 - 0.003 * c + shift[1] + chance.gauss(0, 0.002), 4)]
                   for c, colour in enumerate(COLOURS)}
        common = chance.gauss(1, 0.02) * (1 + 0.00002 * number)
        gains = {colour: self.gains(c, (0.49 + 0.004 * c, 0.52 - 0.003 * c),
                                    (2400 + 170 * c) * common * chance.gauss(1, 0.006))
                 for c, colour in enumerate(COLOURS)}
        checks = [{"name": name, "plane": plane, "value": float(f"{chance.lognormvariate(k / 3 - 1, 0.3):.4g}"),
                   "verdict": "pass"}
                  for k, name in enumerate(CHECKS) for plane in (COLOURS if k % 3 else (None,))]
        fields = {
            "format": "zerklsc-result", "version": 1, "serial": f"M{number:07}-K", "preset": None, "illuminant": "D65",
            "settings": "0123456789abcdef", "verdict": "pass", "reason": "",
            "inputs": [{"file": f"{number}.raw", "sha256": f"{number:064x}"}], "outputs": [],
            "frame": {**self.frame, "black_level": [60 + chance.randrange(3), 64, 65 + chance.randrange(2), 67]},
            "grid": self.grid, "checks": checks,
            "numbers": {"flatness": {c: round(chance.uniform(0.4, 0.6), 4) for c in COLOURS},
                        "corner": {c: round(chance.uniform(0.3, 0.4), 4) for c in COLOURS},
                        "predicted_flatness": {c: round(chance.uniform(0.001, 0.02), 4) for c in COLOURS},
                        "otp_bytes": 4712, "otp_loss": round(chance.uniform(0.001, 0.01), 4)},
            "optical_centre": centres, "gains": gains, "tool": "1.0.0"}
        return {**fields, **changes}

    def refuse(self, fields, *names):
        """The module as the checks of these names refuse it: it has no tables."""
        for check in fields["checks"]:
            if check["name"] in names:
                check.update(verdict="refuse", value=float(f"{9 * check['value']:.4g}"))
        empty = {"verdict": "refuse", "reason": f"{fields['serial']}: refused", "grid": None, "gains": None,
                 "numbers": dict.fromkeys(fields["numbers"])}
        return {**fields, **empty}


def text_of(fields):
    gains = fields["gains"]
    if gains is not None:
        gains = {colour: base64.b64encode(words(values)).decode() for colour, values in gains.items()}
    return json.dumps({**fields, "gains": gains}, separators=(",", ":"), ensure_ascii=False) + "\n"


def words(values):
    packed = array.array("H", values)
    if sys.byteorder == "big":
        packed.byteswap()
    return packed.tobytes()


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("count", type=int)
    for name, usual in (("width", 4208), ("height", 3120), ("step", 64)):
        parser.add_argument(f"--{name}", type=int, default=usual)
    options = parser.parse_args()
    line = Line(1, options.width, options.height, options.step)
    # Serials differ in every line; the rest repeats itself after a thousand modules.
    texts = [text_of(line.module(number)) for number in range(min(options.count, 1000))]
    for number in range(options.count):
        mould = number % len(texts)
        sys.stdout.write(texts[mould].replace(f"M{mould:07}-K", f"M{number:07}-K", 1))


if __name__ == "__main__":
    main()
