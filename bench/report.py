#!/usr/bin/env python3
"""Measures everything on this machine and writes docs/performance.md with its plots.

usage: report.py BUILD [--quick] [--output FOLDER] [--keep FILE] [--figures FILE]

BUILD is the folder of a build with optimisation, with the program and the benchmarks. Run it with a Python that has the
module project_adaptors; `./dev bench --report` does all that. The machine should have nothing else to do.
"""

import argparse
import datetime
import json
import math
import os
import pathlib
import platform
import statistics
import subprocess
import sys
import tempfile

import matplotlib

matplotlib.use("svg")
import matplotlib.pyplot as plt  # noqa: E402

SOURCES = pathlib.Path(__file__).resolve().parent.parent
SIZES = [10000, 30000, 100000, 300000, 1000000]
FLAT_SIZES = [10000, 100000]
PEER_SIZES = [10000, 30000, 100000]
RATIO_WANTED = 3.9
FLAT_RATIO_WANTED = 1.8


def output_of(*command):
    return subprocess.run(command, cwd=SOURCES, check=True, capture_output=True, text=True).stdout.strip()


def machine(build):
    """What the figures depend on."""
    processor = next(line.split(":")[1].strip() for line in open("/proc/cpuinfo") if line.startswith("model name"))
    memory = next(int(line.split()[1]) for line in open("/proc/meminfo") if line.startswith("MemTotal"))
    cache = dict(line.strip().split("=", 1) for line in open(build / "CMakeCache.txt") if "=" in line and line[0] not in "#/")
    kind = cache["CMAKE_BUILD_TYPE:STRING"]
    flags = cache["CMAKE_CXX_FLAGS_%s:STRING" % kind.upper()]
    commit = output_of("git", "rev-parse", "--short", "HEAD")
    if output_of("git", "status", "--porcelain", "--untracked-files=no"):
        commit += ", with changes"
    system = next(line.split("=")[1].strip().strip('"') for line in open("/etc/os-release") if line.startswith("PRETTY_NAME"))
    return {"Date": datetime.date.today().isoformat(), "Commit": commit,
            "Processor": "%s, %d cores" % (processor, os.cpu_count()), "Memory": "%.0f GB" % (memory / 1e6),
            "System": "%s, Linux %s" % (system, platform.release()),
            "Compiler": output_of("c++", "--version").splitlines()[0], "Build": "%s, %s" % (kind, flags)}


def measure_processes(bench, size):
    """Loading and migration in processes that do nothing else; medians of runs that take turns."""
    print("measuring processes with %d elements" % size, file=sys.stderr)
    with tempfile.TemporaryDirectory() as folder:
        file = pathlib.Path(folder) / "project.xml"
        with open(file, "wb") as project:
            subprocess.run([bench, "--write", str(size), "3"], check=True, stdout=project)
        runs = [[number for kind in ("load", "migration") for number in output_of(bench, "--once", kind, str(file)).split()]
                for _ in range(15 if size <= 30000 else 7 if size <= 300000 else 3)]
    names = ("load", "loadMemory", "migration", "migrationMemory")
    return {name: statistics.median(map(float, column)) for name, column in zip(names, zip(*runs))}


def ratio(row):
    return row["migration"] / row["floor"]


def middle(rounds):
    """Of the rows of all rounds the one with the median ratio, with the ratios of all."""
    rows = sorted(rounds, key=ratio)
    return {**rows[len(rows) // 2], "ratios": [ratio(row) for row in rows]}


def measure(build, quick):
    sizes = SIZES[:2] if quick else SIZES
    program = str(build / "cli/adaptors")
    bench = str(build / "bench/adaptors-bench")

    def of_program(kind, sizes):
        return json.loads(subprocess.run([bench, "--figures", kind, *map(str, sizes)], check=True,
                                         stdout=subprocess.PIPE).stdout)

    def of_script(name, *arguments):
        with tempfile.TemporaryDirectory() as folder:
            file = pathlib.Path(folder) / "figures.json"
            subprocess.run([sys.executable, str(SOURCES / "bench" / name), *arguments, "--figures", str(file)], check=True,
                           stdout=sys.stderr)
            return json.loads(file.read_text())

    projects = ["--projects", "60"] if quick else []
    figures = {"machine": machine(build), "load average at the start": os.getloadavg()[0]}
    archives, documents = [], []

    # Called again between the other parts: a machine that others share changes its speed within minutes.
    def measure_round():
        archives.append(of_program("migration", sizes))
        documents.append(of_program("flat", FLAT_SIZES[:1] if quick else FLAT_SIZES))

    measure_round()
    once = [measure_processes(bench, size) for size in sizes]
    figures["peers"] = of_program("peers", PEER_SIZES[:1] if quick else PEER_SIZES)
    measure_round()
    figures["batch"] = of_script("batch.py", program, *projects, "--memory-files", "1000" if quick else "20000")
    measure_round()
    figures["threads"] = of_script("python_threads.py", *projects)
    figures["dask"] = of_script("dask.py", program, *projects)
    figures["migration"] = [{**middle(rows), "once": row} for rows, row in zip(zip(*archives), once)]
    figures["flat"] = [{**rounds[0], "versions": [middle(rows) for rows in zip(*(each["versions"] for each in rounds))]}
                       for rounds in zip(*documents)]
    return figures


def table(head, rows):
    lines = ["| " + " | ".join(head) + " |", "|" + "|".join(["---"] + ["---:"] * (len(head) - 1)) + "|"]
    return lines + ["| " + " | ".join(row) + " |" for row in rows]


def number(value):
    """Three significant digits where that is more than whole numbers."""
    digits = max(0, 2 - math.floor(math.log10(value))) if value > 0 else 0
    return "{:,.{}f}".format(value, min(digits, 3))


def range_of(row):
    return "%.2f–%.2f" % (row["ratios"][0], row["ratios"][-1])


def growth(figures, name):
    """The exponent k with which a time grew as the k-th power of the number of elements."""
    first, last = figures[0], figures[-1]
    return "%.2f" % (math.log(last[name] / first[name]) / math.log(last["elements"] / first["elements"]))


def plot(folder, name, title, axes):
    figure, axis = plt.subplots(figsize=(8, 4.5))
    axes(axis)
    axis.set_title(title)
    axis.grid(True, color="#dddddd")
    axis.set_axisbelow(True)
    if axis.get_legend_handles_labels()[0]:
        axis.legend()
    figure.tight_layout()
    figure.savefig(folder / name, metadata={"Date": None})
    plt.close(figure)
    return ["", "![%s](%s)" % (title, name), ""]


def migration_part(figures, folder):
    rows = figures["migration"]

    def times(axis):
        for name, title, style in (("migration", "whole migration", "o-"), ("bound", "bound", "s--"), ("floor", "floor", "^:")):
            axis.loglog([row["elements"] for row in rows], [row[name] / 1000 for row in rows], style, label=title)
        axis.set_xlabel("elements of the archive")
        axis.set_ylabel("seconds of processor time")

    def ratios(axis):
        axis.semilogx([row["elements"] for row in rows], [ratio(row) for row in rows], "o-",
                      label="of the floor")
        axis.semilogx([row["elements"] for row in rows], [row["migration"] / row["bound"] for row in rows], "s--",
                      label="of the bound")
        axis.axhline(RATIO_WANTED, color="#888888", linestyle=":", label="goal: %.1f times the floor" % RATIO_WANTED)
        axis.set_ylim(bottom=0)
        axis.set_xlabel("elements of the archive")
        axis.set_ylabel("times")

    lines = ["## An archive of version 3, migrated to the newest version", "",
             "Parse, all steps, conversion to JSON, save, in one process; milliseconds of processor time. Of 15 runs (7 above",
             "20,000 elements, 3 above 200,000) the one whose migration costs the median of what its floor costs. This is done in",
             "%d rounds, minutes apart, since a machine that others share changes its speed: the row is that of the round with the"
             % len(rows[0]["ratios"]), "median ratio, and `rounds` gives the ratios of all.", "",
             "- *Floor*: load the archive into the DOM and write the result. No program that uses the DOM can be faster.",
             "- *Bound*: the floor, and create as many nodes as the archive has more after all steps, and convert it to JSON.",
             "", *table(["elements", "text", "load", "write", "create", "convert", "floor", "bound", "migration", "of the floor",
                         "rounds", "of the bound", "free loaded", "free migrated"],
                        [["{:,}".format(row["elements"]), "%.1f MB" % (row["bytesRead"] / 1e6), number(row["load"]),
                          number(row["write"]), number(row["create"]), number(row["convert"]), number(row["floor"]),
                          number(row["bound"]), number(row["migration"]), "%.2f" % ratio(row), range_of(row),
                          "%.2f" % (row["migration"] / row["bound"]), number(row["freeLoaded"]),
                          number(row["freeMigrated"])] for row in rows]),
             "",
             "Neither the floor nor the migration contains the freeing of the archive, which the last two columns show: `batch` does",
             "that for each project, and `adaptors migrate` ends without it.", ""]
    lines += ["The goal is %.1f times the floor at every size; the greatest is %.2f." % (RATIO_WANTED, max(map(ratio, rows))), "",
              "Growth from the first to the last size, as the exponent of the number of elements: whole migration %s, floor %s,"
              % (growth(rows, "migration"), growth(rows, "floor")), "bound %s." % growth(rows, "bound")]
    once = [[row["once"]["load"], row["write"], row["once"]["migration"]] for row in rows]
    lines += ["", "The figures above are of a process that migrates again and again, as `batch` does, in memory that was used and freed",
              "before. A process that does one thing only gets new memory: the system has to clear it, but what is loaded into it lies",
              "in order. Medians of such processes:", "",
              *table(["elements", "load", "write, as above", "migration", "of the floor"],
                     [["{:,}".format(row["elements"]), *map(number, times), "%.2f" % (times[2] / (times[0] + times[1]))]
                      for row, times in zip(rows, once)])]
    lines += plot(folder, "performance-migration.svg", "Migration of an archive of version 3", times)
    lines += plot(folder, "performance-ratio.svg", "Whole migration beside the floor and the bound", ratios)
    lines += ["Peak memory of such processes, above that with the text alone:", "",
              *table(["elements", "loading", "migration", "times"],
                     [["{:,}".format(row["elements"]), "%.1f MB" % (row["once"]["loadMemory"] / 1e6),
                       "%.1f MB" % (row["once"]["migrationMemory"] / 1e6),
                       "%.2f" % (row["once"]["migrationMemory"] / row["once"]["loadMemory"])] for row in rows]), "",
              "The ten parts that take most time at {:,} elements:".format(rows[-1]["elements"]), ""]
    parts = sorted(rows[-1]["steps"] + rows[-1]["others"], key=lambda part: -part["milliseconds"])[:10]
    return lines + table(["part", "ms", "of the migration"],
                         [[part["name"], number(part["milliseconds"]),
                           "%.1f %%" % (100 * part["milliseconds"] / rows[-1]["migration"])] for part in parts])


def flat_part(figures, folder):
    lines = ["## JSON documents", "", "Parse, all steps, save, against `nlohmann::json::parse()` of the text and",
             "`nlohmann::json::dump()` of the result. The documents are generated archives that were migrated to that version. Runs",
             "and rounds are chosen as above."]

    def ratios(axis):
        for size in figures["flat"]:
            axis.plot([row["version"] for row in size["versions"]],
                      [ratio(row) for row in size["versions"]], "o-",
                      label="{:,} elements in the archive".format(size["elements"]))
        axis.axhline(FLAT_RATIO_WANTED, color="#888888", linestyle=":", label="goal: %.1f" % FLAT_RATIO_WANTED)
        axis.set_ylim(bottom=0)
        axis.set_xlabel("schema version of the document")
        axis.set_ylabel("times of parse and dump")

    for size in figures["flat"]:
        lines += ["", "From an archive with {:,} elements:".format(size["elements"]), "",
                  *table(["version", "text", "parse", "dump", "migration", "times", "rounds"],
                         [[str(row["version"]), "%.1f MB" % (row["bytesRead"] / 1e6), number(row["parse"]), number(row["dump"]),
                           number(row["migration"]), "%.2f" % ratio(row), range_of(row)] for row in size["versions"]])]
    worst = max(ratio(row) for size in figures["flat"] for row in size["versions"])
    lines += ["", "The goal is %.1f times parse and dump; the greatest is %.2f." % (FLAT_RATIO_WANTED, worst)]
    return lines + plot(folder, "performance-json.svg", "Migration of JSON documents beside parse and dump", ratios)


def batch_part(figures, folder):
    speed = figures["batch"]["speed"]
    seconds = speed["seconds"]
    one, two, xargs = seconds["batch -j1"], seconds["batch -j2"], seconds["find | xargs -P2"]
    threads, dask = figures["threads"], figures["dask"]
    rows = [("batch -j1", speed["projects"], one, "1.00"), ("batch -j2", speed["projects"], two, "%.2f" % (one / two)),
            ("find \\| xargs -P2 adaptors migrate", speed["projects"], xargs, "%.2f" % (one / xargs))]
    lines = ["## Many projects", "",
             "Films with 5 to 60 clips, {:,.0f} KB each on average, of versions 27, 62 and 63; seconds on the clock, the shortest of all"
             .format(speed["bytes"] / speed["projects"] / 1000), "rounds, in which the ways take turns.", "",
             *table(["way", "projects", "seconds", "projects a second", "times"],
                    [[name, "{:,}".format(count), "%.2f" % taken, "%.0f" % (count / taken), times]
                     for name, count, taken, times in rows]), "",
             "`batch -j2` is %.2f times as fast as `batch -j1` and %.2f times as fast as `find | xargs`." % (one / two, xargs / two), "",
             "The same with Python:", "",
             *table(["way", "projects", "seconds", "times"],
                    [["module, one thread", str(threads["projects"]), "%.2f" % threads["one"], "1.00"],
                     ["module, %d threads" % threads["threads"], str(threads["projects"]), "%.2f" % threads["several"],
                      "%.2f" % (threads["one"] / threads["several"])],
                     ["batch -j%d" % dask["jobs"], str(dask["projects"]), "%.2f" % dask["batch"], "1.00"],
                     ["Dask, %d processes" % dask["jobs"], str(dask["projects"]), "%.2f" % dask["dask"],
                      "%.2f" % (dask["batch"] / dask["dask"])]]), "",
             "Memory of `batch` over many small files:", "",
             *table(["files done", "batch", "workers"],
                    [["{:,}".format(row["files"]), "%.1f MB" % row["parent"],
                      ", ".join("%.1f MB" % each for each in row["workers"])] for row in figures["batch"]["memory"]])]

    def bars(axis):
        values = [speed["projects"] / taken for taken in (one, two, xargs)]
        axis.bar(["batch -j1", "batch -j2", "find | xargs -P2"], values, color=["#7f9fbf", "#1b6ca8", "#d1495b"])
        axis.set_ylabel("projects a second")

    return lines + plot(folder, "performance-batch.svg", "Projects a second", bars)


def peers_part(figures, folder):
    lines = ["## Twelve simple steps in other ways", "",
             "Each step as it is in this library, with live lists of the DOM (`elementsByTagName()`, the obvious way to write it),",
             "and as an XSLT stylesheet (`bench/peers/`) run by libxslt. The three give the same document; the benchmark ends with",
             "an error if they do not. Milliseconds of processor time; the tree is loaded before."]
    for size in figures["peers"]:
        sums = {name: sum(row[name] for row in size["steps"]) for name in ("own", "nodeLists", "xslt")}
        lines += ["", "{:,} elements:".format(size["elements"]), "",
                  *table(["step", "this library", "live lists", "XSLT"],
                         [["`%s`" % row["step"], number(row["own"]), number(row["nodeLists"]), number(row["xslt"])]
                          for row in size["steps"]]
                         + [["all twelve", number(sums["own"]), number(sums["nodeLists"]), number(sums["xslt"])],
                            ["with loading and writing", number(sums["own"] + size["load"] + size["write"]),
                             number(sums["nodeLists"] + size["load"] + size["write"]),
                             number(sums["xslt"] + size["xmlLoad"] + size["xmlWrite"])]])]

    def times(axis):
        for name, title in (("own", "this library"), ("nodeLists", "live lists"), ("xslt", "XSLT")):
            axis.loglog([size["elements"] for size in figures["peers"]],
                        [sum(row[name] for row in size["steps"]) for size in figures["peers"]], "o-", label=title)
        axis.set_xlabel("elements of the archive")
        axis.set_ylabel("milliseconds of processor time")

    lines += ["", "A step of this library that runs alone searches the whole document; in a migration all steps share one index, which is",
              "faster. The tree of libxml2 loads and writes faster than the DOM of Qt."]
    return lines + plot(folder, "performance-peers.svg", "Twelve simple steps in three ways", times)


def write_report(figures, folder):
    plt.rcParams.update({"svg.hashsalt": "performance", "font.size": 10})
    lines = ["# Performance", "",
             "All figures are of one run of `./dev bench --report` on one machine, which writes this page and its plots. Run it on a",
             "machine that has nothing else to do.", "",
             *table(["", "of this run"], [[name, value] for name, value in figures["machine"].items()]), ""]
    for part in (migration_part, flat_part, batch_part, peers_part):
        lines += part(figures, folder) + [""]
    while not lines[-1]:
        lines.pop()
    text = "\n".join(lines) + "\n"
    while "\n\n\n" in text:
        text = text.replace("\n\n\n", "\n\n")
    (folder / "performance.md").write_text(text)
    for file in folder.glob("performance-*.svg"): # without the spaces that matplotlib leaves at ends of lines
        file.write_text("".join(line.rstrip() + "\n" for line in file.read_text().splitlines()))


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("--quick", action="store_true", help="small sizes: to try the report, not to publish it")
    parser.add_argument("--output", type=pathlib.Path, help="where the page is written [docs; build/report with --quick]")
    parser.add_argument("--keep", type=pathlib.Path, help="also write the figures as JSON")
    parser.add_argument("--figures", type=pathlib.Path, help="write the page of kept figures; nothing is measured")
    options = parser.parse_args()
    folder = options.output or SOURCES / ("build/report" if options.quick else "docs")
    folder.mkdir(parents=True, exist_ok=True)
    figures = json.loads(options.figures.read_text()) if options.figures else measure(options.build.resolve(), options.quick)
    if options.keep:
        options.keep.write_text(json.dumps(figures, indent=1))
    write_report(figures, folder)
    print(folder / "performance.md")


if __name__ == "__main__":
    main()
