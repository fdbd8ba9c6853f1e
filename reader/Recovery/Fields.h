#pragma once

#include <limits>
#include <span>
#include <string_view>

// The fields of the objects that lead to clips, for objects that are made or completed.

namespace Reader {

enum class FieldKind { Bool, Int32, Int64, Double, Text, Reference, List };

/// A field and the value that it has in a made object. Lists are empty, and references refer to nothing.
struct FieldRow {
    std::string_view name;
    FieldKind kind;
    int value = 0;                               ///< of a number or a boolean
    int since = 0;                               ///< the first schema version with the field
    int until = std::numeric_limits<int>::max(); ///< the first schema version without it

    bool isAt(int version) const { return version >= since && version < until; }
};

inline constexpr int objectTracksVersion = 27; ///< from here on tracks are objects

inline constexpr FieldRow timelineFields[] = {
    {"name", FieldKind::Text},
    {"frameRate", FieldKind::Double, 25},
    {"width", FieldKind::Int32, 1920},
    {"height", FieldKind::Int32, 1080},
    {"clips", FieldKind::List},
    {"links", FieldKind::List},
    {"tracks", FieldKind::List, 0, objectTracksVersion},
    {"transitions", FieldKind::List, 0, 46},
    {"trackingLinks", FieldKind::List, 0, 53},
};

inline constexpr FieldRow timingFields[] = {
    {"track", FieldKind::Int32, 0, 0, objectTracksVersion},
    {"track", FieldKind::Reference, 0, objectTracksVersion},
    {"trackLevel", FieldKind::Int32, 0, 0, 77},
    {"timestamp", FieldKind::Int64},
    {"sourceDuration", FieldKind::Int64},
    {"sourcePosition", FieldKind::Int64},
    {"duration", FieldKind::Int64},
    {"transitionHalf", FieldKind::Int64, 0, 22, 46},
    {"transitionIn", FieldKind::Int64, 0, 46},
    {"transitionOut", FieldKind::Int64, 0, 46},
    {"fadeInDuraion", FieldKind::Int64, 0, 0, 77},
    {"fadeOutDuraion", FieldKind::Int64, 0, 0, 77},
    {"fadeInDuration", FieldKind::Int64, 0, 77},
    {"fadeOutDuration", FieldKind::Int64, 0, 77},
    {"reversed", FieldKind::Bool},
    {"timingMode", FieldKind::Int32, 0, 29},
    {"speedCompensated", FieldKind::Bool, 0, 52},
};

/// What a timing needs to say where a clip is.
inline constexpr FieldRow placeFields[] = {
    {"timestamp", FieldKind::Int64},
    {"duration", FieldKind::Int64},
};

/// What a clip needs to be one.
inline constexpr FieldRow clipFields[] = {
    {"type", FieldKind::Int32},
    {"timeline", FieldKind::Reference},
    {"sourceDuration", FieldKind::Int64},
};

inline constexpr FieldRow
    trackFields[] =
        {
            {"type", FieldKind::Int32},
            {"used", FieldKind::Bool, 1, 0, 77}, // tracks that the last step makes have none
            {"muted", FieldKind::Bool},
            {"hidden", FieldKind::Bool},
            {"linked", FieldKind::Bool},
            {"timeline", FieldKind::Reference},
            {"gapless", FieldKind::Bool, 0, 46},
};

inline constexpr FieldRow contentFields[] = {
    {"timeline", FieldKind::Reference},
    {"userCollection", FieldKind::Reference},
    {"portable", FieldKind::Bool, 0, 48},
};

inline constexpr FieldRow tableFields[] = {{"resource2fileInfo", FieldKind::List}};

inline constexpr FieldRow collectionFields[] = {{"items", FieldKind::List}};

inline constexpr int contentVersion = 35;    ///< from here on the root object is a Project::Content
inline constexpr int persistentVersion = 57; ///< from here on it is a Project::PersistentObject

/// The class names of objects that lead to clips.
inline constexpr std::string_view timelineClassName = "Timeline::Object";
inline constexpr std::string_view timingClassName = "Timeline::ClipTiming";
inline constexpr std::string_view clipClassName = "Timeline::Clip";
inline constexpr std::string_view trackClassName = "Timeline::Track";
inline constexpr std::string_view contentClassName = "Project::Content";
inline constexpr std::string_view persistentClassName = "Project::PersistentObject";
inline constexpr std::string_view tableClassName = "ResourceTable::Object";
inline constexpr std::string_view itemInfoClassName = "Timeline::CollectionItemInfo";
inline constexpr std::string_view collectionClassName = "EditorCollection::UserObject";

/// The fields of a class that is closed where it is damaged; empty for all others.
constexpr std::span<const FieldRow> fieldsOf(std::string_view className) {
    if (className == timelineClassName)
        return timelineFields;
    if (className == contentClassName)
        return contentFields;
    if (className == tableClassName)
        return tableFields;
    if (className == collectionClassName)
        return collectionFields;
    return {};
}

/// What clips and tracks of the film are, by the numbers that the format has for them.
inline constexpr long long soundClip = 3;
inline constexpr long long titleClip = 4;
inline constexpr long long sceneClip = 64;

/// The track of clips at a version: the type of a track object, or the number of a track up to version 26.
constexpr long long usualTrack(long long clipType, int version) {
    const int row = clipType == soundClip ? 1 : clipType == titleClip ? 2 : 0;
    constexpr long long first[] = {1, 2, 4};
    constexpr long long middle[] = {16, 48, 80};
    constexpr long long last[] = {1, 4, 16};
    return version < 4 ? first[row] : version < 72 ? middle[row] : last[row];
}

/// The type of the track above the primary one.
constexpr long long overlayTrack(int version) {
    return version < 72 ? 64 : 8;
}

} // namespace Reader
