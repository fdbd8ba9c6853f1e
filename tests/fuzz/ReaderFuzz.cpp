// Any bytes at all are read, looked through and saved again, or refused.

#include "Fuzz.h"

#include "Reader/Contents.h"
#include "Reader/Error.h"
#include "Reader/Verify.h"

#include <optional>

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Fuzz::initialize("ReaderFuzz");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::optional<Reader::Document> document;
    try {
        document = Reader::parse(Fuzz::bytesOf(data, size), QStringLiteral("fuzz"));
    } catch (const Reader::Error&) {
        return 0;
    }
    Reader::countObjects(*document);
    Reader::listClips(*document);
    Reader::verify(*document);
    document->version = document->version.value_or(0);
    Fuzz::checkReadsAgain(Reader::serialize(std::move(*document)).bytes);
    return 0;
}
