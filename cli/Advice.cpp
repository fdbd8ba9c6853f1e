#include "Advice.h"

#include "Recovery/Recovery.h"
#include "Repairs/RepairTrial.h"

namespace Advice {
namespace {

/// Whether repairs can help at all: what failed is the document, and not a file or an option.
bool isOfDocument(Reader::ErrorKind kind) {
    return kind == Reader::ErrorKind::StepFailed || Reader::isRecoverable(kind);
}

/// Whether a project comes out that is worth having.
bool helps(const Repairs::Trial& trial) {
    const auto& recovery = trial.report.recovery;
    const bool hasContent = !recovery || recovery->isComplete() || recovery->clipsKept() > 0;
    return trial.succeeds && trial.hasRepairs() && hasContent;
}

Repairs::Trial tryRepairs(const Subject& subject) {
    return Repairs::tryRepairs(subject.bytes, subject.from, subject.options, subject.step);
}

} // namespace

std::optional<Messages::Message> messageFor(const Reader::Error& error, const Subject& subject) {
    if (!isOfDocument(error.kind()))
        return std::nullopt;
    Repairs::Trial trial = tryRepairs(subject);
    if (!helps(trial))
        return std::nullopt;
    return Messages::withAdvice(Messages::messageFor(error), std::move(trial.report));
}

std::vector<Reader::RepairMade> repairsFor(const Reader::MigrationReport& report, const Subject& subject) {
    if (!report.hasErrors() && !report.hasUnintendedLosses())
        return {};
    Repairs::Trial trial = tryRepairs(subject);
    return Repairs::isBetter(trial, report) ? std::move(trial.report.repairs)
                                            : std::vector<Reader::RepairMade>();
}

} // namespace Advice
