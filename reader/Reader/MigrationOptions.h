#pragma once

#include "Adaptors/PortableFolders.h"
#include "Reader/AdaptorTable.h"
#include "Reader/MigrationReport.h"
#include "Reader/SideFiles.h"

#include <QString>

#include <functional>
#include <string>
#include <vector>

namespace Reader {

class Document;

/// A completed part of a migration.
struct MigrationPart {
    enum class Kind {
        Preparation, ///< the document was checked and its root objects sorted; no adaptor has run yet
        Repair,      ///< a repair was made
        Adaptor,     ///< an adaptor, or the conversion
        Comparison,  ///< the result was compared with the input
    };
    Kind kind;
    /// The class name of an adaptor, "XmlToJson" for the conversion, the name of a repair; empty for other kinds.
    std::string name;
};

/// The input, the target and the settings of a migration.
///
/// Threads: a plain value. Each migration has its own copy.
struct MigrationOptions {
    QString name;     ///< the file's name in errors
    QString location; ///< path of the project file that is read; relative paths are relative to its folder
    QString target;   ///< path of the project file that will be written
    int to = currentVersion;
    bool repair =
        false; ///< whether repairs are made where the document needs them; see Repairs/RepairTable.h
    OpeningReport opening = {};       ///< how the document was opened, for the report
    SideFiles sourceFiles{QString()}; ///< side files of the input
    SideFiles targetFiles{QString()}; ///< side files of the output
    /// The installed editor's folders. If one is empty, its marker is kept in paths.
    Bundle::PortableFolders folders = {};
    /// Gives the document as it was read. Called at the end where something of it was lost, to find the step at which
    /// that happened; the migration runs a second time then. Empty: losses are reported without their step.
    std::function<Document()> reread = {};
    /// Called behind each part, on the migration's thread, with the document as it is then.
    std::function<void(const MigrationPart& part, const Document& document)> watch = {};
};

} // namespace Reader
