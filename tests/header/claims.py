#!/usr/bin/env python3
"""Holds tests/header/claims.md to the public headers, so that no claim enters them without a test.

claims.py [--renew] [SOURCES]

Each comment of a header has a row in claims.md: what it claims, the tests that would notice if it were false, and a mark
of its text. When a comment was changed, its mark no longer fits: look whether the tests still cover what it says, then
set the marks anew with --renew.
"""
import hashlib
import pathlib
import re
import sys

ROW = re.compile(r"^\| (\S+) \| (.+?) \| (.+?) \| ([0-9a-f]{8}|new) \|$")


def comments(header):
    """The text of every comment by the name of what it describes, overloads together; which names are records."""
    texts, records = {}, set()
    text = header.read_text()
    for match in re.finditer(r"/\*\*(?!<)(.*?)\*/(?=\s*([^;{]*))", text, re.S):
        comment, declared = match.groups()
        if match.start() == 0:
            name = header.name
        elif "@defgroup" in comment:
            name = "group:" + re.search(r"@defgroup (\w+)", comment)[1]
        elif declared.startswith("#"):
            continue
        elif function := re.search(r"(\w+)\(", declared):
            name = function[1]
        elif record := re.match(r"typedef (?:struct|enum) (\w+)", declared):
            name = record[1]
            records.add(name)
            body = text[match.end() : text.index("} " + name, match.end())]
            comment += " ".join(re.findall(r"/\*\*.*?\*/", body, re.S))
        else:
            continue
        texts[name] = texts.get(name, "") + " ".join(re.sub(r"[\s*/<]+", " ", comment).split())
    # A group without a text of its own claims nothing.
    title_only = re.compile(r"@defgroup \w+ [^.@]+@\{")
    return {name: text for name, text in texts.items() if not title_only.fullmatch(text)}, records


def mark(text):
    return hashlib.sha256(text.encode()).hexdigest()[:8]


def main():
    renew = "--renew" in sys.argv
    sources = next((pathlib.Path(argument) for argument in sys.argv[1:] if argument != "--renew"), pathlib.Path())
    table = sources / "tests/header/claims.md"
    lines = table.read_text().splitlines()
    claimed, records = {}, set()
    for header in sorted((sources / "include").glob("*.h")):
        texts, described = comments(header)
        claimed.update(texts)
        records |= described

    faults, rows = [], set()
    for number, line in enumerate(lines):
        if not (row := ROW.match(line)):
            continue
        name, claims, tests, stored = row.groups()
        rows.add(name)
        if name not in claimed:
            faults.append(f"{name}: the headers have no such comment any more")
            continue
        for test in tests.split(", "):
            path = sources / "tests" / test
            if not path.is_file():
                faults.append(f"{name}: there is no test {test}")
            elif re.fullmatch(r"\w+", name) and name not in records and name not in path.read_text():
                faults.append(f"{name}: {test} does not use it")
        if stored != mark(claimed[name]) and not renew:
            faults.append(f"{name}: its comment was changed. Do the tests still cover it? Then claims.py --renew")
        lines[number] = f"| {name} | {claims} | {tests} | {mark(claimed[name])} |"
    for name in claimed:
        if name not in rows:
            faults.append(f"{name}: has no row, so nobody has looked whether its claims are tested")
    if renew:
        table.write_text("\n".join(lines) + "\n")
    print("\n".join(faults) or f"{len(claimed)} comments, each with its tests")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
