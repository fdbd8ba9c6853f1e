#include "Reader/Unfinished.h"

#include <unistd.h>

#include <cerrno>
#include <mutex>

namespace Reader {
namespace {

std::mutex listMutex; ///< of the list below; the signal handler can't take it and needs HeldSignals instead
Unfinished* latest = nullptr;

} // namespace

sigset_t endingSignalSet() {
    sigset_t set = {};
    sigemptyset(&set);
    for (const int number : endingSignals)
        sigaddset(&set, number);
    return set;
}

Unfinished::Unfinished(const QByteArray& path, Kind kind)
    : m_path(path), m_name(m_path.constData()), m_kind(kind) {
    const HeldSignals held;
    const std::lock_guard lock(listMutex);
    m_earlier = latest;
    if (m_earlier)
        m_earlier->m_later = this;
    latest = this;
}

Unfinished::~Unfinished() {
    const int error = errno; // of what went wrong, for the caller that reports it
    const HeldSignals held;
    const std::lock_guard lock(listMutex);
    if (!m_isKept)
        remove();
    (m_later ? m_later->m_earlier : latest) = m_earlier;
    if (m_earlier)
        m_earlier->m_later = m_later;
    errno = error;
}

void Unfinished::keep() {
    m_isKept = true;
}

void Unfinished::remove() const {
    static_cast<void>(m_kind == Kind::File ? unlink(m_name) : rmdir(m_name));
}

UnfinishedParts::~UnfinishedParts() {
    while (!m_parts.empty())
        m_parts.pop_back();
}

void UnfinishedParts::keep() {
    for (Unfinished& part : m_parts)
        part.keep();
}

HeldSignals::HeldSignals() {
    const sigset_t set = endingSignalSet();
    pthread_sigmask(SIG_BLOCK, &set, &m_before);
}

HeldSignals::~HeldSignals() {
    pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
}

void removeUnfinished() {
    for (const Unfinished* part = latest; part; part = part->m_earlier) {
        if (!part->m_isKept)
            part->remove();
    }
}

} // namespace Reader
