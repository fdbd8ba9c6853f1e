#!/usr/bin/env python3
"""Writes the sample projects: one short holiday film, as the editor saved it at several schema versions.

    python3 samples/make_samples.py        writes the files beside this script

The film has four pictures and videos on the main track with a title before them, a transition, effects and one
stabilised clip. What a class holds at a version stands here, field by field; nothing is taken from a migration.
"""

import base64
import json
import os
import struct
import sys
from xml.sax.saxutils import quoteattr


# A project in memory: objects with typed fields.

class Object:
    """A class object. `bases` are the names of its base class parts, outermost first, each with fields."""

    def __init__(self, class_name, fields, bases=()):
        self.class_name, self.fields, self.bases = class_name, fields, list(bases)
        self.id = None


def boolean(v): return ("bool", v)
def i32(v): return ("int32_t", v)
def u32(v): return ("uint32_t", v)
def i64(v): return ("int64_t", v)
def real(v): return ("double", float(v))
def text(v): return ("String", v)
def image(v): return ("ImageRef", v)
def ref(o): return ("ObjectRef", o)
def array(*items): return ("Array", [("Data", i) for i in items])
def mapping(*entries): return ("Array", [("Key", k, v) for k, v in entries])
def pair(a, b): return ("Array", [("First", a, b)])
def embedded(o): return ("Object", o)
def resource_id(name, kind): return ("Array", [("Data", text(name)), ("Data", i32(kind))])


def walk(value, holder, found):
    """Notes all objects in order of first meeting, each with the object that holds it (None for a root object)."""
    kind, content = value
    if kind == "ObjectRef":
        if content is not None and content not in found:
            found[content] = None
            walk_fields(content, found)
    elif kind == "Object":
        found[content] = holder
        walk_fields(content, found)
    elif kind == "Array":
        for item in content:
            for part in item[1:]:
                walk(part, holder, found)


def walk_fields(obj, found):
    for _, fields in [(None, obj.fields)] + obj.bases:
        for _, value in fields:
            walk(value, obj, found)


# XML archives.

def double_attributes(x):
    data = base64.b64encode(struct.pack(">d", x)).decode()
    return 'value="%s" binaryData="%s"' % ("%g" % x, data)


class Xml:
    def __init__(self, root, version):
        self.lines, self.version = [], version
        found = {root: None}
        walk_fields(root, found)
        for number, obj in enumerate(found, 2):
            obj.id = number
        self.next_id = len(found) + 2
        self.line(0, '<?xml version="1.0" encoding="UTF-8"?>')
        self.line(0, '<Archive schemaVersion="%d">' % version)
        self.line(1, '<RootRef type="ObjectRef" value="%d"/>' % root.id)
        self.predeclarations(found)
        for obj, holder in found.items():
            if holder is None:
                self.object(1, "RootObject", obj)
        self.line(0, "</Archive>")

    def line(self, depth, line):
        self.lines.append(" " * depth + line)

    def predeclarations(self, found):
        self.line(1, '<RootObject type="Predeclarator" objectId="1">')
        self.line(2, '<predeclarations type="Array" size="%d">' % len(found))
        for index, (obj, holder) in enumerate(found.items(), 1):
            self.line(3, '<Item type="Item" index="%d">' % index)
            self.line(4, '<Data type="Predeclare" objectId="%d">' % self.next_id)
            self.next_id += 1
            self.line(5, '<typeName type="String" value="%s"/>' % obj.class_name)
            self.line(5, '<oid type="ObjectRef" value="%d"/>' % obj.id)
            self.line(5, '<poid type="ObjectRef" value="%d"/>' % (holder.id if holder else 0))
            self.value(5, "refs", array(*[ref(o) for o in self.refers_to(obj)]))
            self.line(4, "</Data>")
            self.line(3, "</Item>")
        self.line(2, "</predeclarations>")
        self.line(1, "</RootObject>")

    def refers_to(self, obj):
        """What an object's own fields refer to or hold, each once."""
        targets = []

        def look(value):
            kind, content = value
            if kind in ("ObjectRef", "Object") and content is not None and content not in targets:
                targets.append(content)
            elif kind == "Array":
                for item in content:
                    for part in item[1:]:
                        look(part)

        for _, fields in [(None, obj.fields)] + obj.bases:
            for _, value in fields:
                look(value)
        return targets

    def object(self, depth, tag, obj):
        self.line(depth, '<%s type="%s" objectId="%d">' % (tag, obj.class_name, obj.id))
        for level, (base, _) in enumerate(obj.bases):
            self.line(depth + 1 + level, '<BaseOfObject type="%s" objectId="%d">' % (base, obj.id))
        for level in reversed(range(len(obj.bases))):
            for name, value in obj.bases[level][1]:
                self.value(depth + 2 + level, name, value)
            self.line(depth + 1 + level, "</BaseOfObject>")
        for name, value in obj.fields:
            self.value(depth + 1, name, value)
        self.line(depth, "</%s>" % tag)

    def value(self, depth, tag, value):
        kind, content = value
        if kind == "Object":
            self.object(depth, tag, content)
        elif kind == "Array":
            self.line(depth, '<%s type="Array" size="%d">' % (tag, len(content)))
            for index, item in enumerate(content, 1):
                self.line(depth + 1, '<Item type="Item" index="%d">' % index)
                names = {"Data": ("Data",), "Key": ("Key", "Value"), "First": ("First", "Second")}[item[0]]
                for name, part in zip(names, item[1:]):
                    self.value(depth + 2, name, part)
                self.line(depth + 1, "</Item>")
            self.line(depth, "</%s>" % tag)
        elif kind == "double":
            self.line(depth, '<%s type="double" %s/>' % (tag, double_attributes(content)))
        elif kind == "ImageRef":
            self.line(depth, '<%s type="ImageRef" ref=%s/>' % (tag, quoteattr(content)))
        else:
            if kind == "ObjectRef":
                content = content.id if content is not None else 0
            elif kind == "bool":
                content = int(content)
            self.line(depth, '<%s type="%s" value=%s/>' % (tag, kind, quoteattr(str(content))))

    def text(self):
        return "\n".join(self.lines) + "\n"


# JSON documents: each object in full where it is met first.

class Json:
    def __init__(self, root, version):
        found = {root: None}
        walk_fields(root, found)
        for number, obj in enumerate(found, 1):
            obj.id = number
        self.next_id = len(found) + 1
        self.written = set()
        self.envelope = {"data": self.reference(root), "schemaVersion": version, "version": "1.0"}

    def reference(self, obj):
        if obj is None:
            return None
        if obj in self.written:
            return {"@meta_reference": obj.id}
        self.written.add(obj)
        return self.object(obj)

    def object(self, obj):
        levels = [(obj.class_name, obj.fields)] + obj.bases
        results = []
        for number, (class_name, fields) in enumerate(levels):
            object_id = obj.id
            if number > 0:
                object_id = self.next_id
                self.next_id += 1
            results.append({"@meta": {"class_name": class_name, "object_id": object_id}})
        for result, (_, fields) in zip(results, levels):
            for name, value in sorted(fields):
                result[name] = self.value(value)
        for outer, inner in zip(results, results[1:]):
            outer[inner["@meta"]["class_name"]] = inner
        return results[0]

    def value(self, value):
        kind, content = value
        if kind == "Object":
            return self.object(content)
        if kind == "ObjectRef":
            return self.reference(content)
        if kind == "ImageRef":
            return {"ref": content}
        if kind != "Array":
            return content
        if content and all(item[0] == "Data" for item in content) and len({item[1][0] for item in content}) > 1:
            return {"element_%d" % n: self.value(item[1]) for n, item in enumerate(content)}
        return [self.item(item) for item in content]

    def item(self, item):
        if item[0] == "Data":
            return self.value(item[1])
        if item[0] == "First":
            return {"first": self.value(item[1]), "second": self.value(item[2])}
        target = item[1][1].class_name if item[1][0] == "ObjectRef" else None
        if target and target.startswith("Transition::"):
            first, second = item[2][1][0][1:]
            return {"clipFrom": self.value(first), "clipTo": self.value(second), "transition": self.value(item[1])}
        if target == "Timeline::Clip":
            return {"clip": self.value(item[1]), "timing": self.value(item[2])}
        return {"first": self.value(item[1]), "second": self.value(item[2])}

    def text(self):
        # Keys sorted and walked in that order when read: a link may stand before its object all the same.
        return json.dumps(self.envelope, indent=1, ensure_ascii=False) + "\n"


# The film.

IDENTITY = (1, 0, 0, 0, 1, 0, 0, 0, 1)


def transform(*m):
    return Object("Types::Transform", [("m%d%d" % (n // 3 + 1, n % 3 + 1), real(x)) for n, x in enumerate(m)])


class Film:
    """Makes the film's objects as they stood at one schema version."""

    def __init__(self, version):
        self.version = version
        self.timeline = Object("Timeline::Object", [])
        self.tracks = {}

    def since(self, number, *fields):
        return list(fields) if self.version >= number else []

    def until(self, number, *fields):
        return list(fields) if self.version < number else []

    def file(self, path, width, height):
        return Object("File", [
            ("path", text(path)), ("duration", i64(12000)),
            ("streams", array(ref(Object("Video", [("width", i32(width)), ("height", i32(height)),
                                                   ("frameRate", real(29.97))]))))])

    def resource(self):
        return (self.until(62, *self.since(59, ("location", text("")), ("remoteUrl", text("")), ("remoteSize", i64(-1))))
                + self.since(62, ("resourcePath", text(""))))

    def effect(self, class_name, unique_id, tag, fields, intensity=1.0):
        auxiliary = self.since(58, ("auxResource", resource_id("", 0)))
        return Object("Effect::" + class_name, fields, [
            ("Effect::VideoEffect", []),
            ("Effect::Object", [("id", text(unique_id)), ("tag", text(tag)), ("uniqueId", text(unique_id)),
                                ("description", text(tag if self.version >= 60 else "Desc " + tag))]
             + self.since(33, ("intensity", real(intensity))) + self.since(55, ("bypass", boolean(False)))
             + auxiliary + self.resource()
             + self.since(61, ("processedRange", embedded(Object("Types::Range", [("from", i64(0)), ("to", i64(-1))])))))])

    def transition(self):
        return Object("Transition::Fade", [], [
            ("Transition::Object", [
                ("id", text("5f0a3fdc-8b1a-4c0e-9b93-0ad7c5b0a9c1")), ("tag", text("Fade")),
                ("uniqueId", text("5f0a3fdc-8b1a-4c0e-9b93-0ad7c5b0a9c1")),
                ("description", text("Fade" if self.version >= 60 else "Desc Fade")), ("strategy", i32(0)),
                ("type", i32(0)), ("resources", array())]
             + self.since(47, ("defaultDuration", i64(2000))) + self.since(54, ("volume", i32(100)))
             + self.since(62, ("resourcePath", text(""))))])

    def title(self, words):
        stored = ("encodedText", text(base64.b64encode(words.encode()).decode())) if self.version >= 50 else ("text", text(words))
        item = Object("Overlay::Item", [
            ("type", i32(1)), stored,
            ("transform", embedded(transform(0.625, 0, 0, 0, 0.625, 0, 343, 278, 1))),
            ("envelope", embedded(Object("TransformationEnvelope", [
                ("defaultValue", embedded(Object("Transformation::Object", [
                    ("matrix", embedded(transform(*IDENTITY))), ("opacity", i32(100))]))),
                ("keyValues", array())]))),
            ("scriptRole", text("")), ("editTime", real(1)),
            ("outline", embedded(Object("Types::Pen", [("color", u32(4278190080)), ("width", i32(2)), ("enabled", boolean(True))]))),
            ("editable", boolean(True)), ("features", i32(4)), ("textWidth", real(0)), ("arcRadius", real(0)),
            ("from", real(0)), ("to", real(0)), ("intro", real(0)), ("outro", real(0))]
            + self.since(38, ("dropShadow", embedded(Object("Overlay::DropShadow", [
                ("enabled", boolean(False)), ("color", u32(0)), ("offsetX", i32(0)), ("offsetY", i32(0)), ("blurRadius", i32(0))])))))
        return Object("Overlay::Preset", [
            ("type", i32(1)), ("scriptId", text("TitleStandard")), ("scriptSpeed", real(1)),
            ("items", array(embedded(item))), ("tag", text("SimpleText")),
            ("description", text("SimpleText" if self.version >= 60 else "Desc SimpleText")), ("sourceDuration", i64(0))]
            + self.until(40, ("quiz", ref(None))) + self.since(62, ("resourcePath", text(""))))

    def track(self, kind, used, linked):
        track = Object("Timeline::Track", [
            ("type", i32(kind)), ("used", boolean(used)), ("muted", boolean(False)), ("hidden", boolean(False)),
            ("linked", boolean(linked)), ("timeline", ref(self.timeline))] + self.since(46, ("gapless", boolean(kind == 16))))
        return track

    def clip(self, name, kind, duration, file=None, overlay=None, effects=(), stabilization=None, transition=None, preview=None):
        return Object("Timeline::Clip", [
            ("timeline", ref(self.timeline)), ("type", i32(kind)), ("name", text(name)), ("enabled", boolean(True))]
            + self.until(34, ("preview", ref(preview))) + self.until(46, ("transition", ref(transition)))
            + [("overlay", ref(overlay)), ("quiz", ref(None)), ("file", ref(file)), ("nestedTimeline", ref(None)),
               ("volume", i32(100)), ("volumeEnvelope", ref(None)), ("volumeNormalize", boolean(False)),
               ("cropEnvelope", ref(None)), ("moveEnvelope", ref(None)), ("broken", boolean(False)),
               ("sourceDuration", i64(duration)), ("effects", array(*[ref(e) for e in effects])), ("rhythm", ref(None)),
               ("stabilization", ref(stabilization)), ("mediaTrack", i32(0))]
            + self.since(28, ("labels", array())) + self.since(36, ("unlimitedDuration", boolean(kind == 4)))
            + self.since(51, ("motionTrackings", array())))

    def timing(self, track, timestamp, duration, level=0, half=0, into=0, out=0):
        return Object("Timeline::ClipTiming", [
            ("track", ref(track)), ("trackLevel", i32(level)), ("timestamp", i64(timestamp)),
            ("sourceDuration", i64(duration)), ("sourcePosition", i64(0)), ("duration", i64(duration))]
            + self.until(46, ("transitionHalf", i64(half)))
            + self.since(46, ("transitionIn", i64(into)), ("transitionOut", i64(out)))
            + [("fadeInDuraion", i64(0)), ("fadeOutDuraion", i64(0)), ("reversed", boolean(False))]
            + self.since(29, ("timingMode", i32(0))) + self.since(52, ("speedCompensated", boolean(False))))

    def build(self):
        order = [(96, 64, True, False), (80, 80, True, True), (64, 64, True, True), (48, 48, True, True),
                 (32, 32, False, True), (16, 16, True, False)]
        tracks = {number: self.track(kind, used, linked) for number, kind, used, linked in order}
        main, titles, music = tracks[16], tracks[80], tracks[48]

        beach = self.file("media/beach.mp4", 1920, 1080)
        harbour = self.file("media/harbour.jpg", 4000, 3000)
        boat = self.file("media/boat.mp4", 1920, 1080)
        song = self.file("media/song.ogg", 0, 0)
        blur = self.effect("Blur", "0dd39bd2-7b8c-4a43-b1f4-3f5e3be2f2a1", "Blur",
                           self.until(33, ("scale", real(0.25))), intensity=5.0)
        grain = self.effect("AddNoize", "8a9f5a38-51a7-4b4e-9a6e-2c5a4d1c7e02", "AddNoize",
                            self.until(33, ("level", real(0.5))), intensity=0.5)
        sharpen = self.effect("Sharpen", "c3ab2f0e-9ef6-4a6c-8a0f-7b4f4c9d2b03", "Sharpen",
                              self.until(33, ("level", real(0.75))), intensity=0.75)
        fade = self.transition()
        still = Object("StaticPreview::ImageObject", [("image", image("preview_3"))],
                       [("StaticPreview::Object", [("type", i32(1))])])
        steady = Object("Stabilization::Object", [
            ("pathOriginal", text("media/boat.mp4")), ("pathStabilized", text("stabilized/boat.mp4")),
            ("sourcePositionOriginal", i64(0)), ("sourceDurationOriginal", i64(12000)), ("shakiness", i32(5))])

        opening = self.clip("Summer by the sea", 4, 4000, overlay=self.title("Summer by the sea"))
        first = self.clip("Beach", 1, 8000, beach, effects=[blur, grain], transition=fade, preview=still)
        second = self.clip("Harbour", 2, 5000, harbour)
        third = self.clip("Boat", 1, 12000, boat, effects=[sharpen], stabilization=steady)
        caption = self.clip("The old harbour", 4, 3000, overlay=self.title("The old harbour <1924>"))
        music_clip = self.clip("Song", 3, 28000, song)

        entries = [
            (opening, self.timing(main, 0, 4000)),
            (first, self.timing(main, 4000, 7000, half=1000, out=1000)),
            (second, self.timing(main, 11000, 5000, into=1000)),
            (third, self.timing(main, 16000, 12000)),
            (caption, self.timing(titles, 11500, 3000, level=1)),
            (music_clip, self.timing(music, 0, 28000)),
        ]
        self.timeline.fields = (
            [("name", text("Holiday")), ("frameRate", real(25)), ("width", i32(1920)), ("height", i32(1080)),
             ("clips", mapping(*[(ref(clip), embedded(timing)) for clip, timing in entries])),
             ("links", mapping()),
             ("tracks", array(*[ref(tracks[number]) for number, *_ in order]))]
            + self.since(46, ("transitions", mapping((ref(fade), pair(ref(first), ref(second))))))
            + self.since(53, ("trackingLinks", array())))
        return self.root([beach, boat])

    def root(self, files):
        if self.version < 35:
            return self.timeline
        imported = Object("Import::Object", [
            ("tag", text("beach.mp4")), ("description", text("beach.mp4")), ("descriptionUrl", text(""))]
            + (self.since(62, ("resourcePath", text("media/beach.mp4")))
               or [("location", text("media/beach.mp4")), ("remoteUrl", text("")), ("remoteSize", i64(-1))]))
        collected = Object("Collection::Item", [
            ("collectionId", text("Media")), ("uniqueId", text("beach")), ("payload", ref(imported)),
            ("downloadUrl", text("")), ("remoteSize", i64(-1))])
        users = Object("EditorCollection::UserObject", [("items", array(ref(collected)))])
        content = Object("Project::Content", [("timeline", ref(self.timeline)), ("userCollection", ref(users)),
                                              ("portable", boolean(False))])
        table = Object("ResourceTable::Object", [("resource2fileInfo", array())])
        return Object("Project::PersistentObject", [("content", embedded(content)), ("resourceTable", embedded(table))])


def main():
    folder = os.path.dirname(os.path.abspath(sys.argv[0]))
    for name, version, form in (("holiday-v27.xml", 27, Xml), ("holiday-v62.xml", 62, Xml), ("holiday-v63.json", 63, Json)):
        with open(os.path.join(folder, name), "w", encoding="utf-8", newline="\n") as out:
            out.write(form(Film(version).build(), version).text())


if __name__ == "__main__":
    main()
