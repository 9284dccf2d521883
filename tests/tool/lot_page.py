#!/usr/bin/env python3
"""Opens the page of a lot in a headless browser and compares what stands on it with the JSON of the command.

  lot_page.py --tool build/release/tool/zerklsc
Ends with 77 where Chromium and its driver are missing."""
from lot import lines_of, results
from page_checks import BARS, LINES, check_cells, check_drawn, check_legend, check_page, paths_of, tool_and_browser
from tool import options_with_tool

TITLES = "return [...document.querySelectorAll('.chart h3')].map(title => title.textContent)"

def shown_as(path, _):
    return (100, 5.1e-3) if path.endswith(("yield", "usual_spread", "widest_spread")) else (1, 5.1e-5)


def check_numbers(browser, document):
    check_cells(browser, document, paths_of(
        document, "modules|yield", "nearest.serial|distance", "outliers.count", "outliers.listed.*.verdict|severity|distance",
        "verdicts.pass|warn|refuse|fail|error", "costs.*.lost|lost_alone", "sequence.series.0|1|2|3|4|5|6.change|significance|drifts",
        "channels.0|1|2|3.largest_gain|usual_spread|widest_spread|widest_at", "optical_centre.correlation.0|1|2|3|4|5.x|y",
        "optical_centre.channels.0|1|2|3.x|y.median|mean|deviation",
        "checks.*.smallest|median|percent_95|pass|warn|refuse"), shown_as)
    text = browser.run("return document.body.textContent").replace("\u2212", "-")
    for entry in document["outliers"]["listed"]:
        assert entry["serial"] in text and entry["reason"] in text, entry


def check_charts(browser, document):
    """Every check that has numbers has its histogram, and each sequence its chart."""
    titles = browser.run(TITLES)
    assert titles[:3] == ["Corner gain", "Optical centre", "Yield"], titles
    assert [title.split(", ")[0] for title in titles[3:]] == [entry["name"] for entry in document["histograms"] if entry["pass"]]
    check_drawn(browser, LINES + BARS, lambda counts: len(counts) == len(titles) and all(sum(chart) > 100 for chart in counts))


def check_legends(browser, document):
    """The arrow keys show the numbers of a block, and of a bar."""
    sequence, histogram = document["sequence"], document["histograms"][0]
    at = (len(sequence["modules"]) - 1) // 2 + 1
    check_legend(browser, "#sequence", 0, [sequence["first_serials"][at], *[s["blocks"][at] for s in sequence["series"][:4]]], 5.1e-5)
    at = (len(histogram["pass"]) - 1) // 2 + 1
    middle = histogram["from"] + (at + 0.5) * histogram["width"]
    check_legend(browser, "#histograms", 0, [middle, *[histogram[v][at] for v in ("refuse", "warn", "pass")]], 5.1e-5)


def main():
    with tool_and_browser(options_with_tool(__doc__).parse_args()) as (tool, browser):
        def check_content():
            check_numbers(browser, document)
            check_legends(browser, document)
        _, modules = results()
        modules[3]["serial"] = "<b>&amp;\"' 12"
        tool.write("lot.jsonl", lines_of(modules))
        document = tool.document("lot", "lot.jsonl", "-o", "lot.html")
        check_page(browser, tool.folder / "lot.html", 10, check_content, lambda: check_charts(browser, document))


if __name__ == "__main__":
    main()
