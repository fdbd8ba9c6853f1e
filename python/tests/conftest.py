import os
import pathlib
import subprocess

import pytest

ROOT = pathlib.Path(__file__).resolve().parents[2]


@pytest.fixture(scope="session")
def program():
    """The program, whose results are to be the same."""
    return os.environ.get("ADAPTORS_PROGRAM", str(ROOT / "build" / "dev" / "cli" / "adaptors"))


@pytest.fixture(scope="session")
def run(program):
    def call(*words, stdin=b"", **options):
        return subprocess.run([program, *map(str, words)], input=stdin, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, **options)
    return call


@pytest.fixture
def samples(tmp_path):
    """A copy of the samples, which tests may write beside."""
    import shutil
    folder = tmp_path / "samples"
    shutil.copytree(ROOT / "samples", folder, ignore=shutil.ignore_patterns("*.py", "__pycache__"))
    return folder


# A program that a test runs, and no module.
collect_ignore = ["deadly.py"]
