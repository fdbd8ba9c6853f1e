#pragma once

#include <QByteArray>
#include <QDomDocument>
#include <QString>

#include <stdexcept>

namespace Tests {

/// The document of a text; throws where the text is none. Space before the document element is allowed.
inline QDomDocument xml(const char* text) {
    QDomDocument document;
    QString error;
    if (!document.setContent(QByteArray(text).trimmed(), &error))
        throw std::runtime_error(error.toStdString());
    return document;
}

} // namespace Tests
