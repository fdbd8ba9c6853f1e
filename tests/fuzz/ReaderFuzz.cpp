// Any bytes are read, checked and saved again, or are refused.

#include "Fuzz.h"

#include "Reader/Contents.h"
#include "Reader/Error.h"
#include "Reader/JsonText.h"
#include "Reader/Verify.h"

#include <QXmlStreamReader>

#include <optional>

namespace {

/// Fails unless the tree is the same as Qt's.
void checkTree(const QDomDocument& document, const QByteArray& bytes) {
    QXmlStreamReader reader(bytes);
    reader.setNamespaceProcessing(false);
    QDomDocument expected;
    Fuzz::check(expected.setContent(&reader, false), "Qt does not read what was read");
    Fuzz::check(document.toByteArray(1) == expected.toByteArray(1), "Qt reads another tree");
}

std::optional<nlohmann::json> readJson(const QByteArray& text) {
    try {
        return Reader::parseJson(text, QStringLiteral("fuzz"));
    } catch (const Reader::Error&) {
        return std::nullopt;
    }
}

/// Fails unless both parsers of JSON text give the same. A text with an escaped character goes to the slower one.
void checkParsers(const QByteArray& bytes) {
    if (bytes.startsWith("\xEF\xBB\xBF"))
        return; // a byte order mark stands only at the start of a text
    const auto value = readJson(bytes);
    const auto list = readJson('[' + bytes + ",\"\\u0041\"]");
    const bool isOne = list && list->size() == 2; // the bytes may be several values
    Fuzz::check(value.has_value() == isOne, "one parser refuses what the other reads");
    if (value)
        Fuzz::check(Reader::writeJson(*value) == Reader::writeJson(list->front()),
                    "the parsers read another value");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Fuzz::initialize("ReaderFuzz");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    checkParsers(Fuzz::bytesOf(data, size));
    std::optional<Reader::Document> document;
    try {
        document = Reader::parse(Fuzz::bytesOf(data, size), QStringLiteral("fuzz"));
    } catch (const Reader::Error&) {
        return 0;
    }
    if (document->isXml()) {
        Fuzz::checkFacts(Fuzz::bytesOf(data, size));
        checkTree(document->xml(), Fuzz::bytesOf(data, size));
    }
    Reader::countObjects(*document);
    Reader::listClips(*document);
    Reader::verify(*document);
    document->setVersion(document->version().value_or(0));
    Fuzz::checkReadsAgain(Reader::serialize(std::move(*document)).bytes);
    return 0;
}
