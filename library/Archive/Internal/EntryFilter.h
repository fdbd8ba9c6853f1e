#pragma once

#include <nlohmann/json.hpp>

#include <utility>

namespace Archive::Internal {

/// Goes through the entries of an array or an object, in order, and drops some. Each entry costs the same, however many
/// there are. What was dropped is gone also where the walk ends in an exception.
class EntryFilter {
public:
    /// The entries of the member `key`; none where it is missing or is neither array nor object.
    EntryFilter(nlohmann::json& object, const char* key) {
        const auto found = object.find(key);
        if (found == object.end() || !found->is_structured())
            return;
        m_container = &*found;
        m_kept = m_next = m_container->begin();
    }
    ~EntryFilter() { close(); }
    EntryFilter(const EntryFilter&) = delete;
    EntryFilter& operator=(const EntryFilter&) = delete;

    bool atEnd() const { return !m_container || m_next == m_container->end(); }
    const nlohmann::json& entry() const { return *m_next; }

    /// Goes on to the next entry; this one stays.
    void keep() {
        if (m_kept != m_next)
            *m_kept = std::move(*m_next);
        ++m_kept;
        ++m_next;
    }

    /// Goes on to the next entry; this one goes.
    void drop() {
        if (m_container->is_object())
            m_kept = m_next = m_container->erase(m_next);
        else
            ++m_next;
    }

    /// Ends the walk: closes the gap that dropped entries left. Entries that it has not reached stay.
    void close() {
        if (m_container && m_kept != m_next)
            m_container->erase(m_kept, m_next);
        m_container = nullptr;
    }

private:
    nlohmann::json* m_container = nullptr;
    nlohmann::json::iterator m_kept; ///< behind the entries that stay
    nlohmann::json::iterator m_next;
};

/// Drops the entries for which the predicate holds.
template <class Predicate>
void dropEntries(nlohmann::json& object, const char* key, Predicate predicate) {
    for (EntryFilter entries(object, key); !entries.atEnd();) {
        if (predicate(entries.entry()))
            entries.drop();
        else
            entries.keep();
    }
}

} // namespace Archive::Internal
