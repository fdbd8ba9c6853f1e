#!/usr/bin/env python3
"""Calls the functions of project_adaptors with damaged projects and wrong arguments.

usage: python_boundary.py [--seconds N] [--runs N] [--seed N] [--first N]

A call gives a result, or one of the exceptions that docs/python.md names: AdaptorsError, TypeError, ValueError and
MemoryError. Any other one ends the script with exit code 1, and so does a result that can't be used. Each run depends
on the seed and its number only: `--seed N --first NUMBER --runs 1` repeats it.
"""

import argparse
import collections
import dataclasses
import faulthandler
import io
import pathlib
import pickle
import random
import re
import sys
import tempfile
import time
import traceback

import project_adaptors
from project_adaptors import _native, reports

ROOT = pathlib.Path(__file__).resolve().parents[2]
DOCUMENTED = (project_adaptors.AdaptorsError, TypeError, ValueError, MemoryError)
FUNCTIONS = ("migrate", "info", "verify", "diff", "export_otio", "explain", "steps")
OPTIONS = {
    "migrate": ("to", "strict", "folders", "repair", "from_version", "location", "target"),
    "export_otio": ("strict", "folders", "repair", "from_version", "location", "target"),
    "info": ("from_version", "location"),
    "verify": ("from_version",),
    "diff": ("raw", "repair"),
    "explain": ("to", "step", "clip", "repair", "from_version", "location"),
    "steps": ("above", "to"),
}
RIGHT = {
    "to": range(78), "from_version": (None, *range(78)), "above": range(78), "strict": (False, True, "all"),
    "repair": (False, True), "raw": (False, True), "location": (None, "/nowhere/film.xml"),
    "target": (None, "/elsewhere/film.json"), "step": ("", "V28_ClipLabelAdaptor"), "clip": ("", "3", "Beach"),
    "folders": (None, project_adaptors.Folders("/a", "/b", "/c")),
}
WRONG = (None, True, -1, 78, 1 << 31, 1 << 64, -(1 << 63), 10 ** 400, 0.5, float("nan"), float("inf"), 1j, "", "a",
         "\0", "\ud800", "\U0010ffff" * 300, "x" * 100000, b"", b"\xff", b"\0", bytearray(b"a"), memoryview(b"a"), [], (), {},
         set(), object(), Exception, len, project_adaptors, range(3), ..., pathlib.Path("/nowhere"),
         io.StringIO("a"), io.BytesIO(b"a"), project_adaptors.Folders(1, [], None))  # type: ignore[arg-type]
# Numbers at the limits of their types, markup, links and keys of both forms.
PIECES = (b"<", b">", b'"', b"&#0;", b"&a;", b"]]>", b"<!DOCTYPE a>", b"\0", b"\xff\xfe", b"\xed\xa0\x80", b"{", b"}", b"[", b"]",
          b"-1", b"1e999", b"18446744073709551615", b"-9223372036854775808", b"4294967296", b"nan", b"null", b"true",
          b'{"@meta_reference":1}', b"type=\"ObjectRef\"", b"objectId=\"1\"", b"value=\"\"", b"\\ud800", b"[" * 2000, b"<a>" * 2000)


def projects():
    """Small documents of many versions: the inputs of the steps' cases, and samples."""
    found = []
    for file in sorted((ROOT / "tests" / "cases").glob("V*/*/before.xml")):
        version = int(re.match(r"V(\d+)_", file.parent.parent.name).group(1)) - 1
        found.append(re.sub(rb"<Archive\b", b'<Archive schemaVersion="%d"' % version, file.read_bytes(), count=1))
    found += [file.read_bytes() for file in sorted((ROOT / "samples").glob("holiday-*.*"))]
    return found


def wrong(chance):
    value = chance.choice(WRONG)
    if isinstance(value, io.IOBase):
        value.seek(0)
    return value


def damaged(content, others, chance):
    data = bytearray(content)
    for _ in range(chance.randrange(5)):
        place = chance.randrange(len(data) + 1)
        length = chance.choice((1, 8, 200))
        kind = chance.randrange(6)
        if kind == 0:
            del data[place:place + length]
        elif kind == 1:
            data[place:place] = chance.choice(PIECES)
        elif kind == 2:
            data[place:place + length] = chance.choice(PIECES)
        elif kind == 3 and data:
            data[place % len(data)] ^= 1 << chance.randrange(8)
        elif kind == 4:
            other = chance.choice(others)
            start = chance.randrange(len(other))
            data[place:place] = other[start:start + length]
        elif chance.randrange(5) == 0:
            del data[place:]
    return bytes(data)


def source(others, chance):
    kind = chance.randrange(20)
    if kind == 0:
        return wrong(chance)
    content = damaged(chance.choice(others), others, chance)
    return {1: bytearray, 2: memoryview, 3: io.BytesIO}.get(kind, bytes)(content)


def arguments(function, others, chance):
    def value(name):
        return wrong(chance) if chance.randrange(12) == 0 else chance.choice(RIGHT[name])

    options = {name: value(name) for name in OPTIONS[function] if chance.randrange(3) == 0}
    places = {"steps": 0, "diff": 2}.get(function, 1)
    return [source(others, chance) for _ in range(places)], options


def native_arguments(chance):
    """For the compiled module, which the package calls."""
    def value(kind):
        if chance.randrange(8) == 0:
            return wrong(chance)
        return chance.choice({bytes: (b"", b"/nowhere/film.xml", b"{}", b"<Archive/>"), int: (0, 1, 2, 77, -1, 78, 1000),
                              bool: (False, True), str: ("", "a"),
                              tuple: ((77, None, False, (b"", b"", b"")), (1, 2), (77, "a", 1, ()))}[kind])

    name, kinds = chance.choice((("migrate", (bytes, bytes, tuple, int, bytes)), ("info", (bytes, bytes, tuple)),
                                 ("diff", (bytes, bytes, bytes, bytes, tuple, bool)), ("steps", (int, int)),
                                 ("explain", (bytes, bytes, tuple, str, str)), ("verify", (bytes, bytes, tuple))))
    return getattr(_native, name), [value(kind) for kind in kinds], {}


def check_result(result, folder, chance):
    """A result can be read, converted, and written to a file."""
    report = getattr(result, "report", result)
    if dataclasses.is_dataclass(report):
        assert reports.from_json(type(report), reports.as_json(report)) == report, "a report is read as another one"
    if hasattr(result, "data"):
        assert isinstance(result.data, bytes) and result.data, "there is no document"
    if isinstance(result, project_adaptors.Result) and result.report.to.version == project_adaptors.NEWEST:
        assert project_adaptors.info(result.data).version == project_adaptors.NEWEST
    if hasattr(result, "write") and chance.randrange(4) == 0:
        target = chance.choice((folder / "film", folder / "none" / "film", folder, wrong(chance)))
        # A relative name would be a file in the folder of the script.
        if not isinstance(target, (str, bytes)):
            result.write(target, force=chance.choice((False, True)))


def check_error(error):
    """An exception has a text, and survives the way to another process."""
    if isinstance(error, project_adaptors.AdaptorsError):
        again = pickle.loads(pickle.dumps(error))
        assert type(again) is type(error) and str(again) == str(error) != "", "an error is another one behind pickle"


def run(number, seed, others, folder, counts):
    chance = random.Random("%d/%d" % (seed, number))
    if chance.randrange(5) == 0:
        function, places, options = native_arguments(chance)
    else:
        name = chance.choice(FUNCTIONS)
        function = getattr(project_adaptors, name)
        places, options = arguments(name, others, chance)
    try:
        check_result(function(*places, **options), folder, chance)
        counts["a result"] += 1
    except DOCUMENTED as error:
        check_error(error)
        counts[type(error).__name__] += 1


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--seconds", type=float, default=60)
    parser.add_argument("--runs", type=int, default=0, help="0 for as many as there is time for")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--first", type=int, default=0)
    options = parser.parse_args()
    faulthandler.enable()
    others = projects()
    counts = collections.Counter()
    start = time.monotonic()
    number = options.first
    with tempfile.TemporaryDirectory() as name:
        while not (0 < options.runs <= number - options.first) and time.monotonic() - start < options.seconds:
            try:
                run(number, options.seed, others, pathlib.Path(name), counts)
            except Exception:  # whatever is not documented
                traceback.print_exc()
                sys.exit("repeat it with --seed %d --first %d --runs 1" % (options.seed, number))
            number += 1
    print("%d runs in %.0f seconds" % (number - options.first, time.monotonic() - start))
    for kind, count in counts.most_common():
        print("%8d %s" % (count, kind))


if __name__ == "__main__":
    main()
