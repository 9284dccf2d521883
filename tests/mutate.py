#!/usr/bin/env python3
"""Changes one small thing in the sources at a time, and tells which changes no test sees.

  tests/mutate.py --build build/release --target zerklsc_tool --tests '^tool:' --count 120 tool
  tests/mutate.py --build build/release --target zerklsc_tool --tests '^tool:preview' --count 20 tool/preview
  tests/mutate.py --build build/release --target test_table --tests '^table:' --count 20 src/table

The sources are changed in place, built, tried and put back; they must not differ from the last commit.
"""
import argparse
import pathlib
import random
import re
import signal
import subprocess
import sys

# What is replaced by what. Spaces around an operator tell it from templates, pointers and signs.
CHANGES = [
    (r" < ", " <= "), (r" <= ", " < "), (r" > ", " >= "), (r" >= ", " > "), (r" == ", " != "), (r" != ", " == "),
    (r" \+ ", " - "), (r" - ", " + "), (r" \* ", " / "), (r" / ", " * "), (r" && ", " || "), (r" \|\| ", " && "),
    (r"\bstd::min\b", "std::max"), (r"\bstd::max\b", "std::min"), (r"\btrue\b", "false"), (r"\bfalse\b", "true"),
    (r"\b1\b", "2"), (r"\b2\b", "3"), (r"\b0\b", "1"), (r"\b0\.5\b", "0.25"),
]
# A whole statement that does something: a call or an assignment.
STATEMENT = re.compile(r"^ +[\w.:>\-\[\]]+(\(.*\)| [+\-*/|&]?= .*);$")
IGNORED = re.compile(r"^\s*(//|#|using |template|static_assert|assert|constexpr \w+ \w+ = \"|return \{\};)")


def mutants_of(path):
    """Line numbers with what the line becomes."""
    found = []
    for number, line in enumerate(path.read_text().split("\n")):
        if IGNORED.match(line):
            continue
        code, remark = (line.split("//", 1) + [""])[:2]
        # Text within quotes is what messages say, not what the code does.
        quoted = [range(*match.span()) for match in re.finditer(r'"(\\.|[^"\\])*"', code)]
        for pattern, replacement in CHANGES:
            for match in re.finditer(pattern, code):
                if not any(match.start() in text for text in quoted):
                    changed = code[:match.start()] + replacement + code[match.end():]
                    found.append((number, changed + ("//" + remark if remark else "")))
        if STATEMENT.match(line):
            found.append((number, ""))
    return found


def run(*words):
    return subprocess.run(words, capture_output=True, text=True, check=False)


def try_mutant(options, path, number, line):
    """'caught', 'missed', or None where the change does not compile."""
    source = path.read_text()
    lines = source.split("\n")
    lines[number] = line
    try:
        path.write_text("\n".join(lines))
        if run("ninja", "-C", options.build, options.target).returncode != 0:
            return None
        tests = run("ctest", "--test-dir", options.build, "-R", options.tests, "--stop-on-failure", "--timeout", "120")
        return "missed" if tests.returncode == 0 else "caught"
    finally:
        path.write_text(source)


def files_of(paths):
    files = []
    for path in map(pathlib.Path, paths):
        files += sorted(path.rglob("*.cpp")) if path.is_dir() else [path]
    return files


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build", required=True)
    parser.add_argument("--target", required=True)
    parser.add_argument("--tests", required=True, help="a regular expression for the names of tests")
    parser.add_argument("--count", type=int, default=120)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("paths", nargs="+", help="files or folders")
    options = parser.parse_args()
    # The source is put back when somebody ends this program.
    signal.signal(signal.SIGTERM, lambda *_: sys.exit("ended"))
    if run("git", "diff", "--quiet", "HEAD", "--", *options.paths).returncode != 0:
        sys.exit("the files differ from the last commit: commit them first")
    mutants = [(path, *mutant) for path in files_of(options.paths) for mutant in mutants_of(path)]
    random.Random(options.seed).shuffle(mutants)
    counts = {"caught": 0, "missed": 0}
    for path, number, line in mutants:
        if sum(counts.values()) >= options.count:
            break
        before = path.read_text().split("\n")[number].strip()
        outcome = try_mutant(options, path, number, line)
        if outcome:
            counts[outcome] += 1
        if outcome == "missed":
            print(f"{path}:{number + 1}: no test sees\n  {before}\n  {line.strip() or '(dropped)'}", flush=True)
    run("ninja", "-C", options.build, options.target)
    tried = sum(counts.values())
    print(f"{tried} changes, {counts['caught']} caught" + (f": {100 * counts['caught'] / tried:.0f} %" if tried else ""))


if __name__ == "__main__":
    main()
