#pragma once

#include "Reader/AdaptorTable.h"
#include "Reader/Document.h"
#include "Reader/Losses.h"
#include "Reader/MigrationOptions.h"
#include "Reader/MigrationReport.h"

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Archive::Internal {
class ArchiveEditor;
class FlatEditor;
} // namespace Archive::Internal

namespace Repairs {
class Changes;
struct Place;
class RepairRow;
} // namespace Repairs

namespace Reader {

/// Migrates one project to a newer schema version. The functions, in the order of the calls:
///
///   parse()   reads bytes into a document of one of the two forms
///   run()     for an archive: reads texts from side files and runs the steps; if the requested version is JSON,
///             runs the conversion and the steps on JSON, and makes paths absolute
///             for JSON: runs the steps, makes paths absolute, reads texts from side files
///   save()    makes paths portable, writes texts to side files, gives the bytes
///   write()   gives the bytes without these changes
///
/// With `options.repair`, repairs are made between these parts, where the document needs them; see
/// Repairs/RepairTable.h.
///
/// Threads: a migration may be used by one thread at a time. Several migrations may run at once in a process:
/// each has its own document, folders and log lines.
class Migration {
public:
    Migration(Document document, MigrationOptions options);
    ~Migration();
    Migration(Migration&& other) noexcept;
    Migration& operator=(Migration&& other) noexcept;

    /// Migrates the document to schema version `options.to`. The document must have a version. If it throws
    /// Error, the document must not be saved.
    void run();

    /// Runs a single adaptor of any stage on the document, without conversion. Throws Error.
    void runOnly(const std::string& className);

    /// Runs the adaptors for saving and gives the bytes of the document. With `toBundle`, texts move to side
    /// files. The document can't be used afterwards. Throws Error.
    QByteArray save(bool toBundle = false);

    /// Gives the bytes of the document as it is. The document can't be used afterwards.
    QByteArray write();

    /// Frees the archive behind its conversion, which the migration keeps until it is destroyed: freeing takes a tenth
    /// of the time of a migration.
    void freeConverted();

    /// Must not be called after save() or write().
    const Document& document() const { return m_document; }
    const MigrationReport& report() const { return m_report; }

private:
    void openArchive();
    void checkVersions() const;
    void noteInput();
    void migrateArchive();
    Archive::Internal::FlatEditor& flat();
    void migrateJson();
    void convert();
    void compareResult();
    void noteLosses();

    void repairBefore(std::string_view place);
    bool makeRepair(const Repairs::RepairRow& row, const Repairs::Place& place, Repairs::Changes& changes);
    void noteRepair(RepairMade repair);

    void runStage(Stage stage, const QString& location);
    void runAdaptor(const std::string& name, const AdaptorRow& row, const AdaptorContext& context);
    void runNamed(const std::string& name, const std::function<void()>& adapt);
    std::optional<LoggedObject> subject() const;
    void findClips(std::size_t firstLine);
    AdaptorContext contextAt(const QString& location) const;
    void finish(MigrationPart::Kind kind, const std::string& name) const;

    MigrationOptions m_options;
    Document m_document;
    std::unique_ptr<Archive::Internal::ArchiveEditor> m_archive;   ///< null unless the document is an archive
    std::unique_ptr<Archive::Internal::ArchiveEditor> m_converted; ///< the archive behind its conversion
    std::unique_ptr<Archive::Internal::FlatEditor> m_flat; ///< null until it is needed; of a JSON document
    MigrationReport m_report;
    LossTracker m_losses;
};

} // namespace Reader
