import os
import pathlib
import pickle
import re

import pytest

import project_adaptors
from project_adaptors import errors

ROOT = pathlib.Path(__file__).resolve().parents[2]


def test_there_is_a_class_for_each_kind_of_the_library():
    source = (ROOT / "reader" / "Reader" / "Error.cpp").read_text()
    names = set(re.findall(r'ErrorKind::\w+, "([a-z-]+)"', source))
    assert len(names) > 20
    assert set(errors.KINDS) == names
    assert len(set(errors.KINDS.values())) == len(errors.KINDS)
    for kind in errors.KINDS.values():
        assert issubclass(kind, project_adaptors.AdaptorsError)
        assert getattr(project_adaptors, kind.__name__) is kind


@pytest.mark.parametrize("content, kind, facts", [
    (b"", "empty", {}),
    (b"hello", "unknown-form", {}),
    (b"<Archive>\n<Clip></Archive>", "broken-xml", {"line": 2}),
    (b"<!DOCTYPE a [<!ENTITY b 'c'>]><Archive/>", "refused-xml", {}),
    (b"<Project/>", "no-archive", {}),
    (b'{"schemaVersion": 70, "data": ', "broken-json", {}),
    (b'{"schemaVersion": 70}', "wrong-envelope", {}),
    (b'{"version": "1.0", "schemaVersion": 99, "data": {"@meta": {"class_name": "A", "object_id": 1}}}', "too-new", {"version": 99}),
    (b'{"version": "1.0", "data": {"@meta": {"class_name": "A", "object_id": 1}}}', "no-version", {}),
])
def test_kinds_and_facts(content, kind, facts):
    with pytest.raises(errors.KINDS[kind]) as caught:
        project_adaptors.migrate(content)
    error = caught.value
    assert error.kind == kind
    assert {name: getattr(error, name) for name in facts} == facts
    assert str(error) == error.text != ""


def test_a_missing_file(tmp_path):
    with pytest.raises(FileNotFoundError) as caught:
        project_adaptors.migrate(tmp_path / "film.xml")
    error = caught.value
    assert isinstance(error, project_adaptors.UnreadableError) and error.kind == "unreadable"
    assert error.file == error.filename == str(tmp_path / "film.xml")
    for work in (project_adaptors.info, project_adaptors.verify, project_adaptors.explain):
        with pytest.raises(FileNotFoundError):
            work(tmp_path / "film.xml")


def test_a_folder_is_no_file(tmp_path):
    with pytest.raises(project_adaptors.UnreadableError) as caught:
        project_adaptors.migrate(tmp_path)
    assert not isinstance(caught.value, FileNotFoundError)


def test_a_result_that_cannot_be_written(samples):
    result = project_adaptors.migrate(samples / "holiday-v27.xml")
    with pytest.raises(project_adaptors.UnwritableError) as caught:
        result.write(samples / "no" / "film.json")
    assert isinstance(caught.value, OSError)


@pytest.mark.parametrize("to", [20, 62])
def test_versions_that_cannot_be_reached(samples, to):
    with pytest.raises(project_adaptors.AdaptorsError) as caught:
        project_adaptors.migrate(samples / "holiday-v63.json", to)
    assert isinstance(caught.value, ValueError)
    assert caught.value.kind in ("unreachable-version", "no-way-back")
    assert (caught.value.version, caught.value.target) == (63, to)


@pytest.mark.parametrize("arguments, options", [
    ((None,), {}), ((7,), {}), ((b"", "77"), {}), ((b"", 77.0), {}), ((b"", True), {}), ((b"",), {"from_version": "27"}),
    ((object(),), {}), ((b"", 77), {"folders": "folder"}), ((b"",), {"folders": 0}),
])
def test_wrong_types(arguments, options):
    with pytest.raises(TypeError):
        project_adaptors.migrate(*arguments, **options)


@pytest.mark.parametrize("arguments, options", [
    ((b"", 78), {}), ((b"", -1), {}), ((b"",), {"from_version": 78}), ((b"",), {"strict": "some"}), (("",), {}),
    (("a\0b",), {}), (("film.xml",), {"location": "film.xml"}),
])
def test_wrong_values(arguments, options):
    with pytest.raises(ValueError):
        project_adaptors.migrate(*arguments, **options)


def test_a_text_file_is_refused(samples):
    with open(samples / "holiday-v27.xml", encoding="utf-8") as file, pytest.raises(TypeError):
        project_adaptors.migrate(file)


def test_steps_and_clips_that_are_not_there(samples):
    path = samples / "holiday-v27.xml"
    with pytest.raises(project_adaptors.UnknownStepError) as caught:
        project_adaptors.explain(path, step="V99_NoAdaptor")
    assert caught.value.step == "V99_NoAdaptor"
    with pytest.raises(project_adaptors.UnknownStepError) as caught:
        project_adaptors.explain(path, step="\0")
    assert str(caught.value) == "\\x00: there is no such step"
    with pytest.raises(ValueError, match="does not run"):
        project_adaptors.explain(path, step=project_adaptors.steps(0, 20).steps[0].class_)
    with pytest.raises(ValueError, match="no clip"):
        project_adaptors.explain(path, clip="no such clip")



def test_errors_can_be_passed_between_processes():
    with pytest.raises(project_adaptors.BrokenXmlError) as caught:
        project_adaptors.migrate(b"<Archive><Clip></Archive>")
    again = pickle.loads(pickle.dumps(caught.value))
    assert type(again) is type(caught.value) and again.__dict__ == caught.value.__dict__ and str(again) == str(caught.value)
    missing = pickle.loads(pickle.dumps(errors.made_of(
        '{"kind": "unreadable", "text": "gone", "file": "/no/such/file", "line": null, "column": null, "byte": null, '
        '"step": null, "version": null, "target": null, "reason": null, "cutOff": false, "repairs": [], '
        '"recovery": null}')))
    assert isinstance(missing, FileNotFoundError) and missing.file == "/no/such/file"


def test_memory_that_runs_out_is_an_exception():
    import subprocess
    import sys
    # A list of many objects needs far more memory than its text.
    code = """
import resource, project_adaptors
text = b'{"version": "1.0", "schemaVersion": 70, "data": {"@meta": {"class_name": "A", "object_id": 1}, "items": [' + b",".join(
    b'{"@meta": {"class_name": "B", "object_id": %d}}' % number for number in range(2, 400000)) + b']}}'
size = int(open("/proc/self/statm").read().split()[0]) * 4096
resource.setrlimit(resource.RLIMIT_AS, (size + (100 << 20),) * 2)
try:
    project_adaptors.migrate(text)
except MemoryError:
    print("MemoryError")
"""
    done = subprocess.run([sys.executable, "-c", code], stdout=subprocess.PIPE, env=os.environ)
    assert done.stdout == b"MemoryError\n" and done.returncode == 0
