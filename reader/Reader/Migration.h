#pragma once

#include "Reader/AdaptorTable.h"
#include "Reader/Document.h"
#include "Reader/Losses.h"
#include "Reader/MigrationOptions.h"
#include "Reader/MigrationReport.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Archive::Internal {
class ArchiveEditor;
}

namespace Reader {

/// Brings one project to a newer schema version. The stages, in the order in which a document passes them:
///
///   parse()   bytes become a document of one of the two forms
///   run()     an archive: texts come back from side files, steps run; where the version asked for is JSON, the
///             conversion runs, and then the steps on JSON; paths become absolute
///             JSON: steps run, paths become absolute, texts come back from side files
///   save()    paths become portable, texts move out to side files
///   write()   the document becomes bytes
///
/// Threads: one migration belongs to one thread at a time. Any number of them run at once in a process: each has its
/// own document, folders and log lines.
class Migration {
public:
    Migration(Document document, MigrationOptions options);
    ~Migration();
    Migration(Migration&& other) noexcept;
    Migration& operator=(Migration&& other) noexcept;

    /// Brings the document to schema version `options.to`. It must have a version. Throws Error; the document is not
    /// to be saved then.
    void run();

    /// Runs one adaptor, with or without a number, on the document in the form that it is in, and nothing else.
    /// Throws Error.
    void runOnly(const std::string& className);

    /// Makes the document ready to be saved and gives its bytes; with `toBundle` texts move out to side files. Uses
    /// the document up. Throws Error.
    QByteArray save(bool toBundle = false);

    /// The bytes of the document as it is now. Uses the document up.
    QByteArray write();

    /// Not to be looked at once the document is used up.
    const Document& document() const { return m_document; }
    const MigrationReport& report() const { return m_report; }

private:
    void openArchive();
    void checkVersions() const;
    void noteInput();
    void migrateArchive();
    void migrateJson();
    void convert();
    void compareResult();
    void noteLosses();

    void runStage(Stage stage, const QString& location);
    void runAdaptor(const std::string& name, const AdaptorRow& row, const AdaptorContext& context);
    void runNamed(const std::string& name, const std::function<void()>& adapt);
    AdaptorContext contextAt(const QString& location) const;
    void finish(MigrationPart::Kind kind, const std::string& name) const;

    MigrationOptions m_options;
    Document m_document;
    std::unique_ptr<Archive::Internal::ArchiveEditor> m_archive; ///< of the document while it is an archive
    MigrationReport m_report;
    LossTracker m_losses;
};

} // namespace Reader
