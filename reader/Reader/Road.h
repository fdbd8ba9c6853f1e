#pragma once

#include "Reader/Chain.h"
#include "Reader/Contents.h"
#include "Reader/Document.h"
#include "Reader/SideFiles.h"
#include "Reader/StepLog.h"

#include <QString>

#include <functional>
#include <string>
#include <vector>

namespace Reader {

/// Where a document comes from and where it is to go.
struct Journey {
    QString name;     ///< the file's name for errors
    QString location; ///< path of the project as it is read; relative paths count from its folder
    QString target;   ///< path of the project as it will be saved
    int to = currentVersion;
    SideFiles sourceFiles{QString()}; ///< side files that the project is read with
    SideFiles targetFiles{QString()}; ///< and saved with, if `toBundle`
    bool toBundle = false;            ///< move texts out to side files when saving
    /// Looks at the document: before the first adaptor under an empty name, then behind each that migrate() runs.
    std::function<void(const std::string& className, const Document& document)> watch = {};
};

/// What happened on the road.
struct Report {
    Bundle::Backend formBefore = Bundle::Backend::Xml;
    Bundle::Backend formAfter = Bundle::Backend::Xml;
    int from = 0;
    int to = 0;
    std::vector<std::string> steps;   ///< class names of the steps that ran, in order
    std::vector<std::string> skipped; ///< steps that exist for archives only and passed a JSON document by
    std::vector<LogLine> log;
    ObjectCounts objectsBefore;
    ObjectCounts objectsAfter;
    std::size_t clipsBefore = 0;
    std::size_t clipsAfter = 0;                   ///< of those before, how many the result still reaches
    std::vector<Clip> lostClips;                  ///< the others
    std::vector<unsigned long long> duplicateIds; ///< ids that two objects had; the later ones got new ids

    bool hasErrors() const;
};

/// Brings a document to schema version `journey.to`, with all that belongs to loading it. The document must have
/// a version. Throws Error; what is left in `document` then is not to be saved.
Report migrate(Document& document, const Journey& journey);

/// Makes a migrated document ready and gives its bytes. Adds to the report what saving tells.
Serialized save(Document document, const Journey& journey, Report& report);

/// Runs one adaptor, numbered or not, on a document in the form that it is in, and nothing else. Throws Error.
Report runOne(Document& document, const std::string& className, const Journey& journey);

/// Makes the markers of saved paths survive where the editor's folders are not known: each unset folder gets a
/// stand-in that no real path lies below.
void useStandInFolders();

/// The steps that a document of that form and version needs to get to `to`.
std::vector<const Step*> stepsFor(Bundle::Backend form, int from, int to);

} // namespace Reader
