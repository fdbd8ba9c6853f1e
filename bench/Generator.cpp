#include "bench/Generator.h"

#include <QDataStream>
#include <QIODevice>
#include <QString>

#include <utility>
#include <vector>

namespace Bench {
namespace {

using Id = long long;

constexpr Id predeclaratorId = 1;
constexpr Id timelineId = 2;
constexpr Id firstFreeId = 3;

QByteArray quoted(const QByteArray& text) {
    return '"' + QString::fromUtf8(text).toHtmlEscaped().toUtf8() + '"';
}

QByteArray binary(double number) {
    QByteArray bytes;
    QDataStream(&bytes, QIODevice::WriteOnly) << number;
    return bytes.toBase64();
}

/// Writes elements one after the other and counts them.
class Text {
public:
    void open(const char* tag, const QByteArray& attributes) {
        start(tag, attributes);
        m_text += ">\n";
        m_open.push_back(tag);
    }
    void openObject(const char* tag, const QByteArray& type, Id id) {
        open(tag, "type=\"" + type + "\" objectId=\"" + QByteArray::number(id) + '"');
    }
    void openArray(const char* tag, std::size_t size) {
        open(tag, "type=\"Array\" size=\"" + QByteArray::number(static_cast<qulonglong>(size)) + '"');
    }
    void openItem(std::size_t index) {
        open("Item", "type=\"Item\" index=\"" + QByteArray::number(static_cast<qulonglong>(index)) + '"');
    }
    void close(int levels = 1) {
        for (; levels > 0; --levels) {
            const QByteArray tag = m_open.back();
            m_open.pop_back();
            m_text += QByteArray(static_cast<int>(m_open.size()) + m_depth, ' ') + "</" + tag + ">\n";
        }
    }

    void value(const char* tag, const char* type, const QByteArray& attributes) {
        start(tag, QByteArray("type=\"") + type + "\" " + attributes);
        m_text += "/>\n";
    }
    void plain(const char* tag, const char* type, const QByteArray& text) {
        value(tag, type, "value=" + quoted(text));
    }
    void boolean(const char* tag, bool on) { plain(tag, "bool", on ? "1" : "0"); }
    void int32(const char* tag, int number) { plain(tag, "int32_t", QByteArray::number(number)); }
    void uint32(const char* tag, unsigned int number) { plain(tag, "uint32_t", QByteArray::number(number)); }
    void int64(const char* tag, long long number) { plain(tag, "int64_t", QByteArray::number(number)); }
    void string(const char* tag, const QByteArray& text) { plain(tag, "String", text); }
    void reference(const char* tag, Id id) { plain(tag, "ObjectRef", QByteArray::number(id)); }
    void real(const char* tag, double number) {
        value(tag, "double",
              "value=\"" + QByteArray::number(number) + "\" binaryData=\"" + binary(number) + '"');
    }
    void emptyArray(const char* tag) { value(tag, "Array", "size=\"0\""); }
    void references(const char* tag, const std::vector<Id>& ids) {
        if (ids.empty())
            return emptyArray(tag);
        openArray(tag, ids.size());
        std::size_t index = 0;
        for (const Id id : ids) {
            openItem(++index);
            reference("Data", id);
            close();
        }
        close();
    }

    void setDepth(int depth) { m_depth = depth; }
    void append(const Text& other) { m_text += other.m_text; }
    const QByteArray& bytes() const { return m_text; }
    std::size_t elements() const { return m_elements; }

private:
    void start(const char* tag, const QByteArray& attributes) {
        m_text += QByteArray(static_cast<int>(m_open.size()) + m_depth, ' ') + '<' + tag + ' ' + attributes;
        ++m_elements;
    }

    QByteArray m_text;
    std::vector<QByteArray> m_open;
    int m_depth = 0;
    std::size_t m_elements = 0;
};

// What the classes hold of their own. The fields are those of before the first step that changes them, so the
// class stands at `until` the latest; 0 is for ever.

enum class Kind { Bool, Int32, UInt32, Int64, Real, Rect, Matrix, Identifier };

struct Field {
    const char* name;
    Kind kind;
    double number;
};

struct EffectClass {
    const char* className;
    const char* base;
    const char* tag;
    unsigned int id; ///< while identifiers are numbers
    int since;
    int until; ///< first version without the class; 0 for none
    std::vector<Field> fields;
};

constexpr const char* video = "Effect::VideoEffect";
constexpr const char* audio = "Effect::AudioEffect";

// clang-format off
const std::vector<EffectClass>& effectClasses() {
    static const std::vector<EffectClass> classes = {
        {"Effect::Blur", video, "Blur", 1, 3, 0, {{"radius", Kind::UInt32, 20}}},
        {"Effect::AddNoize", video, "AddNoize", 2, 3, 0, {{"type", Kind::UInt32, 1}}},
        {"Effect::Sharpen", video, "Sharpen", 3, 3, 0, {}},
        {"Effect::ChromaKey", video, "ChromaKey", 15, 3, 0, {{"tolerance", Kind::Real, 0.5}}},
        {"Effect::PictureInPicture", video, "effect_pip", 16, 3, 13, {{"offsetX", Kind::Real, 0.1}, {"offsetY", Kind::Real, 0.2}, {"scaleX", Kind::Real, 0.3}, {"scaleY", Kind::Real, 0.4}, {"fadeInTime", Kind::Int64, 0}, {"fadeOutTime", Kind::Int64, 0}}},
        {"Effect::PictureInPicture", video, "effect_pip", 16, 13, 0, {{"transform", Kind::Matrix, 0.3}}},
        {"Effect::Crop", video, "effect_crop", 17, 3, 14, {{"rect", Kind::Rect, 0.2}}},
        {"Effect::Crop", video, "effect_crop", 17, 14, 0, {{"transform", Kind::Matrix, 0.6}}},
        {"Effect::PopArt", video, "PopArt9Tiles", 20, 3, 0, {}},
        {"Effect::Zoom", video, "effect_zoom", 21, 3, 16, {{"partIn", Kind::Real, 0.25}, {"partOut", Kind::Real, 0.25}, {"rect", Kind::Rect, 0.25}}},
        {"Effect::PanAndZoom", video, "effect_panzoom", 22, 3, 16, {{"rectIn", Kind::Rect, 0.0}, {"rectOut", Kind::Rect, 0.25}}},
        {"Effect::Mask", video, "effect_mask", 40, 3, 20, {{"rect", Kind::Rect, 0.25}, {"maskType", Kind::Int32, 2}, {"frameType", Kind::Int32, 1}, {"borderType", Kind::Int32, 1}, {"width", Kind::Real, 0.125}, {"invertType", Kind::Int32, 1}, {"opacity", Kind::Real, 0.75}, {"presetId", Kind::Int32, 7}}},
        {"Effect::AutoEnhance", video, "AutoEnhance", 23, 3, 32, {{"magicEnhance", Kind::Bool, 1}, {"autoContrast", Kind::Bool, 1}, {"autoSaturation", Kind::Bool, 0}, {"autoWhiteBalance", Kind::Bool, 1}}},
        {"Effect::ManualEnhance", video, "ManualEnhance", 24, 3, 0, {{"brightness", Kind::Int32, 40}, {"contrast", Kind::Int32, -20}, {"gamma", Kind::Real, 1.25}, {"highlights", Kind::Int32, 10}, {"hue", Kind::Int32, 90}, {"saturation", Kind::Real, 1.5}, {"shadows", Kind::Int32, 7}, {"temperature", Kind::Int32, -30}, {"tint", Kind::Int32, 15}}},
        {"Effect::Cutaway", video, "effet_cutaway", 14, 8, 41, {}},
        {"Effect::SideBySide", video, "SideBySide", 58, 14, 42, {{"mode", Kind::Int32, 1}, {"blend", Kind::Real, 0.5}}},
        {"Effect::Mirror", video, "Mirror", 4, 3, 0, {{"vertical", Kind::UInt32, 1}, {"horizontal", Kind::UInt32, 0}}},
        {"Effect::Mosaic", video, "Mosaic", 5, 3, 0, {{"type", Kind::UInt32, 1}}},
        {"Effect::Erosion", video, "Erosion", 6, 3, 0, {{"type", Kind::UInt32, 1}}},
        {"Effect::RetroColors", video, "RetroColors", 7, 3, 0, {{"type", Kind::UInt32, 2}}},
        {"Effect::FindEdges", video, "FindEdges", 8, 3, 0, {{"sensibility", Kind::Real, 1.0}}},
        {"Effect::HalfTone", video, "HalfTone", 9, 3, 0, {{"blend", Kind::Real, 0.5}}},
        {"Effect::TiltShift", video, "TiltShift", 10, 3, 0, {{"blend", Kind::Real, 0.5}}},
        {"Effect::Lut", video, "Lut", 64, 40, 0, {{"cubeResourceUuid", Kind::Identifier, 7}}},
        {"Effect::AudioEqualizer", audio, "effect_equalizer", 32769, 3, 0, {{"level", Kind::Int32, 3}}},
        {"Effect::AudioNoiseReduction", audio, "effect_noisereduction", 32770, 3, 18, {{"level", Kind::Int32, 20}}},
        {"Effect::AudioNoiseGate", audio, "effect_noisegate", 32771, 3, 0, {{"range", Kind::Real, 0.5}}},
        {"Effect::AudioPhone", audio, "Phone", 32772, 18, 0, {{"gainUp", Kind::Real, 4.0}, {"gainDown", Kind::Real, 0.25}}},
        {"Effect::AudioPitch", audio, "PitchHigh", 32772, 18, 0, {{"pitch", Kind::Real, 1.5}}},
        {"Effect::AudioEcho", audio, "Echo", 32773, 18, 0, {}},
    };
    return classes;
}

struct TransitionClass {
    const char* name;
    const char* tag;
    unsigned int id;
    std::vector<Field> fields;
};

const std::vector<TransitionClass>& transitionClasses() {
    static const std::vector<TransitionClass> classes = {
        {"Crossfade", "Crossfade", 1, {}},
        {"BarnDoor", "BarnDoorIn", 5, {{"direction", Kind::UInt32, 1}}},
        {"DirectCrossFade", "DirectCrossFadeUp", 9, {{"direction", Kind::UInt32, 2}, {"smoothPart", Kind::Real, 4}}},
        {"Ripple", "Ripple2WavesFromCenter", 12, {{"mode", Kind::Int32, 1}, {"ampMode", Kind::Int32, 1}}},
        {"Blinds", "BlindsHorizontal", 16, {{"mode", Kind::UInt32, 1}}},
        {"Matrix", "MatrixSmallBlocksSmooth", 18, {}},
        {"Shatter", "Shatter", 22, {{"dir", Kind::UInt32, 3}}},
        {"Waterbrush", "Waterbrush - Rough", 33, {}},
        {"Zoom", "ZoomIn", 14, {{"mode", Kind::UInt32, 0}}},
    };
    return classes;
}
// clang-format on

/// The identifiers of later versions, one of the same length for each number.
QByteArray identifier(unsigned int number) {
    return "5f0a3fdc-8b1a-4c0e-9b93-" + QByteArray::number(number).rightJustified(12, '0');
}

constexpr int quizPresetType = 4;

/// What a quiz overlay held as its text: an archive of its own.
QByteArray questionText(const QByteArray& words) {
    return "<Archive><RootObject type=\"Quiz::Question\" objectId=\"1\"><question type=\"String\" value=" +
           quoted(words) + "/></RootObject></Archive>";
}

class Generator {
public:
    explicit Generator(int version) : m_version(version) {
        m_clips.setDepth(3);
        m_links.setDepth(3);
        m_objects.setDepth(1);
        m_records.setDepth(3);
        for (const EffectClass& kind : effectClasses()) {
            if (version >= kind.since && (kind.until == 0 || version < kind.until))
                m_effectClasses.push_back(&kind);
        }
    }

    QByteArray run(const Size& size);

private:
    bool isSince(int version) const { return m_version >= version; }
    bool isEnough(const Size& size) const;
    QByteArray classNameOf(const QByteArray& effectClass) const;

    Id newId() { return m_nextId++; }
    void declare(const QByteArray& className, Id id, Id parent, const std::vector<Id>& refs);
    std::vector<Id> takeParts() { return std::exchange(m_parts, {}); }

    void addScene();
    Id addFile(const QByteArray& path);
    Id addEffect();
    Id addTransition();
    Id addTitle(const QByteArray& words, int type);
    Id addPreview();
    Id addStabilization(const QByteArray& path);

    struct ClipParts {
        int type = 1;
        Id file = 0;
        QByteArray path;
        Id overlay = 0;
        Id transition = 0;
        bool hasEffects = false;
        bool isTurned = false;
        bool isStabilized = false;
        bool isNormalized = false;
    };
    Id addClip(const QByteArray& name, const ClipParts& parts);
    void addTiming(Id clip, int track, long long timestamp, long long duration, long long transition);
    void addLink(Id slave, Id master, long long offset);

    void writeFields(const std::vector<Field>& fields);
    void writeRect(const char* tag, double inset);
    void writeMatrix(const char* tag, double scale);
    void writeString(const char* tag, const QByteArray& text);
    void writeIdentity(Text& out, const char* tag, unsigned int number);
    void writePen();
    void writeItem(const QByteArray& words);
    void writeTracks(Text& timeline);
    Text writeTimeline();

    int m_version;
    std::vector<const EffectClass*> m_effectClasses;
    Id m_nextId = firstFreeId;
    std::size_t m_scene = 0;
    std::size_t m_effect = 0;
    std::size_t m_effectsPerClip = 0;
    std::size_t m_clipCount = 0;
    long long m_time = 0;
    std::vector<Id> m_parts; ///< embedded in the object under way
    std::vector<Id> m_clipIds;
    std::vector<std::pair<Id, Id>> m_transitionsAndClips;
    std::vector<Id> m_trackIds; ///< of the tracks 16, 32, ... 96
    std::size_t m_linkCount = 0;
    std::size_t m_recordCount = 0;
    Text m_clips;   ///< items of the timeline's `clips`
    Text m_links;   ///< items of the timeline's `links`
    Text m_objects; ///< root objects
    Text m_records; ///< items of `predeclarations`
};

bool Generator::isEnough(const Size& size) const {
    const std::size_t elements =
        m_clips.elements() + m_links.elements() + m_objects.elements() + m_records.elements();
    const auto bytes = static_cast<std::size_t>(m_clips.bytes().size() + m_links.bytes().size() +
                                                m_objects.bytes().size() + m_records.bytes().size());
    return elements >= size.elements && bytes >= size.bytes && m_clipCount >= size.clips;
}

/// Two classes stood outside the namespace of effects before version 4.
QByteArray Generator::classNameOf(const QByteArray& effectClass) const {
    const bool isOutside = effectClass == "Effect::VideoEffect" || effectClass == "Effect::AutoEnhance";
    return !isSince(4) && isOutside ? effectClass.mid(8) : effectClass;
}

void Generator::declare(const QByteArray& className, Id id, Id parent, const std::vector<Id>& refs) {
    m_records.openItem(++m_recordCount);
    m_records.openObject("Data", "Predeclare", newId());
    m_records.string("typeName", className);
    m_records.reference("oid", id);
    m_records.reference("poid", parent);
    m_records.references("refs", refs);
    m_records.close(2);
}

void Generator::writeString(const char* tag, const QByteArray& text) {
    if (isSince(44))
        m_objects.string(tag, text);
    else
        m_objects.value(tag, "StringPtr", "value=" + quoted(text) + " isNull=\"0\"");
}

void Generator::writeRect(const char* tag, double inset) {
    m_parts.push_back(newId());
    m_objects.openObject(tag, "Types::RectF", m_parts.back());
    m_objects.real("left", inset);
    m_objects.real("top", inset);
    m_objects.real("right", 1 - inset);
    m_objects.real("bottom", 1 - inset);
    m_objects.close();
}

void Generator::writeMatrix(const char* tag, double scale) {
    m_parts.push_back(newId());
    m_objects.openObject(tag, "Types::Transform", m_parts.back());
    const double numbers[] = {scale, 0, 0, 0, scale, 0, 100 * scale, 50 * scale, 1};
    const char* names[] = {"m11", "m12", "m13", "m21", "m22", "m23", "m31", "m32", "m33"};
    for (int place = 0; place < 9; ++place)
        m_objects.real(names[place], numbers[place]);
    m_objects.close();
}

void Generator::writeFields(const std::vector<Field>& fields) {
    for (const Field& field : fields) {
        switch (field.kind) {
        case Kind::Bool:
            m_objects.boolean(field.name, field.number != 0);
            break;
        case Kind::Int32:
            m_objects.int32(field.name, static_cast<int>(field.number));
            break;
        case Kind::UInt32: // numbers of choices; signed from version 5 on
            if (isSince(5))
                m_objects.int32(field.name, static_cast<int>(field.number));
            else
                m_objects.uint32(field.name, static_cast<unsigned int>(field.number));
            break;
        case Kind::Int64:
            m_objects.int64(field.name, static_cast<long long>(field.number));
            break;
        case Kind::Real:
            m_objects.real(field.name, field.number);
            break;
        case Kind::Rect:
            writeRect(field.name, field.number);
            break;
        case Kind::Matrix:
            writeMatrix(field.name, field.number);
            break;
        case Kind::Identifier:
            m_objects.string(field.name, identifier(static_cast<unsigned int>(field.number)));
            break;
        }
    }
}

void Generator::writeIdentity(Text& out, const char* tag, unsigned int number) {
    if (isSince(23))
        out.string(tag, identifier(number));
    else
        out.uint32(tag, number);
}

Id Generator::addFile(const QByteArray& path) {
    const Id file = newId();
    const Id stream = newId();
    Id composition = 0;
    Id marker = 0;
    if (!isSince(24) && m_scene % 4 == 0) {
        composition = newId();
        marker = newId();
    }
    m_objects.openObject("RootObject", "File", file);
    writeString("path", path);
    m_objects.int64("duration", 12000);
    m_objects.references("streams", {stream});
    if (!isSince(24))
        m_objects.reference("composition", composition);
    m_objects.close();
    m_objects.openObject("RootObject", "Video", stream);
    m_objects.int32("width", 1920);
    m_objects.int32("height", 1080);
    m_objects.real("frameRate", 29.97);
    if (!isSince(26))
        m_objects.int32("resizeMode", 1);
    m_objects.close();
    declare("File", file, 0, composition ? std::vector<Id>{stream, composition} : std::vector<Id>{stream});
    declare("Video", stream, file, {});
    if (composition) {
        m_objects.openObject("RootObject", "Composition", composition);
        m_objects.references("markers", {marker});
        m_objects.emptyArray("ranges");
        m_objects.close();
        m_objects.openObject("RootObject", "Marker", marker);
        m_objects.int64("position", 500);
        m_objects.close();
        declare("Composition", composition, file, {marker});
        declare("Marker", marker, composition, {});
    }
    return file;
}

Id Generator::addEffect() {
    const EffectClass& kind = *m_effectClasses[m_effect++ % m_effectClasses.size()];
    const Id effect = newId();
    const QByteArray className = classNameOf(kind.className);
    m_objects.openObject("RootObject", className, effect);
    m_objects.openObject("BaseOfObject", classNameOf(kind.base), effect);
    m_objects.openObject("BaseOfObject", "Effect::Object", effect);
    writeIdentity(m_objects, "id", kind.id);
    m_objects.string("tag", kind.tag);
    writeIdentity(m_objects, "uniqueId", kind.id);
    m_objects.string("description", isSince(60) ? QByteArray(kind.tag) : QByteArray("Desc ") + kind.tag);
    if (isSince(33))
        m_objects.real("intensity", 0.5);
    if (isSince(55))
        m_objects.boolean("bypass", false);
    if (isSince(58)) {
        m_objects.openArray("auxResource", 2);
        m_objects.openItem(1);
        m_objects.string("Data", {});
        m_objects.close();
        m_objects.openItem(2);
        m_objects.int32("Data", 0);
        m_objects.close(2);
    }
    if (isSince(59)) {
        m_objects.string(isSince(62) ? "resourcePath" : "location", {});
        if (!isSince(62)) {
            m_objects.string("remoteUrl", {});
            m_objects.int64("remoteSize", -1);
        }
    }
    if (isSince(61)) {
        m_parts.push_back(newId());
        m_objects.openObject("processedRange", "Types::Range", m_parts.back());
        m_objects.int64("from", 0);
        m_objects.int64("to", -1);
        m_objects.close();
    }
    m_objects.close(2);
    writeFields(kind.fields);
    m_objects.close();
    declare(className, effect, 0, m_parts);
    for (const Id part : takeParts())
        declare("Types::Part", part, effect, {});
    return effect;
}

Id Generator::addTransition() {
    const TransitionClass& kind = transitionClasses()[m_scene % transitionClasses().size()];
    const QByteArray className = isSince(4) ? QByteArray("Transition::") + kind.name : QByteArray(kind.name);
    const Id transition = newId();
    m_objects.openObject("RootObject", className, transition);
    m_objects.openObject("BaseOfObject", "Transition::Object", transition);
    writeIdentity(m_objects, "id", kind.id);
    m_objects.string("tag", kind.tag);
    writeIdentity(m_objects, "uniqueId", kind.id);
    m_objects.string("description", isSince(60) ? QByteArray(kind.tag) : QByteArray("Desc ") + kind.tag);
    if (isSince(22))
        m_objects.int32("strategy", 0);
    if (isSince(25)) {
        m_objects.int32("type", 0);
        m_objects.emptyArray("resources");
    }
    if (isSince(47))
        m_objects.int64("defaultDuration", 2000);
    if (isSince(54))
        m_objects.int32("volume", 100);
    if (isSince(62))
        m_objects.string("resourcePath", {});
    m_objects.close();
    writeFields(kind.fields);
    m_objects.close();
    declare(className, transition, 0, {});
    return transition;
}

void Generator::writePen() {
    m_parts.push_back(newId());
    m_objects.openObject("outline", "Types::Pen", m_parts.back());
    m_objects.uint32("color", 4278190080U);
    m_objects.int32("width", 2);
    if (isSince(7))
        m_objects.boolean("enabled", true);
    m_objects.close();
}

void Generator::writeItem(const QByteArray& words) {
    m_parts.push_back(newId());
    m_objects.openObject("Data", "Overlay::Item", m_parts.back());
    m_objects.int32("type", 1);
    if (isSince(50))
        m_objects.string("encodedText", words.toBase64());
    else
        writeString("text", words);
    writeMatrix("transform", 0.625);
    if (isSince(25)) {
        m_parts.push_back(newId());
        m_objects.openObject("envelope", "TransformationEnvelope", m_parts.back());
        m_parts.push_back(newId());
        m_objects.openObject("defaultValue", "Transformation::Object", m_parts.back());
        writeMatrix("matrix", 1);
        m_objects.int32("opacity", 100);
        m_objects.close();
        m_objects.emptyArray("keyValues");
        m_objects.close();
    }
    writeString("scriptRole", {});
    m_objects.real("editTime", 1);
    writePen();
    m_objects.boolean("editable", true);
    m_objects.int32("features", 4);
    for (const char* name : {"textWidth", "arcRadius", "from", "to", "intro", "outro"})
        m_objects.real(name, 0);
    if (isSince(38)) {
        m_parts.push_back(newId());
        m_objects.openObject("dropShadow", "Overlay::DropShadow", m_parts.back());
        m_objects.boolean("enabled", false);
        m_objects.uint32("color", 0);
        m_objects.int32("offsetX", 0);
        m_objects.int32("offsetY", 0);
        m_objects.int32("blurRadius", 0);
        m_objects.close();
    }
    m_objects.close();
}

Id Generator::addTitle(const QByteArray& words, int type) {
    const Id preset = newId();
    m_objects.openObject("RootObject", "Overlay::Preset", preset);
    m_objects.int32("type", type);
    writeString("scriptId", "TitleStandard");
    m_objects.real("scriptSpeed", 1);
    m_objects.openArray("items", 2);
    for (std::size_t index = 1; index <= 2; ++index) {
        m_objects.openItem(index);
        const QByteArray numbered = words + ' ' + QByteArray::number(static_cast<qulonglong>(index));
        writeItem(type == quizPresetType ? questionText(numbered) : numbered);
        m_objects.close();
    }
    m_objects.close();
    m_objects.string("tag", m_scene % 10 == 0 ? "SunLabel" : "SimpleText");
    m_objects.string("description", isSince(60) ? "SimpleText" : "Desc SimpleText");
    m_objects.int64("sourceDuration", 0);
    if (!isSince(40))
        m_objects.reference("quiz", 0);
    if (isSince(62))
        m_objects.string("resourcePath", {});
    m_objects.close();
    declare("Overlay::Preset", preset, 0, m_parts);
    for (const Id part : takeParts())
        declare("Overlay::Part", part, preset, {});
    return preset;
}

Id Generator::addPreview() {
    const Id preview = newId();
    m_objects.openObject("RootObject", "StaticPreview::ImageObject", preview);
    m_objects.openObject("BaseOfObject", "StaticPreview::Object", preview);
    m_objects.int32("type", 1);
    m_objects.close();
    m_objects.value("image", "ImageRef", "ref=\"preview_" + QByteArray::number(preview) + '"');
    m_objects.close();
    declare("StaticPreview::ImageObject", preview, 0, {});
    return preview;
}

Id Generator::addStabilization(const QByteArray& path) {
    const Id stabilization = newId();
    m_objects.openObject("RootObject", "Stabilization::Object", stabilization);
    m_objects.int32("shakiness", 5);
    m_objects.int64("sourcePositionOriginal", 0);
    m_objects.int64("sourceDurationOriginal", 12000);
    writeString("pathOriginal", path);
    writeString("pathStabilized", "stabilized/" + path);
    m_objects.close();
    declare("Stabilization::Object", stabilization, 0, {});
    return stabilization;
}

Id Generator::addClip(const QByteArray& name, const ClipParts& parts) {
    const Id clip = newId();
    const std::size_t usualEffects = parts.hasEffects ? 2 : 0;
    std::vector<Id> effects(m_effectsPerClip == 0 ? usualEffects : m_effectsPerClip);
    for (Id& effect : effects)
        effect = addEffect();
    const Id preview = isSince(12) && !isSince(34) ? addPreview() : 0;
    const Id stabilization = isSince(15) && parts.isStabilized ? addStabilization(parts.path) : 0;

    m_objects.openObject("RootObject", "Timeline::Clip", clip);
    m_objects.reference("timeline", timelineId);
    m_objects.int32("type", parts.type);
    writeString("name", name);
    m_objects.boolean("enabled", true);
    if (!isSince(4))
        m_objects.int32("angle", parts.isTurned ? 90 : 0);
    if (!isSince(12))
        m_objects.value("preview", "ImageRef", "ref=\"preview_" + QByteArray::number(clip) + '"');
    else if (!isSince(34))
        m_objects.reference("preview", preview);
    if (!isSince(46))
        m_objects.reference("transition", parts.transition);
    m_objects.reference("overlay", parts.overlay);
    m_objects.reference("quiz", 0);
    m_objects.reference("file", parts.file);
    m_objects.reference("nestedTimeline", 0);
    m_objects.int32("volume", 100);
    m_objects.reference("volumeEnvelope", 0);
    m_objects.boolean("volumeNormalize", parts.isNormalized);
    if (isSince(16))
        m_objects.reference("cropEnvelope", 0);
    m_objects.reference("moveEnvelope", 0);
    m_objects.boolean("broken", false);
    m_objects.int64("sourceDuration", 12000);
    m_objects.references("effects", effects);
    m_objects.reference("rhythm", 0);
    if (isSince(15))
        m_objects.reference("stabilization", stabilization);
    else if (parts.isStabilized)
        writeString("pathStabilized", "stabilized/" + parts.path);
    m_objects.int32("mediaTrack", 0);
    if (isSince(28))
        m_objects.emptyArray("labels");
    m_objects.boolean("unlimitedDuration", parts.type == 4);
    if (isSince(51))
        m_objects.emptyArray("motionTrackings");
    m_objects.close();

    std::vector<Id> refs = effects;
    for (const Id id : {preview, stabilization, parts.overlay, parts.file, parts.transition}) {
        if (id != 0)
            refs.push_back(id);
    }
    declare("Timeline::Clip", clip, timelineId, refs);
    m_clipIds.push_back(clip);
    return clip;
}

/// The tracks are numbered 16, 32, ... 96, and had other numbers before version 4.
void Generator::addTiming(Id clip, int track, long long timestamp, long long duration, long long transition) {
    m_clips.openItem(++m_clipCount);
    m_clips.reference("Key", clip);
    m_clips.openObject("Value", "Timeline::ClipTiming", newId());
    if (isSince(27))
        m_clips.reference("track", m_trackIds[static_cast<std::size_t>(track / 16 - 1)]);
    else if (isSince(4))
        m_clips.int32("track", track);
    else
        m_clips.int32("track", track == 16 ? 1 : track / 16 - 1);
    m_clips.int32("trackLevel", 0);
    m_clips.int64("timestamp", timestamp);
    m_clips.int64("sourceDuration", duration);
    m_clips.int64("sourcePosition", 0);
    m_clips.int64("duration", duration);
    if (!isSince(22)) {
        m_clips.int64("transitionDuration", transition);
    } else if (!isSince(46)) {
        m_clips.int64("transitionHalf", transition / 2);
    } else {
        m_clips.int64("transitionIn", transition / 2);
        m_clips.int64("transitionOut", transition / 2);
    }
    m_clips.int64("fadeInDuraion", 0);
    m_clips.int64("fadeOutDuraion", 0);
    m_clips.boolean("reversed", false);
    if (isSince(29))
        m_clips.int32("timingMode", 0);
    if (isSince(52))
        m_clips.boolean("speedCompensated", false);
    m_clips.close(2);
}

void Generator::addLink(Id slave, Id master, long long offset) {
    m_links.openItem(++m_linkCount);
    m_links.reference("Key", slave);
    m_links.openObject("Value", "Timeline::Link", newId());
    m_links.reference("master", master);
    m_links.int64("offset", offset);
    m_links.close(2);
}

void Generator::addScene() {
    const QByteArray number = QByteArray::number(static_cast<qulonglong>(m_scene));
    const QByteArray path = "/home/user/Videos/holiday/clip " + number + ".mp4";
    const Id file = addFile(path);
    const Id transition = addTransition();

    ClipParts shot;
    shot.file = file;
    shot.path = path;
    shot.transition = transition;
    shot.hasEffects = true;
    shot.isTurned = m_scene % 5 == 0;
    shot.isStabilized = m_scene % 3 == 0;
    const Id shotClip = addClip("Shot " + number, shot);
    addTiming(shotClip, 16, m_time, 8000, 1000);
    m_transitionsAndClips.emplace_back(transition, shotClip);

    ClipParts picture;
    picture.type = 2;
    picture.file = file;
    picture.hasEffects = m_scene % 2 == 0;
    addTiming(addClip("Picture " + number, picture), 16, m_time + 8000, 5000, 0);

    ClipParts title;
    title.type = 4;
    title.overlay = addTitle("Day " + number + " & night <by the \"sea\">", 1);
    const Id titleClip = addClip("Title " + number, title);
    addTiming(titleClip, 80, m_time + 500, 3000, 0);
    addLink(titleClip, shotClip, 500);

    ClipParts music;
    music.type = 3;
    music.file = file;
    music.hasEffects = true;
    music.isNormalized = m_scene % 2 == 0;
    addTiming(addClip("Music " + number, music), 48, m_time, 13000, 0);

    if (m_scene % 20 == 0 && !isSince(40)) {
        ClipParts quiz;
        quiz.type = 32;
        quiz.overlay = addTitle("Question " + number, quizPresetType);
        addTiming(addClip("Quiz " + number, quiz), 16, m_time + 13000, 2000, 0);
    }
    m_time += 15000;
    ++m_scene;
}

void Generator::writeTracks(Text& timeline) {
    std::vector<Id> inOrder(m_trackIds.rbegin(), m_trackIds.rend());
    timeline.references("tracks", inOrder);
    for (int number = 96; number >= 16; number -= 16) {
        const Id track = m_trackIds[static_cast<std::size_t>(number / 16 - 1)];
        m_objects.openObject("RootObject", "Timeline::Track", track);
        m_objects.int32("type", number == 96 ? 64 : number);
        m_objects.boolean("used", true);
        m_objects.boolean("muted", false);
        m_objects.boolean("hidden", false);
        m_objects.boolean("linked", number != 96 && number != 16);
        m_objects.reference("timeline", timelineId);
        if (isSince(46))
            m_objects.boolean("gapless", number == 16);
        m_objects.close();
        declare("Timeline::Track", track, 0, {});
    }
}

Text Generator::writeTimeline() {
    Text timeline;
    timeline.setDepth(1);
    timeline.openObject("RootObject", "Timeline::Object", timelineId);
    timeline.string("name", "Holiday");
    timeline.real("frameRate", 25);
    timeline.int32("width", 1920);
    timeline.int32("height", 1080);
    timeline.openArray("clips", m_clipCount);
    timeline.append(m_clips);
    timeline.close();
    timeline.openArray("links", m_linkCount);
    timeline.append(m_links);
    timeline.close();
    if (isSince(27))
        writeTracks(timeline);
    if (isSince(46)) {
        timeline.openArray("transitions", m_transitionsAndClips.size());
        std::size_t index = 0;
        for (const auto& [transition, clip] : m_transitionsAndClips) {
            timeline.openItem(++index);
            timeline.reference("Key", transition);
            timeline.openArray("Value", 1);
            timeline.openItem(1);
            timeline.reference("First", clip);
            timeline.reference("Second", 0);
            timeline.close(3);
        }
        timeline.close();
    }
    if (isSince(53))
        timeline.emptyArray("trackingLinks");
    timeline.close();
    declare("Timeline::Object", timelineId, 0, m_clipIds);
    return timeline;
}

QByteArray Generator::run(const Size& size) {
    m_effectsPerClip = size.effectsPerClip;
    if (isSince(27)) {
        for (int number = 16; number <= 96; number += 16)
            m_trackIds.push_back(newId());
    }
    while (!isEnough(size))
        addScene();
    const Text timeline = writeTimeline();

    Id root = timelineId;
    if (isSince(35)) {
        const Id users = newId();
        const Id content = newId();
        m_objects.openObject("RootObject", "EditorCollection::UserObject", users);
        m_objects.emptyArray("items");
        m_objects.close();
        declare("EditorCollection::UserObject", users, content, {});
        if (isSince(57)) {
            root = newId();
            const Id table = newId();
            m_objects.openObject("RootObject", "Project::PersistentObject", root);
            m_objects.openObject("content", "Project::Content", content);
            m_objects.reference("timeline", timelineId);
            m_objects.reference("userCollection", users);
            m_objects.close();
            m_objects.openObject("resourceTable", "ResourceTable::Object", table);
            m_objects.emptyArray("resource2fileInfo");
            m_objects.close(2);
            declare("Project::PersistentObject", root, 0, {content, table});
            declare("ResourceTable::Object", table, root, {});
        } else {
            root = content;
            m_objects.openObject("RootObject", "Project::Content", content);
            m_objects.reference("timeline", timelineId);
            m_objects.reference("userCollection", users);
            m_objects.close();
        }
        declare("Project::Content", content, root == content ? 0 : root, {timelineId, users});
    }

    Text archive;
    archive.open("Archive", "schemaVersion=\"" + QByteArray::number(m_version) + '"');
    archive.reference("RootRef", root);
    archive.openObject("RootObject", "Predeclarator", predeclaratorId);
    archive.openArray("predeclarations", m_recordCount);
    archive.append(m_records);
    archive.close(2);
    archive.append(timeline);
    archive.append(m_objects);
    archive.close();
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + archive.bytes();
}

} // namespace

QByteArray generateProject(int version, const Size& size) {
    return Generator(version).run(size);
}

} // namespace Bench
