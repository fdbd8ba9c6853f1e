#include "batch/Finder.h"

#include "Messages.h"

#include "Reader/Error.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <set>
#include <utility>

namespace Batch {
namespace {

QByteArray joined(const QByteArray& folder, const QByteArray& name) {
    return folder.isEmpty() ? name : folder.endsWith('/') ? folder + name : folder + '/' + name;
}

QByteArray lastPart(const QByteArray& path) {
    return path.mid(path.lastIndexOf('/') + 1);
}

QByteArray folderOf(const QByteArray& path) {
    const int slash = path.lastIndexOf('/');
    return slash <= 0 ? QByteArray("/") : path.left(slash);
}

bool isBelow(const QByteArray& path, const QByteArray& folder) {
    return path.startsWith(folder.endsWith('/') ? folder : folder + '/');
}

/// Where all links of a path lead; empty where that is not there.
QByteArray resolved(const QByteArray& path) {
    const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.constData(), nullptr), &std::free);
    return real ? QByteArray(real.get()) : QByteArray();
}

/// What a regular file holds. One that can't be read counts as a project, so that it is reported.
Content contentAt(const QByteArray& path) {
    const int descriptor = open(path.constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (descriptor < 0)
        return Content::Project;
    QFile file;
    if (!file.open(descriptor, QIODevice::ReadOnly | QIODevice::Unbuffered, QFileDevice::AutoCloseHandle)) {
        close(descriptor);
        return Content::Project;
    }
    Content content = Content::Unclear;
    QByteArray bytes;
    for (const int piece : {1 << 12, 1 << 16}) { // the first is enough for nearly all
        bytes += file.read(piece);
        content = contentOf(bytes);
        if (content != Content::Unclear || file.error() != QFileDevice::NoError)
            break;
    }
    // A project that is damaged is to fail, and not to be passed over.
    return content == Content::Unclear || file.error() != QFileDevice::NoError ? Content::Project : content;
}

/// "film" for "film.v77.json"; none for a name that no result has.
std::optional<QString> baseOfResult(const QByteArray& name) {
    static const QRegularExpression form(QStringLiteral("^(.+)\\.v[0-9]+\\.(xml|json)$"));
    const auto match = form.match(QFile::decodeName(name));
    return match.hasMatch() ? std::optional(match.captured(1)) : std::nullopt;
}

/// "film.xml" for "film.xml.bak2"; none for a name that no backup has.
std::optional<QByteArray> originalOf(const QByteArray& name) {
    static const QRegularExpression form(QStringLiteral("^(.+)\\.bak[0-9]*$"));
    const auto match = form.match(QFile::decodeName(name));
    return match.hasMatch() ? std::optional(QFile::encodeName(match.captured(1))) : std::nullopt;
}

/// What a run that was killed left: "film.v77.json.4711-1.tmp".
bool isTemporary(const QByteArray& name) {
    static const QRegularExpression form(QStringLiteral("^.+\\.[0-9]+-[0-9]+\\.tmp$"));
    return form.match(QFile::decodeName(name)).hasMatch();
}

bool isSideFile(const QByteArray& name) {
    return name.startsWith("content_");
}

} // namespace

qint64 timeOf(const struct stat& status) {
    constexpr qint64 second = 1000000000;
    return status.st_mtim.tv_sec * second + status.st_mtim.tv_nsec;
}

std::optional<std::vector<QByteArray>> namesIn(const QByteArray& path) {
    struct Closer {
        void operator()(DIR* folder) const { closedir(folder); }
    };
    const std::unique_ptr<DIR, Closer> folder(opendir(path.constData()));
    if (!folder)
        return std::nullopt;
    std::vector<QByteArray> names;
    errno = 0;
    while (const dirent* entry = readdir(folder.get())) {
        const QByteArray name(static_cast<const char*>(entry->d_name));
        if (name != "." && name != "..")
            names.push_back(name);
    }
    if (errno != 0)
        return std::nullopt;
    std::sort(names.begin(), names.end());
    return names;
}

QByteArray absolute(const QByteArray& path) {
    QByteArray whole =
        QFile::encodeName(QDir::cleanPath(QDir::current().absoluteFilePath(QFile::decodeName(path))));
    if (whole == "/")
        return whole;
    const QByteArray folder = resolved(folderOf(whole));
    return folder.isEmpty() ? whole : joined(folder, lastPart(whole));
}

Patterns::Patterns(const std::vector<std::string>& patterns) {
    for (const std::string& pattern : patterns) {
        const QString text = QString::fromStdString(pattern);
        m_patterns.push_back({QRegularExpression(QRegularExpression::wildcardToRegularExpression(text)),
                              text.contains(QLatin1Char('/'))});
    }
}

bool Patterns::match(const QByteArray& path) const {
    return std::any_of(m_patterns.begin(), m_patterns.end(), [&](const Pattern& pattern) {
        return pattern.expression.match(QString::fromUtf8(pattern.isForPath ? path : lastPart(path)))
            .hasMatch();
    });
}

void Finder::search(const QByteArray& path, bool isOnly) {
    const QByteArray whole = absolute(path);
    const QByteArray working = QFile::encodeName(QDir::currentPath());
    const QByteArray name = isBelow(whole, working) ? whole.mid(joined(working, {}).size()) : whole.mid(1);
    struct stat status = {};
    const bool isThere = stat(whole.constData(), &status) == 0;
    if (isThere && S_ISDIR(status.st_mode)) {
        m_root = resolved(whole);
        std::vector<Folder> folders = {{m_root, isOnly || whole == working ? QByteArray() : name}};
        while (!folders.empty() && !m_options.isStopped()) {
            const Folder folder = folders.back();
            folders.pop_back();
            searchFolder(folder, folders);
        }
        return;
    }
    Found found{isThere && m_options.followsLinks ? resolved(whole) : whole, isOnly ? lastPart(whole) : name};
    if (isThere && !S_ISREG(status.st_mode)) {
        skip(found, "not-regular", "a pipe, a socket or a device");
        return;
    }
    if (m_options.exclude.match(found.name)) {
        skip(found, "excluded", "excluded by its name");
        return;
    }
    if (isThere) {
        found.size = status.st_size;
        found.time = timeOf(status);
    }
    m_take(found);
}

void Finder::searchFolder(const Folder& folder, std::vector<Folder>& further) {
    const auto names = namesIn(folder.path);
    if (!names) {
        const std::string reason = std::strerror(errno);
        Found found{folder.path, folder.name.isEmpty() ? lastPart(folder.path) : folder.name};
        found.what = Found::What::Unreadable;
        found.kind = "unreadable";
        found.reason = Messages::messageFor({Reader::ErrorKind::Unreadable,
                                             {.file = QFile::decodeName(folder.path), .reason = reason}})
                           .text;
        m_take(found);
        return;
    }
    std::vector<Entry> entries;
    std::vector<Folder> folders;
    for (const QByteArray& name : *names) {
        if (m_options.isStopped())
            return;
        Found found{joined(folder.path, name), joined(folder.name, name)};
        struct stat status = {};
        if (lstat(found.path.constData(), &status) != 0 || isOwn(found.path))
            continue; // it vanished, or is a file of this batch
        if (S_ISLNK(status.st_mode)) {
            skipLink(std::move(found), folder.path);
        } else if (m_options.exclude.match(found.name)) {
            skip(std::move(found), "excluded", "excluded by its name");
        } else if (S_ISDIR(status.st_mode)) {
            if (found.path == m_options.results)
                skip(std::move(found), "results", "the folder of the results");
            else
                folders.push_back({found.path, found.name});
        } else if (!S_ISREG(status.st_mode)) {
            skip(std::move(found), "not-regular", "a pipe, a socket or a device");
        } else {
            found.size = status.st_size;
            found.time = timeOf(status);
            const auto known = m_options.known(found);
            const Content content = known ? *known : contentAt(found.path);
            entries.push_back({std::move(found), content});
        }
    }
    takeEntries(entries);
    further.insert(further.end(), folders.rbegin(), folders.rend());
}

/// Takes the files of one folder. Whether a project is a result, a backup or a side file shows only beside the others.
void Finder::takeEntries(std::vector<Entry>& entries) {
    std::set<QString> bases; // of projects: a result has one of these before its version
    std::set<QByteArray> names;
    for (const Entry& entry : entries) {
        const QByteArray name = lastPart(entry.found.name);
        names.insert(name);
        if (entry.content == Content::Project) {
            bases.insert(QFile::decodeName(name));
            bases.insert(QFileInfo(QFile::decodeName(name)).completeBaseName());
        }
    }
    std::vector<Found> projects;
    const auto classify = [&](Entry& entry) {
        const QByteArray name = lastPart(entry.found.name);
        const auto base = baseOfResult(name);
        const auto original = originalOf(name);
        if (isTemporary(name))
            skip(std::move(entry.found), "temporary", "an unfinished file of this program");
        else if (original && names.count(*original) > 0)
            skip(std::move(entry.found), "backup", "a backup");
        else if (base && entry.content == Content::Project && bases.count(*base) > 0)
            skip(std::move(entry.found), "result", "a result of this program");
        else if (!m_options.include.isEmpty() && !m_options.include.match(entry.found.name))
            skip(std::move(entry.found), "excluded", "not included by its name");
        else if (entry.content == Content::Empty)
            skip(std::move(entry.found), "empty", "an empty file");
        else if (entry.content == Content::Other)
            skip(std::move(entry.found), "no-project", "no project");
        else
            projects.push_back(std::move(entry.found));
    };
    const auto sideFiles = std::stable_partition(entries.begin(), entries.end(), [](const Entry& entry) {
        return !isSideFile(lastPart(entry.found.name));
    });
    std::for_each(entries.begin(), sideFiles, classify);
    const bool isBundle = projects.size() == 1 && sideFiles != entries.end();
    const bool haveOwner = !projects.empty();
    std::for_each(sideFiles, entries.end(), [&](Entry& entry) {
        if (haveOwner)
            skip(std::move(entry.found), "side-file", "a side file of a project");
        else
            classify(entry);
    });
    for (Found& project : projects) {
        project.isBundle = isBundle;
        m_take(project);
    }
}

void Finder::skip(Found found, const char* kind, const char* reason) const {
    found.what = Found::What::Skipped;
    found.kind = kind;
    found.reason = reason;
    m_take(found);
}

void Finder::skipLink(Found found, const QByteArray& folder) const {
    const QByteArray target = resolved(found.path);
    if (target.isEmpty())
        skip(std::move(found), "broken-link", "a link that leads nowhere or in a circle");
    else if (target == folder || isBelow(folder, target))
        skip(std::move(found), "circular-link", "a link to a folder that it is in");
    else if (target == m_root || isBelow(target, m_root))
        skip(std::move(found), "inner-link", "a link to what is found at its own place");
    else
        skip(std::move(found), "outer-link", "a link that leads out of the folder that is searched");
}

bool Finder::isOwn(const QByteArray& path) const {
    return std::any_of(m_options.ownFiles.begin(), m_options.ownFiles.end(),
                       [&](const QByteArray& own) { return path == own; });
}

} // namespace Batch
