"""What mypy is to accept of a program that uses the module."""

import io
import pathlib

import project_adaptors
from project_adaptors import reports


def versions(path: pathlib.Path) -> tuple[int | None, int | None]:
    result = project_adaptors.migrate(path, 77, strict="all", folders=project_adaptors.Folders(packages="/srv"))
    report: reports.MigrationReport = result.write(path.with_suffix(".new"), force=True)
    data: bytes = result.data
    return report.from_.version, project_adaptors.info(io.BytesIO(data)).version


def line_of(content: bytes) -> int | None:
    try:
        project_adaptors.verify(content)
    except project_adaptors.BrokenXmlError as error:
        return error.line
    return None
