"""A real scheduler with two worker processes, beside a run of `adaptors batch`."""

import os
import pathlib
import shutil
import sqlite3
import stat
import sys
import threading
import time

import pytest

distributed = pytest.importorskip("distributed")
pytest.importorskip("pandas")

from project_adaptors import dask as fleet  # noqa: E402

ROOT = pathlib.Path(__file__).resolve().parents[2]
SAMPLES = sorted(path for path in (ROOT / "samples").glob("holiday-v*.*"))

# What depends on the run and not on the files.
OF_THE_RUN = {"seconds", "output_time", "fresh", "replaceable"}


@pytest.fixture(scope="module")
def cluster():
    import dask
    with dask.config.set({"distributed.scheduler.allowed-failures": 2, "distributed.worker.daemon": False}):
        with distributed.LocalCluster(n_workers=2, threads_per_worker=1, processes=True, host="127.0.0.1",
                                      dashboard_address=None) as local:
            yield local


@pytest.fixture
def client(cluster):
    cluster.scale(2)
    with distributed.Client(cluster) as connected:
        connected.wait_for_workers(2)
        yield connected


@pytest.fixture(scope="module")
def shared(tmp_path_factory):
    """An archive that no test changes."""
    return filled(tmp_path_factory.mktemp("shared") / "projects")


@pytest.fixture
def archive(tmp_path):
    return filled(tmp_path / "projects")


@pytest.fixture(scope="module")
def wanted(run, shared):
    """The rows of a batch, whose results are in the folder "batch" beside the archive."""
    return batch(run, shared, shared.parent / "batch")


@pytest.fixture
def output(shared):
    """A folder for results; not deeper than that of the batch, so that relative paths are the same."""
    number = len(list(shared.parent.iterdir()))
    return shared.parent / ("fleet%d" % number)


def filled(folder):
    """Projects in several folders, with what a search passes over."""
    for place in ("a", "a/b", "c [x]*", "d"):
        (folder / place).mkdir(parents=True)
        for sample in SAMPLES[:3]:
            shutil.copy(sample, folder / place)
    shutil.copytree(ROOT / "samples" / "holiday-v20-bundle", folder / "bundle")
    shutil.copy(SAMPLES[0], folder / "film.xml")
    shutil.copy(SAMPLES[0], folder / "film.json")  # two of one name
    shutil.copy(SAMPLES[0], folder / os.fsdecode(b"no-\xff.xml"))
    (folder / "notes.txt").write_text("no project")
    (folder / "empty.xml").write_text("")
    (folder / "link.xml").symlink_to("film.xml")
    (folder / "damaged.xml").write_bytes(SAMPLES[0].read_bytes()[:3000])
    for number in range(24):
        shutil.copy(SAMPLES[number % len(SAMPLES)], folder / "d" / ("film%02d%s" % (number, SAMPLES[number % len(SAMPLES)].suffix)))
    return folder


def batch(run, archive, output):
    done = run("batch", archive, "--output-dir", output, "-j2", "--progress", "none")
    assert done.returncode == 20, done.stderr  # the damaged file fails
    with sqlite3.connect(output / "adaptors-batch.sqlite") as database:
        database.row_factory = sqlite3.Row
        return comparable(dict(row) for row in database.execute("SELECT * FROM files"))


def comparable(rows, place=lambda path: path):
    return {place(os.fsdecode(row["path"])): {key: value for key, value in row.items() if key not in OF_THE_RUN}
            for row in rows}


def differences(rows, wanted):
    """What is different, short enough to be read."""
    found = ["only in one: " + path for path in set(rows) ^ set(wanted)]
    found += ["%s: %s %r != %r" % (path, key, row[key], wanted[path][key]) for path, row in rows.items()
              if path in wanted for key in row if row[key] != wanted[path][key]]
    return found


def rows_of(table):
    return table.astype(object).where(table.notna(), None).to_dict("records")


def tree(folder):
    return {str(path.relative_to(folder)): path.read_bytes() for path in folder.rglob("*")
            if path.is_file() and not path.name.startswith("adaptors-batch.sqlite")
            and fleet.STATES not in path.relative_to(folder).parts}


def test_columns_are_those_of_the_database(run, tmp_path):
    (tmp_path / "in").mkdir()
    run("batch", tmp_path / "in", "--output-dir", tmp_path / "out")
    with sqlite3.connect(tmp_path / "out" / "adaptors-batch.sqlite") as database:
        assert tuple(row[1] for row in database.execute("PRAGMA table_info(files)")) == fleet.COLUMNS


@pytest.mark.parametrize("chunk", [1, 7, 1000])
def test_chunks_have_each_file_once_and_folders_in_one_piece(shared, chunk):
    chunks = list(fleet._local_chunks([str(shared)], "/no/output", chunk))
    files = [file for part in chunks for file in fleet._files_of(part)]
    assert sorted(files) == sorted(str(path) for path in shared.rglob("*") if path.is_symlink() or not path.is_dir())
    if chunk == 1000:
        assert len(chunks) == 1
    if chunk == 7:
        assert any(part.shard for part in chunks) and any(part.skipped for part in chunks)


@pytest.mark.parametrize("chunk", [7, 1000])
def test_outputs_and_rows_are_those_of_a_batch(program, client, shared, wanted, output, chunk):
    table = fleet.migrate_all(shared, output, client, chunk=chunk, program=program)
    assert list(table.columns) == list(fleet.COLUMNS)
    assert differences(comparable(rows_of(table)), wanted) == []
    assert tree(output) == tree(shared.parent / "batch") != {}


def test_a_second_run_keeps_what_is_done(program, client, archive):
    output = archive.parent / "fleet"
    first = fleet.migrate_all(archive, output, client, chunk=7, program=program)
    stamps = {path: path.stat().st_mtime_ns for path in output.rglob("*.v77.json")}
    (archive / "film.xml").write_bytes(SAMPLES[1].read_bytes())
    second = fleet.migrate_all(archive, output, client, chunk=7, program=program)
    changed = {path.name for path, stamp in stamps.items() if path.stat().st_mtime_ns != stamp}
    assert changed == {"film.xml.v77.json"}
    assert len(first) == len(second)


def test_a_foreign_output_is_left_alone(program, client, archive):
    output = archive.parent / "fleet"
    (output / "a").mkdir(parents=True)
    name = SAMPLES[0].stem + ".v77.json"
    (output / "a" / name).write_text("mine")
    table = fleet.migrate_all(archive, output, client, chunk=7, program=program)
    row, = [row for row in rows_of(table) if row["output"] == "a/" + name]
    assert (row["state"], row["code"], row["kind"]) == ("failed", 16, "output-exists")
    assert (output / "a" / name).read_text() == "mine"


def script(path, text):
    path.write_text("#!/bin/sh\n" + text)
    path.chmod(path.stat().st_mode | stat.S_IXUSR)
    return str(path)


def test_a_worker_that_is_killed_costs_its_chunk_only(program, client, shared, wanted, output, tmp_path):
    """The worker is killed while the program has a chunk in work; it is done again by another one."""
    slow = script(tmp_path / "slow", 'echo $PPID >> "%s/begun"\nsleep 0.5\nexec "%s" "$@"\n' % (tmp_path, program))
    killed = []

    def kill():
        begun = tmp_path / "begun"
        while not begun.exists() or len(begun.read_text().splitlines()) < 3:
            time.sleep(0.05)
        killed.append(int(begun.read_text().splitlines()[-1]))
        os.kill(killed[0], 9)

    killer = threading.Thread(target=kill)
    killer.start()
    table = fleet.migrate_all(shared, output, client, chunk=7, program=slow)
    killer.join()
    runs = len((tmp_path / "begun").read_text().splitlines())
    chunks = len(list((output / fleet.STATES).glob("*.sqlite")))
    assert killed and chunks < runs <= chunks + 2
    assert differences(comparable(rows_of(table)), wanted) == []
    assert tree(output) == tree(shared.parent / "batch")


def test_a_chunk_that_ends_its_workers_again_and_again_is_recorded_as_failed(program, client, shared, wanted, output, tmp_path):
    """The worker dies with the chunk of folder "a/b", and all else is done."""
    deadly = script(tmp_path / "deadly", 'cat > "%s/list.$$"\nif tr "\\0" "\\n" < "%s/list.$$" | grep -q "/a/b$"; then kill -9 $PPID; exit 1; fi\n'
                    'exec "%s" "$@" < "%s/list.$$"\n' % (tmp_path, tmp_path, program, tmp_path))
    table = fleet.migrate_all(shared, output, client, chunk=4, program=deadly)
    rows = comparable(rows_of(table))
    lost = {path for path, row in rows.items() if row["kind"] == "chunk-failed"}
    assert {path for path in wanted if "/a/b/" in path} <= lost
    assert set(rows) == set(wanted)
    for path in set(wanted) - lost:
        assert rows[path] == wanted[path]
    # A later run takes the chunk again.
    table = fleet.migrate_all(shared, output, client, chunk=4, program=program)
    assert differences(comparable(rows_of(table)), wanted) == []


def test_a_file_that_ends_its_workers_costs_nothing_else(program, client, shared, wanted, output, tmp_path):
    """The file that is recorded as in work when the workers die is given up, and the chunk goes on."""
    poison = shared / "a" / SAMPLES[1].name
    # Leaves the state of a run that died while it had the file, as long as the file is not recorded as failed.
    deadly = script(tmp_path / "deadly", 'exec "%s" "%s" "%s" "%s" "$@"\n' % (
        sys.executable, pathlib.Path(__file__).with_name("deadly.py"), program, poison))
    table = fleet.migrate_all(shared, output, client, chunk=1000, program=deadly)
    rows = comparable(rows_of(table))
    assert set(rows) == set(wanted)
    assert {path for path in wanted if rows[path] != wanted[path]} == {str(poison)}
    row = rows[str(poison)]
    assert (row["state"], row["code"], row["kind"]) == ("failed", 1, "crashed") and "KilledWorker" in row["reason"]


def test_a_program_that_is_not_there_is_an_error(client, shared, output):
    with pytest.raises(fleet.ChunkFailedError):
        fleet.migrate_all(shared, output, client, program="/no/such/program", retries=0)


def test_urls(run, program, client, archive):
    pytest.importorskip("fsspec")
    os.remove(archive / os.fsdecode(b"no-\xff.xml"))  # no URL
    os.remove(archive / "link.xml")  # fetched as a file
    wanted = batch(run, archive, archive.parent / "batch")
    table = fleet.migrate_all("file://%s" % archive, "file://%s/fleet" % archive.parent, client, chunk=7, program=program)
    rows = comparable(rows_of(table), lambda path: path.removeprefix("file://"))
    for row in [*rows.values(), *wanted.values()]:
        for key in ("path", "time", "reason"):
            del row[key]
    assert rows == wanted
    assert tree(archive.parent / "fleet") == tree(archive.parent / "batch")


@pytest.mark.parametrize("sources, output", [("a", "file:///b"), (["a", "file:///b"], "c")])
def test_paths_and_urls_are_not_mixed(client, sources, output):
    with pytest.raises(ValueError):
        fleet.migrate_all(sources, output, client)
