#pragma once

#include "Serialize/Json/FlatObject.h"

#include <QDomDocument>

#include <nlohmann/json.hpp>

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace Tests {

/// A document from its text, with space allowed before it; throws where the text is not well-formed.
inline QDomDocument xml(const std::string& text, bool processNamespaces = false) {
    QDomDocument document;
    QString error;
    if (!document.setContent(QByteArray::fromStdString(text).trimmed(), processNamespaces, &error))
        throw std::runtime_error("bad XML in a test: " + error.toStdString());
    return document;
}

/// The same for the content of <Archive>.
inline QDomDocument archive(const std::string& content) {
    return xml("<Archive>" + content + "</Archive>");
}

/// A flat document from a text such as {"1": {...}, "2": {...}}.
inline Serialize::Json::FlatObject flatDocument(const std::string& text) {
    Serialize::Json::FlatObject document;
    const nlohmann::json objects =
        nlohmann::json::parse(text); // items() keeps a reference: a temporary would be destroyed
    for (const auto& [id, object] : objects.items())
        document.objects.emplace(std::stoull(id), object);
    return document;
}

/// A Predeclarator with one record for each pair of class name and id.
inline std::string predeclarator(const std::vector<std::pair<std::string, long long>>& records) {
    std::string text = "<RootObject type='Predeclarator' objectId='1'><predeclarations type='Array' size='" +
                       std::to_string(records.size()) + "'>";
    long long index = 1;
    for (const auto& [typeName, id] : records) {
        text += "<Item type='Item' index='" + std::to_string(index) + "'><Data type='Predeclare' objectId='" +
                std::to_string(900 + index) + "'><typeName type='String' value='" + typeName +
                "'/><oid type='ObjectRef' value='" + std::to_string(id) + "'/></Data></Item>";
        ++index;
    }
    return text + "</predeclarations></RootObject>";
}

} // namespace Tests
