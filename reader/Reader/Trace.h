#pragma once

#include "Reader/Document.h"
#include "Reader/Files.h"
#include "Reader/MigrationOptions.h"

#include <QByteArray>
#include <QString>

#include <string>
#include <vector>

namespace Reader {

/// Writes the document to a file after each adaptor that changed it, to find the adaptor that broke it. Call
/// note() from MigrationOptions::watch.
///
/// Threads: may be used only by the thread of its migration.
class Trace {
public:
    /// An adaptor that ran: its position among these, from 1, and the file with the document after it.
    struct Entry {
        int place;
        std::string className;
        QString file; ///< empty if the adaptor changed nothing
    };

    /// Files are written to `folder`, which is created if it is missing.
    explicit Trace(const QString& folder, Existing existing = Existing::Refuse)
        : m_folder(folder), m_existing(existing) {}

    /// Writes the document if the part changed it. The file is named by position and class,
    /// "07-V12_ClipPreviewAdaptor.xml". Throws Error.
    void note(const MigrationPart& part, const Document& document);

    const std::vector<Entry>& entries() const { return m_entries; }

private:
    QString write(const Entry& entry, const Document& document) const;

    QString m_folder;
    Existing m_existing;
    int m_version = 0; ///< the current version of the document
    QByteArray m_last; ///< the document after the last part
    std::vector<Entry> m_entries;
};

} // namespace Reader
