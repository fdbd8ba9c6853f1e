#include "Reader/Backups.h"

#include "Reader/Error.h"
#include "Reader/Files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>

namespace Reader {
namespace {

struct NumberedBackup {
    Backup backup;
    int number; ///< 1 for ".bak"
};

/// The number of a backup's name; nothing for any other name.
std::optional<int> numberIn(const QString& name, const QString& first) {
    if (name == first)
        return 1;
    const QString digits = name.mid(first.size());
    bool isNumber = false;
    const int number = digits.toInt(&isNumber);
    const bool isWritten = isNumber && digits == QString::number(number); // not "02" or "+2"
    return name.startsWith(first) && isWritten && number > 1 ? std::optional(number) : std::nullopt;
}

/// When the file was made, or got its name where the file system does not know that.
std::optional<QDateTime> madeAt(const QString& path) {
    struct statx status = {};
    if (statx(AT_FDCWD, QFile::encodeName(path).constData(), AT_SYMLINK_NOFOLLOW, STATX_BTIME | STATX_CTIME,
              &status) != 0)
        return std::nullopt;
    const auto& time = (status.stx_mask & STATX_BTIME) != 0 ? status.stx_btime : status.stx_ctime;
    return QDateTime::fromMSecsSinceEpoch(time.tv_sec * 1000 + time.tv_nsec / 1000000);
}

/// Gives the backup the name of a file that is gone.
void putBack(const QByteArray& backup, const QByteArray& target) {
    if (renameat2(AT_FDCWD, backup.constData(), AT_FDCWD, target.constData(), RENAME_NOREPLACE) == 0)
        return;
    if (errno == EEXIST)
        failToWrite(QFile::decodeName(target));
    // Some file systems know no such renaming. A link replaces nothing either.
    if (link(backup.constData(), target.constData()) == 0)
        unlink(backup.constData());
    else
        writeFile(QFile::decodeName(target), readFile(QFile::decodeName(backup)),
                  {Existing::Refuse, permissionsOf(QFile::decodeName(backup))});
}

} // namespace

std::vector<Backup> backupsOf(const QString& path) {
    const QString target = targetOfLinks(path);
    const QFileInfo file(target);
    const QString folder = target.left(target.lastIndexOf(QLatin1Char('/')) + 1); // as the caller wrote it
    const QString first = file.fileName() + QStringLiteral(".bak");
    std::vector<NumberedBackup> found;
    const auto candidates = QDir(file.path()).entryInfoList(QDir::Files | QDir::Hidden | QDir::NoSymLinks);
    for (const QFileInfo& candidate : candidates) {
        const auto number = numberIn(candidate.fileName(), first);
        if (const auto made = number ? madeAt(candidate.filePath()) : std::nullopt)
            found.push_back(
                {{folder + candidate.fileName(), candidate.size(), *made, candidate.lastModified()},
                 *number});
    }
    std::sort(found.begin(), found.end(), [](const NumberedBackup& a, const NumberedBackup& b) {
        return a.backup.made != b.backup.made ? a.backup.made > b.backup.made : a.number > b.number;
    });
    std::vector<Backup> backups;
    backups.reserve(found.size());
    for (NumberedBackup& one : found)
        backups.push_back(std::move(one.backup));
    return backups;
}

Restored restore(const QString& path, const Backup& backup) {
    const QString target = targetOfLinks(path);
    const QByteArray targetName = QFile::encodeName(target);
    const QByteArray backupName = QFile::encodeName(backup.path);
    if (!QFileInfo::exists(target)) {
        putBack(backupName, targetName);
        syncFolder(target);
        return {target, {}};
    }
    FileInPlace file(target); // no other run may have it
    if (renameat2(AT_FDCWD, backupName.constData(), AT_FDCWD, targetName.constData(), RENAME_EXCHANGE) == 0) {
        syncFolder(target);
        return {target, backup.path};
    }
    // Some file systems can't exchange two files. The backup is copied then, and stays.
    return {target, file.replace(readFile(backup.path)).backup};
}

} // namespace Reader
