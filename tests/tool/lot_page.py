"""Opens the page of a lot in a headless browser and compares what stands on it with the JSON of the command.

  lot_page.py --tool build/release/tool/zerklsc [--keep FOLDER]
Ends with 77 where Chromium and its driver are missing."""
import argparse
import json
import pathlib
import re
import sys
import tempfile

from browser import Browser, available
from lot import Tool, results
from page_checks import (ARROW_RIGHT, DARK, check_cells, check_console, check_drawn, check_fits_phone, check_opens, number_of,
                         value_at)
from result_lines import text_of

TITLES = "return [...document.querySelectorAll('.chart h3')].map(title => title.textContent)"
# For each chart, how many of its pixels have some colour at all.
DRAWN = """
return [...document.querySelectorAll('.chart canvas')].map(canvas => {
    const pixels = canvas.getContext('2d').getImageData(0, 0, canvas.width, canvas.height).data;
    let count = 0;
    for (let i = 0; i < pixels.length; i += 4)
        count += pixels[i + 3] > 200 && Math.max(pixels[i], pixels[i + 1], pixels[i + 2])
                 - Math.min(pixels[i], pixels[i + 1], pixels[i + 2]) > 60;
    return count;
});"""
LEGEND = "return [...document.querySelectorAll('#%s .chart')[%d].querySelectorAll('.u-value')].map(v => v.textContent)"

PERCENT = ("yield", "usual_spread", "widest_spread")


def check_cell(document, path, text):
    value = value_at(document, path)
    if value is None:
        assert text == "–", (path, text)
    elif isinstance(value, bool):
        assert text == ("drifts" if value else "no drift"), (path, text)
    elif isinstance(value, str):
        assert text == value, (path, text)
    elif isinstance(value, list):
        assert text == ", ".join(map(str, value)), (path, text)
    else:
        shown = 100 * value if path.endswith(PERCENT) else value
        assert abs(number_of(text) - shown) <= (5.1e-3 if path.endswith(PERCENT) else 5.1e-5), (path, text, value)


def expected_paths(document):
    paths = {"modules", "yield", "nearest.serial", "nearest.distance", "outliers.count"}
    paths |= {f"verdicts.{verdict}" for verdict in document["verdicts"]}
    paths |= {f"costs.{k}.{part}" for k in range(len(document["costs"])) for part in ("lost", "lost_alone")}
    paths |= {f"outliers.listed.{k}.{part}" for k in range(len(document["outliers"]["listed"]))
              for part in ("verdict", "severity", "distance")}
    paths |= {f"channels.{c}.{part}" for c in range(4)
              for part in ("largest_gain", "usual_spread", "widest_spread", "widest_at")}
    paths |= {f"sequence.series.{k}.{part}" for k in range(7) for part in ("change", "significance", "drifts")}
    paths |= {f"optical_centre.channels.{c}.{axis}.{part}" for c in range(4) for axis in "xy"
              for part in ("median", "mean", "deviation")}
    paths |= {f"optical_centre.correlation.{k}.{axis}" for k in range(6) for axis in "xy"}
    return paths | {f"checks.{k}.{part}" for k in range(len(document["checks"]))
                    for part in ("smallest", "median", "percent_95", "pass", "warn", "refuse")}


def check_numbers(browser, document):
    check_cells(browser, document, expected_paths(document), check_cell)
    text = browser.run("return document.body.textContent").replace("\u2212", "-")
    for entry in document["outliers"]["listed"]:
        assert entry["serial"] in text and entry["reason"] in text, entry


def check_charts(browser, document):
    """Every check has its histogram, and each sequence its chart."""
    titles = browser.run(TITLES)
    assert titles[:3] == ["Corner gain", "Optical centre", "Yield"], titles
    assert [re.split(", ", title)[0] for title in titles[3:]] == [entry["name"] for entry in document["histograms"]]
    check_drawn(browser, DRAWN, lambda counts: len(counts) == len(titles) and all(count > 100 for count in counts))


def check_legend(browser, document):
    """The arrow keys show the numbers of a block, and of a bar."""
    for section, count in (("sequence", len(document["sequence"]["modules"])),
                           ("histograms", len(document["histograms"][0]["pass"]))):
        browser.run(f"document.querySelector('#{section} .chart').focus()")
        browser.press(ARROW_RIGHT)
        shown = browser.run(LEGEND % (section, 0))
        at = (count - 1) // 2 + 1
        if section == "sequence":
            series = document["sequence"]["series"][:4]
            wanted = [document["sequence"]["first_serials"][at], *[one["blocks"][at] for one in series]]
        else:
            entry = document["histograms"][0]
            wanted = [entry["from"] + (at + 0.5) * entry["width"], *[entry[v][at] for v in ("refuse", "warn", "pass")]]
        for text, value in zip(shown, wanted, strict=True):
            assert text == "–" if value is None else abs(number_of(text) - value) < 5.1e-5, (shown, wanted)


def check_page(browser, page, document, keep):
    def look(name):
        if keep:
            browser.screenshot(keep / f"{name}.png")
    check_opens(browser, page, images=10)
    check_numbers(browser, document)
    check_charts(browser, document)
    check_legend(browser, document)
    whole = browser.run("return document.documentElement.scrollHeight")
    browser.resize(1280, whole)
    look("desktop")
    browser.emulate(features=DARK)
    check_charts(browser, document)
    look("dark")
    browser.emulate(features=[])
    check_fits_phone(browser)
    check_charts(browser, document)
    look("phone")
    check_console(browser)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--tool", type=lambda path: pathlib.Path(path).resolve(), required=True)
    parser.add_argument("--keep", type=pathlib.Path, help="put screenshots there")
    options = parser.parse_args()
    if not available():
        sys.exit(77)
    with tempfile.TemporaryDirectory() as directory:
        tool = Tool(options.tool, directory)
        _, modules = results()
        modules[3]["serial"] = "<b>&amp;\"' 12"
        tool.write("lot.jsonl", map(text_of, modules))
        document = json.loads(tool.run("lot", "lot.jsonl", "-o", "lot.html", "--json").stdout)
        with Browser() as browser:
            check_page(browser, pathlib.Path(directory, "lot.html"), document, options.keep)


if __name__ == "__main__":
    main()
