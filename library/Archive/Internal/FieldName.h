#pragma once

#include <QDomElement>
#include <QString>

#include <unordered_map>

namespace Archive::Internal {

/// The name of a field: a string literal, or any text. No text is allocated for a literal.
class FieldName {
public:
    FieldName(const char* literal) : m_literal(literal) {} // implicit: steps name fields by literals
    FieldName(const QString& text) : m_text(text) {}

    /// The first child element of that name; null if there is none.
    QDomElement childOf(const QDomElement& parent) const;

private:
    friend class FieldNames;

    const char* m_literal = nullptr;
    QString m_text;
};

/// The texts of all literals that name fields. Fields that are named by the same literal share its text.
class FieldNames {
public:
    const QString& textOf(const FieldName& name);

private:
    std::unordered_map<const char*, QString> m_texts; ///< by the address of the literal
};

/// The first child element of that name; null if there is none.
inline QDomElement childOf(const QDomElement& parent, const FieldName& name) {
    return name.childOf(parent);
}

} // namespace Archive::Internal
