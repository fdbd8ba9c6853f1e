#pragma once

#include "JsonReport.h"
#include "batch/State.h"

#include <QByteArray>

#include <optional>
#include <string>

/// The line protocol between a batch and its worker processes: one JSON object on each line, in ASCII. docs/batch.md
/// describes it.
namespace Batch::Protocol {

/// What a worker is to do with one file.
struct Request {
    QByteArray input;         ///< absolute path
    QByteArray output;        ///< the same; empty where the file is not written, or in place
    bool isBundle = false;    ///< texts of titles go to files beside the output
    bool force = false;       ///< an output that exists is replaced
    bool wantsReport = false; ///< the answer has the JSON object of `migrate --json`
};

std::string lineFor(const Request& request);
/// None for a line that is no request.
std::optional<Request> requestIn(const std::string& line);

/// What a worker did.
struct Answer {
    Row facts;                    ///< those columns of the row that the worker knows
    JsonReport::Json report;      ///< the JSON object of `migrate --json`; null where it was not wanted
    std::optional<qint64> memory; ///< bytes that the worker has
    bool isLastWord = false;      ///< memory ran out, and the worker ends; the answer is the report itself
};

std::string lineFor(const Answer& answer);
/// None for a line that is no answer.
std::optional<Answer> answerIn(const std::string& line);

/// The facts that the JSON object of `migrate --json` holds.
Row factsIn(const JsonReport::Json& report, int code);

} // namespace Batch::Protocol
