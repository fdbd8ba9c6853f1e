// The timelines of any project are listed, drawn and exported.

#include "Fuzz.h"
#include "JsonReport.h"
#include "Mutate.h"
#include "TimelineReport.h"
#include "TimelineSvg.h"

#include <QDomDocument>

FUZZ_MUTATE_BY(Fuzz::mutateProject)

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Fuzz::initialize("TimelineFuzz");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes = Fuzz::bytesOf(data, size);
    const std::optional<Reader::Document> document = Fuzz::read(bytes);
    if (!document)
        return 0;
    const TimelineReport::Project project = {Reader::readTimelines(*document), QString()};
    for (const bool isUtf8 : {false, true})
        Fuzz::checkFitForTerminal(TimelineReport::text(project, TimelineDrawing::Style{80, isUtf8}));
    Fuzz::checkIsJson(JsonReport::line(Reader::Report::timelines(project.timelines, project.folder)));

    TimelineSvg::Options options;
    options.title = bytes.left(300).toStdString();
    const std::string picture = TimelineSvg::timelineSvg(project.timelines, options);
    Fuzz::checkFitForTerminal(picture);
    Fuzz::check(QDomDocument().setContent(QByteArray::fromStdString(picture)),
                "a picture is not well-formed");

    if (document->isXml() || document->version() != Reader::currentVersion)
        return 0; // projects are migrated before they are exported
    const Reader::TimelineExport result = Reader::exportTimeline(*document);
    Fuzz::check(nlohmann::json::accept(Reader::openTimelineText(result.document)), "an export is no JSON");
    return 0;
}
