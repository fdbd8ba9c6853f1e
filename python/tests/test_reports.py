"""The dataclasses and the schemas of the JSON contract have the same keys."""

import dataclasses
import json
import pathlib
import pickle
import types
import typing

import pytest

import project_adaptors
from project_adaptors import reports

ROOT = pathlib.Path(__file__).resolve().parents[2]
SCHEMAS = {path.name: json.loads(path.read_text()) for path in (ROOT / "docs" / "schema").glob("*.json")}
REPORTS = {"migrate": reports.MigrationReport, "info": reports.InfoReport, "verify": reports.VerifyReport,
           "diff": reports.DiffReport, "export": reports.ExportReport, "explain": reports.ExplainReport, "steps": reports.StepsReport}


def resolved(schema, file):
    """The schema that references lead to, without null, and the file that it is in."""
    while True:
        if "$ref" in schema:
            name, _, pointer = schema["$ref"].partition("#")
            file = name or file
            schema = SCHEMAS[file]
            for part in pointer.strip("/").split("/"):
                schema = schema[part]
        elif "anyOf" in schema:
            schema = next(one for one in schema["anyOf"] if one.get("type") != "null")
        else:
            return schema, file


def check(hint, schema, file, path):
    """Compares a type with a schema, and all types in it; gives the dataclasses that it came by."""
    schema, file = resolved(schema, file)
    if schema.get("type") == "null":
        assert types.NoneType in typing.get_args(hint), path
        return set()
    if isinstance(hint, types.UnionType):
        hint = next(kind for kind in typing.get_args(hint) if kind is not types.NoneType)
    if dataclasses.is_dataclass(hint):
        hints = typing.get_type_hints(hint)
        keys = {reports.key_of(field.name): hints[field.name] for field in dataclasses.fields(hint)}
        assert set(keys) == set(schema["properties"]) - {"error"}, path
        seen = {hint}
        for key, value in keys.items():
            seen |= check(value, schema["properties"][key], file, path + "." + key)
        return seen
    if typing.get_origin(hint) is tuple:
        assert "array" in schema["type"], path
        return check(typing.get_args(hint)[0], schema["items"], file, path + "[]")
    names = {str: "string", int: "integer", float: "number", bool: "boolean"}
    if hint in names and "type" in schema:
        assert names[hint] in schema["type"], path
    elif hint in names:
        assert hint is str and "enum" in schema or "const" in schema, path
    elif hint is not typing.Any:
        assert schema["type"] == "object" and "properties" not in schema, path
    return set()


@pytest.mark.parametrize("command", REPORTS)
def test_fields_are_the_keys(command):
    check(REPORTS[command], SCHEMAS[command + ".json"], command + ".json", command)


def test_all_dataclasses_belong_to_a_schema():
    seen = set()
    for command, kind in REPORTS.items():
        seen |= check(kind, SCHEMAS[command + ".json"], command + ".json", command)
    classes = {kind for kind in vars(reports).values() if isinstance(kind, type) and dataclasses.is_dataclass(kind)}
    assert classes - seen == {reports.Report}


def test_reports_follow_the_schemas():
    jsonschema = pytest.importorskip("jsonschema")
    path = ROOT / "samples" / "holiday-v27.xml"
    made = {"migrate": project_adaptors.migrate(path).report, "info": project_adaptors.info(path),
            "verify": project_adaptors.verify(path), "diff": project_adaptors.diff(path, path),
            "explain": project_adaptors.explain(path), "export": project_adaptors.export_otio(path).report, "steps": project_adaptors.steps()}
    for command, report in made.items():
        resolver = jsonschema.RefResolver("", SCHEMAS[command + ".json"], store=SCHEMAS)
        jsonschema.Draft202012Validator(SCHEMAS[command + ".json"], resolver=resolver).validate(
            json.loads(json.dumps(reports.as_json(report))))


def test_reports_are_values():
    path = ROOT / "samples" / "holiday-v27.xml"
    report = project_adaptors.info(path)
    with pytest.raises(dataclasses.FrozenInstanceError):
        report.version = 1
    assert pickle.loads(pickle.dumps(report)) == report
    assert reports.from_json(reports.InfoReport, json.dumps(reports.as_json(report))) == report
