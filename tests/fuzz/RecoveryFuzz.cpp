// Any bytes are recovered to a document that can be saved and read again, or nothing is recovered.

#include "Fuzz.h"

#include "Reader/Contents.h"
#include "Reader/Verify.h"
#include "Recovery/Recovery.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Fuzz::initialize("RecoveryFuzz");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    auto recovered = Reader::recover(Fuzz::bytesOf(data, size), QStringLiteral("fuzz"));
    if (!recovered)
        return 0;
    Fuzz::check(recovered->document.version().has_value(), "there is no schema version");
    Fuzz::check(recovered->report.findings.size() <= Reader::RecoveryReport::mostFindings,
                "there are too many findings");
    Reader::listClips(recovered->document);
    Reader::verify(recovered->document);
    const QByteArray saved = Reader::serialize(std::move(recovered->document)).bytes;
    Fuzz::checkReadsAgain(saved);
    Fuzz::migrate(saved);
    return 0;
}
