#include "JsonReport.h"

#include "FileNames.h"

namespace JsonReport {
namespace {

Json errorAsJson(const Messages::Message& error) {
    Json result = {{"code", int(error.code)}, {"kind", error.kind}, {"text", error.text}};
    const auto add = [&result](const char* key, Json value) {
        if (!value.is_null())
            result[key] = std::move(value);
    };
    add("line", error.line ? Json(*error.line) : Json());
    add("column", error.column ? Json(*error.column) : Json());
    add("byte", error.byte ? Json(*error.byte) : Json());
    add("step", error.step.empty() ? Json() : Json(error.step));
    add("repairs", error.repairs.empty() ? Json() : repairsAsJson(error.repairs));
    add("recovery", recoveryAsJson(error.recovery));
    return result;
}

Reader::Report::MigrationFacts factsOf(const Summary& summary) {
    return {summary.report,
            FileNames::bytesOf(summary.output),
            FileNames::bytesOf(summary.backup),
            summary.notes,
            summary.advice,
            summary.hasVersion,
            summary.hasClips};
}

} // namespace

Json object(const Envelope& envelope, const Json& result, const Messages::Message* error) {
    Json all = Reader::Report::object(envelope, result);
    if (error)
        all["error"] = errorAsJson(*error);
    return all;
}

std::string line(const Json& object) {
    return object.dump(-1, ' ', true, Json::error_handler_t::replace) + '\n';
}

Json migration(const Summary& summary) {
    return Reader::Report::migration(factsOf(summary));
}

Json exported(const Summary& summary, const Reader::TimelineExport& result) {
    return Reader::Report::exported(factsOf(summary), result);
}

} // namespace JsonReport
