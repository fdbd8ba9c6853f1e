#include "Report/Advice.h"

#include "Recovery/Recovery.h"
#include "Repairs/RepairTrial.h"

#include <utility>

namespace Reader::Report {
namespace {

/// Whether repairs can help at all: what failed is the document, and not a file or an option.
bool isOfDocument(ErrorKind kind) {
    return kind == ErrorKind::StepFailed || isRecoverable(kind);
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

std::optional<MigrationReport> helpfulRepairs(const Error& error, const Subject& subject) {
    if (!isOfDocument(error.kind()))
        return std::nullopt;
    Repairs::Trial trial = tryRepairs(subject);
    if (!helps(trial))
        return std::nullopt;
    return std::move(trial.report);
}

std::vector<RepairMade> betterRepairs(Migration& migration, const Subject& subject) {
    const MigrationReport& report = migration.report();
    if (!report.hasErrors() && !report.hasUnintendedLosses())
        return {};
    migration.freeConverted();
    Repairs::Trial trial = tryRepairs(subject);
    return Repairs::isBetter(trial, report) ? std::move(trial.report.repairs) : std::vector<RepairMade>();
}

} // namespace Reader::Report
