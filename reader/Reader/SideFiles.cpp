#include "Reader/SideFiles.h"

#include "Reader/Error.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <glog/logging.h>
#include <sys/stat.h>
#include <unistd.h>

#include <utility>

namespace Reader {
namespace {

constexpr qint64 greatestSize = qint64(256) << 20; // in bytes, far above any real text of a title

void refuse(const QString& name, const std::string& reason) {
    LOG(ERROR) << "side file \"" << name.toStdString() << "\": " << reason;
}

/// The descriptor of a file that is open for reading; invalid on failure.
class Descriptor {
public:
    explicit Descriptor(const QString& path)
        // Without blocking: opening a pipe must not wait for its writer.
        : m_number(
              open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK)) {}
    ~Descriptor() {
        if (m_number >= 0)
            close(m_number);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int number() const { return m_number; }
    bool isRegularFile() const {
        struct stat status = {};
        return m_number >= 0 && fstat(m_number, &status) == 0 && S_ISREG(status.st_mode);
    }

private:
    int m_number;
};

} // namespace

SideFiles::SideFiles(const QString& folder, const WriteOptions& options,
                     std::shared_ptr<UnfinishedParts> made)
    : m_folder(folder), m_options(options), m_made(std::move(made)) {
    m_options.onlyRegularFiles = true;
}

QByteArray SideFiles::read(const QString& name) const {
    if (m_folder.isEmpty()) {
        refuse(name, "the project was not read from a folder that could hold it");
        return {};
    }
    const QString root = QFileInfo(m_folder).canonicalFilePath();
    const QString path = QFileInfo(QDir(root).filePath(name)).canonicalFilePath();
    const bool leaves = QDir::isAbsolutePath(name) || QDir::cleanPath(name).startsWith(QLatin1String(".."));
    if (leaves || (!path.isEmpty() && !path.startsWith(root + QLatin1Char('/')))) {
        refuse(name, "refused, since it lies outside the project's folder");
        return {};
    }
    if (path.isEmpty()) {
        refuse(name, "missing");
        return {};
    }
    const Descriptor descriptor(path);
    QFile file;
    if (!descriptor.isRegularFile() || !file.open(descriptor.number(), QIODevice::ReadOnly) ||
        file.size() > greatestSize) {
        refuse(name, "refused, since it is no regular file of a sensible size");
        return {};
    }
    return file.readAll();
}

bool SideFiles::write(const QString& name, const QByteArray& content) const {
    if (m_folder.isEmpty())
        return false;
    const QString path = QDir(m_folder).filePath(name);
    const QFileInfo present(path);
    // Writing through a link could leave the folder, and writing to a pipe could block.
    if (present.isSymLink() || (present.exists() && !present.isFile())) {
        refuse(name, "refused, since no regular file is there, so the text stays in the document");
        return false;
    }
    const bool isNew = !present.exists();
    if (m_options.existing == Existing::Refuse && !isNew) {
        refuse(name, "exists already, so the text stays in the document");
        return false;
    }
    try {
        WriteOptions options = m_options;
        if (isNew) // and still is when it is written
            options.existing = Existing::Refuse;
        PendingFile file(path, content, options);
        const HeldSignals held;
        file.commit();
        if (m_made && isNew)
            m_made->add(QFile::encodeName(path), Unfinished::Kind::File);
        return true;
    } catch (const Error& error) {
        refuse(name, std::string("not written, so the text stays in the document: ") + error.what());
        return false;
    }
}

} // namespace Reader
