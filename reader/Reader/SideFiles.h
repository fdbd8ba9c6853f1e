#pragma once

#include "Reader/Files.h"
#include "Reader/Unfinished.h"

#include <QByteArray>
#include <QString>

#include <memory>

namespace Reader {

/// The side files of a project, in one folder. Names come from documents and are hostile until shown otherwise: one
/// that leaves the folder, by "..", by an absolute path or by a link, or that is no regular file, is refused.
/// What goes wrong is logged at ERROR.
///
/// Threads: a plain value; may be used from any thread.
class SideFiles {
public:
    /// Without a folder, an empty one, nothing is read or written. What is no regular file is never written over.
    /// New files are added to `made`, where that is given, so that they go again with a project that is not written.
    explicit SideFiles(const QString& folder, const WriteOptions& options = {Existing::Refuse},
                       std::shared_ptr<UnfinishedParts> made = {});

    /// The content of a file; nothing for one that is refused or can't be read.
    QByteArray read(const QString& name) const;

    /// Writes a file as a whole or not at all, and never through a link; whether it is there now.
    bool write(const QString& name, const QByteArray& content) const;

private:
    QString m_folder;
    WriteOptions m_options;
    std::shared_ptr<UnfinishedParts> m_made;
};

} // namespace Reader
