#pragma once

#include "Adaptors/PortableFolders.h"
#include "Reader/AdaptorTable.h"
#include "Reader/SideFiles.h"

#include <QString>

#include <functional>
#include <string>

namespace Reader {

class Document;

/// A part of a migration that has ended.
struct MigrationPart {
    enum class Kind {
        Preparation, ///< the document was looked at and put in order; no adaptor has run yet
        Adaptor,     ///< an adaptor, or the conversion
        Comparison,  ///< the result was compared with what the document was
    };
    Kind kind;
    std::string name; ///< the class name of an adaptor, "XmlToJson" for the conversion; otherwise empty
};

/// Where a document comes from, where it is to go, and with what.
///
/// Threads: a plain value. Migrations of several threads take options of their own.
struct MigrationOptions {
    QString name;     ///< the file's name for errors
    QString location; ///< path of the project as it is read; relative paths count from its folder
    QString target;   ///< path of the project as it will be saved
    int to = currentVersion;
    SideFiles sourceFiles{QString()}; ///< side files that the project is read with
    SideFiles targetFiles{QString()}; ///< side files that it may be saved with
    /// The installed editor's folders. Where one is empty, its marker stays in paths as it is.
    Bundle::PortableFolders folders = {};
    /// Gives the document as it was read. Called at the end where something of it was lost, to find the step at which
    /// that happened; the migration runs a second time then. Empty: losses are reported without their step.
    std::function<Document()> reread = {};
    /// Called behind each part, on the migration's thread, with the document as it is then.
    std::function<void(const MigrationPart& part, const Document& document)> watch = {};
};

} // namespace Reader
