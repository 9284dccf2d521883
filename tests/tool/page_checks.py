"""What holds for every page that the tool writes, and what its tests look at it with."""
import re
import time

ARROW_RIGHT, TAB = "\ue014", "\ue004"
DARK = [{"name": "prefers-color-scheme", "value": "dark"}]
CELLS = "return [...document.querySelectorAll('[data-path]')].map(cell => [cell.dataset.path, cell.textContent])"
IMAGES = "return [...document.images].map(image => [image.naturalWidth, image.alt])"


def value_at(document, path):
    for key in path.split("."):
        document = document[int(key) if isinstance(document, list) else key]
    return document


def number_of(text):
    return float(re.match(r"[+-]?[0-9.]+", text.replace("\u2212", "-")).group())


def check_opens(browser, page, images):
    """It asks for nothing but itself, and each of its images is there and has words."""
    browser.resize(1280, 900)
    browser.open(page)
    asked = browser.requests()
    assert len(asked) == 1 and asked[0].startswith("file:"), asked
    found = browser.run(IMAGES)
    assert len(found) == images and all(width > 0 and alt for width, alt in found), found


def check_cells(browser, document, expected, check_cell):
    """All `expected` paths stand on the page, and whatever stands there passes check_cell(document, path, text)."""
    cells = browser.run(CELLS)
    missing = expected - {path for path, _ in cells}
    assert not missing, sorted(missing)[:5]
    for path, text in cells:
        check_cell(document, path, text)


def check_drawn(browser, script, is_drawn):
    """The browser draws when it has the time: a slow machine is given ten seconds."""
    for _ in range(100):
        counts = browser.run(script)
        if is_drawn(counts):
            return
        time.sleep(0.1)
    raise AssertionError(counts)


def check_fits_phone(browser):
    browser.resize(360, 740)
    assert browser.run("return document.documentElement.scrollWidth") <= 360


def check_console(browser):
    console = browser.console()
    assert console == [], console
