#pragma once

// For the model's own use: reading and writing SVG text, which may come from strangers.

#include <QByteArray>
#include <QDomDocument>
#include <QHash>
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

/// Keeps an eye on how far the entities of a text expand, so that a few short references don't grow into gigabytes.
class EntityBudget {
public:
    explicit EntityBudget(const QString& text) : m_text(text) {}

    /// Counts in what all references to a declared entity expand to; false once it is too much.
    bool admit(const QString& name, const QString& value);

private:
    void countReferences();

    QString m_text;
    QHash<QString, int> m_references; ///< how often the text refers to each name; filled at the first entity
    int m_admitted = 0;
    double m_expanded = 0;
};

} // namespace Stored::V21::Internal
