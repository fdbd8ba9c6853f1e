#pragma once

#include "Recovery/Fields.h"
#include "Recovery/Salvage.h"
#include "Recovery/VersionGuess.h"
#include "Recovery/XmlScan.h"

#include <QByteArray>

#include <deque>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace Reader {

/// What is whole in a damaged archive.
///
/// Threads: not thread-safe.
class XmlSalvage : public Salvage {
public:
    /// The text that the tree refers to must outlive the salvage.
    XmlSalvage(ScannedTree tree, RecoveryReport& report);

    /// What the archive says of its schema version; nothing where it says nothing.
    std::optional<std::string> statedVersion() const;
    VersionFacts versionFacts() const;

    /// Must be called before any change: which fields there are depends on it.
    void setVersion(int version) { m_version = version; }

    /// Drops the objects that are damaged, but for those that lead to clips: they keep what they have.
    void dropDamaged();
    /// The archive as text.
    QByteArray write() const;

    bool isDamaged() const override { return m_tree.isDamaged; }
    std::vector<RecoveredClip> mentionedClips() const override;
    std::vector<SalvagedClip> clips() const override;
    std::vector<SalvagedTimeline> timelines() const override;
    std::vector<SalvagedTrack> tracks() const override;
    ObjectId mainTimeline() const override;
    ObjectId makeTimeline(ObjectId id) override;
    ObjectId makeTrack(ObjectId id, long long type, ObjectId timeline) override;
    ObjectId makeScene(ObjectId nested, ObjectId timeline, const std::string& name) override;
    void completeScene(ObjectId clip, ObjectId timeline) override;
    void listTrack(ObjectId timeline, ObjectId track) override;
    void listClip(ObjectId timeline, ObjectId clip, const ClipPlace& place) override;
    void moveClip(ObjectId timeline, ObjectId clip, ObjectId track) override;
    void setMainTimeline(ObjectId timeline) override;
    void mendReferences() override;

private:
    struct Record {
        int item;
        int data;
    };

    ScannedNode& at(int node) { return m_tree.nodes[static_cast<std::size_t>(node)]; }
    const ScannedNode& at(int node) const { return m_tree.nodes[static_cast<std::size_t>(node)]; }
    std::vector<int> children(int node, std::string_view tag = {}) const;
    int child(int node, std::string_view tag) const;
    std::string_view typeOf(int node) const { return m_tree.attribute(node, "type"); }
    ObjectId idOf(int node) const;
    ObjectId refIn(int node, std::string_view field) const;
    long long numberIn(int node, std::string_view field) const;
    int objectAt(ObjectId id) const;
    template <class Visit>
    void walk(int top, Visit visit) const;
    void walkProject(const std::function<void(int node, int rootObject)>& visit) const;

    void findRootObjects();
    bool lacksFields(int object, std::span<const FieldRow> fields, int version) const;
    void checkParts(int object);
    void close(int object);
    void closeTimeline(int timeline);
    void closeList(int list);
    void completeTiming(int item);
    void complete(int object, std::span<const FieldRow> fields);
    bool isScene(int clip) const;

    std::string_view keep(std::string text);
    int add(std::string_view tag, int parent,
            std::initializer_list<std::pair<std::string_view, std::string>> attributes);
    int addField(int parent, const FieldRow& row, const std::string& value = {});
    int addReference(int parent, std::string_view field, ObjectId id);
    int addItem(int list);
    int makeObject(std::string_view className, ObjectId id);
    int embed(int parent, std::string_view field, std::string_view className, ObjectId id);
    int listIn(int object, std::string_view field);
    void set(int node, std::string_view attribute, const std::string& value);
    void setReference(int object, std::string_view field, ObjectId id);
    ObjectId newId();

    void clearReferences();
    void renumberCopies();
    void mendCounts();
    void mendPredeclarations();
    bool mendRecord(const Record& record, int object, int rootObject);
    void addRecord(int list, int object, ObjectId parent);
    std::vector<ObjectId> referencesOf(int object) const;

    ScannedTree m_tree;
    RecoveryReport& m_report;
    int m_version = 0;
    std::deque<std::string> m_texts;                 ///< of what was added
    std::vector<int> m_rootObjects;                  ///< alive, with the predeclarations
    std::unordered_map<ObjectId, int> m_objectsById; ///< without the predeclarations
    std::unordered_set<int> m_changed;               ///< root objects that were closed or made
    std::vector<RecoveredClip> m_damagedClips;
    std::unordered_map<ObjectId, int> m_timings; ///< of clips in timelines
    std::unordered_set<ObjectId> m_embedded;     ///< all objects, also those inside of others
    ObjectId m_greatestId = 0;
    int m_rootRef = -1;
};

} // namespace Reader
