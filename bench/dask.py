#!/usr/bin/env python3
"""Measures migrate_all() on a Dask cluster of this machine beside `adaptors batch`.

usage: dask.py PROGRAM [--projects N] [--rounds N] [--jobs N] [--chunk N] [--figures FILE]

The projects are those of bench/batch.py. The two ways take turns. Of each the shortest time counts. Starting the cluster
is not counted: a cluster is there before the work is.
"""

import argparse
import json
import os
import pathlib
import shutil
import sys
import tempfile
import time

# This file has the name of a package that is used here: its folder comes last.
folder = str(pathlib.Path(__file__).resolve().parent)
sys.path = [path for path in sys.path if path != folder]
from distributed import Client, LocalCluster  # noqa: E402

from project_adaptors import dask as fleet  # noqa: E402

sys.path.append(folder)
import batch  # noqa: E402


def measure(options, folder, client):
    projects, results = folder / "in", folder / "out"
    size = batch.write_projects(projects, options.projects)
    print("%d projects, %.0f KB each on average, %d jobs" % (options.projects, size / options.projects / 1000, options.jobs))
    program = os.path.abspath(options.program)
    way = batch.Way("batch -j%d" % options.jobs, [program, "batch", str(projects), "--output-dir", str(results),
                                                  "--progress", "none", "-j%d" % options.jobs])
    times = []
    for number in range(options.rounds):
        way.run(results, options.projects)
        print("  round %d, %s: %6.2f s, load %.1f" % (number + 1, way.name, way.times[-1], os.getloadavg()[0]), flush=True)
        shutil.rmtree(results)
        begin = time.monotonic()
        table = fleet.migrate_all(projects, results, client, chunk=options.chunk, program=program)
        times.append(time.monotonic() - begin)
        print("  round %d, Dask:      %6.2f s, load %.1f" % (number + 1, times[-1], os.getloadavg()[0]), flush=True)
        found = batch.results_in(results)
        if found != options.projects or (table["state"] != "done").any():
            sys.exit("Dask: %d results of %d" % (found, options.projects))
    print("Dask has %.2f times the throughput of %s      (0.9 is wanted)" % (min(way.times) / min(times), way.name))
    return {"projects": options.projects, "jobs": options.jobs, "batch": min(way.times), "dask": min(times)}


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("program")
    parser.add_argument("--projects", type=int, default=2000)
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--chunk", type=int, default=200)
    parser.add_argument("--figures", type=pathlib.Path, help="where the figures are written as JSON")
    options = parser.parse_args()
    with LocalCluster(n_workers=options.jobs, threads_per_worker=1, host="127.0.0.1", dashboard_address=None) as cluster, \
            Client(cluster) as client, tempfile.TemporaryDirectory() as folder:
        figures = measure(options, pathlib.Path(folder), client)
    if options.figures:
        options.figures.write_text(json.dumps(figures))


if __name__ == "__main__":
    main()
