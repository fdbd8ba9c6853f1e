#include "Reader/Road.h"

#include "Archive/Internal/Outline.h"
#include "Archive/Internal/RootObjects.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"
#include "Reader/Conversion.h"
#include "Reader/Error.h"
#include "Reader/Unnumbered.h"
#include "Settings/Settings.h"

#include <algorithm>
#include <functional>
#include <new>
#include <optional>
#include <set>
#include <utility>

namespace Words = Archive::Words;
using Archive::Internal::idOf;

namespace Reader {
namespace {

[[noreturn]] void fail(Problem problem, const Journey& journey, const std::string& reason) {
    throw Error(problem, journey.name.toStdString() + ": " + reason);
}

/// Runs one adaptor after the other, and gives what goes wrong the name of the adaptor and of the file.
class Runner {
public:
    Runner(const Document& document, const Journey& journey, Report& report)
        : m_document(document), m_journey(journey), m_report(report) {}
    ~Runner() { m_report.log.insert(m_report.log.end(), m_log.lines().begin(), m_log.lines().end()); }
    Runner(const Runner&) = delete;
    Runner& operator=(const Runner&) = delete;

    void run(const std::string& name, const std::function<void()>& adapt) {
        m_log.setStep(name);
        try {
            adapt();
        } catch (const Error&) {
            throw;
        } catch (const std::bad_alloc&) {
            throw; // no fault of the adaptor's
        } catch (const std::exception& error) {
            fail(Problem::StepFailed, m_journey, name + ": " + error.what());
        }
        watch(name);
    }

    void watch(const std::string& name) const {
        if (m_journey.watch)
            m_journey.watch(name, m_document);
    }

private:
    const Document& m_document;
    const Journey& m_journey;
    Report& m_report;
    StepLog m_log;
};

void checkVersions(const Document& document, const Journey& journey) {
    if (!document.version)
        fail(Problem::NoVersion, journey, "the document names no schema version; give it with --from N");
    const int from = *document.version;
    if (from > currentVersion)
        fail(Problem::WrongVersion, journey,
             "schema version " + std::to_string(from) + " is too new, this program knows versions up to " +
                 std::to_string(currentVersion));
    if (journey.to < from || journey.to > currentVersion)
        fail(Problem::WrongVersion, journey,
             "a document of schema version " + std::to_string(from) + " can go to a version from " +
                 std::to_string(from) + " to " + std::to_string(currentVersion) + ", not to " +
                 std::to_string(journey.to));
    if (!document.isXml() && journey.to <= lastXmlVersion)
        fail(Problem::WrongVersion, journey,
             "a JSON document can't become an archive again; ask for version " +
                 std::to_string(lastXmlVersion + 1) + " or above");
}

/// Sets the predeclarations first among the root objects and the project's root object behind them. Their order
/// means nothing to the format, but some steps take the first timeline that they meet, and the main one must not
/// lose to a nested one.
void sortRootObjects(QDomDocument& xml) {
    QDomElement archive = xml.documentElement();
    const auto root = archive.firstChildElement(Words::RootRef).attribute(Words::value).toULongLong();
    Archive::Internal::Elements first;
    QDomElement main;
    for (const auto& [e, type] : Archive::Internal::typedElements(xml, Words::RootObject)) {
        if (e.parentNode() != archive)
            continue;
        if (type == Words::Predeclarator)
            first.push_back(e);
        else if (main.isNull() && Archive::objectIdOf(e) == root)
            main = e;
    }
    if (!main.isNull())
        first.push_back(main);
    QDomElement place = archive.firstChildElement(Words::RootObject);
    for (const QDomElement& e : first) {
        if (e == place) {
            place = place.nextSiblingElement(Words::RootObject);
        } else {
            Archive::Internal::Outline::removed(e);
            archive.insertBefore(e, place);
        }
    }
}

void checkRootObject(const QDomDocument& xml, const Journey& journey) {
    const QDomElement ref = xml.documentElement().firstChildElement(Words::RootRef);
    const auto id = ref.attribute(Words::value).toLongLong();
    const auto objects = Archive::Internal::typedElements(xml, Words::RootObject);
    const bool isThere = std::any_of(objects.begin(), objects.end(), [&](const auto& object) {
        return object.type != Words::Predeclarator && idOf(object.element) == id;
    });
    if (!isThere)
        fail(Problem::NoArchive, journey,
             "<RootRef> names the object " + std::to_string(id) + ", and there is no such <RootObject>");
}

void convertToJson(Document& document, const Journey& journey, Runner& runner) {
    checkRootObject(document.xml(), journey);
    Conversion conversion;
    // Questions of quizzes bring objects along that have ids of the project's: they come out of archives of their own.
    std::set<unsigned long long> idsTaken;
    runner.run(conversion.name().toStdString(), [&] {
        auto [version, converted] = conversion.consume(document.xml(), idsTaken);
        document.content = openEnvelope(std::move(converted), journey.name);
        document.version = std::max(*document.version, version);
    });
    auto& duplicateIds = document.json().notes.duplicateIds;
    idsTaken.insert(duplicateIds.begin(), duplicateIds.end());
    duplicateIds.assign(idsTaken.begin(), idsTaken.end());
}

void runJsonSteps(Document& document, int to, Runner& runner, Report& report) {
    for (const Step* step : stepsFor(Bundle::Backend::Json, *document.version, to)) {
        if (!step->hasJson()) {
            report.skipped.emplace_back(step->className);
            continue;
        }
        runner.run(std::string(step->className), [&] { step->makeJson()->adapt(document.json().flat); });
        report.steps.emplace_back(step->className);
    }
}

Surroundings surroundingsOf(const Journey& journey) {
    return {journey.location, [&journey](const QString& name) { return journey.sourceFiles.read(name); },
            [&journey](const QString& name, const QByteArray& content) {
                return journey.targetFiles.write(name, content);
            }};
}

/// Runs an adaptor outside the numbering in the form that the document has.
void runUnnumbered(const char* className, Document& document, const Surroundings& surroundings,
                   Runner& runner) {
    const Unnumbered* adaptor = findUnnumbered(className);
    runner.run(className, [&] {
        if (document.isXml())
            adaptor->makeXml(surroundings)->adapt(document.xml());
        else
            adaptor->makeJson(surroundings)->adapt(document.json().flat);
    });
}

/// All that happens to an archive while it is one.
void runXmlRoad(Document& document, const Journey& journey, const Surroundings& surroundings, Runner& runner,
                Report& report, Archive::Internal::Outline& outline) {
    runUnnumbered("ThemeTransitionsAndSceneAdaptor", document, surroundings, runner);
    for (const Step* step :
         stepsFor(Bundle::Backend::Xml, *document.version, std::min(journey.to, lastXmlVersion))) {
        runner.run(std::string(step->className), [&] { step->makeXml()->adapt(document.xml()); });
        report.steps.emplace_back(step->className);
        outline.endStep();
    }
    if (journey.to > lastXmlVersion)
        runUnnumbered("ImportDescriptionAdaptor", document, surroundings, runner);
}

/// The adaptor of that name as a call on the document in its form; empty where there is none in that form.
std::function<void()> adaptorCall(Document& document, const std::string& className, const Journey& journey) {
    const Surroundings surroundings = surroundingsOf(journey);
    const Step* step = findStep(className);
    const Unnumbered* unnumbered = findUnnumbered(className);
    if (!step && !unnumbered)
        throw Error(Problem::WrongUse,
                    "there is no step " + className + "; \"adaptors steps\" lists them all");
    if (document.isXml()) {
        if (step && step->hasXml())
            return [&document, step] { step->makeXml()->adapt(document.xml()); };
        if (unnumbered && unnumbered->makeXml)
            return [&document, unnumbered, surroundings] {
                unnumbered->makeXml(surroundings)->adapt(document.xml());
            };
        return {};
    }
    if (step && step->hasJson())
        return [&document, step] { step->makeJson()->adapt(document.json().flat); };
    if (unnumbered && unnumbered->makeJson)
        return [&document, unnumbered, surroundings] {
            unnumbered->makeJson(surroundings)->adapt(document.json().flat);
        };
    return {};
}

/// Which of the clips that the document had at first are reached at last. Ids of an archive live on in JSON,
/// but for objects that had to share theirs with another.
void countClips(const std::vector<Clip>& before, const Document& document, Report& report) {
    const auto reachable = findReachable(document);
    const auto idNow = [&](unsigned long long id) {
        if (document.isXml() || report.formBefore == Bundle::Backend::Json)
            return id;
        const auto& redirected = document.json().notes.redirected;
        const auto it = redirected.find(id);
        return it == redirected.end() ? id : it->second;
    };
    report.clipsBefore = before.size();
    for (const Clip& clip : before) {
        if (!reachable.count(idNow(clip.id)))
            report.lostClips.push_back(clip);
    }
    report.clipsAfter = report.clipsBefore - report.lostClips.size();
}

} // namespace

bool Report::hasErrors() const {
    return std::any_of(log.begin(), log.end(), [](const LogLine& line) { return line.isError(); });
}

std::vector<const Step*> stepsFor(Bundle::Backend form, int from, int to) {
    std::vector<const Step*> steps;
    for (const Step& step : chain()) {
        const bool isForm = form == Bundle::Backend::Json || step.hasXml();
        if (step.number > from && step.number <= to && isForm)
            steps.push_back(&step);
    }
    return steps;
}

Report migrate(Document& document, const Journey& journey) {
    checkVersions(document, journey);
    Report report;
    report.formBefore = document.form();
    report.from = *document.version;
    const bool wasXml = document.isXml();
    report.objectsBefore = countObjects(document);
    std::optional<Archive::Internal::Outline> outline;
    if (auto facts = std::exchange(document.facts, std::nullopt))
        outline.emplace(document.xml(), std::move(*facts));
    else if (wasXml)
        outline.emplace(document.xml());
    const std::vector<Clip> clips = listClips(document);
    const Surroundings surroundings = surroundingsOf(journey);
    {
        Runner runner(document, journey, report);
        if (wasXml) {
            checkRootObject(document.xml(), journey);
            sortRootObjects(document.xml());
        }
        runner.watch({});
        if (wasXml) {
            runUnnumbered("OverlayFileContentReadAdaptor", document, surroundings, runner);
            runXmlRoad(document, journey, surroundings, runner, report, *outline);
            if (journey.to > lastXmlVersion)
                convertToJson(document, journey, runner);
            outline.reset();
        }
        if (!document.isXml()) {
            runJsonSteps(document, journey.to, runner, report);
            runUnnumbered("PortableLoadAdaptor", document, surroundings, runner);
            if (!wasXml)
                runUnnumbered("OverlayFileContentReadAdaptor", document, surroundings, runner);
            report.duplicateIds = document.json().notes.duplicateIds;
        }
    }
    document.version = report.to = journey.to;
    report.formAfter = document.form();
    report.objectsAfter = countObjects(document);
    countClips(clips, document, report);
    return report;
}

Report runOne(Document& document, const std::string& className, const Journey& journey) {
    const auto adapt = adaptorCall(document, className, journey);
    if (!adapt)
        fail(Problem::WrongUse, journey,
             className + " has no form for a document that is " + formName(document.form()).toStdString());
    Report report;
    report.formBefore = report.formAfter = document.form();
    report.from = report.to = document.version.value_or(0);
    report.objectsBefore = countObjects(document);
    {
        Runner runner(document, journey, report);
        runner.run(className, adapt);
    }
    report.steps.push_back(className);
    report.objectsAfter = countObjects(document);
    return report;
}

Serialized save(Document document, const Journey& journey, Report& report) {
    if (!document.isXml()) {
        Surroundings surroundings = surroundingsOf(journey);
        surroundings.location = journey.target;
        Runner runner(document, journey, report);
        runUnnumbered("PortableSaveAdaptor", document, surroundings, runner);
        if (journey.toBundle)
            runUnnumbered("OverlayFileContentWriteAdaptor", document, surroundings, runner);
    }
    return serialize(std::move(document));
}

void useStandInFolders() {
    const auto standIn = [](const char* marker) { return QStringLiteral("/") + QString::fromLatin1(marker); };
    if (Settings::legacyPackageDeploymentPath().isEmpty())
        Settings::setLegacyPackageDeploymentPath(standIn("#PACKAGES_ROOT#"));
    if (Settings::aiModelsPath().isEmpty())
        Settings::setAiModelsPath(standIn("#AI_MODELS_ROOT#"));
    if (Settings::downloadableResourcesPath().isEmpty())
        Settings::setDownloadableResourcesPath(standIn("#DOWNLOADABLE_ROOT#"));
}

} // namespace Reader
