#pragma once

#include "Recovery/Fields.h"
#include "Recovery/JsonScan.h"
#include "Recovery/Salvage.h"

#include <QByteArray>

#include <span>

namespace Reader {

/// What is whole in a damaged JSON document.
///
/// Threads: not thread-safe.
class JsonSalvage : public Salvage {
public:
    JsonSalvage(ScannedJson document, RecoveryReport& report);

    /// What the document says of its schema version; null where it says nothing.
    nlohmann::json statedVersion() const;
    const VersionFacts& versionFacts() const { return m_document.facts; }

    /// Must be called before any change: which fields there are depends on it.
    void setVersion(int version) { m_version = version; }

    /// Completes the objects that lead to clips, and puts entries into the lists that they belong to.
    void closeDamaged();
    /// The document as text. The salvage can't be used afterwards.
    QByteArray write();

    bool isDamaged() const override { return m_document.isDamaged; }
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
    using Object = nlohmann::json;

    const Object* find(ObjectId id) const;
    Object& at(ObjectId id) { return m_document.objects.at(id); }
    ObjectId rootId() const;
    ObjectId firstOf(std::string_view className) const;
    ObjectId make(std::string_view className, ObjectId id);
    void complete(Object& object, std::span<const FieldRow> fields) const;
    Object& listIn(ObjectId id, const char* field);
    void checkParts();
    void checkEntries(ObjectId timeline);
    bool lacksFields(const Object& object, std::span<const FieldRow> fields) const;
    void placeLooseMembers();
    void placeLooseEntries();
    bool hasLostReference(const Object& value) const;
    void clearIn(Object& object);

    ScannedJson m_document;
    RecoveryReport& m_report;
    int m_version = 0;
    ObjectId m_greatestId = 0;
    std::unordered_map<ObjectId, ObjectId> m_timings; ///< by clip, of clips in timelines
};

} // namespace Reader
