#!/usr/bin/env python3
"""Writes the sample projects: a holiday film, as the editor saved it at several schema versions.

    python3 samples/make_samples.py        writes the files beside this script

The short cut has three pictures and videos on the main track with a title before them, a transition, effects and
one stabilised clip. The long cut has something of everything that changed on the way to the newest version; at version
3 it has every class of effect on several clips, effects that two clips share and effects that no clip lists. The cut
of titles is a bundle, some of whose texts lie in files beside the document. What a class holds at a version stands
here, field by field; nothing is taken from a migration.
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
def nullable(v): return ("StringPtr", v)
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
    def __init__(self, root, version, loose=()):
        """`loose` are root objects that nothing refers to."""
        self.lines, self.version = [], version
        found = {}
        for obj in (root, *loose):
            found[obj] = None
            walk_fields(obj, found)
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
        elif kind == "StringPtr":
            self.line(depth, '<%s type="StringPtr" value=%s isNull="%d"/>' % (tag, quoteattr(content or ""), content is None))
        elif kind == "portablePath":
            path, portable = content
            self.line(depth, '<%s type="String" value=%s portablePath=%s/>' % (tag, quoteattr(path), quoteattr(portable)))
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
            for name, value in sorted(fields, key=lambda field: field[0]):
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
        if target == "Timeline::Clip" and item[2][1].class_name == "Timeline::Link":
            return {"slave": self.value(item[1]), "link": self.value(item[2])}
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
        self.loose = []

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


# The long cut. Numbers and identifiers are the editor's own.

EFFECT_IDS = {
    1: "d1e2a357-7d46-41c8-a6ba-6bccf926c77e", 2: "c60d4a11-b946-49db-ab9d-93898ce04e54",
    3: "e8400386-05fe-428e-97e6-5a52eaed904c", 4: "72984ac5-3af2-4c27-8342-d940507f188f",
    5: "45fc4a8b-2261-452e-90e2-fb882118a392", 6: "ef8bf68b-761a-48c2-8923-6ff4137819f9",
    7: "5cd3b609-1357-4f98-86c7-1302c9dea530", 8: "49faba34-ebef-42cd-a315-efb43d76cbb0",
    9: "87824c03-f25f-4043-9cb6-3a90eb27b699", 10: "d20134d6-99d6-4b3f-b2b6-30e460012f51",
    11: "d3d9f297-74da-41d6-a955-8109cbed0020", 12: "f60a32dd-2591-4cd3-859a-69f9c6a6838f",
    14: "51041e43-84ea-4e84-b26b-34b68240f8ec", 15: "a19188b6-c1fc-49e1-9395-8e8c2c17078b",
    23: "7cbc055b-98bf-4fcc-be7d-f431a05e608a", 35: "ca7a128c-90f0-4faf-afe2-1756a37379c8",
    36: "7f10aa3a-79c9-4bdf-9a5c-7005690a961a", 37: "342d639d-1182-4b70-b071-1831d484cb85",
    57: "08fa3c82-5bea-4629-b7d5-d62b5bc3f7e5", 63: "41fd2dcc-3529-4e95-a94c-d7ed349d56ed",
    64: "b384a817-878d-4637-ac3f-c47ac104d6db", 32769: "bf86d91d-8347-4030-9e6c-2872dfcf1628",
    32772: "820c9391-6388-49f7-83a2-590014abcfa3", 32773: "4b8b30d0-f345-48c1-b8d3-acca60bf2083",
}

TRANSITION_IDS = {
    1: "a0476d04-6c9e-4e8f-a0d7-b8365c8fad40", 13: "b95596a6-823c-4810-ac9a-8865952a21df",
    16: "7876b484-a122-4935-b99e-874e8021709a", 21: "5aa22a87-b3ea-44d4-aad5-14659f47a550",
}

MASK = "b1c2b46d-c898-4874-9619-a1c58992162c"
NORMALIZE = "6c7a85ac-2a34-44a0-bd07-504f95370354"
GENERIC_LUT = "296139e9-c085-4e73-aacd-df41093c132a"
TEAL_CUBE = "0e7c1f9d-52a4-4d0b-8f43-6b1f0a9e77d5"

OLD_TRACKS = {16: 1, 48: 2, 64: 3, 80: 4, 96: 5}
TRACK_TYPES = {16: 1, 32: 2, 48: 4, 64: 8, 80: 16}

SVG = ('<svg xmlns="http://www.w3.org/2000/svg" width="100" height="100"><defs><linearGradient id="%s">'
       '<stop offset="0" stop-color="#ffffff"/></linearGradient></defs><circle cx="50" cy="50" r="40"/></svg>')
# The same with the colour of its outline, which it took over at version 21.
SVG_COLOURED = SVG.replace("<svg ", '<svg fill="#ffcc00" stroke="#ffcc00" ', 1)

QUESTION = ('<Archive><RootRef type="ObjectRef" value="2"/><RootObject type="Quiz::Question" objectId="2">'
            '<question type="String" value=%s/><points type="int32_t" value="3"/></RootObject></Archive>')


def rect(left, top, right, bottom):
    return Object("Types::Rect", [("left", real(left)), ("top", real(top)), ("right", real(right)), ("bottom", real(bottom))])


def placed(width, height, x, y):
    """A picture of that size with its centre at (x, y) from the frame's centre."""
    return transform(width, 0, 0, 0, height, 0, x, y, 1)


class LongFilm(Film):
    """The long cut. Nested scenes came after version 3, quizzes and the finer audio effects by version 21, LUTs and
    the lists of favourites by version 35. A JSON document of any version holds what version 62 brought to archives."""

    def __init__(self, version, form):
        super().__init__(version)
        self.has_payloads = form is Json or version >= 62

    def words(self, content):
        return nullable(content) if self.version < 44 else text(content or "")

    # Files

    def file(self, path, width, height, composed=False):
        mark = [Object("Composition::Marker", [("position", i64(n))]) for n in (1000, 2000)]
        span = Object("Composition::Range", [("from", i64(0)), ("to", i64(5000))])
        composition = Object("Composition::Object", [("markers", array(*[ref(m) for m in mark])), ("ranges", array(ref(span)))])
        stored = ("portablePath", ("/home/films/" + path, "/" + path)) if self.version < 48 and composed else text(path)
        return Object("File", [
            ("path", stored), ("duration", i64(12000)),
            ("streams", array(ref(Object("Video", [("width", i32(width)), ("height", i32(height)), ("frameRate", real(29.97))]
                                         + self.until(26, ("resizeMode", i32(2)))))))]
            + self.until(24, ("composition", ref(composition if composed else None))))

    def resource(self):
        if self.has_payloads:
            return [("resourcePath", text(""))]
        return self.since(59, ("location", text("")), ("remoteUrl", text("")), ("remoteSize", i64(-1)))

    # Effects

    def number(self, n):
        if isinstance(n, str):
            return text(n)
        return u32(n) if self.version < 23 else text(EFFECT_IDS[n])

    def effect(self, class_name, n, tag, fields, intensity=1.0, unique=None, base="Effect::VideoEffect", cube=None):
        described = [("description", self.words(tag if self.version >= 60 else None))]
        if class_name == "AudioNoiseSuppress":
            # Since version 18 a second `uniqueId` stands where others have their description; JSON keeps the last.
            described = [("uniqueId", text(""))]
        if base == "Effect::VideoEffect" and self.version < 4:
            base = "VideoEffect"
        is_old_name = class_name == "AutoEnhance" and self.version < 4
        auxiliary = resource_id(cube, 4) if cube and self.version >= 63 else resource_id("", 0)
        return Object(class_name if is_old_name else "Effect::" + class_name, fields, [
            (base, []),
            ("Effect::Object", [("id", self.number(n)), ("tag", text(tag)), ("uniqueId", self.number(unique or n))] + described
             + self.since(33, ("intensity", real(intensity))) + self.since(55, ("bypass", boolean(False)))
             + self.since(58, ("auxResource", auxiliary)) + self.resource()
             + self.since(61, ("processedRange", embedded(Object("Types::Range", [("from", i64(0)), ("to", i64(-1))])))))])

    def blur(self):
        return self.effect("Blur", 1, "Blur", self.until(33, ("scale", real(0.25))), intensity=5)

    def grain(self):
        kind = u32(1) if self.version < 5 else i32(1)
        return self.effect("AddNoize", 2, "AddNoize", self.until(33, ("level", real(0.5))) + [("type", kind)], intensity=0.5)

    def sharpen(self):
        return self.effect("Sharpen", 3, "Sharpen", self.until(33, ("level", real(0.75))), intensity=0.75)

    def pop_art(self):
        return self.effect("PopArt", 4, "PopArt9Tiles", self.since(11, ("preset", i32(1))))

    def crop(self):
        """The left half of the picture fills the frame."""
        if self.version < 14:
            area = [("rect", embedded(rect(0, 0, 0.5, 1)))]
        else:
            area = [("transform", embedded(transform(2, 0, 0, 0, 1, 0, 0.5, 0, 1)))]
        return self.effect("Crop", 5, "effect_crop", self.until(21, ("keepAspect", boolean(True))) + area)

    def auto_enhance(self):
        """Magic enhance and white balance are on."""
        if self.version < 32:
            return [self.effect("AutoEnhance", 6, "AutoEnhance", [
                ("magicEnhance", i32(1)), ("autoContrast", i32(0)), ("autoSaturation", i32(0)), ("autoWhiteBalance", i32(1))])]
        return [self.effect("MagicEnhance", "2292fad1-77b2-4384-b9fe-c52358e19419", "#TOP_ITEM#MagicEnhance", []),
                self.effect("WhiteBalance", "4b7ee600-1cdf-4a97-9b06-f6c23f35fced", "#TOP_ITEM#AutoWhiteBalance", [])]

    def manual_enhance(self):
        if self.version < 68:
            fields = [("brightness", i32(51)), ("contrast", i32(-40)), ("gamma", real(1.5)), ("hue", i32(0)), ("saturation", real(0))]
        else:
            fields = [("brightness", real(0.2)), ("contrast", real(-0.5)), ("gamma", real(0.5)), ("hue", real(0)), ("saturation", real(-1))]
        return self.effect("ManualEnhance", 23, "ManualEnhance", fields)

    def transpose(self):
        return self.effect("Transpose", 35, "effect_transpose", [("angle", i32(90))])

    def picture_in_picture(self):
        """The lower right quarter of the frame."""
        if self.version < 13:
            place = [("offsetX", real(0.5)), ("offsetY", real(0.5)), ("scaleX", real(0.5)), ("scaleY", real(0.5)),
                     ("fadeInTime", i32(0)), ("fadeOutTime", i32(0))]
        else:
            place = [("transform", embedded(placed(0.5, 0.5, 0.25, 0.25)))]
        return self.effect("PictureInPicture", 12, "effect_pip", self.until(21, ("keepAspect", boolean(True))) + place)

    def chroma_key(self):
        return self.effect("ChromaKey", 14, "effect_chromakey", [("color", u32(4278255360)), ("level", real(0.3))],
                           unique=15 if self.version >= 8 else 14)

    def cutaway(self):
        """What stands behind the keyed colour, since version 8."""
        if self.version < 8:
            return []
        if self.version < 41:
            return [self.effect("Cutaway", 14, "effet_cutaway", [], unique=32769)]
        return [self.effect("PictureInPicture", 12, "effect_cutaway", [("transform", embedded(transform(*IDENTITY)))], unique=32769)]

    def side_by_side(self):
        halves = [(name, embedded(placed(1, 0.5, 0, -0.25))) for name in ("transformSrc", "transformDst")]
        return self.effect("SideBySide", 7, "effect_sbs", [("mode", i32(1))] + self.since(42, *halves))

    def lut(self):
        if self.version < 35:
            return []
        return [self.effect("Lut", GENERIC_LUT, "Lut", self.until(63, ("cubeResourceUuid", text(TEAL_CUBE))),
                            unique=TEAL_CUBE if self.version >= 56 else GENERIC_LUT, cube=TEAL_CUBE)]

    # The mask of the boat: what is around the left half darkens, the lower right quarter is hidden.

    def old_mask(self, inverted, area):
        return self.effect("Mask", 64 if inverted else 63, "Mask", [
            ("rect", embedded(area)), ("maskType", i32(1)), ("frameType", i32(2)), ("borderType", i32(1)),
            ("width", real(0.25)), ("invertType", i32(inverted)), ("opacity", real(0.5)), ("presetId", i32(7))])

    def frame(self, kind, place, own_fields):
        shared = [("shape", i32(2)), ("transform", embedded(place)), ("outline", boolean(False))]
        if self.version < 51:
            return Object("Effect::Frame" + kind, own_fields + shared)
        return Object("Effect::Frame" + kind, own_fields, [("Effect::Frame", shared + [
            ("trackingId", text("")), ("trackingTransform", embedded(transform(*IDENTITY)))])])

    def masks(self):
        """The mask effects before and behind the transposition."""
        if self.version < 20:
            return [self.old_mask(1, rect(0, 0, 0.5, 1)), self.old_mask(0, rect(0.5, 0.5, 1, 1))], []
        soft = [("opacity", real(0.5)), ("smoothness", real(0.25))]
        bright = self.frame("Highlight", placed(0.5, 1, -0.25, 0), [])
        hidden = self.frame("Conceal", placed(0.5, 0.5, 0.25, 0.25), [("method", i32(1))] + soft + [("pixelSize", real(0.5))])
        if self.version < 51:
            return [self.effect("MaskHighlight", 64, "effect_mask_highlight", soft + [
                        ("method", i32(1)), ("frames", array(embedded(bright)))]),
                    self.effect("MaskConceal", 63, "effect_mask_conceal", [("frames", array(embedded(hidden)))])], []
        return [], [self.effect("Mask", MASK, "effect_mask", [
            ("backgroundFill", i32(1)), ("backgroundOpacity", real(0.5)), ("backgroundSmoothness", real(0.25)),
            ("highlightFrames", array(embedded(bright))), ("concealFrames", array(embedded(hidden)))])]

    # Sound

    def audio_base(self):
        return "Effect::AudioEffect" if self.version < 18 else "Effect::AudioFilter"

    def equalizer(self):
        return self.effect("AudioEqualizer", 8, "Equalizer", [("bands", array(i32(3), i32(0), i32(-3)))], base=self.audio_base())

    def noise_removal(self):
        if self.version < 18:
            profile = Object("Effect::NoiseProfile", [("level", i32(20))])
            return self.effect("AudioNoiseReduction", 9, "NoiseReduction", [("profile", ref(profile))], base=self.audio_base())
        return self.effect("AudioNoiseSuppress", 57, "effect_noisesuppress", [("levelPercent", i32(50))], unique=32773,
                           base=self.audio_base())

    def normalize(self):
        if self.version < 55:
            return []
        return [self.effect("AudioNormalize", NORMALIZE, "effect_audio_normalize", [], base="Effect::EffectDescriptor")]

    def noise_gate(self):
        if self.version < 21:
            return []
        return [self.effect("AudioNoiseGate", 10, "NoiseGate", self.until(57, ("range", real(0.25))),
                            intensity=0.75 if self.version >= 57 else 1, base=self.audio_base())]

    def voices(self):
        """The gulls over the telephone, two tones lower."""
        if self.version < 21:
            return []
        is_new = self.version >= 55
        phone = self.effect("AudioPhone", 36, "Phone", [("gainUp", i32(30 if is_new else 10)), ("gainDown", i32(75 if is_new else 20))],
                            intensity=0.67 if is_new else 1, unique=36 if is_new else 32772, base=self.audio_base())
        pitch = self.effect("AudioPitch", 37, "PitchLow", [("pitch", real(1.5 if is_new else 2))],
                            intensity=0.5 if is_new else 1, unique=37 if is_new else 32772, base=self.audio_base())
        return [phone, pitch]

    # Transitions

    def transition(self, class_name, n, tag, fields):
        return Object(class_name if self.version < 4 else "Transition::" + class_name, fields, [
            ("Transition::Object", [
                ("id", u32(n) if self.version < 23 else text(TRANSITION_IDS[n])), ("tag", text(tag)),
                ("description", self.words(tag if self.version >= 60 else None))]
             + self.since(22, ("strategy", i32(0))) + self.since(25, ("type", i32(0)), ("resources", array()))
             + self.since(47, ("defaultDuration", i64(2000))) + self.since(54, ("volume", i32(100)))
             + ([("resourcePath", text(""))] if self.has_payloads else []))])

    def crossfade(self):
        return self.transition("Crossfade", 1, "Crossfade", [])

    def ripple(self):
        return self.transition("Ripple", 16, "Ripple2WavesFromCenter",
                               self.since(5, ("amplitude", u32(32)), ("period", u32(7))) + self.until(37, ("ampMode", i32(1))))

    def direct_crossfade(self):
        if self.version < 5:
            fields = [("direction", u32(2)), ("smoothPart", real(0.9))]
        else:
            fields = [("direction", i32(2)), ("smoothPart", i32(4))]
        return self.transition("DirectCrossFade", 13, "DirectCrossFadeLeft", fields)

    def blinds(self):
        mode = u32(1) if self.version < 5 else i32(1)
        return self.transition("Blinds", 21, "Blinds", self.until(37, ("mode", mode)))

    # Overlays

    def pen(self, color):
        return Object("Types::Pen", [("color", u32(color)), ("width", i32(2))] + self.since(7, ("enabled", boolean(True))))

    def item(self, kind, content, color, features):
        """Kind 3 was a picture of its own until version 21, and an SVG with the feature 1 from then on."""
        stored = ("encodedText", text(base64.b64encode(content.encode()).decode())) if self.version >= 50 else ("text", self.words(content))
        if self.version >= 21 and kind == 3:
            kind, features = 2, 1
        return Object("Overlay::Item", [
            ("type", i32(kind)), stored, ("transform", embedded(transform(0.625, 0, 0, 0, 0.625, 0, 343, 278, 1))),
            ("scriptRole", text("")), ("editTime", real(1)), ("outline", embedded(self.pen(color))), ("editable", boolean(True)),
            ("textWidth", real(0)), ("arcRadius", real(0)), ("from", real(0)), ("to", real(0)), ("intro", real(0)), ("outro", real(0))]
            + self.since(21, ("features", i32(features)))
            + self.since(25, ("envelope", embedded(self.envelope([]))))
            + self.since(38, ("dropShadow", embedded(Object("Overlay::DropShadow", [
                ("enabled", boolean(False)), ("color", u32(3024043839)), ("offsetX", i32(4)), ("offsetY", i32(4)), ("blurRadius", i32(1))]))))
            + self.since(64, ("resourcesInfo", array())))

    def preset(self, kind, tag, items):
        return Object("Overlay::Preset", self.since(21, ("type", i32(kind))) + [
            ("scriptId", text("TitleStandard")), ("scriptSpeed", real(1)), ("items", array(*[embedded(i) for i in items])),
            ("tag", text(tag)), ("description", self.words(tag if self.version >= 60 else None)), ("sourceDuration", i64(0))]
            + ([("resourcePath", text(""))] if self.has_payloads else []) + self.since(64, ("fontsDir", text(""))))

    def title(self, words):
        return self.preset(1, "SimpleText", [self.item(1, words, 4278190080, 0)])

    def sun_label(self):
        gradient = "gradient_solid_white" if self.version < 15 else "gradient_solid_white_retain"
        sun = self.item(2, (SVG if self.version < 21 else SVG_COLOURED) % gradient, 4294953984 if self.version < 21 else 0, 0)
        words = self.item(1, "Midday", 4278190080, 0)
        return self.preset(1, "SunLabel", [sun, words] if self.version < 17 else [words, sun])

    def callout(self):
        return self.preset(2, "Callout", [self.item(3, SVG % "plain", 4278190080, 0), self.item(1, "Look!", 4278190080, 0)])

    def quiz(self, question):
        """A quiz is an overlay until version 40: its overlay and its own object."""
        if self.version < 40:
            return self.preset(4, "Quiz", [self.item(1, QUESTION % quoteattr(question), 0, 0)]), None
        asked = Object("Quiz::Question", [("question", text(question)), ("points", i32(3))])
        return None, Object("Quiz::Preset", [
            ("questions", array(embedded(asked))), ("tag", text("Quiz")), ("description", text(""))]
            + ([("resourcePath", text(""))] if self.has_payloads else []))

    # Envelopes

    def pose(self, matrix):
        return Object("Transformation::Object", [("matrix", embedded(matrix)), ("opacity", i32(100))]
                      + self.until(21, ("aspect", boolean(True))))

    def envelope(self, keys):
        return Object("TransformationEnvelope", [
            ("defaultValue", embedded(self.pose(transform(*IDENTITY)))),
            ("keyValues", array(*[embedded(Object("AnimationTransformationKeyValue", [
                ("step", real(step)), ("value", embedded(self.pose(matrix)))])) for step, matrix in keys]))])

    # Clips. `moves` are the zoom of a clip: its effect until version 16 and its key values from then on.

    def pan(self):
        """From the whole picture to its middle, over the clip as it was cut before version 22."""
        if self.version < 16:
            return [self.effect("PanAndZoom", 11, "PanAndZoom", [
                ("rectIn", embedded(rect(0, 0, 1, 1))), ("rectOut", embedded(rect(0.25, 0.25, 0.75, 0.75)))])], None
        return [], self.envelope([(0.0625, transform(*IDENTITY)), (0.8125, transform(2, 0, 0, 0, 2, 0, 0, 0, 1))])

    def zoom(self):
        if self.version < 16:
            return [self.effect("Zoom", 11, "Zoom", [
                ("partIn", real(0.25)), ("partOut", real(0.25)), ("rect", embedded(rect(0.25, 0.25, 0.75, 0.75)))])], None
        near = [transform(2, 0, 0, 0, 2, 0, 0, 0, 1) for _ in range(2)]
        return [], self.envelope([(0, transform(*IDENTITY)), (0.125, near[0]), (0.375, near[1]), (0.5, transform(*IDENTITY))])

    def preview_field(self, name):
        if self.version < 12:
            return [("preview", image(name or "empty"))]
        if self.version >= 34:
            return []
        kind = "WaveformObject" if name and name.startswith("wave") else "ImageObject"
        still = Object("StaticPreview::" + kind, [("image", image(name))], [("StaticPreview::Object", [("type", i32(1))])]) if name else None
        return [("preview", ref(still))]

    def stabilization_fields(self, stabilized):
        if self.version < 9:
            return [("pathStabilized", self.words("stabilized/boat.mp4"))] if stabilized else []
        if self.version < 15:
            return [("pathOriginal", self.words("media/boat.mp4")), ("pathStabilized", self.words("stabilized/boat.mp4"))] if stabilized else []
        steady = Object("Stabilization::Object", [
            ("shakiness", i32(5)), ("accuracy", i32(15)), ("stepsize", i32(6)), ("smoothing", i32(15)), ("optzoom", i32(1)),
            ("sourcePositionOriginal", i64(0)), ("sourceDurationOriginal", i64(16000)),
            ("pathOriginal", self.words("media/boat.mp4")), ("pathStabilized", self.words("stabilized/boat.mp4"))])
        return [("stabilization", ref(steady if stabilized else None))]

    def clip(self, name, kind, source, file=None, overlay=None, quiz=None, nested=None, effects=(), crop=None, transition=None,
             preview=None, stabilized=False, normalized=False, angle=0, timeline=None, unlimited=None):
        info = Object("Timeline::CollectionItemInfo", [("collectionId", text("")), ("uniqueId", text("")), ("packageId", text(""))])
        return Object("Timeline::Clip", [
            ("timeline", ref(timeline or self.timeline)), ("type", i32(kind)), ("name", self.words(name)), ("enabled", boolean(True))]
            + self.until(4, ("angle", i32(angle))) + self.preview_field(preview) + self.until(46, ("transition", ref(transition)))
            + [("overlay", ref(overlay))] + self.since(40, ("quiz", ref(quiz)))
            + [("file", ref(file)), ("nestedTimeline", ref(nested)), ("volume", i32(100)), ("volumeEnvelope", ref(None)),
               ("volumeNormalize", boolean(normalized))] + self.since(16, ("cropEnvelope", ref(crop)))
            + [("moveEnvelope", ref(None)), ("broken", boolean(False)), ("unlimitedDuration", boolean(kind == 4 if unlimited is None else unlimited)),
               ("sourceDuration", i64(source)), ("effects", array(*[ref(e) for e in effects])), ("rhythm", ref(None))]
            + self.stabilization_fields(stabilized) + [("mediaTrack", i32(0))]
            + self.since(28, ("labels", array())) + self.since(51, ("motionTrackings", array()))
            + self.since(67, ("collectionItemInfo", embedded(info))))

    def timing(self, track, timestamp, duration, source=None, position=0, level=0, before=0, after=0, follows=0, halves=None):
        """`before` and `after` are half of the transitions around a clip. Until version 22 the clips overlapped by
        the whole transition, and what was linked to a clip stood later by half of the transition before that."""
        length = None
        if self.version < 22 and track in (16, "main"):
            timestamp, position, duration = timestamp - before, position - before, duration + before + after
            length = 2 * after
        elif self.version < 22:
            timestamp += follows
        if self.version < 27:
            placed_on = i32(OLD_TRACKS[track] if self.version < 4 else track)
        else:
            placed_on = ref((halves or self.tracks)[track])
        return Object("Timeline::ClipTiming", [
            ("track", placed_on), ("trackLevel", i32(level)), ("timestamp", i64(timestamp)),
            ("sourceDuration", i64(source or duration)), ("sourcePosition", i64(position)), ("duration", i64(duration))]
            + (self.until(22, ("transitionDuration", i64(length))) if length is not None else [])
            + (self.until(46, ("transitionHalf", i64(after))) if self.version >= 22 else [])
            + self.since(46, ("transitionIn", i64(before)), ("transitionOut", i64(after)))
            + [("fadeInDuraion", i64(0)), ("fadeOutDuraion", i64(0)), ("reversed", boolean(False))]
            + self.since(29, ("timingMode", i32(0))) + self.since(52, ("speedCompensated", boolean(False))))

    def make_tracks(self, timeline):
        order = [(96, 64, True, False), (80, 80, True, True), (64, 64, True, True), (48, 48, True, True),
                 (32, 32, False, True), (16, 16, True, False)]
        return {number: Object("Timeline::Track", [
            ("type", i32(TRACK_TYPES[kind] if self.version >= 72 else kind)), ("used", boolean(used)), ("muted", boolean(False)),
            ("hidden", boolean(False)), ("linked", boolean(linked)), ("timeline", ref(timeline))]
            + self.since(46, ("gapless", boolean(number == 16)))) for number, kind, used, linked in order}

    def fill(self, timeline, name, entries, tracks, links, transitions):
        timeline.fields = (
            [("name", text(name)), ("frameRate", real(25)), ("width", i32(1920)), ("height", i32(1080)),
             ("clips", mapping(*[(ref(clip), embedded(timing)) for clip, timing in entries])),
             ("links", mapping(*[(ref(slave), embedded(Object("Timeline::Link", [("master", ref(master)), ("offset", i64(offset))])))
                                 for slave, master, offset in links]))]
            + self.since(27, ("tracks", array(*[ref(track) for track in tracks.values()])))
            + self.since(46, ("transitions", mapping(*[(ref(t), pair(ref(a), ref(b))) for t, a, b in transitions])))
            + self.since(53, ("trackingLinks", array())))

    def scene(self):
        """The village, a timeline in the timeline."""
        scene = Object("Timeline::Object", [])
        tracks = self.make_tracks(scene)
        fade = self.crossfade() if self.version >= 22 else None
        half = 250 if fade else 0
        square = self.clip("Square", 1, 12000, self.file("media/square.mp4", 1920, 1080), transition=fade, timeline=scene)
        welcome = self.clip("Welcome", 4, 1000, overlay=self.title("Welcome"), timeline=scene)
        church = self.clip("Church", 2, 2000, self.file("media/church.jpg", 3000, 4000), timeline=scene, preview="preview_9")
        intro = self.clip("Intro", 8, 1000, timeline=scene, unlimited=self.version < 36)

        def timing(track, *place, **more):
            made = self.timing(track, *place, halves=tracks, **more)
            # The steps up to version 22 knew one timeline, and here there is no transition to them.
            made.fields = [f for f in made.fields if f[0] != "transitionDuration"]
            return made

        entries = [(square, timing(16, 0, 2000, 12000, after=half)), (welcome, timing(16, 2000, 1000, before=half)),
                   (church, timing(16, 3000, 2000)), (intro, timing(64, 0, 1000))]
        if 21 <= self.version < 69:
            overlay, quiz = self.quiz("How old is the church?")
            asked = self.clip("Church quiz", 32, 1000, overlay=overlay, quiz=quiz, timeline=scene)
            entries.append((asked, timing(96, 1000, 1000)))
        self.fill(scene, "Village", entries, tracks, [], [(fade, square, welcome)] if fade else [])
        return scene

    def build(self):
        self.tracks = self.make_tracks(self.timeline)
        beach, boat = self.file("media/beach.mp4", 1920, 1080, composed=True), self.file("media/boat.mp4", 1920, 1080)
        harbour, tower = self.file("media/harbour.jpg", 4000, 3000), self.file("media/tower.mp4", 1920, 1080)
        village, sunset = self.file("media/village.mp4", 1920, 1080), self.file("media/sunset.mp4", 1920, 1080)
        song = self.file("media/song.ogg", 0, 0)
        first, second, third, last = self.crossfade(), self.ripple(), self.direct_crossfade(), self.blinds()
        pan, pan_envelope = self.pan()
        zoom, zoom_envelope = self.zoom()
        masks, mask = self.masks()
        turn = [self.transpose()] if self.version >= 4 else []

        opening = self.clip("Summer by the sea", 4, 4000, overlay=self.title("Summer by the sea"), transition=first)
        beach_clip = self.clip("Beach", 1, 12000, beach, effects=[self.blur(), self.grain()], transition=second, preview="preview_3")
        harbour_clip = self.clip("Harbour", 2, 8000, harbour, effects=pan + [self.crop()], crop=pan_envelope)
        boat_clip = self.clip("Boat", 1, 16000, boat, effects=[self.sharpen()] + masks + turn + mask, transition=third,
                              stabilized=True, angle=90, preview="preview_4")
        tower_clip = self.clip("Lighthouse", 1, 12000, tower, effects=self.auto_enhance() + [self.manual_enhance()])
        if self.version < 12:
            village_clip = self.clip("Village", 1, 5000, village)
        else:
            village_clip = self.clip("Village", 64, 5000, nested=self.scene())
        sunset_clip = self.clip("Sunset", 1, 9500, sunset, effects=zoom + [self.pop_art()] + self.lut(), crop=zoom_envelope,
                                transition=last)
        inset = self.clip("Inset", 1, 12000, beach, effects=[self.picture_in_picture()])
        keyed = self.clip("Green screen", 1, 12000, tower, effects=[self.chroma_key()] + self.cutaway())
        split = self.clip("Split", 1, 12000, boat, effects=[self.side_by_side()])
        aside = self.clip("Aside", 2, 1000, harbour, transition=self.crossfade() if self.version < 46 else None)
        caption = self.clip("The old harbour", 4, 3000, overlay=self.title("The old harbour <1924>"))
        fishermen = self.clip("Fishermen", 4, 1500, overlay=self.title("Fishermen & boats"))
        midday = self.clip("Midday", 4, 2000, overlay=self.sun_label())
        look = self.clip("Look", 4, 1000, overlay=self.callout())
        song_clip = self.clip("Song", 3, 40000, song, effects=[self.equalizer(), self.noise_removal()], preview="wave_1")
        waves = self.clip("Waves", 3, 9000, song, effects=self.normalize(), normalized=True)
        narration = self.clip("Narration", 3, 4000, song, effects=self.noise_gate())
        gulls = self.clip("Gulls", 3, 3000, song, effects=self.voices())

        entries = [
            (song_clip, self.timing(48, 0, 40000)),
            (sunset_clip, self.timing(16, 39000, 4000, 9500, after=750)),
            (opening, self.timing(16, 0, 4000, after=500)),
            (beach_clip, self.timing(16, 4000, 7000, 12000, position=500, before=500, after=1000)),
            (harbour_clip, self.timing(16, 11000, 5000, 8000, position=1500, before=1000)),
            (boat_clip, self.timing(16, 16000, 12000, 16000, position=0, after=400)),
            (tower_clip, self.timing(16, 28000, 6000, 12000, position=900, before=400)),
            (village_clip, self.timing(16, 34000, 5000)),
            (inset, self.timing(64, 5000, 2000, 12000)),
            (keyed, self.timing(64, 12000, 3000, 12000, level=1)),
            (split, self.timing(64, 17000, 2000, 12000, level=2)),
            (aside, self.timing(64, 20000, 1000, level=3, after=300 if 22 <= self.version < 46 else 0)),
            (caption, self.timing(80, 11500, 3000)),
            (fishermen, self.timing(80, 12000, 1500, level=1, follows=1000)),
            (midday, self.timing(80, 12500, 2000, level=2)),
            (look, self.timing(80, 17000, 1000, level=3)),
            (waves, self.timing(48, 4000, 9000, level=1)),
            (narration, self.timing(48, 29000, 4000, level=2, follows=0)),
            (gulls, self.timing(48, 5000, 3000, level=3)),
        ]
        if self.version >= 46:
            # What the last transition leads to since then.
            behind = self.clip("Default name", 4, 6000, overlay=self.title(""))
            entries.append((behind, self.timing(16, 43000, 750, 6000)))
        if 21 <= self.version < 69:
            overlay, quiz = self.quiz("Where was the boat?")
            entries.append((self.clip("Where was the boat?", 32, 5000, overlay=overlay, quiz=quiz), self.timing(96, 43750, 5000)))
        elif self.version >= 69:
            words = "<html><body><span>Quiz</span></body></html>"
            entries.append((self.clip("SimpleText", 4, 5000, overlay=self.title(words)), self.timing(16, 43750, 5000)))
        if self.version == 3:
            entries += self.effects_reel(beach, boat, song)
            self.loose = self.leftovers()
        links = [(fishermen, harbour_clip, 2000 if self.version < 22 else 1000), (narration, tower_clip, 1000)]
        transitions = [(first, opening, beach_clip), (second, beach_clip, harbour_clip), (third, boat_clip, tower_clip),
                       (last, sunset_clip, None)]
        self.fill(self.timeline, "Holiday", entries, self.tracks, links, transitions)
        return self.root([])

    # Effects as version 3 had them: each class once more, shared, and left behind

    def strength(self, class_name, n, field, value):
        """An effect with a strength of its own; None for one that was saved without it."""
        return self.effect(class_name, n, class_name, [] if value is None else [(field, real(value))])

    def old_auto(self, magic, contrast, saturation, white):
        return self.effect("AutoEnhance", 6, "AutoEnhance", [
            ("magicEnhance", i32(magic)), ("autoContrast", i32(contrast)), ("autoSaturation", i32(saturation)),
            ("autoWhiteBalance", i32(white))])

    def old_crop(self, left, top, right, bottom):
        return self.effect("Crop", 5, "effect_crop", [("keepAspect", boolean(True)), ("rect", embedded(rect(left, top, right, bottom)))])

    def old_picture(self, left, top, size):
        return self.effect("PictureInPicture", 12, "effect_pip", [
            ("keepAspect", boolean(True)), ("offsetX", real(left)), ("offsetY", real(top)), ("scaleX", real(size)),
            ("scaleY", real(size)), ("fadeInTime", i32(0)), ("fadeOutTime", i32(0))])

    def old_split(self, mode):
        return self.effect("SideBySide", 7, "effect_sbs", [("mode", i32(mode))])

    def tiles(self, count):
        return self.effect("PopArt", 4, "PopArt%dTiles" % count, [])

    def near(self):
        return self.effect("Zoom", 11, "Zoom", [
            ("partIn", real(0.25)), ("partOut", real(0.25)), ("rect", embedded(rect(0.25, 0.25, 0.75, 0.75)))])

    def across(self):
        return self.effect("PanAndZoom", 11, "PanAndZoom", [
            ("rectIn", embedded(rect(0, 0, 0.5, 0.5))), ("rectOut", embedded(rect(0.5, 0.5, 1, 1)))])

    def sound(self, class_name, n, tag, fields, unique=32772):
        return self.effect(class_name, n, tag, fields, unique=unique, base="Effect::AudioFilter")

    def old_gate(self):
        return self.effect("AudioNoiseGate", 10, "NoiseGate", [("range", real(0.25))], base="Effect::AudioEffect")

    def phone(self, tag):
        return self.sound("AudioPhone", 36, tag, [("gainUp", i32(10)), ("gainDown", i32(20))])

    def pitch(self, tag, pitch):
        return self.sound("AudioPitch", 37, tag, [("pitch", real(pitch))])

    def effects_reel(self, video, turned, song):
        """Short clips over the film and beside its song, each shown in full."""
        soft, keyed, near, auto = self.blur(), self.chroma_key(), self.near(), self.old_auto(1, 1, 1, 1)
        inset, hiss = self.old_picture(0, 0, 0.25), self.noise_removal()
        pictures = [
            ("Dunes", [soft, self.strength("Erosion", 16, "radius", 0.01), self.strength("FindEdges", 17, "blend", 0.5),
                       self.strength("HalfTone", 18, "threshold", 0.25), self.strength("MotionBlur", 19, "scale", 0.75),
                       self.strength("TiltShift", 20, "brns", 0.25)]),
            ("Rain", [self.strength("Erosion", 16, "radius", 0.5), soft, self.strength("FindEdges", 17, "blend", None),
                      self.strength("HalfTone", 18, "threshold", 0.75), self.strength("MotionBlur", 19, "scale", 0.5),
                      self.strength("TiltShift", 20, "brns", None), self.grain(), self.sharpen()]),
            ("Pier", [near, self.tiles(4)]),
            ("Dock", [self.tiles(16), near]),
            ("Mole", [self.near(), self.across(), self.tiles(25)]),  # of two zooms a clip keeps one
            ("Lamp", [auto, self.grain()]),
            ("Lens", [self.sharpen(), auto, self.manual_enhance()]),
            ("Fog", [self.old_auto(0, 0, 0, 0)]),  # nothing was switched on
            ("Keyhole", [self.old_mask(0, rect(0.5, 0, 1, 1)), self.old_mask(1, rect(0, 0, 1, 0.5))]),
            ("Porthole", [self.old_mask(0, rect(0.25, 0.25, 0.75, 0.75))]),
            ("Window", [inset, keyed]),
            ("Door", [keyed, inset]),
            ("Twins", [self.old_split(0), self.old_split(2)]),
            ("Tide", [self.old_split(3), self.old_crop(0.5, 0, 1, 1)]),
        ]
        entries = []
        for number, (name, effects) in enumerate(pictures):
            entries.append((self.clip(name, 1, 500, video, effects=effects), self.timing(64, 21000 + 500 * number, 500, level=3)))
        gulf = self.clip("Gulf", 1, 500, turned, stabilized=True, angle=-90)
        upright = self.clip("Upright", 1, 500, turned, angle=720)
        entries += [(gulf, self.timing(64, 28000, 500, level=3)), (upright, self.timing(64, 28500, 500, level=3))]
        sounds = [
            ("Cave", [self.sound("AudioEcho", 38, "Echo", []), self.sound("AudioReverberation", 39, "Cathedral", []),
                      self.sound("AudioMuffle", 40, "Muffle", []), hiss, self.old_gate()], False),
            ("Ship to shore", [hiss, self.equalizer(), self.sound("AudioRadio", 41, "Radio", []), self.phone("Phone"),
                               self.pitch("PitchHigh", 2)], True),
            ("Puppets", [self.pitch("PitchVeryHigh", 2), self.pitch("PitchOwn", 2), self.phone("Own"),
                         self.sound("AudioEcho", 38, "Echo", [], unique=58), self.sound("AudioReverberation", 39, "Hall", []),
                         self.sound("AudioMuffle", 40, "Wall", []), self.sound("AudioRadio", 41, "Radio", []), self.old_gate()], False),
        ]
        for number, (name, effects, normalized) in enumerate(sounds):
            entries.append((self.clip(name, 3, 500, song, effects=effects, normalized=normalized),
                            self.timing(48, 21000 + 500 * number, 500, level=3)))
        return entries

    def leftovers(self):
        """Effects that were taken off their clips and saved all the same."""
        return [self.blur(), self.near(), self.across(), self.old_mask(1, rect(0, 0, 0.5, 1)), self.old_mask(0, rect(0, 0, 1, 1)),
                self.old_auto(1, 0, 1, 0), self.manual_enhance(), self.chroma_key(), self.old_picture(0.5, 0.5, 0.5),
                self.old_split(2), self.old_crop(0, 0, 0.5, 1), self.tiles(9), self.noise_removal(), self.phone("Phone"),
                self.pitch("PitchLow", 2)]

    # The project

    def imported(self, name):
        path = "media/" + name
        return Object("Import::Object", [("tag", text(name)), ("description", text(path if self.has_payloads else name))]
                      + self.since(50, ("descriptionUrl", text("")))
                      + ([("resourcePath", text(path))] if self.has_payloads else
                         [("location", text(path)), ("remoteUrl", text("media://" + name))] + self.since(49, ("remoteSize", i64(2048))))
                      + self.since(71, ("blendingMode", i32(5)), ("transform", embedded(transform(*IDENTITY)))))

    def collected(self, kind, collection, unique_id, held, url="", size=-1):
        fields = [("collectionId", text(collection)), ("uniqueId", text(unique_id))]
        if self.has_payloads:
            return Object("Collection::Item", fields + [("payload", ref(held)), ("downloadUrl", text(url)), ("remoteSize", i64(size))])
        return Object("Collection::PersistentItem::" + kind, fields + [("item", ref(held))])

    def root(self, files):
        if self.version < 35:
            return self.timeline
        size = 2048 if self.version >= 49 else -1
        items = [self.collected("Import::Object", "Media", "beach", self.imported("beach.mp4"), "media://beach.mp4", size),
                 self.collected("Import::Object", "Themes", "seaside", self.imported("seaside.png"), "media://seaside.png", size),
                 self.collected("Effect::Object", "Favourites", "blur", self.blur())]
        users = Object("EditorCollection::UserObject", [("items", array(*[ref(i) for i in items]))])
        content = Object("Project::Content", [("timeline", ref(self.timeline)), ("userCollection", ref(users))]
                         + self.since(48, ("portable", boolean(self.version < 57))))
        if self.version < 57:
            return content
        table = Object("ResourceTable::Object", [("resource2fileInfo", array())])
        return Object("Project::PersistentObject", [("content", embedded(content)), ("resourceTable", embedded(table))])


# The cut of titles, with its side files.

COMPASS = """<?xml version="1.0" encoding="UTF-8"?>
<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 64 64" fill="#000000">
  <title>Compass</title>
  <circle cx="32" cy="32" r="30" fill="none"/>
  <path d="M32 4 L40 32 L32 60 L24 32 Z"/>
</svg>
"""

ARROW = """<svg xmlns="http://www.w3.org/2000/svg" width="80" height="40">
  <!-- points at what is meant -->
  <path d="M0 10 H50 V0 L80 20 L50 40 V30 H0 Z" fill="#c03020"/>
</svg>
"""

RIBBON = """<svg xmlns="http://www.w3.org/2000/svg" width="200" height="50" fill="url(#cloth)"><defs>
<linearGradient id="cloth"><stop offset="0" stop-color="#203060"/><stop offset="1" stop-color="#4060c0"/></linearGradient>
</defs><rect width="200" height="50"/></svg>
"""

OPENING = """<html><body>
<p align="center"><span style="color:#ffffff;">Summer by the sea</span></p>
</body></html>
"""

HOW_OLD = QUESTION % quoteattr("How old is the church?")


class TitlesFilm(LongFilm):
    """The cut of titles: text, SVG, callouts, an intro and an outro, and quizzes. It is about a version before 21."""

    side_files = {"content_1.svg": COMPASS, "content_2.svg": ARROW, "content_3.svg": RIBBON, "content_4.html": OPENING,
                  "content_5.quiz": HOW_OLD}

    def words(self, content):
        for name, stored in self.side_files.items():
            if content == stored:
                return ("FileContent", name)
        return super().words(content)

    def picture(self, tag, svg, color):
        return self.preset(1, tag, [self.item(2, svg, color, 0)])

    def arrow(self):
        return self.preset(2, "Arrow", [self.item(3, ARROW, 4278190080, 0), self.item(1, "Look!", 4278190080, 0)])

    def ribbon(self):
        return self.preset(1, "Ribbon", [self.item(1, "Welcome", 4278190080, 0), self.item(2, RIBBON, 4280303744, 0)])

    def asked(self, question, typed):
        """A quiz by its clip; its preset says so too if it is `typed`, which few presets were before version 21."""
        preset = self.preset(4, "Quiz", [self.item(1, question, 0, 0)])
        if typed:
            preset.fields.insert(0, ("type", i32(4)))
        return preset

    def scene(self):
        scene = Object("Timeline::Object", [])
        tracks = self.make_tracks(scene)
        square = self.clip("Square", 1, 12000, self.file("media/square.mp4", 1920, 1080), timeline=scene)
        welcome = self.clip("Welcome", 4, 1000, overlay=self.ribbon(), timeline=scene)
        church = self.clip("Church", 2, 2000, self.file("media/church.jpg", 3000, 4000), timeline=scene, preview="preview_9")
        quiz = self.clip("Church quiz", 32, 1000, overlay=self.asked(HOW_OLD, True), timeline=scene)

        def timing(track, *place):
            made = self.timing(track, *place, halves=tracks)
            made.fields = [f for f in made.fields if f[0] != "transitionDuration"]
            return made

        entries = [(quiz, timing(96, 1000, 1000)), (square, timing(16, 0, 2000, 12000)), (welcome, timing(16, 2000, 1000)),
                   (church, timing(16, 3000, 2000))]
        self.fill(scene, "Village", entries, tracks, [], [])
        return scene

    def build(self):
        self.tracks = self.make_tracks(self.timeline)
        first, second = self.crossfade(), self.ripple()
        intro = self.clip("Intro", 8, 2000, overlay=self.title("Sea & Sand Films"), unlimited=True)
        opening = self.clip("Summer by the sea", 4, 4000, overlay=self.title(OPENING), transition=first)
        beach = self.clip("Beach", 1, 12000, self.file("media/beach.mp4", 1920, 1080), transition=second, preview="preview_3")
        harbour = self.clip("Harbour", 2, 8000, self.file("media/harbour.jpg", 4000, 3000))
        village = self.clip("Village", 64, 5000, nested=self.scene())
        ending = self.clip("The end", 4, 4000, overlay=self.title("Fin \u2013 \u00e0 bient\u00f4t <3"))
        outro = self.clip("Outro", 16, 3000, overlay=self.title("\u00a9 1999"), unlimited=True)
        caption = self.clip("The old harbour", 4, 3000, overlay=self.title("The old harbour <1924>"))
        midday = self.clip("Midday", 4, 2000, overlay=self.sun_label())
        look = self.clip("Look", 4, 1000, overlay=self.arrow())
        compass = self.clip("Compass", 4, 2000, overlay=self.picture("Compass", COMPASS, 4278222912))
        markup = self.clip("Markup", 4, 1000, overlay=self.title("Drawn with <svg>"))
        blank = self.clip("Blank", 4, 1000, overlay=self.title(None))
        song = self.clip("Song", 3, 40000, self.file("media/song.ogg", 0, 0), preview="wave_1")
        quiz = self.clip("Where was the boat?", 32, 5000, overlay=self.asked(QUESTION % quoteattr("Where was the boat?"), False))
        entries = [
            (intro, self.timing(16, 0, 2000)),
            (opening, self.timing(16, 2000, 4000, after=500)),
            (beach, self.timing(16, 6000, 7000, 12000, position=500, before=500, after=1000)),
            (harbour, self.timing(16, 13000, 5000, 8000, position=1500, before=1000)),
            (village, self.timing(16, 18000, 5000)),
            (ending, self.timing(16, 23000, 4000)),
            (outro, self.timing(16, 27000, 3000)),
            (caption, self.timing(80, 13500, 3000)),
            (midday, self.timing(80, 14000, 2000, level=1)),
            (look, self.timing(80, 15000, 1000, level=2)),
            (compass, self.timing(80, 7000, 2000)),
            (markup, self.timing(80, 9000, 1000, level=2)),
            (blank, self.timing(80, 25000, 1000)),
            (song, self.timing(48, 0, 30000, 40000)),
            (quiz, self.timing(96, 30000, 5000)),
        ]
        self.fill(self.timeline, "Holiday", entries, self.tracks, [], [(first, opening, beach), (second, beach, harbour)])
        return self.root([])


SHORT_CUTS = [(27, Xml), (62, Xml), (63, Json)]
LONG_CUTS = [(3, Xml), (12, Xml), (21, Xml), (34, Xml), (45, Xml), (55, Xml), (60, Json), (70, Json), (76, Json)]

BUNDLES = [20]


def write(path, content):
    with open(path, "w", encoding="utf-8", newline="\n") as out:
        out.write(content)


def main():
    folder = os.path.dirname(os.path.abspath(sys.argv[0]))
    films = [(Film(version), version, form) for version, form in SHORT_CUTS]
    films += [(LongFilm(version, form), version, form) for version, form in LONG_CUTS]
    for film, version, form in films:
        name = "holiday-v%d.%s" % (version, "xml" if form is Xml else "json")
        root = film.build()
        document = Xml(root, version, film.loose) if form is Xml else Json(root, version)
        write(os.path.join(folder, name), document.text())
    for version in BUNDLES:
        bundle = os.path.join(folder, "holiday-v%d-bundle" % version)
        os.makedirs(bundle, exist_ok=True)
        write(os.path.join(bundle, "holiday.xml"), Xml(TitlesFilm(version, Xml).build(), version).text())
        for name, content in TitlesFilm.side_files.items():
            write(os.path.join(bundle, name), content)


if __name__ == "__main__":
    main()
