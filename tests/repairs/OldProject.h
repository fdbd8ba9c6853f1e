#pragma once

#include "Reader/Error.h"
#include "Reader/Migration.h"
#include "Reader/Verify.h"
#include "Repairs/RepairTable.h"
#include "support/Film.h"
#include "support/Findings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QByteArray>

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <vector>

/// Builds archives of old versions for tests of repairs, and migrates them.
namespace Tests {

/// A field, `<name type='type' value='value'/>`.
inline std::string field(const std::string& name, const std::string& type, const std::string& value) {
    return "<" + name + " type='" + type + "' value='" + value + "'/>";
}
inline std::string number(const std::string& name, long long value) {
    return field(name, "int64_t", std::to_string(value));
}
inline std::string small(const std::string& name, long long value) {
    return field(name, "int32_t", std::to_string(value));
}
inline std::string text(const std::string& name, const std::string& value) {
    return field(name, "String", value);
}
inline std::string ref(const std::string& name, long long id) {
    return field(name, "ObjectRef", std::to_string(id));
}
/// A list of what is in its items.
inline std::string list(const std::string& name, const std::vector<std::string>& contents) {
    std::string items = "<" + name + " type='Array' size='" + std::to_string(contents.size()) + "'>";
    for (std::size_t place = 0; place < contents.size(); ++place)
        items += "<Item type='Item' index='" + std::to_string(place + 1) + "'>" + contents[place] + "</Item>";
    return items + "</" + name + ">";
}
inline std::string refs(const std::string& name, const std::vector<long long>& ids) {
    std::vector<std::string> contents;
    for (const long long id : ids)
        contents.push_back(ref("Data", id));
    return list(name, contents);
}
/// An object inside of another.
inline std::string embedded(const std::string& tag, const std::string& type, long long id,
                            const std::string& content) {
    return "<" + tag + " type='" + type + "' objectId='" + std::to_string(id) + "'>" + content + "</" + tag +
           ">";
}
/// A double with its exact form.
std::string real(const std::string& name, double value, const std::string& shown = {});

/// A clip in the list of a timeline. `track` is a number before version 27, and the id of a track from it on.
struct Entry {
    long long clip;
    long long timing;
    long long track;
    long long timestamp;
    long long duration;
    std::string more = {}; ///< further fields of the timing
};

class OldProject {
public:
    explicit OldProject(int version) : m_version(version) {}

    OldProject& root(long long id) {
        m_root = id;
        return *this;
    }
    OldProject& object(const std::string& type, long long id, const std::string& content) {
        m_objects += embedded("RootObject", type, id, content);
        return declared(id, type);
    }
    OldProject& timeline(long long id, const std::string& name, const std::vector<Entry>& entries,
                         const std::string& more = {});
    OldProject& clip(long long id, int type, const std::string& name, const std::string& more = {}) {
        return object("Timeline::Clip", id, text("name", name) + small("type", type) + more);
    }
    /// A title with its overlay, whose id is `preset`.
    OldProject& title(long long id, const std::string& name, long long preset) {
        object("Overlay::Preset", preset,
               small("type", 1) + list("items", {}) + text("tag", "SimpleText") +
                   (m_version >= 62 ? text("resourcePath", "") : ""));
        return clip(id, 4, name, ref("overlay", preset));
    }
    /// Tracks by id and type, which belong to a timeline.
    OldProject& tracks(long long timeline, const std::vector<std::pair<long long, int>>& tracks);
    /// The project's content and what belongs to it, from version 35 on.
    OldProject& content(long long id, long long timeline) {
        object("Project::Content", id, ref("timeline", timeline) + ref("userCollection", id + 1));
        object("EditorCollection::UserObject", id + 1, list("items", {}));
        return root(id);
    }

    /// Adds a record. object() adds one of the object's own class.
    OldProject& declared(long long id, const std::string& type, const std::vector<long long>& refs = {}) {
        m_records.push_back({id, type, refs});
        return *this;
    }
    /// Removes all records of an object.
    OldProject& undeclared(long long id) {
        std::erase_if(m_records, [id](const Record& record) { return record.id == id; });
        return *this;
    }
    OldProject& withoutPredeclarator() {
        m_hasPredeclarator = false;
        return *this;
    }

    QByteArray bytes() const;

private:
    struct Record {
        long long id;
        std::string type;
        std::vector<long long> refs;
    };

    int m_version;
    long long m_root = 0;
    std::string m_objects;
    std::vector<Record> m_records;
    bool m_hasPredeclarator = true;
};

/// What a migration did.
struct Migrated {
    std::optional<Reader::Error> error = {};
    Reader::MigrationReport report = {};
    QByteArray bytes = {}; ///< empty where it failed

    /// The step that failed; empty for none.
    std::string failedStep() const { return error ? error->facts().step : std::string(); }
    /// The names of the repairs that were made.
    std::vector<std::string> repairs() const;
    /// The repair of that name. Fails if there is none.
    const Reader::RepairMade& repair(const std::string& name) const;
    Project project() const { return Project(bytes); }
};

/// Migrates a document without or with repairs; with them, also its text is repaired.
Migrated migrateOld(const QByteArray& bytes, bool repair, int to = Reader::currentVersion);

/// The migration succeeded, lost nothing that was used, and its result has no fault.
void expectWhole(const Migrated& migrated);

/// The type of the track that a clip lies on in a result; -1 for none, or for one that its timeline does not list.
int trackTypeOf(const Project& project, const std::string& timeline, const std::string& clip);

/// The names of the clips that a timeline of a result lists, in order.
std::vector<std::string> clipNames(const Project& project, const std::string& timeline);

/// The names of the clips that a repair names.
std::vector<std::string> namesOf(const std::vector<Reader::Part>& clips);

} // namespace Tests
