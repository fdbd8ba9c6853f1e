#pragma once

#include "Adaptors/Backend.h"
#include "Adaptors/JsonStep.h"
#include "Adaptors/PortableFolders.h"
#include "Adaptors/XmlStep.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

// Threads: the table is constant. All functions are thread-safe.

namespace Reader {

/// The newest schema version: the one after the last step.
inline constexpr int currentVersion = 77;

/// The last schema version whose documents are XML archives; all later ones are JSON.
inline constexpr int lastXmlVersion = 62;

/// The first schema version of which there are JSON documents: some were saved that way before it became the rule.
inline constexpr int firstJsonVersion = 59;

/// What an adaptor may need beside the document.
///
/// Threads: the side file functions are called on the thread that runs the adaptor.
struct AdaptorContext {
    QString location;                                            ///< path of the project file
    Bundle::PortableFolders folders;                             ///< of the installed editor
    std::function<QByteArray(const QString& name)> readSideFile; ///< empty if there are no side files
    std::function<bool(const QString& name, const QByteArray& content)>
        writeSideFile; ///< returns false on failure
};

/// When an adaptor runs. The stages are listed in the order in which they run on an archive.
enum class Stage {
    AfterLoading,     ///< first on an archive, last on a document that was read as JSON
    BeforeSteps,      ///< on every archive of any version
    Step,             ///< on documents whose version is below the adaptor's number
    BeforeConversion, ///< on every archive that becomes JSON
    AfterSteps,       ///< on every JSON document
    BeforeSaving,     ///< on every JSON document that is saved
    BeforeBundling,   ///< on JSON documents that are saved together with side files
    OnRequest,        ///< only if it is requested by name
};

/// A row of the table: an adaptor, when it runs, and how to create it.
///
/// Threads: a row is constant. An adaptor may be used only by the thread that created it.
class AdaptorRow {
public:
    using MakeXml = std::unique_ptr<Bundle::XmlStep> (*)(const AdaptorContext&);
    using MakeJson = std::unique_ptr<Bundle::JsonStep> (*)(const AdaptorContext&);

    constexpr AdaptorRow(Stage runsAt, int schemaVersion, std::string_view name, std::string_view sentence,
                         MakeXml xml, MakeJson json)
        : stage(runsAt), number(schemaVersion), className(name), summary(sentence), m_makeXml(xml),
          m_makeJson(json) {}

    Stage stage;
    int number;                 ///< the schema version after a step; 0 for all other adaptors
    std::string_view className; ///< without its namespace
    std::string_view summary;   ///< one sentence for users

    bool isStep() const { return stage == Stage::Step; }
    bool hasXml() const { return m_makeXml != nullptr; }
    bool hasJson() const { return m_makeJson != nullptr; }

    /// Create the adaptor for documents of that form. The row must have the form: see hasXml() and hasJson().
    std::unique_ptr<Bundle::XmlStep> makeXml(const AdaptorContext& context = {}) const {
        return m_makeXml(context);
    }
    std::unique_ptr<Bundle::JsonStep> makeJson(const AdaptorContext& context = {}) const {
        return m_makeJson(context);
    }

private:
    MakeXml m_makeXml;
    MakeJson m_makeJson;
};

/// All adaptors, in the order in which they run on an archive; those on request come last.
std::span<const AdaptorRow> adaptorTable();

/// The adaptor of that class name, with or without "Project::"; null if there is none.
const AdaptorRow* findAdaptor(std::string_view className);

/// The adaptors of a stage other than Stage::Step, in order.
std::vector<const AdaptorRow*> adaptorsOf(Stage stage);

/// The steps above version `from` and up to `to`, in order. For an archive, only steps that have an XML form.
/// For JSON all steps: one for archives only is reported as skipped.
std::vector<const AdaptorRow*> stepsFor(Bundle::Backend form, int from, int to);

/// The steps that run on a document of that form and version up to version `to`, before and after the
/// conversion.
std::vector<const AdaptorRow*> stepsToRun(Bundle::Backend form, int from, int to);

} // namespace Reader
