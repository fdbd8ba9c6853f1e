#include "Reader/Migration.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/Reading.h"
#include "Reader/Conversion.h"
#include "Reader/Error.h"
#include "Reader/StepLog.h"

#include <algorithm>
#include <memory>
#include <new>
#include <set>
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

/// Puts the predeclarations first among the root objects and the project's root object behind them. Their order means
/// nothing to the format, but some steps take the first timeline that they find, which must be the main one and not a
/// nested one.
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
            archive.insertBefore(top, e, place);
    }
}

/// A folder that is not known gets the name of its marker, and no real path is below that: markers in paths become
/// paths there and markers again.
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

/// The clips among `before` that the document no longer reaches. Ids of an archive are kept in JSON, but for objects
/// that shared theirs with another.
std::vector<Clip> lostAmong(const std::vector<Clip>& before, const Document& document, Backend formBefore) {
    const auto reachable = findReachable(document);
    const auto idNow = [&](unsigned long long id) {
        if (document.isXml() || formBefore == Backend::Json)
            return id;
        const auto& redirected = document.json().notes.redirected;
        const auto it = redirected.find(id);
        return it == redirected.end() ? id : it->second;
    };
    std::vector<Clip> lost;
    for (const Clip& clip : before) {
        if (!reachable.count(idNow(clip.id)))
            lost.push_back(clip);
    }
    return lost;
}

} // namespace

Migration::Migration(Document document, MigrationOptions options)
    : m_options(std::move(options)), m_document(std::move(document)) {
    m_options.folders = withStandIns(std::move(m_options.folders));
}

Migration::~Migration() = default;
Migration::Migration(Migration&& other) noexcept = default;
Migration& Migration::operator=(Migration&& other) noexcept = default;

/// Makes the context of all steps on an archive, from what the parser collected where that is still valid.
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
        m_clipsBefore = listClips(m_document);
        finish(MigrationPart::Kind::Preparation, {});
        migrateJson();
        // Quirk: side files of a JSON document are read last, those of an archive first.
        runStage(Stage::AfterLoading, m_options.location);
    }
    compareResult();
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
    m_report.objectsBefore = countObjects(m_document);
}

/// All that happens to an archive while it is one; the conversion is the last of it.
void Migration::migrateArchive() {
    openArchive();
    m_clipsBefore = listClips(m_document);
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
    checkRootObject(*m_archive, m_options.name);
    Conversion conversion;
    // Questions of quizzes come out of archives of their own and bring objects along that have ids of the project's.
    std::set<unsigned long long> sharedIds;
    runNamed(conversion.name().toStdString(), [&] {
        m_document.xml() = QDomDocument(); // the conversion frees what it has converted
        auto [version, json] = conversion.consume(std::move(*m_archive), sharedIds);
        m_document =
            Document(openEnvelope(std::move(json), m_options.name), std::max(*m_document.version(), version));
    });
    m_archive.reset();
    auto& duplicateIds = m_document.json().notes.duplicateIds;
    sharedIds.insert(duplicateIds.begin(), duplicateIds.end());
    duplicateIds.assign(sharedIds.begin(), sharedIds.end());
}

/// What happens to every JSON document.
void Migration::migrateJson() {
    for (const AdaptorRow* step : stepsFor(Backend::Json, *m_document.version(), m_options.to)) {
        if (!step->hasJson()) {
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
    m_report.objectsAfter = countObjects(m_document);
    m_report.lostClips = lostAmong(m_clipsBefore, m_document, m_report.formBefore);
    m_report.clipsBefore = m_clipsBefore.size();
    m_report.clipsAfter = m_report.clipsBefore - m_report.lostClips.size();
    finish(MigrationPart::Kind::Comparison, {});
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

/// Runs the adaptors of a stage on the document in the form that it has.
void Migration::runStage(Stage stage, const QString& location) {
    const AdaptorContext context = contextAt(location);
    for (const AdaptorRow* row : adaptorsOf(stage))
        runAdaptor(std::string(row->className), *row, context);
}

void Migration::runAdaptor(const std::string& name, const AdaptorRow& row, const AdaptorContext& context) {
    runNamed(name, [&] {
        if (m_document.isXml())
            row.makeXml(context)->apply(*m_archive);
        else
            row.makeJson(context)->adapt(m_document.json().flat);
    });
}

/// Runs an adaptor: what it logs and throws gets its name.
void Migration::runNamed(const std::string& name, const std::function<void()>& adapt) {
    {
        const StepLog log(name, m_report.log);
        try {
            adapt();
        } catch (const Error&) {
            throw;
        } catch (const std::bad_alloc&) {
            throw; // no fault of the adaptor's
        } catch (const std::exception& error) {
            throw Error(ErrorKind::StepFailed,
                        {.file = m_options.name, .step = name, .reason = error.what()});
        }
    }
    finish(MigrationPart::Kind::Adaptor, name);
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
