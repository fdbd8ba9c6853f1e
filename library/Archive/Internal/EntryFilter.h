#pragma once

#include <nlohmann/json.hpp>

#include <utility>

namespace Archive::Internal {

/// Walks through the entries of an array or an object, in order, and removes some. The cost is linear in the
/// number of entries. If the walk ends with an exception, the entries dropped so far are removed.
class EntryFilter {
public:
    /// The entries of the member `key`; none if it is missing or is neither array nor object.
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

    /// Keeps this entry and moves on to the next one.
    void keep() {
        if (m_kept != m_next)
            *m_kept = std::move(*m_next);
        ++m_kept;
        ++m_next;
    }

    /// Removes this entry and moves on to the next one.
    void drop() {
        if (m_container->is_object())
            m_kept = m_next = m_container->erase(m_next);
        else
            ++m_next;
    }

    /// Ends the walk: removes the dropped entries. Entries that were not reached are kept.
    void close() {
        if (m_container && m_kept != m_next)
            m_container->erase(m_kept, m_next);
        m_container = nullptr;
    }

private:
    nlohmann::json* m_container = nullptr;
    nlohmann::json::iterator m_kept; ///< after the last entry that was kept
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
