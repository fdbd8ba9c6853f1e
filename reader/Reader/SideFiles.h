#pragma once

#include <QByteArray>
#include <QString>

namespace Reader {

/// The side files of a project, in one folder. Their names come from documents and may be hostile: a name is
/// refused if it leads out of the folder, by "..", by an absolute path or by a link, or if it is no regular
/// file. Failures are logged at ERROR.
///
/// Threads: a plain value; read() and write() are thread-safe.
class SideFiles {
public:
    /// If `folder` is empty, nothing is read or written. Existing files are replaced only if `replace` is
    /// set.
    explicit SideFiles(const QString& folder, bool replace = false);

    /// The content of a file; empty for one that is refused or can't be read.
    QByteArray read(const QString& name) const;

    /// Writes a file completely or not at all, and never through a link. Returns whether it was written.
    bool write(const QString& name, const QByteArray& content) const;

private:
    QString m_folder;
    bool m_replace;
};

} // namespace Reader
