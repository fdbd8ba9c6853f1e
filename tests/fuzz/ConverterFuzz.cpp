// Any archive is converted, flattened and nested again, or is refused.

#include "Fuzz.h"
#include "Mutate.h"

#include "Reader/Conversion.h"
#include "Reader/Document.h"
#include "Reader/Error.h"
#include "Reader/XmlText.h"

#include <stdexcept>

FUZZ_MUTATE_BY(Fuzz::mutateXml)

namespace {

/// The result of the conversion. Throws std::exception for an archive that can't be converted.
nlohmann::json convert(const QByteArray& bytes) {
    QDomDocument xml = Reader::parseXml(bytes, QStringLiteral("fuzz"));
    return Reader::Conversion().convert(xml).second;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Fuzz::initialize("ConverterFuzz");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    nlohmann::json envelope;
    try {
        envelope = convert(Fuzz::bytesOf(data, size));
    } catch (const std::exception&) {
        return 0;
    }
    Reader::JsonDocument project;
    try {
        project = Reader::openEnvelope(std::move(envelope), QStringLiteral("fuzz"));
    } catch (const Reader::Error&) {
        return 0;
    }
    Reader::Document document(std::move(project), Reader::lastXmlVersion + 1);
    Fuzz::checkReadsAgain(Reader::serialize(std::move(document)).bytes);
    return 0;
}
