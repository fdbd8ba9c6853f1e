"""The module gives what the program gives."""

import io
import json
import os
import pathlib
import stat

import pytest

import project_adaptors
from project_adaptors import reports

ROOT = pathlib.Path(__file__).resolve().parents[2]
SAMPLES = sorted(str(path.relative_to(ROOT / "samples")) for path in (ROOT / "samples").rglob("holiday*.*")
                 if path.suffix in (".xml", ".json"))

# Keys that depend on the call and not on the document.
OF_THE_CALL = ("output", "seconds")


def expected(run, path, *options):
    """The bytes and the report of the program."""
    output = path.parent / "program.out"
    done = run("migrate", path, "-o", output, "--json", "--force", *options)
    return output.read_bytes(), json.loads(done.stdout)


def without(report, keys=OF_THE_CALL):
    return {key: value for key, value in report.items() if key not in keys}


def test_there_are_samples_of_both_forms():
    assert len(SAMPLES) >= 13
    assert {pathlib.Path(name).suffix for name in SAMPLES} == {".xml", ".json"}


@pytest.mark.parametrize("name", SAMPLES)
def test_bytes_and_report_are_those_of_the_program(run, samples, name):
    data, report = expected(run, samples / name)
    result = project_adaptors.migrate(samples / name)
    assert result.data == data
    assert without(reports.as_json(result.report)) == without(report)


@pytest.mark.parametrize("name", ["holiday-v3.xml", "holiday-v21.xml", "holiday-v55.xml"])
def test_archives_of_a_version_asked_for(run, samples, name):
    data, report = expected(run, samples / name, "--to", "62")
    result = project_adaptors.migrate(samples / name, 62)
    assert result.data == data and data.startswith(b"<?xml")
    assert without(reports.as_json(result.report)) == without(report)


def test_texts_in_side_files_are_found_by_path_and_by_location(run, samples):
    path = samples / "holiday-v20-bundle" / "holiday.xml"
    data, _ = expected(run, path)
    assert b"content_1.svg" in path.read_bytes()
    assert project_adaptors.migrate(path).data == data
    assert project_adaptors.migrate(path.read_bytes(), location=path).data == data
    assert project_adaptors.migrate(path.read_bytes()).data != data


def test_drawings(run, samples):
    path = samples / "drawing.xml"
    path.write_text("""<Archive schemaVersion="20">
 <RootRef type="ObjectRef" value="2"/>
 <RootObject type="Timeline::Object" objectId="2"/>
 <RootObject type="Overlay::Preset" objectId="3">
  <items type="Array" size="1">
   <Item type="Item" index="1">
    <Data type="Overlay::Item" objectId="4">
     <type type="int32_t" value="2"/>
     <outline type="Overlay::Outline" objectId="5"><color type="uint32_t" value="4279383126"/></outline>
     <text type="String" value="&lt;svg/&gt;"/>
    </Data>
   </Item>
  </items>
 </RootObject>
</Archive>
""")
    data, _ = expected(run, path, "--to", "21")
    assert b"#123456" in data
    assert project_adaptors.migrate(path, 21).data == data


def test_bytes_are_standard_input_to_the_program(run, samples):
    content = (samples / "holiday-v27.xml").read_bytes()
    done = run("migrate", "-", "-q", stdin=content, cwd=os.getcwd())
    for source in (content, bytearray(content), memoryview(content), io.BytesIO(content)):
        result = project_adaptors.migrate(source)
        assert result.data == done.stdout
        assert result.report.input is None


def test_a_document_of_the_version_asked_for_stays_as_it_is(samples):
    content = (samples / "holiday-v76.json").read_bytes()
    result = project_adaptors.migrate(content, 76)
    assert result.data == content
    assert result.whole and result.report.clips is None and result.report.steps == ()


def test_a_target_in_another_folder_changes_relative_paths(run, samples):
    other = samples / "results" / "new"
    other.mkdir(parents=True)
    path = samples / "holiday-v27.xml"
    assert run("migrate", path, "-q", "-o", other / "program.json").returncode == 0
    wanted = (other / "program.json").read_bytes()
    beside = project_adaptors.migrate(path)
    assert beside.data != wanted
    assert project_adaptors.migrate(path, target=other / "film.json").data == wanted
    report = beside.write(other / "film.json")
    assert (other / "film.json").read_bytes() == wanted
    assert report.output == str(other / "film.json") and beside.report.output is None


def test_folders_become_markers(run, tmp_path):
    packages = tmp_path / "packages"
    text = (ROOT / "samples" / "holiday-v76.json").read_text().replace("media/", str(packages) + "/")
    path = tmp_path / "film.json"
    path.write_text(text)
    data, _ = expected(run, path, "--packages-root", packages)
    assert project_adaptors.migrate(path, folders=project_adaptors.Folders(packages=packages)).data == data
    assert project_adaptors.migrate(path).data != data


def test_repairs_and_recovery(run, samples):
    whole = (samples / "holiday-v27.xml").read_bytes()
    path = samples / "cut.xml"
    path.write_bytes(whole[:len(whole) * 2 // 3])
    data, report = expected(run, path, "--repair")
    result = project_adaptors.migrate(path, repair=True)
    assert result.data == data
    assert without(reports.as_json(result.report)) == without(report)
    assert result.report.recovery is not None and not result.whole
    with pytest.raises(project_adaptors.BrokenXmlError) as caught:
        project_adaptors.migrate(path)
    assert caught.value.cut_off and caught.value.recovery == result.report.recovery


def test_advice_is_that_of_the_program(run, samples):
    name = "holiday-v3.xml"
    broken = (samples / name).read_bytes().replace(b"</Archive>", b"\x01</Archive>")
    path = samples / "film.xml"
    path.write_bytes(broken)
    error = json.loads(run("migrate", path, "--json").stdout)["error"]
    with pytest.raises(project_adaptors.AdaptorsError) as caught:
        project_adaptors.migrate(path)
    assert caught.value.kind == error["kind"]
    assert [reports.as_json(repair) for repair in caught.value.repairs] == error["repairs"] != []


def test_from_version(samples):
    text = (samples / "holiday-v63.json").read_bytes().replace(b'"schemaVersion"', b'"otherVersion"')
    with pytest.raises(project_adaptors.NoVersionError):
        project_adaptors.migrate(text)
    assert project_adaptors.migrate(text, from_version=63).report.from_.version == 63


@pytest.mark.parametrize("strict", [True, "all"])
def test_strict(run, samples, strict):
    whole = (samples / "holiday-v27.xml").read_bytes()
    path = samples / "cut.xml"
    path.write_bytes(whole[:len(whole) * 2 // 3])
    with pytest.raises(project_adaptors.RefusedError) as caught:
        project_adaptors.migrate(path, repair=True, strict=strict)
    assert caught.value.kind == "strict" and caught.value.report.recovery is not None
    flag = "--strict=all" if strict == "all" else "--strict"
    assert run("migrate", path, "--repair", flag, "--check").returncode == 14


@pytest.mark.parametrize("strict, flag", [(True, "--strict"), ("all", "--strict=all")])
def test_the_same_samples_are_refused(run, samples, strict, flag):
    def is_refused(name):
        try:
            project_adaptors.migrate(samples / name, strict=strict)
        except project_adaptors.RefusedError:
            return True
        return False

    wanted = {name: run("migrate", samples / name, "-o", samples / "x.json", "--force", flag).returncode == 14
              for name in SAMPLES}
    assert {name: is_refused(name) for name in SAMPLES} == wanted
    assert set(wanted.values()) == {True, False}


def test_writing_replaces_only_with_force_and_leaves_nothing_behind(samples):
    result = project_adaptors.migrate(samples / "holiday-v27.xml")
    before = set(os.listdir(samples))
    result.write(samples / "film.json")
    with pytest.raises(project_adaptors.OutputExistsError) as caught:
        result.write(samples / "film.json")
    assert isinstance(caught.value, FileExistsError) and caught.value.filename == str(samples / "film.json")
    (samples / "film.json").write_text("old")
    result.write(samples / "film.json", force=True)
    assert (samples / "film.json").read_bytes() == result.data
    assert set(os.listdir(samples)) == before | {"film.json"}


def test_a_new_file_has_the_permissions_of_the_input(samples):
    path = samples / "holiday-v27.xml"
    path.chmod(0o640)
    project_adaptors.migrate(path).write(samples / "film.json")
    assert stat.S_IMODE((samples / "film.json").stat().st_mode) == 0o640


def test_names_that_are_no_utf_8(samples):
    path = os.fsdecode(os.fsencode(samples) + b"/film-\xff.xml")
    os.rename(samples / "holiday-v27.xml", path)
    result = project_adaptors.migrate(path)
    target = os.fsdecode(os.fsencode(samples) + b"/new-\xfe.json")
    result.write(target)
    assert pathlib.Path(target).read_bytes() == result.data


def test_a_file_named_like_a_standard_stream(samples, monkeypatch):
    monkeypatch.chdir(samples)
    os.rename("holiday-v27.xml", "-")
    result = project_adaptors.migrate("-")
    os.remove("-")
    result.write("-")
    assert pathlib.Path("-").read_bytes() == result.data


@pytest.mark.parametrize("name", SAMPLES)
@pytest.mark.parametrize("command", ["info", "verify", "explain"])
def test_reports_are_those_of_the_program(run, samples, name, command):
    path = samples / name
    wanted = json.loads(run(command, path, "--json").stdout)
    report = getattr(project_adaptors, command)(path)
    assert without(reports.as_json(report)) == without(wanted)


def test_one_step_and_one_clip(run, samples):
    path = samples / "holiday-v27.xml"
    step = "V28_ClipLabelAdaptor"
    wanted = json.loads(run("explain", path, "--step", step, "--json").stdout)
    assert without(reports.as_json(project_adaptors.explain(path, step=step))) == without(wanted)
    clip = project_adaptors.info(path).clips[0].name
    wanted = json.loads(run("explain", path, "--clip", clip, "--json").stdout)
    assert without(reports.as_json(project_adaptors.explain(path, clip=clip))) == without(wanted)


def test_differences(run, samples):
    before = samples / "holiday-v27.xml"
    text = before.read_text().replace("Beach", "Shore")
    after = samples / "edited.xml"
    after.write_text(text)
    for raw in (False, True):
        done = run("diff", before, after, "--json", *(["--raw"] if raw else []))
        report = project_adaptors.diff(before, after, raw=raw)
        assert without(reports.as_json(report)) == without(json.loads(done.stdout))
        assert report.differences
    assert project_adaptors.diff(before, project_adaptors.migrate(before).data).comparedAs == 77
    with pytest.raises(ValueError):
        project_adaptors.diff(before, samples / "holiday-v63.json", raw=True)


def test_list_of_steps(run):
    for above, to in ((0, 77), (27, 62)):
        wanted = json.loads(run("steps", "--from", above, "--to", to, "--json").stdout)
        assert without(reports.as_json(project_adaptors.steps(above, to))) == without(wanted)


@pytest.mark.parametrize("name", SAMPLES)
def test_exports_are_those_of_the_program(run, samples, name):
    path = samples / name
    output = path.parent / "program.otio"
    done = run("export", path, "-o", output, "--json")
    export = project_adaptors.export_otio(path)
    assert export.data == output.read_bytes()
    assert without(reports.as_json(export.report)) == without(json.loads(done.stdout))
    assert export.whole == (done.returncode == 0)


def test_an_export_to_another_folder_has_other_relative_paths(run, samples):
    other = samples / "results" / "new"
    other.mkdir(parents=True)
    path = samples / "holiday-v27.xml"
    run("export", path, "-o", other / "program.otio")
    report = project_adaptors.export_otio(path).write(other / "film.otio")
    assert (other / "film.otio").read_bytes() == (other / "program.otio").read_bytes()
    assert report.output == str(other / "film.otio")


def test_a_refused_export(samples):
    whole = (samples / "holiday-v27.xml").read_bytes()
    with pytest.raises(project_adaptors.RefusedError) as caught:
        project_adaptors.export_otio(whole[:len(whole) * 2 // 3], repair=True, strict=True)
    assert caught.value.report.export.clips >= 0
