#!/usr/bin/env python3
"""Changes one small thing in the sources at a time, and tells which changes no test sees.

  tests/mutate.py --build build/release --count 80 src
  tests/mutate.py --build build/release --count 20 --seconds 40 tool/preview tool/io/pgm.cpp
  tests/mutate.py --build build/release --again mutate.log                                    what a run missed

The sources are changed in place, built, tried and put back; they must not differ from the last commit. A change after
which the compiler writes the same code is none, and not counted. A change of src/FOLDER is tried with the tests of that
folder, and when they do not see it with all of the library; one of tool/ with the tool's. Of the
tests, those that saw changes of the same file or folder are run first, then those whose name has words of the file's,
then those of a moment and those whose own files have; the first that fails is enough. It is run once more, alone: on a
busy machine a test may fail or be late for no fault of the program. One that is late again hangs. Standard output
names what no test sees, standard error every change and the test that sees it.
"""
import argparse
import concurrent.futures
import contextlib
import hashlib
import itertools
import json
import os
import pathlib
import random
import re
import signal
import subprocess
import sys
import time

# What is replaced by what. Spaces around an operator tell it from templates, pointers and signs.
CHANGES = [
    (r" < ", " <= "), (r" <= ", " < "), (r" > ", " >= "), (r" >= ", " > "), (r" == ", " != "), (r" != ", " == "),
    (r" \+ ", " - "), (r" - ", " + "), (r" \* ", " / "), (r" / ", " * "), (r" && ", " || "), (r" \|\| ", " && "),
    (r"\bstd::min\b", "std::max"), (r"\bstd::max\b", "std::min"), (r"\btrue\b", "false"), (r"\bfalse\b", "true"),
    (r"(?<![.\w])1\b", "2"), (r"(?<![.\w])2\b", "3"), (r"(?<![.\w])0\b(?!\.5)", "1"), (r"\b0\.5\b", "0.25"),
]
# A whole statement that does something: a call or an assignment.
STATEMENT = re.compile(r"^ +[\w.:>\-\[\]]+(\(.*\)| [+\-*/|&]?= .*);$")
IGNORED = re.compile(r"^\s*(//|#|using |template|static_assert|assert|constexpr \w+ \w+ = \"|return \{\};)")
LIBRARY = ("cpu", "frame", "bayer", "sampling", "calibration", "table", "bicubic", "compress")
# For each part of the sources, what is built and tried, one after the other until a test sees the change: targets, the
# names of tests, and those of them that take too long for what they see. The tool's are the system's faults, the
# examples of the manual and the pages in a browser.
SUITES = {f"src/{folder}": [([f"test_{folder}"], f"^{folder}:[A-Z]", None)] for folder in LIBRARY}
for stages in SUITES.values():
    stages.append(([*(f"test_{folder}" for folder in LIBRARY), "test_header", "zerklsc_answers"],
                   f"^({'|'.join(LIBRARY)}|header):[A-Z]|^answers:", None))
SUITES["tool"] = [(["zerklsc_tool", "zerklsc_help", "test_check", "test_line", "test_io", "test_otp_container"],
                   "^(tool|check|line|io|otp_container):", "faults$|help_examples_work|full_disk|_page$")]
SKIPPED = 77  # the exit code of a test that cannot run here


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


def run(*words, **options):
    return subprocess.run(words, capture_output=True, text=True, check=False, **options)


def words_of(text):
    return {word.lower() for word in re.findall("[A-Z]?[a-z]{2,}|[A-Z]{3,}", text) if len(word) > 2}


def words_within(command):
    """Those of the folder of a case, or of a test's program where it is a script."""
    paths = [pathlib.Path(word) for word in command]
    files = [file for folder in paths if folder.is_dir() for file in folder.iterdir() if file.is_file()]
    files = files or [path for path in paths if path.suffix == ".py"]
    return set().union(*(words_of(file.read_text(errors="replace")) for file in files))


def end_session(pid):
    with contextlib.suppress(ProcessLookupError):
        os.killpg(pid, signal.SIGKILL)


class Tests:
    """The tests of a build, in the order in which they are most likely to see a change soon."""

    def __init__(self, options, names, without):
        leave_out = ["-E", without] if without else []
        listed = json.loads(run("ctest", "--test-dir", options.build, "--show-only=json-v1", "-R", names, *leave_out).stdout)
        self.tests = {}
        for test in listed["tests"]:
            properties = {p["name"]: p["value"] for p in test.get("properties", [])}
            if not properties.get("DISABLED"):
                environment = dict(word.split("=", 1) for word in properties.get("ENVIRONMENT", []))
                self.tests[test["name"]] = (test["command"], properties["WORKING_DIRECTORY"], environment)
        self.words = {name: words_within(command) for name, (command, _, _) in self.tests.items()}
        self.limit, self.jobs, self.seconds, self.caught, self.running = options.seconds, options.jobs, {}, [], set()
        if failing := self.first_failing(list(self.tests)):
            sys.exit(f"{failing[0]} {failing[1]} with nothing changed")

    def outcome(self, name, times=1):
        """'passes', 'fails' or 'hangs'."""
        command, directory, environment = self.tests[name]
        begin = time.monotonic()
        # A session of its own, so that what the test starts ends with it.
        test = subprocess.Popen(command, cwd=directory, env=dict(os.environ, **environment), start_new_session=True,
                                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.running.add(test.pid)
        try:
            code = test.wait(timeout=times * (20 + 10 * self.seconds[name] if name in self.seconds else 600))
        except subprocess.TimeoutExpired:
            return "hangs"
        finally:
            self.running.discard(test.pid)
            end_session(test.pid)
            test.wait()
        self.seconds.setdefault(name, time.monotonic() - begin)
        return "passes" if code in (0, SKIPPED) else "fails"

    def first_suspect(self, names):
        """The first test that does not pass among others, or None."""
        pool = concurrent.futures.ThreadPoolExecutor(self.jobs)
        coming = {pool.submit(self.outcome, name): name for name in names}
        found = next((coming[one] for one in concurrent.futures.as_completed(coming) if one.result() != "passes"), None)
        pool.shutdown(wait=False, cancel_futures=True)
        for pid in list(self.running):
            end_session(pid)
        pool.shutdown()
        return found

    def first_failing(self, names):
        """The name of a test that does not pass, alone and with more time either, and its outcome; or None."""
        while suspect := self.first_suspect(names):
            if (outcome := self.outcome(suspect, 2)) != "passes":
                return suspect, outcome
            names = [name for name in names if name != suspect]
        return None

    def see(self, path):
        """How the tests end now that something in the file is changed."""
        def order(name):
            near = sum(10 if where == path else where.parent == path.parent for where, by in self.caught if by == name)
            words = words_of(str(path.with_suffix(""))) - {"tool"}
            # A test of a moment costs nothing, whatever it speaks of.
            slow = self.seconds[name] > 0.3
            return -near, -len(words & words_of(name)), slow, -len(words_of(path.stem) & self.words[name]), self.seconds[name]
        names = sorted(self.tests, key=order)
        spent = itertools.accumulate(self.seconds[name] for name in names)
        failing = self.first_failing([name for name, seconds in zip(names, spent) if seconds <= self.limit])
        if failing:
            self.caught.append((path, failing[0]))
        return failing[1] if failing else "passes"


class Suites:
    """What is tried for each part of the sources, ready to run, with the code of the sources as they are."""

    def __init__(self, options, paths):
        self.options = options
        self.parts = sorted({part for part in SUITES for path in paths if path.is_relative_to(part)})
        self.build([target for part in self.parts for targets, _, _ in SUITES[part] for target in targets])
        self.code = self.digest()
        tests = {}
        for names, without in {stage[1:] for part in self.parts for stage in SUITES[part]}:
            tests[names, without] = Tests(options, names, without)
        self.stages = {part: [(targets, tests[names, without]) for targets, names, without in SUITES[part]]
                       for part in self.parts}

    def build(self, targets):
        return run("ninja", "-C", self.options.build, "-j", str(self.options.jobs), *dict.fromkeys(targets)).returncode == 0

    def digest(self):
        """Of all objects of the library and the tool."""
        objects = [one for top in ("src", "tool") for one in pathlib.Path(self.options.build, top).rglob("*.o")]
        return hashlib.sha256(b"".join(one.read_bytes() for one in sorted(objects))).digest()

    def see(self, path, number, line):
        """Which test sees the change, and how it ends, 'fails' or 'hangs'; (None, 'passes') where none does; (None, None)
        where the change does not compile, or compiles to the same code."""
        source = path.read_text()
        lines = source.split("\n")
        lines[number] = line
        try:
            path.write_text("\n".join(lines))
            for targets, tests in self.stages[next(part for part in self.parts if path.is_relative_to(part))]:
                if not self.build(targets) or self.digest() == self.code:
                    return None, None
                if (outcome := tests.see(path)) != "passes":
                    return tests.caught[-1][1], outcome
            return None, "passes"
        finally:
            path.write_text(source)


def files_of(paths):
    files = []
    for path in map(pathlib.Path, paths):
        files += sorted(one for one in path.rglob("*") if one.suffix in (".c", ".cpp", ".h")) if path.is_dir() else [path]
    return files


def text_of(path, number, line):
    """A change as it is printed."""
    before = path.read_text().split("\n")[number].strip()
    return f"  {before}\n  {line.strip() or '(dropped)'}\n"


def chosen_mutants(options):
    if options.again:
        log = pathlib.Path(options.again).read_text()
        missed = re.findall(r"(?m)^(.+):(\d+): no test sees\n(  .*\n  .*\n)", log)
        named = {(path, int(number) - 1, change) for path, number, change in missed}
        files = map(pathlib.Path, sorted({path for path, _, _ in missed}))
        return [(path, *mutant) for path in files for mutant in mutants_of(path)
                if (str(path), mutant[0], text_of(path, *mutant)) in named]
    mutants = [(path, *mutant) for path in files_of(options.paths) for mutant in mutants_of(path)]
    random.Random(options.seed).shuffle(mutants)
    return mutants


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build", required=True)
    parser.add_argument("--seconds", type=float, default=float("inf"), help="of tests for a change; --again tries the others")
    parser.add_argument("--count", type=int, default=120)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--skip", type=int, default=0, help="leave out so many of them, which a former run tried")
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--again", metavar="LOG", help="what a former run printed: try only what it missed")
    parser.add_argument("paths", nargs="*", help="files or folders")
    options = parser.parse_args()
    # The source is put back when somebody ends this program.
    signal.signal(signal.SIGTERM, lambda *_: sys.exit("ended"))
    mutants = chosen_mutants(options)
    if run("git", "diff", "--quiet", "HEAD", "--", *{str(path) for path, _, _ in mutants}).returncode != 0:
        sys.exit("the files differ from the last commit: commit them first")
    suites = Suites(options, {path for path, _, _ in mutants})
    counts = {"fails": 0, "hangs": 0, "passes": 0}
    for path, number, line in mutants[options.skip:]:
        if sum(counts.values()) >= options.count:
            break
        text = text_of(path, number, line)
        test, outcome = suites.see(path, number, line)
        if outcome:
            counts[outcome] += 1
            seen = f"{test} {outcome}" if test else "no test sees"
            print(f"{sum(counts.values())} of {options.count}: {path}:{number + 1}: {seen}", file=sys.stderr, flush=True)
        if outcome == "passes":
            print(f"{path}:{number + 1}: no test sees\n{text}", end="", flush=True)
    tried, caught = sum(counts.values()), counts["fails"] + counts["hangs"]
    if tried:
        print(f"{tried} changes, {caught} caught ({counts['hangs']} of them by a test that hangs): {100 * caught / tried:.0f} %")


if __name__ == "__main__":
    main()
