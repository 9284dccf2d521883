"""What holds for every page that the tool writes, and what its tests look at it with."""
import contextlib
import re
import sys
import time

from browser import Browser, available
from tool import SKIPPED, in_a_folder

ARROW_RIGHT, TAB = "\ue014", "\ue004"
DARK = [{"name": "prefers-color-scheme", "value": "dark"}]
CELLS = "return [...document.querySelectorAll('[data-path]')].map(cell => [cell.dataset.path, cell.textContent])"
IMAGES = "return [...document.images].map(image => [image.naturalWidth, image.alt])"
LEGEND = "return [...document.querySelectorAll('%s .chart')[%d].querySelectorAll('.u-value')].map(v => v.textContent)"


LINES, BARS = ["r", "gr", "gb", "b"], ["good", "doubt", "bad"]
# For each chart, how many of its pixels are near each of the style's colours.
DRAWN = """
const style = getComputedStyle(document.documentElement);
const colours = %s.map(name => style.getPropertyValue('--' + name).trim())
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


@contextlib.contextmanager
def tool_and_browser(options):
    if not available():
        sys.exit(SKIPPED)
    with in_a_folder(options.tool) as tool, Browser() as browser:
        yield tool, browser


def value_at(document, path):
    for key in path.split("."):
        document = document[int(key) if isinstance(document, list) else key]
    return document


def paths_of(document, *patterns):
    """All dotted paths of some patterns: "|" stands between the names for a step, "*" for all that the document has there."""
    found = []
    for pattern in patterns:
        first, *steps = pattern.split(".")
        paths = first.split("|")
        for step in steps:
            paths = [f"{path}.{key}" for path in paths
                     for key in (step.split("|") if step != "*" else range(len(value_at(document, path))))]
        found += paths
    return set(found)


def number_of(text):
    return float(re.match(r"[+-]?[0-9.]+", text.replace("\u2212", "-")).group())


def check_cells(browser, document, expected, shown_as):
    """All `expected` paths stand on the page, and whatever stands there is the value of the document. `shown_as` gives the
    factor by which the number at a path is shown, and how far rounding takes it."""
    cells = browser.run(CELLS)
    missing = expected - {path for path, _ in cells}
    assert not missing, sorted(missing)[:5]
    words = {None: "–", True: "drifts", False: "no drift"}
    for path, text in cells:
        value = value_at(document, path)
        if isinstance(value, list):
            assert [number_of(part) for part in re.split(" × |, ", text)] == value, (path, text, value)
        elif value is None or isinstance(value, (bool, str)):
            assert text == words.get(value, value), (path, text, value)
        else:
            factor, off = shown_as(path, value)
            assert abs(number_of(text) - factor * value) <= off, (path, text, value)


def check_legend(browser, section, number, wanted, off):
    """The focus reaches a chart, where one step to the right of the middle shows the values there."""
    browser.run(f"document.querySelectorAll('{section} .chart')[{number}].focus()")
    browser.press(ARROW_RIGHT)
    for text, value in zip(browser.run(LEGEND % (section, number)), wanted, strict=True):
        assert text == "–" if value is None else abs(number_of(text) - value) < off, (text, wanted)


def check_drawn(browser, colours, is_drawn):
    """The browser draws when it has the time: a slow machine is given ten seconds."""
    for _ in range(100):
        counts = browser.run(DRAWN % colours)
        if is_drawn(counts):
            return
        time.sleep(0.1)
    raise AssertionError(counts)


def check_page(browser, page, images, check_content, check_charts):
    """It asks for nothing but itself, each of its images is there and has words, and its charts are drawn however it is shown."""
    browser.resize(1280, 900)
    browser.open(page)
    asked = browser.requests()
    assert len(asked) == 1 and asked[0].startswith("file:"), asked
    found = browser.run(IMAGES)
    assert len(found) == images and all(width > 0 and alt for width, alt in found), found
    check_charts()
    check_content()
    browser.resize(1280, browser.run("return document.documentElement.scrollHeight"))
    browser.emulate(features=DARK)
    check_charts()
    browser.emulate(media="print", features=DARK)
    assert browser.run("return getComputedStyle(document.body).getPropertyValue('--ink').trim()") == "#26282e"
    check_charts()
    browser.emulate(media="screen", features=[])
    browser.resize(360, 740)
    assert browser.run("return document.documentElement.scrollWidth") <= 360
    check_charts()
    console = browser.console()
    assert console == [], console
