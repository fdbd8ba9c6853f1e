"""Migrates archives of many projects on a Dask cluster.

Each task takes a chunk of files and migrates them with the program, ``adaptors batch``, which must be installed on all
workers. So names of outputs, rows of the result and what happens to a file that crashes are those of ``adaptors batch``.
"""

from __future__ import annotations

import errno
import fcntl
import hashlib
import math
import os
import pathlib
import sqlite3
import subprocess
import tempfile
import time
from collections.abc import Iterable, Iterator, Sequence
from contextlib import closing
from dataclasses import dataclass
from typing import TYPE_CHECKING, Any

from . import NEWEST, AdaptorsError

if TYPE_CHECKING:
    import pandas
    from distributed import Client

COLUMNS = ("path", "name", "output", "bundle", "state", "size", "time", "sha256", "from_version", "to_version", "code",
           "kind", "reason", "losses", "repairs", "seconds", "output_size", "output_time", "backup", "fresh",
           "replaceable", "tool")
"""The columns of the result; docs/batch.md describes them."""

_WHOLE_NUMBERS = ("bundle", "size", "time", "from_version", "to_version", "code", "losses", "output_size", "output_time",
                  "fresh", "replaceable")

STATES = ".adaptors-dask"
"""The folder below the output that has the state of each chunk."""

_MOST_SHARDS = 32  # each searches the whole folder
_DONE, _SOME_FAILED, _UNWRITABLE = 0, 20, 15  # exit codes of the program

# Here a file that is written is there as a whole or not at all.
_ATOMIC_PROTOCOLS = {"s3", "s3a", "gs", "gcs", "abfs", "abfss", "az", "adl", "oci", "oss", "memory"}


class ChunkFailedError(AdaptorsError):
    """The program could not work on a chunk at all."""


@dataclass(frozen=True)
class Job:
    """What all chunks of a run have in common."""

    output: str
    program: str
    options: tuple[str, ...]


@dataclass(frozen=True)
class Chunk:
    """A part of the files. With ``skipped`` folders it is one folder without those."""

    folder: str
    """The folder that paths and names begin at, or its URL."""
    paths: tuple[str, ...]
    """Files and folders, with all that is in them; of a URL only files."""
    skipped: tuple[str, ...] = ()
    shard: str = ""
    """Part of the files, such as "2/8"; empty for all."""

    def key(self) -> str:
        """A name that depends on what the chunk is, so that a later run finds its state."""
        text = "\0".join([self.folder, *self.paths, "", *self.skipped, self.shard])
        return hashlib.sha256(os.fsencode(text)).hexdigest()[:24]


@dataclass
class _Folder:
    """A folder with the files directly in it and all below, as far as they are not in chunks yet."""

    path: str
    files: int
    below: int
    folders: list[_Folder]


def _folder_at(path: str, pruned: str) -> _Folder:
    """Reads a folder with all below. Folders that can't be read count as empty; the program reports them."""
    root = _Folder(path, 0, 0, [])
    found = [root]
    for folder in found:  # grows
        try:
            with os.scandir(folder.path) as entries:
                for entry in entries:
                    if entry.is_dir(follow_symlinks=False):
                        if entry.path != pruned:
                            folder.folders.append(_Folder(entry.path, 0, 0, []))
                    else:
                        folder.files += 1
        except OSError:
            pass
        folder.folders.sort(key=lambda child: child.path)
        found += folder.folders
    for folder in reversed(found):
        folder.below = folder.files + sum(child.below for child in folder.folders)
    return root


def _chunks_of(root: _Folder, start: str, size: int) -> Iterator[Chunk]:
    """Chunks of about that many files. The files of one folder stay in one chunk, or in shards of their folder, since
    what a file is shows only beside the others."""
    small: list[str] = []
    count = 0
    pending = [root]
    while pending:
        folder = pending.pop()
        if folder.below == 0 and not folder.folders and folder is not root:
            continue
        if folder.below <= size:
            if small and count + folder.below > size:
                yield Chunk(start, tuple(small))
                small, count = [], 0
            small.append(folder.path)
            count += folder.below
            continue
        if folder.files > 0 or folder is root:
            shards = min(_MOST_SHARDS, math.ceil(folder.files / size)) if folder.files > 2 * size else 1
            skipped = tuple(child.path for child in folder.folders)
            for number in range(1, shards + 1):
                yield Chunk(start, (folder.path,), skipped, "%d/%d" % (number, shards) if shards > 1 else "")
        pending += reversed(folder.folders)
    if small:
        yield Chunk(start, tuple(small))


def _local_chunks(sources: Sequence[str], output: str, size: int) -> Iterator[Chunk]:
    if len(sources) == 1 and os.path.isdir(sources[0]):
        start = os.path.realpath(sources[0])
        if start == output:
            raise ValueError("the output is the folder of the sources")
        yield from _chunks_of(_folder_at(start, output), start, size)
        return
    start = os.getcwd()
    files = []
    for source in sources:
        path = os.path.abspath(source)
        if os.path.isdir(path):
            yield from _chunks_of(_folder_at(os.path.realpath(path), output), start, size)
        else:
            files.append(path)
    for place in range(0, len(files), size):
        yield Chunk(start, tuple(files[place:place + size]))


def _remote_chunks(sources: Sequence[str], size: int) -> Iterator[Chunk]:
    """Chunks of whole folders."""
    import fsspec

    for source in sources:
        system, start = fsspec.core.url_to_fs(source)
        files: list[str] = sorted(system.find(start))
        folders: dict[str, list[str]] = {}
        for file in files:
            folders.setdefault(file.rpartition("/")[0], []).append(file)
        root = start if files != [start] else start.rpartition("/")[0]
        current: list[str] = []
        for names in folders.values():
            if current and len(current) + len(names) > size:
                yield Chunk(system.unstrip_protocol(root), tuple(current))
                current = []
            current += names
        if current:
            yield Chunk(system.unstrip_protocol(root), tuple(current))


def _is_url(place: str) -> bool:
    return "://" in place


def _is_locked(state: str) -> bool:
    """Whether another run works with the state, such as one whose worker of the cluster died."""
    try:
        with open(state + ".lock", "rb") as lock:
            fcntl.flock(lock, fcntl.LOCK_SH | fcntl.LOCK_NB)
    except FileNotFoundError:
        return False
    except OSError as error:
        if error.errno in (errno.EWOULDBLOCK, errno.EACCES):
            return True
        raise
    return False


def _escaped(name: str) -> str:
    """A pattern that matches that name only."""
    return "".join("[%s]" % letter if letter in "*?[" else letter for letter in name)


def _run_program(job: Job, chunk: Chunk, folder: str, paths: Iterable[str], output: str, state: str) -> None:
    """Lets the program work on a chunk. What an earlier try has done is not done again."""
    skipped = [_escaped(os.path.relpath(path, folder)) for path in chunk.skipped]
    command = [job.program, "batch", "--files0-from", "-", "--output-dir", output, "--state", state, "-j1",
               "--progress", "none", "--quiet", *job.options, *(word for name in skipped for word in ("--exclude", name)),
               *(["--shard", chunk.shard] if chunk.shard else [])]
    listed = b"\0".join(map(os.fsencode, paths))
    while True:
        done = subprocess.run(command, input=listed, cwd=folder, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        if done.returncode in (_DONE, _SOME_FAILED):
            return
        if done.returncode != _UNWRITABLE or not _is_locked(state):
            raise ChunkFailedError("adaptors batch ended with code %d: %s" % (
                done.returncode, done.stderr.decode("utf-8", "replace").strip()[-2000:]), kind="chunk-failed")
        time.sleep(0.5)


def _rows_in(state: str, skipped: Iterable[str] = ()) -> list[tuple[Any, ...]]:
    left_out = set(skipped)
    with closing(sqlite3.connect(pathlib.Path(state).absolute().as_uri() + "?mode=ro", uri=True)) as database:
        rows = database.execute("SELECT %s FROM files ORDER BY path" % ", ".join(COLUMNS)).fetchall()
    return [row for row in rows if os.fsdecode(row[0]) not in left_out]


def _state_of(job: Job, chunk: Chunk) -> str:
    return os.path.join(job.output, STATES, chunk.key() + ".sqlite")


def _migrate_local(job: Job, chunk: Chunk) -> None:
    state = _state_of(job, chunk)
    os.makedirs(os.path.dirname(state), exist_ok=True)
    _run_program(job, chunk, chunk.folder, chunk.paths, job.output, state)


def _put(system: Any, local: str, target: str) -> None:
    """Writes a file as a whole."""
    protocols = {system.protocol} if isinstance(system.protocol, str) else set(system.protocol)
    system.makedirs(target.rpartition("/")[0], exist_ok=True)
    if protocols & _ATOMIC_PROTOCOLS:
        system.put_file(local, target)
        return
    part = "%s.%d-0.tmp" % (target, os.getpid())
    system.put_file(local, part)
    # Not mv(), for which "*" in a name is a pattern.
    if hasattr(system, "mv_file"):
        system.mv_file(part, target)
    else:
        system.cp_file(part, target)
        system.rm_file(part)


def _migrate_remote(job: Job, chunk: Chunk) -> list[tuple[Any, ...]]:
    """Fetches the files, migrates them, and puts the results in their places. The folders here lie to each other as the
    remote ones do, so that relative paths in projects are right."""
    import fsspec

    system, start = fsspec.core.url_to_fs(chunk.folder)
    output_system, output = fsspec.core.url_to_fs(job.output)
    with tempfile.TemporaryDirectory(prefix="adaptors-") as scratch:
        def local(kind: Any, path: str) -> str:
            protocol = kind.protocol if isinstance(kind.protocol, str) else kind.protocol[0]
            return os.path.join(os.path.realpath(scratch), protocol, path.lstrip("/"))

        folder, results = local(system, start), local(output_system, output)
        for path in chunk.paths:
            target = local(system, path)
            os.makedirs(os.path.dirname(target), exist_ok=True)
            system.get_file(path, target)
            changed = system.info(path).get("mtime")
            if isinstance(changed, (int, float)):
                os.utime(target, (changed, changed))
        os.makedirs(results, exist_ok=True)
        state = os.path.join(scratch, "state.sqlite")
        _run_program(job, chunk, folder, [folder], results, state)
        for parent, _, names in os.walk(results):
            for name in names:
                inside = os.path.relpath(os.path.join(parent, name), results)
                _put(output_system, os.path.join(parent, name), output.rstrip("/") + "/" + inside)
        place = {local(system, path): system.unstrip_protocol(path) for path in chunk.paths}
        rows = _rows_in(state)
        return [(place.get(os.fsdecode(row[0]), row[0]), *row[1:]) for row in rows]


def migrate_chunk(job: Job, chunk: Chunk) -> list[tuple[Any, ...]] | None:
    """The task. Gives the rows of the chunk's files where its state does not have them."""
    if _is_url(chunk.folder):
        return _migrate_remote(job, chunk)
    _migrate_local(job, chunk)
    return None


def _give_up(job: Job, chunk: Chunk, reason: str) -> bool:
    """For a chunk that ended the workers of the cluster that had it: records the file that was in work as failed, so
    that the chunk goes on with the others. Gives whether there was one."""
    if _is_url(chunk.folder) or not os.path.exists(_state_of(job, chunk)):
        return False
    state = _state_of(job, chunk)
    while _is_locked(state):  # the program goes on without its worker
        time.sleep(0.5)
    with closing(sqlite3.connect(state)) as database, database:
        changed = database.execute(
            "UPDATE files SET state = 'failed', code = 1, kind = 'crashed', reason = ? WHERE state = 'working'",
            (reason,)).rowcount
    return changed > 0


def _failed_rows(chunk: Chunk, reason: str) -> list[tuple[Any, ...]]:
    """Rows for a chunk that could not be worked on. Nothing is recorded: a later run takes it again."""
    rows = []
    for path in _files_of(chunk):
        facts = {"path": path, "name": os.path.relpath(path, chunk.folder), "bundle": 0, "state": "failed", "code": 1,
                 "kind": "chunk-failed", "reason": reason, "fresh": 0, "replaceable": 0}
        rows.append(tuple(facts.get(column) for column in COLUMNS))
    return rows


def _files_of(chunk: Chunk) -> Iterator[str]:
    """All files of a chunk."""
    number, count = map(int, chunk.shard.split("/")) if chunk.shard else (1, 1)
    for path in chunk.paths:
        found = [path]
        if not _is_url(chunk.folder) and os.path.isdir(path):
            found = []
            for parent, folders, names in os.walk(path):
                folders[:] = [name for name in folders if os.path.join(parent, name) not in chunk.skipped]
                found += [os.path.join(parent, name) for name in names]
        for file in found:
            name = os.path.relpath(file, chunk.folder)
            hashed = int.from_bytes(hashlib.sha256(os.fsencode(name)).digest()[:8], "big")
            if hashed % count == number - 1:
                yield file


def migrate_all(sources: str | os.PathLike[str] | Sequence[str | os.PathLike[str]], output: str | os.PathLike[str],
                client: Client, *, to: int = NEWEST, chunk: int = 200, retries: int = 3, repair: bool = False,
                strict: bool = False, force: bool = False, retry_failed: bool = False, timeout: int = 600,
                program: str = "adaptors", arguments: Sequence[str] = ()) -> pandas.DataFrame:
    """Migrates all projects of an archive and gives a table with a row for each file.

    ``sources`` is a folder, or several folders and files, as paths that all workers have, or as URLs for fsspec;
    ``output`` is a folder likewise. Outputs have the names that ``adaptors batch SOURCES --output-dir OUTPUT`` gives
    them. ``chunk`` is how many files a task takes, about. A task that fails is tried again ``retries`` times, and one
    whose worker died as often as Dask's setting ``distributed.scheduler.allowed-failures`` says; then the file that was
    in work is recorded as failed, and the task goes on with the others. Files of a task that can't be worked on at all
    have ``chunk-failed`` as their kind; where that holds for all tasks, `ChunkFailedError` is raised.

    With paths a chunk goes on where it was when its worker died, and a second call does only what is new or has changed:
    what is done is recorded in the folder ``.adaptors-dask`` below the output. With URLs each call does all, and outputs
    that exist are replaced.

    ``to``, ``repair``, ``strict``, ``force``, ``retry_failed``, ``timeout`` and other ``arguments`` are for
    ``adaptors batch``, which is ``program`` on the workers.

    >>> from distributed import Client                                          # doctest: +SKIP
    >>> table = migrate_all("/data/projects", "/data/new", Client("scheduler:8786"))  # doctest: +SKIP
    >>> table.to_parquet("/data/new.parquet")                                   # doctest: +SKIP
    """
    import pandas
    from distributed import KilledWorker, as_completed

    if chunk < 1:
        raise ValueError("chunk is a number of files, at least 1")
    listed = [sources] if isinstance(sources, (str, os.PathLike)) else sources
    places = [os.fspath(source) for source in listed]
    target = os.fspath(output)
    remote = {_is_url(place) for place in [*places, target]}
    if len(remote) > 1:
        raise ValueError("sources and output are all paths, or all URLs")
    options = ["--to", str(to), "--timeout", str(timeout)]
    options += [word for word, wanted in (("--repair", repair), ("--strict", strict), ("--force", force),
                                          ("--retry-failed", retry_failed)) if wanted]
    if remote == {True}:
        chunks = _remote_chunks(places, chunk)
    else:
        target = os.path.realpath(target)
        os.makedirs(target, exist_ok=True)
        chunks = _local_chunks(places, target, chunk)
    job = Job(target, program, (*options, *arguments))

    def submit(part: Chunk) -> Any:
        return client.submit(migrate_chunk, job, part, retries=retries, pure=False)

    parts = {future: part for part in chunks for future in [submit(part)]}
    total, failed = len(parts), 0
    rows: list[tuple[Any, ...]] = []
    waiting = as_completed(list(parts))
    for future in waiting:
        part = parts.pop(future)
        if future.status == "finished":
            # Not by way of the worker where that can be: it may be dead meanwhile, and Dask then closes its place.
            rows += future.result() if _is_url(part.folder) else _rows_in(_state_of(job, part), part.skipped)
            continue
        error = future.exception()
        reason = "%s: %s" % (type(error).__name__, error)
        if isinstance(error, KilledWorker) and _give_up(job, part, reason):
            again = submit(part)
            parts[again] = part
            waiting.add(again)
            continue
        failed += 1
        if failed == total:
            raise ChunkFailedError("no chunk could be worked on; the last: " + reason, kind="chunk-failed") from error
        rows += _failed_rows(part, reason)
    rows.sort(key=lambda row: os.fsencode(row[0]))
    columns = zip(*rows) if rows else ([] for _ in COLUMNS)
    # Not by way of floating numbers, which times in nanoseconds don't fit into.
    return pandas.DataFrame({
        name: pandas.array(list(values), dtype="Int64") if name in _WHOLE_NUMBERS else pandas.Series(values, dtype=object)
        if name != "seconds" else pandas.Series(values, dtype=float) for name, values in zip(COLUMNS, columns)})
