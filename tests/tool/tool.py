"""The tool, as the programs among its tests run it."""
import argparse
import contextlib
import json
import pathlib
import subprocess
import tempfile

SKIPPED = 77  # the exit code of a test that cannot run here


def options_with_tool(description):
    """A parser of --tool, to which a program adds its own options."""
    parser = argparse.ArgumentParser(description=description, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--tool", type=lambda path: pathlib.Path(path).resolve(), required=True)
    return parser


class Tool:
    """Runs in a folder, whose files it reads and writes."""

    def __init__(self, path, folder):
        self.path, self.folder = path, pathlib.Path(folder)

    def call(self, *words, **more):
        return subprocess.run([self.path, *map(str, words)], cwd=self.folder, capture_output=True, text=True, check=False, **more)

    def run(self, *words, code=0):
        done = self.call(*words)
        assert done.returncode == code, (words, done)
        return done

    def document(self, *words, code=0):
        return json.loads(self.run(*words, "--json", code=code).stdout)

    def write(self, name, content):
        (self.folder / name).write_bytes(content if isinstance(content, bytes) else content.encode())
        return name

    def read(self, name):
        return (self.folder / name).read_bytes()


@contextlib.contextmanager
def in_a_folder(path):
    with tempfile.TemporaryDirectory() as folder:
        yield Tool(path, folder)
