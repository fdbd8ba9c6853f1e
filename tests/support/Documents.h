#pragma once

#include <QDomDocument>

#include <nlohmann/json.hpp>

#include <stdexcept>
#include <string>

namespace Tests {

/// A document from its text, with space allowed before it; throws where the text is not well-formed.
inline QDomDocument xml(const std::string& text) {
    QDomDocument document;
    QString error;
    if (!document.setContent(QByteArray::fromStdString(text).trimmed(), &error))
        throw std::runtime_error("bad XML in a test: " + error.toStdString());
    return document;
}

/// The same for what stands inside <Archive>.
inline QDomDocument archive(const std::string& content) {
    return xml("<Archive>" + content + "</Archive>");
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
