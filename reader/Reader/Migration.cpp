#include "Reader/Migration.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/FlatEditor.h"
#include "Archive/Internal/Reading.h"
#include "Reader/Conversion.h"
#include "Reader/Error.h"
#include "Reader/Losses.h"
#include "Reader/StepLog.h"
#include "Repairs/RepairTable.h"

#include <algorithm>
#include <memory>
#include <new>
#include <set>
#include <unordered_map>
#include <utility>

using namespace Archive::Internal;
using Bundle::Backend;

namespace Reader {
namespace {

void checkRootObject(ArchiveEditor& archive, const QString& name) {
    const auto id = int64In(archive.root(), Words::RootRef);
    const TypedElements objects = archive.rootObjects(Scope::Document);
    const bool isThere = std::any_of(objects.begin(), objects.end(), [&](const auto& object) {
        return object.type != Words::Predeclarator && idOf(object.element) == id;
    });
    if (!isThere)
        throw Error(ErrorKind::MissingRoot,
                    {.file = name, .reason = "<RootRef> names the object " + std::to_string(id)});
}

/// Sorts the root objects: first the predeclarations, then the project's root object. The format gives no
/// meaning to their order, but some steps use the first timeline that they find, which must be the main one
/// and not a nested one.
void sortRootObjects(ArchiveEditor& archive) {
    const QDomElement top = archive.root();
    const auto root = uint64In(top, Words::RootRef);
    Elements first;
    QDomElement main;
    for (const auto& [e, type] : archive.rootObjects(Scope::Document)) {
        if (e.parentNode() != top)
            continue;
        if (type == Words::Predeclarator)
            first.push_back(e);
        else if (main.isNull() && Archive::objectIdOf(e) == root)
            main = e;
    }
    if (!main.isNull())
        first.push_back(main);
    QDomElement place = top.firstChildElement(Words::RootObject);
    for (const QDomElement& e : first) {
        if (e == place)
            place = place.nextSiblingElement(Words::RootObject);
        else
            archive.placeBefore(top, e, place);
    }
}

/// Replaces each unknown folder by a path with the name of its marker. No real path is below it, so markers
/// become paths there and then markers again.
Bundle::PortableFolders withStandIns(Bundle::PortableFolders folders) {
    const auto fill = [](QString& folder, const char* standIn) {
        if (folder.isEmpty())
            folder = QString::fromLatin1(standIn);
    };
    fill(folders.packages, "/#PACKAGES_ROOT#");
    fill(folders.aiModels, "/#AI_MODELS_ROOT#");
    fill(folders.downloadables, "/#DOWNLOADABLE_ROOT#");
    return folders;
}

} // namespace

Migration::Migration(Document document, MigrationOptions options)
    : m_options(std::move(options)), m_document(std::move(document)) {
    m_options.folders = withStandIns(std::move(m_options.folders));
    m_report.repairs = m_options.opening.repairs;
    m_report.recovery = m_options.opening.recovery;
}

Migration::~Migration() = default;
Migration::Migration(Migration&& other) noexcept = default;
Migration& Migration::operator=(Migration&& other) noexcept = default;

/// Creates the context for all steps on an archive. Uses what the parser collected if that is still valid.
void Migration::openArchive() {
    const auto facts = std::move(m_document.m_facts);
    m_archive = facts ? std::make_unique<ArchiveEditor>(m_document.xml(), std::move(*facts))
                      : std::make_unique<ArchiveEditor>(m_document.xml());
}

void Migration::run() {
    checkVersions();
    noteInput();
    if (m_document.isXml()) {
        migrateArchive();
        if (m_options.to > lastXmlVersion)
            migrateJson();
    } else {
        repairBefore(Repairs::loading);
        m_losses.start(listParts(m_document.json(), flat()), m_document.form());
        m_losses.noteTimelines(flat(), {});
        finish(MigrationPart::Kind::Preparation, {});
        migrateJson();
        // Quirk: side files of a JSON document are read last, those of an archive first.
        runStage(Stage::AfterLoading, m_options.location);
    }
    compareResult();
}

/// The context for all steps on JSON.
FlatEditor& Migration::flat() {
    Serialize::Json::FlatObject& document = m_document.json().flat;
    if (m_flat)
        m_flat->follow(document); // it moves with this object
    else
        m_flat = std::make_unique<FlatEditor>(document);
    return *m_flat;
}

void Migration::checkVersions() const {
    if (!m_document.version())
        throw Error(ErrorKind::NoVersion, {.file = m_options.name});
    const int from = *m_document.version();
    const int to = m_options.to;
    const auto fail = [&](ErrorKind kind) {
        throw Error(kind, {.file = m_options.name, .version = from, .target = to});
    };
    if (from > currentVersion)
        fail(ErrorKind::TooNew);
    if (to < from || to > currentVersion)
        fail(ErrorKind::UnreachableVersion);
    if (!m_document.isXml() && to <= lastXmlVersion)
        fail(ErrorKind::NoWayBack);
}

void Migration::noteInput() {
    m_report.formBefore = m_document.form();
    m_report.from = *m_document.version();
    m_report.objectsBefore = m_document.isXml() ? countObjects(m_document) : flat().countByClass();
}

/// All stages on an archive, the last being the conversion.
void Migration::migrateArchive() {
    openArchive();
    repairBefore(Repairs::loading);
    m_losses.start(listParts(*m_archive), m_document.form());
    checkRootObject(*m_archive, m_options.name);
    sortRootObjects(*m_archive);
    finish(MigrationPart::Kind::Preparation, {});

    runStage(Stage::AfterLoading, m_options.location);
    runStage(Stage::BeforeSteps, m_options.location);
    const int last = std::min(m_options.to, lastXmlVersion);
    for (const AdaptorRow* step : stepsFor(Backend::Xml, *m_document.version(), last)) {
        runAdaptor(std::string(step->className), *step, {});
        m_report.steps.emplace_back(step->className);
    }
    if (m_options.to > lastXmlVersion) {
        runStage(Stage::BeforeConversion, m_options.location);
        convert();
    }
}

void Migration::convert() {
    repairBefore(Repairs::conversion);
    checkRootObject(*m_archive, m_options.name);
    Conversion conversion;
    // Questions of quizzes are moved from archives of their own. Objects in them may have ids that the
    // project uses, too.
    std::set<unsigned long long> sharedIds;
    runNamed(conversion.name().toStdString(), [&] {
        auto [version, json] = conversion.convert(*m_archive, sharedIds);
        m_document =
            Document(openEnvelope(std::move(json), m_options.name), std::max(*m_document.version(), version));
    });
    m_converted = std::move(m_archive);
    m_losses.noteTimelines(flat(), conversion.name().toStdString());
    auto& duplicateIds = m_document.json().notes.duplicateIds;
    sharedIds.insert(duplicateIds.begin(), duplicateIds.end());
    duplicateIds.assign(sharedIds.begin(), sharedIds.end());
}

void Migration::freeConverted() {
    m_converted.reset();
}

/// The stages on a JSON document.
void Migration::migrateJson() {
    for (const AdaptorRow* step : stepsFor(Backend::Json, *m_document.version(), m_options.to)) {
        if (!step->hasJson()) {
            repairBefore(step->className); // some do what the step would have done
            m_report.skipped.emplace_back(step->className);
            continue;
        }
        runAdaptor(std::string(step->className), *step, {});
        m_report.steps.emplace_back(step->className);
    }
    runStage(Stage::AfterSteps, m_options.location);
}

void Migration::compareResult() {
    if (!m_document.isXml())
        m_report.duplicateIds = m_document.json().notes.duplicateIds;
    m_document.setVersion(m_options.to);
    m_report.to = m_options.to;
    m_report.formAfter = m_document.form();
    m_report.objectsAfter = m_document.isXml() ? countObjects(m_document) : flat().countByClass();
    noteLosses();
    finish(MigrationPart::Kind::Comparison, {});
}

void Migration::noteLosses() {
    const auto isClip = [](const auto& part) { return part.kind == PartKind::Clip; };
    const auto& parts = m_losses.parts();
    m_report.clipsBefore = static_cast<std::size_t>(std::count_if(parts.begin(), parts.end(), isClip));
    m_report.clipsAdded = m_losses.countAddedClips(m_document);
    auto& losses = m_report.losses;
    losses = m_losses.losses(m_document);
    m_report.clipsKept =
        m_report.clipsBefore -
        static_cast<std::size_t>(
            std::count_if(losses.begin(), losses.end(), [&](const Loss& loss) { return isClip(loss.part); }));
    const bool areExplained =
        std::none_of(losses.begin(), losses.end(), [](const Loss& loss) { return loss.step.empty(); });
    if (!areExplained && m_options.reread)
        losses = explainLosses(m_options.reread(), m_options, losses);
}

void Migration::runOnly(const std::string& className) {
    const AdaptorRow* row = findAdaptor(className);
    if (!row)
        throw Error(ErrorKind::UnknownStep, {.file = m_options.name, .step = className});
    if (!(m_document.isXml() ? row->hasXml() : row->hasJson()))
        throw Error(
            ErrorKind::NoSuchForm,
            {.file = m_options.name, .step = className, .reason = formName(m_document.form()).toStdString()});
    m_report.formBefore = m_report.formAfter = m_document.form();
    m_report.from = m_report.to = m_document.version().value_or(0);
    m_report.objectsBefore = countObjects(m_document);
    if (m_document.isXml())
        openArchive();
    repairBefore(Repairs::loading);
    runAdaptor(className, *row, contextAt(m_options.location));
    m_report.steps.push_back(className);
    m_report.objectsAfter = countObjects(m_document);
}

QByteArray Migration::save(bool toBundle) {
    if (!m_document.isXml()) {
        runStage(Stage::BeforeSaving, m_options.target);
        if (toBundle)
            runStage(Stage::BeforeBundling, m_options.target);
    }
    return write();
}

QByteArray Migration::write() {
    m_flat.reset();
    Serialized result = serialize(std::move(m_document));
    m_report.leftOut = result.leftOut;
    for (const MovedNumber& number : result.moved)
        m_report.log.push_back({"Saving", "WARNING",
                                "the number " + number.digits + " of object " + std::to_string(number.id) +
                                    " (" + number.path +
                                    ") is in another place now and keeps 17 digits, as a floating number",
                                ""});
    return std::move(result.bytes);
}

/// Makes the repairs that look before that step, or at that place.
void Migration::repairBefore(std::string_view place) {
    if (!m_options.repair)
        return;
    for (const Repairs::RepairRow& row : Repairs::repairTable()) {
        if (!row.looksBefore(place))
            continue;
        Repairs::Changes changes;
        try {
            if (!makeRepair(row, {place, m_document.version().value_or(0)}, changes))
                continue;
        } catch (const std::bad_alloc&) {
            throw; // not an error of the repair
        } catch (const std::exception& error) {
            throw Error(
                ErrorKind::StepFailed,
                {.file = m_options.name, .step = "repair " + std::string(row.name), .reason = error.what()});
        }
        RepairMade made = changes.take();
        made.name = row.name;
        made.before = place;
        noteRepair(std::move(made));
        finish(MigrationPart::Kind::Repair, std::string(row.name));
    }
}

/// Returns whether there was something to repair.
bool Migration::makeRepair(const Repairs::RepairRow& row, const Repairs::Place& place,
                           Repairs::Changes& changes) {
    if (!m_archive) {
        if (m_document.isXml() || !row.hasJson())
            return false;
        const auto repair = row.makeJson();
        const bool isNeeded = repair->find(m_document.json(), place);
        if (isNeeded)
            repair->repair(m_document.json(), changes);
        if (isNeeded && m_flat)
            m_flat->invalidate();
        return isNeeded;
    }
    if (!row.hasXml())
        return false;
    m_archive->beginStep(Scope::Document);
    const auto repair = row.makeXml();
    const bool isNeeded = repair->find(*m_archive, place);
    if (isNeeded)
        repair->repair(*m_archive, changes);
    m_archive->endStep();
    m_archive->takeRemovedRootObjects(); // a repair removes none, but moves some
    return isNeeded;
}

/// Adds the clips to the objects of a repair.
void Migration::noteRepair(RepairMade repair) {
    std::unordered_map<unsigned long long, Part> parts;
    for (Part& part : m_archive ? listParts(*m_archive) : listParts(m_document))
        parts.emplace(part.id, std::move(part));
    for (LoggedObject& object : repair.objects) {
        const auto part = parts.find(object.id);
        const auto clip = part == parts.end() ? part : parts.find(part->second.clip);
        if (clip != parts.end())
            object.clip = clip->second;
    }
    m_report.repairs.push_back(std::move(repair));
}

/// Runs the adaptors of a stage in the form of the document.
void Migration::runStage(Stage stage, const QString& location) {
    const AdaptorContext context = contextAt(location);
    for (const AdaptorRow* row : adaptorsOf(stage))
        runAdaptor(std::string(row->className), *row, context);
}

void Migration::runAdaptor(const std::string& name, const AdaptorRow& row, const AdaptorContext& context) {
    repairBefore(row.className);
    runNamed(name, [&] {
        if (m_document.isXml()) {
            row.makeXml(context)->apply(*m_archive);
            return;
        }
        row.makeJson(context)->apply(flat());
    });
}

/// Runs an adaptor. Its name is added to what it logs and throws.
void Migration::runNamed(const std::string& name, const std::function<void()>& adapt) {
    const std::size_t firstLine = m_report.log.size();
    {
        const StepLog log(name, m_report.log, [this] { return subject(); });
        try {
            adapt();
        } catch (const Error&) {
            throw;
        } catch (const std::bad_alloc&) {
            throw; // not an error of the adaptor
        } catch (const std::exception& error) {
            throw Error(ErrorKind::StepFailed,
                        {.file = m_options.name, .step = name, .reason = error.what()});
        }
    }
    findClips(firstLine);
    if (m_archive)
        m_losses.noteRemoved(m_archive->takeRemovedRootObjects(), name);
    else if (!m_document.isXml())
        m_losses.noteTimelines(flat(), name);
    finish(MigrationPart::Kind::Adaptor, name);
}

/// The root object that a step on the archive works on.
std::optional<LoggedObject> Migration::subject() const {
    if (!m_archive)
        return std::nullopt;
    QDomElement object = m_archive->subject();
    while (!object.isNull() && object.tagName() != Words::RootObject)
        object = object.parentNode().toElement();
    if (object.isNull())
        return std::nullopt;
    return LoggedObject{Archive::typeOf(object).toStdString(), Archive::objectIdOf(object)};
}

/// Adds the clips to the objects of log lines, from that line on.
void Migration::findClips(std::size_t firstLine) {
    std::vector<Part> parts;
    for (std::size_t line = firstLine; line < m_report.log.size(); ++line) {
        auto& object = m_report.log[line].object;
        if (!object)
            continue;
        if (parts.empty())
            parts = listParts(*m_archive);
        const auto withId = [&](unsigned long long id) {
            return std::find_if(parts.begin(), parts.end(), [id](const Part& part) { return part.id == id; });
        };
        const auto part = withId(object->id);
        const auto clip = part == parts.end() ? part : withId(part->clip);
        if (clip != parts.end())
            object->clip = *clip;
    }
}

AdaptorContext Migration::contextAt(const QString& location) const {
    return {location, m_options.folders,
            [files = m_options.sourceFiles](const QString& name) { return files.read(name); },
            [files = m_options.targetFiles](const QString& name, const QByteArray& content) {
                return files.write(name, content);
            }};
}

void Migration::finish(MigrationPart::Kind kind, const std::string& name) const {
    if (m_options.watch)
        m_options.watch({kind, name}, m_document);
}

} // namespace Reader
