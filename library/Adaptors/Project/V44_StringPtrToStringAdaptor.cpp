#include "Adaptors/Project/V44_StringPtrToStringAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/StringPtr.h"

#include <QRegularExpression>

using namespace Archive::Internal;

namespace Project {
namespace {

// Quirk: the change is defined on the document's text: a match counts anywhere, also at the end of a longer
// attribute name or in running text, and content that the text can't represent is lost. The attribute
// `isNull` stays. Writing and reading the text costs more than loading the document, so the tree is changed
// directly where the result is certain to be the same.

constexpr const char* newType = "String";

/// For a document whose text has matches only in attributes `type`.
void convertTypes(ArchiveEditor& archive) {
    for (const QDomElement& e : archive.ofListedType(Words::StringPtr))
        archive.setType(e, newType);
}

void convertText(ArchiveEditor& archive) {
    static const QRegularExpression stringPtr("type\\s*=\\s*\"StringPtr\"");
    QString text = archive.document().toString(1);
    text.replace(stringPtr, QString("type=\"%1\"").arg(newType));
    archive.parse(text);
}

} // namespace

void V44_StringPtrToStringAdaptor::convert(ArchiveEditor& archive) {
    if (archive.showsTypes())
        return convertTypes(archive);
    const auto matches = stringPtrAttributes(archive.document());
    if (!matches)
        return convertText(archive);
    for (const QDomAttr& attribute : *matches)
        archive.setType(attribute, newType);
}

} // namespace Project
