#!/usr/bin/env python3
"""Measures `adaptors batch` beside `find | xargs adaptors migrate`, and its memory over many files.

usage: batch.py PROGRAM [--projects N] [--rounds N] [--memory-files N] [--folder DIR] [--figures FILE]

The projects are films like those of samples/, with 5 to 60 clips, at several schema versions. The ways to migrate them
take turns, so that what else the machine does meets all of them alike. Of each way the shortest time counts.
"""

import argparse
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "samples"))
import make_samples as samples  # noqa: E402

FORMS = [(27, samples.Xml), (62, samples.Xml), (63, samples.Json)]


class SmallFilm(samples.Film):
    """A film with so many clips: videos, some with an effect, and some titles."""

    def __init__(self, version, clips):
        super().__init__(version)
        self.count = clips

    def build(self):
        order = [(96, 64, True, False), (80, 80, True, True), (64, 64, True, True), (48, 48, True, True),
                 (32, 32, False, True), (16, 16, True, False)]
        tracks = {number: self.track(kind, used, linked) for number, kind, used, linked in order}
        files = [self.file("media/%d.mp4" % number, 1920, 1080) for number in range(max(1, self.count // 3))]
        entries = []
        for number in range(self.count):
            if number % 8 == 7:
                clip = self.clip("Title %d" % number, 4, 4000, overlay=self.title("Day %d" % number))
                entries.append((clip, self.timing(tracks[80], number * 4000, 3000, level=1)))
                continue
            effects = []
            if number % 4 == 1:
                effects = [self.effect("Blur", "0dd39bd2-7b8c-4a43-b1f4-3f5e3be2f2%02x" % number, "Blur",
                                       self.until(33, ("scale", samples.real(0.25))), intensity=5.0)]
            clip = self.clip("Clip %d" % number, 1, 4000, files[number % len(files)], effects=effects)
            entries.append((clip, self.timing(tracks[16], number * 4000, 4000)))
        self.timeline.fields = (
            [("name", samples.text("Film")), ("frameRate", samples.real(25)), ("width", samples.i32(1920)),
             ("height", samples.i32(1080)),
             ("clips", samples.mapping(*[(samples.ref(clip), samples.embedded(timing)) for clip, timing in entries])),
             ("links", samples.mapping()),
             ("tracks", samples.array(*[samples.ref(tracks[number]) for number, *_ in order]))]
            + self.since(46, ("transitions", samples.mapping())) + self.since(53, ("trackingLinks", samples.array())))
        return self.root(files)


def write_projects(folder, count):
    """Gives the size of all in bytes."""
    size = 0
    for number in range(count):
        version, form = FORMS[number % len(FORMS)]
        document = form(SmallFilm(version, 5 + number * 37 % 56).build(), version)
        path = folder / ("%02d" % (number % 20)) / ("film%04d.%s" % (number, "xml" if form is samples.Xml else "json"))
        path.parent.mkdir(parents=True, exist_ok=True)
        samples.write(path, document.text())
        size += path.stat().st_size
    return size


def results_in(folder):
    return sum(1 for path in folder.rglob("*.json"))


class Way:
    """A way to migrate all projects, and the times that it took."""

    def __init__(self, name, command):
        self.name = name
        self.command = command
        self.times = []
        self.cpu = []

    def run(self, results, count):
        shutil.rmtree(results, ignore_errors=True)
        results.mkdir()
        before = os.times()
        begin = time.monotonic()
        done = subprocess.run(self.command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.times.append(time.monotonic() - begin)
        after = os.times()
        self.cpu.append(after.children_user + after.children_system - before.children_user - before.children_system)
        found = results_in(results)
        if done.returncode != 0 or found != count:
            sys.exit("%s: exit code %d, %d results of %d" % (self.name, done.returncode, found, count))


def measure_speed(program, folder, count, rounds):
    projects, results = folder / "in", folder / "out"
    size = write_projects(projects, count)
    print("%d projects, %.0f KB each on average" % (count, size / count / 1000))
    batch = [program, "batch", str(projects), "--output-dir", str(results), "--progress", "none"]
    ways = [Way("batch -j1", batch + ["-j1"]), Way("batch -j2", batch + ["-j2"]),
            Way("find | xargs -P2", ["sh", "-c", "find \"$1\" -type f -print0 | xargs -0 -P2 -I{} \"$2\" migrate {} -q -o \"$3\"",
                                     "sh", str(projects), program, str(results)])]
    for number in range(rounds):
        for way in ways:
            way.run(results, count)
            print("  round %d, %-17s %6.2f s, %6.2f s of processors, load %.1f"
                  % (number + 1, way.name + ":", way.times[-1], way.cpu[-1], os.getloadavg()[0]), flush=True)
    one, two, xargs = [min(way.times) for way in ways]
    print("shortest times: %.2f s, %.2f s, %.2f s" % (one, two, xargs))
    print("batch -j2 is %.2f times as fast as batch -j1      (1.9 is wanted)" % (one / two))
    print("batch -j2 is %.2f times as fast as find | xargs   (1.5 is wanted)" % (xargs / two))
    cpu = [min(way.cpu) for way in ways]
    print("by processor time: batch -j2 takes %.2f times that of -j1, and find | xargs %.2f times that of batch -j2"
          % (cpu[1] / cpu[0], cpu[2] / cpu[1]))
    return {"projects": count, "bytes": size, "seconds": {way.name: min(way.times) for way in ways}}


def resident(process):
    """KB of memory that a process has."""
    for line in pathlib.Path("/proc/%d/status" % process).read_text().splitlines():
        if line.startswith("VmRSS:"):
            return int(line.split()[1])
    return 0


def children_of(process):
    return [int(number) for number in
            pathlib.Path("/proc/%d/task/%d/children" % (process, process)).read_text().split()]


def measure_memory(program, folder, count):
    projects = folder / "many"
    text = ('{"version": "1.0", "schemaVersion": 76, "data": {"@meta": {"class_name": "Project::Content", '
            '"object_id": 2}, "items": []}}')
    for number in range(count):
        path = projects / ("%03d" % (number % 500)) / ("%06d.json" % number)
        if number < 500:
            path.parent.mkdir(parents=True)
        path.write_text(text)
    print("memory over %d files, in MB" % count)
    marks = [count // 100, count // 10, count // 2, count * 99 // 100]
    batch = subprocess.Popen([program, "batch", str(projects), "--output-dir", str(folder / "many-out"), "-j2",
                              "--progress", "json"], stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    done = 0
    figures = []
    for line in batch.stderr:
        done += json.loads(line)["event"] == "file"
        if marks and done == marks[0]:
            marks.pop(0)
            workers = [resident(process) / 1024 for process in children_of(batch.pid)]
            figures.append({"files": done, "parent": resident(batch.pid) / 1024, "workers": workers})
            print("  after %6d files: batch %5.1f, workers %s"
                  % (done, resident(batch.pid) / 1024, ", ".join("%.1f" % each for each in workers)), flush=True)
    if batch.wait() != 0 or done != count:
        sys.exit("exit code %d, %d files of %d" % (batch.returncode, done, count))
    return figures


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("program")
    parser.add_argument("--projects", type=int, default=2000)
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--memory-files", type=int, default=100000)
    parser.add_argument("--folder", help="where the files are written and removed again")
    parser.add_argument("--figures", type=pathlib.Path, help="where the figures are written as JSON")
    options = parser.parse_args()
    figures = {}
    program = os.path.abspath(options.program)
    with tempfile.TemporaryDirectory(dir=options.folder) as folder:
        if options.projects:
            figures["speed"] = measure_speed(program, pathlib.Path(folder), options.projects, options.rounds)
        if options.memory_files:
            figures["memory"] = measure_memory(program, pathlib.Path(folder), options.memory_files)
    if options.figures:
        options.figures.write_text(json.dumps(figures))


if __name__ == "__main__":
    main()
