#include "Archive/Internal/PlainText.h"

#include <QDomProcessingInstruction>
#include <QRegularExpression>

#include <algorithm>

namespace Archive::Internal {
namespace {

constexpr int longestPlainName = 1000; // readers refuse names of several thousand characters

bool isLetter(ushort c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

} // namespace

bool isPlainName(const QString& name) {
    const ushort* const begin = name.utf16();
    const ushort* const end = begin + name.size();
    if (begin == end || !isLetter(*begin) || name.size() > longestPlainName)
        return false;
    if ((*begin == 'x' || *begin == 'X') && name.startsWith(QLatin1String("xml"), Qt::CaseInsensitive))
        return false;
    return std::all_of(begin + 1, end, [](ushort c) {
        return isLetter(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
    });
}

bool isPlainText(const QString& text) {
    for (int i = 0; i < text.size(); ++i) {
        const ushort c = text.at(i).unicode();
        if (c >= 0x20 && c < 0xD800)
            continue;
        if (c == '\t' || c == '\n' || c == '\r' || (c >= 0xE000 && c < 0xFFFE))
            continue;
        const bool isPair =
            QChar::isHighSurrogate(c) && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
        if (!isPair)
            return false;
        ++i;
    }
    return true;
}

bool survivesRewriting(const QString& value) {
    return std::all_of(value.begin(), value.end(), [](QChar ch) {
        const ushort c = ch.unicode();
        return (c >= 0x20 && c < 0x7F) || (c >= 0xA0 && c < 0xD800) || c == '\t' || c == '\n' || c == '\r';
    });
}

// The DOM accepts any declaration, the stream reader does not: it stops at version 1.1.
bool isPlainDeclaration(const QDomNode& node) {
    static const QRegularExpression plain(
        QStringLiteral(R"re(\Aversion=("1\.0"|'1\.0')( encoding=("(?i:UTF-8)"|'(?i:UTF-8)'))?\z)re"));
    const QDomProcessingInstruction declaration = node.toProcessingInstruction();
    return declaration.target() == QLatin1String("xml") && plain.match(declaration.data()).hasMatch() &&
           node.parentNode().isDocument() && node.previousSibling().isNull();
}

} // namespace Archive::Internal
