#pragma once

#include <QByteArray>

#include <array>
#include <csignal>
#include <list>

namespace Reader {

/// A file or an empty folder that a run has made and that goes again unless it is kept: when the object is destroyed,
/// and when removeUnfinished() is called. The list of them is the one state of the process that this library has, since
/// a signal handler can be handed nothing.
///
/// Threads: objects may be made, kept and destroyed on any thread.
class Unfinished {
public:
    enum class Kind { File, Folder };

    Unfinished(const QByteArray& path, Kind kind);
    ~Unfinished();
    Unfinished(const Unfinished&) = delete;
    Unfinished& operator=(const Unfinished&) = delete;

    /// From here on the file or folder stays.
    void keep();

private:
    friend void removeUnfinished();

    void remove() const;

    const QByteArray m_path;
    const char* const m_name;
    const Kind m_kind;
    bool m_isKept = false;
    Unfinished* m_earlier = nullptr;
    Unfinished* m_later = nullptr;
};

/// What a run makes beside its result, such as the folder of a bundle and the files in it; removed in reverse order
/// unless kept.
///
/// Threads: one object belongs to one thread at a time.
class UnfinishedParts {
public:
    UnfinishedParts() = default;
    ~UnfinishedParts();
    UnfinishedParts(const UnfinishedParts&) = delete;
    UnfinishedParts& operator=(const UnfinishedParts&) = delete;

    void add(const QByteArray& path, Unfinished::Kind kind) { m_parts.emplace_back(path, kind); }
    void keep();

private:
    std::list<Unfinished> m_parts;
};

/// The signals at which a program should remove what is unfinished.
inline constexpr std::array<int, 3> endingSignals = {SIGINT, SIGTERM, SIGHUP};

/// All of them.
sigset_t endingSignalSet();

/// While one lives, the ending signals wait on its thread: between making a file and making its Unfinished, and
/// between putting a result in place and keeping what belongs to it.
class HeldSignals {
public:
    HeldSignals();
    ~HeldSignals();
    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;

private:
    sigset_t m_before = {};
};

/// Removes all that is unfinished in the process. For a process that ends at once; safe in a handler of the ending
/// signals. For programs with one thread: another one could make a file at that very moment.
void removeUnfinished();

} // namespace Reader
