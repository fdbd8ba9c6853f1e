#pragma once

#include "Archive/Internal/FlatObjects.h"

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace Archive::Internal {

/// The context of a step on JSON: a flat document and an index of its objects by class. All steps of a migration share
/// one editor, so that not every step has to search the document again.
///
/// The index knows the objects that existed at its last use, and finds those that were created since then: they have
/// greater ids. No step removes an object or changes its class. Not thread-safe.
class FlatEditor {
public:
    /// The document must live as long as the editor.
    explicit FlatEditor(Serialize::Json::FlatObject& document) : m_document(&document) {}

    Serialize::Json::FlatObject& document() const { return *m_document; }

    /// Goes on with the document in another place, after it was moved.
    void follow(Serialize::Json::FlatObject& document) { m_document = &document; }

    /// All objects of that class, by ascending id: a snapshot. Steps that create objects use this order, so that new
    /// ids are the same on every run.
    std::vector<SelectedObject> objects(const std::string& className);

    /// The objects of any of these classes, by ascending id.
    std::vector<SelectedObject> objects(const std::set<std::string>& classNames);

    /// How many objects of each class there are; entries without a class count as "".
    std::map<std::string, std::size_t> countByClass();

    /// Discards the index. To be called after objects were removed, or got another class.
    void invalidate();

private:
    void update();

    Serialize::Json::FlatObject* m_document; ///< never null
    std::unordered_map<std::string, std::vector<SelectedObject>> m_byClass;
    unsigned long long m_lastId = 0; ///< the greatest id in the index
    bool m_isEmpty = true;           ///< whether nothing is indexed
};

} // namespace Archive::Internal
