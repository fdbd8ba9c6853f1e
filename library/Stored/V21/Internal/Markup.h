#pragma once

// For the model's own use: reading and writing SVG text, which may come from strangers.

#include <QByteArray>
#include <QDomDocument>
#include <QString>

namespace Stored::V21::Internal {

/// What the log says of a text that parse() refuses.
inline constexpr char refusal[] = "SVG text nests too deeply or expands too far";

/// Parses without namespace processing. As with Qt's parser alone, what it kept of a broken text stays. A text that
/// would take it stack, time or memory without bound leaves nothing, and gives false.
bool parse(QDomDocument& dom, const QString& text);

/// The text that Qt's DOM parser sees in these bytes: an encoding that is declared in them counts.
QString decoded(const QByteArray& bytes);

/// QDomDocument::toString(1), with attributes in order of their names, and entities and notations of a document
/// type likewise: Qt writes them in the order of its hash, which is another on each run.
QString toText(const QDomDocument& dom);

/// The same as a UTF-8 stream gets it.
QByteArray toUtf8(const QDomDocument& dom);

/// How many characters may stand in the place of entities in a text of that size, those in entities counted as well:
/// so that a few short references don't grow into gigabytes.
constexpr double maxExpansion(int size) {
    return 256 * 1024 + 4.0 * size;
}

} // namespace Stored::V21::Internal
