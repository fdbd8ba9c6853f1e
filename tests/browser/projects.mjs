// Projects for the tests of pages, written by hand.

const ending = { "&": "&amp;", "<": "&lt;", ">": "&gt;", "'": "&apos;", '"': "&quot;" };
const escaped = (text) => text.replace(/[&<>'"]/g, (character) => ending[character]);

const kinds = { video: 1, image: 2, audio: 3, title: 4, quiz: 32 };

/// An archive with one timeline and the tracks titles, audio and main. `clips` is a list of {name, kind, track, start,
/// duration, effects}, times in milliseconds; `effects` are ids of objects in `extra`.
export function archive({ version = 62, name = "Film", clips, extra = "" }) {
  const tracks = { titles: [11, 80], audio: [12, 48], main: [13, 16] };
  const firstId = 1000;
  const entries = [];
  const objects = [];
  const declared = [];
  clips.forEach((clip, place) => {
    const id = firstId + 2 * place;
    const index = place + 1;
    declared.push(`<Item type='Item' index='${index}'><Data type='Predeclare' objectId='${500000 + place}'>` +
      `<typeName type='String' value='Timeline::Clip'/><oid type='ObjectRef' value='${id}'/>` +
      "<poid type='ObjectRef' value='0'/><refs type='Array' size='0'/></Data></Item>");
    entries.push(`<Item type='Item' index='${index}'><Key type='ObjectRef' value='${id}'/>` +
      `<Value type='Timeline::ClipTiming' objectId='${id + 1}'>` +
      `<track type='ObjectRef' value='${tracks[clip.track ?? "main"][0]}'/>` +
      `<timestamp type='int64_t' value='${clip.start}'/><duration type='int64_t' value='${clip.duration}'/></Value></Item>`);
    const effects = (clip.effects ?? []).map((effect, number) =>
      `<Item type='Item' index='${number + 1}'><Data type='ObjectRef' value='${effect}'/></Item>`);
    objects.push(`<RootObject type='Timeline::Clip' objectId='${id}'><name type='String' value='${escaped(clip.name)}'/>` +
      `<type type='int32_t' value='${kinds[clip.kind ?? "video"]}'/>` +
      (effects.length > 0 ? `<effects type='Array' size='${effects.length}'>${effects.join("")}</effects>` : "") +
      "</RootObject>");
  });
  const trackObjects = Object.values(tracks).map(([id, type]) =>
    `<RootObject type='Timeline::Track' objectId='${id}'><type type='int32_t' value='${type}'/>` +
    "<used type='bool' value='1'/><timeline type='ObjectRef' value='2'/></RootObject>");
  const trackItems = Object.values(tracks).map(([id], place) =>
    `<Item type='Item' index='${place + 1}'><Data type='ObjectRef' value='${id}'/></Item>`);
  return `<Archive schemaVersion='${version}'><RootRef type='ObjectRef' value='2'/>` +
    `<RootObject type='Predeclarator' objectId='1'><predeclarations type='Array' size='${declared.length}'>` +
    `${declared.join("")}</predeclarations></RootObject>` +
    `<RootObject type='Timeline::Object' objectId='2'><name type='String' value='${escaped(name)}'/>` +
    `<clips type='Array' size='${entries.length}'>${entries.join("")}</clips>` +
    `<tracks type='Array' size='${trackItems.length}'>${trackItems.join("")}</tracks></RootObject>` +
    `${objects.join("")}${trackObjects.join("")}${extra}</Archive>`;
}

/// So many clips, one behind the other, each with a name of its own.
export function largeProject(count) {
  const clips = [];
  const tracks = [["main", "video"], ["main", "image"], ["audio", "audio"], ["titles", "title"]];
  for (let number = 0; number < count; ++number) {
    const [track, kind] = tracks[number % tracks.length];
    clips.push({ name: `Scene ${String(number).padStart(5, "0")}`, track, kind, start: number * 2500, duration: 2000 });
  }
  return archive({ name: "Large", clips });
}

/// Names that would do harm in a page that does not escape them. XML can't have control characters.
export const hostileNames = [
  "<script>window.hacked = 1</script>",
  "\"><img src=x onerror=\"window.hacked = 2\">",
  "' onfocus='window.hacked = 3' autofocus='",
  "]]></title></svg><svg onload=window.hacked=4>",
  "</script><script>window.hacked = 5</script>",
  "<!-- --!> <style>*{display:none}</style>",
  "&lt;b&gt; &#60;script&#62;",
  "left \u202eright\u2066 mark\u200f",
  "\u0645\u0631\u062d\u0628\u0627 \u05e9\u05dc\u05d5\u05dd",
  "line\u2028separator\u2029paragraph",
  "{{constructor.constructor('window.hacked=6')()}} ${window.hacked=7}",
  `long ${"x".repeat(1 << 20)} end`,
];

export function hostileProject() {
  const clips = hostileNames.map((name, place) => ({ name, start: place * 3000, duration: 3000, track: place % 2 ? "main" : "titles" }));
  return archive({ name: "<script>window.hacked = 8</script>\u202e", clips });
}

/// Quizzes are removed by version 69.
export function projectWithQuiz() {
  return archive({
    name: "Trip",
    clips: [
      { name: "Beach", start: 0, duration: 5000 },
      { name: "Question", kind: "quiz", start: 5000, duration: 3000 },
      { name: "Harbour", kind: "image", start: 8000, duration: 4000 },
      { name: "Song", kind: "audio", track: "audio", start: 0, duration: 12000 },
    ],
  });
}

/// A step reports an error about the clip Split, and all clips are lost: projects before version 57 have another root.
export function projectWithLosses() {
  return archive({
    version: 41,
    name: "Old",
    clips: [
      { name: "Split", start: 0, duration: 5000, effects: [8] },
      { name: "Boat", start: 5000, duration: 3000 },
    ],
    extra: "<RootObject type='Effect::SideBySide' objectId='8'><mode type='int32_t' value='9'/></RootObject>",
  });
}

/// A step fails: the file of the clip has no path.
export function failingProject() {
  return archive({ clips: [{ name: "Beach", start: 0, duration: 5000 }], extra: "<RootObject type='File' objectId='4'/>" })
    .replace("<name type='String' value='Beach'/>", "<file type='ObjectRef' value='4'/><name type='String' value='Beach'/>");
}
