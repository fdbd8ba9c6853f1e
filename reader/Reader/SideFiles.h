#pragma once

#include <QByteArray>
#include <QString>

namespace Reader {

/// The side files of a project, in one folder. Names come from documents and are hostile until shown otherwise: one
/// that leaves the folder, by "..", by an absolute path or by a link, or that is no regular file, is refused.
/// What goes wrong is logged at ERROR.
///
/// Threads: a plain value; may be used from any thread.
class SideFiles {
public:
    /// Without a folder, an empty one, nothing is read or written. Existing files are written over only with
    /// `replace`.
    explicit SideFiles(const QString& folder, bool replace = false);

    /// The content of a file; nothing for one that is refused or can't be read.
    QByteArray read(const QString& name) const;

    /// Writes a file as a whole or not at all, and never through a link; whether it is there now.
    bool write(const QString& name, const QByteArray& content) const;

private:
    QString m_folder;
    bool m_replace;
};

} // namespace Reader
