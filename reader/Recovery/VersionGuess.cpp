#include "Recovery/VersionGuess.h"

#include "Reader/AdaptorTable.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace Reader {
namespace {

/// How a field shows a version.
enum class Shows {
    Both,     ///< all objects of the class have the field at those versions, and none at others
    Presence, ///< some objects have it at those versions, and none at others
};

constexpr int always = std::numeric_limits<int>::max();

/// A field that a class has from one version on, and up to the version before another.
struct FieldHistory {
    std::string_view className;
    std::string_view field; ///< or with the type that it has in archives; empty for the class itself
    int since;
    int until = always;
    Shows shows = Shows::Both;
};

// clang-format off
constexpr FieldHistory histories[] = {
    {"AutoEnhance", "", 0, 4, Shows::Presence},
    {"Blinds", "", 0, 4, Shows::Presence},
    {"Crossfade", "", 0, 4, Shows::Presence},
    {"DirectCrossFade", "", 0, 4, Shows::Presence},
    {"Ripple", "", 0, 4, Shows::Presence},
    {"Effect::VideoEffect", "", 4, always, Shows::Presence},
    {"Timeline::Clip", "angle", 0, 4},
    {"Effect::FindEdges", "type", 5},
    {"Types::Pen", "enabled", 7},
    {"Effect::Cutaway", "", 8, 41, Shows::Presence},
    {"Timeline::Clip", "pathOriginal", 9, 15, Shows::Presence},
    {"Effect::PopArt", "preset", 11},
    {"Timeline::Clip", "preview:ImageRef", 0, 12},
    {"Timeline::Clip", "preview:ObjectRef", 12, 34},
    {"Effect::PictureInPicture", "offsetX", 0, 13},
    {"Effect::PictureInPicture", "transform", 13},
    {"Effect::Crop", "rect", 0, 14},
    {"Effect::Crop", "transform", 14},
    {"Stabilization::Object", "", 15, always, Shows::Presence},
    {"Effect::PanAndZoom", "", 0, 16, Shows::Presence},
    {"Effect::Zoom", "", 0, 16, Shows::Presence},
    {"Timeline::Clip", "cropEnvelope", 16, always, Shows::Presence},
    {"Effect::AudioEffect", "", 0, 18, Shows::Presence},
    {"Effect::AudioFilter", "", 18, always, Shows::Presence},
    {"Effect::MaskConceal", "", 20, 63, Shows::Presence},
    {"Effect::MaskHighlight", "", 20, 63, Shows::Presence},
    {"Effect::Crop", "keepAspect", 0, 21},
    {"Effect::PictureInPicture", "keepAspect", 0, 21},
    {"Overlay::Preset", "type", 21},
    {"Timeline::ClipTiming", "transitionDuration", 0, 22, Shows::Presence},
    {"Timeline::ClipTiming", "transitionHalf", 22, 46, Shows::Presence},
    {"Effect::Object", "id:uint32_t", 0, 23},
    {"Effect::Object", "id:String", 23, 63},
    {"File", "composition", 0, 24},
    {"Transition::Object", "resources", 25},
    {"Video", "resizeMode", 0, 26},
    {"Timeline::ClipTiming", "track:int32_t", 0, 27},
    {"Timeline::ClipTiming", "track:ObjectRef", 27, 63},
    {"Timeline::Track", "", 27, always, Shows::Presence},
    {"Timeline::Clip", "labels", 28},
    {"Timeline::ClipTiming", "timingMode", 29},
    {"Effect::MagicEnhance", "", 32, always, Shows::Presence},
    {"Effect::WhiteBalance", "", 32, always, Shows::Presence},
    {"Effect::Object", "intensity", 33},
    {"Project::Content", "", 35, always, Shows::Presence},
    {"Overlay::DropShadow", "", 38, always, Shows::Presence},
    {"Timeline::Clip", "quiz", 40},
    {"Effect::SideBySide", "transformSrc", 42},
    // A text is not always of type StringPtr before.
    {"Timeline::Clip", "name:StringPtr", 0, 44, Shows::Presence},
    {"Overlay::Preset", "description:StringPtr", 0, 44, Shows::Presence},
    {"Timeline::Clip", "transition", 0, 46},
    {"Timeline::Track", "gapless", 46},
    {"Timeline::Object", "transitions", 46},
    {"Timeline::ClipTiming", "transitionIn", 46},
    {"Transition::Object", "defaultDuration", 47},
    {"Import::Object", "remoteSize", 49, 62},
    {"Overlay::Item", "encodedText", 50},
    {"Timeline::Clip", "motionTrackings", 51},
    {"Effect::Frame", "", 51, always, Shows::Presence},
    {"Timeline::ClipTiming", "speedCompensated", 52},
    {"Timeline::Object", "trackingLinks", 53},
    {"Transition::Object", "volume", 54},
    {"Effect::Object", "bypass", 55},
    {"ResourceTable::Object", "", 56, always, Shows::Presence},
    {"Project::PersistentObject", "", 57, always, Shows::Presence},
    {"Effect::Object", "auxResource", 58},
    {"Effect::Object", "location", 59, 62},
    {"Effect::Object", "processedRange", 61},
    {"Effect::Object", "resourcePath", 62},
    {"Import::Object", "resourcePath", 62},
    {"Transition::Object", "resourcePath", 62},
    {"Overlay::Preset", "resourcePath", 62},
    {"Effect::Lut", "cubeResourceUuid", 0, 63},
    {"Overlay::Preset", "fontsDir", 64},
    {"Overlay::Item", "resourcesInfo", 64},
    {"Timeline::Clip", "collectionItemInfo", 67},
    {"Import::Object", "blendingMode", 71},
    {"Timeline::ClipTiming", "trackLevel", 0, 77},
    {"Timeline::ClipTiming", "fadeInDuraion", 0, 77},
    {"Timeline::ClipTiming", "fadeInDuration", 77},
};
// clang-format on

constexpr int newTrackTypes = 72;

/// The versions that are possible, and why.
class Range {
public:
    Range(int lowest, int highest) : m_lowest(lowest), m_highest(highest) {}

    void since(int version, const std::string& reason) {
        if (version > m_lowest) {
            m_lowest = version;
            m_lowReason = reason + ": version " + std::to_string(version) + " or later";
        }
    }
    void until(int version, const std::string& reason) {
        if (version - 1 < m_highest) {
            m_highest = version - 1;
            m_highReason = reason + ": before version " + std::to_string(version);
        }
    }
    VersionGuess guess() const {
        VersionGuess guess{m_lowest, std::max(m_lowest, m_highest), {}};
        for (const std::string* reason : {&m_lowReason, &m_highReason}) {
            if (!reason->empty())
                guess.reasons.push_back(*reason);
        }
        return guess;
    }

private:
    int m_lowest;
    int m_highest;
    std::string m_lowReason;
    std::string m_highReason;
};

} // namespace

bool VersionFacts::knows(std::string_view className) {
    return std::any_of(std::begin(histories), std::end(histories),
                       [&](const FieldHistory& history) { return history.className == className; });
}

void VersionFacts::addObject(const std::string& className, bool isWhole) {
    Class& facts = m_classes[className];
    ++facts.objects;
    facts.whole += isWhole ? 1 : 0;
}

void VersionFacts::addField(const std::string& className, std::string_view field, std::string_view type) {
    const auto isOfInterest = [&](std::string_view name) {
        return std::any_of(std::begin(histories), std::end(histories), [&](const FieldHistory& history) {
            return history.className == className && history.field == name;
        });
    };
    Class& facts = m_classes[className];
    std::string name(field);
    if (facts.fields.count(name) == 0 && isOfInterest(name))
        facts.fields.insert(name);
    name += ':';
    name += type;
    if (!type.empty() && facts.fields.count(name) == 0 && isOfInterest(name))
        facts.fields.insert(name);
}

void VersionFacts::addTrackType(long long type) {
    m_hasOldTrackTypes = m_hasOldTrackTypes || type >= 32;
    m_hasNewTrackTypes = m_hasNewTrackTypes || (type > 0 && type <= 8);
}

VersionGuess VersionFacts::guess(Bundle::Backend form) const {
    const bool isXml = form == Bundle::Backend::Xml;
    // JSON was the exception before version 63.
    const auto location = m_classes.find("Effect::Object");
    const bool isEarlyJson =
        !isXml && location != m_classes.end() && location->second.fields.count("location") > 0;
    Range range(isXml         ? stepsFor(form, 0, currentVersion).front()->number - 1
                : isEarlyJson ? firstJsonVersion
                              : lastXmlVersion + 1,
                isXml ? lastXmlVersion : currentVersion);
    for (const FieldHistory& history : histories) {
        const bool isTyped = history.field.find(':') != std::string_view::npos;
        const auto facts = m_classes.find(std::string(history.className));
        if (facts == m_classes.end() || (isTyped && !isXml))
            continue;
        const std::string name(history.className);
        if (history.field.empty() || facts->second.fields.count(std::string(history.field))) {
            const std::string reason = history.field.empty()
                                           ? "there is a " + name
                                           : "a " + name + " has \"" + std::string(history.field) + '"';
            range.since(history.since, reason);
            if (history.until != always)
                range.until(history.until, reason);
        } else if (history.shows == Shows::Both && facts->second.whole > 0) {
            const std::string reason = "no " + name + " has \"" + std::string(history.field) + '"';
            if (history.until == always)
                range.until(history.since, reason);
            else if (history.since == 0)
                range.since(history.until, reason);
        }
    }
    if (m_hasNewTrackTypes)
        range.since(newTrackTypes, "a Timeline::Track has one of the types 1 to 8");
    else if (m_hasOldTrackTypes)
        range.until(newTrackTypes, "a Timeline::Track has one of the types 32 to 80");
    return range.guess();
}

} // namespace Reader
