#pragma once

#include "Reader/Contents.h"
#include "Reader/Document.h"
#include "Report/FileNames.h"
#include "Report/ReportJson.h"

#include <optional>
#include <string>

// Parts of reports in JSON.

namespace Reader::Report {

inline Json orNull(const QString& text) {
    return text.isEmpty() ? Json() : Json(FileNames::bytesOf(text));
}

inline Json orNull(const std::string& text) {
    return text.empty() ? Json() : Json(text);
}

template <class Value>
Json orNull(const std::optional<Value>& value) {
    return value ? Json(*value) : Json();
}

inline Json idOrNull(unsigned long long id) {
    return id == 0 ? Json() : Json(id);
}

/// A list of what `asJson` makes of each item.
template <class Items, class AsJson>
Json listOf(const Items& items, AsJson asJson) {
    Json list = Json::array();
    for (const auto& item : items)
        list.push_back(asJson(item));
    return list;
}

/// Counts by class as a JSON object whose order is that of the map.
inline Json countsAsJson(const ObjectCounts& counts) {
    Json result = Json::object();
    for (const auto& [className, count] : counts)
        result[className] = count;
    return result;
}

/// A clip as lists of clips have it.
inline Json listedClipAsJson(const Clip& clip) {
    return {{"id", clip.id}, {"name", clip.name}};
}

inline Json formAsJson(Bundle::Backend form) {
    return form == Bundle::Backend::Xml ? "xml" : "json";
}

} // namespace Reader::Report
