"""Opens a report in a headless browser and compares what stands on the page with the JSON of the command.

  report_page.py --tool build/release/tool/zerklsc
Ends with 77 where Chromium and its driver are missing."""
import argparse
import json
import pathlib
import re
import subprocess
import sys
import tempfile

from browser import Browser, available
from page_checks import (ARROW_RIGHT, DARK, TAB, check_cells, check_console, check_drawn, check_fits_phone, check_opens, number_of,
                         value_at)

# For each chart, how many of its pixels are near the colour of each channel's line.
COUNT_LINES = """
const style = getComputedStyle(document.documentElement);
const colours = ['r', 'gr', 'gb', 'b'].map(name => style.getPropertyValue('--' + name).trim())
    .map(text => [1, 3, 5].map(at => parseInt(text.slice(at, at + 2), 16)));
return [...document.querySelectorAll('.chart canvas')].map(canvas => {
    const pixels = canvas.getContext('2d').getImageData(0, 0, canvas.width, canvas.height).data;
    return colours.map(colour => {
        let count = 0;
        for (let i = 0; i < pixels.length; i += 4)
            count += pixels[i + 3] > 200 && colour.every((value, k) => Math.abs(pixels[i + k] - value) < 12);
        return count;
    });
});"""

LEGEND = "return [...document.querySelectorAll('.chart')[1].querySelectorAll('.u-value')].map(v => v.textContent)"


def check_cell(document, path, text):
    """A number stands on the page as it is, or in percent; both forms hold the four digits of the JSON."""
    value = value_at(document, path)
    if isinstance(value, list):
        assert [number_of(part) for part in re.split(" × |, ", text)] == value, (path, text, value)
    elif isinstance(value, str):
        assert text == value, (path, text, value)
    elif value is None:
        assert text == "–", (path, text)
    else:
        fraction = path.startswith(("channels", "colour_shading", "otp")) and isinstance(value, float)
        shown = 100 * value if fraction and not path.endswith("largest_gain") else value
        assert abs(number_of(text) - shown) < 5.1e-4, (path, text, value)


def expected_paths(document):
    """All numbers that the page must show."""
    paths = set()
    for i, channel in enumerate(document["channels"]):
        paths.add(f"channels.{i}.largest_gain")
        for when in ("before", "after"):
            at = f"channels.{i}.{when}"
            paths |= {f"{at}.{name}" for name in ("corner_to_centre", "flatness", "worst_block.deviation",
                                                  "worst_block.at")}
            paths |= {f"{at}.corners.{k}" for k in range(4)}
            rows = channel[when]["blocks"]
            paths |= {f"{at}.blocks.{y}.{x}" for y in range(len(rows)) for x in range(len(rows[0]))}
    paths |= {f"colour_shading.{when}.{key}.{part}" for when in ("before", "after") for key in ("r_to_g", "b_to_g")
              for part in ("deviation", "at")}
    paths |= {f"otp.{k}.channels.{i}.largest_gain_error" for k in range(2) for i in range(4)}
    assert len(document["checks"]) > 20 and {check["verdict"] for check in document["checks"]} > {"pass"}
    paths |= {f"checks.{i}.{part}" for i in range(len(document["checks"]))
              for part in ("value", "limit_warn", "limit_refuse", "verdict")}
    return paths | {"algorithm", "step", "filter_radius", "black_level", "white_level", "bayer_pattern"}


def check_numbers(browser, document):
    check_cells(browser, document, expected_paths(document), check_cell)
    shown = browser.run("return [...document.querySelectorAll('#check-list [data-path$=verdict]')].map(c => c.textContent)")
    assert shown == sorted(c["verdict"] for c in document["checks"] if c["verdict"] != "pass"), shown
    text = browser.run("return document.body.textContent")
    for entry in document["inputs"]:
        assert entry["sha256"] in text and entry["name"] in text, entry


def check_charts(browser):
    check_drawn(browser, COUNT_LINES,
                lambda counts: len(counts) == 8 and all(count > 20 for chart in counts for count in chart))


def check_keyboard(browser, document):
    """The focus reaches the second chart, where one step to the right of the centre shows the values there."""
    browser.run("document.querySelectorAll('.chart')[1].focus()")
    browser.press(ARROW_RIGHT)
    section = document["sections"][0]
    middle = len(section["place"]) // 2 + 1
    shown = [number_of(text) for text in browser.run(LEGEND)]
    assert abs(shown[0] - section["place"][middle]) < 6e-3, (shown, section["place"][middle])
    for value, line in zip(shown[1:], section["after"]):
        assert abs(value - 100 * line[middle]) < 6e-3, (value, line[middle])
    browser.press(TAB)
    assert browser.run("return document.activeElement.getAttribute('role')") == "button"


def check_page(browser, page, document):
    check_opens(browser, page, images=25)
    check_numbers(browser, document)
    check_charts(browser)
    check_keyboard(browser, document)
    browser.emulate(features=DARK)
    check_charts(browser)
    browser.emulate(media="print", features=DARK)
    assert browser.run("return getComputedStyle(document.body).getPropertyValue('--ink').trim()") == "#26282e"
    check_charts(browser)
    browser.emulate(media="screen", features=[])
    check_fits_phone(browser)
    check_charts(browser)
    check_console(browser)


def make_report(tool, directory):
    def run(*words):
        return subprocess.run([tool, *words], cwd=directory, check=True, capture_output=True, text=True).stdout
    run("simulate", "--width", "1024", "--height", "768", "-o", "a flat & <field>.pgm")
    run("calibrate", "a flat & <field>.pgm", "--step", "16", "--radius", "4", "-o", "tables.json")
    return json.loads(run("report", "a flat & <field>.pgm", "--tables", "tables.json", "-o", "report.html", "--json",
                          "--limit", "uneven-light=0,none", "--limit", "gain=1,2"))


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--tool", type=lambda path: pathlib.Path(path).resolve(), required=True)
    tool = parser.parse_args().tool
    if not available():
        sys.exit(77)
    with tempfile.TemporaryDirectory() as directory:
        document = make_report(tool, directory)
        with Browser() as browser:
            check_page(browser, pathlib.Path(directory, "report.html"), document)


if __name__ == "__main__":
    main()
