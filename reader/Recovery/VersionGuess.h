#pragma once

#include "Adaptors/Backend.h"
#include "Recovery/RecoveryReport.h"

#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace Reader {

/// What classes and fields the objects of a document have, as far as they show its schema version.
///
/// Threads: not thread-safe.
class VersionFacts {
public:
    /// Whether objects of that class, or their base class parts, show anything.
    static bool knows(std::string_view className);

    /// Adds an object. An object that is not whole shows by the fields that it has, not by those that it lacks.
    void addObject(const std::string& className, bool isWhole);
    /// Adds a field of an object of that class. `type` is that of an archive, empty in JSON.
    void addField(const std::string& className, std::string_view field, std::string_view type = {});
    /// Adds the `type` of a track; the numbers changed once.
    void addTrackType(long long type);

    /// The versions of documents of that form which agree with the facts. Where facts contradict each other, those
    /// count that show the higher version.
    VersionGuess guess(Bundle::Backend form) const;

private:
    struct Class {
        std::size_t objects = 0;
        std::size_t whole = 0;
        std::unordered_set<std::string> fields; ///< names, and names with a type, "track:ObjectRef"
    };

    std::unordered_map<std::string, Class> m_classes;
    bool m_hasOldTrackTypes = false;
    bool m_hasNewTrackTypes = false;
};

} // namespace Reader
