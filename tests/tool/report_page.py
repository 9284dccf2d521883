"""Opens a report in a headless browser and compares what stands on the page with the JSON of the command.

  report_page.py --tool build/release/tool/zerklsc
Ends with 77 where Chromium and its driver are missing."""
from page_checks import LINES, TAB, check_cells, check_drawn, check_legend, check_page, paths_of, tool_and_browser
from tool import options_with_tool


def shown_as(path, value):
    """A number stands on the page as it is, or in percent; both forms hold the four digits of the JSON."""
    fraction = path.startswith(("channels", "colour_shading", "otp")) and isinstance(value, float)
    return 100 if fraction and not path.endswith("largest_gain") else 1, 5.1e-4


def check_numbers(browser, document):
    assert len(document["checks"]) > 20 and {check["verdict"] for check in document["checks"]} > {"pass"}
    check_cells(browser, document, paths_of(
        document, "algorithm|step|filter_radius|black_level|white_level|bayer_pattern", "channels.*.largest_gain",
        "channels.*.before|after.corner_to_centre|flatness", "channels.*.before|after.worst_block.deviation|at",
        "channels.*.before|after.corners.0|1|2|3", "channels.*.before|after.blocks.*.*",
        "colour_shading.before|after.r_to_g|b_to_g.deviation|at", "otp.0|1.channels.0|1|2|3.largest_gain_error",
        "checks.*.value|limit_warn|limit_refuse|verdict"), shown_as)
    shown = browser.run("return [...document.querySelectorAll('#check-list [data-path$=verdict]')].map(c => c.textContent)")
    assert shown == sorted(c["verdict"] for c in document["checks"] if c["verdict"] != "pass"), shown
    text = browser.run("return document.body.textContent")
    for entry in document["inputs"]:
        assert entry["sha256"] in text and entry["name"] in text, entry


def check_charts(browser):
    check_drawn(browser, LINES, lambda counts: len(counts) == 8 and all(count > 20 for chart in counts for count in chart))


def check_keyboard(browser, document):
    section = document["sections"][0]
    middle = len(section["place"]) // 2 + 1
    values = [section["place"][middle], *[100 * line[middle] for line in section["after"]]]
    check_legend(browser, "body", 1, values, 6e-3)
    browser.press(TAB)
    assert browser.run("return document.activeElement.getAttribute('role')") == "button"


def main():
    with tool_and_browser(options_with_tool(__doc__).parse_args()) as (tool, browser):
        def check_content():
            check_numbers(browser, document)
            check_keyboard(browser, document)
        flat = "a flat & <field>.pgm"
        tool.run("simulate", "--width", "1024", "--height", "768", "-o", flat)
        tool.run("calibrate", flat, "--step", "16", "--radius", "4", "-o", "tables.json")
        document = tool.document("report", flat, "--tables", "tables.json", "-o", "report.html",
                                 "--limit", "uneven-light=0,none", "--limit", "gain=1,2")
        check_page(browser, tool.folder / "report.html", 25, check_content, lambda: check_charts(browser))


if __name__ == "__main__":
    main()
