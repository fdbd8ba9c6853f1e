"""Migrates old projects of a video editor.

>>> import project_adaptors
>>> result = project_adaptors.migrate("samples/holiday-v27.xml")
>>> result.report.from_.version, result.report.to.version, result.report.clips.kept
(27, 77, 6)
>>> project_adaptors.info(result.data).objects["Timeline::Clip"]
6

All functions take a project as a path, as bytes, or as an open binary file. They work without the lock of the
interpreter, so that threads work at once; each call has a document of its own.
"""

from __future__ import annotations

import dataclasses
import os
from dataclasses import dataclass, field
from typing import Literal, Protocol, TypeAlias

from . import _native, reports
from .errors import *  # noqa: F403
from .errors import AdaptorsError as AdaptorsError
from .reports import DiffReport, ExplainReport, ExportReport, InfoReport, MigrationReport, StepsReport, VerifyReport

__version__: str = _native.version

NEWEST: int = _native.newest
"""The newest schema version."""


class Readable(Protocol):
    """A file that is open for reading bytes."""

    def read(self) -> bytes: ...


Path: TypeAlias = str | os.PathLike[str]
Source: TypeAlias = Path | bytes | bytearray | memoryview | Readable


@dataclass(frozen=True)
class Folders:
    """The installed editor's folders, which begin paths in projects. An empty one is kept as its marker."""

    packages: Path = ""
    ai_models: Path = ""
    downloadable: Path = ""


@dataclass(frozen=True)
class Result:
    """A migrated project."""

    data: bytes = field(repr=False)
    """The document as it is to be saved."""
    report: MigrationReport = field(repr=False)
    whole: bool
    """Whether all of the input is in it, except what schema versions removed on purpose."""
    _migration: _Migration = field(repr=False)

    def write(self, path: Path, *, force: bool = False) -> MigrationReport:
        """Writes the project to a file and returns the report with the name of the file as ``output``.

        The file is there as a whole or not at all. It gets the permissions of the input. A file that exists is replaced
        only with ``force``. In another folder than that of the input (or ``target`` of `migrate`) the document is
        migrated once more, since relative paths in it are different there.

        >>> import tempfile, pathlib
        >>> folder = pathlib.Path(tempfile.mkdtemp())
        >>> report = migrate("samples/holiday-v27.xml").write(folder / "film.json")
        >>> pathlib.Path(report.output).name
        'film.json'
        >>> migrate("samples/holiday-v27.xml").write(folder / "film.json")
        Traceback (most recent call last):
            ...
        project_adaptors.errors.OutputExistsError: ...
        """
        self._migration.write(self.data, path, force)
        return dataclasses.replace(self.report, output=os.fspath(path))


@dataclass(frozen=True)
class Export:
    """A project's timeline for other editors."""

    data: bytes = field(repr=False)
    """The bytes of an .otio file."""
    report: ExportReport = field(repr=False)
    whole: bool
    """Whether all of the input is in the migrated project that was exported; see `Result`."""
    _migration: _Migration = field(repr=False)

    def write(self, path: Path, *, force: bool = False) -> ExportReport:
        """Writes the timeline to a file, as `Result.write` writes a project."""
        self._migration.write(self.data, path, force)
        return dataclasses.replace(self.report, output=os.fspath(path))


_Common: TypeAlias = tuple[int, int | None, bool, tuple[bytes, bytes, bytes]]


@dataclass(frozen=True)
class _Migration:
    """The arguments of a migration, and what is made of its result."""

    work: Literal["migrate", "export_otio"]
    location: bytes
    content: bytes | None
    common: _Common
    strictness: int
    target: bytes

    def run(self, target: Path | None = None) -> tuple[bytes, str, bool]:
        work = _native.migrate if self.work == "migrate" else _native.export_otio
        return work(self.location, self.content, self.common, self.strictness,
                    self.target if target is None else _file(target))

    def write(self, data: bytes, path: Path, force: bool) -> None:
        _native.write(_file(path), data if self.is_for_folder_of(path) else self.run(path)[0], force, self.location)

    def is_for_folder_of(self, path: Path) -> bool:
        def folder(file: bytes) -> bytes:
            return os.path.dirname(os.path.abspath(file))

        return folder(self.target or self.location or b"project") == folder(os.fsencode(path))


def _file(path: Path) -> bytes:
    name = os.fsencode(path)
    if not name or b"\0" in name:
        raise ValueError("%r is not the name of a file" % os.fspath(path))
    return b"./-" if name == b"-" else name  # "-" is a standard stream where the program is used


def _read(source: Source, location: Path | None) -> tuple[bytes, bytes | None]:
    """Where a project is, and what was read of it; None where it is still to be read."""
    place = b"" if location is None else _file(location)
    if isinstance(source, (str, os.PathLike)):
        if location is not None:
            raise ValueError("location is for projects that are no paths")
        return _file(source), None
    if isinstance(source, (bytes, bytearray, memoryview)):
        return place, bytes(source)
    if not callable(getattr(source, "read", None)):
        raise TypeError("a project is a path, bytes, or a binary file, not %s" % type(source).__name__)
    content = source.read()
    if not isinstance(content, bytes):
        raise TypeError("the file is not open for reading bytes")
    return place, content


def _version(value: int | None, name: str) -> None:
    if value is None:
        return
    if isinstance(value, bool) or not isinstance(value, int):
        raise TypeError("%s is a schema version, a whole number" % name)
    if not 0 <= value <= NEWEST:
        raise ValueError("%s is a schema version from 0 to %d, not %d" % (name, NEWEST, value))


def _options(to: int = NEWEST, from_version: int | None = None, repair: bool = False,
             folders: Folders | None = None) -> _Common:
    _version(to, "to")
    _version(from_version, "from_version")
    if folders is not None and not isinstance(folders, Folders):
        raise TypeError("folders is a Folders, not %s" % type(folders).__name__)
    places = folders or Folders()
    return (to, from_version, bool(repair), (os.fsencode(places.packages), os.fsencode(places.ai_models),
                                             os.fsencode(places.downloadable)))


def migrate(source: Source, to: int = NEWEST, *, strict: bool | Literal["all"] = False,
            folders: Folders | None = None, repair: bool = False, from_version: int | None = None,
            location: Path | None = None, target: Path | None = None) -> Result:
    """Migrates a project to schema version ``to``.

    ``strict`` raises `RefusedError` where something is lost that no version meant to remove, or a step reports an
    error; ``"all"`` where anything is lost. ``repair`` repairs the document where it needs that, and recovers damaged
    files. ``from_version`` replaces what the document says of its version. ``location`` is the file that bytes came
    from: side files are in its folder, and relative paths begin there. ``target`` is where the result will be saved;
    it is for the relative paths in it, and nothing is written there. A document that has the version already is
    returned as it is.

    >>> result = migrate(open("samples/holiday-v12.xml", "rb"), to=62)
    >>> result.data[:38]
    b'<?xml version="1.0" encoding="UTF-8"?>'
    >>> result.report.to
    State(form='xml', version=62)
    >>> migrate(b"")
    Traceback (most recent call last):
        ...
    project_adaptors.errors.EmptyError: ...
    """
    migration = _migration("migrate", source, to, strict, folders, repair, from_version, location, target)
    data, report, whole = migration.run()
    return Result(data, reports.from_json(MigrationReport, report), whole, migration)


def export_otio(source: Source, *, strict: bool | Literal["all"] = False, folders: Folders | None = None,
                repair: bool = False, from_version: int | None = None, location: Path | None = None,
                target: Path | None = None) -> Export:
    """Migrates a project in memory and gives its timeline as OpenTimelineIO. The options are those of `migrate`. What
    the format has no words for is listed in the report.

    >>> export = export_otio("samples/holiday-v27.xml")
    >>> export.report.export.clips
    6
    >>> b"Timeline.1" in export.data
    True
    """
    migration = _migration("export_otio", source, NEWEST, strict, folders, repair, from_version, location, target)
    data, report, whole = migration.run()
    return Export(data, reports.from_json(ExportReport, report), whole, migration)


def _migration(work: Literal["migrate", "export_otio"], source: Source, to: int, strict: bool | Literal["all"],
               folders: Folders | None, repair: bool, from_version: int | None, location: Path | None,
               target: Path | None) -> _Migration:
    if strict not in (False, True, "all"):
        raise ValueError('strict is False, True or "all"')
    common = _options(to, from_version, repair, folders)
    place, content = _read(source, location)
    return _Migration(work, place, content, common, 2 if strict == "all" else int(strict),
                      b"" if target is None else _file(target))


def info(source: Source, *, from_version: int | None = None, location: Path | None = None) -> InfoReport:
    """What a project holds: version, objects, clips, timelines, media, and the steps that a migration runs.

    >>> report = info("samples/holiday-v27.xml")
    >>> report.version, len(report.clips), report.timelines[0].role
    (27, 6, 'main')
    """
    common = _options(from_version=from_version)
    return reports.from_json(InfoReport, _native.info(*_read(source, location), common))


def verify(source: Source, *, from_version: int | None = None) -> VerifyReport:
    """The faults of a document, such as references to missing objects.

    >>> verify(migrate("samples/holiday-v27.xml").data).findings
    ()
    """
    common = _options(from_version=from_version)
    return reports.from_json(VerifyReport, _native.verify(*_read(source, None), common))


def diff(before: Source, after: Source, *, raw: bool = False, repair: bool = False) -> DiffReport:
    """What is different in the second project. Both are migrated to the newer version of the two first, except with
    ``raw``, which needs two documents of one form.

    >>> diff("samples/holiday-v27.xml", migrate("samples/holiday-v27.xml").data).differences
    ()
    """
    common = _options(repair=repair)
    return reports.from_json(DiffReport, _native.diff(*_read(before, None), *_read(after, None), common, bool(raw)))


def explain(source: Source, to: int = NEWEST, *, step: str = "", clip: str = "", repair: bool = False,
            from_version: int | None = None, location: Path | None = None) -> ExplainReport:
    """What each step does to a project, or one step, or what all do to one clip, a name or an id.

    >>> report = explain("samples/holiday-v27.xml", step="V28_ClipLabelAdaptor")
    >>> [(effect.class_, len(effect.fields)) for effect in report.steps]
    [('V28_ClipLabelAdaptor', 1)]
    """
    common = _options(to, from_version, repair)
    return reports.from_json(ExplainReport, _native.explain(*_read(source, location), common, step, clip))


def steps(above: int = 0, to: int = NEWEST) -> StepsReport:
    """The steps above a schema version up to another one, and the adaptors that are no steps.

    >>> [step.class_ for step in steps(76).steps if step.number]
    ['V77_TrackUsedAdaptor', 'V77_TitlesTrackAdaptor', 'V77_TrackLevelAdaptor']
    """
    _version(above, "above")
    _version(to, "to")
    return reports.from_json(StepsReport, _native.steps(above, to))
