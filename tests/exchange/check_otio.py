#!/usr/bin/env python3
"""Exports projects and reads them with OpenTimelineIO's own library.

    check_otio.py PROGRAM SOURCE_FOLDER

Compares names, places, ranges, media, effects and transitions with what `adaptors info --json` says of the migrated
project, looks for every object of the project in the export, and writes each export with the library again. The library
is looked for in the folder that OTIO_PYTHON names, among the installed modules, and in ../shared/otio/python beside the
source folder. Without it the script says that it skipped all, and exits with 77.
"""

import ctypes
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest
from urllib.parse import unquote, urlparse

PROGRAM, SOURCE = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]).resolve()
SKIPPED = 77
KEY = "adaptors"


def load_library():
    """The module, or None. A copy without its symbolic links is loaded by its libraries' full names first."""
    folders = [os.environ.get("OTIO_PYTHON"), None, SOURCE.parent / "shared" / "otio" / "python"]
    for folder in folders:
        if folder is not None:
            folder = pathlib.Path(folder)
            if not (folder / "opentimelineio").is_dir():
                continue
            sys.path.insert(0, str(folder))
            for name in ("libopentime.so.*.*", "libopentimelineio.so.*.*"):
                for library in sorted((folder / "opentimelineio").glob(name)):
                    try:
                        ctypes.CDLL(str(library), ctypes.RTLD_GLOBAL)
                    except OSError:
                        pass
        try:
            import opentimelineio
            return opentimelineio
        except ImportError:
            continue
    return None


otio = load_library()

sys.path.insert(0, str(SOURCE / "samples"))
sys.dont_write_bytecode = True
import make_samples as samples  # noqa: E402


class BusyFilm(samples.LongFilm):
    """The long cut with speeds, labels, volumes, fades, muted tracks, and clips that overlap."""

    def build(self):
        root = super().build()
        fields = dict(self.timeline.fields)
        entries = fields["clips"][1]
        clips = [(key[1], value[1]) for _, key, value in entries]

        def set_field(thing, name, value):
            thing.fields = [(n, value if n == name else v) for n, v in thing.fields]
            assert any(n == name for n, _ in thing.fields), name

        for number, (clip, timing) in enumerate(clips):
            set_field(clip, "volume", samples.i32(100 + number % 3 * 25))
            set_field(clip, "labels", samples.array(*[samples.text("label %d" % n) for n in range(number % 3)]))
            set_field(timing, "fadeInDuraion", samples.i64(number % 2 * 40))
            set_field(timing, "reversed", samples.boolean(number % 5 == 1))
            if number % 4 == 2:
                source = dict(clip.fields)["sourceDuration"][1]
                set_field(clip, "sourceDuration", samples.i64(source * 2))
        for number, track in enumerate(self.tracks.values()):
            set_field(track, "muted", samples.boolean(number % 2 == 1))
            set_field(track, "hidden", samples.boolean(number % 3 == 1))
        return root


def generated(folder):
    """Projects that no sample has."""
    for version in (45, 55):
        film = BusyFilm(version, samples.Xml)
        path = folder / ("busy-v%d.xml" % version)
        path.write_text(samples.Xml(film.build(), version).text(), encoding="utf-8")
        yield path
    film = BusyFilm(70, samples.Json)
    path = folder / "busy-v70.json"
    path.write_text(samples.Json(film.build(), 70).text(), encoding="utf-8")
    yield path


def run(*arguments, codes=(0, 22)):
    result = subprocess.run([str(PROGRAM), *map(str, arguments)], capture_output=True, check=False)
    if result.returncode not in codes:
        raise AssertionError("%s: exit code %d\n%s" % (arguments, result.returncode, result.stderr.decode()))
    return result


def milliseconds(time):
    """Exact: a time of the export is a whole number of milliseconds."""
    value = time.value * 1000
    assert value % time.rate == 0, time
    return value / time.rate


def span(time_range):
    return milliseconds(time_range.start_time), milliseconds(time_range.duration)


def ids_of_objects(value, found):
    if isinstance(value, dict):
        meta = value.get("@meta")
        if isinstance(meta, dict) and isinstance(meta.get("object_id"), int):
            found.append(meta["object_id"])
        for member in value.values():
            ids_of_objects(member, found)
    elif isinstance(value, list):
        for member in value:
            ids_of_objects(member, found)
    return found


class Export:
    def __init__(self, project, folder):
        self.project = project
        self.migrated = folder / (project.name + ".json")
        self.file = folder / (project.name + ".otio")
        run("migrate", project, "-o", self.migrated, "-q", "--force")
        result = run("export", project, "-o", self.file, "--json", "--force")
        self.report = json.loads(result.stdout)
        self.text = self.file.read_text(encoding="utf-8")
        info = json.loads(run("info", self.migrated, "--json").stdout)
        self.timelines = {timeline["id"]: timeline for timeline in info["timelines"]}
        self.main = next(timeline for timeline in info["timelines"] if timeline["role"] == "main")


class OtioTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        folder = pathlib.Path(cls.folder.name)
        projects = sorted(p for p in (SOURCE / "samples").iterdir()
                          if p.suffix in (".xml", ".json") or p.name.endswith("-bundle"))
        projects += generated(folder)
        cls.exports = [Export(project, folder) for project in projects]

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def for_each(self, check):
        for export in self.exports:
            with self.subTest(project=export.project.name):
                check(export, otio.adapters.read_from_file(str(export.file)))

    def test_all_samples_are_there(self):
        self.assertGreaterEqual(len(self.exports), 15)

    def test_clips_are_those_of_the_project(self):
        def check(export, timeline):
            self.assertEqual(timeline.name, export.main["name"])
            self.assertEqual(timeline.global_start_time.rate, export.main["frameRate"])
            self.compare(export, export.main, timeline.tracks)

        self.for_each(check)

    def compare(self, export, project, stack):
        left_out = {o["id"] for o in export.report["export"]["omissions"] if o["kind"] == "clip-place"}
        expected = {clip["id"]: clip for clip in project["clips"] if clip["id"] not in left_out}
        found = set()
        tracks = []
        for track in stack:
            self.assertIsInstance(track, otio.schema.Track)
            own = track.metadata[KEY]
            tracks.append((own["kind"], own["level"]))
            for item in track:
                if isinstance(item, (otio.schema.Gap, otio.schema.Transition)):
                    continue
                identity = self.identity(item)
                found.add(identity)
                self.compare_clip(export, project, expected[identity], item, track)
        self.assertEqual(found, set(expected))
        places = {(clip["track"], clip["level"]) for clip in expected.values()}
        numbers = {clip["track"] for clip in expected.values()}
        places |= {(n, 0) for n in range(len(project["tracks"])) if n not in numbers}
        lowest_first = sorted(places, reverse=True)
        unique = [t for n, t in enumerate(tracks) if stack[n].metadata[KEY]["lane"] == 0]
        self.assertEqual(unique, [(project["tracks"][n]["kind"], level) for n, level in lowest_first])
        self.compare_transitions(export, project, stack)

    def identity(self, item):
        clip = item.metadata[KEY]["clip"]
        return clip["@meta"]["object_id"] if "@meta" in clip else clip["@meta_reference"]

    def compare_clip(self, export, project, clip, item, track):
        self.assertEqual(item.name, clip["name"])
        self.assertEqual(item.enabled, clip["enabled"])
        place = (clip["start"], max(clip["duration"], 0))
        self.assertEqual(span(item.range_in_parent()), place)
        self.assertEqual(span(item.trimmed_range_in_parent()), place)
        self.assertEqual(span(item.transformed_time_range(item.trimmed_range(), track)), place)
        self.assertEqual(span(item.source_range), (clip["sourceStart"], place[1]))
        kind = project["tracks"][clip["track"]]["kind"]
        self.assertEqual(track.kind, "Audio" if kind == "audio" else "Video")
        flags = project["tracks"][clip["track"]]
        self.assertEqual(track.enabled, not (flags["muted"] if kind == "audio" else flags["hidden"]))
        for time in (item.range_in_parent().duration, item.source_range.start_time):
            frames = milliseconds(time) * project["frameRate"] / 1000
            self.assertEqual(time.rate, project["frameRate"] if frames == int(frames) else 1000)
        fields = item.metadata[KEY]["clip"]
        names = [effect.name for effect in item.effects]
        for effect in clip["effects"]:
            self.assertIn(effect["name"], names)
            self.assertIn(effect["class"], [e.effect_name for e in item.effects])
        if "@meta" in fields:  # in full, where the clip is written first
            self.compare_fields(clip, fields, item)
        if clip["timeline"]:
            self.assertIsInstance(item, otio.schema.Stack)
            self.compare(export, export.timelines[clip["timeline"]], item)
            return
        self.compare_media(export, clip, item)

    def compare_fields(self, clip, fields, item):
        self.assertEqual(fields["name"], clip["name"])
        timing = item.metadata[KEY]["timing"]
        self.assertEqual(timing["timestamp"], clip["start"])
        self.assertEqual([m.name for m in item.markers], list(fields["labels"]))
        for marker in item.markers:
            self.assertEqual(marker.marked_range, item.source_range)
        effects = {effect.effect_name: effect for effect in item.effects}
        self.assertEqual("volume" in effects, fields["volume"] != 100)
        if fields["volume"] != 100:
            self.assertEqual(effects["volume"].metadata[KEY]["percent"], fields["volume"])
        self.assertEqual("fadeIn" in effects, timing["fadeInDuration"] != 0)
        self.assertEqual("fadeOut" in effects, timing["fadeOutDuration"] != 0)
        speed = 1
        if clip["kind"] in ("video", "audio", "timeline") and not fields.get("unlimitedDuration"):
            speed = fields["sourceDuration"] / clip["sourceDuration"]
        if clip["reversed"]:
            speed = -speed
        warps = [effect for effect in item.effects if isinstance(effect, otio.schema.LinearTimeWarp)]
        self.assertEqual(len(warps), int(speed != 1))
        for warp in warps:
            self.assertAlmostEqual(warp.time_scalar, speed, 12)

    def compare_media(self, export, clip, item):
        media = item.media_reference
        if clip["media"] is None:
            self.assertNotIsInstance(media, otio.schema.ExternalReference)
            if clip["kind"] in ("title", "intro", "outro"):
                self.assertIsInstance(media, otio.schema.GeneratorReference)
                self.assertEqual(media.generator_kind, clip["kind"])
                self.assertEqual(media.parameters["text"], "\n".join(clip["texts"]))
                self.assertEqual(list(item.metadata[KEY].get("texts", [])), clip["texts"])
        elif clip["media"].startswith("#"):
            self.assertIsInstance(media, otio.schema.MissingReference)
        else:
            self.assertIsInstance(media, otio.schema.ExternalReference)
            self.assertEqual(unquote(urlparse(media.target_url).path), clip["media"])
            self.assertEqual(span(media.available_range), (0, 12000))  # all files of the samples have that length

    def compare_transitions(self, export, project, stack):
        clips = {clip["id"]: clip for clip in project["clips"]}
        listed = {o["id"] for o in export.report["export"]["omissions"] if o["kind"].startswith("transition-")}
        expected = {t["id"]: t for t in project["transitions"] if t["id"] not in listed}
        found = set()
        for track in stack:
            for transition in track:
                if not isinstance(transition, otio.schema.Transition):
                    continue
                own = transition.metadata[KEY]["transition"]
                identity = own["@meta"]["object_id"] if "@meta" in own else own["@meta_reference"]
                found.add(identity)
                facts = expected[identity]
                self.assertEqual(transition.name, facts["name"])
                offsets = milliseconds(transition.in_offset) + milliseconds(transition.out_offset)
                self.assertEqual(offsets, facts["duration"])
                before, after = track.neighbors_of(transition)
                for neighbor, clip in ((before, facts["from"]), (after, facts["to"])):
                    if clip is None:
                        self.assertIsInstance(neighbor, otio.schema.Gap)
                    else:
                        self.assertEqual(self.identity(neighbor), clip)
                if facts["from"] is None:
                    cut = clips[facts["to"]]["start"]
                else:
                    cut = clips[facts["from"]]["start"] + clips[facts["from"]]["duration"]
                start, length = span(transition.range_in_parent())
                self.assertEqual(start, cut - milliseconds(transition.in_offset))
                self.assertEqual(length, facts["duration"])
        self.assertEqual(found, set(expected))

    def test_nothing_of_the_project_is_missing(self):
        def check(export, _):
            project = json.loads(export.migrated.read_text(encoding="utf-8"))
            expected = sorted(set(ids_of_objects(project["data"], [])))
            self.assertEqual(sorted(ids_of_objects(json.loads(export.text), [])), expected)

        self.for_each(check)

    def test_the_library_writes_the_same_file(self):
        def check(export, timeline):
            written = otio.adapters.write_to_string(timeline, "otio_json")
            self.assertEqual(json.loads(written), json.loads(export.text))

        self.for_each(check)

    def test_what_the_samples_show(self):
        """The comparisons above are of something: the samples have all of it."""
        counts = {}

        def count(_, timeline):
            for item in [timeline.tracks, *timeline.find_children()]:
                name = type(item).__name__
                counts[name] = counts.get(name, 0) + 1
                for effect in getattr(item, "effects", []):
                    counts[type(effect).__name__] = counts.get(type(effect).__name__, 0) + 1
                counts["Marker"] = counts.get("Marker", 0) + len(getattr(item, "markers", []))

        self.for_each(count)
        for name in ("Clip", "Gap", "Stack", "Track", "Transition", "Effect", "LinearTimeWarp", "Marker"):
            self.assertGreater(counts.get(name, 0), 10 if name != "Stack" else 1, name)


if __name__ == "__main__":
    if otio is None:
        print("skipped: OpenTimelineIO's Python library is not there; OTIO_PYTHON names its folder")
        sys.exit(SKIPPED)
    unittest.main(argv=sys.argv[:1])
