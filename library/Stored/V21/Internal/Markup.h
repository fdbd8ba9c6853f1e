#pragma once

// Reading and writing SVG text, which may be hostile.

#include <QByteArray>
#include <QDomDocument>
#include <QString>

namespace Stored::V21::Internal {

/// The log line for a text that parse() refuses.
inline constexpr char refusal[] = "SVG text nests too deeply or expands too far";

/// Parses a text without namespace processing. A text that is not well-formed gives what Qt's parser read
/// before the error. A text that would need unbounded stack, time or memory is refused: the result is false
/// and an empty document.
bool parse(QDomDocument& dom, const QString& text);

/// The text that Qt's DOM parser reads from these bytes. It uses the encoding that they declare.
QString decoded(const QByteArray& bytes);

/// The same as QDomDocument::toString(1), except that attributes are sorted by name, and so are the entities
/// and notations of a document type. Qt writes them in the order of a hash, which differs on each run.
QString toText(const QDomDocument& dom);

/// The same as written to a UTF-8 stream.
QByteArray toUtf8(const QDomDocument& dom);

/// The most characters that entities may expand to in a text of that size, including entities in entities.
/// Without this limit a few short references could expand to gigabytes.
constexpr double maxExpansion(int size) {
    return 256 * 1024 + 4.0 * size;
}

} // namespace Stored::V21::Internal
