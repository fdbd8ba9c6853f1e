#include "Repairs/RepairTrial.h"

#include "Reader/Error.h"
#include "Reader/Migration.h"
#include "Repairs/Opening.h"

#include <algorithm>
#include <utility>

namespace Repairs {
namespace {

std::size_t countErrors(const Reader::MigrationReport& report) {
    return static_cast<std::size_t>(
        std::count_if(report.log.begin(), report.log.end(), [](const auto& line) { return line.isError(); }));
}

std::size_t countUnintendedLosses(const Reader::MigrationReport& report) {
    return static_cast<std::size_t>(std::count_if(report.losses.begin(), report.losses.end(),
                                                  [](const auto& loss) { return !loss.isIntended; }));
}

} // namespace

Trial tryRepairs(const QByteArray& bytes, std::optional<int> version, Reader::MigrationOptions options,
                 const std::string& step) {
    Trial trial;
    try {
        Opened opened = open(bytes, options.name, version);
        options.repair = true;
        options.opening = std::move(opened.report);
        options.watch = nullptr;
        options.targetFiles = Reader::SideFiles(QString()); // nothing is written
        options.reread = [&bytes, version, name = options.name] {
            return open(bytes, name, version).document;
        };
        Reader::Migration migration(std::move(opened.document), options);
        try {
            if (step.empty())
                migration.run();
            else
                migration.runOnly(step);
            trial.succeeds = true;
        } catch (const Reader::Error&) {
            // The repairs until then are in the report.
        }
        trial.report = migration.report();
    } catch (const Reader::Error&) {
        // The file can't be opened, repaired or not.
    }
    return trial;
}

bool isBetter(const Trial& trial, const Reader::MigrationReport& without) {
    if (!trial.succeeds || !trial.hasRepairs())
        return false;
    const std::size_t errors = countErrors(trial.report);
    const std::size_t losses = countUnintendedLosses(trial.report);
    const std::size_t oldErrors = countErrors(without);
    const std::size_t oldLosses = countUnintendedLosses(without);
    return errors <= oldErrors && losses <= oldLosses && (errors < oldErrors || losses < oldLosses);
}

} // namespace Repairs
