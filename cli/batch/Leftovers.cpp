#include "batch/Leftovers.h"

#include "batch/Finder.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <optional>
#include <vector>

namespace Batch::Leftovers {
namespace {

std::optional<struct stat> statusOf(const QByteArray& path) {
    struct stat status = {};
    return lstat(path.constData(), &status) == 0 ? std::optional(status) : std::nullopt;
}

QByteArray folderOf(const QByteArray& path) {
    return path.left(path.lastIndexOf('/'));
}

/// Whether the text is digits, the separator and digits again.
bool isTwoNumbers(const QByteArray& text, char separator) {
    bool first = false;
    bool second = false;
    const int place = text.indexOf(separator);
    text.left(place).toULongLong(&first);
    text.mid(place + 1).toULongLong(&second);
    return place > 0 && first && second;
}

/// Whether this is a temporary file for the name, as Reader::TemporaryFile makes them: "NAME.4711-1.tmp".
bool isTemporaryOf(const QByteArray& file, const QByteArray& name) {
    constexpr const char* suffix = ".tmp";
    return file.startsWith(name + '.') && file.endsWith(suffix) &&
           isTwoNumbers(file.mid(name.size() + 1).chopped(4), '-');
}

/// The name of the side file, "content_1.svg", that the file is or is a temporary file of; empty for none.
QByteArray sideFileOf(const QByteArray& file) {
    const int end = file.indexOf(".svg");
    bool isNumber = false;
    file.mid(8, end - 8).toULongLong(&isNumber);
    return file.startsWith("content_") && isNumber ? file.left(end + 4) : QByteArray();
}

void removeFilesIn(const QByteArray& folder, const std::function<bool(const QByteArray&)>& isLeft) {
    for (const QByteArray& name : namesIn(folder).value_or(std::vector<QByteArray>())) {
        if (isLeft(name))
            unlink((folder + '/' + name).constData());
    }
}

bool hasSideFiles(const QByteArray& folder) {
    const auto names = namesIn(folder).value_or(std::vector<QByteArray>());
    return std::any_of(names.begin(), names.end(),
                       [](const QByteArray& name) { return sideFileOf(name) == name; });
}

bool haveSameBytes(const QByteArray& one, const QByteArray& other) {
    QFile first(QFile::decodeName(one));
    QFile second(QFile::decodeName(other));
    if (!first.open(QIODevice::ReadOnly) || !second.open(QIODevice::ReadOnly) ||
        first.size() != second.size())
        return false;
    constexpr qint64 piece = 1 << 20;
    while (!first.atEnd()) {
        if (first.read(piece) != second.read(piece))
            return false;
    }
    return true;
}

/// The first name that a backup could get.
QByteArray freeBackup(const QByteArray& path) {
    QByteArray name = path + ".bak";
    for (int number = 2; statusOf(name); ++number)
        name = path + ".bak" + QByteArray::number(number);
    return name;
}

qint64 changeOf(const struct stat& status) {
    constexpr qint64 second = 1000000000;
    return status.st_ctim.tv_sec * second + status.st_ctim.tv_nsec;
}

/// Whether the file is the result of the run that made the backup: it was written after the backup's file was made and
/// before the backup got its name. Also false where the file system does not know when a file was made.
bool isResult(const struct stat& file, const struct stat& backup, const QByteArray& backupPath) {
    constexpr qint64 millisecond = 1000000;
    const QDateTime made = QFileInfo(QFile::decodeName(backupPath)).birthTime();
    return made.isValid() && timeOf(file) >= made.toMSecsSinceEpoch() * millisecond &&
           timeOf(file) <= changeOf(backup);
}

void removeBackup(const Row& row) {
    const auto backup = statusOf(row.backup);
    const auto file = statusOf(row.path);
    if (!backup || !file || backup->st_ino == file->st_ino)
        return;
    if (haveSameBytes(row.path, row.backup)) // the result was not put in place
        unlink(row.backup.constData());
    else if (backup->st_size == row.size && timeOf(*backup) == row.time &&
             isResult(*file, *backup, row.backup))
        rename(row.backup.constData(), row.path.constData()); // nobody has changed either since
}

} // namespace

void noteBefore(Row& row, const QByteArray& results, bool isInPlace) {
    row.backup = isInPlace ? freeBackup(row.path) : QByteArray();
    if (row.output.isEmpty())
        return;
    const QByteArray output = results + '/' + row.output;
    row.isFresh = !statusOf(output) && !(row.isBundle && hasSideFiles(folderOf(output)));
}

void remove(const Row& row, const QByteArray& results, bool isInPlace) {
    if (isInPlace) {
        const QByteArray name = row.path.mid(row.path.lastIndexOf('/') + 1);
        removeFilesIn(folderOf(row.path), [&](const QByteArray& file) {
            return isTemporaryOf(file, name) || isTemporaryOf(file, name + ".bak");
        });
        removeBackup(row);
        return;
    }
    if (row.output.isEmpty())
        return;
    const QByteArray output = results + '/' + row.output;
    const QByteArray name = output.mid(output.lastIndexOf('/') + 1);
    removeFilesIn(folderOf(output), [&](const QByteArray& file) {
        const QByteArray sideFile = row.isBundle ? sideFileOf(file) : QByteArray();
        if (isTemporaryOf(file, name) || (!sideFile.isEmpty() && isTemporaryOf(file, sideFile)))
            return true;
        return row.isFresh && (file == name || (!sideFile.isEmpty() && file == sideFile));
    });
}

} // namespace Batch::Leftovers
