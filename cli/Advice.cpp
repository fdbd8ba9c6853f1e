#include "Advice.h"

#include "Repairs/RepairTrial.h"

namespace Advice {
namespace {

/// Whether repairs can help at all: what failed is the document, and not a file or an option.
bool isOfDocument(Reader::ErrorKind kind) {
    switch (kind) {
    case Reader::ErrorKind::BrokenXml:
    case Reader::ErrorKind::BrokenJson:
    case Reader::ErrorKind::MissingRoot:
    case Reader::ErrorKind::StepFailed:
        return true;
    default:
        return false;
    }
}

Repairs::Trial tryRepairs(const Subject& subject) {
    return Repairs::tryRepairs(subject.bytes, subject.from, subject.options, subject.step);
}

} // namespace

std::optional<Messages::Message> messageFor(const Reader::Error& error, const Subject& subject) {
    if (!isOfDocument(error.kind()))
        return std::nullopt;
    Repairs::Trial trial = tryRepairs(subject);
    if (!trial.succeeds || trial.report.repairs.empty())
        return std::nullopt;
    return Messages::withAdvice(Messages::messageFor(error), std::move(trial.report.repairs));
}

std::vector<Reader::RepairMade> repairsFor(const Reader::MigrationReport& report, const Subject& subject) {
    if (!report.hasErrors() && !report.hasUnintendedLosses())
        return {};
    Repairs::Trial trial = tryRepairs(subject);
    return Repairs::isBetter(trial, report) ? std::move(trial.report.repairs)
                                            : std::vector<Reader::RepairMade>();
}

} // namespace Advice
