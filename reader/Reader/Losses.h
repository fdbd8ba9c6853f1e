#pragma once

#include "Reader/Contents.h"
#include "Reader/Document.h"
#include "Reader/MigrationOptions.h"
#include "Reader/MigrationReport.h"

#include <cstddef>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

// Threads: each function works on documents of its own.

namespace Archive::Internal {
class FlatEditor;
}

namespace Reader {

/// Notes during a migration at which step clips, effects and titles of the input leave the project. What it notes costs
/// little: root objects that steps remove from an archive, and clips that leave the timelines of a JSON document.
///
/// Threads: belongs to the thread of its migration.
class LossTracker {
public:
    /// Starts with the parts of the document as it was read.
    void start(std::vector<Part> parts, Bundle::Backend form);

    /// Notes root objects that an adaptor removed from the archive.
    void noteRemoved(const std::vector<unsigned long long>& ids, const std::string& adaptor);
    /// Notes clips that a JSON document does not list any more behind an adaptor.
    void noteTimelines(Archive::Internal::FlatEditor& document, const std::string& adaptor);

    /// What `document` does not reach of the parts, in their order. Losses whose step was not noted have none.
    std::vector<Loss> losses(const Document& document) const;
    const std::vector<Part>& parts() const { return m_parts; }
    /// How many clips the document's timelines list that are not among the parts.
    std::size_t countAddedClips(const Document& document) const;

private:
    std::string stepOf(const Part& part, const Document& document) const;

    std::vector<Part> m_parts;
    bool m_wasXml = false;
    std::unordered_set<unsigned long long> m_ids;
    std::unordered_map<unsigned long long, std::string> m_removedBy; ///< adaptor by id
    std::vector<unsigned long long> m_listed; ///< clips in the entries of the timelines of the JSON document
};

/// Migrates a document again and looks behind each adaptor whether it reaches the lost parts, to find the step of each.
/// Takes much longer than the migration. Steps that fail end the search: what was not found until then has no step.
std::vector<Loss> explainLosses(Document document, MigrationOptions options, const std::vector<Loss>& losses);

} // namespace Reader
