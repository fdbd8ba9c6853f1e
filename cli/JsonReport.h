#pragma once

#include "Messages.h"
#include "Report/ReportJson.h"
#include "Summary.h"

#include <string>

/// What the program says of its work to other programs. docs/schema/ describes it. The keys of each command, except
/// "error", are those of Reader::Report.
namespace JsonReport {

using Reader::Report::Envelope;
using Reader::Report::findings;
using Reader::Report::format;
using Reader::Report::info;
using Reader::Report::Json;
using Reader::Report::recovery;
using Reader::Report::recoveryAsJson;
using Reader::Report::repairList;
using Reader::Report::repairsAsJson;
using Reader::Report::stepList;
using Reader::Report::trace;

/// The whole object. `result` holds the command's own keys; null for none. `error` is null where there is none.
Json object(const Envelope& envelope, const Json& result, const Messages::Message* error = nullptr);

/// An object on one line, in ASCII.
std::string line(const Json& object);

inline std::string line(const Envelope& envelope, const Json& result,
                        const Messages::Message* error = nullptr) {
    return line(object(envelope, result, error));
}

Json migration(const Summary& summary);
Json exported(const Summary& summary, const Reader::TimelineExport& result);

} // namespace JsonReport
