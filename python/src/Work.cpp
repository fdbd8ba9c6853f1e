#include "Work.h"

#include "Exchange/OpenTimeline.h"
#include "Reader/AdaptorTable.h"
#include "Reader/Comparison.h"
#include "Reader/Error.h"
#include "Reader/Explanation.h"
#include "Reader/Files.h"
#include "Reader/Migration.h"
#include "Reader/Timeline.h"
#include "Reader/Verify.h"
#include "Repairs/Opening.h"
#include "Repairs/RepairTrial.h"
#include "Report/Advice.h"
#include "Report/FileNames.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>

#include <chrono>
#include <stdexcept>
#include <utility>

namespace Work {
namespace {

using namespace Reader::Report;
using Reader::FileNames::bytesOf;

/// A project that was read, and when the work on it began.
class Input {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point m_begin = Clock::now(); // before the file is read

public:
    explicit Input(const Source& source)
        : name(source.location.isEmpty() ? QStringLiteral("the document") : source.location),
          location(source.location), bytes(source.content ? *source.content : Reader::readFile(location)) {
        if (bytes.size() > Reader::greatestFile)
            throw Reader::Error(Reader::ErrorKind::TooLarge, {.file = name});
    }

    /// The folder of side files; empty for none.
    QString folder() const { return location.isEmpty() ? QString() : QFileInfo(location).absolutePath(); }

    Json reported(const std::string& command, const Json& result) const {
        const std::chrono::duration<double> time = Clock::now() - m_begin;
        Envelope envelope{command, std::nullopt, sha256(), time.count()};
        if (!location.isEmpty())
            envelope.input = bytesOf(location);
        return object(envelope, result);
    }

    const QString name; ///< in messages
    const QString location;
    const QByteArray bytes;

private:
    std::string sha256() const {
        return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex().toStdString();
    }
};

/// Relative paths in a document without a file count from the working folder.
QString placeOf(const QString& location) {
    return location.isEmpty() ? QStringLiteral("project") : location;
}

Reader::MigrationOptions optionsFor(const Input& input, const Options& options, const QString& target) {
    Reader::MigrationOptions result;
    result.name = input.name;
    result.location = placeOf(input.location);
    result.target = placeOf(target.isEmpty() ? input.location : target);
    result.to = options.to;
    result.repair = options.repair;
    result.sourceFiles = Reader::SideFiles(input.folder());
    result.folders = options.folders;
    result.watch = [pause = options.pause](const Reader::MigrationPart&, const Reader::Document&) {
        if (pause)
            pause();
    };
    return result;
}

Repairs::Opened opened(const Input& input, const Options& options) {
    return options.repair ? Repairs::open(input.bytes, input.name, options.from)
                          : Repairs::Opened{Reader::parse(input.bytes, input.name, options.from), {}};
}

/// Works on a document. Where that fails for what the document holds, it is found out whether repairs would help.
template <class Part>
auto advising(const Input& input, const Options& options, const Reader::MigrationOptions& migration,
              Part part) {
    try {
        return part();
    } catch (const Reader::Error& error) {
        if (options.repair)
            throw;
        auto advice = helpfulRepairs(error, {input.bytes, options.from, migration});
        if (!advice)
            throw;
        throw Failure{error, std::move(advice)};
    }
}

bool needsRepair(const Input& input, const Options& options, const Reader::MigrationOptions& migration) {
    return options.repair && Repairs::tryRepairs(input.bytes, options.from, migration).hasRepairs();
}

/// A document brought to a version and saved as for its own place: side files are read, and paths are portable.
Reader::Document broughtTo(int version, Reader::Document document, const Input& input, Options options) {
    options.to = version;
    Reader::Migration migration(std::move(document), optionsFor(input, options, {}));
    migration.run();
    return Reader::parse(migration.save(), input.name, version);
}

} // namespace

Migrated migrate(const Source& source, const Options& options, Strictness strictness, const QString& target) {
    const Input input(source);
    const Reader::MigrationOptions shared = optionsFor(input, options, target);
    return advising(input, options, shared, [&]() -> Migrated {
        Repairs::Opened project = opened(input, options);
        if (isUpToDate(project.document, options.to) && !needsRepair(input, options, shared)) {
            Reader::MigrationReport report;
            report.formBefore = report.formAfter = project.document.form();
            report.from = report.to = options.to;
            MigrationFacts facts{report};
            facts.hasClips = false;
            return {input.bytes, input.reported("migrate", migration(facts)), true};
        }
        Reader::MigrationOptions own = shared;
        own.opening = std::move(project.report);
        own.reread = [&] { return opened(input, options).document; };
        Reader::Migration work(std::move(project.document), std::move(own));
        work.run();
        const bool isRefusedResult = isRefused(strictness, work.report());
        QByteArray data = work.save();
        MigrationFacts facts{work.report()};
        if (!options.repair)
            facts.advice = betterRepairs(work, {input.bytes, options.from, shared});
        Json report = input.reported("migrate", migration(facts));
        if (isRefusedResult)
            throw Refusal{std::move(report)};
        return {std::move(data), std::move(report), isWhole(work.report())};
    });
}

Migrated exportOtio(const Source& source, const Options& options, Strictness strictness,
                    const QString& target) {
    const Input input(source);
    const Reader::MigrationOptions shared = optionsFor(input, options, target);
    return advising(input, options, shared, [&]() -> Migrated {
        Repairs::Opened project = opened(input, options);
        Reader::MigrationOptions own = shared;
        own.opening = std::move(project.report);
        own.reread = [&] { return opened(input, options).document; };
        Reader::Migration work(std::move(project.document), std::move(own));
        work.run();
        MigrationFacts facts{work.report()};
        if (!options.repair)
            facts.advice = betterRepairs(work, {input.bytes, options.from, shared});
        const bool isRefusedResult = isRefused(strictness, work.report());
        // Saved and read again: paths count from the target then, as in a project that is written there.
        const Reader::TimelineExport result =
            Reader::exportTimeline(Reader::parse(work.save(), input.name, options.to));
        Json report = input.reported("export", exported(facts, result));
        if (isRefusedResult)
            throw Refusal{std::move(report)};
        return {QByteArray::fromStdString(Reader::openTimelineText(result.document)), std::move(report),
                isWhole(work.report())};
    });
}

Json info(const Source& source, const Options& options) {
    const Input input(source);
    const Reader::MigrationOptions shared = optionsFor(input, options, {});
    return advising(input, options, shared, [&] {
        const Reader::Document document = Reader::parse(input.bytes, input.name, options.from);
        std::optional<Repairs::Trial> trial;
        if (document.version())
            trial = Repairs::tryRepairs(input.bytes, options.from, shared);
        Json result = Reader::Report::info(document, trial ? &trial->report.repairs : nullptr);
        result.update(timelines(Reader::readTimelines(document), input.folder()));
        return input.reported("info", result);
    });
}

Json verify(const Source& source, const Options& options) {
    const Input input(source);
    return input.reported("verify",
                          findings(Reader::verify(Reader::parse(input.bytes, input.name, options.from))));
}

Json diff(const Source& before, const Source& after, const Options& options, bool asTheyAre) {
    const Input inputBefore(before);
    const Input inputAfter(after);
    const auto openedFor = [&](const Input& input) {
        return advising(input, options, optionsFor(input, options, {}),
                        [&] { return opened(input, options).document; });
    };
    Reader::Document documentBefore = openedFor(inputBefore);
    Reader::Document documentAfter = openedFor(inputAfter);
    ComparisonFacts facts = {{inputBefore.name, documentBefore.form(), documentBefore.version()},
                             {inputAfter.name, documentAfter.form(), documentAfter.version()},
                             {},
                             {}};
    if (asTheyAre && facts.before.form != facts.after.form)
        throw std::invalid_argument("documents of different forms can't be compared as they are");
    if (!asTheyAre)
        facts.comparedAs = versionToCompare(facts.before, facts.after);
    const auto prepared = [&](Reader::Document document, const Input& input) {
        if (facts.comparedAs)
            document = broughtTo(*facts.comparedAs, std::move(document), input, options);
        return Reader::readForComparison(document,
                                         input.location.isEmpty() ? QDir::currentPath() : input.folder());
    };
    const Reader::ComparedProject projectBefore = prepared(std::move(documentBefore), inputBefore);
    facts.differences = Reader::compare(projectBefore, prepared(std::move(documentAfter), inputAfter));
    return inputBefore.reported("diff", comparison(facts));
}

Json explain(const Source& source, const Options& options, const std::string& step, const std::string& clip) {
    const Reader::AdaptorRow* row = step.empty() ? nullptr : Reader::findAdaptor(step);
    if (!step.empty() && !row)
        throw Reader::Error(Reader::ErrorKind::UnknownStep, {.step = step});
    const Input input(source);
    const Reader::MigrationOptions shared = optionsFor(input, options, {});
    return advising(input, options, shared, [&] {
        Repairs::Opened project = opened(input, options);
        Reader::Explanation effects(clip);
        Reader::MigrationOptions own = shared;
        own.opening = std::move(project.report);
        own.watch = [&](const Reader::MigrationPart& part, const Reader::Document& document) {
            effects.note(part, document);
            shared.watch(part, document);
        };
        Reader::Migration migration(std::move(project.document), std::move(own));
        migration.run();
        std::vector<Reader::StepEffect> shown = effects.steps();
        if (row) {
            std::erase_if(shown, [&](const auto& effect) { return effect.className != row->className; });
            if (shown.empty())
                throw std::invalid_argument(step + " does not run on " + bytesOf(input.name));
        }
        if (!clip.empty() && !effects.hasFoundClip())
            throw std::invalid_argument(bytesOf(input.name) + " has no clip with the name or id " + clip);
        return input.reported("explain", explanation(shown, migration.report(), row != nullptr));
    });
}

Json steps(int from, int to) {
    return object({"steps", {}, {}, 0.0}, stepList(from, to));
}

void write(const QString& path, const QByteArray& bytes, bool replace, const QString& input) {
    Reader::WriteOptions options;
    options.existing = replace ? Reader::Existing::Replace : Reader::Existing::Refuse;
    if (!input.isEmpty())
        options.permissions = Reader::permissionsOf(input);
    Reader::checkTarget(path, options);
    Reader::writeFile(path, bytes, options);
}

Json factsOf(const Reader::Error& error, const std::optional<Reader::MigrationReport>& advice) {
    const Reader::ErrorFacts& facts = error.facts();
    const auto orNull = [](const auto& value) { return value ? Json(*value) : Json(); };
    const auto textOrNull = [](const std::string& text) { return text.empty() ? Json() : Json(text); };
    return {{"kind", nameOf(error.kind())},
            {"text", error.what()},
            {"file", textOrNull(bytesOf(facts.file))},
            {"line", orNull(facts.line)},
            {"column", orNull(facts.column)},
            {"byte", orNull(facts.byte)},
            {"step", textOrNull(facts.step)},
            {"version", orNull(facts.version)},
            {"target", orNull(facts.target)},
            {"reason", textOrNull(facts.reason)},
            {"cutOff", facts.isCutOff},
            {"repairs", advice ? repairsAsJson(advice->repairs) : Json::array()},
            {"recovery", advice ? recoveryAsJson(advice->recovery) : Json()}};
}

} // namespace Work
