"""Exceptions, one class for each kind of error below :class:`AdaptorsError`.

>>> import project_adaptors
>>> try:
...     project_adaptors.migrate(b"<Archive><Clip></Archive>")
... except project_adaptors.AdaptorsError as error:
...     print(type(error).__name__, error.kind, error.line, error.column)
BrokenXmlError broken-xml 1 25
"""

from __future__ import annotations

import errno
import json
import os
from typing import Any

from . import reports

__all__ = [
    "AdaptorsError", "BadVersionError", "BrokenJsonError", "BrokenXmlError", "ChangedMeanwhileError", "EmptyError",
    "ForeignEncodingError", "InUseError", "MissingFileError", "MissingRootError", "NoArchiveError",
    "NoRegularFileError", "NoSuchFormError", "NoVersionError", "NoWayBackError", "OutputExistsError", "RefusedError",
    "RefusedXmlError", "StepFailedError", "TooLargeError", "TooNewError", "UnknownFormError", "UnknownStepError",
    "UnreachableVersionError", "UnreadableError", "UnwritableError", "WrongEnvelopeError", "WrongFormError"
]


class AdaptorsError(Exception):
    """A document can't be read, migrated or written. Facts that are not known are None."""

    def __init__(self, text: str, *, kind: str = "unexpected", file: str | None = None, line: int | None = None,
                 column: int | None = None, byte: int | None = None, step: str | None = None,
                 version: int | None = None, target: int | None = None, reason: str | None = None,
                 cut_off: bool = False, repairs: tuple[reports.Repair, ...] = (),
                 recovery: reports.Recovery | None = None) -> None:
        super().__init__(text)
        self.text = text
        """A sentence on what is wrong, and where."""
        self.kind = kind
        """The kind as a word, such as "broken-xml"; the same as in the JSON of the program."""
        self.file = file
        self.line = line
        """In XML text, from 1."""
        self.column = column
        self.byte = byte
        """In JSON text, from 1."""
        self.step = step
        """Class name of the step that failed."""
        self.version = version
        """Schema version of the document."""
        self.target = target
        """Schema version that was asked for."""
        self.reason = reason
        self.cut_off = cut_off
        """Whether the document is fine but for its end, which is missing."""
        self.repairs = repairs
        """What ``repair=True`` would repair, where that helps."""
        self.recovery = recovery
        """What ``repair=True`` would recover of a damaged file, where that helps."""

    def __str__(self) -> str:
        return self.text

    def __reduce__(self) -> tuple[Any, ...]:
        facts = {name: value for name, value in self.__dict__.items() if name != "text"}
        return _again, (type(self), self.text, facts)


def _again(kind: type[AdaptorsError], text: str, facts: dict[str, Any]) -> AdaptorsError:
    error = kind(text)
    error.__dict__.update(facts)
    return error


class RefusedError(AdaptorsError):
    """The result was refused with ``strict``. ``report`` says what would be lost."""

    report: reports.MigrationReport | reports.ExportReport


class UnreadableError(AdaptorsError, OSError):
    """The file can't be opened or read."""


class MissingFileError(UnreadableError, FileNotFoundError):
    """The file is not there."""


class TooLargeError(AdaptorsError):
    """The document is larger than the limit of 1 GiB."""


class NoRegularFileError(AdaptorsError, OSError):
    """A file to be changed in place is a device, a pipe or a folder."""


class EmptyError(AdaptorsError):
    """The document has no content."""


class UnknownFormError(AdaptorsError):
    """The document is neither XML nor JSON."""


class BrokenXmlError(AdaptorsError):
    """XML that is not well-formed."""


class RefusedXmlError(AdaptorsError):
    """XML with a document type declaration, or nested too deep."""


class ForeignEncodingError(AdaptorsError):
    """XML in an encoding that no project uses."""


class NoArchiveError(AdaptorsError):
    """XML without exactly one ``Archive``."""


class MissingRootError(AdaptorsError):
    """An archive whose root object is missing."""


class BrokenJsonError(AdaptorsError):
    """JSON that is not well-formed."""


class WrongEnvelopeError(AdaptorsError):
    """JSON that is no project."""


class NoVersionError(AdaptorsError):
    """The document names no schema version; give it with ``from_version``."""


class BadVersionError(AdaptorsError):
    """What the document names as its schema version is none."""


class WrongFormError(AdaptorsError):
    """Documents of that schema version have the other form."""


class TooNewError(AdaptorsError):
    """The document has a newer schema version than is known."""


class UnreachableVersionError(AdaptorsError, ValueError):
    """The version asked for is below that of the document, or above the newest."""


class NoWayBackError(AdaptorsError, ValueError):
    """The version asked for is an archive's, and the document is JSON."""


class UnknownStepError(AdaptorsError, ValueError):
    """There is no step of that name."""


class NoSuchFormError(AdaptorsError):
    """The step can't run on a document of this form."""


class StepFailedError(AdaptorsError):
    """A step failed; ``step`` is its name."""


class UnwritableError(AdaptorsError, OSError):
    """A file can't be written."""


class OutputExistsError(AdaptorsError, FileExistsError):
    """A file exists and must not be replaced."""


class InUseError(AdaptorsError, OSError):
    """The file is locked by another migration."""


class ChangedMeanwhileError(AdaptorsError, OSError):
    """Another process changed the file during the migration."""


KINDS: dict[str, type[AdaptorsError]] = {
    "unreadable": UnreadableError,
    "too-large": TooLargeError,
    "no-regular-file": NoRegularFileError,
    "empty": EmptyError,
    "unknown-form": UnknownFormError,
    "broken-xml": BrokenXmlError,
    "refused-xml": RefusedXmlError,
    "foreign-encoding": ForeignEncodingError,
    "no-archive": NoArchiveError,
    "missing-root": MissingRootError,
    "broken-json": BrokenJsonError,
    "wrong-envelope": WrongEnvelopeError,
    "no-version": NoVersionError,
    "bad-version": BadVersionError,
    "wrong-form": WrongFormError,
    "too-new": TooNewError,
    "unreachable-version": UnreachableVersionError,
    "no-way-back": NoWayBackError,
    "unknown-step": UnknownStepError,
    "no-such-form": NoSuchFormError,
    "step-failed": StepFailedError,
    "unwritable": UnwritableError,
    "output-exists": OutputExistsError,
    "in-use": InUseError,
    "changed-meanwhile": ChangedMeanwhileError,
}
"""The class of each kind."""


def made_of(facts: str) -> AdaptorsError:
    """The exception for the facts of an error, a JSON object."""
    values = json.loads(facts)
    kind = KINDS.get(values["kind"], AdaptorsError)
    file = values["file"]
    if kind is UnreadableError and file is not None and not os.path.lexists(file):
        kind = MissingFileError
    error = kind(
        values["text"], kind=values["kind"], file=file, line=values["line"], column=values["column"],
        byte=values["byte"], step=values["step"], version=values["version"], target=values["target"],
        reason=values["reason"], cut_off=values["cutOff"],
        repairs=tuple(reports.from_json(reports.Repair, repair) for repair in values["repairs"]),
        recovery=reports.from_json(reports.Recovery, values["recovery"]) if values["recovery"] else None)
    if isinstance(error, OSError):
        error.filename = file
        if isinstance(error, MissingFileError):
            error.errno = errno.ENOENT
    return error


def refused(report: str) -> RefusedError:
    """The exception for a migration whose result was refused; its report is a JSON object."""
    facts = json.loads(report)
    refusal: reports.MigrationReport | reports.ExportReport = (
        reports.from_json(reports.ExportReport, facts) if facts["command"] == "export"
        else reports.from_json(reports.MigrationReport, facts))
    error = RefusedError((refusal.input or "the document") + ": refused, because strict allows no such losses or errors",
                         kind="strict", file=refusal.input)
    error.report = refusal
    return error
