#!/usr/bin/env python3
"""Holds the documents to the tree: files, links, presets and options that they name exist; src/ includes only what the
layer table of docs/architecture.md allows, without a cycle.

check_docs.py SOURCES
"""
import json
import pathlib
import re
import sys

TOP = pathlib.Path(sys.argv[1])
FOLDERS = "src|tests|tool|bench|fuzz|cmake|docs|include|debian|examples"


def documents():
    return [TOP / "README.md", TOP / "CONTRIBUTING.md", TOP / "SECURITY.md", *sorted((TOP / "docs").glob("*.md"))]


def missing_files():
    for document in documents():
        text = document.read_text()
        for path in re.findall(rf"`((?:{FOLDERS})/[\w./-]+)`", text):
            if not (TOP / path).exists():
                yield f"{document.name}: there is no {path}"
        for link in re.findall(r"\]\(([^)#:]+)\)", text):
            if not (document.parent / link).exists():
                yield f"{document.name}: the link {link} leads nowhere"


def unknown_presets():
    presets = {preset["name"] for preset in json.loads((TOP / "CMakePresets.json").read_text())["configurePresets"]}
    for document in documents():
        for name in re.findall(r"(?:cmake|ctest|--build) --preset (\w+)", document.read_text()):
            if name not in presets:
                yield f"{document.name}: there is no preset {name}"
    developing = (TOP / "docs/developing.md").read_text()
    for name in sorted(presets - {"base"}):
        if f"`{name}`" not in developing:
            yield f"developing.md: the preset {name} is not described"


def undocumented_options():
    developing = (TOP / "docs/developing.md").read_text()
    for file in (TOP / "CMakeLists.txt", TOP / "src/CMakeLists.txt"):
        for option in re.findall(r"^(?:option\(|set\()(ZERKLSC_\w+) .*(?:ON|OFF|LEVEL\}|CACHE .*)\)$", file.read_text(), re.M):
            if f"`{option}`" not in developing:
                yield f"developing.md: the option {option} is not described"


def broken_layers():
    table = (TOP / "docs/architecture.md").read_text()
    allowed = {}
    for folder, below in re.findall(r"^\| `src/(\w+)` \| .* \| ?([\w, ]*) \|$", table, re.M):
        allowed[folder] = {name for name in below.split(", ") if name}
        if unknown := allowed[folder] - allowed.keys():
            yield f"architecture.md: {folder} stands above {', '.join(sorted(unknown))}, which it includes"
    for folder in sorted(path.name for path in (TOP / "src").iterdir() if path.is_dir()):
        if folder not in allowed:
            yield f"architecture.md: src/{folder} is not in the table of layers"
            continue
        for file in sorted((TOP / "src" / folder).rglob("*.*")):
            for included in re.findall(r'^#include "(\w+)/', file.read_text(), re.M):
                if included != folder and included not in allowed[folder]:
                    yield f"{file.relative_to(TOP)}: includes {included}, which its layer does not"


def main():
    faults = [*missing_files(), *unknown_presets(), *undocumented_options(), *broken_layers()]
    print("\n".join(faults) or "the documents are true to the tree")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
