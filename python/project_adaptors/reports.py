"""Reports as values: the JSON objects that the program prints, as frozen dataclasses.

A field has the name of the JSON key; behind a key that is a word of Python stands an underscore: ``from_``, ``class_``,
``in_``. The schemas in docs/schema describe all keys. Times are in milliseconds, ids are those of the document.
"""

from __future__ import annotations

import dataclasses
import functools
import json
import keyword
import types
import typing
from collections.abc import Mapping
from dataclasses import dataclass
from typing import Any, TypeVar

_Report = TypeVar("_Report")


@dataclass(frozen=True)
class Tool:
    """The program or module that made a report."""

    name: str
    version: str


@dataclass(frozen=True)
class State:
    """A document's form, "xml" or "json", and its schema version."""

    form: str
    version: int | None


@dataclass(frozen=True)
class Clip:
    """A clip in the list of a timeline."""

    id: int
    name: str


@dataclass(frozen=True)
class TimedClip:
    """A clip, and where it begins in its timeline."""

    id: int
    name: str
    time: int | None


@dataclass(frozen=True)
class ObjectName:
    """An object of a document."""

    class_: str
    id: int


@dataclass(frozen=True)
class LogLine:
    """A warning or an error of a step."""

    step: str
    severity: str
    text: str
    place: str
    object: ObjectName | None
    clip: TimedClip | None
    meaning: str | None


@dataclass(frozen=True)
class DamagedPlace:
    """A damaged place of a file."""

    damage: str
    byte: int
    line: int
    column: int
    text: str


@dataclass(frozen=True)
class VersionGuess:
    """The highest schema version that a document's content allows, and why."""

    highest: int
    reasons: tuple[str, ...]


@dataclass(frozen=True)
class RecoveredObjects:
    """Counts of objects of a damaged file."""

    whole: int
    inPart: int
    lost: int
    made: int


@dataclass(frozen=True)
class RecoveredClips:
    """Clips of a damaged file."""

    inPlace: int
    moved: tuple[Clip, ...]
    inPart: tuple[Clip, ...]
    lost: tuple[Clip, ...]


@dataclass(frozen=True)
class Recovery:
    """What was recovered of a damaged file, or of one whose schema version is missing or wrong."""

    complete: bool
    findings: tuple[DamagedPlace, ...]
    findingsLeftOut: int
    encoding: str
    version: int
    versionGuess: VersionGuess | None
    newerVersion: int | None
    objects: RecoveredObjects
    referencesCleared: int
    entriesRemoved: int
    predeclarationsMended: int
    countsMended: int
    charactersReplaced: int
    clips: RecoveredClips


@dataclass(frozen=True)
class RepairPlace:
    """A place in a file's text that was repaired."""

    line: int
    column: int
    what: str


@dataclass(frozen=True)
class Repair:
    """A repair that was made, or would be made."""

    name: str
    before: str
    count: int
    text: str
    objects: tuple[ObjectName, ...]
    clips: tuple[TimedClip, ...]
    places: tuple[RepairPlace, ...]


@dataclass(frozen=True)
class ObjectCounts:
    """Counts of objects by class before and after, and how many were left out that nothing refers to."""

    in_: Mapping[str, int]
    out: Mapping[str, int]
    leftOut: int


@dataclass(frozen=True)
class ClipCounts:
    """How many clips timelines list, before and after."""

    in_: int
    kept: int
    removed: int
    added: int
    out: int
    lost: tuple[Clip, ...]


@dataclass(frozen=True)
class Loss:
    """A clip, an effect or a title of the input that the result does not reach."""

    what: str
    id: int
    class_: str
    name: str
    clip: int
    step: str | None
    reason: str
    intended: bool
    used: bool


@dataclass(frozen=True)
class Report:
    """What all reports have."""

    format: int
    tool: Tool
    command: str
    input: str | None
    sha256: str | None
    seconds: float | None


@dataclass(frozen=True)
class MigrationReport(Report):
    """What a migration did."""

    output: str | None
    backup: str | None
    notes: tuple[str, ...]
    from_: State
    to: State
    steps: tuple[str, ...]
    skipped: tuple[str, ...]
    log: tuple[LogLine, ...]
    recovery: Recovery | None
    repairs: tuple[Repair, ...]
    advice: tuple[Repair, ...]
    objects: ObjectCounts
    duplicateIds: tuple[int, ...]
    clips: ClipCounts | None
    losses: tuple[Loss, ...] | None


@dataclass(frozen=True)
class Omission:
    """Something of a project that the format of an export has no words for."""

    kind: str
    timeline: int | None
    id: int | None
    name: str
    detail: str


@dataclass(frozen=True)
class Exported:
    """What an export holds."""

    format: str
    timelines: int
    clips: int
    omissions: tuple[Omission, ...]


@dataclass(frozen=True)
class ExportReport(Report):
    """What a migration and the export of its result did."""

    output: str | None
    from_: State
    to: State
    steps: tuple[str, ...]
    skipped: tuple[str, ...]
    log: tuple[LogLine, ...]
    recovery: Recovery | None
    repairs: tuple[Repair, ...]
    advice: tuple[Repair, ...]
    objects: ObjectCounts
    duplicateIds: tuple[int, ...]
    clips: ClipCounts | None
    losses: tuple[Loss, ...] | None
    export: Exported


@dataclass(frozen=True)
class DanglingReference:
    """A reference to an object that is missing."""

    from_: int
    class_: str
    to: int


@dataclass(frozen=True)
class Track:
    """A track of a timeline."""

    id: int | None
    kind: str
    muted: bool
    hidden: bool


@dataclass(frozen=True)
class Effect:
    """An effect of a clip."""

    id: int
    class_: str
    name: str


@dataclass(frozen=True)
class TimelineClip:
    """A clip and its place in a timeline."""

    id: int
    class_: str
    name: str
    kind: str
    track: int
    level: int
    start: int
    duration: int
    sourceStart: int
    sourceDuration: int
    enabled: bool
    reversed: bool
    media: str | None
    timeline: int | None
    effects: tuple[Effect, ...]
    texts: tuple[str, ...]


@dataclass(frozen=True)
class Transition:
    """A transition between two clips."""

    id: int
    class_: str
    name: str
    from_: int | None
    to: int | None
    duration: int


@dataclass(frozen=True)
class Timeline:
    """A timeline with all that it shows."""

    id: int
    role: str
    name: str
    duration: int
    width: int | None
    height: int | None
    frameRate: float | None
    tracks: tuple[Track, ...]
    clips: tuple[TimelineClip, ...]
    transitions: tuple[Transition, ...]


@dataclass(frozen=True)
class MediaFile:
    """A file that clips show."""

    path: str
    present: bool | None
    clips: int


@dataclass(frozen=True)
class InfoReport(Report):
    """What a document holds."""

    form: str
    version: int | None
    objects: Mapping[str, int]
    clips: tuple[Clip, ...]
    danglingReferences: tuple[DanglingReference, ...]
    duplicateIds: tuple[int, ...]
    steps: tuple[str, ...]
    repairs: tuple[Repair, ...] | None
    timelines: tuple[Timeline, ...]
    media: tuple[MediaFile, ...]


@dataclass(frozen=True)
class Finding:
    """A fault of a document. ``to`` is the id that a reference names."""

    fault: str
    severity: str
    class_: str
    id: int
    path: str
    text: str
    to: int | None = None


@dataclass(frozen=True)
class VerifyReport(Report):
    """The faults of a document."""

    findings: tuple[Finding, ...]


@dataclass(frozen=True)
class ComparedDocument:
    """One of two documents that were compared."""

    name: str
    form: str
    version: int | None


@dataclass(frozen=True)
class ComparedClip:
    """The clip that a difference is about."""

    name: str
    time: int


@dataclass(frozen=True)
class Difference:
    """Something that is different in the second document."""

    kind: str
    clip: ComparedClip | None
    class_: str
    name: str
    idBefore: int | None
    idAfter: int | None
    field: str | None
    before: Any
    after: Any


@dataclass(frozen=True)
class DiffReport(Report):
    """What is different between two documents."""

    before: ComparedDocument
    after: ComparedDocument
    comparedAs: int | None
    differences: tuple[Difference, ...]


@dataclass(frozen=True)
class Example:
    """What a step changed in one object."""

    id: int
    clip: Clip | None
    before: Any
    after: Any


@dataclass(frozen=True)
class FieldChange:
    """What a step changed in a field of all objects of a class."""

    class_: str
    field: str
    change: str
    count: int
    examples: tuple[Example, ...]


@dataclass(frozen=True)
class StepEffect:
    """What one step did."""

    class_: str
    summary: str
    added: Mapping[str, int]
    removed: Mapping[str, int]
    changed: Mapping[str, int]
    fields: tuple[FieldChange, ...]


@dataclass(frozen=True)
class ExplainReport(Report):
    """What each step does to a document."""

    steps: tuple[StepEffect, ...]
    unchanged: tuple[str, ...]
    recovery: Recovery | None
    repairs: tuple[Repair, ...]


@dataclass(frozen=True)
class Step:
    """A step; ``number`` is the schema version that it leads to."""

    number: int | None
    class_: str
    forms: tuple[str, ...]
    summary: str


@dataclass(frozen=True)
class StepsReport(Report):
    """A list of steps."""

    steps: tuple[Step, ...]


def key_of(field: str) -> str:
    """The JSON key of a field.

    >>> key_of("from_"), key_of("steps")
    ('from', 'steps')
    """
    bare = field.removesuffix("_")
    return bare if keyword.iskeyword(bare) else field


@functools.cache
def _types_of(kind: type[Any]) -> dict[str, tuple[str, Any]]:
    """Key and type of each field."""
    hints = typing.get_type_hints(kind)
    return {field.name: (key_of(field.name), hints[field.name]) for field in dataclasses.fields(kind)}


def _value_of(hint: Any, value: Any) -> Any:
    if value is None or hint is Any:
        return value
    if isinstance(hint, types.UnionType):
        hint = next(kind for kind in typing.get_args(hint) if kind is not types.NoneType)
    if dataclasses.is_dataclass(hint):
        return from_json(typing.cast(type[Any], hint), value)
    if typing.get_origin(hint) is tuple:
        item = typing.get_args(hint)[0]
        return tuple(_value_of(item, entry) for entry in value)
    return value


def from_json(kind: type[_Report], value: str | Mapping[str, Any]) -> _Report:
    """A report from its JSON object, or the text of one. Unknown keys are passed over.

    >>> from_json(Clip, '{"id": 7, "name": "Beach"}')
    Clip(id=7, name='Beach')
    """
    object_ = json.loads(value) if isinstance(value, str) else value
    fields = {name: _value_of(hint, object_[key]) for name, (key, hint) in _types_of(typing.cast(Any, kind)).items()
              if key in object_}
    return kind(**fields)


def as_json(report: Any) -> Any:
    """The JSON object of a report, of dictionaries and lists.

    >>> as_json(State("xml", 27))
    {'form': 'xml', 'version': 27}
    """
    if dataclasses.is_dataclass(report) and not isinstance(report, type):
        values = ((field, getattr(report, field.name)) for field in dataclasses.fields(report))
        return {key_of(field.name): as_json(value) for field, value in values
                if value is not None or field.default is dataclasses.MISSING}
    if isinstance(report, tuple):
        return [as_json(entry) for entry in report]
    if isinstance(report, Mapping):
        return {key: as_json(entry) for key, entry in report.items()}
    return report
