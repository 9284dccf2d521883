#!/usr/bin/env python3
"""Holds tests/header/claims.md to the public headers, so that no sentence enters them without a test.

claims.py [--renew | --list] [SOURCES]

Every sentence of the headers' comments stands in claims.md, by its first words, with the tests that would notice if it were
false, or with the reason why no program can tell. When a sentence was only reworded, the mark of its comment no longer fits:
look whether the tests still cover what it says, then set the marks anew with --renew. --list prints all sentences.
"""
import hashlib
import pathlib
import re
import sys

SECTION = re.compile(r"^### (\S+) `([0-9a-f]{8}|new)`$")
ROW = re.compile(r"^- (.+?) — (.+)$")
TEST_CASE = re.compile(r"^(?:TEST|TEST_F|TEST_P|TYPED_TEST)\((\w+),\s*(\w+)\)", re.M)
NAME_BEFORE = re.compile(r"(?:#define (\w+) \d+|(\w+)(?:\[\w+\])*(?: = \d+)?[;,]?)\s*$")
NAME_BEHIND = re.compile(r"\s*(?:#define (\w+)|typedef (?:enum|struct) (\w+)|enum \{\s*(\w+)"
                         r"|[^(;{]*?(?P<function>\w+)\(|[^(;{]*?(\w+)(?:\[\w+\])?(?: =|;))")
SENTENCE_END = re.compile(r"(?<=[\w)`\]'\"])(?<!\bR)(?<!Trans)\.\s+(?=[\w`\"])")


def sentences(comment, subject):
    """The sentences of a comment. Those of a parameter, a field or the result begin with its name, as in `width: above 0`."""
    comment = re.sub(r"@code.*?@endcode", "", comment, flags=re.S)
    comment = re.sub(r"@file.*|@defgroup.*|@[{}]", "", comment)
    blocks, verbatim = [[]], False
    for line in (re.sub(r"^\s*\* ?", "", line) for line in comment.splitlines()):
        if "verbatim" in line:
            verbatim = "@verbatim" in line
            blocks.append([])
        elif not line.strip() or re.match(r"@param|@return| {1,3}- ", line) or (verbatim and line[0] != " "):
            blocks.append([line])
        else:
            blocks[-1].append(line)
    told = []
    for block in blocks:
        text, prefix = " ".join(" ".join(block).split()).removeprefix("- "), subject
        if tag := re.match(r"@(?:param (\w+)|(return)) ", text):
            prefix, text = (tag[1] or tag[2]) + ": ", text[tag.end() :]
        told += [prefix + sentence for sentence in SENTENCE_END.split(text) if sentence]
    return told


def sections(header):
    """The sentences by the name of what they describe, overloads together, a record's fields with it; which are functions."""
    text, told, functions, record, end = header.read_text(), {}, set(), None, 0
    for match in re.finditer(r"/\*\*(<?)(.*?)\*/", text, re.S):
        comment, inside = match[2], match.start() < end
        if match[1]:
            name = next(filter(None, NAME_BEFORE.search(text[: match.start()]).groups()))
        elif match.start() == 0:
            name = header.name
        elif "@defgroup" in comment:
            name = "group:" + re.search(r"@defgroup (\w+)", comment)[1]
        elif "cond" in comment or not (declared := NAME_BEHIND.match(text, match.end())):
            continue
        else:
            name = next(filter(None, declared.groups()))
            if declared["function"]:
                functions.add(name)
            elif not inside and declared[0].lstrip().startswith(("enum", "typedef")):
                record, end = name, text.index("}", match.end())
        key, subject = (record, name + ": ") if inside else (name, "")
        told.setdefault(key, []).extend(sentences(comment, subject))
    return {name: told[name] for name in told if told[name]}, functions


def mark(told):
    return hashlib.sha256("\n".join(told).encode()).hexdigest()[:8]


def text_of(test, sources):
    """A test with what it includes of the tests' own, and with that's definitions."""
    text = test.read_text()
    headers = [sources / "tests" / path for path in re.findall(r'#include "(.*?)"', text)]
    included = headers + [path.with_suffix(".cpp") for path in headers]
    return text + "".join(path.read_text() for path in included if path.is_file())


def faults_of_tests(name, tests, is_function, sources, cases):
    """What is wrong with the left side of a row: test cases, files below tests/, or why no program can tell."""
    for test in [] if tests.startswith("no program: ") else tests.split(", "):
        path = sources / "tests" / test if "/" in test else cases.get(test)
        if path is None or not path.is_file():
            yield f"there is no test {test}"
        elif is_function and name not in text_of(path, sources):
            yield f"{test} does not use it"


def compare(lines, told, functions, sources):
    """What is wrong with the table; sets the marks in `lines` anew."""
    cases = {f"{suite}.{case}": path for path in (sources / "tests").rglob("*.cpp")
             for suite, case in TEST_CASE.findall(path.read_text())}
    name, unnamed = None, {key: set(told[key]) for key in told}
    for number, line in enumerate(lines):
        if section := SECTION.match(line):
            name = section[1]
            if name not in told:
                yield f"{name}: the headers describe no such thing any more"
                continue
            lines[number] = f"### {name} `{mark(told[name])}`"
            if lines[number] != line and "--renew" not in sys.argv:
                yield f"{name}: its comment was changed. Do the tests still cover it? Then claims.py --renew"
        elif (row := ROW.match(line)) and name in told:
            yield from (f"{name}: {fault}" for fault in faults_of_tests(name, row[1], name in functions, sources, cases))
            for opening in row[2].split(" · "):
                fitting = {sentence for sentence in told[name] if sentence.startswith(opening)}
                fitting = {opening} if opening in fitting else fitting
                if len(fitting) != 1:
                    yield f"{name}: '{opening}' begins {len(fitting)} of its sentences"
                unnamed[name] -= fitting
    yield from (f"{key}: no row names '{sentence}'" for key in unnamed for sentence in sorted(unnamed[key]))


def main():
    sources = next((pathlib.Path(argument) for argument in sys.argv[1:] if argument[0] != "-"), pathlib.Path())
    told, functions = {}, set()
    for header in sorted((sources / "include").glob("*.h"), key=lambda path: len(path.name)):
        of_header, its_functions = sections(header)
        told.update(of_header)
        functions |= its_functions
    if "--list" in sys.argv:
        for name in told:
            print(f"### {name}", *told[name], sep="\n    ")
        return 0

    table = sources / "tests/header/claims.md"
    lines = table.read_text().splitlines()
    faults = list(compare(lines, told, functions, sources))
    if "--renew" in sys.argv:
        table.write_text("\n".join(lines) + "\n")
    print("\n".join(faults) or f"{sum(map(len, told.values()))} sentences, each with its tests")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
