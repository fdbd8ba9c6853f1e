#!/usr/bin/env python3
"""Measures the Python module on one thread and on several.

usage: python_threads.py [--projects N] [--threads N] [--rounds N] [--figures FILE]

The projects are those of bench/batch.py, in memory. One thread and several take turns. Of each the shortest time counts.
"""

import argparse
import concurrent.futures
import json
import os
import pathlib
import sys
import tempfile
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
import batch  # noqa: E402

import project_adaptors  # noqa: E402


def measure(projects, threads):
    with concurrent.futures.ThreadPoolExecutor(threads) as pool:
        begin, before = time.monotonic(), time.process_time()
        sizes = list(pool.map(lambda project: len(project_adaptors.migrate(project).data), projects))
        return time.monotonic() - begin, time.process_time() - before, sum(sizes)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--projects", type=int, default=300)
    parser.add_argument("--threads", type=int, default=2)
    parser.add_argument("--rounds", type=int, default=5)
    parser.add_argument("--figures", type=pathlib.Path, help="where the figures are written as JSON")
    options = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        batch.write_projects(pathlib.Path(folder), options.projects)
        projects = [path.read_bytes() for path in sorted(pathlib.Path(folder).rglob("*.*"))]
    print("%d projects, %.0f KB each on average" % (len(projects), sum(map(len, projects)) / len(projects) / 1000))
    times = {1: [], options.threads: []}
    work = {1: [], options.threads: []}
    for number in range(options.rounds):
        for threads in times:
            taken, processor, _ = measure(projects, threads)
            times[threads].append(taken)
            work[threads].append(processor)
            print("  round %d, %d threads: %6.2f s, %6.2f s of processors, load %.1f"
                  % (number + 1, threads, taken, processor, os.getloadavg()[0]), flush=True)
    print("%d threads are %.2f times as fast as one" % (options.threads, min(times[1]) / min(times[options.threads])))
    print("by processor time they take %.2f times that of one" % (min(work[options.threads]) / min(work[1])))
    if options.figures:
        options.figures.write_text(json.dumps({
            "projects": len(projects), "threads": options.threads, "one": min(times[1]),
            "several": min(times[options.threads])}))


if __name__ == "__main__":
    main()
