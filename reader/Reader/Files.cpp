#include "Reader/Files.h"

#include "Reader/Error.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

namespace Reader {
namespace {

[[noreturn]] void fail(Problem problem, const QString& path, const QString& reason) {
    throw Error(problem, QStringLiteral("%1: %2").arg(path, reason).toStdString());
}

/// A rename is safe on disk only when its folder is.
void syncFolder(const QString& path) {
    const QByteArray folder = QFile::encodeName(QFileInfo(path).absolutePath());
    const int descriptor = open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return; // the file is whole either way; only its name could come late
    fsync(descriptor);
    close(descriptor);
}

void writeStandardOutput(const QByteArray& bytes) {
    QFile out;
    if (!out.open(stdout, QIODevice::WriteOnly) || out.write(bytes) != bytes.size() || !out.flush())
        fail(Problem::Unwritable, QStringLiteral("standard output"), out.errorString());
}

/// A device or a pipe takes the bytes itself: a rename would put a file in its place.
void writeInto(const QString& path, const QByteArray& bytes) {
    QFile out(path);
    if (!out.open(QIODevice::WriteOnly | QIODevice::Unbuffered) || out.write(bytes) != bytes.size())
        fail(Problem::Unwritable, path, out.errorString());
}

} // namespace

QByteArray readFile(const QString& path) {
    QFile file(path);
    const bool isOpen =
        path == standardStream ? file.open(stdin, QIODevice::ReadOnly) : file.open(QIODevice::ReadOnly);
    const QString name = path == standardStream ? QStringLiteral("standard input") : path;
    if (!isOpen)
        fail(Problem::Unreadable, name, file.errorString());
    QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        fail(Problem::Unreadable, name, file.errorString());
    return bytes;
}

void writeFile(const QString& path, const QByteArray& bytes) {
    if (path == standardStream) {
        writeStandardOutput(bytes);
        return;
    }
    const QFileInfo target(path);
    if (target.exists() && !target.isFile() && !target.isDir()) {
        writeInto(path, bytes);
        return;
    }
    QSaveFile file(path);
    // commit() passes over what goes wrong with bytes that are still buffered, such as a full disk.
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush() ||
        !file.commit())
        fail(Problem::Unwritable, path, file.errorString());
    syncFolder(path);
}

QString keepBackup(const QString& path, const QByteArray& bytes) {
    for (int number = 1;; ++number) {
        const QString backup =
            path + QStringLiteral(".bak") + (number == 1 ? QString() : QString::number(number));
        QFile file(backup);
        if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
            if (QFileInfo(backup).isSymLink() || QFileInfo::exists(backup))
                continue; // an earlier backup is never written over
            fail(Problem::Unwritable, backup, file.errorString());
        }
        if (file.write(bytes) != bytes.size() || !file.flush() || fsync(file.handle()) != 0) {
            const QString reason = file.errorString();
            file.remove();
            fail(Problem::Unwritable, backup, reason);
        }
        syncFolder(backup);
        return backup;
    }
}

} // namespace Reader
