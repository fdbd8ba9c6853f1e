#include "Archive/Internal/Reading.h"
#include "Repairs/Internal/ArchiveObjects.h"
#include "Repairs/Makers.h"

#include <QMap>
#include <QSet>

#include <algorithm>

using namespace Archive::Internal;

namespace Repairs {
namespace {

/// The class that a reference leads to, by the name of its field or of the list that holds it.
struct Target {
    const char* field;
    const char* classPrefix;
};

// clang-format off
constexpr Target targets[] = {
    {"clips", "Timeline::Clip"},
    {"links", "Timeline::Clip"},
    {"trackingLinks", "Timeline::Clip"},
    {"master", "Timeline::Clip"},
    {"First", "Timeline::Clip"},
    {"Second", "Timeline::Clip"},
    {"timeline", "Timeline::Object"},
    {"nestedTimeline", "Timeline::Object"},
    {"track", "Timeline::Track"},
    {"tracks", "Timeline::Track"},
    {"transition", "Transition"},
    {"transitions", "Transition"},
    {"effects", "Effect"},
    {"overlay", "Overlay::Preset"},
    {"quiz", "Quiz::Preset"},
    {"file", "File"},
    {"stabilization", "Stabilization::Object"},
    {"preview", "StaticPreview"},
    {"cropEnvelope", "TransformationEnvelope"},
    {"moveEnvelope", "TransformationEnvelope"},
    {"userCollection", "EditorCollection"},
    {"composition", "Composition"},
};
// clang-format on

/// The array that holds a reference in one of its items; a null element for a field of an object.
QDomElement listOf(const QDomElement& reference) {
    const QDomElement item = reference.parentNode().toElement();
    return item.tagName() == Words::Item ? item.parentNode().toElement() : QDomElement();
}

/// The beginning of the class that the reference leads to; empty where that is not known.
QString classPrefixOf(const QDomElement& reference) {
    const QString tag = reference.tagName();
    const bool isItem = tag == Words::Data || tag == Words::Key || tag == Words::Value;
    const Target* target = findRow(targets, &Target::field, isItem ? listOf(reference).tagName() : tag);
    return target ? QString::fromLatin1(target->classPrefix) : QString();
}

/// The references to one shared id.
struct Shared {
    Elements objects; ///< in document order
    Elements references;
};

/// Gives each object but the first of an id a new one, and lets each reference lead to the object of the class that it
/// needs.
class SharedIds : public ArchiveRepair {
public:
    bool find(ArchiveEditor& archive, const Place&) override {
        for (const auto& [object, type] : projectObjects(archive)) {
            if (Archive::objectIdOf(object) != 0)
                m_shared[Archive::objectIdOf(object)].objects.push_back(object);
        }
        for (auto shared = m_shared.begin(); shared != m_shared.end();)
            shared = shared->objects.size() < 2 ? m_shared.erase(shared) : std::next(shared);
        return !m_shared.isEmpty();
    }

    void repair(ArchiveEditor& archive, Changes& changes) override {
        collectReferences(archive);
        for (const Shared& shared : m_shared)
            separate(archive, shared, changes);
        changes.describe(counted(changes.count(), "object") + " that had the id of another " +
                         (changes.count() == 1 ? "has" : "have") + " an id of " +
                         (changes.count() == 1 ? "its" : "their") + " own");
    }

private:
    /// References of the project; those of predeclarations are written anew.
    void collectReferences(ArchiveEditor& archive) {
        walkProject(archive, [this](const QDomElement& e) {
            if (Archive::typeOf(e) != Words::ObjectRef)
                return;
            const auto shared = m_shared.find(targetOf(e));
            if (shared != m_shared.end())
                shared->references.push_back(e);
        });
        const QDomElement root = archive.root().firstChildElement(Words::RootRef);
        if (const auto shared = m_shared.find(targetOf(root)); shared != m_shared.end())
            shared->references.push_back(root);
    }

    static void separate(ArchiveEditor& archive, const Shared& shared, Changes& changes) {
        QList<long long> ids;
        for (const QDomElement& object : shared.objects)
            ids.append(ids.isEmpty() ? idOf(object) : archive.nextId());
        QHash<const void*, std::size_t> uses; // of a list, by its identity
        for (const QDomElement& reference : shared.references) {
            const std::size_t place = choose(shared, reference, uses);
            archive.setText(reference, QString::number(ids[int(place)]));
        }
        for (std::size_t place = 1; place < shared.objects.size(); ++place) {
            renumber(archive, shared.objects[place], ids[int(place)]);
            changes.note(shared.objects[place]);
        }
    }

    /// The place of the object that the reference leads to. Of several of its class, the entries of a list lead to one
    /// after the other; all other references lead to the last, as in the conversion.
    static std::size_t choose(const Shared& shared, const QDomElement& reference,
                              QHash<const void*, std::size_t>& uses) {
        const QString prefix = classPrefixOf(reference);
        std::vector<std::size_t> candidates;
        for (std::size_t place = 0; place < shared.objects.size(); ++place) {
            if (Archive::typeOf(shared.objects[place]).startsWith(prefix))
                candidates.push_back(place);
        }
        if (candidates.empty())
            return shared.objects.size() - 1;
        const QDomElement list = listOf(reference);
        if (list.isNull())
            return candidates.back();
        const std::size_t use = uses[identityOf(list)]++;
        return candidates[std::min(use, candidates.size() - 1)];
    }

    /// Gives an object and its base class parts a new id. The repair of the predeclarations, which follows, declares it.
    static void renumber(ArchiveEditor& archive, const QDomElement& object, long long id) {
        const long long old = idOf(object);
        archive.setObjectId(object, id);
        for (QDomElement part = object.firstChildElement(Words::BaseOfObject);
             !part.isNull() && idOf(part) == old; part = part.firstChildElement(Words::BaseOfObject))
            archive.setObjectId(part, id);
    }

    QMap<unsigned long long, Shared> m_shared;
};

} // namespace

std::unique_ptr<ArchiveRepair> makeSharedIds() {
    return std::make_unique<SharedIds>();
}

} // namespace Repairs
