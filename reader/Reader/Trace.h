#pragma once

#include "Reader/Document.h"
#include "Reader/Files.h"

#include <QByteArray>
#include <QString>

#include <string>
#include <vector>

namespace Reader {

/// Writes a document after each adaptor that changed it, for whoever hunts the one that broke it. Give note() to a
/// journey as its `watch`.
class Trace {
public:
    /// The adaptor's place on the road, from 1, and the file that holds what it made of the document.
    struct Entry {
        int place;
        std::string className;
        QString file; ///< empty where the adaptor changed nothing
    };

    /// Files go to `folder`, which is made where it is missing.
    explicit Trace(const QString& folder, Existing existing = Existing::Refuse)
        : m_folder(folder), m_existing(existing) {}

    /// Files are called by place and class name, "07-V12_ClipPreviewAdaptor.xml". Throws Error.
    void note(const std::string& className, const Document& document);

    const std::vector<Entry>& entries() const { return m_entries; }

private:
    QString write(const Entry& entry, const Document& document) const;

    QString m_folder;
    Existing m_existing;
    int m_version = 0; ///< that the document has reached
    QByteArray m_last; ///< the document as it was last seen
    std::vector<Entry> m_entries;
};

} // namespace Reader
