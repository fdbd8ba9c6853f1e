#include "Archive/Internal/ObjectIds.h"

#include "Archive/Internal/Count.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Internal/Words.h"
#include "Archive/Xml.h"

#include <QRegularExpression>

#include <algorithm>

namespace Archive::Internal {
namespace {

// The text's reader stops at its first error, and what stands behind does not count. So the tree is searched
// only where its text is beyond doubt: plain names, no character that XML forbids, nothing but elements and text
// below the one document element. Everything else is written out and scanned.

constexpr int longestPlainName = 1000;   // the reader takes no name of several thousand characters
constexpr int mostPlainAttributes = 100; // each one is counted out from the first to be fetched

bool isPlainName(const QString& name) {
    if (name.isEmpty() || name.size() > longestPlainName ||
        name.startsWith(QLatin1String("xml"), Qt::CaseInsensitive))
        return false;
    const auto isLetter = [](ushort c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
    };
    if (!isLetter(name.at(0).unicode()))
        return false;
    return std::all_of(name.begin(), name.end(), [&](QChar ch) {
        const ushort c = ch.unicode();
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

/// The reader is strict about the declaration, where the DOM takes anything: it stops at version 1.1.
bool isPlainDeclaration(const QDomNode& node) {
    static const QRegularExpression plain(
        QStringLiteral(R"re(\Aversion=("1\.0"|'1\.0')( encoding=("(?i:UTF-8)"|'(?i:UTF-8)'))?\z)re"));
    const QDomProcessingInstruction declaration = node.toProcessingInstruction();
    return declaration.target() == QLatin1String("xml") && plain.match(declaration.data()).hasMatch() &&
           node.parentNode().isDocument() && node.previousSibling().isNull();
}

/// What was made with a namespace is written with more than its name, and one attribute may stand twice.
bool isPlain(const QDomNode& elementOrAttribute) {
    return isPlainName(elementOrAttribute.nodeName()) && elementOrAttribute.localName().isNull();
}

/// Takes in the element's id; false where its text is in doubt.
bool readElement(const QDomElement& e, long long& greatest) {
    if (!isPlain(e))
        return false;
    const QDomNamedNodeMap attributes = e.attributes();
    const int length = attributes.length();
    if (length > mostPlainAttributes)
        return false;
    for (int number = 0; number < length; ++number) {
        const QDomNode attribute = attributes.item(number);
        const QString value = attribute.nodeValue();
        if (!isPlain(attribute) || !isPlainText(value))
            return false;
        if (attribute.nodeName() == Words::objectId)
            greatest = std::max(greatest, static_cast<long long>(value.toLongLong()));
    }
    return true;
}

std::optional<long long> maxInTree(const QDomDocument& document) {
    if (!document.doctype().name().isEmpty())
        return std::nullopt; // it is written in front, and is no child of the document
    long long greatest = 1;
    int documentElements = 0;
    for (QDomNode node = document.firstChild(); !node.isNull(); node = nextInDocument(node, document)) {
        if (node.isElement()) {
            documentElements += node.parentNode() == document ? 1 : 0;
            if (documentElements > 1 || !readElement(node.toElement(), greatest))
                return std::nullopt;
        } else if (node.nodeType() == QDomNode::TextNode) {
            if (!isPlainText(node.nodeValue()) || node.parentNode() == document)
                return std::nullopt;
        } else if (!isPlainDeclaration(node)) {
            return std::nullopt;
        }
    }
    return greatest;
}

} // namespace

long long maxObjectId(const QDomDocument& document) {
    const auto greatest = maxInTree(document);
    return greatest ? *greatest : getMaxObjectId(document.toByteArray(1));
}

long long& ObjectIds::greatest() {
    if (!m_greatest)
        m_greatest = maxObjectId(m_document);
    return *m_greatest;
}

long long ObjectIds::next() {
    return nextId(greatest());
}

} // namespace Archive::Internal
