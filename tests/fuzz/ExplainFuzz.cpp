// What each step does to any project is explained, up to a step that fails.

#include "ExplainReport.h"
#include "Fuzz.h"
#include "JsonReport.h"
#include "Mutate.h"
#include "Reader/Error.h"
#include "Reader/Migration.h"

FUZZ_MUTATE_BY(Fuzz::mutateProject)

namespace {

void describe(const Reader::Explanation& explanation, const Reader::MigrationReport& report) {
    for (const bool isOneStep : {false, true}) {
        const ExplainReport::Result result = {QStringLiteral("fuzz"), report, explanation.steps(), isOneStep};
        Fuzz::checkFitForTerminal(ExplainReport::text(result, Terminal::Colours()));
        Fuzz::checkIsJson(JsonReport::line(Reader::Report::explanation(result.steps, report, isOneStep)));
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Fuzz::initialize("ExplainFuzz");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::optional<Reader::Document> document = Fuzz::read(Fuzz::bytesOf(data, size));
    if (!document)
        return 0;
    Reader::Explanation ofAll;
    Reader::Explanation ofClip("1"); // by its id, or its name
    Reader::MigrationOptions options;
    options.name = options.location = options.target = QStringLiteral("fuzz");
    options.watch = [&](const Reader::MigrationPart& part, const Reader::Document& current) {
        ofAll.note(part, current);
        ofClip.note(part, current);
    };
    Reader::Migration migration(std::move(*document), std::move(options));
    try {
        migration.run();
    } catch (const Reader::Error&) {
        // what led up to that is explained as well
    }
    describe(ofAll, migration.report());
    describe(ofClip, migration.report());
    return 0;
}
