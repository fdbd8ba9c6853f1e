#pragma once

#include "batch/Content.h"

#include <QByteArray>
#include <QRegularExpression>

#include <sys/stat.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace Batch {

/// What the search found: a project, something to pass over, or a folder that can't be read.
struct Found {
    enum class What { Project, Skipped, Unreadable };

    QByteArray path; ///< absolute, with no link in its folder
    QByteArray name; ///< below the output folder
    What what = What::Project;
    std::string kind = {};   ///< why it is passed over, as a word; empty for a project
    std::string reason = {}; ///< the same as a part of a sentence
    bool isBundle = false;   ///< a project with side files
    std::optional<qint64> size = {};
    std::optional<qint64> time = {}; ///< in nanoseconds since 1970
};

/// The time of a file's last change, in nanoseconds since 1970.
qint64 timeOf(const struct stat& status);

/// Patterns for names, with the wildcards of a shell. One with a "/" is for the path below the folder that is searched,
/// any other for the name alone.
class Patterns {
public:
    explicit Patterns(const std::vector<std::string>& patterns);

    bool isEmpty() const { return m_patterns.empty(); }
    bool match(const QByteArray& path) const;

private:
    struct Pattern {
        QRegularExpression expression;
        bool isForPath;
    };
    std::vector<Pattern> m_patterns;
};

/// Searches folders for projects. What a file is, its content shows; links are not followed, since what they lead to is
/// found at its own place or lies elsewhere.
///
/// Threads: one object belongs to one thread at a time.
class Finder {
public:
    struct Options {
        Patterns include;
        Patterns exclude;
        QByteArray results;               ///< the output folder, which is not searched; empty for none
        std::vector<QByteArray> ownFiles; ///< files of the batch itself
        bool followsLinks = false;        ///< a path that is a link to a file becomes that of the file
        /// What an earlier run saw in a file that has not changed since, so that it isn't read again; none where that
        /// is not known.
        std::function<std::optional<Content>(const Found&)> known;
        std::function<bool()> isStopped;
    };

    Finder(Options options, std::function<void(const Found&)> take)
        : m_options(std::move(options)), m_take(std::move(take)) {}

    /// Searches a folder, or takes a file whatever it is. A path that is the only one gives its projects names below
    /// itself; otherwise they have the whole path, below the working folder where it lies there.
    void search(const QByteArray& path, bool isOnly);

private:
    struct Folder {
        QByteArray path;
        QByteArray name; ///< empty for the folder of the outputs
    };
    struct Entry {
        Found found;
        Content content = Content::Other;
    };

    void searchFolder(const Folder& folder, std::vector<Folder>& further);
    void takeEntries(std::vector<Entry>& entries);
    void skip(Found found, const char* kind, const char* reason) const;
    void skipLink(Found found, const QByteArray& folder) const;
    bool isOwn(const QByteArray& path) const;

    Options m_options;
    std::function<void(const Found&)> m_take;
    QByteArray m_root; ///< the folder that is searched
};

/// A path without ".", ".." and links in its folder; the last part stays as it is.
QByteArray absolute(const QByteArray& path);

/// The names in a folder in their order; none, with `errno`, where it can't be read.
std::optional<std::vector<QByteArray>> namesIn(const QByteArray& path);

} // namespace Batch
