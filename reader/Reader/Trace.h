#pragma once

#include "Reader/Document.h"
#include "Reader/Files.h"
#include "Reader/MigrationOptions.h"

#include <QByteArray>
#include <QString>

#include <string>
#include <vector>

namespace Reader {

/// Writes a document after each adaptor and repair that changed it, to find the one that broke it. MigrationOptions::watch calls
/// note().
///
/// Threads: belongs to the thread of its migration.
class Trace {
public:
    /// The place of an adaptor or a repair among those that ran, from 1, and the file with the document as it was after
    /// it.
    struct Entry {
        int place;
        std::string className; ///< or the name of the repair
        QString file;          ///< empty where nothing was changed
        bool isRepair = false;
        QString diff = {}; ///< a file with the lines that changed; empty for none
    };

    enum class Diffs { None, Unified };

    /// Files go to `folder`, which is made where it is missing. What is no regular file is never written over.
    explicit Trace(const QString& folder, const WriteOptions& options = {Existing::Refuse},
                   Diffs diffs = Diffs::None);

    /// Files are called by place and class name, "07-V12_ClipPreviewAdaptor.xml"; a diff has ".diff" behind that. It
    /// compares JSON with one value a line; there is none for the conversion to JSON. Throws Error.
    void note(const MigrationPart& part, const Document& document);

    const std::vector<Entry>& entries() const { return m_entries; }

private:
    QString write(const Entry& entry, const Document& document) const;
    QString writeDiff(const Entry& entry, const QByteArray& before, const Document& document) const;

    QString m_folder;
    WriteOptions m_options;
    Diffs m_diffs;
    Bundle::Backend m_form = Bundle::Backend::Xml; ///< of the document after the last part
    int m_version = 0;                             ///< that the document has reached
    QByteArray m_last;                             ///< the document after the last part
    std::vector<Entry> m_entries;
};

} // namespace Reader
